// The entries of the manual, as `kv doc` and `kv explain` show them. An entry is a section of a page under a heading
// of the third level, which lists the words that it is about: "### While, Wend"; a comment lists more of them: "<!-- words:
// loop -->". On pages of modules, in the folder
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

// The text of the page of the manual that is called like the word; empty if there is none.
std::string PageAbout(const std::string& word);

// What an entry says first.
std::string FirstSentence(const ManualEntry& entry);

// Where the pages of the installation are that this kv belongs to, and what to say where they are missing.
std::string ManualFolder();
std::string NoManual();

// The entry for a word, as written or else in any letter case, options also without their dashes; nullptr if there is
// none.
const ManualEntry* FindEntry(const std::vector<ManualEntry>& entries, const std::string& word);

// What the page of a module says of one of its functions; with an owner, of a Method of that Type. Empty where it says
// nothing.
std::string RowAbout(const std::vector<ManualEntry>& entries, const std::string& module,
                     const std::string& owner, const std::string& name);

// The names that a word may have been meant to be, the likeliest first; at most three.
std::vector<std::string> SimilarNames(const std::vector<ManualEntry>& entries, const std::string& word);

// Markdown as plain text for a terminal.
std::string PlainText(const std::string& markdown);
