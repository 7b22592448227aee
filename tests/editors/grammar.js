// node grammar.js STAGE CODE: the grammar of VS Code, filled into the folder CODE, colours each token of all examples as what
// it is: words by the lists of the language, texts, comments, numbers and names. The package for VS Code holds what it should.
const fs = require('fs'), path = require('path');
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
  [/^(\$[0-9A-Fa-f]+|\d+(\.\d+)?)\b/, () => /^constant\.numeric/],
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

function sourcesIn(folder) {
  return fs.readdirSync(folder, { withFileTypes: true }).flatMap(entry => entry.isDirectory() ? sourcesIn(path.join(folder, entry.name))
    : entry.name.endsWith('.kvl') ? [path.join(folder, entry.name)] : []);
}

registry.loadGrammar('source.korvel').then(grammar => {
  for (const file of [...sourcesIn(stage + '/examples'), ...sourcesIn(stage + '/lib')]) {
    let state = textmate.INITIAL, isInline = false;
    for (const line of fs.readFileSync(file, 'utf8').split('\n')) {
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
  for (const [text, wanted] of [['    If a\n\nEndFunction', '    EndIf'], ['While a\n', 'Wend'], ['Repeat\n\nPrint', 'Forever'], ['If a Then Print 1\n'], ['If a\n\nElse'],
    ['If a\n\n    Print 1'], ['For Local i = 1 To 3\n\nNext'], ['type = 3\n'], ['Function F() ; If\n\nFunction G()', 'EndFunction'], ['Print "If"\n']])
    check(`the closer of ${text} is ${missingCloser(text.split('\n'), 0)}`, missingCloser(text.split('\n'), 0) === wanted);
  check('the problem matcher', new RegExp(pattern.regexp).exec('/a b/c.kvl:2:5: error: no').slice(1).join('|') === '/a b/c.kvl|2|5|error|no');
  const packed = fs.readFileSync(stage + '/editors/korvel.vsix', 'latin1');  // where names stand as they are
  for (const name of ['extension.js', 'package.json', 'syntaxes/korvel.tmLanguage.json', 'snippets.json', 'language-configuration.json'])
    check(`${name} in the package`, packed.includes('extension/' + name));
  console.log(`${checks} checks, ${failures} failed`);
  process.exit(failures > 0 ? 1 : 0);
});
