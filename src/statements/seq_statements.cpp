#include "statements/handlers.h"

#include <algorithm>

#include "analysis/effects.h"
#include "base/report.h"
#include "expressions/in_order.h"
#include "expressions/order.h"
#include "expressions/sequence_walks.h"
#include "statements/words.h"

namespace {

enum class Argument : unsigned char { Index, Value, Sequence, Array, Order };

// What becomes of the Sequence: nothing that a loop over it could meet, another order, or items come and go.
enum class Change : unsigned char { None, Order, Items };

// What the statement tells the loops over the Sequence that it stands in: to store their items, which its first
// argument goes through, or a member of KVSeqWalk that is called before it; null for a change that no loop has to
// know about.
struct Notice {
    bool byArgument;
    const char* before;
    Change change;
};
constexpr Notice unseen = {false, nullptr, Change::Items};
constexpr Notice stores = {true, nullptr, Change::Items};
constexpr Notice storesBefore = {false, "Store", Change::Items};
constexpr Notice moves = {false, "Leave", Change::Items};
constexpr Notice inPlace = {false, nullptr, Change::None};
constexpr Notice reorders = {false, nullptr, Change::Order};

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
     stores,
     "SeqInsert expects: SeqInsert seq, index, value"},
    {"seqset",
     "Set",
     {Argument::Index, Argument::Value},
     inPlace,
     "SeqSet expects: SeqSet seq, index, value"},
    {"seqdelete", "DeleteValue", {Argument::Value}, stores, "SeqDelete expects: SeqDelete seq, value"},
    {"seqdeleteat", "DeleteAt", {Argument::Index}, stores, "SeqDeleteAt expects: SeqDeleteAt seq, index"},
    {"seqclear", "Clear", {}, moves, "SeqClear expects: SeqClear seq"},
    {"seqaddfirst",
     "AddFirst",
     {Argument::Value},
     storesBefore,
     "SeqAddFirst expects: SeqAddFirst seq, value"},
    {"seqreverse", "Reverse", {}, reorders, "SeqReverse expects: SeqReverse seq"},
    {"seqswap", "Swap", {Argument::Sequence}, moves, "SeqSwap expects: SeqSwap seqA, seqB"},
    {"seqfromarray", "FromArray", {Argument::Array}, moves, "SeqFromArray expects: SeqFromArray seq, array"},
    {"seqsort", "", {Argument::Order}, reorders, "SeqSort expects: SeqSort seq [, ascending]"},
};

const Row& RowOf(const std::string& keyword) {
    for (const Row& row : rows)
        if (IsWord(keyword, row.word)) return row;
    ReportFatal("Internal error: no Seq statement '" + keyword + "'");
}

Expr& Translated(TokenSpan tokens, const Row& row) {
    if (tokens.empty()) ReportFatal(row.expects);
    return TranslateValue(tokens, ExprMode::Condition);
}

Expr& SequenceArgument(TokenSpan tokens, const Row& row, const std::string& keyword) {
    Expr& sequence = Translated(tokens, row);
    if (sequence.type.IsKnown() && !sequence.type.sequence)
        ReportFatal("'" + keyword + "' works on a Sequence, got " + KorvelName(sequence.type) +
                        HintAtSequence(sequence.type),
                    tokens);
    if (sequence.type.cls != nullptr) NeedClass(sequence.type.cls);
    return sequence;
}

Expr& NumberArgument(TokenSpan tokens, const Row& row, const std::string& keyword, const char* what) {
    Expr& number = Translated(tokens, row);
    if (number.type.IsKnown() && !number.type.IsNumber())
        ReportFatal("The " + std::string(what) + " of '" + keyword + "' must be a number, got " +
                        KorvelName(number.type),
                    tokens);
    return number;
}

Expr& ValueArgument(const Expr& sequence, TokenSpan tokens, const Row& row, const std::string& keyword) {
    Expr& value = Translated(tokens, row);
    ValueType item = sequence.type.Item();
    if (sequence.type.IsKnown() && value.type.IsKnown() && !Assignable(item, value.type))
        ReportFatal("'" + keyword + "' needs a value of type " + KorvelName(item) + ", got " +
                        KorvelName(value.type) + ConversionHint(item, value.type),
                    tokens);
    return value;
}

