" Korvel. The words come from the compiler's own tables.
if exists('b:current_syntax')
  finish
endif
syntax include @korvelCpp syntax/cpp.vim
unlet! b:current_syntax
syntax case ignore
syntax sync fromstart
setlocal iskeyword=@,48-57,_,128-255

syntax keyword korvelStatement @STATEMENTS_LIST@
syntax keyword korvelStatement @OPERANDS_LIST@
syntax keyword korvelOperator @OPERATORS_LIST@
syntax keyword korvelType @TYPES_LIST@
syntax keyword korvelConstant @VALUES_LIST@
syntax keyword korvelFunction @FUNCTIONS_LIST@
syntax match korvelMember /\\\k\+/
syntax match korvelName /\%(\<\%(Function\|Method\)\s\+\)\@<=\k\+/
syntax match korvelTypeName /\%(^\s*\%(Type\|Element\)\s\+\)\@<=\k\+/
syntax match korvelNumber /\$\x\+\>\|\<\d\+\%(\.\d\+\)\=\%(e[-+]\=\d\+\)\=\>/
syntax match korvelEscape /\~./ contained
syntax region korvelHole matchgroup=korvelEscape start=/{[$%!]/ end=/}\|\ze"/ oneline contained contains=korvelOperator,korvelType,korvelConstant,korvelFunction,korvelMember,korvelNumber
syntax region korvelString start=/"/ end=/"/ oneline contains=korvelEscape,korvelHole
syntax match korvelComment /;.*$/ contains=@Spell
syntax region korvelInline matchgroup=korvelStatement start=/^\s*InlineCpp\>.*$/ end=/^\s*EndInlineCpp\>/ contains=@korvelCpp keepend

highlight default link korvelStatement Statement
highlight default link korvelOperator Operator
highlight default link korvelType Type
highlight default link korvelConstant Constant
highlight default link korvelFunction Function
highlight default link korvelMember Identifier
highlight default link korvelName Function
highlight default link korvelTypeName Type
highlight default link korvelNumber Number
highlight default link korvelEscape SpecialChar
highlight default link korvelString String
highlight default link korvelComment Comment
let b:current_syntax = 'korvel'
