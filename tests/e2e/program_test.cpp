#include "program_test.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "toolchain.h"

namespace fs = std::filesystem;

namespace {

constexpr int programSeconds = 10;

struct Run {
    const Case& test;
    std::string mode, folder, source, output;  // folders and the main source
    ProcessResult kvt, program;
};

// Lets expectations name the places of this run.
std::string Expand(const Run& run, std::string text) {
    const std::pair<const char*, std::string> names[] = {{"{dir}", run.folder + "/src"},
                                                         {"{main}", run.source},
                                                         {"{out}", run.output},
                                                         {"{root}", GetPlaces().stage}};
    for (const auto& [name, value] : names) {
        for (std::size_t at = 0; (at = text.find(name, at)) != std::string::npos; at += value.size()) {
            text.replace(at, std::string(name).size(), value);
        }
    }
    return text;
}

void Translate(Run& run) {
    std::vector<std::string> arguments{"-s", run.source, "-o", run.output};
    if (!run.test.command.empty()) {
        arguments.clear();
        for (const std::string& word : run.test.command) arguments.push_back(Expand(run, word));
    }
    for (const std::string& flag : run.test.flags) arguments.push_back(flag);
    for (const std::string& flag : FlagsOf(run.mode)) arguments.push_back(flag);
    run.kvt = RunKvt(arguments, run.folder);
}

void CheckError(const Run& run) {
    const Case& test = run.test;
    ASSERT_EQ(run.kvt.exitStatus, 1) << "kvt " << DescribeEnd(run.kvt) << "\n" << run.kvt.out << run.kvt.err;
    if (test.streamError) {
        EXPECT_EQ(run.kvt.err, Expand(run, test.error) + "\n") << run.kvt.out;
        return;
    }
    const std::string line = std::to_string(test.errorLine);
    if (test.lexerError) {
        const std::string report = "(line " + line + "): " + test.error + "\nLine: ";
        EXPECT_NE(run.kvt.err.find(report), std::string::npos)
            << "wanted: " << report << "\ngot: " << run.kvt.err;
        EXPECT_NE(run.kvt.err.find(test.errorFile), std::string::npos) << run.kvt.err;
        return;
    }
    const std::size_t at = run.kvt.out.find("Error: ");
    const std::string report = at == std::string::npos ? run.kvt.out : run.kvt.out.substr(at);
    const std::string file = test.errorFile == "none" ? "" : run.folder + "/src/" + test.errorFile;
    EXPECT_EQ(report, "Error: " + Expand(run, test.error) + "\nFile: " + file + "\nLine: " + line + "\n\n")
        << run.kvt.err;
}

std::string WithoutIndent(const std::string& line) {
    const std::size_t first = line.find_first_not_of(" \t");
    return first == std::string::npos ? "" : line.substr(first);
}

// Whether the lines follow one another somewhere, indentation aside.
bool HasLines(const std::string& text, const std::vector<std::string>& wanted) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) lines.push_back(WithoutIndent(line));
    for (std::size_t i = 0; i + wanted.size() <= lines.size(); ++i) {
        std::size_t k = 0;
        while (k < wanted.size() && lines[i + k] == WithoutIndent(wanted[k])) ++k;
        if (k == wanted.size()) return true;
    }
    return false;
}

// The text that a fragment is looked for in; nothing for outputs that this run does not have.
bool TextOf(const Run& run, const std::string& where, bool ran, std::string& text) {
    if (where == "cpp" || where == "lines") text = ReadAll(run.output, ".cpp");
    if (where == "header" || where == "lines") text += ReadAll(run.output, ".h");
    if (where == "kvt-stdout") text = run.kvt.out;
    if (where == "kvt-stderr") text = run.kvt.err;
    if (where == "run-stderr") text = run.program.err;
    return where != "run-stderr" || ran;
}

