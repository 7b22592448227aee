// Finds the cases on disk and registers one test for each case and mode.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <optional>
#include <set>

#include "program_test.h"
#include "toolchain.h"

namespace fs = std::filesystem;

namespace {

class CaseTest : public testing::Test {
public:
    CaseTest(Case test, std::string mode) : test(std::move(test)), mode(std::move(mode)) {}
    void TestBody() override { RunCase(test, mode); }

private:
    Case test;
    std::string mode;
};

// A file whose directives are wrong fails on its own, not the others with it.
class BrokenFileTest : public testing::Test {
public:
    explicit BrokenFileTest(std::string problem) : problem(std::move(problem)) {}
    void TestBody() override { FAIL() << problem; }

private:
    std::string problem;
};

std::vector<Case> ReadCasesOrFail(const fs::path& file, const std::string& suite) {
    try {
        return ReadCases(file.string());
    } catch (const std::exception& error) {
        const std::string name = file.stem().string() + "_directives", problem = error.what();
        testing::RegisterTest(suite.c_str(), name.c_str(), nullptr, nullptr, file.c_str(), 1,
                              [problem]() -> testing::Test* { return new BrokenFileTest(problem); });
        return {};
    }
}

std::string SuiteName(const fs::path& file, const fs::path& root) {
    std::string name = fs::relative(file.parent_path(), root).generic_string();
    std::replace_if(
        name.begin(), name.end(), [](char c) { return c == '/' || c == '.' || c == '-'; }, '_');
    return "cases_" + name;
}

// Every program that runs does so under -fast, too. What its text looks like is said of the plain one.
std::optional<Case> FastCase(const Case& test) {
    const auto has = [&](const char* mode) {
        return std::find(test.modes.begin(), test.modes.end(), mode) != test.modes.end();
    };
    const bool runs = !test.wantsError && test.command.empty() && !test.translateOnly;
    if (!runs || !has("plain") || has("fast")) return {};
    Case fast = test;
    fast.modes = {"fast"};
    fast.fragments.clear();
    for (const Fragment& fragment : test.fragments)
        if (fragment.where == "run-stderr") fast.fragments.push_back(fragment);
    return fast;
}

void RegisterCases(const fs::path& root) {
    std::vector<fs::path> files;
    for (const auto& entry : fs::recursive_directory_iterator(root)) {
        if (entry.path().extension() == ".kvl") files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    std::set<std::string> taken;
    for (const fs::path& file : files) {
        const std::string suite = SuiteName(file, root);
        std::vector<Case> cases = ReadCasesOrFail(file, suite);
        std::vector<Case> more;
        for (const Case& test : cases)
            if (std::optional<Case> fast = FastCase(test)) more.push_back(std::move(*fast));
        cases.insert(cases.end(), more.begin(), more.end());
        for (const Case& test : cases) {
            for (const std::string& mode : test.modes) {
                const std::string name = test.name + (mode == "plain" ? "" : "_" + mode);
                if (!taken.insert(suite + "." + name).second)
                    throw std::runtime_error(test.place + ": second case named " + name);
                Case own = test;
                own.name = suite + "." + test.name;
                testing::RegisterTest(suite.c_str(), name.c_str(), nullptr, nullptr, file.c_str(), 1,
                                      [own, mode]() -> testing::Test* { return new CaseTest(own, mode); });
            }
        }
    }
}

}  // namespace

void RegisterExamples(const std::string& root);  // examples_test.cpp

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    try {
        fs::create_directories(GetPlaces().work);
        RegisterCases(GetPlaces().source + "/tests/cases");
        RegisterExamples(GetPlaces().source + "/examples");
    } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
        return 1;
    }
    return RUN_ALL_TESTS();
}
