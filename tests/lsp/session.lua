-- A session of Neovim's own client with `kv lsp`. $KV is the server, $WORK an empty folder. What fails is printed, and the
-- number of checks.
local kv, work = os.getenv('KV'), os.getenv('WORK')
local checks, failures = 0, 0

local function check(name, wanted, got)
    checks = checks + 1
    if vim.deep_equal(wanted, got) then return end
    failures = failures + 1
    print('FAILED: ' .. name .. '\n  wanted ' .. vim.inspect(wanted) .. '\n  got    ' .. vim.inspect(got) .. '\n')
end

local function write(name, text)
    local file = assert(io.open(work .. '/' .. name, 'w'))
    file:write(text)
    file:close()
end

write('game.kvl', [[
Include "lib/ball.kvl"
Global größe = "😀", score:Int
; Doubles a number.
; It is a whole one.
Function Twice:Int(n:Int)
    Return n * 2
EndFunction
Function Main
    Local ball:TBall = Create TBall
    ball\Move(Twice(score))
    Print "😀 {%score}" & größe & score
EndFunction
]])
vim.fn.mkdir(work .. '/lib')
write('lib/ball.kvl', [[
Type TBall
    Field x:Int
    Method Move(by:Int)
        x = x + by
    EndMethod
EndType
]])

local told = {}
vim.lsp.handlers['textDocument/publishDiagnostics'] = function(_, result)
    told[result.uri] = result.diagnostics
end
local capabilities = vim.lsp.protocol.make_client_capabilities()
capabilities.textDocument.completion.completionItem.snippetSupport = true
local client = vim.lsp.start_client({ capabilities = capabilities, cmd = { kv, 'lsp' }, root_dir = work, on_exit = function(status)
    told.status = status
end })

local function open(name)
    vim.cmd('edit! ' .. work .. '/' .. name)
    vim.lsp.buf_attach_client(0, client)
    return vim.api.nvim_get_current_buf()
end

local function ask(method, params)
    params.textDocument = vim.lsp.util.make_text_document_params()
    local answers = vim.lsp.buf_request_sync(0, 'textDocument/' .. method, params, 5000)
    local answer = answers and answers[client] or {}
    return answer.error and answer.error.message or answer.result
end
local function at(line, unit, more)
    return vim.tbl_extend('force', { position = { line = line - 1, character = unit - 1 } }, more or {})
end
-- "line:unit-unit", all from 1 on, the last one belongs to it
local function place(range)
    return range.start.line + 1 .. ':' .. range.start.character + 1 .. '-' .. range['end'].character
end
local function places(locations)
    return table.concat(vim.tbl_map(function(location)
        return location.uri:match('[^/]*$'):sub(1, 1) .. place(location.range)
    end, locations), ' ')
end
local function mistakes(name)
    local uri = vim.uri_from_fname(work .. '/' .. name)
    told[uri] = nil
    vim.wait(5000, function() return told[uri] ~= nil end, 5)
    return vim.tbl_map(function(said) return place(said.range) .. ' ' .. said.message:match('[^\n]*') end,
        told[uri] or { 'nothing told' }), told[uri]
end
local function edit(line, text) vim.api.nvim_buf_set_lines(0, line - 1, line, false, { text }) end
local function labels(line, unit)
    local found = {}
    for _, item in ipairs(ask('completion', at(line, unit))) do found[item.label] = item.insertText or true end
    return found
end

-- Names, with letters of several bytes and units in the line.
local game = open('game.kvl')
check('all is well', {}, (mistakes('game.kvl')))
local hover = ask('hover', at(10, 16)).contents.value
check('hover', '```korvel\nFunction Twice:Int(n:Int)\n```\nDoubles a number.\nIt is a whole one.\n', hover)
check('hover over a word', true, vim.startswith(ask('hover', at(11, 6)).contents.value, '### Print'))
check('no hover in a text', vim.NIL, ask('hover', at(2, 18)) or vim.NIL)
check('definition', 'b3:12-15', places({ ask('definition', at(10, 12)) }))
check('references', 'g2:22-26 g10:21-25 g11:17-21 g11:35-39',
    places(ask('references', at(11, 17, { context = { includeDeclaration = true } }))))

