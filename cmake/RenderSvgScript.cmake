# Run with cmake -P: renders the drawing SVG to the PNG file PNG with the
# program RSVG (rsvg-convert). SIDE 0 keeps the drawing's own width and
# height; any other SIDE renders SIDE by SIDE pixels. "@MELKORA_VERSION@"
# in the drawing becomes VERSION first.
file(READ ${SVG} text)
string(REPLACE "@MELKORA_VERSION@" "${VERSION}" text "${text}")
get_filename_component(folder ${PNG} DIRECTORY)
file(MAKE_DIRECTORY ${folder})
set(source ${PNG}.svg)
file(WRITE ${source} "${text}")
set(size "")
if(NOT SIDE EQUAL 0)
    set(size -w ${SIDE} -h ${SIDE})
endif()
execute_process(COMMAND ${RSVG} ${size} -o ${PNG}.new ${source}
                RESULT_VARIABLE result ERROR_VARIABLE error)
file(REMOVE ${source})
if(NOT result EQUAL 0)
    file(REMOVE ${PNG}.new)
    message(FATAL_ERROR "Rendering ${SVG} failed: ${error}")
endif()
file(RENAME ${PNG}.new ${PNG})
