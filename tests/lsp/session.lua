-- A program is written in Neovim as the manual's page on editors sets it up: typed line by line, mistakes are shown and mended, a
-- Method gets another name, and what the program does wrong is found by kv dap. $STAGE is the installation, $WORK an empty folder.
local stage, work = os.getenv('STAGE'), os.getenv('WORK')
local here = vim.fn.fnamemodify(debug.getinfo(1, 'S').source:sub(2), ':p:h')
local check, finish = dofile(here .. '/../checks.lua')
local page = table.concat(vim.fn.readfile(stage .. '/docs/manual/editors.md'), '\n')

-- init.lua is what the page tells.
vim.env.PATH = stage .. '/bin:' .. vim.env.PATH
local setup = ''
for line in page:gmatch('\n    (vim%.[^\n]*)') do setup = setup .. line .. '\n' end
assert(loadstring((setup:gsub('~/korvel', stage))))()
vim.cmd('filetype plugin indent on | syntax on | edit ' .. work .. '/bakery.kvl')
vim.ui.select = function(items, _, choose) choose(items[1], 1) end
vim.ui.input = function(_, take) take('HandOver') end

local function keys(text) vim.api.nvim_feedkeys(vim.api.nvim_replace_termcodes(text, true, false, true), 'xt', false) end
local function buffer() return vim.api.nvim_buf_get_lines(0, 0, -1, false) end
-- What is told of a line, its first mistake, when there is something.
local function mistake(line)
    local found
    vim.wait(3000, function()
        found = vim.diagnostic.get(0, { lnum = line - 1 })[1]
        return found
    end, 5)
    return found or { message = 'nothing', col = 0 }
end

-- The program is an example, with mistakes: what is typed in place of a line, what is told and whether a fix mends it.
local wanted = vim.fn.readfile(stage .. '/examples/bakery.kvl')
local planted, counted = 31, 'served = served + 2'
local mistakes = {
    [12] = { 'Field wants:Integer', 'Unknown type: Integer', true },
    [37] = { 'Return (seeed / 16) Mod limit', 'Identifier not found - seeed', true },
    [44] = { 'Return Nil', 'Identifier not found - Nil', true },
    [51] = { 'Local customer:Customer = SeqRemoveFist(waiting)', 'Identifier not found - SeqRemoveFist', true },
    [54] = { 'EndWhile', 'Identifier not found - EndWhile', true },
    [60] = { 'counter\\label = Chr(64 + i', "Unclosed parenthesis '('", true },
    [75] = { 'End If', "Syntax error: Use 'EndIf' instead of 'End If'", true },
    [77] = { 'longest = ToInt(Max(longest))', "'Max' expects 2 argument(s), got 1", false },
    [80] = { 'Print "arrived " & arived & ", served " & SeqLength(done) & ", longest queue " & longest', "Variable 'arived' used out of scope in Print statement", true },
    [86] = { 'Print "counters agree: " & (served = SeqLegnth(done))', "Variable 'SeqLegnth' used out of scope in Print statement", true },
}
for i, line in ipairs(wanted) do
    local wrong, told, hasFix = unpack(mistakes[i] or {})
    keys((i == 1 and 'i' or 'o') .. (wrong or i == planted and counted or line:gsub('^ +', '')) .. '<Esc>')
    if wrong then
        local said = mistake(i)
        check('line ' .. i, told, said.message:match('[^\n]*'))
        vim.fn.cursor(i, said.col + 1)
        keys(hasFix and '<F4>' or 'cc' .. vim.trim(line) .. '<Esc>')
        vim.wait(2000, function() return vim.trim(buffer()[i]) == vim.trim(line) end, 5)
        keys('==')
        check('line ' .. i .. ' mended', line, buffer()[i])
        keys('G')
    end
end
vim.wait(5000, function() return #vim.diagnostic.get(0) == 0 end, 5)
check('no mistakes are left', {}, vim.diagnostic.get(0))
wanted[planted] = '        ' .. counted
check('the text, indented as it was typed', wanted, buffer())

-- Another name for the Method, where there is a Function of its old one.
vim.fn.cursor(29, 12)
keys('<F2>')
wanted[29], wanted[52] = wanted[29]:gsub('Serve', 'HandOver'), wanted[52]:gsub('Serve', 'HandOver')
vim.wait(5000, function() return buffer()[52] == wanted[52] end, 5)
check('renamed', wanted, buffer())

-- It is run, and does not do what it should.
local function run()
    vim.cmd('silent write')
    return vim.fn.systemlist({ 'kv', 'run', vim.fn.expand('%') })
end
local output = vim.fn.readfile(stage .. '/examples/expected/bakery.txt')
output[3] = 'counters agree: 0'
check('a fault', output, run())

-- The debugger stops where customers are counted.
local debugger = dofile(here .. '/dap.lua')('kv')
local ask, event = debugger.ask, debugger.event
ask('initialize', { adapterID = 'korvel' })
ask('launch', { program = vim.fn.expand('%:p') })
event('initialized')
ask('setBreakpoints', { source = { path = vim.fn.expand('%:p') }, breakpoints = { { line = planted } } })
ask('configurationDone')
event('stopped')
local function value(expression) return ask('evaluate', { expression = expression, frameId = 0 }).result end
local before = value('served')
ask('next')
event('stopped')
check('one customer counts as two', { '0', '2', 'Serve:53' }, { before, value('counter\\served'), (debugger.top()) })
ask('disconnect')

vim.fn.cursor(planted, 1)
keys('f2r1')
output[3] = 'counters agree: 1'
check('mended', output, run())

vim.lsp.stop_client(vim.lsp.get_active_clients())
vim.wait(5000, function() return #vim.lsp.get_active_clients() == 0 end, 5)
check('the server leaves', 0, #vim.lsp.get_active_clients())
finish()
