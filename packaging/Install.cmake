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
                              NO_SET_AND_CHECK_MACRO)
# Before 1.0, a minor version may take things away.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/packaging/zo-config-version.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/packaging/zo-config.cmake ${PROJECT_BINARY_DIR}/packaging/zo-config-version.cmake
        DESTINATION ${zo_package} COMPONENT zo_development)

# The prefix is found from where the pkg-config file lies, and all else from the prefix, as package managers expect that
# exchange it. A folder that was given as an absolute one stays where it is.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
    set(zo_pc_prefix ${CMAKE_INSTALL_PREFIX})
else()
    file(RELATIVE_PATH zo_pc_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
    string(REGEX REPLACE "/$" "" zo_pc_prefix "\${pcfiledir}/${zo_pc_prefix}")
endif()
set(zo_pc_lib "\${prefix}")
set(zo_pc_include "\${prefix}")
cmake_path(APPEND zo_pc_lib ${CMAKE_INSTALL_LIBDIR})
cmake_path(APPEND zo_pc_include ${CMAKE_INSTALL_INCLUDEDIR} zo)
configure_file(${PROJECT_SOURCE_DIR}/packaging/zo.pc.in ${PROJECT_BINARY_DIR}/packaging/zo.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/packaging/zo.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
        COMPONENT zo_development)
