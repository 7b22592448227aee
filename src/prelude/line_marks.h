// #line directives, which lead from the C++ back to the source: kv asks for them, and the C++ compiler takes them over
// into its messages and into what debuggers and reports of failures read.
#pragma once

#include <string>

// The path of a source from the folder of the main source on. Modules of the installation are not the program's.
std::string ShownPath(const std::string& source);

// "#line 12 \"lib/game.kvl\"" and a line end: what follows stands in this line of the source. The path counts from the
// folder of the main source, so that the C++ is the same wherever it lies.
std::string LineMark(const std::string& source, int line);
// The same without the file, which is that of the mark before.
std::string LineMark(int line);

// What follows is none of the source's.
std::string OwnCodeMark();

// The mark of the place where translation stands; empty unless settings ask for marks.
std::string MarkOfPlace();
