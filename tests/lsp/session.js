// node session.js KV: a session of the protocol's own library with `kv lsp`, a row for each step.
const { spawn } = require('child_process'), fs = require('fs'), os = require('os');
const protocol = require('../npm')('vscode-languageserver-protocol/node');
const kv = process.argv[2], folder = fs.mkdtempSync(os.tmpdir() + '/a session ');
const files = {
  'main.kvl': `Include "lib/ball.kvl"
Include "std/text.kvl"
; How many points there are.
Global score:Int, größe = "😀"
Function Twice:Int(n:Int)
    Return n * 2
EndFunction
Function Tick()
    score = Twice(score) + Twice(1)
EndFunction
Function Main
    Local ball:TBall = Create TBall, wide = 2.5
    ball\\Move(Twice(score), 3)
    AutoCall Tick Every 10
    Print "😀 {%score}" & größe & Upper("a") & wide
EndFunction
Extern
    Function labs:Long(n:Long)
EndExtern
Global four:Int = Twice(2)
`,
  'lib/ball.kvl': '\ufeffType TBall\r\n    Field x:Int\r\n    Method Move(by:Int, times:Int = 1)\r\n        x = x + by * times\r\n    EndMethod\r\nEndType\r\n',
  'alone.kvl': 'Function Alone()\nEndFunction\n',
  'far/far.kvl': 'Function FarAway()\nEndFunction\nFunction Main\n    FarAway()\nEndFunction\n',
  'mixed.kvl': `\ufeffGlobal one:Int = nosuch, two:Sequence Of Int
Type TItem
    Field size:Int
    Method Grow:Int(by:Int, times:Int = 1)
        Return size + by * times
    EndMethod
EndType
Function Main
    Local item:TItem = New TItem
    item\\Grow 1, 2
    With item
        its\\size = Asc("a")
    EndWith
    Print "{%item\\size} of {%item\\Grow(1, item\\size)} them"
    Print item\\Grow(1, _
        item\\size)
    Local made:TMade = Create TMade(LIMIT) | made.size = 2 | SeqAdd two, 1
    InlineCpp
    KVL_one = 2;
    EndInlineCpp
EndFunction
Const LIMIT = -3
Type TMade
    Field size:Int
    Method constructor(size:Int)
        this\\size = size
    EndMethod
EndType
`,
  'other.kvl': 'Include "lib/ball.kvl"\nFunction Main\n    Local b = Create TBall\n    b\\Move(1)\nEndFunction\n',
};
const texts = {}, told = {}, versions = {};
const pathOf = name => `${folder}/${name}`, uriOf = name => 'file://' + encodeURI(pathOf(name)), nameOf = uri => decodeURI(uri).split(folder + '/')[1];
const sleep = time => new Promise(done => setTimeout(done, time));

const server = spawn(kv, ['lsp'], { stdio: ['pipe', 'pipe', 'inherit'] });
const left = new Promise(done => server.on('exit', done));
const client = protocol.createProtocolConnection(new protocol.StreamMessageReader(server.stdout), new protocol.StreamMessageWriter(server.stdin));
client.onNotification('textDocument/publishDiagnostics', said => { told[nameOf(said.uri)] = said.diagnostics; });
let watched;
client.onRequest('client/registerCapability', ({ registrations: [{ registerOptions }] }) => { watched = registerOptions.watchers[0].globPattern; return null; });
client.listen();

// The place of a text, "|" is the spot in it; without one its beginning.
function at(name, marked) {
  const start = texts[name].indexOf(marked.replace('|', '')) + Math.max(marked.indexOf('|'), 0);
  const lines = texts[name].slice(0, start).split('\n');
  return { line: lines.length - 1, character: lines.pop().length };
}
const place = range => `${range.start.line + 1}:${range.start.character + 1}-${range.end.line > range.start.line ? range.end.line + 1 + ':' : ''}${range.end.character}`;
const places = locations => [].concat(locations || []).map(found => `${nameOf(found.uri)} ${place(found.range)}`);
const ask = (method, name, marked, more) => client.sendRequest((method.startsWith('callHierarchy') ? '' : 'textDocument/') + method,
  { textDocument: { uri: uriOf(name) }, ...(marked && { position: at(name, marked) }), ...more }).catch(refused => refused.message);
