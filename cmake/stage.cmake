# The installation: what every build stages in out/PRESET/stage and `cmake --install` copies.

set(STAGE_OUTPUTS)

# Has a file of the repository in the stage under the name.
function(stage_as input name)
    add_custom_command(OUTPUT ${STAGE}/${name} DEPENDS ${input}
        COMMAND ${CMAKE_COMMAND} -E copy ${input} ${STAGE}/${name} VERBATIM)
    set(STAGE_OUTPUTS ${STAGE_OUTPUTS} ${STAGE}/${name} PARENT_SCOPE)
endfunction()

# Has what `kv completion SHELL` says in the stage under the name.
function(stage_completion shell name)
    add_custom_command(OUTPUT ${STAGE}/${name} DEPENDS kv
        COMMAND ${CMAKE_COMMAND} -DKV=$<TARGET_FILE:kv> -DSHELL=${shell} -DOUTPUT=${STAGE}/${name}
        -P ${PROJECT_SOURCE_DIR}/cmake/completion.cmake VERBATIM)
    set(STAGE_OUTPUTS ${STAGE_OUTPUTS} ${STAGE}/${name} PARENT_SCOPE)
endfunction()

file(GLOB_RECURSE STAGE_INPUTS CONFIGURE_DEPENDS config/* include/* lib/* userlibs/* docs/manual/*.md examples/*.kvl
    examples/*.in examples/expected/*)
foreach(input ${STAGE_INPUTS})
    if(NOT input MATCHES "/\\.kvbuild/")
        file(RELATIVE_PATH name ${PROJECT_SOURCE_DIR} ${input})
        stage_as(${input} ${name})
    endif()
endforeach()
foreach(name LICENSE CHANGELOG.md docs/kv.md docs/fast.md)
    get_filename_component(file ${name} NAME)
    stage_as(${PROJECT_SOURCE_DIR}/${name} docs/${file})
endforeach()
foreach(program ${KORVEL_PROGRAMS})
    stage_as(${PROJECT_SOURCE_DIR}/docs/man/${program}.1 share/man/man1/${program}.1)
endforeach()
if(TARGET kv AND NOT CMAKE_CROSSCOMPILING)
    stage_completion(bash share/bash-completion/completions/kv)
    stage_completion(zsh share/zsh/site-functions/_kv)
    stage_completion(fish share/fish/vendor_completions.d/kv.fish)
endif()
add_custom_target(stage ALL DEPENDS ${STAGE_OUTPUTS})
# The manual as HTML, in out/PRESET/manual; needs pandoc.
add_custom_target(manual COMMAND ${PROJECT_SOURCE_DIR}/docs/manual/build ${CMAKE_BINARY_DIR}/manual VERBATIM)
file(MAKE_DIRECTORY ${STAGE}/config ${STAGE}/include ${STAGE}/lib ${STAGE}/userlibs)

install(TARGETS ${KORVEL_PROGRAMS} RUNTIME DESTINATION bin)
foreach(folder config docs examples include lib share userlibs)
    install(DIRECTORY ${STAGE}/${folder} DESTINATION .)
endforeach()
