# Copies the public headers, and every header of ours that one of them includes, with their folders:
#
#     cmake -DSOURCE=repository -DDESTINATION=folder -P packaging/headers.cmake
#
# Installing runs it, too. What is needed is found when it runs, so that an include added since the last configuration
# is not missed.
cmake_minimum_required(VERSION 3.23)

file(STRINGS ${SOURCE}/packaging/public-headers.txt pending)
set(headers)
while(pending)
    list(POP_FRONT pending header)
    list(APPEND headers ${header})
    file(STRINGS ${SOURCE}/${header} lines REGEX "^[ \t]*#[ \t]*include")
    foreach(line IN LISTS lines)
        if(NOT line MATCHES "include[ \t]*([<\"])([^>\"]+)[>\"]")
            message(FATAL_ERROR "${header}: can't read this include: ${line}")
        endif()
        set(bracket "${CMAKE_MATCH_1}")
        set(name "${CMAKE_MATCH_2}")
        if(EXISTS ${SOURCE}/${name})
            set(included ${name})
        elseif(EXISTS ${SOURCE}/Common/${name})
            set(included Common/${name})
        elseif(bracket STREQUAL "\"")
            message(FATAL_ERROR "${header} includes \"${name}\", which is not there")
        else() # the standard library
            continue()
        endif()
        if(NOT included IN_LIST headers AND NOT included IN_LIST pending)
            list(APPEND pending ${included})
        endif()
    endforeach()
endwhile()

foreach(header IN LISTS headers)
    get_filename_component(folder ${header} DIRECTORY)
    file(INSTALL DESTINATION ${DESTINATION}/${folder} TYPE FILE FILES ${SOURCE}/${header})
endforeach()
