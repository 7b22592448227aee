#include "kv/compile_units.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <set>
#include <sstream>

#include "base/command_quoting.h"
#include "base/utf8.h"
#include "kv/compiler_call.h"
#include "kv/hash.h"
#include "kv/inputs.h"
#include "kv/link.h"
#include "kv/platform.h"
#include "kv/precompiled.h"
#include "kv/private_folder.h"
#include "kv/stamp.h"
#include "kv/units.h"
#include "kv/write_file.h"

namespace fs = std::filesystem;

namespace {

using Words = std::vector<std::string>;

const char folderName[] = "units";
const char supportHeader[] = "units/prelude.h";

// No code is made of templates.
Words SparingFlags() { return {"-fno-implicit-templates", "-fno-implicit-inline-templates"}; }

std::string Below(const std::string& folder, const std::string& name) {
    return TextOf(PathOf(folder) / PathOf(name));
}

// A name that can stand between quotes.
bool IsPlain(const std::string& path) { return path.find_first_of("\"\\\r") == std::string::npos; }

// The units of one program, and where they are made.
class UnitBuild {
public:
    UnitBuild(Job& theJob, const CompileJob& common) : job(theJob), compile(common) {}

    // What the translation has made. Returns false when that is no units.
    bool Find() {
        const fs::path main = PathOf(job.mainCpp);
        std::istringstream list(ReadWhole(TextOf(fs::path(main).replace_extension(".units"))));
        Words paths, texts;
        for (std::string path; std::getline(list, path);) {
            if (!IsPlain(path)) return false;
            paths.push_back(path);
            texts.push_back(ReadWhole(Below(job.build.cppFolder, path)));
        }
        if (paths.empty()) {
            std::error_code ignored;
            fs::remove_all(PathOf(Below(job.build.folder, folderName)), ignored);
            return false;
        }
        folder = PrivateFolder(job.build.folder, {folderName});
        job.prelude = compile.prelude = PreparePrelude(PrecompileJobOf(job));
        if (folder.empty() || job.prelude.empty()) return false;
        const std::string header = ReadWhole(TextOf(fs::path(main).replace_extension(".h")));
        key = HashOf(ReadableCommandLine(Command("", "", SparingFlags())) + "\n" +
                     ReadWhole(Below(job.build.cppFolder, supportHeader)) + "\n" + header);
        overhead = smallestOverhead + header.size() / headerShare;
        for (std::size_t at = 0; at < paths.size(); ++at)
            units.push_back({paths[at], HashOf(key + "\n" + paths[at] + "\n" + texts[at]), texts[at].size()});
        return true;
    }

    // Whether this very program could not be made from units.
    bool IsRefused() const { return ReadWhole(In("refused")) == AllHashes(); }
    void Refuse() const { WriteOver(PathOf(In("refused")), AllHashes()); }

    // Compiles and links. What leans on batches and could not be linked is made once more in another way.
    bool Make() {
        UnitRecord record = WholeRecord();
        bool maySpare = IsGnu(job.compiler);
        while (MakeObjects(record, maySpare)) {
            if (Link()) {
                Remember();
                return true;
            }
            if (IsDisturbed(job.build) || !GiveUpSparing(record, plan.record)) return false;
            record = plan.record;
            maySpare = false;
        }
        return false;
    }

private:
    // What the compiler spends on the precompiled header, and on the program's own: measured in units of some kilobytes.
    static constexpr std::size_t smallestOverhead = 5000, headerShare = 25;

    Job& job;
    CompileJob compile;
    std::vector<Unit> units;
    std::string folder, key;
    std::size_t overhead = 0;
    UnitPlan plan;
    bool isNew = false;  // something was made

    bool MakeObjects(const UnitRecord& record, bool maySpare) {
        plan = PlanUnits(record, units, overhead, AtOnce(job.options), maySpare);
        std::vector<UnitObject*> missing;  // what takes longest comes first
        for (auto* objects : {&plan.record.batches, &plan.record.singles})
            for (UnitObject& object : *objects)
                if (object.mark.empty()) missing.push_back(&object);
        TellJob();
        if (missing.empty()) {
            if (job.options.verbose) std::fprintf(stderr, "kv: the C++ has not changed\n");
            return true;
        }
        isNew = true;
        return CompileAll(missing);
    }

    bool Link() {
        CompileJob link = compile;
        link.objects.clear();
        for (const std::string& name : plan.linked) link.objects.push_back(Object(name));
        const auto& singles = plan.record.singles;
        link.isTrial = std::any_of(singles.begin(), singles.end(), LeansOnBatches);
        std::string output;
        return MakeProgram(job, link, output);
    }

    std::string In(const std::string& name) const { return Below(folder, name); }
    std::string Object(const std::string& name) const { return In(name + ".o"); }

    std::string AllHashes() const {
        std::string hashes;
        for (const Unit& unit : units) hashes += unit.hash + "\n";
        return hashes;
    }

    // An object is as good as the record of what it was made from.
    std::string MarkOfObject(const UnitObject& object) const {
        return MarkOf(Object(object.name)) + " " + MarkOf(In(object.name + ".d"));
    }

