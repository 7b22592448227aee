#include "reuse/reuse.h"

#include <algorithm>
#include <filesystem>
#include <unordered_map>
#include <utility>

#include "analysis/routine_digests.h"
#include "base/files.h"
#include "base/run.h"
#include "base/settings.h"
#include "base/text_hash.h"
#include "base/utf8.h"
#include "lexer/source_lines.h"
#include "lexer/token_places.h"
#include "prelude/units.h"
#include "reuse/file_packing.h"
#include "reuse/record.h"
#include "symbols/identifiers.h"

namespace {

// What can be had of a file.
struct Recorded {
    const FileRecord* record;
    std::string_view packed;
};

struct Reuse {
    bool isOn = false;
    Record before;
    std::unordered_map<std::string, Recorded> recorded;  // those that can be had, by source
    std::vector<const Declarations*> changed;            // those with another text
    bool knowsRoutines = false;                          // the digests of all others are still right
    RecordWriter writer;
    std::size_t taken = 0;  // how many have been had
};

Reuse reuse;
const PartOfRun partOfRun(reuse);

// ---- declarations

bool OpensRoutine(Keyword word) { return word == Keyword::Function || word == Keyword::Method; }
bool ClosesRoutine(Keyword word) { return word == Keyword::EndFunction || word == Keyword::EndMethod; }

// Of all that others may know of the file: what stands outside of routines, their heads and whatever the first pass looks at.
std::uint64_t HashOfDeclarations(const std::string& source) {
    Digest digest;
    SourceLines lines(Reading::Uses);
    if (!lines.Open(source)) return 0;
    bool inRoutine = false, inExtern = false;
    while (lines.Next()) {
        for (const TokenSpan statement : lines.Statements()) {
            const Keyword word = statement.KeywordAt(0);
            inRoutine = inRoutine && !ClosesRoutine(word);
            if (!inRoutine || OpensRoutine(word) || Has(word, trait::collected)) {
                digest.Add(statement.size());
                for (const Token* token = statement.first; token != statement.last; ++token)
                    digest.Add((*token)->text);
            }
            inExtern = word == Keyword::Extern || (inExtern && word != Keyword::EndExtern);
            inRoutine = inRoutine || (OpensRoutine(word) && !inExtern);
        }
    }
    return digest.Value();
}

// ---- what has changed

std::string KeyOf(const std::vector<CollectedFile>& files) {
    std::string key = settings.recordKey + "\n" + settings.outputPath + "\n" + settings.installation + "\n";
    for (const bool flag : {settings.fastMode, settings.safeMode, settings.traceMode, settings.outputComments,
                            settings.lineMarks, settings.warnings, settings.columns})
        key += flag ? '1' : '0';
    for (const CollectedFile& file : files) key += "\n" + file.declarations->source;
    return key;
}

// A file with the text that it had.
struct Unchanged {
    const Declarations* declarations;
    const FileRecord* record;
};

// Tells the files with another text from those with the same that have left something. False when some declaration is
// another one.
bool FindChanged(const std::vector<CollectedFile>& files, std::vector<Unchanged>& unchanged) {
    if (reuse.before.table.files.size() != files.size()) return false;
    std::unordered_map<std::string_view, const FileRecord*> known;
    for (const FileRecord& file : reuse.before.table.files) known.emplace(file.source, &file);
    for (const CollectedFile& file : files) {
        const std::string& source = file.declarations->source;
        const auto record = known.find(source);
        if (record == known.end()) return false;
        if (HashOfFile(source) != record->second->text) {
            if (file.output->isModule || HashOfDeclarations(source) != record->second->declarations)
                return false;
            reuse.changed.push_back(file.declarations);
        } else if (record->second->packedSize != 0) {
            unchanged.push_back({file.declarations, record->second});
        }
    }
    return true;
}

template <class Visit>
void ForEachRoutine(const Declarations& file, Visit visit) {
    for (const Prototype& prototype : file.functions)
        if (!prototype.isExtern) visit(Token(prototype.name));
    if (!file.mainName.empty()) visit(Token(file.mainName));
    for (const ClassInfo* cls : file.classes)
        for (const Token method : cls->methods) visit(method);
}

std::uint64_t DigestBefore(Token name) {
    const auto& routines = reuse.before.table.routines;
    const auto known = routines.find(TextHash(name->text));
    return known == routines.end() ? 0 : known->second;
}

// The routines that do something else than before. False when that may be everybody's: handlers of timers may run in every
// call.
bool FindChangedRoutines(std::vector<Token>& routines) {
    if (reuse.changed.empty()) return true;
    RoutineDigests digests;
    if (digests.OfTimers() != reuse.before.table.timers) return false;
    for (const Declarations* file : reuse.changed)
        ForEachRoutine(*file, [&](Token name) {
            if (digests.Of(name) != DigestBefore(name)) routines.push_back(name);
        });
    return true;
}

bool Concerns(const Concerned& concerned, const Declarations& file) {
    bool has = concerned.HasValuesOf(file.source);
    ForEachRoutine(file, [&](Token name) { has = has || concerned.HasRoutine(name); });
    for (const ClassInfo* cls : file.classes) has = has || concerned.HasMaking(*cls);
    return has;
}

std::string PathOfUnit(const FileOutput& main, std::size_t number) {
    return main.folder + "/" + folderOfUnits + std::to_string(number) + ".cpp";
}

OutputMark MarkOf(const std::string& path) {
    const FileFacts facts = Examine(path);
    return facts.kind == FileFacts::Kind::Regular ? OutputMark{facts.size, facts.time} : OutputMark{};
}

// Where nothing is known of files, as on Windows, none does.
bool UnitsStand(const FileOutput& main, const FileRecord& file) {
    for (std::size_t i = 0; i < file.units.size(); ++i) {
        const OutputMark mark = MarkOf(PathOfUnit(main, file.firstUnit + i));
        if (mark == OutputMark() || !(mark == file.units[i])) return false;
    }
    return true;
}

void FindRecorded(const std::vector<CollectedFile>& files) {
    std::vector<Unchanged> unchanged;
    std::vector<Token> routines;
    const bool holds = reuse.before.Read(settings.record) && reuse.before.table.key == KeyOf(files) &&
                       FindChanged(files, unchanged) && FindChangedRoutines(routines);
    reuse.knowsRoutines = holds;
    const Concerned concerned(routines);
    if (!holds || concerned.IsEverything()) return;
    for (const Unchanged& file : unchanged) {
        const std::string_view packed = reuse.before.Packed(*file.record);
        if (!packed.empty() && !Concerns(concerned, *file.declarations) && NamesStayOwn(packed) &&
            UnitsStand(*files.back().output, *file.record))
            reuse.recorded.emplace(file.record->source, Recorded{file.record, packed});
    }
}

// ---- the next record

bool MentionsAnyObject(const std::string& source) {
    const TokenSpan tokens = TokensOf(source);
    return NamesAnyObject() && std::any_of(tokens.begin(), tokens.end(),
                                           [](const std::string& text) { return IsWord(text, "anyobject"); });
}

bool IsKept(const FileOutput& out) {
    return !out.isMain && !out.isModule && !out.leansOnOthers && !MentionsAnyObject(out.source);
}

// Those of a file, with their places.
std::vector<Slip> SlipsOf(const std::string& source, std::size_t from) {
    const std::vector<Slip>& all = NotedSlips();
    std::vector<Slip> slips;
    for (std::size_t i = from; i < all.size(); ++i) {
        if (all[i].warning.file != source) continue;
        slips.push_back(all[i]);
        Locate(slips.back().warning, slips.back().about);
    }
    return slips;
}

}  // namespace

