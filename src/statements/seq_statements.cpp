#include "statements/seq_statements.h"

#include "driver/report.h"
#include "expressions/sequence_walks.h"
#include "statements/words.h"

namespace {

enum class Argument : unsigned char { Index, Value, Sequence, Array, Order };

// What the statement tells the loops over the Sequence that it stands in: a member of KVSeqWalk that its
// first argument goes through, or one called before it; null for a change that no loop has to know about.
struct Notice {
    const char* byArgument;
    const char* before;
    bool changes;  // items come, go or move
};
constexpr Notice unseen = {nullptr, nullptr, true};
constexpr Notice moves = {nullptr, "Leave", true};
constexpr Notice inPlace = {nullptr, nullptr, false};

struct Row {
    const char* word;
    const char* member;
    std::vector<Argument> arguments;  // behind the Sequence
    Notice notice;
    const char* expects;
};

const Row rows[] = {
    {"seqadd", "Add", {Argument::Value}, unseen, "SeqAdd expects: SeqAdd seq, value"},
    {"seqinsert",
     "InsertAt",
     {Argument::Index, Argument::Value},
     {"Inserting", nullptr, true},
     "SeqInsert expects: SeqInsert seq, index, value"},
    {"seqset",
     "Set",
     {Argument::Index, Argument::Value},
     inPlace,
     "SeqSet expects: SeqSet seq, index, value"},
    {"seqdelete",
     "DeleteValue",
     {Argument::Value},
     {"RemovingValue", nullptr, true},
     "SeqDelete expects: SeqDelete seq, value"},
    {"seqdeleteat",
     "DeleteAt",
     {Argument::Index},
     {"Removing", nullptr, true},
     "SeqDeleteAt expects: SeqDeleteAt seq, index"},
    {"seqclear", "Clear", {}, moves, "SeqClear expects: SeqClear seq"},
    {"seqaddfirst",
     "AddFirst",
     {Argument::Value},
     {nullptr, "InsertingFirst", true},
     "SeqAddFirst expects: SeqAddFirst seq, value"},
    {"seqreverse", "Reverse", {}, moves, "SeqReverse expects: SeqReverse seq"},
    {"seqswap", "Swap", {Argument::Sequence}, moves, "SeqSwap expects: SeqSwap seqA, seqB"},
    {"seqfromarray", "FromArray", {Argument::Array}, moves, "SeqFromArray expects: SeqFromArray seq, array"},
    {"seqsort", "", {Argument::Order}, moves, "SeqSort expects: SeqSort seq [, ascending]"},
};

const Row& RowOf(const std::string& keyword) {
    for (const Row& row : rows)
        if (IsWord(keyword, row.word)) return row;
    ReportFatal("Internal error: no Seq statement '" + keyword + "'");
}

// The tokens between the outermost parentheses when they enclose everything.
TokenSpan WithoutParentheses(TokenSpan tokens) {
    if (!Is(tokens[0], "(")) return tokens;
    int depth = 0;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        if (Is(tokens[i], "(")) ++depth;
        if (Is(tokens[i], ")") && --depth == 0) return i + 1 == tokens.size() ? tokens.Slice(1, i) : tokens;
    }
    return tokens;
}

Expr Translated(TokenSpan tokens, const Row& row) {
    if (tokens.empty()) ReportFatal(row.expects);
    return TranslateExpression(tokens, ExprMode::Condition);
}

Expr SequenceArgument(TokenSpan tokens, const Row& row, const std::string& keyword) {
    Expr sequence = Translated(tokens, row);
    if (sequence.type.IsKnown() && !sequence.type.sequence)
        ReportFatal("'" + keyword + "' works on a Sequence, got " + KorvelName(sequence.type));
    if (sequence.type.cls != nullptr) NeedClass(sequence.type.cls);
    return sequence;
}

std::string NumberArgument(TokenSpan tokens, const Row& row, const std::string& keyword, const char* what) {
    Expr number = Translated(tokens, row);
    if (number.type.IsKnown() && !number.type.IsNumber())
        ReportFatal("The " + std::string(what) + " of '" + keyword + "' must be a number, got " +
                    KorvelName(number.type));
    return ValueText(number);
}

std::string ValueArgument(const Expr& sequence, TokenSpan tokens, const Row& row,
                          const std::string& keyword) {
    Expr value = Translated(tokens, row);
    ValueType item = sequence.type.Item();
    if (sequence.type.IsKnown() && value.type.IsKnown() && !Assignable(item, value.type))
        ReportFatal("'" + keyword + "' needs a value of type " + KorvelName(item) + ", got " +
                    KorvelName(value.type) + ConversionHint(item, value.type));
    return ValueText(value);
}

std::string OtherSequence(const Expr& sequence, TokenSpan tokens, const Row& row,
                          const std::string& keyword) {
    Expr other = SequenceArgument(tokens, row, keyword);
    if (sequence.type.IsKnown() && other.type.IsKnown() && sequence.type != other.type)
        ReportFatal("'" + keyword + "' needs two Sequences of the same type, got " +
                    KorvelName(sequence.type) + " and " + KorvelName(other.type));
    if (other.isCall) ReportFatal("'" + keyword + "' needs a Sequence variable, not the result of a call");
    const std::string text = ValueText(other);
    const std::string calls = WalkCalls(other, row.notice.before, ", ");
    return WhileAway(other, true, calls.empty() ? text : "(" + calls + text + ")");
}

