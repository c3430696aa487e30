# What every target of this project is compiled with.
function(zo_compile_options target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wnon-virtual-dtor -Woverloaded-virtual
                                             -Wconversion -Wno-sign-conversion
                                             # -Wrestrict misfires on std::string in g++ 12 (its bug 105329).
                                             $<$<CXX_COMPILER_ID:GNU>:-Wshadow=local -Wno-restrict>)
    if(ZO_WARNINGS_AS_ERRORS)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
    if(ZO_SANITIZE)
        target_compile_options(${target} PRIVATE -fsanitize=${ZO_SANITIZE} -fno-sanitize-recover=all
                                                 -fno-omit-frame-pointer -g1)
        target_link_options(${target} PRIVATE -fsanitize=${ZO_SANITIZE})
    endif()
    if(ZO_COVERAGE)
        target_compile_options(${target} PRIVATE -fprofile-instr-generate -fcoverage-mapping)
        target_link_options(${target} PRIVATE -fprofile-instr-generate)
    endif()
endfunction()

# A GoogleTest binary: zo_test(name sources...). It links the shared library, as an application does.
function(zo_test name)
    add_executable(${name} ${ARGN})
    zo_compile_options(${name})
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
    target_link_libraries(${name} PRIVATE zo::zo GTest::gtest GTest::gtest_main)
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES TIMEOUT 600)
endfunction()

# The same, linked against the library's objects, for code that the shared library hides.
function(zo_internal_test name)
    add_executable(${name} ${ARGN})
    zo_compile_options(${name})
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR})
    target_link_libraries(${name} PRIVATE zo_internal GTest::gtest GTest::gtest_main)
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES TIMEOUT 600)
endfunction()
