# Turns the files of texts/ into string constants (see texts.h): texts/class_leaving.h becomes
# `classLeaving`. Included by the build it adds one generated source per run; run as a script
# (cmake -DOUT=... -P embed.cmake) it writes that source. The files reach the program byte for byte.
set(PRELUDE_TEXTS_DIR ${CMAKE_CURRENT_LIST_DIR}/texts)

if(NOT CMAKE_SCRIPT_MODE_FILE)
    file(GLOB_RECURSE texts CONFIGURE_DEPENDS ${PRELUDE_TEXTS_DIR}/*.h ${PRELUDE_TEXTS_DIR}/*.inc)
    set(PRELUDE_GENERATED_SOURCES ${CMAKE_BINARY_DIR}/generated/prelude_texts.cpp)
    add_custom_command(OUTPUT ${PRELUDE_GENERATED_SOURCES}
        COMMAND ${CMAKE_COMMAND} -DOUT=${PRELUDE_GENERATED_SOURCES} -P ${CMAKE_CURRENT_LIST_FILE}
        DEPENDS ${texts} ${CMAKE_CURRENT_LIST_FILE} COMMENT "Embedding the prelude texts")
    return()
endif()

# "class_leaving" -> "classLeaving"
function(constant_name file result)
    get_filename_component(name ${file} NAME_WE)
    string(REPLACE "_" ";" words ${name})
    list(POP_FRONT words text)
    foreach(word ${words})
        string(SUBSTRING ${word} 0 1 first)
        string(SUBSTRING ${word} 1 -1 rest)
        string(TOUPPER ${first} first)
        string(APPEND text ${first}${rest})
    endforeach()
    set(${result} ${text} PARENT_SCOPE)
endfunction()

file(GLOB_RECURSE texts ${PRELUDE_TEXTS_DIR}/*.h)
list(SORT texts)
set(source "#include \"prelude/texts.h\"\n\nnamespace texts {\n")
foreach(file ${texts})
    constant_name(${file} name)
    file(READ ${file} text)
    # What several texts share stands in a file of its own.
    string(REGEX MATCHALL "#include \"prelude/texts/[a-z_]+\\.inc\"\n" shared "${text}")
    foreach(line ${shared})
        string(REGEX MATCH "[a-z_]+\\.inc" part "${line}")
        file(READ ${PRELUDE_TEXTS_DIR}/${part} lines)
        string(REPLACE "${line}" "${lines}" text "${text}")
    endforeach()
    string(REPLACE "\\" "\\\\" text "${text}")
    string(REPLACE "\"" "\\\"" text "${text}")
    string(REPLACE "\t" "\\t" text "${text}")
    # One literal per line: some compilers cap the length of a single one.
    string(REPLACE "\n" "\\n\"\n    \"" text "${text}")
    string(APPEND source "\nconst std::string_view ${name} =\n    \"${text}\";\n")
endforeach()
string(APPEND source "\n}  // namespace texts\n")
file(WRITE ${OUT} "${source}")
