//     for (int KVL_i = start; KVL_i <= end; KVL_i++)
//     {
// A step that is no literal may count either way, so its sign picks the comparison at run time:
//     for (KVL_i = start; (step) < 0 ? KVL_i >= end : KVL_i <= end; KVL_i += step)
// One that runs code of the program is asked for once a turn:
//     { KVStep<int> __kvStep_KVL_i(false);
//     for (KVL_i = start; __kvStep_KVL_i.Leads(KVL_i, end, [&]() { return step; }); KVL_i += ...Next(...))
// A counter whose last value may be the last one of its type would never get past the end, so it is asked
// before it counts on whether there is a next value:
//     for (uint8_t KVL_b = 0, __kvMore_KVL_b = 1; __kvMore_KVL_b && KVL_b <= 255;
//          __kvMore_KVL_b = KVL_b <= 255 - 1 && (KVL_b++, true))
#include "base/report.h"
#include "expressions/constants.h"
#include "prelude/support.h"
#include "statements/for_loops.h"
#include "statements/shadowing.h"
#include "statements/words.h"
#include "symbols/identifiers.h"
#include "symbols/scopes.h"

namespace {

struct Counter {
    std::string name;
    std::string cppName;
    ValueType type;
    bool declared = false;  // by this For
    bool typed = false;
};

// The statement cut into its parts.
struct Parts {
    TokenSpan start, end, step;
    bool stepGiven = false;
};

const Hint wayOverItems = {"Write For word EachIn words for items of a list, For Local i = 0 To 9 to count"};
const Hint wayToWrite = {"Write For Local i = 1 To 10, with Step 2 behind it for every other number"};

// For [Local] name [: type] = ; returns the index behind the "=".
std::size_t ReadCounter(TokenSpan tokens, Counter& counter) {
    std::size_t at = 1;
    if (tokens.KeywordAt(at) == Keyword::Local) {
        counter.declared = true;
        ++at;
    }
    counter.name = tokens[at++];
    if (counter.name.empty()) ReportFatal("Expected a loop variable after 'For'" + wayToWrite);
    if (Is(tokens[at], ":")) {
        const std::string& type = tokens[at + 1];
        if (type.empty() || type == "=")
            ReportFatal("Expected type after ':' in For loop", tokens.Slice(at, at + 1));
        counter.type = ParseType(type);
        if (counter.type.Is(Base::Void)) FailUnknownType(type);
        counter.declared = counter.typed = true;
        at += 2;
    }
    if (!Is(tokens[at], "="))
        ReportFatal("Expecting assignment operator" +
                    (tokens.KeywordAt(at) == Keyword::In ? wayOverItems : wayToWrite));
    return at + 1;
}

Parts Cut(TokenSpan tokens, std::size_t at) {
    Parts parts;
    std::size_t to = tokens.Find(Keyword::To, at);
    if (to == noToken) ReportFatal("Expected 'To' in For loop" + wayToWrite);
    std::size_t step = tokens.Find(Keyword::Step, to);
    parts.stepGiven = step != noToken;
    if (!parts.stepGiven) step = tokens.size();
    parts.start = tokens.Slice(at, to);
    parts.end = tokens.Slice(to + 1, step);
    parts.step = tokens.From(step + 1);
    if (parts.start.empty()) ReportFatal("Expected a start value in For loop" + wayToWrite);
    if (parts.end.empty()) ReportFatal("Expected an end value after 'To' in For loop" + wayToWrite);
    if (parts.stepGiven && parts.step.empty())
        ReportFatal("Expected a value after 'Step' in For loop" + wayToWrite);
    return parts;
}

const Expr& Number(TokenSpan tokens, const char* what) {
    const Expr& expr = TranslateValue(tokens, ExprMode::Condition);
    if (expr.type.IsKnown() && !expr.type.IsNumber())
        ReportFatal(
            std::string("The ") + what + " of a For loop must be a number, got " + KorvelName(expr.type),
            tokens);
    return expr;
}

// An untyped counter takes the type of its start value, but never one that is too narrow to count in.
ValueType CounterType(const Expr& start, TokenSpan end, TokenSpan step) {
    ValueType stepType = step.empty() ? Single(Base::Int) : InferType(step);
    if (start.type.Is(Base::Double) || stepType.Is(Base::Double)) return Single(Base::Double);
    bool isLong = start.type.Is(Base::Long) || stepType.Is(Base::Long) || InferType(end).Is(Base::Long);
    return Single(isLong ? Base::Long : Base::Int);
}

void CheckDeclaredCounter(Counter& counter) {
    const Token name(counter.name);
    const Expr& target = TranslateValue(TokenSpan(&name, &name + 1), ExprMode::Statement);
    if (target.isConst)
        ReportFatal("Cannot assign to const variable '" + counter.name + "'", Tokens{counter.name});
    if (!target.assignable && target.type.IsKnown())
        ReportFatal("For needs a loop variable, but '" + counter.name + "' is none", Tokens{counter.name});
    counter.cppName = TextOf(target).text;
    counter.type = target.type;
}

void CheckCounterType(const Counter& counter, const Expr& start) {
    if (!counter.type.IsKnown()) return;
    if (!Assignable(counter.type, start.type))
        FailMismatch(start.type, counter.type, counter.name, start.source);
    if (!counter.type.IsNumber() || counter.type.Is(Base::Bool))
        ReportFatal(
            "For needs a numeric loop variable, but '" + counter.name + "' is " + KorvelName(counter.type),
            Tokens{counter.name});
}

bool IsDigits(const std::string& token) {
    return !token.empty() && token.find_first_not_of("0123456789.") == std::string::npos;
}

// A number, perhaps with a sign: its direction is known from the text.
bool IsLiteralStep(TokenSpan step) {
    std::size_t at = step[0] == "-" || step[0] == "+" ? 1 : 0;
    if (step[at] == "." && at + 2 == step.size()) return IsDigits(step[at + 1]);
    if (at + 1 != step.size()) return false;
    return IsDigits(step[at]) || step[at][0] == '$';
}

// No step, or one of 1 either way.
bool IsOne(TokenSpan step) {
    const bool sign = Is(step[0], "-") || Is(step[0], "+");
    return step.empty() || (step.size() == (sign ? 2U : 1U) && Is(step[sign ? 1 : 0], "1"));
}

// The values that the counter is compared with and counts by; they mean what is outside of the loop.
struct Bounds {
    const Expr* end = nullptr;
    const Expr* step = nullptr;
};

Bounds BoundsOf(const Parts& parts) {
    Bounds bounds;
    bounds.end = &Number(parts.end, "end");
    if (!IsOne(parts.step)) bounds.step = &Number(parts.step, "step");
    return bounds;
}

// How a loop goes on: up, down, or as the sign of the step says when the program runs.
struct Course {
    Code comparison, increment;
    Code step;            // the text that is added in each round, "1" for "++" and "--"
    bool down = false;    // by the text of the step
    bool bySign = false;  // the step is no literal
    std::string asked;    // a step that runs code of the program: its KVStep ...
    Code next;            // ... and what asks it
};

void AskForStep(const Counter& counter, const Code& end, Course& course) {
    RequireSupport(Support::AskedStep);
    course.asked = "__kvStep_" + SafeName(counter.name);
    course.next = "[&]() { return " + course.step + "; }";
    course.comparison = course.asked + ".Leads(" + counter.cppName + ", " + end + ", " + course.next + ")";
    course.increment = counter.cppName + " += " + course.asked + ".Next(" + course.next + ")";
}

Course CourseOf(const Counter& counter, const Bounds& bounds, TokenSpan stepTokens) {
    const Code end = GuardedText(*bounds.end, Level::Shift);
    const Code up = counter.cppName + " <= " + end;
    const Code downTo = counter.cppName + " >= " + end;
    Course course;
    course.down = Is(stepTokens[0], "-");
    course.step = "1";
    course.comparison = course.down ? downTo : up;
    course.increment = counter.cppName + (course.down ? "--" : "++");
    if (IsOne(stepTokens)) return course;
    course.step = GuardedText(*bounds.step, Level::Or);
    course.increment = counter.cppName + " += " + course.step;
    course.bySign = !IsLiteralStep(stepTokens);
    if (!course.bySign) return course;
    if (bounds.step->effects && bounds.step->type.IsKnown())
        AskForStep(counter, end, course);
    else if (course.down)
        course.comparison = "(" + course.step + ") > 0 ? " + up + " : " + downTo;
    else
        course.comparison = "(" + course.step + ") < 0 ? " + downTo + " : " + up;
    return course;
}

// The values that a counter can hold.
struct Range {
    long long least, most;
    const char *leastText, *mostText;
};

const Range* RangeOf(const ValueType& type) {
    static const Range ofByte = {0, 255, "0", "255"};
    static const Range ofShort = {-32768, 32767, "-32768", "32767"};
    static const Range ofInt = {-2147483648LL, 2147483647LL, "(-2147483647 - 1)", "2147483647"};
    if (type.Is(Base::Byte)) return &ofByte;
    if (type.Is(Base::Short)) return &ofShort;
    return type.Is(Base::Int) ? &ofInt : nullptr;
}

// Whether the counter may have to step past its range. One as wide as Int is only suspected when the end
// is written out; what a narrow one meets is often not known before the program runs.
bool MayOverrun(const Range* range, const Counter& counter, const Bounds& bounds, const Course& course) {
    if (range == nullptr) return false;
    const auto end = ConstantOf(*bounds.end);
    const auto step = bounds.step != nullptr ? ConstantOf(*bounds.step) : std::nullopt;
    if (!end || (bounds.step != nullptr && !step)) return !counter.type.Is(Base::Int);
    const double last = end->AsReal() + (step ? step->AsReal() : course.down ? -1 : 1);
    return last < static_cast<double>(range->least) || last > static_cast<double>(range->most);
}

// The question whether the counter can take one more step.
Code HasNext(const Counter& counter, const Course& course, const Range& range) {
    const Code up = counter.cppName + " <= " + range.mostText + " - " + course.step;
    if (!course.bySign && !course.down) return up;
    // A step that counts down is a negative number, but for the "1" of "--".
    const Code down = counter.cppName + " >= " + range.leastText +
                      (course.step.text == "1" ? " + 1" : " - (" + course.step + ")");
    if (!course.bySign) return down;
    if (!course.asked.empty())
        return course.asked + ".HasRoom(" + counter.cppName + ", " + range.leastText + ", " + range.mostText +
               ", " + course.next + ")";
    return "((" + course.step + ") < 0 ? " + counter.cppName + " >= " + range.leastText + " - (" +
           course.step + ") : " + counter.cppName + " <= " + range.mostText + " - (" + course.step + "))";
}

// The header, from the counter's first value on; `declaration` is its type and a blank, or empty.
Code Header(const Counter& counter, const std::string& declaration, const Code& start, const Course& course,
            const Range* range) {
    const Code first = counter.cppName + " = " + start;
    if (range == nullptr)
        return "for (" + declaration + first + "; " + course.comparison + "; " + course.increment + ")";
    const std::string more = "__kvMore_" + SafeName(counter.name);
    const Code begin = declaration.empty() ? "bool " + more + " = (" + first + ", true)"
                                           : declaration + first + ", " + more + " = 1";
    const Code comparison = course.bySign ? "(" + course.comparison + ")" : course.comparison;
    return "for (" + begin + "; " + more + " && " + comparison + "; " + more + " = " +
           HasNext(counter, course, *range) + " && (" + course.increment + ", true))";
}

void OpenScope(const Counter& counter) {
    PushBlock();
    if (counter.declared) DeclareLoopVariable(counter.name, counter.cppName, counter.type);
}

// A name in the header means what is outside of the loop; where nothing is, it means the counter.
Bounds BoundsInScope(const Counter& counter, const Parts& parts) {
    const bool outside = counter.declared && FindVariable(counter.name) != nullptr;
    if (!outside) OpenScope(counter);
    Bounds bounds = BoundsOf(parts);
    if (outside) OpenScope(counter);
    return bounds;
}

}  // namespace

