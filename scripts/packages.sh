# Sourced by the other scripts: `need_packages NAME...` installs what is missing through the system's package manager.

need_packages() {
    missing=
    for package in "$@"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing="$missing $package"
    done
    [ -n "$missing" ] || return 0
    echo "Installing what is missing, with apt-get:$missing"
    as_root=
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null 2>&1 || {
            echo "Neither root nor sudo: please install$missing" >&2
            return 1
        }
        as_root=sudo
    fi
    $as_root apt-get update -qq
    # shellcheck disable=SC2086
    DEBIAN_FRONTEND=noninteractive $as_root apt-get install -y -qq --no-install-recommends $missing
}
