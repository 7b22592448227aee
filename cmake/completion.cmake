# cmake -DKV=... -DSHELL=... -DOUTPUT=... -P completion.cmake
get_filename_component(folder ${OUTPUT} DIRECTORY)
file(MAKE_DIRECTORY ${folder})
execute_process(COMMAND ${KV} completion ${SHELL} OUTPUT_FILE ${OUTPUT} RESULT_VARIABLE status)
if(NOT status EQUAL 0)
    file(REMOVE ${OUTPUT})
    message(FATAL_ERROR "kv completion ${SHELL} has failed")
endif()