void TranslateCountedFor(State& state, TokenSpan tokens) {
    Counter counter;
    const std::size_t at = ReadCounter(tokens, counter);
    const Parts parts = Cut(tokens, at);
    const Expr& start = Number(parts.start, "start");
    std::string declaration;
    if (counter.declared) {
        if (!counter.typed) counter.type = CounterType(start, parts.end, parts.step);
        counter.cppName = NameBeside(state, counter.name, tokens.From(at));
        declaration = CppName(counter.type) + " ";
    } else {
        CheckDeclaredCounter(counter);
    }
    CheckCounterType(counter, start);
    const Bounds bounds = BoundsInScope(counter, parts);
    const Course course = CourseOf(counter, bounds, parts.step);
    const Range* range = RangeOf(counter.type);
    if (!MayOverrun(range, counter, bounds, course)) range = nullptr;
    const bool asks = !course.asked.empty();
    if (asks)
        EmitLine(state, "{ KVStep<" + CppName(bounds.step->type) + "> " + course.asked + "(" +
                            (course.down ? "true" : "false") + ");");
    EmitLine(state, Header(counter, declaration, TextAs(start, counter.type), course, range));
    EmitLine(state, "{");
    Braces& loop = OpenNewBlock(state, BlockKind::Loop, "For", counter.name);
    if (asks) loop.behind = " }";
    if (counter.declared) NoteNameApart(state, counter.name, counter.cppName);
}
