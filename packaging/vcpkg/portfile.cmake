# An overlay port that builds the tree it lies in:
#
#     vcpkg install zo --overlay-ports=packaging/vcpkg
get_filename_component(SOURCE_PATH "${CMAKE_CURRENT_LIST_DIR}/../.." ABSOLUTE)

# There is one process-wide default registry, so a program holds the library once.
vcpkg_check_linkage(ONLY_DYNAMIC_LIBRARY)

vcpkg_cmake_configure(
    SOURCE_PATH "${SOURCE_PATH}"
    OPTIONS -DZO_BUILD_TESTS=OFF -DZO_BUILD_EXAMPLES=OFF -DZO_BUILD_BENCH=OFF -DZO_INSTALL=ON
)
vcpkg_cmake_install()
vcpkg_cmake_config_fixup(PACKAGE_NAME zo CONFIG_PATH lib/cmake/zo)
vcpkg_fixup_pkgconfig()
file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}/debug/include")

file(INSTALL "${CMAKE_CURRENT_LIST_DIR}/usage" DESTINATION "${CURRENT_PACKAGES_DIR}/share/${PORT}")
# The tree has no file with terms to install.
set(VCPKG_POLICY_SKIP_COPYRIGHT_CHECK enabled)