-- Mistakes come and go with the text.
edit(11, '    Print "😀" & skore & größe')
local said, whole = mistakes('game.kvl')
check('a mistake', { "11:18-22 Variable 'skore' used out of scope in Print statement" }, said)
local actions = ask('codeAction', { range = whole[1].range, context = { diagnostics = whole } })
check('a quick fix', 'Write score', actions[1].title)
vim.lsp.util.apply_workspace_edit(actions[1].edit, 'utf-16')
check('mended', {}, (mistakes('game.kvl')))
edit(10, '    ball\\Move()')
said, whole = mistakes('game.kvl')
check('the other place', 'b3:12-15 declared here',
    places({ whole[1].relatedInformation[1].location }) .. ' ' .. whole[1].relatedInformation[1].message)
edit(10, '    ball\\Move(Twice(score))')
edit(12, '    ball\\')
vim.api.nvim_buf_set_lines(0, -1, -1, false, { 'EndFunction' })
local found = labels(12, 10)
check('members', { true, true }, { found.Move, found.x })
check('nothing else', nil, found.score or found.Print)
edit(12, '    Print ')
found = labels(12, 11)
check('what is visible', { true, true, true, 'While ${1:condition}\n\t$0\nWend', true }, { found.ball, found['größe'], found.Twice, found.While, found.Sqrt })
check('locals of others', nil, found.n)
edit(12, '    Local other = ball\\Move(Twice(1, ')
local help = ask('signatureHelp', at(12, 38))
check('the parameters of the call', 'Function Twice:Int(n:Int) n:Int 1', help and help.signatures[1].label .. ' '
    .. help.signatures[1].parameters[1].label .. ' ' .. help.activeParameter)
edit(12, '    Local other = score * 2.5')
edit(12, 'EndFunction')
vim.api.nvim_buf_set_lines(0, 12, -1, false, {})

-- Other names, in all programs that are open.
write('second.kvl', 'Include "lib/ball.kvl"\nFunction Main\n    Local ball = Create TBall\n    ball\\Move(1)\n'
    .. '    InlineCpp\n    KVL_ball->KVL_x = 1;\n    EndInlineCpp\nEndFunction\n')
local second = open('second.kvl')
check('a name in C++', "inline C++ uses 'ball', as KVL_ball", ask('rename', at(3, 12, { newName = 'other' })))
vim.api.nvim_set_current_buf(game)
check('a clash', true, ask('rename', at(10, 6, { newName = 'score' })):match('^the program would be wrong') ~= nil)
check('a capture', "'n' means something else where the name is used",
    (function()
        edit(6, '    Return n * score')
        return ask('rename', at(2, 24, { newName = 'n' }))
    end)())
check('no name', "'a b' is no name", ask('rename', at(10, 6, { newName = 'a b' })))
vim.lsp.util.apply_workspace_edit(ask('rename', at(10, 12, { newName = 'Schübe' })), 'utf-16')
check('renamed here', '    ball\\Schübe(Twice(score))', vim.api.nvim_buf_get_lines(game, 9, 10, false)[1])
check('renamed in the other program', '    ball\\Schübe(1)', vim.api.nvim_buf_get_lines(second, 3, 4, false)[1])
local ball = open('lib/ball.kvl')
check('renamed there', '    Method Schübe(by:Int)', vim.api.nvim_buf_get_lines(ball, 2, 3, false)[1])

-- A file that belongs to a program.
check('no mistakes in the part', {}, (mistakes('lib/ball.kvl')))
local symbols = ask('documentSymbol', {})
check('its outline', 'TBall 1:1-6:7 x Schübe', symbols[1].name .. ' ' .. symbols[1].range.start.line + 1 .. ':1-'
    .. symbols[1].range['end'].line + 1 .. ':' .. symbols[1].range['end'].character .. ' '
    .. symbols[1].children[1].name .. ' ' .. symbols[1].children[2].name)
edit(4, 'x=x+by')
vim.lsp.util.apply_text_edits(ask('formatting', { options = { tabSize = 4, insertSpaces = true } }), ball, 'utf-16')
check('formatted', '        x = x + by', vim.api.nvim_buf_get_lines(ball, 3, 4, false)[1])
edit(4, '        x = "wrong"')
check('a mistake in the part', 1, #(mistakes('lib/ball.kvl')))

vim.lsp.stop_client(client)
vim.wait(5000, function() return told.status ~= nil end, 5)
check('it leaves in peace', 0, told.status)
print(checks .. ' checks, ' .. failures .. ' failed\n')
vim.cmd(failures == 0 and 'qall!' or 'cquit!')
