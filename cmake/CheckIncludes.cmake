# Refuses includes that would tie a folder to what it must not know.
#   FOLDER    the folder to look at
#   PORTABLE  true: of the system headers only the C++ standard library's and those in ALLOWED
#   ALLOWED   regular expressions for further headers
# Relative paths upwards are refused everywhere: they would walk around the include directories.
file(GLOB_RECURSE files ${FOLDER}/*.h ${FOLDER}/*.cpp)
set(wrong "")
foreach(file IN LISTS files)
    file(STRINGS ${file} lines REGEX "^[ \t]*#[ \t]*include")
    foreach(line IN LISTS lines)
        if(line MATCHES "\"\\.\\./")
            string(APPEND wrong "${file}: ${line}\n")
        elseif(PORTABLE AND line MATCHES "<([^>]*)>")
            set(header ${CMAKE_MATCH_1})
            set(good FALSE)
            foreach(expression IN ITEMS "^[a-z_]+$" LISTS ALLOWED)
                if(header MATCHES "${expression}")
                    set(good TRUE)
                endif()
            endforeach()
            if(NOT good)
                string(APPEND wrong "${file}: ${line}\n")
            endif()
        endif()
    endforeach()
endforeach()
if(wrong)
    message(FATAL_ERROR "Includes that this folder may not have:\n${wrong}")
endif()
