// node vscode.js STAGE CODE: the extension for VS Code, filled into the folder CODE. Its grammar colours each token of all examples
// as what it is: words by the lists of the language, texts, comments, numbers and names. Where an editor is needed, a small stand-in
// takes what the extension hands over. The package holds what it should.
const { spawnSync } = require('child_process'), fs = require('fs'), os = require('os'), path = require('path'), Module = require('module');
const npm = require('../npm'), textmate = npm('vscode-textmate'), oniguruma = npm('vscode-oniguruma');
const [stage, code] = process.argv.slice(2);
let checks = 0, failures = 0;
function check(name, holds) {
  ++checks;
  if (!holds && ++failures < 20) console.log('FAILED: ' + name);
}

const wasm = fs.readFileSync(require.resolve('vscode-oniguruma/release/onig.wasm', { paths: [__dirname + '/../../out/npm/node_modules'] }));
const registry = new textmate.Registry({
  onigLib: oniguruma.loadWASM(wasm).then(() => ({
    createOnigScanner: patterns => new oniguruma.OnigScanner(patterns), createOnigString: text => new oniguruma.OnigString(text) })),
  loadGrammar: async scope => scope === 'source.korvel'
    ? textmate.parseRawGrammar(fs.readFileSync(code + '/syntaxes/korvel.tmLanguage.json', 'utf8'), 'korvel.json')
    : { scopeName: scope, patterns: [], repository: {} },
});

const config = fs.readFileSync(stage + '/config/keywords.txt', 'utf8');
const words = new Set(config.split('\n').map(row => row.split(':')[0].toLowerCase()));
const ofWord = /^(keyword|storage|constant\.language|support)/;
// What the innermost scopes of a token must be like, in code that begins there.
const kinds = [
  [/^;.*/, () => /^comment/],
  [/^"[^"]*"/, () => /^string/],
  [/^\\[\w\x80-\uffff]+/, () => /^variable\.other\.member/],
  [/^(\$[0-9A-Fa-f]+|\d+(\.\d+)?(e[-+]?\d+)?)\b/i, () => /^constant\.numeric/],
  [/^[A-Za-z_\x80-\uffff][\w\x80-\uffff]*/, (word, before) => /\b(Function|Method)\s+$/i.test(before) ? /^entity\.name\.function/
    : /^\s*(Type|Element)\s+$/i.test(before) ? /^entity\.name\.type/
    : words.has(word.toLowerCase()) ? ofWord : /^variable\.other\.korvel|^keyword\.operator\.word/],
  [/^./, () => null],
];

function checkLine(file, line, tokens) {
  const scopeAt = at => tokens.find(token => token.startIndex <= at && at < token.endIndex).scopes;
  for (let at = 0; at < line.length;) {
    const rest = line.slice(at);
    for (const [pattern, wanted] of kinds) {
      const [text] = pattern.exec(rest) || [''];
      if (text === '') continue;
      const scope = wanted(text, line.slice(0, at));
      const isText = text.length > 1 && (text[0] === '"' || text[0] === ';');
      if (scope !== null) check(`${file}: ${line}\n  ${text} is ${scopeAt(at)}`, scopeAt(at).some(found => scope.test(found)));
      if (isText) check(`${file}: ${line}\n  the end of ${text}`, scopeAt(at + text.length - 1).some(found => scope.test(found)));
      at += text.length;
      break;
    }
  }
}

