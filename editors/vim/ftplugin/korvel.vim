" Korvel: comments, blocks that % jumps between, kv as the compiler, and in Neovim the language server.
if exists('b:did_ftplugin')
  finish
endif
let b:did_ftplugin = 1

setlocal comments=:; commentstring=;\ %s formatoptions-=t
setlocal shiftwidth=4 softtabstop=4 expandtab suffixesadd=.kvl
let &l:include = '\c^\s*Include\s*"\zs[^"]*'
let b:match_ignorecase = 1
let b:match_words = '\<If\>:\<Else\%(If\)\=\>:\<EndIf\>,\<For\>:\<Next\>,\<While\>:\<Wend\>,\<Select\>:\<Case\>:\<EndSelect\>,'
      \ . '\<Function\>:\<EndFunction\>,\<Method\>:\<EndMethod\>,\<Type\>:\<EndType\>'
compiler kv
let b:undo_ftplugin = 'setlocal comments< commentstring< formatoptions< shiftwidth< softtabstop< expandtab< suffixesadd<'
      \ . ' include< makeprg< errorformat<'

if has('nvim-0.7') && get(g:, 'korvel_lsp', 1) && executable('kv')
  lua require('korvel')()
  command! -buffer KorvelCpp lua require('korvel_cpp')()
  let b:undo_ftplugin .= ' | silent! delcommand -buffer KorvelCpp'
endif
