// The library from outside: any number of programs in one process.
#include "library/korvel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <map>
#include <vector>

#include "case_file.h"

namespace fs = std::filesystem;

namespace {

korvel::Request RequestFor(const std::string& source) {
    korvel::Request request;
    request.installation = STAGE_ROOT;
    request.source = source;
    return request;
}

// Every example in every mode.
std::vector<korvel::Request> AllRequests() {
    std::vector<korvel::Request> requests;
    for (const auto& entry : fs::recursive_directory_iterator(SOURCE_ROOT "/examples")) {
        if (entry.path().extension() != ".kvl") continue;
        for (int flags = 0; flags < 32; ++flags) {
            korvel::Request request = RequestFor(entry.path().generic_string());
            request.debug = (flags & 1) != 0;
            request.safe = (flags & 2) != 0;
            request.fast = (flags & 4) != 0;
            request.traced = (flags & 8) != 0;
            request.commented = (flags & 16) != 0;
            if (!request.debug || !request.safe) requests.push_back(request);
        }
    }
    return requests;
}

// All that comes out, as one text.
std::string TextOf(const korvel::Result& result) {
    std::string text;
    for (const korvel::GeneratedFile& file : result.files) text += "== " + file.path + "\n" + file.text;
    for (const korvel::Diagnostic& said : result.diagnostics)
        text += said.file + ":" + std::to_string(said.line) + ": " + said.message + "\n";
    for (const std::string& flag : result.linkerFlags) text += flag + "\n";
    return text;
}

// A mistake in the middle of everything: two files, open blocks, a timer, a loop over a Sequence.
korvel::Result CheckBroken() {
    korvel::Request request = RequestFor("/nowhere/main.kvl");
    request.overlays = {{"/nowhere/lib/../main.kvl",
                         "Include \"lib/used.kvl\"\nGlobal list:Sequence Of Int\nFunction Main\n"
                         "    AutoCall Tick Every 100\n    EachSeq item In list\n        With Create TUsed\n"
                         "            Print its\\Name((((missing))))\n"},
                        {"/nowhere/lib/used.kvl",
                         "Type TUsed\n    Method Name:String(n:Int)\n    EndMethod\nEndType\n"
                         "Function Tick\nEndFunction\n"}};
    return korvel::Check(request);
}

TEST(Library, TranslatesTheSameWhateverCameBefore) {
    std::vector<korvel::Request> requests = AllRequests();
    ASSERT_FALSE(requests.empty());
    std::map<std::string, std::string> first;
    for (const korvel::Request& request : requests) {
        const korvel::Result result = korvel::Translate(request);
        const bool isWhole =
            fs::path(request.source).parent_path().filename() == "examples";  // no included file
        EXPECT_TRUE(korvel::IsSound(result) || !isWhole) << request.source << "\n" << TextOf(result);
        first[request.source] += TextOf(result);
    }
    std::reverse(requests.begin(), requests.end());
    std::map<std::string, std::string> again;
    for (const korvel::Request& request : requests) {
        EXPECT_FALSE(korvel::IsSound(CheckBroken()));
        again[request.source].insert(0, TextOf(korvel::Translate(request)));
    }
    EXPECT_TRUE(first == again) << "some example comes out differently";
    korvel::Reset();
}

TEST(Library, TellsWhereMistakesAreInTextsFromMemory) {
    const korvel::Result result = CheckBroken();
    EXPECT_EQ(
        TextOf(result),
        "/nowhere/main.kvl:6: With requires a variable that holds an object, not an expression\n"
        "/nowhere/lib/used.kvl:3: Method with return type 'std::string' must have a Return statement\n");
    EXPECT_EQ(result.sources, (std::vector<std::string>{"/nowhere/main.kvl", "/nowhere/lib/used.kvl"}));
}

korvel::Result CheckCase(const Case& test) {
    korvel::Request request = RequestFor("/nowhere/" + test.mainFile);
    for (const auto& [path, text] : test.files) request.overlays.push_back({"/nowhere/" + path, text});
    const auto has = [&test](const char* flag) {
        return std::find(test.flags.begin(), test.flags.end(), flag) != test.flags.end();
    };
    request.safe = has("-safe");
    request.debug = has("-d");
    request.fast = has("-fast");
    return korvel::Check(request);
}

// Cases quote a mistake as kvt does.
bool SaysTheSame(const korvel::Diagnostic& said, const Case& test) {
    std::string wanted = test.error;
    const bool sumsUp =
        wanted.rfind("Transpilation failed: ", 0) == 0;  // open blocks, each told where it starts
    if (sumsUp) return said.message.find(" is missing '") != std::string::npos;
    if (said.line != test.errorLine) return false;
    if (wanted.rfind("ERROR: ", 0) == 0) wanted.erase(0, 7);
    const std::size_t hole = wanted.find("{main}");
    if (hole != std::string::npos) wanted.replace(hole, 6, "/nowhere/" + test.mainFile);
    return said.message == wanted;
}

// Programs with one mistake in the cases: what follows from it must not be told.
TEST(Library, TellsOneMistakeOnce) {
    int cases = 0, once = 0, missed = 0;
    for (const auto& entry : fs::recursive_directory_iterator(SOURCE_ROOT "/tests/cases")) {
        if (entry.path().extension() != ".kvl") continue;
        for (const Case& test : ReadCases(entry.path().string())) {
            if (!test.wantsError || !test.command.empty() || test.errorLine < 0) continue;
            korvel::Result result = CheckCase(test);
            std::vector<korvel::Diagnostic>& said = result.diagnostics;
            said.erase(std::remove_if(said.begin(), said.end(), [](const auto& d) { return d.isWarning; }),
                       said.end());
            const bool found = std::any_of(said.begin(), said.end(),
                                           [&test](const auto& d) { return SaysTheSame(d, test); });
            ++cases;
            if (found && said.size() == 1)
                ++once;
            else
                std::cout << test.place << " wants " << test.errorLine << ": " << test.error << "\n"
                          << TextOf(result) << "\n";
            missed += found ? 0 : 1;
        }
    }
    RecordProperty("percent", once * 100 / cases);
    std::cout << once << " of " << cases << " programs with a mistake give exactly that one; " << missed
              << " do not give it\n";
    EXPECT_GE(once * 100, cases * 95);
    EXPECT_EQ(missed, 0);
}

}  // namespace
