-- A session with `kv debug` in a terminal. $KV is kv, $WORK an empty folder.
local kv, work = os.getenv('KV'), os.getenv('WORK')
local here = vim.fn.fnamemodify(debug.getinfo(1, 'S').source:sub(2), ':p:h')
local check, finish = dofile(here .. '/../checks.lua')

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

-- What is typed, and what is to be seen until the next prompt.
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
local function numbered(first, last)
    local lines = {}
    for i, text in ipairs(vim.fn.readfile(work .. '/game.kvl')) do lines[i] = ('%6d  %s'):format(i, text) end
    return table.concat(lines, '\n', first, math.min(last, #lines))
end
typed('list\n', numbered(1, 40))
typed('list Depth\n', numbered(7, 15))
typed('objects TUnit\n', 'there are no objects of TUnit')
typed('objects EPoint\n', 'there is no Type EPoint, and Elements have no objects')
typed('break TUnit\\hit\n', 'there is no Function or Method TUnit\\hit in which the program could stop; did you mean TUnit\\Hit?')
typed('break lib/unit.kvl:4 if by > 1\n', 'breakpoint 1 at lib/unit.kvl:5 if by > 1')
for wrong, said in pairs({
    ['24 log deep {Depth}'] = 'there is no Depth here', ['24 if name = ("a"'] = "')' is missing",
    ['24 if Grid = 1'] = 'there is no Grid here; did you mean grid?', ['24 if Depth(1) = 1'] = 'Depth cannot be called here',
    ['24 hit often'] = 'a hit count is a number: 3 stops from the third time on',
    ['24 iff name'] = 'there is no Function or Method 24 iff name in which the program could stop',
}) do typed('break ' .. wrong .. '\n', said) end
typed('break ./lib/../game.kvl:24 log deep {%deep} {grid[0][9]}\n', 'breakpoint 2 at game.kvl:24 log deep {%deep} {grid[0][9]}')
typed('run\n', 'name?', 'name? ')
typed('Ada\n', 'breakpoint 1, TUnit\\Hit at lib/unit.kvl:5\n>    5          hp = hp - by')
typed('where\n', '>  0  TUnit\\Hit at lib/unit.kvl:5\n   1  Main at game.kvl:22')
typed('locals\n', 'this:TUnit = TUnit#1\nby:Int = 2')
typed('print this\n', 'this:TUnit = TUnit#1\n    hp:Int = 10')
typed('watch hp\n', 'hp:Int = 10')
typed('\n', '')
typed('watch hp\n', 'hp:Int = 10')
typed('print this\\Hit\n', 'Hit is a Method, and cannot be called here')
typed('print this\\HP\n', 'there is no Field HP in TUnit#1; did you mean hp?')
typed('print SeqLength(names) * 2\n', 'SeqLength(names) * 2 = 2')
typed('print SeqLength(this)\n', 'only arrays and Sequences have a length here')
typed('set by = hp / 3\n', 'by:Int = 3')
typed('next\n', 'TUnit\\Hit at lib/unit.kvl:6\n>    6          If hp < 0 Then hp = 0\nhp:Int = 7')
typed('print TUnit#0\\hp * 2 > 17 And Not (hp = 9.5)\n', 'TUnit#0\\hp * 2 > 17 And Not (hp = 9.5) = True')
typed('up\n', 'Main at game.kvl:22\n>   22          u\\Hit(i)')
typed('print points\n', 'points:EPoint[] = [2]\n    [0] = EPoint {x = 1, y = 0}\n    [1] = EPoint {x = 1, y = 0}')
typed('print points[1]\\x + grid[1][2]\n', 'points[1]\\x + grid[1][2] = 1')
typed('print (points[1]\\y + 3) / 2\n', '(points[1]\\y + 3) / 2 = 1.5')
typed('print nobody\n', 'there is no nobody here')
typed('print Nams\n', 'there is no Nams here; did you mean name?')
typed('globals\n', 'ticks:Int = 0\nnames:Sequence Of String = [1]')
typed('print names[0] & "!"\n', 'names[0] & "!" = "Ada!"')
typed('objects\n', 'TUnit: 2 objects')
typed('out\n', 'Main at game.kvl:23\n>   23      Next\nhp: there is no hp here')
typed('delete 1\n', '')
typed('unwatch hp\n', '')
typed('break Depth if n = 0\n', 'breakpoint 3 at game.kvl:11 if n = 0')
typed('continue\n', 'deep {there is no deep here} {index 9 is outside of [3]}\n' ..
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
check('Ctrl-C', true, screen:find(' at game.kvl:', 1, true) ~= nil)
typed('break 31\n', 'breakpoint 5 at game.kvl:31')
typed('set ticks = 3\n', 'ticks:Int = 3')
typed('continue\n', 'breakpoint 5, Main at game.kvl:31\n>   31      Print "ticks " & (ticks > 2)')
typed('set ticks = 3\n', 'ticks:Int = 3')
typed('continue\n', 'ticks 1\nArray bounds error: grid[27][...] dimension 0 out of range [0, 1]\n  at game.kvl:32 in Function Main\n' ..
    'the program has failed and will end\nMain at game.kvl:32\n>   32      grid[ticks * 9][0] = 1')
typed('print grid[1]\n', 'grid[1]:Int[] = [3]\n    [0] = 0\n    [1] = 0\n    [2] = 10000')
typed('\n', 'grid[1]:Int[] = [3]\n    [0] = 0\n    [1] = 0\n    [2] = 10000')
typed('next\n', 'the program has ended with status 1')
typed('until 18\n', 'Main at game.kvl:18\n>   18      If ticks = 0 Then Input "name? ", name')
vim.fn.chansend(job, 'quit\n')
vim.wait(5000, function() return ended end, 5)
check('the status is that of the program', 1, ended)
finish()
