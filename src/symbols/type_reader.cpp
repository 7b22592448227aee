#include "symbols/type_reader.h"

#include "base/report.h"
#include "lexer/lexer.h"
#include "lexer/source_lines.h"
#include "symbols/identifiers.h"
#include "symbols/symbols.h"

namespace {

constexpr int mostDimensions = 16;  // with 30 a C++ compiler works for minutes

ValueType ParseSequenceItem(const std::string& name) {
    const std::string lower = Lower(name);
    for (const char* allowed : {"int", "double", "string", "byte", "short", "long", "bool"}) {
        if (lower == allowed) return ParseType(name);
    }
    const ClassInfo* cls = FindClass(name);
    if (cls != nullptr && cls->isElement) return Single(Base::Element, cls);
    if (cls != nullptr || HasTypeName(name)) {
        ReportFatal("A Sequence cannot hold a Type. '" + name +
                        "' is a Type - Types have their own list (use EachIn / First / Last), or declare '" +
                        name + "' as an Element to store it in a Sequence.",
                    Tokens{name});
    }
    ReportFatal(
        "A Sequence holds basic data types (Int, Double, String, ...) or Elements. Unknown element type: " +
        name);
}

TypeNote ReadSequence(TokenSpan tokens, std::size_t at) {
    if (tokens.KeywordAt(at + 1) != Keyword::Of || tokens[at + 2].empty()) {
        ReportFatal("Expected 'Of <Type>' after 'Sequence' (e.g. Local x:Sequence Of Int)");
    }
    TypeNote note;
    note.type = ParseSequenceItem(tokens[at + 2]);
    note.type.sequence = true;
    note.name = tokens[at] + " " + tokens[at + 1] + " " + tokens[at + 2];
    note.end = at + 3;
    return note;
}

ValueType ItemType(const std::string& name, bool isArray) {
    const ClassInfo* cls = isArray ? FindClass(name) : nullptr;
    const ValueType type = ParseType(name);
    if (type.base == Base::Void && cls) return Single(cls->isElement ? Base::Element : Base::Object, cls);
    return type;
}

TypeNote Read(TokenSpan tokens, std::size_t at, bool voidAllowed) {
    if (at >= tokens.size())
        ReportFatal("Type annotation incomplete - expected type after ':'" +
                    Hint{"A type stands behind ':', and no line ends with it"});
    if (tokens.KeywordAt(at) == Keyword::Sequence) return ReadSequence(tokens, at);
    TypeNote note;
    note.name = tokens[at];
    note.end = at + 1;
    if (IsWord(note.name, "void") && Is(tokens[note.end], "*")) note.name += tokens[note.end++];
    note.type = ItemType(note.name, Is(tokens[note.end], "["));
    const bool isNone = voidAllowed && IsWord(note.name, "void");
    if (note.type.base == Base::Void && !isNone) FailUnknownType(note.name);
    ReadSizes(tokens, note.end, note);
    return note;
}

}  // namespace

void ReadSizes(TokenSpan tokens, std::size_t at, TypeNote& note) {
    note.end = at;
    while (Is(tokens[note.end], "[")) {
        const std::size_t close = tokens.Matching(note.end);
        if (close == noToken)
            ReportFatal("Array declaration missing closing bracket ]" + Hint{"Write Local a:Int[10]"});
        note.sizes.push_back(tokens.Inside(note.end).Text());
        if (++note.type.dims > mostDimensions)
            ReportFatal("Arrays cannot have more than " + std::to_string(mostDimensions) +
                        " dimensions. Use one and work its index out");
        note.end = close + 1;
    }
}

TypeNote ReadType(TokenSpan tokens, std::size_t at) { return Read(tokens, at, false); }

TypeNote ReadResultType(TokenSpan tokens, std::size_t at) { return Read(tokens, at, true); }

Hint HintAtAnyObject(const ValueType& type) {
    return Hint{type.Is(Base::AnyObject) ? "Hand it to a variable of its Type first: Local p:TPlayer = ..."
                                         : ""};
}
