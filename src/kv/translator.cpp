#include "kv/translator.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "base/utf8.h"
#include "kv/compile_units.h"
#include "kv/platform.h"
#include "kv/stamp.h"
#include "kv/translation.h"
#include "kv/write_file.h"

namespace {

const char commandWord[] = "--translate";
const char checkWord[] = "--check";
const char silentWord[] = "--no-warnings";
const char recordWord[] = "--keep", recordAllWord[] = "--keep-all";

// Behind the command: the source, the folder for the C++, the file for what was found out, the installation, flags.
enum Words : std::size_t { commandAt, sourceAt, outputAt, replyAt, installationAt, flagsAt };

struct FlagRow {
    const char* word;
    bool korvel::Request::*flag;
};
const FlagRow flagRows[] = {{"--debug", &korvel::Request::debug}, {"--debugger", &korvel::Request::debugger},
                            {"--safe", &korvel::Request::safe},   {"--fast", &korvel::Request::fast},
                            {"--units", &korvel::Request::units}, {"--places", &korvel::Request::places}};

// What translates: kv itself, and the words that it reads.
std::string RecordKey(const std::vector<std::string>& arguments) {
    const std::string& installation = arguments[installationAt];
    return MarkOf(OwnExecutable()) + MarkOf(installation + "/config/keywords.txt") +
           MarkOf(installation + "/config/cpp.txt");
}

}  // namespace

std::vector<std::string> TranslatorCommand(const Job& job) {
    std::vector<std::string> command = {
        job.kv, commandWord, job.source, job.build.cppFolder, job.build.translation, job.installation};
    if (!NeedsCompiler(job.options)) command.emplace_back(checkWord);
    if (job.options.noWarnings) command.emplace_back(silentWord);
    if (job.options.debug) command.emplace_back("--debug");
    if (IsForDebugger(job.options)) command.emplace_back("--debugger");
    if (job.options.safe) command.emplace_back("--safe");
    if (IsFast(job.options)) command.emplace_back("--fast");
    if (ComesInUnits(job.options)) command.insert(command.end(), {"--units", recordWord});
    if (TellsPlaces(job.options)) command.emplace_back("--places");
    return command;
}

bool IsTranslatorCommand(const std::vector<std::string>& arguments) {
    return arguments.size() >= flagsAt && arguments[commandAt] == commandWord;
}

int TranslateAsCommanded(const std::vector<std::string>& arguments) {
    const auto has = [&arguments](const char* word) {
        return std::find(arguments.begin() + flagsAt, arguments.end(), word) != arguments.end();
    };
    korvel::Request request;
    request.source = arguments[sourceAt];
    request.output = arguments[outputAt];
    request.installation = arguments[installationAt];
    request.warnings = !has(silentWord);
    for (const FlagRow& row : flagRows) request.*row.flag = has(row.word);
    request.recordsAll = has(recordAllWord);
    if (has(recordWord) || request.recordsAll) request.record = arguments[replyAt] + ".kept";
    request.recordKey = RecordKey(arguments);
    const korvel::Result result = has(checkWord) ? korvel::Check(request) : korvel::Build(request);
    if (request.recordsAll || result.recorded > 0)
        std::printf("kept %zu of %zu files\n", result.recorded, result.sources.size());
    return WriteOver(PathOf(arguments[replyAt]), PackTranslation(result)) ? 0 : 1;
}
