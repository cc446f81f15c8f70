enable_language(RC)
set(CMAKE_RC_FLAGS "-c 65001")

# A library of the resources of a Windows FILE: those that `included` has, which stands upon the
# files named last, and what the system shows of the file's version.
function(imgbasic_resources target RC_TYPE RC_FILE RC_DESCRIPTION included)
    cmake_path(GET RC_FILE STEM RC_NAME)
    set(RC_INCLUDED ${CMAKE_CURRENT_SOURCE_DIR}/${included})
    set(rc ${CMAKE_CURRENT_BINARY_DIR}/${RC_NAME}.rc)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/resources.rc.in ${rc} @ONLY)
    list(TRANSFORM ARGN PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
    set_source_files_properties(${rc} PROPERTIES OBJECT_DEPENDS "${RC_INCLUDED};${ARGN}")
    add_library(${target} OBJECT ${rc})
    target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
endfunction()
