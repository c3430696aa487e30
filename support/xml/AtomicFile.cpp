#include "support/xml/AtomicFile.h"
#include "support/xml/XmlFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <random>
#include <string_view>
#include <system_error>
#include <utility>

namespace sys::file {
namespace {

constexpr unsigned cannotWrite = 90003;

// The part up to and with the last slash, empty if there is none.
std::string Directory(std::string const& path) { return path.substr(0, path.rfind('/') + 1); }

std::string RandomSuffix() {
    static constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyz0123456789";
    std::random_device source;
    std::uniform_int_distribution<std::size_t> letter(0, letters.size() - 1);
    std::string suffix(".");
    for (int i = 0; i < 6; ++i) suffix += letters[letter(source)];
    return suffix;
}

// Part of a file name that leaves room for a suffix within what file systems take.
std::string_view Shortened(std::string_view name) { return name.substr(0, 200); }

} // namespace

AtomicFile::~AtomicFile() { Discard_(); }

htl::status AtomicFile::Open(std::wstring const& name) {
    shownName = name;
    if (htl::status failure = native_path(target, name); failure.IsError()) return failure;
    struct stat old = {};
    bool const exists = ::stat(target.c_str(), &old) == 0;
    if (!exists && errno != ENOENT) return Failure_(errno);
    // By the name as it was given: the link to an open pipe (/dev/stdout) names nothing that could be opened.
    if (exists && !S_ISREG(old.st_mode)) {
        descriptor = ::open(target.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
        return descriptor < 0 ? Failure_(errno) : htl::status();
    }
    if (htl::status failure = Follow_(target); failure.IsError()) return failure;
    // A rename asks for no right to write the file itself, but whoever took that right away meant it.
    if (exists && ::faccessat(AT_FDCWD, target.c_str(), W_OK, AT_EACCESS) != 0) return Failure_(errno);
    // A new file gets what the process's mask leaves. One that replaces another is nobody else's until it has the mode
    // of that one.
    if (htl::status failure = OpenTemporary_(target, exists ? 0600 : 0666); failure.IsError()) return failure;
    if (!exists) return {};

    mode_t mode = old.st_mode & 07777;
    if (::fchown(descriptor, old.st_uid, old.st_gid) != 0) {
        // Under another owner the bits that lend the owner's rights would lend somebody else's.
        mode &= 0777;
        // The file of a group stays with it, whoever of the group saves; who doesn't belong to it can't give it away.
        (void)!::fchown(descriptor, static_cast<uid_t>(-1), old.st_gid);
    }
    if (::fchmod(descriptor, mode) == 0) return {};
    int const reason = errno;
    Discard_();
    return Failure_(reason);
}

htl::status AtomicFile::Write(void const* data, std::size_t size) {
    if (descriptor < 0) return Failure_(EBADF);
    auto const* from = static_cast<char const*>(data);
    while (size != 0) {
        ssize_t const written = ::write(descriptor, from, size);
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) {
            int const reason = errno;
            Discard_();
            return Failure_(reason);
        }
        from += written;
        size -= static_cast<std::size_t>(written);
    }
    return {};
}

htl::status AtomicFile::Commit() {
    if (descriptor < 0) return Failure_(EBADF);
    bool const direct = temporary.empty();
    int reason = 0;
    // Devices and pipes have nothing to flush.
    if (!direct && ::fsync(descriptor) != 0) reason = errno;
    // Some file systems report a full disk only here. The descriptor is gone in any case.
    if (::close(std::exchange(descriptor, -1)) != 0 && reason == 0) reason = errno;
    if (direct) return reason == 0 ? htl::status() : Failure_(reason);
    if (reason == 0 && ::rename(temporary.c_str(), target.c_str()) != 0) reason = errno;
    if (reason != 0) {
        Discard_();
        return Failure_(reason);
    }
    temporary.clear();

    // Makes the new name last through a crash. The file has its place already, so there is no failure to report.
    std::string const directory = Directory(target);
    int const opened = ::open(directory.empty() ? "." : directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (opened >= 0) {
        (void)::fsync(opened);
        ::close(opened);
    }
    return {};
}

// Replaces `path` by what it finally refers to, which need not exist.
htl::status AtomicFile::Follow_(std::string& path) const {
    constexpr int linkLimit = 40; // as many as the system follows
    for (int links = 0;; ++links) {
        struct stat entry = {};
        if (::lstat(path.c_str(), &entry) != 0 || !S_ISLNK(entry.st_mode)) return {};
        if (links == linkLimit) return Failure_(ELOOP);
        std::string to(4096, '\0');
        ssize_t const length = ::readlink(path.c_str(), to.data(), to.size());
        if (length < 0) return Failure_(errno);
        to.resize(static_cast<std::size_t>(length));
        if (!to.starts_with('/')) to.insert(0, Directory(path));
        path = std::move(to);
    }
}

htl::status AtomicFile::OpenTemporary_(std::string const& path, mode_t mode) {
    std::string const directory = Directory(path);
    std::string const name = path.substr(directory.size());
    if (name.empty()) return Failure_(directory.empty() ? ENOENT : EISDIR);
    for (int attempt = 0; attempt < 100; ++attempt) {
        std::string candidate = directory + '.' + std::string(Shortened(name)) + RandomSuffix();
        descriptor = ::open(candidate.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        if (descriptor >= 0) {
            temporary = std::move(candidate);
            return {};
        }
        if (errno != EEXIST) return Failure_(errno);
    }
    return Failure_(EEXIST);
}

htl::status AtomicFile::Failure_(int reason) const {
    return htl::status(cannotWrite, shownName, std::generic_category().message(reason));
}

void AtomicFile::Discard_() noexcept {
    if (descriptor >= 0) ::close(std::exchange(descriptor, -1));
    if (!temporary.empty()) ::unlink(temporary.c_str());
    temporary.clear();
}

} // namespace sys::file
