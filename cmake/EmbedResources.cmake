# Embedded resources: every file of a folder whose name starts with its
# number ("187_description.css") becomes a BINARY resource of that number,
# compiled into the program as a byte array. The generated source defines
# one function, named by the caller, that registers them all with
# RegisterResource (foundation/file.h); the layer that owns the folder calls
# it once before its first lookup. A function rather than a static
# constructor, because the linker drops unreferenced objects of a static
# library, and with them any registration they would make.
#
#   melkora_embed_resources(TARGET melkora_pages FOLDER pages/resources
#                           FUNCTION RegisterPagesResources)

set(MELKORA_EMBED_SCRIPT ${CMAKE_CURRENT_LIST_DIR}/EmbedResourcesScript.cmake)

function(melkora_embed_resources)
    cmake_parse_arguments(ARG "" "TARGET;FOLDER;FUNCTION" "" ${ARGN})
    if(NOT TARGET ${ARG_TARGET})
        return()
    endif()
    file(GLOB files CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${ARG_FOLDER}/[0-9]*)
    set(output ${CMAKE_BINARY_DIR}/generated/${ARG_FUNCTION}.cpp)
    add_custom_command(
        OUTPUT ${output}
        COMMAND ${CMAKE_COMMAND} -DOUTPUT=${output} -DFUNCTION=${ARG_FUNCTION}
                "-DFILES=${files}" -P ${MELKORA_EMBED_SCRIPT}
        DEPENDS ${files} ${MELKORA_EMBED_SCRIPT}
        COMMENT "Embedding the resources of ${ARG_FOLDER}"
        VERBATIM)
    target_sources(${ARG_TARGET} PRIVATE ${output})
endfunction()