void CheckFragments(const Run& run, bool ran) {
    for (const Fragment& fragment : run.test.fragments) {
        std::string text;
        if (!TextOf(run, fragment.where, ran, text)) continue;
        std::string wanted = Expand(run, fragment.text[0]);
        bool found = text.find(wanted) != std::string::npos;
        if (fragment.where == "lines") {
            std::vector<std::string> lines;
            for (const std::string& line : fragment.text) lines.push_back(Expand(run, line));
            found = HasLines(text, lines);
            wanted.clear();
            for (const std::string& line : lines) wanted += line + "\n";
        }
        EXPECT_EQ(found, fragment.wanted)
            << (fragment.wanted ? "missing in " : "must not be in ") << fragment.where << ":\n"
            << wanted << "\nfiles: " << run.output << (fragment.where.size() > 6 ? "\n" + text : "");
    }
}

void CompileAndRun(Run& run) {
    CompileOptions options;
    options.sanitize = run.test.sanitize;
    options.linkerFlags = ReadFile(fs::path(run.source).replace_extension(".linkflags").string());
    const std::string cpp = run.output + "/" + MainCpp(run.source, run.mode);
    const ProcessResult compiler = CompileProgram(cpp, run.folder, options);
    ASSERT_EQ(compiler.exitStatus, 0) << "the C++ compiler " << DescribeEnd(compiler) << "\n"
                                      << compiler.err.substr(0, 4000);

    std::vector<std::string> command{run.folder + "/program"};
    for (const std::string& word : run.test.arguments) command.push_back(word);
    run.program = RunProcess(command, run.folder, run.test.input, programSeconds);
    const ProcessResult& program = run.program;
    LogMessages(program);  // run-time checks have messages too
    EXPECT_EQ(program.exitStatus, run.test.exitStatus) << "the program " << DescribeEnd(program) << "\n"
                                                       << program.err;
    const std::string& wanted = run.test.output;
    const bool same = program.out == wanted || program.out + "\n" == wanted;
    EXPECT_TRUE(same) << FirstDifference(wanted, program.out) << "\nsource: " << run.source << "\n"
                      << program.err;
    bool errorsExpected = false;
    for (const Fragment& fragment : run.test.fragments)
        errorsExpected = errorsExpected || fragment.where == "run-stderr";
    if (!errorsExpected) {
        EXPECT_EQ(program.err, "");
    }
    fs::remove(run.folder + "/program");
}

}  // namespace

std::vector<std::string> FlagsOf(const std::string& mode) {
    if (mode == "safe") return {"-safe"};
    if (mode == "debug") return {"-d"};
    if (mode == "fast") return {"-fast"};
    if (mode == "safe-fast") return {"-safe", "-fast"};
    EXPECT_EQ(mode, "plain") << "no such mode";
    return {};
}

std::string MainCpp(const std::string& sourceFile, const std::string& mode) {
    return fs::path(sourceFile).stem().string() + (mode == "debug" ? ".debug.cpp" : ".cpp");
}

void RunCase(const Case& test, const std::string& mode) {
    SCOPED_TRACE(test.place);
    const std::string folder = FreshFolder(test.name + "." + mode);
    Run run{test, mode, folder, folder + "/src/" + test.mainFile, folder + "/out", {}, {}};
    fs::create_directories(run.output);
    for (const auto& [path, bytes] : test.files) WriteFile(folder + "/src/" + path, bytes);

    Translate(run);
    if (test.wantsError) {
        CheckError(run);
        CheckFragments(run, false);
        return;
    }
    const bool translates = test.command.empty();
    const int wantedStatus = translates ? 0 : test.exitStatus;
    ASSERT_EQ(run.kvt.exitStatus, wantedStatus) << "kvt " << DescribeEnd(run.kvt) << "\n"
                                                << run.kvt.out << run.kvt.err;
    EXPECT_EQ(CheckGenerated(run.output), "");
    const bool runs = translates && !test.translateOnly && !GetPlaces().translateOnly;
    if (runs) CompileAndRun(run);
    CheckFragments(run, runs);
}