void BeginReuse(const std::vector<CollectedFile>& files) {
    int lines = 0;
    for (const CollectedFile& file : files) lines += file.declarations->lastLine;
    const bool isKnown = Examine(settings.mainSource).kind != FileFacts::Kind::Unknown;  // as on Windows
    reuse.isOn = !settings.record.empty() && lines >= settings.recordFrom && isKnown;
    if (!reuse.isOn) return;
    ReadRoutines();
    FindRecorded(files);
    reuse.writer.Begin(settings.record);
    reuse.writer.table.key = KeyOf(files);
}

bool IsRecorded(const std::string& source) { return reuse.recorded.count(source) != 0; }

void TakeFromRecord(FileOutput& out, const std::function<void(const std::string&)>& include) {
    const auto& [file, packed] = reuse.recorded.at(out.source);
    const FileRecord& record = *file;
    out.isInUnits = true;
    out.firstUnit = record.firstUnit;
    out.unitCount = record.units.size();
    UnpackFile(packed, out, include);
    reuse.writer.Add(record, packed);
    ++reuse.taken;
}

RecordedPass::RecordedPass() : askedAround(ExchangeAskedWords({})), firstSlip(NotedSlips().size()) {}
RecordedPass::~RecordedPass() { ExchangeAskedWords(std::move(askedAround)); }

void RecordedPass::Record(const CollectedFile& file) {
    if (!reuse.isOn) return;
    const FileOutput& out = *file.output;
    FileRecord record;
    record.source = out.source;
    record.text = HashOfFile(out.source);
    record.declarations = HashOfDeclarations(out.source);
    const AskedWords asked = ExchangeAskedWords({});
    reuse.writer.Add(record,
                     IsKept(out) ? PackFile(out, asked, SlipsOf(out.source, firstSlip)) : std::string());
}

void RecordRoutines() {
    if (!reuse.isOn) return;
    RecordTable& table = reuse.writer.table;
    RoutineDigests digests;
    table.timers = digests.OfTimers();
    const auto note = [&](Token name) { table.routines[TextHash(name->text)] = digests.Of(name); };
    if (reuse.knowsRoutines) {
        table.routines = std::move(reuse.before.table.routines);
        for (const Declarations* file : reuse.changed) ForEachRoutine(*file, note);
    } else {
        for (const Token name : NamesOfRoutines()) {
            note(name);
            RoutineDigests::Forget(name);
        }
    }
    reuse.recorded.clear();
    reuse.before = Record();
}

void DropRecordBefore() {
    std::error_code ignored;
    if (reuse.isOn) std::filesystem::remove(PathOf(settings.record), ignored);
}

void EndRecord(const Program& program) {
    if (!reuse.isOn) return;
    std::unordered_map<std::string_view, const FileOutput*> outputs;
    for (const FileOutput& file : program.files) outputs.emplace(file.source, &file);
    for (FileRecord& record : reuse.writer.table.files) {
        const FileOutput& out = *outputs.at(record.source);
        if (out.isInUnits) continue;
        record.firstUnit = out.firstUnit;
        record.units.clear();
        for (std::size_t i = 0; i < out.unitCount; ++i)
            record.units.push_back(MarkOf(PathOfUnit(*program.main, out.firstUnit + i)));
    }
    reuse.writer.End();
}

void AbandonRecord() { reuse.writer = RecordWriter(); }

std::size_t RecordedFiles() { return reuse.taken; }
