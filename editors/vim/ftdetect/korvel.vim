autocmd BufNewFile,BufRead *.kvl setfiletype korvel
