# What `cmake --install` gives: the library, its headers, a CMake package and a pkg-config file. All of it can be moved.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# Headers keep their folders, and the two ways in which an include may begin.
set(zo_include ${CMAKE_INSTALL_INCLUDEDIR}/zo)
target_include_directories(zo INTERFACE $<INSTALL_INTERFACE:${zo_include}> $<INSTALL_INTERFACE:${zo_include}/Common>)
install(CODE "
    set(destination \"${zo_include}\")
    if(NOT IS_ABSOLUTE \"\${destination}\")
        set(destination \"\${CMAKE_INSTALL_PREFIX}/\${destination}\")
    endif()
    set(SOURCE \"${PROJECT_SOURCE_DIR}\")
    set(DESTINATION \"\${destination}\")
    include(\"${PROJECT_SOURCE_DIR}/packaging/headers.cmake\")"
    COMPONENT zo_development)

install(TARGETS zo EXPORT zo-targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT zo_runtime NAMELINK_COMPONENT zo_development)

set(zo_package ${CMAKE_INSTALL_LIBDIR}/cmake/zo)
install(EXPORT zo-targets NAMESPACE zo:: DESTINATION ${zo_package} COMPONENT zo_development)
configure_package_config_file(${PROJECT_SOURCE_DIR}/packaging/zo-config.cmake.in
                              ${PROJECT_BINARY_DIR}/packaging/zo-config.cmake INSTALL_DESTINATION ${zo_package}
                              NO_SET_AND_CHECK_MACRO NO_CHECK_REQUIRED_COMPONENTS_MACRO)
# Before 1.0, a minor version may take things away.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/packaging/zo-config-version.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/packaging/zo-config.cmake ${PROJECT_BINARY_DIR}/packaging/zo-config-version.cmake
        DESTINATION ${zo_package} COMPONENT zo_development)

# Folders relative to the one that holds the pkg-config file, whatever the folders of the installation are.
set(zo_pkgconfig ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH zo_pc_prefix ${zo_pkgconfig} ${CMAKE_INSTALL_PREFIX})
file(RELATIVE_PATH zo_pc_include ${zo_pkgconfig} ${CMAKE_INSTALL_FULL_INCLUDEDIR}/zo)
string(REGEX REPLACE "/$" "" zo_pc_prefix "${zo_pc_prefix}")
configure_file(${PROJECT_SOURCE_DIR}/packaging/zo.pc.in ${PROJECT_BINARY_DIR}/packaging/zo.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/packaging/zo.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
        COMPONENT zo_development)
