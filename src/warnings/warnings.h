// Warnings: what is allowed and nearly always a slip. They are looked for only where settings.warnings says so; then
// each statement is looked at once, before it is translated.
#pragma once

// Looks at the statements that are translated from here on.
void BeginWarnings();

// When all files have been translated: tells what was found, in the order of the program, but for lines that ask for
// silence by a comment with "kv:ok", alone or with the names of warnings behind it.
void TellWarnings();
