// The language server of Korvel, for editors: protocol 3.17 over a pair of streams.
#pragma once

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace lsp {

// What it takes from the program that it is a part of.
struct Services {
    std::string installation, version;
    std::function<std::string(const std::string& text)> format;
    // What the manual says of a word of the language, in Markdown; empty where it says nothing.
    std::function<std::string(const std::string& word)> explain;
    // What it says of a function of a module of the library or, with an owner, of a Method of that Type.
    std::function<std::string(const std::string& module, const std::string& owner, const std::string& name)>
        describe;
    std::vector<std::string> words;  // of the language, as they are spelt
};

// Serves one client until it leaves. Returns the exit status that the protocol asks for.
int Serve(const Services& services, std::FILE* from, std::FILE* to);

}  // namespace lsp
