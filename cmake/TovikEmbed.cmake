# Texts that a program carries inside itself, so that it works wherever it is copied to.

# tovik_embed_dashboard(OUTPUT FILE...): makes a C++ source with the function dashboardFiles() of
# tools/service/control/dashboard.h, whenever one of the files has changed.
function(tovik_embed_dashboard output)
  add_custom_command(OUTPUT ${output}
    COMMAND ${CMAKE_COMMAND} "-DOUTPUT=${output}" "-DFILES=${ARGN}"
            -P ${PROJECT_SOURCE_DIR}/cmake/embed_texts.cmake
    DEPENDS ${ARGN} ${PROJECT_SOURCE_DIR}/cmake/embed_texts.cmake
    COMMENT "Embedding the dashboard"
    VERBATIM)
endfunction()