    // What is compiled for an object: the unit, or a file that includes those of the batch. Empty for a unit that is no more.
    std::string SourceOf(const UnitObject& object) const {
        if (IsBatch(object)) return In(object.name + ".cpp");
        const auto members = UnitsOf(object, units);
        return members.empty() ? "" : Below(job.build.cppFolder, members[0]->path);
    }

    Words Command(const std::string& source, const std::string& target, const Words& flags) const {
        CompileJob one = compile;
        one.mainCpp = source;
        one.newObject = target;
        one.newDependencies = target + ".d";
        one.unitFlags = {"-iquote", PathForTool(job.build.cppFolder, job.sourceFolder)};
        one.unitFlags.insert(one.unitFlags.end(), flags.begin(), flags.end());
        return CompileCommand(job.compiler, one);
    }

    static Words FlagsOf(const UnitObject& object) {
        if (IsBatch(object)) return {"-DKV_BATCH"};
        return LeansOnBatches(object) ? SparingFlags() : Words();
    }

    // The record of objects that are there as they were made.
    UnitRecord WholeRecord() const {
        UnitRecord record;
        if (StampHolds(In("stamp"), key)) record = UnpackUnitRecord(ReadWhole(In("record")));
        if (record.key != key) record = UnitRecord();
        record.key = key;
        for (auto* objects : {&record.batches, &record.singles}) {
            objects->erase(std::remove_if(objects->begin(), objects->end(),
                                          [this](const UnitObject& object) {
                                              return object.mark != MarkOfObject(object);
                                          }),
                           objects->end());
        }
        return record;
    }

    bool CompileAll(const std::vector<UnitObject*>& missing) {
        std::vector<Words> commands;
        Words targets;
        for (UnitObject* const object : missing) {
            if (IsBatch(*object)) {
                std::string text;
                for (const Unit* unit : UnitsOf(*object, units)) text += "#include \"" + unit->path + "\"\n";
                if (!WriteOver(PathOf(SourceOf(*object)), text)) return false;
            }
            targets.push_back(In(object->name + ".new"));
            commands.push_back(Command(SourceOf(*object), targets.back(), FlagsOf(*object)));
        }
        const std::string work = "Compiling " + TextOf(PathOf(job.mainCpp).filename());
        if (!RunCompilers(job, commands, targets, work)) return false;
        for (UnitObject* const object : missing) {
            std::error_code ignored;
            const std::string target = In(object->name + ".new");
            fs::rename(PathOf(target + ".d"), PathOf(In(object->name + ".d")), ignored);
            if (!Finish(job, target, Object(object->name))) return false;
            object->mark = MarkOfObject(*object);
        }
        return true;
    }

    // Tells what the program is made from. Older objects that may come to use again count as well.
    void TellJob() const {
        job.compilations.clear();
        for (const auto* objects : {&plan.record.singles, &plan.record.batches})
            for (const UnitObject& object : *objects)
                job.compilations.push_back({SourceOf(object), In(object.name + ".d")});
    }

    // Writes down which objects there are and what they depend on, and removes what is of no use any more.
    void Remember() const {
        if (!isNew) return;
        std::error_code ignored;
        fs::remove(PathOf(In("stamp")), ignored);
        FilesRead read;
        StampFiles files;
        if (!WriteOver(PathOf(In("record")), PackUnitRecord(plan.record)) || !FilesReadByCompiler(job, read))
            return;
        files.sources = ToolFiles(job);
        files.sources.insert(files.sources.end(), read.headers.begin(), read.headers.end());
        files.rivals = read.rivals;
        files.products = {In("record")};
        WriteStamp(In("stamp"), job.build.started, key, files);
        RemoveOthers();
    }

    void RemoveOthers() const {
        std::set<std::string> kept = {"record", "stamp"};
        for (const auto* objects : {&plan.record.singles, &plan.record.batches})
            for (const UnitObject& object : *objects)
                for (const char* const end : {".o", ".d", ".cpp"}) kept.insert(object.name + end);
        std::error_code failed;
        for (fs::directory_iterator entry(PathOf(folder), failed);
             !failed && entry != fs::directory_iterator(); entry.increment(failed)) {
            std::error_code ignored;
            if (kept.count(TextOf(entry->path().filename())) == 0) fs::remove(entry->path(), ignored);
        }
    }
};

}  // namespace

bool ComesInUnits([[maybe_unused]] const Options& options) {
#ifdef __ELF__
    return IsFast(options) && options.optimisation == "-O0" && !IsToStay(options) &&
           options.command != Command::check && !IsForWindows(options);
#else
    return false;  // where linkers know other rules of which routine takes the place of which
#endif
}

bool MakeFromUnits(Job& job, const CompileJob& compile) {
    if (!ComesInUnits(job.options)) return false;
    UnitBuild build(job, compile);
    if (!build.Find() || build.IsRefused()) return false;
    if (build.Make()) return true;
    job.compilations.clear();
    job.objects.clear();
    if (!IsDisturbed(job.build)) build.Refuse();
    return false;
}
