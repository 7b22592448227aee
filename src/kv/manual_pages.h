// The entries of the manual, as `kv doc` and `kv explain` show them. An entry is a section of a page under a heading
// of the third level, which lists the words that it is about: "### While, Wend". On pages of modules, in the folder
// library, it is a section of the first or second level, and about the functions in the first column of its tables.
#pragma once

#include <string>
#include <vector>

struct ManualEntry {
    std::string page;   // "statements"
    std::string title;  // of the page: "Statements"
    std::vector<std::string> names;
    std::string text;  // Markdown, the heading included
};

// All entries of the pages in a folder, page by page; none where there is no such folder.
std::vector<ManualEntry> ReadManual(const std::string& folder);

// Where the pages of the installation are that this kv belongs to.
std::string ManualFolder();

// The entry for a word, as written or else in any letter case, options also without their dashes; nullptr if there is
// none.
const ManualEntry* FindEntry(const std::vector<ManualEntry>& entries, const std::string& word);

// The names that a word may have been meant to be, the likeliest first; at most three.
std::vector<std::string> SimilarNames(const std::vector<ManualEntry>& entries, const std::string& word);

// Markdown as plain text for a terminal.
std::string PlainText(const std::string& markdown);
