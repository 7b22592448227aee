#include "reuse/file_packing.h"

#include <algorithm>

#include "prelude/support.h"
#include "reuse/packing.h"
#include "symbols/symbols.h"

namespace {

using Kind = Piece::Kind;
using Classes = std::vector<const ClassInfo*>;

void PackClasses(Packer& packer, const Classes& classes) {
    PackList(packer, classes, [&](const ClassInfo* cls) { packer.Text(cls->name); });
}

Classes UnpackClasses(Unpacker& packed) {
    Classes classes;
    UnpackList(packed, [&] { classes.push_back(FindClass(Token(packed.Text()))); });
    return classes;
}

// ---- pieces

// The others are there when the outputs have been opened.
bool IsPacked(const Piece& piece) { return piece.kind != Kind::Opening && piece.kind != Kind::Lists; }

void PackPiece(Packer& packer, const Piece& piece) {
    packer.Number(static_cast<std::uint64_t>(piece.kind));
    packer.Text(piece.cls != nullptr ? piece.cls->name : "");
    packer.Text(piece.text);
    if (piece.kind == Kind::Include) {
        packer.Text(piece.rest.Get().file->text);
        packer.Number(piece.rest.Get().globals);
    }
    if (piece.kind != Kind::Method) PackClasses(packer, piece.needs);
}

void UnpackPiece(Unpacker& packed, FileOutput& out) {
    const auto kind = static_cast<Kind>(packed.Number());
    const std::string_view cls = packed.Text();
    Piece& piece = out.pieces.emplace_back();
    piece.kind = kind;
    piece.cls = cls.empty() ? nullptr : FindClass(Token(cls));
    piece.text = packed.Text();
    if (kind == Kind::Include) {
        piece.rest.Make().file = Token(packed.Text());
        piece.rest.Make().globals = static_cast<std::size_t>(packed.Number());
    }
    if (kind != Kind::Method) piece.needs = UnpackClasses(packed);
}

// ---- Globals and Consts

constexpr std::string GlobalDefinition::*globalTexts[] = {
    &GlobalDefinition::name,        &GlobalDefinition::mark,       &GlobalDefinition::plain,
    &GlobalDefinition::declaration, &GlobalDefinition::definition, &GlobalDefinition::again,
    &GlobalDefinition::empty};
constexpr bool GlobalDefinition::*globalFlags[] = {&GlobalDefinition::needsPrelude,
                                                   &GlobalDefinition::constant, &GlobalDefinition::isPreCalc};

void PackGlobal(Packer& packer, const GlobalDefinition& global) {
    for (const auto text : globalTexts) packer.Text(global.*text);
    for (const auto flag : globalFlags) packer.Number(global.*flag ? 1 : 0);
    PackClasses(packer, global.needs);
    PackList(packer, global.sizeNames, [&](const std::string& name) { packer.Text(name); });
}

GlobalDefinition UnpackGlobal(Unpacker& packed) {
    GlobalDefinition global;
    for (const auto text : globalTexts) global.*text = packed.Text();
    for (const auto flag : globalFlags) global.*flag = packed.Number() != 0;
    global.needs = UnpackClasses(packed);
    UnpackList(packed, [&] { global.sizeNames.emplace_back(packed.Text()); });
    return global;
}

// ---- slips

void PackRange(Packer& packer, const korvel::Range& range) {
    packer.Text(range.file);
    for (const int number : {range.line, range.firstColumn, range.lastColumn})
        packer.Number(static_cast<std::uint64_t>(number));
}

void UnpackRange(Unpacker& packed, korvel::Range& range) {
    range.file = packed.Text();
    for (int* const number : {&range.line, &range.firstColumn, &range.lastColumn})
        *number = static_cast<int>(packed.Number());
}

constexpr std::string korvel::Diagnostic::*diagnosticTexts[] = {
    &korvel::Diagnostic::message, &korvel::Diagnostic::quoted, &korvel::Diagnostic::hint,
    &korvel::Diagnostic::name};

void PackSlip(Packer& packer, const Slip& slip) {
    const korvel::Diagnostic& warning = slip.warning;
    PackRange(packer, warning);
    packer.Number(static_cast<std::uint64_t>(warning.severity));
    for (const auto text : diagnosticTexts) packer.Text(warning.*text);
    PackList(packer, warning.related, [&](const korvel::Related& related) {
        PackRange(packer, related);
        packer.Text(related.message);
    });
    PackList(packer, warning.fixes, [&](const korvel::Fix& fix) {
        PackRange(packer, fix);
        packer.Text(fix.replacement);
    });
}

Slip UnpackSlip(Unpacker& packed) {
    Slip slip;
    korvel::Diagnostic& warning = slip.warning;
    UnpackRange(packed, warning);
    warning.severity = static_cast<korvel::Severity>(packed.Number());
    for (const auto text : diagnosticTexts) warning.*text = packed.Text();
    UnpackList(packed, [&] {
        UnpackRange(packed, warning.related.emplace_back());
        warning.related.back().message = packed.Text();
    });
    UnpackList(packed, [&] {
        UnpackRange(packed, warning.fixes.emplace_back());
        warning.fixes.back().replacement = packed.Text();
    });
    return slip;
}

}  // namespace