// What the extension registers, and the edits that it makes, in an editor with these lines.
async function activated(lines) {
  const seen = { edits: [] };
  const document = { languageId: 'korvel', fileName: '/w/game.kvl', uri: 'file:///w/game.kvl', save: async () => true, getText: () => lines.join('\n'),
    lineAt: row => ({ range: { end: [row, lines[row].length] } }) };
  const editor = { document, edit: async work => work({ insert: (...edit) => seen.edits.push(edit) }) };
  const note = name => (...given) => { seen[name] = given; };
  const made = name => class { constructor(...given) { Object.assign(this, { made: name, given }); } };
  const modules = {
    vscode: {
      window: { activeTextEditor: editor },
      workspace: { getConfiguration: () => ({ get: name => ({ kv: '/k/kv', runOptions: ['--safe'], closeBlocks: true })[name] }), asRelativePath: file => file,
        onDidChangeTextDocument: note('changed') },
      tasks: { registerTaskProvider: note('tasks'), executeTask: note('ran') },
      commands: { registerCommand: (name, work) => { seen[name] = work; } },
      debug: { registerDebugConfigurationProvider: note('configurations'), registerDebugAdapterDescriptorFactory: note('adapters'), startDebugging: note('debugged') },
      Task: made('task'), ProcessExecution: made('process'), DebugAdapterExecutable: made('adapter'), Selection: made('selection'), TaskScope: {}, TaskGroup: {},
    },
    'vscode-languageclient/node': { LanguageClient: class { constructor(...given) { seen.client = given; } async start() { seen.started = true; } } },
  };
  const load = Module._load;
  Module._load = (name, ...rest) => modules[name] || load(name, ...rest);
  delete require.cache[path.resolve(code, 'extension.js')];
  await require(path.resolve(code, 'extension.js')).activate({ subscriptions: [] });
  Module._load = load;
  return { seen, document };
}
async function checkExtension() {
  const { seen, document } = await activated(['Function Main', '    If a', '    ', 'EndFunction']);
  check('the server', seen.started && JSON.stringify(seen.client[2]) === '{"command":"/k/kv","args":["lsp"]}');
  check('the debugger', JSON.stringify(seen.adapters[1].createDebugAdapterDescriptor().given) === '["/k/kv",["dap"]]');
  await seen['korvel.run']();
  check('running', seen.ran[0].given[4].given.flat().join(' ') === '/k/kv run --message-format short --safe /w/game.kvl');
  await seen['korvel.debug']();
  check('debugging', seen.debugged[1].program === '/w/game.kvl');
  await seen.changed[0]({ document, contentChanges: [{ text: '\n    ', range: { start: { line: 1 } } }] });
  check('closed: ' + JSON.stringify(seen.edits), JSON.stringify(seen.edits) === '[[[2,4],"\\n    EndIf"]]');
}

function sourcesIn(folder) {
  return fs.readdirSync(folder, { withFileTypes: true }).flatMap(entry => entry.isDirectory() ? sourcesIn(path.join(folder, entry.name))
    : entry.name.endsWith('.kvl') ? [path.join(folder, entry.name)] : []);
}

// All programs: name and text. Those of the manual stand in its pages.
function programs() {
  const list = [...sourcesIn(stage + '/examples'), ...sourcesIn(stage + '/lib')].map(file => [file, fs.readFileSync(file, 'utf8')]);
  const manual = stage + '/docs/manual/';
  for (const page of fs.readdirSync(manual, { recursive: true }).filter(name => name.endsWith('.md')))
    for (const [, text] of fs.readFileSync(manual + page, 'utf8').matchAll(/^```korvel\n(.*?)^```/gms)) list.push([page, text]);
  return list;
}

// What kv tells, in short, as VS Code reads it: a line each, whose file, line, column and kind the pattern finds.
function checkProblems({ regexp, ...groups }) {
  const work = fs.mkdtempSync(os.tmpdir() + '/wrong 1:2 '), kv = path.resolve(stage, 'bin/kv');
  fs.writeFileSync(work + '/part.kvl', 'Function Twice:Int(n:Int)\n    Return nn\nEndFunction\n');
  fs.writeFileSync(work + '/main.kvl', 'Include "part.kvl"\nFunction Main\n    Local a = Twice("x"), b = 3 / 0\n    Print nosuch\n    While a\nEndFunction\n');
  const said = spawnSync(kv, ['check', '--message-format', 'short', work + '/main.kvl'], { encoding: 'utf8' });
  const found = (said.stdout + said.stderr).trim().split('\n').map(line => new RegExp(regexp).exec(line) || { input: line });
  const read = found.map(match => ['file', 'line', 'column', 'severity'].map(name => match[groups[name]]).join('|').replace(work, ''));
  check('problems: ' + read.join(), read.includes('/part.kvl|2|12|error') && read.filter(one => /^\/main.kvl\|\d+\|\d+\|(error|warning)$/.test(one)).length === found.length - 1 && found.length > 2);
  fs.rmSync(work, { recursive: true });
}