// FromArray takes a vector of the very item type; everything else is copied item by item:
//     seq.Clear(); for(auto& __kvItem : array) seq.Add(__kvItem);
void EmitFromArray(State& state, const Expr& sequence, TokenSpan tokens, const Row& row) {
    Expr array = Translated(tokens, row);
    const std::string target = ValueText(sequence);
    ValueType item = sequence.type.Item();
    if (array.type.IsKnown() && array.type.dims != 1)
        ReportFatal("SeqFromArray needs an array of one dimension, got " + KorvelName(array.type));
    ValueType from = array.type.Item();
    if (sequence.type.IsKnown() && array.type.IsKnown() && !Assignable(item, from))
        ReportFatal("SeqFromArray needs an array of " + KorvelName(item) + ", got " + KorvelName(array.type));
    if (array.form == ArrayForm::Pointer)
        ReportFatal(
            "SeqFromArray needs an array whose size is known. An array parameter does not carry its size: "
            "add its items with SeqAdd in a For loop.");
    std::string source = WalkableText(array);
    bool whole =
        from == item && !item.Is(Base::Element) && !item.Is(Base::Bool) && array.form != ArrayForm::Fixed;
    if (whole || !sequence.type.IsKnown()) {
        EmitLine(state, WhileAway(sequence, true, target + ".FromArray(" + source + ")") + ";");
        return;
    }
    std::string value = item.Is(Base::Element) ? "*__kvItem" : "__kvItem";
    EmitLine(state, WhileAway(sequence, true, target + ".Clear()") + "; for(auto&& __kvItem : " + source +
                        ") " + WhileAway(sequence, true, target + ".Add(" + value + ")") + ";");
}

bool ComparesWith(const ClassInfo& cls) {
    const Routine* compare = FindMethod(cls, "Compare");
    return compare != nullptr && compare->parameters.size() == 1 && compare->result.IsNumber() &&
           Assignable(compare->parameters[0].type, Single(Base::Element, &cls));
}

void EmitSort(State& state, const Expr& sequence, const std::string& order) {
    const ClassInfo* cls = sequence.type.cls;
    if (cls != nullptr && !lenient && !ComparesWith(*cls))
        ReportFatal("SeqSort on a Sequence of " + cls->name +
                    " requires a 'Method Compare:Int(other:" + cls->name + ")' on " + cls->name);
    EmitLine(state, WhileAway(sequence, true,
                              ValueText(sequence) + (cls != nullptr ? ".SortCompare(" : ".SortNatural(") +
                                  order + ")") +
                        ";");
}

// The texts of the arguments behind the Sequence, joined by ", ".
std::string Arguments(const Expr& sequence, const std::vector<TokenSpan>& parts, const Row& row,
                      const std::string& keyword) {
    std::string texts;
    for (std::size_t i = 0; i < row.arguments.size(); ++i) {
        TokenSpan part = parts[i + 1];
        std::string text;
        switch (row.arguments[i]) {
            case Argument::Index:
                text = NumberArgument(part, row, keyword, "index");
                break;
            case Argument::Order:
                text = NumberArgument(part, row, keyword, "order");
                break;
            case Argument::Sequence:
                text = OtherSequence(sequence, part, row, keyword);
                break;
            default:
                text = ValueArgument(sequence, part, row, keyword);
                break;
        }
        if (i == 0 && row.notice.byArgument != nullptr)
            text = TellWalks(sequence, row.notice.byArgument, text);
        texts += (i == 0 ? "" : ", ") + text;
    }
    return texts;
}

// On a line of its own: __kvWalk_KVL_x.Leave();
void TellWalksBefore(State& state, const Expr& sequence, const Row& row) {
    if (row.notice.changes) NoteSequenceChange(sequence);
    if (row.notice.before == nullptr) return;
    const std::string calls = WalkCalls(sequence, row.notice.before, "; ");
    if (!calls.empty()) EmitLine(state, calls.substr(0, calls.size() - 1));
}

}  // namespace

void TranslateSeqStatement(State& state, TokenSpan tokens) {
    const std::string& keyword = tokens[0];
    const Row& row = RowOf(keyword);
    std::vector<TokenSpan> parts = SplitAtCommas(WithoutParentheses(tokens.From(1)));
    if (parts.empty() || parts[0].empty()) ReportFatal("'" + keyword + "' requires a Sequence argument");
    const bool sorts = IsWord(keyword, "seqsort");
    Expr sequence = SequenceArgument(parts[0], row, keyword);
    const bool orderLeftOut = sorts && parts.size() == 1;
    if (parts.size() != row.arguments.size() + 1 && !orderLeftOut) ReportFatal(row.expects);
    TellWalksBefore(state, sequence, row);
    if (sorts)
        EmitSort(state, sequence, orderLeftOut ? "true" : Arguments(sequence, parts, row, keyword));
    else if (IsWord(keyword, "seqfromarray"))
        EmitFromArray(state, sequence, parts[1], row);
    else
        EmitLine(state, WhileAway(sequence, row.notice.changes,
                                  ValueText(sequence) + "." + row.member + "(" +
                                      Arguments(sequence, parts, row, keyword) + ")") +
                            ";");
}
