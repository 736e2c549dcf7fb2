# Embedded resources: every file of a folder whose name starts with its
# number ("187_description.css") becomes a BINARY resource of that number,
# compiled into the program as a byte array. The generated source defines
# one function, named by the caller, that registers them all with
# RegisterResource (foundation/file.h); the layer that owns the folder calls
# it once before its first lookup. A function rather than a static
# constructor, because the linker drops unreferenced objects of a static
# library, and with them any registration they would make.
#
# Pictures are kept as SVG drawings. A numbered ".svg" file is rendered by
# rsvg-convert into the build tree at the pixel size its root element gives
# (its width and height), and the PNG is embedded in its place. The text
# "@MELKORA_VERSION@" in a drawing becomes the program's version.
#
#   melkora_embed_resources(TARGET melkora_pages FOLDER pages/resources
#                           FUNCTION RegisterPagesResources)
#
# Optional arguments:
#   SCALED <subfolder> SIZES <n>...
#       every numbered SVG of FOLDER/<subfolder> is embedded at its own size
#       as BINARY, and once more at each n by n under the type "BINARY<n>"
#       (toolbar pictures: 32 as BINARY, 24 as "BINARY24", 16 as "BINARY16").
#   RENDER <number> <svg path from the source root> <side>...
#       a numbered BINARY resource rendered from a drawing kept elsewhere at
#       side by side pixels (the window icons, from the program icon).

set(MELKORA_EMBED_SCRIPT ${CMAKE_CURRENT_LIST_DIR}/EmbedResourcesScript.cmake)
set(MELKORA_RENDER_SCRIPT ${CMAKE_CURRENT_LIST_DIR}/RenderSvgScript.cmake)
if(NOT DEFINED MELKORA_VERSION)
    set(MELKORA_VERSION "1.0.3.0")
endif()

# Adds the rule that renders svg to png; side 0 keeps the drawing's own size.
function(melkora_render_svg svg png side)
    if(NOT RSVG_CONVERT)
        find_program(RSVG_CONVERT rsvg-convert)
        if(NOT RSVG_CONVERT)
            message(FATAL_ERROR "rsvg-convert (Debian package librsvg2-bin) renders the "
                                "program's pictures: run scripts/install-deps.sh")
        endif()
    endif()
    get_filename_component(name ${png} NAME)
    add_custom_command(
        OUTPUT ${png}
        COMMAND ${CMAKE_COMMAND} -DRSVG=${RSVG_CONVERT} -DSVG=${svg} -DPNG=${png}
                -DSIDE=${side} -DVERSION=${MELKORA_VERSION} -P ${MELKORA_RENDER_SCRIPT}
        DEPENDS ${svg} ${MELKORA_RENDER_SCRIPT}
        COMMENT "Rendering ${name}"
        VERBATIM)
endfunction()

function(melkora_embed_resources)
    cmake_parse_arguments(ARG "" "TARGET;FOLDER;FUNCTION;SCALED" "SIZES;RENDER" ${ARGN})
    if(NOT TARGET ${ARG_TARGET})
        return()
    endif()
    set(rendered ${CMAKE_BINARY_DIR}/resources/${ARG_FUNCTION})
    # Entries of the embedding script: a path, or "<type>|<path>".
    set(entries "")
    set(inputs "")
    file(GLOB files CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${ARG_FOLDER}/[0-9]*)
    foreach(file ${files})
        get_filename_component(name ${file} NAME_WE)
        get_filename_component(extension ${file} LAST_EXT)
        if(extension STREQUAL ".svg")
            melkora_render_svg(${file} ${rendered}/${name}.png 0)
            list(APPEND entries ${rendered}/${name}.png)
            list(APPEND inputs ${rendered}/${name}.png)
        else()
            list(APPEND entries ${file})
            list(APPEND inputs ${file})
        endif()
    endforeach()
    if(ARG_SCALED)
        file(GLOB scaled CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/${ARG_FOLDER}/${ARG_SCALED}/[0-9]*.svg)
        foreach(file ${scaled})
            get_filename_component(name ${file} NAME_WE)
            melkora_render_svg(${file} ${rendered}/${name}.png 0)
            list(APPEND entries ${rendered}/${name}.png)
            list(APPEND inputs ${rendered}/${name}.png)
            foreach(side ${ARG_SIZES})
                melkora_render_svg(${file} ${rendered}/${side}/${name}.png ${side})
                list(APPEND entries "BINARY${side}|${rendered}/${side}/${name}.png")
                list(APPEND inputs ${rendered}/${side}/${name}.png)
            endforeach()
        endforeach()
    endif()
    set(render ${ARG_RENDER})
    list(LENGTH render count)
    while(count GREATER_EQUAL 3)
        list(POP_FRONT render number svg side)
        get_filename_component(name ${svg} NAME_WE)
        set(png ${rendered}/${number}_${name}_${side}.png)
        melkora_render_svg(${CMAKE_SOURCE_DIR}/${svg} ${png} ${side})
        list(APPEND entries ${png})
        list(APPEND inputs ${png})
        list(LENGTH render count)
    endwhile()
    set(output ${CMAKE_BINARY_DIR}/generated/${ARG_FUNCTION}.cpp)
    add_custom_command(
        OUTPUT ${output}
        COMMAND ${CMAKE_COMMAND} -DOUTPUT=${output} -DFUNCTION=${ARG_FUNCTION}
                "-DFILES=${entries}" -P ${MELKORA_EMBED_SCRIPT}
        DEPENDS ${inputs} ${MELKORA_EMBED_SCRIPT}
        COMMENT "Embedding the resources of ${ARG_FOLDER}"
        VERBATIM)
    target_sources(${ARG_TARGET} PRIVATE ${output})
endfunction()

# The program icon for the desktop: the drawing rendered at each hicolor
# size into <build>/icons/hicolor/<n>x<n>/apps/<name>.png, with the drawing
# itself as the scalable one, and installed under share/icons. The target
# <name>_icons builds them with the program.
function(melkora_program_icon)
    cmake_parse_arguments(ARG "" "NAME;SVG;SMALL_SVG" "SIZES;SMALL_SIZES" ${ARGN})
    set(outputs "")
    foreach(side ${ARG_SIZES})
        set(svg ${CMAKE_SOURCE_DIR}/${ARG_SVG})
        if(ARG_SMALL_SVG AND side IN_LIST ARG_SMALL_SIZES)
            set(svg ${CMAKE_SOURCE_DIR}/${ARG_SMALL_SVG})
        endif()
        set(png ${CMAKE_BINARY_DIR}/icons/hicolor/${side}x${side}/apps/${ARG_NAME}.png)
        melkora_render_svg(${svg} ${png} ${side})
        list(APPEND outputs ${png})
        install(FILES ${png} DESTINATION share/icons/hicolor/${side}x${side}/apps)
    endforeach()
    install(FILES ${CMAKE_SOURCE_DIR}/${ARG_SVG} DESTINATION share/icons/hicolor/scalable/apps
            RENAME ${ARG_NAME}.svg)
    add_custom_target(${ARG_NAME}_icons ALL DEPENDS ${outputs})
endfunction()
