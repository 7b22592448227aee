// Korvel in VS Code: starts kv lsp, offers kv's commands as tasks and kv dap as debugger.
const vscode = require('vscode');
const { LanguageClient } = require('vscode-languageclient/node');
const { missingCloser } = require('./blocks');

const setting = name => vscode.workspace.getConfiguration('korvel').get(name);
const openFile = () => vscode.window.activeTextEditor && vscode.window.activeTextEditor.document;
let client;

function taskOf(command, file, definition = { type: 'korvel', command }) {
  const options = ['run', 'test'].includes(command) ? setting('runOptions') : [];
  const execution = new vscode.ProcessExecution(setting('kv'), [command, '--message-format', 'short', ...options, file]);
  const task = new vscode.Task(definition, vscode.TaskScope.Workspace, `${command} ${vscode.workspace.asRelativePath(file)}`, 'kv', execution, '$kv');
  if (command === 'build') task.group = vscode.TaskGroup.Build;
  if (command === 'test') task.group = vscode.TaskGroup.Test;
  return task;
}

const tasks = {
  provideTasks() {
    const document = openFile();
    if (!document || document.languageId !== 'korvel') return [];
    return ['run', 'build', 'check', 'test'].map(command => taskOf(command, document.fileName));
  },
  resolveTask(task) {
    const file = task.definition.file || '${file}';
    return taskOf(task.definition.command, file, task.definition);
  },
};

// Commands save the file first.
const withFile = work => async () => {
  const document = openFile();
  if (document && await document.save() !== undefined) await work(document);
};

const debugConfigurations = {
  resolveDebugConfiguration(folder, configuration) {
    const wanted = configuration.type ? configuration : { type: 'korvel', request: 'launch', name: 'Debug this program', program: '${file}' };
    return { console: 'integratedTerminal', ...wanted };
  },
};

async function openCpp(document) {
  const text = await client.sendRequest('workspace/executeCommand', { command: 'korvel.showCpp', arguments: [document.uri.toString()] });
  await vscode.window.showTextDocument(await vscode.workspace.openTextDocument({ language: 'cpp', content: text }));
}

// A new line behind one that opens a block has the block closed.
async function closeBlock({ document, contentChanges, reason }) {
  const editor = vscode.window.activeTextEditor;
  const typed = contentChanges.length === 1 && reason === undefined && /^\r?\n[ \t]*$/.test(contentChanges[0].text);
  if (!typed || !editor || editor.document !== document || document.languageId !== 'korvel' || !setting('closeBlocks')) return;
  const row = contentChanges[0].range.start.line, lines = document.getText().split(/\r?\n/);
  const closer = lines[row + 1].trim() === '' ? missingCloser(lines, row) : undefined;
  if (closer === undefined) return;
  const end = document.lineAt(row + 1).range.end;
  await editor.edit(edit => edit.insert(end, '\n' + closer), { undoStopBefore: false, undoStopAfter: false });
  editor.selection = new vscode.Selection(end, end);
}

exports.activate = async context => {
  context.subscriptions.push(
    vscode.workspace.onDidChangeTextDocument(closeBlock),
    vscode.tasks.registerTaskProvider('korvel', tasks),
    vscode.commands.registerCommand('korvel.run', withFile(document => vscode.tasks.executeTask(taskOf('run', document.fileName)))),
    vscode.commands.registerCommand('korvel.debug', withFile(document => vscode.debug.startDebugging(undefined,
      { type: 'korvel', request: 'launch', name: 'Debug', program: document.fileName }))),
    vscode.commands.registerCommand('korvel.openCpp', withFile(openCpp)),
    vscode.debug.registerDebugConfigurationProvider('korvel', debugConfigurations),
    vscode.debug.registerDebugAdapterDescriptorFactory('korvel', {
      createDebugAdapterDescriptor: () => new vscode.DebugAdapterExecutable(setting('kv'), ['dap']),
    }));
  client = new LanguageClient('korvel', 'Korvel', { command: setting('kv'), args: ['lsp'] }, {
    documentSelector: [{ language: 'korvel' }],
  });
  try {
    await client.start();
  } catch (problem) {
    vscode.window.showErrorMessage(`kv lsp does not start: ${problem.message}. The setting korvel.kv tells where kv is.`);
  }
};

exports.deactivate = () => client && client.stop();
