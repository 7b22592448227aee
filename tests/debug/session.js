// node session.js KV [windows]: sessions of npm's client for debug adapters with `kv dap`, a row for each step; with that of
// Windows, under Wine, those that take no terminal.
const { spawn, execSync } = require('child_process'), fs = require('fs'), os = require('os');
const { DebugClient } = require('../npm')('@vscode/debugadapter-testsupport');
const [, , kv, system] = process.argv, folder = fs.mkdtempSync(os.tmpdir() + '/a session ');
const onWindows = system === 'windows', inTerminal = onWindows ? {} : { console: 'integratedTerminal' };
const seen = path => onWindows ? 'Z:' + path.replace(/\//g, '\\') : path;
const files = {
  'lib/unit.kvl': `Type TUnit
    Field hp:Int = 10
    Field other:TUnit
    Method Hit(by:Int)
        ; a line without a statement
        hp = hp - by
        If hp < 0 Then hp = 0
    EndMethod
    Method constructor()
        With this
            its\\hp = 10
        EndWith
    EndMethod
EndType
`,
  'game.kvl': `Include "lib/unit.kvl"
Include "std/text.kvl"
Element EPoint
    Field x:Int = 1
    Field y:Double
EndElement
Const limit = 3
Global ticks:Int, big:Int[100000]
Function Tick
    ticks = ticks + 1
    If ticks = 100000000 Then End
EndFunction
Function Sum:Int(list:Int[], points:EPoint[])
    Return list[2] + points[1]\\x
EndFunction
Function Item:Int(i:Int)
    Return big[i]
EndFunction
Function Main
    Local name:String, small:Int[4], points:EPoint[2], nobody:TUnit, wide:Long = 9007199254740993
    Input "name? ", name
    Print "hello " & Upper(name)
    For Local i = 1 To limit
        Local u:TUnit = Create TUnit
        u\\other = u
        u\\Hit(i)
    Next
    small[2] = 5
    Print Sum(small, points)
    AutoCall Tick Every 1
    While True
        If name = "loud" Then Print "a line with ä and ö and more of the like"
        If name = "wrong" Then Print Item(100000)
        If name = "null" Then Lose(nobody)
        If name = "sleepy" Then Sleep 100000
        If name = "busy" Then Print RunCommand("sleep 4")
        If name = "broken" Then Spoil()
    Wend
EndFunction
Include "std/time.kvl"
Include "std/system.kvl"
Function Lose(nobody:TUnit)
    Local gone:TUnit = Create TUnit
    Remove gone
    nobody\\Hit(1)
EndFunction
Function Spoil
    Local broken:String, n = 1
    InlineCpp
    *reinterpret_cast<void**>(&KVL_broken) = reinterpret_cast<void*>(8);
    reinterpret_cast<std::size_t*>(&KVL_broken)[1] = 8;
    EndInlineCpp
    n = 2
EndFunction
`,
};
const game = seen(folder + '/game.kvl'), unit = seen(folder + '/lib/unit.kvl');
// the numbers of its processes
const running = () => execSync(`ps axo pid=,args= | grep -F "${folder.split('/').pop()}" | grep -v grep | awk '{ print $1 }'`).toString();
const sleep = time => new Promise(done => setTimeout(done, time));

class Client extends DebugClient {
  constructor() {
    super(kv, 'dap', 'korvel', { cwd: '/' });
    Object.assign(this, { output: '', events: [], screen: '' });
  }
  dispatch(body) {
    const said = JSON.parse(body);
    if (said.type === 'request') return this.open(said);
    if (said.event === 'output') this.output += said.body.output.replace(/\r/g, '');
    else if (said.event === 'breakpoint') this.changed = said.body.breakpoint;
    else if (said.event) this.events.push(said);
    super.dispatch(body);
  }
  // the terminal that kv dap has asked for
  open({ seq, command, arguments: { args: [program, ...args], cwd } }) {
    this.terminal = spawn(program, args, { cwd });
    this.terminal.stdout.on('data', data => { this.screen += data; });
    this.write({ type: 'response', seq: 0, request_seq: seq, command, success: true, body: {} });
  }
  write(message, text = JSON.stringify(message)) { this.outputStream.write(`Content-Length: ${Buffer.byteLength(text)}\r\n\r\n${text}`); }
  ask(command, args) { return this.send(command, args).then(answer => answer.body || {}, refused => refused.message); }
  // the next of these events; those before it are dropped
  async event(name) {
    for (;; await sleep(2)) {
      while (this.events[0] && this.events[0].event !== name) this.events.shift();
      if (this.events[0]) return this.events.shift().body;
    }
  }
  shown() { return this.terminal ? this.screen : this.output; }
  forget() { this.screen = this.output = ''; }
  async until(text) { for (; !this.shown().includes(text); await sleep(5)); return true; }
  async begin(more) {
    await this.start();
    await this.ask('initialize', { adapterID: 'korvel', supportsRunInTerminalRequest: true });
    const said = await this.ask('launch', { program: game, ...more });
    if (typeof said === 'string') return said;
    return (await this.event('initialized'), said);
  }
  points(path, breakpoints) { return this.ask('setBreakpoints', { source: { path }, breakpoints }).then(said => said.breakpoints); }
  async where(levels = 1) { return (await this.ask('stackTrace', { threadId: 1, levels })).stackFrames.map(frame => `${frame.name}:${frame.line}`).join(' '); }
  async stop() { const said = await this.event('stopped'); return [said.reason, await this.where()]; }
  async go(how) { await this.ask(how); return this.stop(); }
  async value(expression, frameId = 0) { const said = await this.ask('evaluate', { expression, frameId }); return said.result || said; }
  async list(variablesReference, more) { return (await this.ask('variables', { variablesReference, ...more })).variables; }
  async scope(name, frameId = 0) { return (await this.ask('scopes', { frameId })).scopes.find(scope => scope.name === name).variablesReference; }
  async told(reference, more) { return (await this.list(reference, more)).map(one => `${one.name}=${one.value}`).join(' '); }
  async opened(expression, more) { return this.told((await this.ask('evaluate', { expression, frameId: 0 })).variablesReference, more); }
  type(text) {
    if (this.terminal) return this.terminal.stdin.write(text + '\n');
    return this.ask('evaluate', { expression: text, context: 'repl' });
  }
  gone() { return new Promise(done => this._adapterProcess.on('exit', done)); }
}

const [one, two] = [new Client(), new Client()];
let unitPoints;
// A program that is given this name; it stands or ends.
async function named(name, more, points = []) {
  const client = new Client();
  await client.begin(more);
  await client.points(game, points);
  await client.ask('configurationDone');
  await client.until('name?');
  await client.type(name);
  return client;
}
const endOf = async client => [(await client.event('exited')).exitCode, await client.ask('disconnect')];

const steps = [
  ['what it can', true, async () => { await one.start(); return (await one.ask('initialize', { adapterID: 'korvel' })).supportsLogPoints; }],
  ['too early', ['launch comes first', 'launch comes first', 'launch comes first', 'launch comes first'],
    async () => Promise.all(['configurationDone', 'restart', 'pause', 'stackTrace'].map(request => one.ask(request)))],
  ['what makes no sense', ['kv dap does not know fly', true], async () => {
    one.write(null, '{"type":5,"command":[[[[]]]]}');
    one.write(null, '{"type":"request","command":"launch","arguments":7');
    one.outputStream.write('Content-Length: x\r\nnonsense\r\n\r\n');
    return [await one.ask('fly'), /program/.test(await one.ask('launch', {}))];
  }],
  ['no such program', true, async () => (await one.ask('launch', { program: game + 'x' })).includes('cannot find')],
  ['launch', {}, async () => { const said = await one.ask('launch', { program: game, stopOnEntry: true }); await one.event('initialized'); return said; }],
  ['breakpoints', [6, 7, 'the program cannot stop there', 'a hit count is a number: 3 stops from the third time on', 11, 'there is no its here', "')' is missing", 'there is no nobody here',
    'a value is missing', 'Sum cannot be called here'], async () => {
    unitPoints = await one.points(unit, [{ line: 5, condition: 'by = limit - 1' }, { line: 7, logMessage: 'hp {%hp}' }, { line: 99 }, { line: 6, hitCondition: '3x' },
      { line: 11, condition: 'its\\hp <> 10 Or "{%its\\hp}" <> "10"' }, { line: 6, condition: 'its = Null' }, { line: 6, condition: '(by' }, { line: 6, condition: 'nobody = Null' }, { line: 6, logMessage: 'hp {}' }, { line: 6, condition: 'Sum(by) > 1' }]);
    return unitPoints.map(point => point.verified ? point.line : point.message);
  }],
  ['of a routine', [10, 11, 'there is no Function or Method Nobody in which the program could stop'], async () => (await one.ask('setFunctionBreakpoints', { breakpoints: [{ name: 'Tick', hitCondition: '2' }, { name: 'TUnit\\constructor', condition: 'False' }, { name: 'Nobody' }] }))
    .breakpoints.map(point => point.message || point.line)],
  ['the first line', ['entry', 'Main:20'], async () => { await one.ask('configurationDone'); return one.stop(); }],
  ['no second beginning', 'the program has begun already', () => one.ask('configurationDone')],
  ['a second session with the same program, in a terminal', true, async () => {
    await two.begin(inTerminal);
    await two.ask('configurationDone');
    return two.until('name?');
  }],
  ['input in the console', ['breakpoint', 'TUnit\\Hit:6', ['name? hello ADA\nhp 9\n']], async () => {
    one.output = '';
    await one.ask('continue');
    await one.until('name?');
    await one.type('Ada');
    return [...await one.stop(), [one.output]];
  }],
  ['where', 'TUnit\\Hit:6 Main:26', () => one.where(20)],
  ['the file by other ways', [6, 6, 6, game], async () => {
    const lines = [];
    for (const path of [folder + '/link/unit.kvl', folder + '/lib/../lib/./unit.kvl', 'lib/unit.kvl'].map(path => path[0] === '/' ? seen(path) : path))
      lines.push((await one.points(path, [{ line: 5, condition: 'by = limit - 1' }]))[0].line);
    await one.points(unit, [{ line: 5, condition: 'by = limit - 1' }, { line: 7, condition: 'other\\other\\nix = 1' }]);
    return [...lines, (await one.ask('stackTrace', { threadId: 1 })).stackFrames[1].source.path];
  }],
  ['Locals, Objects', ['this=TUnit#1 by=2', 'TUnit=2', '[0]=TUnit#0 [1]=TUnit#1'], async () => {
    const types = await one.scope('Objects');
    return [await one.told(await one.scope('Locals')), await one.told(types), await one.told((await one.list(types))[0].variablesReference)];
  }],
  ['pages of a long array', ['100000 indexed', '[99998]=0 [99999]=0', 1001, '...=99000 more', ''], async () => {
    const [, big] = await one.list(await one.scope('Globals')), all = await one.list(big.variablesReference), rest = all[1000];
    return [big.indexedVariables + ' indexed', await one.told(big.variablesReference, { filter: 'indexed', start: 99998, count: 2 }), all.length,
      `${rest.name}=${rest.value}`, await one.told(big.variablesReference, { filter: 'named' })];
  }],
  ['objects that hold themselves', ['hp=10 other=TUnit#1', 'TUnit#1'], async () => [await one.opened('other'), await one.value('other\\other\\other')]],
  ['expressions', [onWindows ? '2' : '9007199254740994', '3', 'True', 'there is no x here', 'these are too many brackets and signs'], async () =>
    [await one.value('wide + 1', 1), await one.value('limit'), await one.value('TUnit#0\\hp * 2 > 17 And Not (hp = 9.5)'), await one.value('x'), await one.value('('.repeat(100000))]],
  ['operators as in the language', ['"x1"', '"a0.500000"', '14', '-1589934592', '-13', 'False', 'False', '0.30000000000000004', 'Null is no number', '"a~tb~q~{%"'], async () => {
    const texts = ['"x" & True', '"a" + 0.5', '12 BitAnd 10 BitOr $6', '7 * 1000000000', 'BitNot 12', 'Not by = 9.5', 'nobody <> Null And nobody\\hp > 0 Or 2 Shl 3 > 16', '0.1 + 0.2', 'Null = 5', '"a~tb~q~{%"'];
    return Promise.all(texts.map(text => one.value(text, text.includes('nobody') ? 1 : 0)));
  }],
  ['changed', ['7', 'it cannot be changed to 5000000000', 'there is no such variable'], async () => {
    const set = async (name, value) => { const said = await one.ask('setVariable', { variablesReference: await one.scope('Locals'), name, value }); return said.value || said; };
    return [await set('by', '3 + 4'), await set('by', '5000000000'), await set('x', '1')];
  }],
  ['by an expression', ['x" and 2000 bytes more String', '2 Int', '"a~tb~n~~" String', 'it cannot be changed to "a"', 'there is no x here'], async () => {
    const set = async (expression, value) => { const said = await one.ask('setExpression', { expression, value, frameId: 1 }); return said.value ? `${said.value} ${said.type}` : said; };
    return [(await set('name', `"${'x'.repeat(12000)}"`)).slice(-29), await set('small[1 + 1]', '2.9'), await set('name', '"a~tb~n~~"'), await set('points[0]\\y', '"a"'), await set('x', '1')];
  }],
  ['types', ['TUnit', undefined, 'Int'], async () => {
    const types = await one.list(await one.scope('Objects')), [object] = await one.list(types[0].variablesReference);
    const small = (await one.list(await one.scope('Locals', 1))).find(value => value.name === 'small');
    return [object.type, types[0].type, (await one.list(small.variablesReference))[0].type];
  }],
  ['a step, to a condition that makes no sense, and out', [['breakpoint', 'TUnit\\Hit:7'], 'there is no Field nix in TUnit#1', '3', ['step', 'Main:27']], async () => {
    const said = [await one.go('next'), one.changed.message, await one.value('hp')];
    return [...said, await one.go('stepOut')];
  }],
  ['old numbers', 'there is nothing of that number', () => one.ask('variables', { variablesReference: 99 })],
  ['arrays that are parameters', [['breakpoint', 'Sum:14'], 'list=[4] points=[2]', '[0]=0 [1]=0 [2]=5 [3]=0', '5'], async () => {
    await one.points(unit, []);
    await one.points(game, [{ line: 14 }]);
    return [await one.go('continue'), await one.told(await one.scope('Locals')), await one.opened('list'), await one.value('list[2] * points[1]\\x')];
  }],
  ['a timer, the second time', [['breakpoint', 'Tick:10'], '1', 'Main'], async () => [await one.go('continue'), await one.value('ticks'), (await one.where(9)).split(' ')[1].split(':')[0]]],
  ['while it runs: a thousand breakpoints, questions, a pause', ['the program runs', 1000, 'pause'], async () => {
    await one.ask('setFunctionBreakpoints', { breakpoints: [] });
    await one.ask('continue');
    const points = await one.points(game, Array.from({ length: 1000 }, () => ({ line: 14, condition: 'False' })));
    const said = await one.ask('scopes', { frameId: 0 });
    await one.ask('pause');
    return [said, points.filter(point => point.verified).length, (await one.stop())[0]];
  }],
  ['in the other one: input in its terminal', ['breakpoint', 'TUnit\\Hit:6', true], async () => {
    await two.points(unit, [{ line: 6 }]);
    await two.type('Bob');
    return [...await two.stop(), two.shown().includes('hello BOB\n')];
  }],
  ['restarted there', [['breakpoint', 'TUnit\\Hit:6'], 'TUnit=1'], async () => {
    two.forget();
    await two.ask('restart');
    await two.until('name?');
    await two.type('Bob');
    return [await two.stop(), await two.told(await two.scope('Objects'))];
  }],
  ['Ctrl-C there', 'pause', async () => {
    await two.points(unit, []);
    await two.ask('continue');
    await two.until('6\n');
    two.terminal ? two.terminal.kill('SIGINT') : await two.ask('pause');
    return (await two.stop())[0];
  }],
  ['it ends itself, by End in a timer', [0, {}], async () => {
    await two.ask('setVariable', { variablesReference: await two.scope('Globals'), name: 'ticks', value: '99999998' });
    await two.ask('continue');
    return endOf(two);
  }],
  ['terminated', ['the program has ended', 'the program has ended'], async () => {
    await one.ask('terminate');
    await one.event('terminated');
    return [await one.ask('next'), await one.ask('evaluate', { expression: '1', context: 'repl' })];
  }],
  ['restarted after its end', ['entry', 'Main:20'], async () => { await one.ask('restart'); return one.stop(); }],
  ['a pause where it waits for input: its breakpoint is met once', ['pause', 'Main:21', 1], async () => {
    one.output = '';
    await one.points(game, [{ line: 21, logMessage: 'asked' }]);
    await one.ask('continue');
    await one.until('name?');
    return [...await one.go('pause'), one.output.split('asked').length - 1];
  }],
  ['a client that leaves', [0, ''], async () => {
    one.outputStream.end();
    const status = await one.gone();
    return [status, running()];
  }],
  ['megabytes of output, and a pause among them', ['pause', false], async () => {
    const client = await named('loud');
    while (client.output.length < 3e6) await sleep(5);
    const said = (await client.go('pause'))[0];
    await client.ask('disconnect');
    return [said, client.output.includes('\ufffd')];
  }],
  ['an array that is too short, where a value is returned', ['Array bounds error: big[100000] dimension 0 out of range [0, 99999]', 'Item:17 Main:33', [1, {}]], async () => {
    const client = await named('wrong'), { text } = await client.event('stopped'), at = await client.where(9);
    await client.ask('continue');
    return [text, at, await endOf(client)];
  }],
  ['a pause in a Sleep', ['pause', 'Sleep:35', {}], async () => {
    const client = await named('sleepy');
    await client.until('6\n');
    return [...await client.go('pause'), await client.ask('disconnect')];
  }],
  ...onWindows ? [] : [['a pause where another program runs', ['pause', 'Main:37', {}], async () => {
    const client = await named('busy');
    await client.until('6\n');
    await client.ask('pause');
    await client.until('the program waits for something');
    return [...await client.stop(), await client.ask('disconnect')];
  }]],
  ['a Null object', ['exception', 'TUnit\\Hit:6', 'this=Null by=1', 'True', 'there is no hp here: this is Null', true], async () => {
    const client = await named('null'), said = await client.stop();
    said.push(await client.told(await client.scope('Locals')), await client.value('this = Null'), await client.value('hp'));
    await client.ask('continue');
    return [...said, (await endOf(client))[0] !== 0];
  }],
  ['a program that fails while it is asked', ['the program has ended', true], async () => {
    const client = await named('broken', {}, [{ line: 53 }]);
    await client.stop();
    const said = await client.ask('variables', { variablesReference: await client.scope('Locals') });
    return [said, (await endOf(client))[0] !== 0];
  }],
  ['not told of failures', [1, {}], async () => {
    const client = new Client();
    await client.begin();
    await client.ask('setExceptionBreakpoints', { filters: [] });
    await client.ask('configurationDone');
    await client.type('wrong');
    return endOf(client);
  }],
  ['a program that is killed', [onWindows ? 0 : 137, {}], async () => {
    const client = await named('Eve');
    await client.until('6\n');
    process.kill(Number(running()), 'SIGKILL');
    return endOf(client);
  }],
  ...onWindows ? [] : [['kv that is killed: in the terminal, and the one of the editor', [137, '', ''], async () => {
    const client = await named('Eve', inTerminal), other = await named('Eve');
    await client.until('6\n');
    client.terminal.kill('SIGKILL');
    const { exitCode } = await client.event('exited');
    await client.ask('disconnect');
    other._adapterProcess.kill('SIGKILL');
    await sleep(500);
    return [exitCode, running(), client.events.map(said => said.event).filter(event => event !== 'terminated').join()];
  }]],
  ['a restart with another source: breakpoints find their lines', ['there is no Function or Method Late in which the program could stop', 'breakpoint', 'Tick:10', 'Tick:10', 'breakpoint', 'Late:4'], async () => {
    const client = await named('Eve'), added = 'Function Late\n    Print "late"\nEndFunction\n', source = fs.readFileSync(folder + '/game.kvl', 'utf8');
    const write = text => fs.writeFileSync(folder + '/game.kvl', text);
    const told = (await client.ask('setFunctionBreakpoints', { breakpoints: [{ name: 'Late' }, { name: 'Tick', hitCondition: '2' }] })).breakpoints[0].message;
    const [said, at] = await client.stop();
    write('Function Nonsense');
    await client.ask('restart');
    const still = await client.where();
    write('; one\n; two\n' + added + source.replace('Input "name? ", name', 'Late()'));
    await client.ask('restart');
    const [again, late] = await client.stop();
    write(source);
    await client.ask('disconnect');
    return [told, said, at, still, again, late];
  }],
];

fs.mkdirSync(folder + '/lib');
fs.symlinkSync('lib', folder + '/link');
for (const [name, text] of Object.entries(files)) fs.writeFileSync(`${folder}/${name}`, text);
require('../steps')(steps).then(status => {
  fs.rmSync(folder, { recursive: true });
  process.exit(status);
});
