// Every program in examples/ prints what examples/expected/ says, in each mode. These are compiled as a
// user compiles them, without the precompiled header.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <sstream>

#include "program_test.h"
#include "toolchain.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* modes[] = {"plain", "safe", "debug", "fast", "safe-fast"};
constexpr int programSeconds = 20;

struct Example {
    std::string name;    // of the files in expected/
    std::string source;  // relative to examples/
};

class ExampleTest : public testing::Test {
public:
    ExampleTest(Example example, std::string root, std::string mode)
        : example(std::move(example)), root(std::move(root)), mode(std::move(mode)) {}
    void TestBody() override;

private:
    Example example;
    std::string root, mode;
};

void ExampleTest::TestBody() {
    const std::string folder = FreshFolder("examples." + example.name + "." + mode);
    const std::string source = folder + "/src/" + example.source, output = folder + "/out";
    fs::create_directories(output);
    fs::copy(root, folder + "/src", fs::copy_options::recursive);
    std::vector<std::string> arguments{"-s", source, "-o", output};
    for (const std::string& flag : FlagsOf(mode)) arguments.push_back(flag);
    const ProcessResult kvt = RunKvt(arguments, folder);
    ASSERT_EQ(kvt.exitStatus, 0) << "kvt " << DescribeEnd(kvt) << "\n" << kvt.out << kvt.err;
    EXPECT_EQ(CheckGenerated(output), "");
    if (GetPlaces().translateOnly) return;

    CompileOptions options;
    options.precompiled = false;
    options.linkerFlags = ReadFile(fs::path(source).replace_extension(".linkflags").string());
    const ProcessResult compiler = CompileProgram(output + "/" + MainCpp(source, mode), folder, options);
    ASSERT_EQ(compiler.exitStatus, 0) << "the C++ compiler " << DescribeEnd(compiler) << "\n"
                                      << compiler.err.substr(0, 4000);

    const std::string expected = root + "/expected/" + example.name;
    ASSERT_TRUE(fs::exists(expected + ".txt")) << "no stored output " << expected << ".txt";
    const ProcessResult program = RunProcess({folder + "/program"}, folder,
                                             ReadFile(root + "/" + example.name + ".in"), programSeconds);
    EXPECT_EQ(program.exitStatus, 0) << "the program " << DescribeEnd(program) << "\n" << program.err;
    const std::string wanted = ReadFile(expected + ".txt");
    EXPECT_TRUE(program.out == wanted) << FirstDifference(wanted, program.out) << "\nfiles: " << folder;
    fs::remove(folder + "/program");
}

// Whether a file is a program of its own rather than something that others include.
bool HasMain(const fs::path& file) {
    std::istringstream text(ReadFile(file.string()));
    for (std::string line; std::getline(text, line);) {
        std::transform(line.begin(), line.end(), line.begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        std::istringstream words(line);
        std::string first, second;
        if (words >> first && first == "function" && std::getline(words >> std::ws, second) &&
            second.compare(0, 4, "main") == 0)
            return true;
    }
    return false;
}

std::vector<Example> FindExamples(const fs::path& root) {
    std::vector<Example> examples;
    for (const auto& entry : fs::directory_iterator(root)) {
        const std::string name = entry.path().filename().string();
        if (entry.is_directory() && fs::exists(entry.path() / "main.kvl"))
            examples.push_back({name, name + "/main.kvl"});
        if (entry.path().extension() == ".kvl" && HasMain(entry.path()))
            examples.push_back({entry.path().stem().string(), name});
    }
    return examples;
}

}  // namespace

void RegisterExamples(const std::string& root) {
    if (!fs::exists(root)) return;
    for (const Example& example : FindExamples(root)) {
        for (const std::string mode : modes) {
            std::string name = example.name + (mode == "plain" ? "" : "_" + mode);
            std::replace_if(
                name.begin(), name.end(), [](unsigned char c) { return std::isalnum(c) == 0; }, '_');
            testing::RegisterTest("examples", name.c_str(), nullptr, nullptr, __FILE__, __LINE__,
                                  [=]() -> testing::Test* { return new ExampleTest(example, root, mode); });
        }
    }
}
