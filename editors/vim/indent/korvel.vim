" Korvel, as kv fmt indents it.
if exists('b:did_indent')
  finish
endif
let b:did_indent = 1
setlocal indentexpr=KorvelIndent(v:lnum)
" The line is indented again when one of these words is complete.
let &l:indentkeys = '!^F,o,O,=~' . substitute('@CLOSERS@|EndInlineCpp|@DIVIDERS@', '|', ',=~', 'g')
let b:undo_indent = 'setlocal indentexpr< indentkeys<'
if exists('*KorvelIndent')
  finish
endif

let s:opens = '^\s*\%(@OPENERS@|InlineCpp\)\>'
let s:closes = '^\s*\%(@CLOSERS@|EndInlineCpp\)\>'
let s:opens = substitute(s:opens, '|', '\\|', 'g')
let s:closes = substitute(s:closes, '|', '\\|', 'g')
let s:divides = '^\s*\%(Else\|ElseIf\|Case\|Default\)\>'

" Without Strings and the comment.
function s:Code(line) abort
  return substitute(substitute(getline(a:line), '"[^"]*"\=', 'x', 'g'), ';.*', '', '')
endfunction

function s:IsInline(line) abort
  let before = search('\c^\s*\%(InlineCpp\|EndInlineCpp\)\>', 'bnW')
  return before > 0 && getline(before) =~? '^\s*InlineCpp\>'
endfunction

function s:InExtern() abort
  let before = search('\c^\s*\%(Extern\|EndExtern\)\>', 'bnW')
  return before > 0 && getline(before) =~? '^\s*Extern\>'
endfunction

" The first line of those that "_" joins, behind which this one stands; 0 without one.
function s:Before(line) abort
  let line = prevnonblank(a:line - 1)
  while line > 0 && s:Code(line) =~ '^\s*$'
    let line = prevnonblank(line - 1)
  endwhile
  while line > 1 && s:Code(line - 1) =~ '\<_\s*$'
    let line -= 1
  endwhile
  return line
endfunction

" How many blocks the statements of a line leave open, and how many before it they close.
function s:Balance(line) abort
  let code = s:Code(a:line)
  for next in range(a:line + 1, line('$'))
    if code !~ '\<_\s*$'
      break
    endif
    let code = substitute(code, '_\s*$', '', '') . s:Code(next)
  endfor
  if code =~? '^\s*If\>.*\<Then\s*\S' || (code =~? '^\s*Function\>' && s:InExtern())
    return 0
  endif
  let balance = 0
  for statement in split(code, '|')
    let balance += statement =~? s:opens ? 1 + (statement =~? '^\s*Select\>') : 0
    let balance -= statement =~? s:closes ? 1 + (statement =~? '^\s*EndSelect\>') : 0
  endfor
  return balance
endfunction

function KorvelIndent(line) abort
  call cursor(a:line, 1)
  if s:IsInline(a:line) && getline(a:line) !~? '^\s*EndInlineCpp\>'
    return -1
  endif
  if a:line > 1 && s:Code(a:line - 1) =~ '\<_\s*$'
    return indent(s:Before(a:line)) + shiftwidth()
  endif
  let before = s:Before(a:line)
  if getline(a:line) =~? '^\s*EndInlineCpp\>'
    return indent(search('\c^\s*InlineCpp\>', 'bnW'))
  endif
  let level = before == 0 ? 0 : indent(before) / shiftwidth()
  if before > 0
    let ended = s:Code(before) =~? s:closes
    let level += s:Balance(before) + (ended ? 1 + (s:Code(before) =~? '^\s*EndSelect\>') : 0)
    let level += s:Code(before) =~? s:divides
  endif
  let code = s:Code(a:line)
  if code =~? s:closes
    let level -= code =~? '^\s*EndSelect\>' ? 2 : 1
  elseif code =~? s:divides
    let level -= 1
  elseif code =~? '^\s*\%(Function\|Type\|Element\)\>'
    return code =~? '^\s*Function\>' && s:InExtern() ? level * shiftwidth() : 0
  endif
  return max([level, 0]) * shiftwidth()
endfunction