std::string PackFile(const FileOutput& out, const AskedWords& asked, const std::vector<Slip>& slips) {
    Packer words;
    PackList(words, asked, [&](const auto& word) {
        words.Text(word.first);
        words.Number(word.second ? 1 : 0);
    });
    Packer packer;
    packer.Text(words.packed);
    PackList(packer, slips, [&](const Slip& slip) { PackSlip(packer, slip); });
    packer.Number(out.support);
    for (const auto use : allProgramUses) packer.Number(out.uses.*use ? 1 : 0);
    PackClasses(packer, out.classesInHeader);
    PackList(packer, out.anchors, [&](int line) { packer.Number(static_cast<std::uint64_t>(line)); });
    PackList(packer, out.globals, [&](const GlobalDefinition& global) { PackGlobal(packer, global); });
    packer.Number(static_cast<std::uint64_t>(std::count_if(out.pieces.begin(), out.pieces.end(), IsPacked)));
    for (const Piece& piece : out.pieces)
        if (IsPacked(piece)) PackPiece(packer, piece);
    return std::move(packer.packed);
}

bool NamesStayOwn(std::string_view packed) {
    Unpacker words(Unpacker(packed).Text());
    bool same = true;
    UnpackList(words, [&] {
        const std::string word(words.Text());
        const bool wasKnown = words.Number() != 0;
        same = same && IsWordOfProgram(word) == wasKnown;
    });
    return same;
}

void UnpackFile(std::string_view packed, FileOutput& out,
                const std::function<void(const std::string&)>& include) {
    Unpacker file(packed);
    file.Text();  // the words, which NamesStayOwn has looked at
    UnpackList(file, [&] { PutSlip(UnpackSlip(file)); });
    out.support = static_cast<std::uint32_t>(file.Number());
    for (const auto use : allProgramUses) out.uses.*use = file.Number() != 0;
    AddUsesOf(out);
    out.classesInHeader = UnpackClasses(file);
    std::vector<int> anchors;
    UnpackList(file, [&] { anchors.push_back(static_cast<int>(file.Number())); });
    std::vector<GlobalDefinition> globals;
    UnpackList(file, [&] { globals.push_back(UnpackGlobal(file)); });
    auto global = globals.begin();
    const auto putGlobals = [&](std::size_t count) {
        while (out.globals.size() < count && global != globals.end())
            PutMarkedGlobal(out, std::move(*global++));
    };
    UnpackList(file, [&] {
        UnpackPiece(file, out);
        if (out.pieces.back().kind != Kind::Include) return;
        const Piece::Rest& included = out.pieces.back().rest.Get();
        putGlobals(included.globals);
        include(included.file->text);
    });
    putGlobals(globals.size());
    out.anchors = std::move(anchors);
}
