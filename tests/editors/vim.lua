-- editors/vim in Neovim without a screen: $STAGE is the installation, $WORK an empty folder.
local stage, work = os.getenv('STAGE'), os.getenv('WORK')
local here = vim.fn.fnamemodify(debug.getinfo(1, 'S').source:sub(2), ':p:h')
local check, finish = dofile(here .. '/../checks.lua')
vim.env.PATH = stage .. '/bin:' .. vim.env.PATH
vim.opt.runtimepath:prepend(stage .. '/editors/vim')
vim.cmd('filetype plugin indent on | syntax on')
vim.g.korvel_lsp = 0
local function linesOf(buffer) return vim.api.nvim_buf_get_lines(buffer or 0, 0, -1, false) end

-- All examples, without any indentation, are indented as kv fmt does it.
for _, file in ipairs(vim.fn.globpath(stage .. '/examples', '**/*.kvl', false, true)) do
    vim.cmd('edit ' .. file)
    local bare, inline = {}, false
    for _, line in ipairs(linesOf()) do
        inline = inline and not line:lower():match('^%s*endinlinecpp')
        table.insert(bare, inline and line or (line:gsub('^%s+', '')))
        inline = inline or line:lower():match('^%s*inlinecpp') ~= nil
    end
    vim.api.nvim_buf_set_lines(0, 0, -1, false, bare)
    vim.cmd('silent normal! gg=G')
    check(file, vim.fn.systemlist({ 'kv', 'fmt', '-' }, bare), linesOf())
    vim.cmd('bwipeout!')
end

-- What words are, a letter for each: the group at each column of a line.
vim.cmd('edit ' .. work .. '/colours.kvl')
check('the type of the file', 'korvel', vim.bo.filetype)
local colours = {
    { 'Function Hit:Int(n:Int) ; x', 'SSSSSSSS NNN TTT   TTT  CCC' },
    { 'Print "a {%n * 2}~n" & p\\if', 'SSSSS """EE" " #EEE"    MMM' },
    { 'EndIf $FF 2.5 Not True', 'SSSSS ### ### OOO VVVV' },
    { 'n = Sqrt(First s)', '    FFFF SSSSS   ' },
}
local letters = { Statement = 'S', Name = 'N', Type = 'T', Comment = 'C', String = '"', Hole = '"', Escape = 'E', Number = '#',
    Member = 'M', Operator = 'O', Constant = 'V', Function = 'F' }
for i, row in ipairs(colours) do
    vim.api.nvim_buf_set_lines(0, 0, -1, false, { row[1] })
    local found = ''
    for column = 1, #row[1] do
        local group = vim.fn.synIDattr(vim.fn.synID(1, column, 1), 'name'):gsub('^korvel', '')
        found = found .. (row[1]:sub(column, column) == ' ' and group ~= 'String' and group ~= 'Comment' and ' ' or letters[group] or ' ')
    end
    check(row[1], row[2], found)
end
vim.api.nvim_buf_set_lines(0, 0, -1, false, { 'InlineCpp', 'int If = 1;', 'EndInlineCpp', 'If a' })
check('C++', { "cType", "cppNumber", "korvelStatement" }, vim.tbl_map(function(at)
    return vim.fn.synIDattr(vim.fn.synID(at[1], at[2], 1), 'name')
end, { { 2, 1 }, { 2, 10 }, { 4, 1 } }))
vim.bo.modified = false

-- :make collects what kv check tells.
vim.fn.writefile({ 'Function Main', '    Prnit 1', '    Local a:Int = "x"', 'EndFunction' }, work .. '/wrong name.kvl')
vim.cmd('edit ' .. vim.fn.fnameescape(work .. '/wrong name.kvl'))
vim.cmd('silent make')
check('mistakes', { '2:5 e', '3:19 e' }, vim.tbl_map(function(found)
    return found.lnum .. ':' .. found.col .. ' ' .. found.type
end, vim.fn.getqflist()))

-- The server starts by itself, one for the files of a folder.
vim.g.korvel_lsp = 1
vim.cmd('edit!')
vim.wait(5000, function() return #vim.diagnostic.get(0) == 2 end, 10)
check('what the server tells', { 1, 2 }, vim.tbl_map(function(said) return said.lnum end, vim.diagnostic.get(0)))
vim.cmd('split ' .. work .. '/colours.kvl')
check('the same server', 1, #vim.lsp.get_active_clients())

finish()