Expr& OtherSequence(const Expr& sequence, TokenSpan tokens, const Row& row, const std::string& keyword) {
    Expr& other = SequenceArgument(tokens, row, keyword);
    if (sequence.type.IsKnown() && other.type.IsKnown() && sequence.type != other.type)
        ReportFatal("'" + keyword + "' needs two Sequences of the same type, got " +
                    KorvelName(sequence.type) + " and " + KorvelName(other.type));
    if (other.isCall) ReportFatal("'" + keyword + "' needs a Sequence variable, not the result of a call");
    return other;
}

// Whether it could be told that the array is worked out between two uses of the Sequence.
bool NamesBoth(const Expr& sequence, const Expr& array) {
    if (!MayRepeat(sequence)) return true;
    return array.effects &&
           OrderCanBeSeen({EffectsOfTarget(sequence.source), EffectsOfAssigned(array.source)});
}

// FromArray takes a vector of the very item type; everything else is copied item by item:
//     seq.Clear(); for(auto&& __kvItem : array) seq.Add(__kvItem);
// Where calls could tell, both are found once, before the Sequence changes:
//     { auto&& __kvTarget = seq; auto&& __kvItems = array; __kvTarget.Clear(); for(...) ...; }
void EmitFromArray(State& state, const Expr& sequence, TokenSpan tokens, const Row& row) {
    const Expr& array = Translated(tokens, row);
    Code target = ValueText(sequence);
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
    Code source = WalkableText(array);
    const bool bits = item.Is(Base::Bool) && VariableOf(array) != nullptr && !array.variable->handsOnBools;
    const bool stored = array.byValue || bits || (!item.Is(Base::Element) && !item.Is(Base::Bool));
    const bool whole = from == item && stored && array.form != ArrayForm::Fixed;
    if (whole || !sequence.type.IsKnown()) {
        EmitLine(state, Away(AwayFrom(sequence, true), target + ".FromArray(" + source + ")") + ";");
        return;
    }
    std::string value = item.Is(Base::Element) ? "*__kvItem" : "__kvItem";
    const bool named = NamesBoth(sequence, array);
    Code names;
    if (named) {
        names = "{ auto&& __kvTarget = " + target + "; auto&& __kvItems = " + source + "; ";
        target = "__kvTarget";
        source = "__kvItems";
    }
    const AwayWalks away = AwayFrom(sequence, true);
    EmitLine(state, names + Away(away, target + ".Clear()") + "; for(auto&& __kvItem : " + source + ") " +
                        Away(away, target + ".Add(" + value + ")") + (named ? "; }" : ";"));
}

// The Method that sorts items of the class; null when it has none that fits.
const Routine* CompareOf(const ClassInfo& cls) {
    const Routine* compare = FindMethod(cls, "Compare");
    const bool fits = compare != nullptr && compare->parameters.size() == 1 && compare->result.IsNumber() &&
                      Assignable(compare->parameters[0].type, Single(Base::Element, &cls));
    return fits ? compare : nullptr;
}

Expr& ArgumentFor(Argument kind, const Expr& sequence, TokenSpan tokens, const Row& row,
                  const std::string& keyword) {
    switch (kind) {
        case Argument::Index:
            return NumberArgument(tokens, row, keyword, "index");
        case Argument::Order:
            return NumberArgument(tokens, row, keyword, "order");
        case Argument::Sequence:
            return OtherSequence(sequence, tokens, row, keyword);
        default:
            return ValueArgument(sequence, tokens, row, keyword);
    }
}

// Whether an argument may change where the Sequence is found.
bool MovesSequence(const Expr& sequence, const PartList& arguments) {
    for (Expr argument : PartRange{arguments.First()}) {
        argument.next = nullptr;
        if (IsLookUpSeen(sequence, &argument)) return true;
    }
    return false;
}