const write = (name, text) => fs.writeFileSync(pathOf(name), text);
function open(name, text = fs.readFileSync(pathOf(name), 'utf8').replace('\ufeff', '')) {
  texts[name] = text;
  return client.sendNotification('textDocument/didOpen', { textDocument: { uri: uriOf(name), languageId: 'korvel', version: versions[name] = 1, text } });
}
function edit(name, old, text) {
  const range = { start: at(name, old), end: at(name, old + '|') };
  texts[name] = texts[name].replace(old, () => text);
  return client.sendNotification('textDocument/didChange', { textDocument: { uri: uriOf(name), version: ++versions[name] }, contentChanges: [{ range, text }] });
}
// What is told of the file when that settles.
async function mistakes(name) {
  for (let i = 0, before; i < 200; ++i, await sleep(10)) {
    if (told[name] && i > 12 && before === told[name]) break;
    before = told[name];
  }
  return (told[name] || ['nothing told']).map(said => `${place(said.range)} ${said.message.split('\n')[0]}`);
}
const changed = async (name, old, text) => { await edit(name, old, text); return mistakes(name); };
// The first quick fix at the place: its title and what it makes of the lines that it touches.
async function fix(name, marked) {
  const [action] = await ask('codeAction', name, null, { range: { start: at(name, marked), end: at(name, marked) }, context: { diagnostics: [] } });
  for (const [uri, edits] of Object.entries(action ? action.edit.changes : {}))
    for (const change of edits.reverse()) await apply(nameOf(uri), change);
  return [action && action.title, await mistakes(name)];
}
function apply(name, { range, newText }) {
  const lines = texts[name].split('\n');
  const offset = position => lines.slice(0, position.line).join('\n').length + (position.line > 0) + position.character;
  const [from, to] = [offset(range.start), offset(range.end)];
  texts[name] = texts[name].slice(0, from) + newText + texts[name].slice(to);
  return client.sendNotification('textDocument/didChange', { textDocument: { uri: uriOf(name), version: ++versions[name] }, contentChanges: [{ range, text: newText }] });
}
async function labels(name, marked, wanted) {
  const found = (await ask('completion', name, marked)).map(item => item.label);
  return wanted.filter(label => found.includes(label));
}
const hover = async (name, marked) => { const found = await ask('hover', name, marked); return found && found.contents.value.trim().split('\n').slice(0, 5).join('|'); };
async function calls(direction, end, name, marked) {
  const [item] = await ask('prepareCallHierarchy', name, marked) || [];
  return item && (await ask(`callHierarchy/${direction}Calls`, name, null, { item })).map(call => `${call[end].name} ${call.fromRanges.map(place)}`);
}
async function renamed(name, marked, newName) {
  const edit = await ask('rename', name, marked, { newName });
  return edit.changes ? Object.entries(edit.changes).map(([uri, edits]) => `${nameOf(uri)} ${edits.map(change => place(change.range))}`).sort() : edit;
}

const parameter = async (name, marked) => { const help = await ask('signatureHelp', name, marked); return help && `${help.signatures.map(one => one.label)} ${help.activeParameter}`; };

