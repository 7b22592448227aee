-- Sessions with the debugger: `kv debug` typed in a terminal, and `kv dap` asked by a client. $KV is kv, $WORK an empty
-- folder. What fails is printed, and the number of checks.
local kv, work = os.getenv('KV'), os.getenv('WORK')
local checks, failures = 0, 0

local function check(name, wanted, got)
    checks = checks + 1
    if vim.deep_equal(wanted, got) then return end
    failures = failures + 1
    print('FAILED: ' .. name .. '\n  wanted ' .. vim.inspect(wanted) .. '\n  got    ' .. vim.inspect(got) .. '\n')
end

vim.fn.mkdir(work .. '/lib')
vim.fn.writefile(vim.split([[
Type TUnit
    Field hp:Int = 10
    Method Hit(by:Int)
        ; a line without a statement
        hp = hp - by
        If hp < 0 Then hp = 0
    EndMethod
EndType]], '\n'), work .. '/lib/unit.kvl')
vim.fn.writefile(vim.split([[
Include "lib/unit.kvl"
Element EPoint
    Field x:Int = 1
    Field y:Double
EndElement
Global ticks:Int, names:Sequence Of String
Function Tick
    ticks = ticks + 1
EndFunction
Function Depth:Int(n:Int)
    If n = 0
        Return 0
    EndIf
    Return Depth(n - 1) + 1
EndFunction
Function Main
    Local grid:Int[2][3], name:String, flag:Bool, points:EPoint[2]
    If ticks = 0 Then Input "name? ", name
    SeqAdd names, name
    For Local i = 1 To 3
        Local u:TUnit = Create TUnit
        u\Hit(i)
    Next
    Local deep = Depth(10000)
    Print deep + points[0]\x - 1
    grid[1][2] = deep
    AutoCall Tick Every 5
    While ticks < 3
        flag = Not flag
    Wend
    Print "ticks " & (ticks > 2)
    grid[ticks * 9][0] = 1
EndFunction]], '\n'), work .. '/game.kvl')

-- ---- kv debug: what is typed, and what is to be seen until the next prompt ----
local screen, ended = '', nil
local job = vim.fn.jobstart({ kv, 'debug', 'game.kvl' }, { cwd = work, pty = true, env = { TERM = 'dumb' },
    on_stdout = function(_, lines) screen = screen .. table.concat(lines, '\n') end,
    on_exit = function(_, status) ended = status end })
local function await(text)
    vim.wait(60000, function() return screen:find(text, 1, true) or ended end, 5)
