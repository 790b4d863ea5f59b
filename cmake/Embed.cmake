# sdc_embed(target function file...): files that become part of a program.
#
# Adds to the target a source that defines `std::span<const embedded::Text> embedded::function()`, one text per file in the
# order given, named as the file without its folder and extension. Declare the function where it is used.
function(sdc_embed target function)
    set(source ${CMAKE_CURRENT_BINARY_DIR}/${function}.cpp)
    add_custom_command(OUTPUT ${source}
        COMMAND ${CMAKE_COMMAND} -DFUNCTION=${function} -DOUTPUT=${source} "-DFILES=${ARGN}"
            -P ${PROJECT_SOURCE_DIR}/cmake/EmbedTexts.cmake
        DEPENDS ${ARGN} ${PROJECT_SOURCE_DIR}/cmake/EmbedTexts.cmake
        VERBATIM)
    target_sources(${target} PRIVATE ${source})
endfunction()
