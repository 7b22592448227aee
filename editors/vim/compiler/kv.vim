" kv check, whose mistakes :make collects.
if exists('current_compiler')
  finish
endif
let current_compiler = 'kv'

CompilerSet makeprg=kv\ check\ --message-format\ short\ %:S
CompilerSet errorformat=%f:%l:%c:\ %trror:\ %m,%f:%l:%c:\ %tarning:\ %m,%f:%l:%c:\ %tote:\ %m,%f:%l:\ %trror:\ %m,%f:%l:\ %tarning:\ %m,%f:%l:\ %tote:\ %m