end
local function typed(line, wanted, prompt)
    screen = ''
    vim.fn.chansend(job, line)
    await(prompt or '(kv) ')
    local said = screen:gsub('\r', ''):gsub('%(kv%) $', ''):gsub('^[^\n]*\n', '')
    if vim.startswith(said, line) then said = said:sub(#line + 1) end -- echoed twice when it came before kv was ready
    check(vim.trim(line), wanted, (said:gsub('%s+$', '')))
end
await('(kv) ')
typed('break lib/unit.kvl:4 if by > 1\n', 'breakpoint 1 at lib/unit.kvl:5 if by > 1')
typed('break game.kvl:24 log deep {Depth} {grid[0][9]}\n', 'breakpoint 2 at game.kvl:24 log deep {Depth} {grid[0][9]}')
typed('run\n', 'name?', 'name? ')
typed('Ada\n', 'breakpoint 1, TUnit\\Hit at lib/unit.kvl:5\n>    5          hp = hp - by')
typed('where\n', '>  0  TUnit\\Hit at lib/unit.kvl:5\n   1  Main at game.kvl:22')
typed('locals\n', 'this:TUnit = TUnit#1\nby:Int = 2')
typed('print this\n', 'this:TUnit = TUnit#1\n    hp:Int = 10')
typed('watch hp\n', 'hp:Int = 10')
typed('set by = hp / 3\n', 'by:Int = 3')
typed('next\n', 'TUnit\\Hit at lib/unit.kvl:6\n>    6          If hp < 0 Then hp = 0\nhp:Int = 7')
typed('print TUnit#0\\hp * 2 > 17 And Not hp = 9.5\n', 'TUnit#0\\hp * 2 > 17 And Not hp = 9.5 = True')
typed('up\n', 'Main at game.kvl:22\n>   22          u\\Hit(i)')
typed('print points\n', 'points:EPoint[] = [2]\n    [0] = EPoint {x = 1, y = 0}\n    [1] = EPoint {x = 1, y = 0}')
typed('print points[1]\\x + grid[1][2]\n', 'points[1]\\x + grid[1][2] = 1')
typed('print (points[1]\\y + 3) / 2\n', '(points[1]\\y + 3) / 2 = 1.5')
typed('print nobody\n', 'there is no nobody here')
typed('globals\n', 'ticks:Int = 0\nnames:Sequence Of String = [1]')
typed('print names[0] & "!"\n', 'names[0] & "!" = "Ada!"')
typed('objects\n', 'TUnit: 2 objects')
typed('out\n', 'Main at game.kvl:23\n>   23      Next\nhp: there is no hp here')
typed('delete 1\n', '')
typed('unwatch hp\n', '')
typed('break Depth if n = 0\n', 'breakpoint 3 at game.kvl:11 if n = 0')
typed('continue\n', 'deep {there is no Depth here} {index 9 is outside of [3]}\n' ..
    'breakpoint 3, Depth at game.kvl:11\n>   11      If n = 0')
typed('frame 10001\n', 'Main at game.kvl:24\n>   24      Local deep = Depth(10000)')
typed('delete 3\n', '')
typed('break Tick\n', 'breakpoint 4 at game.kvl:8')
typed('continue\n', '10000\nbreakpoint 4, Tick at game.kvl:8\n>    8      ticks = ticks + 1')
typed('up\n', 'Main at game.kvl:30\n>   30      Wend')
typed('delete 4\n', '')
typed('set ticks = -999999999\n', 'ticks:Int = -999999999')
screen = ''
vim.fn.chansend(job, 'continue\n')
vim.wait(300, function() return ended end, 10)
screen = ''
vim.fn.chansend(job, '\3')
await('(kv) ')
check('Ctrl-C', true, screen:find('>   29          flag = Not flag', 1, true) ~= nil or screen:find('>   30      Wend', 1, true) ~= nil)
typed('set ticks = 3\n', 'ticks:Int = 3')
typed('continue\n', 'ticks 1\nArray bounds error: grid[27][...] dimension 0 out of range [0, 1]\n  at game.kvl:32\n  at game.kvl:32 in Function Main\n' ..
    'the program has failed and will end\nMain at game.kvl:32\n>   32      grid[ticks * 9][0] = 1')
typed('print grid[1]\n', 'grid[1] = [3]\n    [0] = 0\n    [1] = 0\n    [2] = 10000')
typed('\n', 'grid[1] = [3]\n    [0] = 0\n    [1] = 0\n    [2] = 10000')
typed('next\n', 'the program has ended with status 1')
typed('until 18\n', 'Main at game.kvl:18\n>   18      If ticks = 0 Then Input "name? ", name')
vim.fn.chansend(job, 'quit\n')
vim.wait(5000, function() return ended end, 5)
check('the status is that of the program', 1, ended)

-- ---- kv dap ----
local adapter = { said = {}, output = '', bytes = '' }
adapter.job = vim.fn.jobstart({ kv, 'dap' }, { on_stdout = function(_, lines)
    adapter.bytes = adapter.bytes .. table.concat(lines, '\n')
    while true do
        local head, length = adapter.bytes:match('^(Content%-Length: (%d+)\r\n\r\n)')
        if not head or #adapter.bytes < #head + length then return end
        local message = vim.json.decode(adapter.bytes:sub(#head + 1, #head + length))
        adapter.bytes = adapter.bytes:sub(#head + length + 1)
        if message.event == 'output' then adapter.output = adapter.output .. message.body.output end
        table.insert(adapter.said, message)
    end
end, on_exit = function(_, status) adapter.ended = status end })
-- the first message that is meant; those before it are dropped
local function message(is)
    vim.wait(60000, function()
        while adapter.said[1] and not is(adapter.said[1]) do table.remove(adapter.said, 1) end
        return adapter.said[1]
    end, 5)
    return table.remove(adapter.said, 1) or {}
end
local function ask(command, arguments)
    local text = vim.json.encode({ seq = 1, type = 'request', command = command, arguments = arguments or vim.empty_dict() })
    vim.fn.chansend(adapter.job, ('Content-Length: %d\r\n\r\n%s'):format(#text, text))
    local answer = message(function(said) return said.command == command end)
    return answer.success and answer.body or answer.message
end
local function event(name)
    return message(function(said) return said.event == name end).body
end
local function top()
    local frame = ask('stackTrace', { threadId = 1, levels = 1 }).stackFrames[1]
    return frame.name .. ':' .. frame.line, frame.id
end
local function variables(reference)
    return table.concat(vim.tbl_map(function(one) return one.name .. '=' .. one.value end,
        ask('variables', { variablesReference = reference }).variables), ' ')
end

check('capabilities', true, ask('initialize', { adapterID = 'korvel' }).supportsConditionalBreakpoints)
vim.fn.chansend(adapter.job, 'Content-Length: 29\r\n\r\n{"type":5,"command":[[[[]]]]}')
check('too early', { 'launch comes first', 'launch comes first' }, { ask('configurationDone'), ask('restart') })
check('no such program', true, ask('launch', { program = work .. '/none.kvl' }):find('cannot find') ~= nil)
ask('launch', { program = work .. '/game.kvl' })
event('initialized')
local points = ask('setBreakpoints', { source = { path = work .. '/lib/unit.kvl' },
    breakpoints = { { line = 4, condition = 'by = 2' }, { line = 6, logMessage = 'hp {hp}' }, { line = 99 } } }).breakpoints
check('breakpoints', { 5, 6, false }, { points[1].line, points[2].line, points[3].verified })
ask('setFunctionBreakpoints', { breakpoints = { { name = 'Tick', hitCondition = '2' } } })
ask('configurationDone')
check('a breakpoint', { points[1].id }, event('stopped').hitBreakpointIds)
check('where', 'TUnit\\Hit:5', (top()))
local scopes = ask('scopes', { frameId = 0 }).scopes
check('Locals', 'this=TUnit#1 by=2', variables(scopes[1].variablesReference))
check('objects', 'TUnit=2', variables(scopes[3].variablesReference))
check('changed', '7', ask('setVariable', { variablesReference = scopes[1].variablesReference, name = 'by', value = '3 + 4' }).value)
ask('next')
check('a step', 'step', event('stopped').reason)
check('evaluated', '3', ask('evaluate', { expression = 'hp', frameId = 0 }).result)
check('refused', 'there is no x here', ask('evaluate', { expression = 'x' }))
check('too deep', 'these are too many brackets and signs', ask('evaluate', { expression = ('('):rep(100000) }))
ask('stepOut')
event('stopped')
check('outside', 'Main:23', (top()))
check('output', 'name? hp 9\nhp 3\n', adapter.output:match('name.*'))
ask('continue')
event('stopped')
check('the second time', { 'Tick:8', '1' }, { (top()), ask('evaluate', { expression = 'ticks' }).result })
ask('setFunctionBreakpoints', { breakpoints = {} })
ask('continue')
check('a failure', 'exception', event('stopped').reason)
check('where it failed', 'Main:32', (top()))
ask('restart')
check('once more', 'breakpoint', event('stopped').reason)
ask('setBreakpoints', { source = { path = work .. '/lib/unit.kvl' }, breakpoints = {} })
ask('setExceptionBreakpoints', { filters = {} })
ask('continue')
check('the end', 1, event('exited').exitCode)
ask('disconnect')
vim.wait(5000, function() return adapter.ended end, 5)
check('it leaves in peace', 0, adapter.ended)
print(checks .. ' checks, ' .. failures .. ' failed\n')
vim.cmd(failures == 0 and 'qall!' or 'cquit!')
