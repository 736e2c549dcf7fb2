# Run with cmake -P: writes OUTPUT, a C++ source holding each of FILES as a
# byte array and a function FUNCTION that registers them as BINARY resources
# under the number their name starts with.
set(body "// Generated from the resource folder at build time; do not edit.\n")
string(APPEND body "#include \"foundation/file.h\"\n\nnamespace {\n")
set(calls "")
set(index 0)
foreach(file ${FILES})
    get_filename_component(name ${file} NAME)
    string(REGEX MATCH "^[0-9]+" number ${name})
    if(number STREQUAL "")
        continue()
    endif()
    file(READ ${file} hex HEX)
    string(LENGTH "${hex}" hexLength)
    math(EXPR size "${hexLength} / 2")
    string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${hex}")
    # One line per 24 bytes keeps the generated source readable.
    string(REGEX REPLACE "((0x[0-9a-f][0-9a-f],){24})" "\\1\n    " bytes "${bytes}")
    # A zero byte at the end, so an empty file still makes a valid array.
    string(APPEND body "// ${name}\nconst unsigned char resource${index}[] = {\n    ${bytes}0x00};\n")
    string(APPEND calls "    RegisterResource(\"BINARY\", ${number}, resource${index}, ${size});\n")
    math(EXPR index "${index} + 1")
endforeach()
string(APPEND body "\n} // namespace\n\nvoid ${FUNCTION}() {\n${calls}}\n")
file(WRITE ${OUTPUT}.new "${body}")
file(COPY_FILE ${OUTPUT}.new ${OUTPUT} ONLY_IF_DIFFERENT)
file(REMOVE ${OUTPUT}.new)
