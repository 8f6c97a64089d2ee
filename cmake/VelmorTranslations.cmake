# String tables: from what translators edit to what is built into the program.
find_program(LCONVERT lconvert REQUIRED HINTS ${QT6_INSTALL_PREFIX}/${QT6_INSTALL_BINS})

# velmor_translations(TARGET LANGUAGE...): builds resources/translations/LANGUAGE.po into the target, as
# the resource :/translations/LANGUAGE.qm.
function(velmor_translations target)
    set(tables "")
    foreach(language IN LISTS ARGN)
        set(source ${CMAKE_SOURCE_DIR}/resources/translations/${language}.po)
        set(table ${CMAKE_CURRENT_BINARY_DIR}/${language}.qm)
        add_custom_command(OUTPUT ${table}
            COMMAND ${LCONVERT} -if po -i ${source} -of qm -o ${table} -target-language ${language}
            DEPENDS ${source}
            VERBATIM)
        list(APPEND tables ${table})
    endforeach()
    qt_add_resources(${target} translations PREFIX /translations BASE ${CMAKE_CURRENT_BINARY_DIR}
        FILES ${tables})
endfunction()
