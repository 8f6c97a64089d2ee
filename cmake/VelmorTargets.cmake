# Folders of the source tree as targets that see only the folders they are allowed to see.
#
# Every folder gets an include directory of its own in the build tree with nothing but a link to that
# folder, so that "Linux/..." compiles only in a target that depends on velmor_linux. System headers lie
# in directories that every compiler searches; those are checked by CheckIncludes.cmake before a target
# is built.

# velmor_target(NAME FOLDER [PORTABLE] [KIND STATIC|INTERFACE|EXECUTABLE] [SOURCES ...]
#               [USES targets...] [SYSTEM_HEADERS regex...])
# FOLDER is relative to src/; without SOURCES a library has all those below it. A PORTABLE target includes
# of the system's headers only those of the C++ standard library and those that match one of the expressions.
function(velmor_target name folder)
    cmake_parse_arguments(PARSE_ARGV 2 arg "PORTABLE" "KIND" "SOURCES;USES;SYSTEM_HEADERS")
    set(root ${CMAKE_BINARY_DIR}/include/${name})
    if(NOT arg_KIND STREQUAL EXECUTABLE)
        cmake_path(GET folder PARENT_PATH parent)
        file(MAKE_DIRECTORY ${root}/${parent})
        file(CREATE_LINK ${CMAKE_SOURCE_DIR}/src/${folder} ${root}/${folder} SYMBOLIC)
    endif()

    set(scope PUBLIC)
    if(arg_KIND STREQUAL INTERFACE)
        add_library(${name} INTERFACE)
        set(scope INTERFACE)
    elseif(arg_KIND STREQUAL EXECUTABLE)
        add_executable(${name} ${arg_SOURCES})
    else()
        if(NOT arg_SOURCES)
            file(GLOB_RECURSE arg_SOURCES CONFIGURE_DEPENDS
                ${CMAKE_SOURCE_DIR}/src/${folder}/*.cpp)
        endif()
        add_library(${name} STATIC ${arg_SOURCES})
    endif()
    target_include_directories(${name} ${scope} ${root})
    target_link_libraries(${name} ${scope} ${arg_USES})

    add_custom_target(${name}_includes
        COMMAND ${CMAKE_COMMAND} -DFOLDER=${CMAKE_SOURCE_DIR}/src/${folder}
                "-DALLOWED=${arg_SYSTEM_HEADERS}" -DPORTABLE=${arg_PORTABLE}
                -P ${CMAKE_SOURCE_DIR}/cmake/CheckIncludes.cmake
        VERBATIM)
    add_dependencies(${name} ${name}_includes)
endfunction()