// The text of an argument, and of another Sequence that changes too.
Code ArgumentText(const Expr& argument, const Row& row, std::size_t i) {
    if (row.arguments[i] != Argument::Sequence) return ValueText(argument);
    const Code calls = WalkCalls(argument, row.notice.before, ", ");
    const Code text = TextOf(argument);
    return Away(AwayFrom(argument, true), calls.text.empty() ? text : "(" + calls + text + ")");
}

// KVL_s.Member(arguments)
Code MemberCall(const Expr& sequence, const std::vector<TokenSpan>& parts, const Row& row,
                const std::string& keyword, const std::string& member) {
    PartList arguments;
    for (std::size_t i = 0; i < row.arguments.size(); ++i)
        arguments.Add(ArgumentFor(row.arguments[i], sequence, parts[i + 1], row, keyword));
    InOrder inOrder;
    const bool named = OrderMatters(arguments.First());
    Code object = ValueText(sequence);
    if (named && MovesSequence(sequence, arguments)) object = inOrder.NameObject(sequence.type, object);
    Code texts;
    std::size_t i = 0;
    for (const Expr& argument : PartRange{arguments.First()}) {
        const bool isValue = row.arguments[i] == Argument::Value;
        Code text = ArgumentText(argument, row, i);
        if (named) text = inOrder.Name(isValue ? sequence.type.Item() : argument.type, text);
        if (i == 0 && row.notice.byArgument) text = StoreWalks(sequence, text);
        if (i++ > 0) texts += ", ";
        texts += text;
    }
    const Code call = object + "." + member + "(" + texts + ")";
    if (!named) return call;
    Code ordered;
    inOrder.Write(ordered, "void", call);
    return ordered;
}

// Ascending without an order.
Code SortCall(const Expr& sequence, const std::vector<TokenSpan>& parts, const Row& row,
              const std::string& keyword) {
    const ClassInfo* cls = sequence.type.cls;
    const Routine* compare = cls != nullptr ? CompareOf(*cls) : nullptr;
    if (cls != nullptr && compare == nullptr)
        ReportUnknown("SeqSort on a Sequence of " + cls->name +
                          " requires a 'Method Compare:Int(other:" + cls->name + ")' on " + cls->name,
                      sequence.source);
    const char* member = cls != nullptr ? "SortCompare" : "SortNatural";
    const Code call = parts.size() == 1 ? ValueText(sequence) + "." + member + "(true)"
                                        : MemberCall(sequence, parts, row, keyword, member);
    return compare == nullptr ? call : Away(AwayFromCall(*compare, nullptr), call);
}

// On a line of its own: __kvWalk_KVL_x.Leave();
void TellWalksBefore(State& state, const Expr& sequence, const Row& row) {
    if (row.notice.change == Change::Items) NoteSequenceChange(sequence);
    if (row.notice.before == nullptr) return;
    Code calls = WalkCalls(sequence, row.notice.before, "; ");
    if (calls.text.empty()) return;
    calls.text.pop_back();
    EmitLine(state, calls);
}

}  // namespace

// SeqAdd list , value      and the others, with or without parentheses
//     KVL_list.Add(value);
void TranslateSeqStatement(State& state, TokenSpan tokens) {
    const std::string& keyword = tokens[0];
    const Row& row = RowOf(keyword);
    std::vector<TokenSpan> parts = tokens.From(1).WithoutParentheses().SplitAt(',');
    if (parts.empty() || parts[0].empty()) ReportFatal("'" + keyword + "' requires a Sequence argument");
    const bool sorts = IsWord(keyword, "seqsort");
    const Expr& sequence = SequenceArgument(parts[0], row, keyword);
    const bool orderLeftOut = sorts && parts.size() == 1;
    if (parts.size() != row.arguments.size() + 1 && !orderLeftOut) ReportFatal(row.expects);
    TellWalksBefore(state, sequence, row);
    if (IsWord(keyword, "seqfromarray")) return EmitFromArray(state, sequence, parts[1], row);
    const Code call = sorts ? SortCall(sequence, parts, row, keyword)
                            : MemberCall(sequence, parts, row, keyword, row.member);
    const Change change = row.notice.change;
    EmitLine(state, (change == Change::Order ? WhileReordered(sequence, call)
                                             : Away(AwayFrom(sequence, change == Change::Items), call)) +
                        ";");
}
