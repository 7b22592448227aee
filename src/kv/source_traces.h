// What of the Korvel sources can turn up in what C++ compilers and linkers say.
#pragma once

#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

struct TracePlace {
    std::string file;
    int line = 0;
};

// Without the blanks around it.
std::string Trimmed(const std::string& text);

// What of the Korvel sources can turn up in a message about the C++: lines of inline C++ by their place or, where the
// generated C++ does not lead there (--plain), by their text, and where blocks of C declarations and Linker lines stand.
class SourceTraces {
public:
    explicit SourceTraces(const std::vector<std::string>& sources) {
        for (const std::string& source : sources) Read(source);
    }

    const TracePlace* InlineLine(const std::string& text) const;
    bool IsSource(const std::string& file) const { return linesInline_.count(file) != 0; }
    bool IsInline(const TracePlace& place) const;

    // The first Linker line or line of an Extern block that contains the text; its file is empty if there is none.
    TracePlace LineWith(const std::string& text) const;

private:
    void Read(const std::string& source);

    std::unordered_map<std::string, TracePlace> inlineLines_;
    std::map<std::string, std::set<int>> linesInline_;  // of each source
    std::vector<std::pair<std::string, TracePlace>> linkingLines_;
};
