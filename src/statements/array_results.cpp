#include "statements/array_results.h"

#include "base/report.h"
#include "base/run.h"
#include "base/settings.h"
#include "expressions/constants.h"
#include "lexer/lexer.h"
#include "prelude/output.h"

namespace {

// A declaration whose initialiser calls a routine that has not been translated yet.
struct AwaitedResult {
    std::string file;
    int line = 0;
    std::string name;
    std::vector<std::string> declared;
    const Routine* routine = nullptr;
};

std::vector<AwaitedResult> awaited;  // filled by CheckArrayResult, taken by CheckAwaitedResults
const PartOfRun partOfRun(awaited);

void CheckResultSizes(const std::string& name, const std::vector<std::string>& declared,
                      const Routine& routine) {
    for (std::size_t k = 0; k < declared.size() && k < routine.resultSizes.size(); ++k) {
        const std::optional<long long> here = KnownSize(declared[k]);
        const std::optional<long long> there = KnownSize(routine.resultSizes[k]);
        if (here && there && *here != *there)
            ReportFatal("Array dimension size mismatch: Variable '" + name + "' dimension " +
                            std::to_string(k) + " is [" + declared[k] + "], but " + routine.name +
                            "() returns [" + routine.resultSizes[k] + "]",
                        Tokens{name});
    }
}

bool IsComplete(const Routine& routine, const Routine* open) {
    return &routine != open && !routine.resultSizes.empty();
}

// The sizes of what is returned, empty texts for unknown ones.
std::vector<std::string> SizesOf(const Routine& routine, const Expr& value) {
    std::vector<std::string> sizes;
    const Routine* called = RoutineOf(value);
    if (VariableOf(value) != nullptr)
        sizes = value.variable->sizes;
    else if (called != nullptr && called != &routine)
        sizes = called->resultSizes;
    sizes.resize(static_cast<std::size_t>(value.type.dims));
    for (std::string& size : sizes)
        if (!KnownSize(size)) size.clear();
    return sizes;
}

}  // namespace

std::optional<long long> KnownSize(const std::string& written) {
    return IntegerOf(ConstantIn(Split(written)));
}

void RecordResultSizes(Routine& routine, const Expr& value, bool first) {
    LeanOnOthers();
    const std::vector<std::string> sizes = SizesOf(routine, value);
    if (first) routine.resultSizes = sizes;
    for (std::size_t k = 0; k < sizes.size() && k < routine.resultSizes.size(); ++k)
        if (KnownSize(sizes[k]) != KnownSize(routine.resultSizes[k])) routine.resultSizes[k].clear();
}

std::string CalledName(TokenSpan call) {
    std::size_t name = 0;
    for (std::size_t i = 0; i < call.size(); i = call.Behind(i))
        if (call.SignAt(i) == '\\') name = i + 1;
    return call[name];
}

void CheckArrayResult(const std::string& name, const ValueType& type,
                      const std::vector<std::string>& declared, TokenSpan call, const Expr& value,
                      const Routine* open) {
    const Routine* called = RoutineOf(value);
    const Wording gives = called != nullptr ? Wording("() returns ") : Wording("() returns ", " has ");
    if (type.dims != value.type.dims)
        ReportFatal("Array dimension mismatch: Variable '" + name + "' declared with " +
                        std::to_string(type.dims) + " dimensions, but " + CalledName(call) + gives +
                        std::to_string(value.type.dims) + " dimensions" +
                        Hint{ConversionHint(type, value.type).hint},
                    Tokens{name});
    if (called == nullptr || declared.empty()) return;
    LeanOnOthers();
    if (IsComplete(*called, open))
        CheckResultSizes(name, declared, *called);
    else
        awaited.push_back({settings.currentFile, settings.currentLine, name, declared, called});
}

void CheckAwaitedResults() {
    for (const AwaitedResult& result : awaited) {
        settings.currentFile = result.file;
        settings.currentLine = result.line;
        CheckResultSizes(result.name, result.declared, *result.routine);
    }
    awaited.clear();
}

bool HasSizes(const Expr& value, const std::vector<std::string>& declared, const Routine* open) {
    const Routine* called = RoutineOf(value);
    LeanOnOthers();
    if (called == nullptr || !IsComplete(*called, open)) return false;
    const std::vector<std::string>& sizes = called->resultSizes;
    for (std::size_t k = 0; k < declared.size(); ++k) {
        const std::optional<long long> here = KnownSize(declared[k]);
        if (!here || k >= sizes.size() || here != KnownSize(sizes[k])) return false;
    }
    return !declared.empty();
}
