// Which word closes the block that a line opens.
const closers = {
@PAIRS@
};
const closerOf = word => Object.entries(closers).find(([opener]) => opener.toLowerCase() === word.toLowerCase());
const codeOf = line => line.replace(/"[^"]*"?/g, '"').replace(/;.*/, '');
const depthOf = line => line.search(/\S/);
// Whether the lines end inside the block: functions of C, or C++, need no closers.
function endIn(lines, word) {
  const last = [...lines].reverse().find(line => new RegExp(`^\\s*(End)?${word}\\b`, 'i').test(line));
  return last !== undefined && !/^\s*End/i.test(last);
}

// What has to come behind an empty line that was begun behind a line, which the row tells: the closer of its block, with the
// indentation; undefined where the line opens none, or where it is closed already.
exports.missingCloser = (lines, row) => {
  const code = codeOf(lines[row]), found = closerOf((/^\s*(\w+)/.exec(code) || ['', ''])[1]);
  const isForeign = ['Extern', 'InlineCpp'].some(word => endIn(lines.slice(0, row), word));
  if (!found || isForeign || code.includes('|') || /\bThen\s*\S/i.test(code) || /^\s*\w+\s*=/.test(code)) return undefined;
  const depth = depthOf(lines[row]);
  const next = lines.slice(row + 1).find(line => line.trim() !== '');
  const isClosed = next !== undefined && (depthOf(next) > depth || (depthOf(next) === depth
    && new RegExp(`^\\s*(${found[1].join('|')}|@DIVIDERS@)\\b`, 'i').test(next)));
  return isClosed ? undefined : lines[row].slice(0, depth) + found[1][0];
};