const [m, b, x, grow] = ['main.kvl', 'lib/ball.kvl', 'mixed.kvl', 'Method Grow:Int(by:Int, times:Int = 1) 1'];
const steps = [
  ['before the beginning', 'initialize comes first', () => client.sendRequest('textDocument/hover', {}).catch(refused => refused.message)],
  ['the beginning', true, async () => (await client.sendRequest('initialize', { processId: process.pid, rootUri: null,
    workspaceFolders: [{ uri: uriOf('').slice(0, -1), name: 'work' }], capabilities: { workspace: { didChangeWatchedFiles: { dynamicRegistration: true } }, textDocument: { completion: { completionItem: { snippetSupport: true } } } } })).capabilities.callHierarchyProvider],
  ['what needs no answer', undefined, () => client.sendNotification('initialized', {})],
  ['no mistakes', [], async () => { await open(m); return mistakes(m); }],
  ['hover', '```korvel|Global score:Int|```|How many points there are.', () => hover(m, 'sco|re = ')],
  ['hover in a hole', '```korvel|Global score:Int|```|How many points there are.', () => hover(m, '{%sc|ore')],
  ['hover over a Field of another file', '```korvel|Method Move(by:Int, times:Int = 1)|```|of TBall', () => hover(m, '\\Mo|ve')],
  ['hover over a function of a module', '```korvel|Function Upper:String(text:String)|```|the text in capital or small letters; those from A to Z change', () => hover(m, 'Upp|er')],
  ['hover over a word', true, async () => (await hover(m, 'Auto|Call')).startsWith('### AutoCall')],
  ['hover over nothing', null, () => hover(m, '10|\n    Print')],
  ['definition', [b + ' 3:12-15'], async () => places(await ask('definition', m, 'Mov|e'))],
  ['definition behind letters of two units', [m + ' 4:19-23'], async () => places(await ask('definition', m, '& grö|ße'))],
  ['definition of a file', [b + ' 1:1-0'], async () => places(await ask('definition', m, 'ball|.kvl'))],
  ['references', [m + ' 5:10-14', m + ' 9:13-17', m + ' 9:28-32', m + ' 13:15-19', m + ' 20:19-23'],
    async () => places(await ask('references', m, 'Twi|ce:', { context: { includeDeclaration: true } }))],
  ['references in a program that is not open', [m + ' 13:10-13', 'other.kvl 4:7-10'],
    async () => places(await ask('references', m, '\\Mo|ve', { context: { includeDeclaration: false } }))],
  ['highlights', 5, async () => (await ask('documentHighlight', m, '{%sc|ore')).length],
  ['what calls', ['Tick 9:13-17,9:28-32', 'Main 13:15-19', 'main.kvl 20:19-23'], () => calls('incoming', 'from', m, 'Twi|ce:')],
  ['what calls a Method', ['Main 13:10-13', 'Main 4:7-10'], () => calls('incoming', 'from', m, '\\Mo|ve')],
  ['a timer calls', ['Main 14:14-17'], () => calls('incoming', 'from', m, 'Tic|k()')],
  ['what is called', ['Move 13:10-13', 'Twice 13:15-19', 'Tick 14:14-17', 'Upper 15:35-39'], () => calls('outgoing', 'to', m, 'Ma|in')],
  ['no routine', undefined, () => calls('incoming', 'from', m, 'sco|re')],
  ['outline', ['score', 'größe', 'Twice', 'Tick', 'Main', 'labs', 'four'], async () => (await ask('documentSymbol', m)).map(entry => entry.name)],
  ['files to be told of', '**/*.kvl', () => watched],
  ['names of programs that are not open', ['FarAway'], async () => (await client.sendRequest('workspace/symbol', { query: 'faraway' })).map(entry => entry.name)],
  ['names of the program', ['TBall'], async () => (await client.sendRequest('workspace/symbol', { query: 'tbal' })).map(entry => entry.name)],
  ['folds', [4, 7, 10, 16], async () => (await ask('foldingRange', m)).map(fold => fold.startLine)],
  ['types that are not written', ['4:24 :String', '12:42 :Double'], async () => (await ask('inlayHint', m, null, { range: { start: at(m, 'Include'), end: at(m, 'Print') } }))
    .map(hint => `${hint.position.line + 1}:${hint.position.character + 1} ${hint.label}`)],
  ['colours', [3, 7, 5, 5, 1], async () => (await ask('semanticTokens/full', m)).data.slice(0, 5)],
  ['completion of what is visible', ['ball', 'score', 'Twice', 'While', 'Upper'], () => labels(m, '|Print', ['ball', 'score', 'Twice', 'While', 'Upper', 'by', 'n', 'Main'])],
  ['members', ['x', 'Move'], () => labels(m, 'ball\\|', ['x', 'Move', 'score', 'Print'])],
  ['types', ['TBall', 'Int'], () => labels(m, 'ball:|', ['TBall', 'Int', 'score'])],
  ['files', ['ball.kvl'], () => labels(m, '"lib/|', ['ball.kvl', 'score'])],
  ['modules', ['files.kvl', 'text.kvl'], () => labels(m, '"std/|', ['files.kvl', 'text.kvl', 'parts/'])],
  ['the parameter under way', 1, async () => (await ask('signatureHelp', m, 'score), |3')).activeParameter],
  ['no more names where it was declared', 'the program would be wrong with \'Tick\': Identifier \'Tick\' is already defined.', () => renamed(m, 'Twi|ce', 'Tick')],
  ['rename in all programs', [b + ' 3:12-15', m + ' 13:10-13', 'other.kvl 4:7-10'], () => renamed(m, '\\Mo|ve', 'Push')],
  ['rename of a Local', [m + ' 12:11-14,13:5-8'], () => renamed(m, 'ba|ll:', 'kugel')],
  ['a word of the language is no name', "'while' is a word of the language", () => renamed(m, 'ba|ll:', 'while')],
  ['a mistake behind a byte order mark', ['1:19-24 Identifier not found - nosuch'], async () => { await open(x, files[x]); return (await mistakes(x)).slice(-1); }],
  ['behind New', ['TItem'], () => labels(x, 'New |TItem', ['TItem', 'item', 'Int'])],
  ['behind Of', ['Int'], () => labels(x, 'Of |Int', ['Int', 'one', 'TItem'])],
  ['in a hole', ['item', 'size'], async () => [...await labels(x, '{%|item', ['item', 'size']), ...await labels(x, '{%item\\|', ['item', 'size'])]],
  ['in what is still open', ['size', 'item', 'size'], async () => {
    await edit(x, '    InlineCpp\n', '    Print (Last TItem\\\n    Print Asc("{$item\\\n    InlineCpp\n');
    const found = await Promise.all(['TItem\\|\n', '{$|item\\\n', '{$item\\|\n'].map(marked => labels(x, marked, ['item', 'size'])));
    await edit(x, '    Print (Last TItem\\\n    Print Asc("{$item\\\n', '');
    return found.flat();
  }],
  ['in a text behind a hole, and in C++', [], async () => [...await labels(x, '} th|em', ['item', 'Print']), ...await labels(x, '|KVL_one', ['item', 'one'])]],
  ['parameters in a hole', grow, () => parameter(x, '(1, |item\\size)}')],
  ['parameters without brackets', grow, () => parameter(x, 'Grow 1, |2')],
  ['parameters on the next line', grow, () => parameter(x, '        |item\\size)\n')],
  ['parameters of a constructor', 'Method constructor(size:Int) 0', () => parameter(x, 'Create TMade(|LIMIT')],
  ['members behind a point', ['size'], () => labels(x, 'made.|', ['size', 'constructor', 'Print'])],
  ['parameters of a statement', 'SeqAdd SEQUENCE, VALUE 1', () => parameter(x, 'SeqAdd two, |1')],
  ['the value of a Const', '```korvel|Const LIMIT:Int = -3|```', () => hover(x, 'LI|MIT)')],
  ['parameters that the manual tells', 'Asc(TEXT) 0', () => parameter(x, 'Asc(|"a"')],
  ['C++ knows it', "inline C++ uses 'one', as KVL_one", () => renamed(x, 'Global on|e', 'many')],
  ['a parameter would hide it', "'by' means something else where the name is used", () => renamed(x, 'Field si|ze', 'by')],
  ['its stays', ['mixed.kvl 9:11-14,10:5-8,11:10-13,14:14-17,14:30-33,14:43-46,15:11-14,16:9-12'], () => renamed(x, 'Local it|em', 'thing')],
  ['the other place', ['lib/ball.kvl 3:12-15'], async () => { await changed(m, '(Twice(score), 3)', '()'); return places(told[m][0].relatedInformation[0].location); }],
  ['as before', [], () => changed(m, '\\Move()', '\\Move(Twice(score), 3)')],
  ['no odds where something is wrong', ['14:5-22 Expected \'To\' in For loop'], () => changed(m, 'AutoCall Tick', 'For Local i = 1, 3\n    Next\n    AutoCall Tick')],
  ['as before', [], () => changed(m, 'For Local i = 1, 3\n    Next\n    AutoCall Tick', 'AutoCall Tick')],
  ['a file that no program has', 2, async () => { await open('alone.kvl'); return (await mistakes('alone.kvl')).length; }],
  ['which one has, unsaved', [], async () => {
    await open('other.kvl');
    await edit('other.kvl', '"lib/ball.kvl"\nFunction Main', '"lib/ball.kvl"\nInclude "alone.kvl"\nFunction Main\n    Alone()');
    return mistakes('alone.kvl');
  }],
  ['and has no more', 2, async () => { await edit('other.kvl', 'Include "alone.kvl"', ''); return (await mistakes('alone.kvl')).length; }],
  ['a file that is changed by others', ['lib/ball.kvl 4:12-15'], async () => { write(b, files[b].replace('Type', '; a Ball\r\nType')); await changed(m, 'Upper("a")', 'Upper("b")'); return places(await ask('definition', m, 'Mov|e')); }],
  ['and back', ['lib/ball.kvl 3:12-15'], async () => { write(b, files[b]); await changed(m, 'Upper("b")', 'Upper("a")'); return places(await ask('definition', m, 'Mov|e')); }],
  ['a mistake', ['6:12-14 Identifier not found - nnn'], () => changed(m, 'n * 2', 'nnn * 2')],
  ['gone again', [], () => changed(m, 'nnn * 2', 'n * 2')],
  ['a missing closer', ["10:1-8 Unexpected 'function' token"], () => changed(m, 'Twice(1)\nEndFunction', 'Twice(1)')],
  ['closed by a fix', ['Write EndFunction', []], () => fix(m, 'Function Main')],
  ['a foreign word', 1, async () => (await changed(m, 'Print', 'Println')).length],
  ['its fix', ['Write Print', []], () => fix(m, 'Println')],
  ['a part that is opened', [], async () => { await open(b); return mistakes(b); }],
  ['a mistake in the part', ['4:17-22 '], async () => (await changed(b, 'x + by', 'x + nosuch')).map(said => said.slice(0, 8))],
  ['which the program tells no longer', [], () => changed(b, 'nosuch', 'by')],
  ['formatting', ['        x = x + by * times'], async () => { await edit(b, 'x = x', 'x=x'); return (await ask('formatting', b, null, { options: { tabSize: 4, insertSpaces: true } })).map(change => change.newText); }],
  ['the C++', true, async () => (await client.sendRequest('workspace/executeCommand', { command: 'korvel.showCpp', arguments: [uriOf(b)] })).includes('int main(')],
  ['a file that vanishes', ['nothing of it'], async () => {
    await client.sendNotification('textDocument/didClose', { textDocument: { uri: uriOf(b) } });
    fs.unlinkSync(pathOf(b));
    await client.sendNotification('workspace/didChangeWatchedFiles', { changes: [{ uri: uriOf(b), type: 3 }] });
    return (await mistakes(m)).map(said => said.includes('Include file does not exist') ? 'nothing of it' : said).slice(0, 1);
  }],
  ['and comes back', [], async () => { write(b, files[b]); await client.sendNotification('textDocument/didSave', { textDocument: { uri: uriOf(m) } }); return mistakes(m); }],
  ['a thousand edits', ['15:27-35 '], async () => {
    for (let i = 0; i < 1000; ++i) await edit(m, i === 0 ? 'größe & Upper' : `größe${i} & Upper`, `größe${i + 1} & Upper`);
    return (await mistakes(m)).map(said => said.slice(0, 9));
  }],
  ['taken back', [], () => changed(m, 'größe1000', 'größe')],
  ['a request that is cancelled', [protocol.LSPErrorCodes.RequestCancelled, true], async () => {
    await open('long.kvl', 'Function Main\n' + 'Print 1\n'.repeat(30000) + 'EndFunction\n');
    const stop = new protocol.CancellationTokenSource();
    const first = ask('foldingRange', 'long.kvl');
    const second = client.sendRequest('textDocument/documentSymbol', { textDocument: { uri: uriOf('long.kvl') } }, stop.token).catch(refused => refused.code);
    stop.cancel();
    return [await second, (await first).length > 0];
  }],
  ['places that are not there', null, () => ask('hover', m, null, { position: { line: 99999, character: 99999 } })],
  ['shut down', [null, 'the server is shut down'], async () => [await client.sendRequest('shutdown'), await ask('hover', m, 'Main')]],
  ['exit', 0, async () => { await client.sendNotification('exit'); return left; }],
];

fs.mkdirSync(pathOf('lib'));
fs.mkdirSync(pathOf('far'));
for (const [name, text] of Object.entries(files)) write(name, text);
require('../steps')(steps).then(status => {
  fs.rmSync(folder, { recursive: true });
  process.exit(status);
});