registry.loadGrammar('source.korvel').then(async grammar => {
  await checkExtension();
  for (const [file, text] of programs()) {
    let state = textmate.INITIAL, isInline = false;
    for (const line of text.split('\n')) {
      const { tokens, ruleStack } = grammar.tokenizeLine(line, state);
      state = ruleStack;
      if (/^\s*EndInlineCpp\b/i.test(line)) isInline = false;
      if (!isInline) checkLine(file, line, tokens);
      else check(`${file}: ${line} is C++`, line === '' || tokens[0].scopes.includes('source.cpp'));
      if (/^\s*InlineCpp\b/i.test(line)) isInline = true;
    }
  }
  const hole = grammar.tokenizeLine('Print "a {%score * 2} ~n"', textmate.INITIAL).tokens.map(token => token.scopes.pop().split('.').slice(0, 3).join('.'));
  check('a hole: ' + hole, hole.join() === 'keyword.control.korvel,source.korvel,string.quoted.double,string.quoted.double,punctuation.definition.template-expression,'
    + 'variable.other.korvel,meta.template.expression,keyword.operator.korvel,meta.template.expression,constant.numeric.korvel,punctuation.definition.template-expression,'
    + 'string.quoted.double,constant.character.escape,string.quoted.double');
  const settings = JSON.parse(fs.readFileSync(code + '/language-configuration.json', 'utf8')), rules = settings.indentationRules;
  const deeper = line => new RegExp(rules.increaseIndentPattern.pattern, 'i').test(line), back = line => new RegExp(rules.decreaseIndentPattern.pattern, 'i').test(line);
  check('indentation', deeper('  While a') && deeper('If a Then') && deeper('Else ; x') && !deeper('If a Then Print 1') && !deeper('Format()') && back('  EndIf') && !back('Endless'));
  check('snippets', JSON.parse(fs.readFileSync(code + '/snippets.json', 'utf8')).While.body === 'While ${1:condition}\n\t$0\nWend');
  const { pattern } = JSON.parse(fs.readFileSync(code + '/package.json', 'utf8')).contributes.problemMatchers[0];
  const { missingCloser } = require(path.resolve(code, 'blocks.js'));
  for (const [text, wanted, row = 0] of [['    If a\n\nEndFunction', '    EndIf'], ['While a\n', 'Wend'], ['Repeat\n\nPrint', 'Forever'], ['If a Then Print 1\n'], ['If a\n\nElse'],
    ['If a\n\n    Print 1'], ['For Local i = 1 To 3\n\nNext'], ['type = 3\n'], ['Function F() ; If\n\nFunction G()', 'EndFunction'], ['Print "If"\n'], ['InlineCpp\nif (a) {\n', undefined, 1]])
    check(`the closer of ${text} is ${missingCloser(text.split('\n'), row)}`, missingCloser(text.split('\n'), row) === wanted);
  checkProblems(pattern);
  const packed = fs.readFileSync(stage + '/editors/korvel.vsix', 'latin1');  // where names stand as they are
  for (const name of ['extension.js', 'package.json', 'syntaxes/korvel.tmLanguage.json', 'snippets.json', 'language-configuration.json'])
    check(`${name} in the package`, packed.includes('extension/' + name));
  console.log(`${checks} checks, ${failures} failed`);
  process.exit(failures > 0 ? 1 : 0);
});
