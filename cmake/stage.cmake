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

file(GLOB_RECURSE STAGE_INPUTS CONFIGURE_DEPENDS config/* include/* lib/* userlibs/* docs/manual/*.md docs/manual/*.svg docs/manual/*.png
    examples/*.kvl examples/*.in examples/expected/*)
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

# Files for editors, with the words of the language in them; the package for VS Code where its tools are there.
set(WORD_TABLES ${PROJECT_SOURCE_DIR}/cmake/editors.cmake ${PROJECT_SOURCE_DIR}/src/base/keywords.inc
    ${PROJECT_SOURCE_DIR}/src/lsp/snippets.inc ${PROJECT_SOURCE_DIR}/config/keywords.txt)
function(fill_words_into outputs folder target)
    file(GLOB_RECURSE templates CONFIGURE_DEPENDS RELATIVE ${folder} ${folder}/*)
    foreach(name ${templates})
        add_custom_command(OUTPUT ${target}/${name} DEPENDS ${folder}/${name} ${WORD_TABLES}
            COMMAND ${CMAKE_COMMAND} -DSOURCE=${PROJECT_SOURCE_DIR} -DTEMPLATE=${folder}/${name}
            -DOUTPUT=${target}/${name} -P ${PROJECT_SOURCE_DIR}/cmake/editors.cmake VERBATIM)
        list(APPEND made ${target}/${name})
    endforeach()
    set(${outputs} ${made} PARENT_SCOPE)
endfunction()
fill_words_into(VIM_FILES ${PROJECT_SOURCE_DIR}/editors/vim ${STAGE}/editors/vim)
fill_words_into(CODE_FILES ${PROJECT_SOURCE_DIR}/editors/vscode ${CMAKE_BINARY_DIR}/vscode)
list(APPEND STAGE_OUTPUTS ${VIM_FILES} ${CODE_FILES})
if(EXISTS ${PROJECT_SOURCE_DIR}/out/npm/installed.json)
    add_custom_command(OUTPUT ${STAGE}/editors/korvel.vsix DEPENDS ${CODE_FILES} ${PROJECT_SOURCE_DIR}/editors/pack-vscode
        COMMAND ${PROJECT_SOURCE_DIR}/editors/pack-vscode ${CMAKE_BINARY_DIR}/vscode ${STAGE}/editors/korvel.vsix VERBATIM)
    list(APPEND STAGE_OUTPUTS ${STAGE}/editors/korvel.vsix)
else()
    message(STATUS "The package for VS Code is left out (scripts/npm-packages installs what it takes)")
endif()

add_custom_target(stage ALL DEPENDS ${STAGE_OUTPUTS})
# The manual as HTML, in out/PRESET/manual; needs pandoc.
add_custom_target(manual COMMAND ${PROJECT_SOURCE_DIR}/docs/manual/build ${CMAKE_BINARY_DIR}/manual VERBATIM)
file(MAKE_DIRECTORY ${STAGE}/config ${STAGE}/include ${STAGE}/lib ${STAGE}/userlibs)

install(TARGETS ${KORVEL_PROGRAMS} RUNTIME DESTINATION bin)
foreach(folder config docs editors examples include lib share userlibs)
    install(DIRECTORY ${STAGE}/${folder} DESTINATION .)
endforeach()
