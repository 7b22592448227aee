// Functions over Sequences, and the checks that they share with the Seq statements.
#include <unordered_map>

#include "base/report.h"
#include "expressions/sequence_walks.h"
#include "expressions/walk.h"
#include "expressions/writer.h"
#include "prelude/output.h"

namespace {

enum class SeqResult : unsigned char { Item, Int, Array };
enum class SeqArgument : unsigned char { None, Index, Value };
enum class SeqEffect : unsigned char { None, Moves, RemovesFirst, RemovesLast };

}  // namespace

struct SeqFunction {
    const char* member;
    SeqArgument second;
    SeqResult result;
    const char* usage;
    SeqEffect effect = SeqEffect::None;
};

namespace {

const std::unordered_map<std::string, SeqFunction> seqFunctions = {
    {"seqget", {"Get", SeqArgument::Index, SeqResult::Item, "SeqGet expects: SeqGet(seq, index)"}},
    {"seqlength", {"Length", SeqArgument::None, SeqResult::Int, "SeqLength expects: SeqLength(seq)"}},
    {"seqfirst",
     {"First", SeqArgument::None, SeqResult::Item, "SeqFirst expects: SeqFirst(seq)", SeqEffect::Moves}},
    {"seqlast",
     {"Last", SeqArgument::None, SeqResult::Item, "SeqLast expects: SeqLast(seq)", SeqEffect::Moves}},
    {"seqnext",
     {"Next", SeqArgument::None, SeqResult::Item, "SeqNext expects: SeqNext(seq)", SeqEffect::Moves}},
    {"seqbefore",
     {"Before", SeqArgument::None, SeqResult::Item, "SeqBefore expects: SeqBefore(seq)", SeqEffect::Moves}},
    {"seqisempty", {"IsEmpty", SeqArgument::None, SeqResult::Int, "SeqIsEmpty expects: SeqIsEmpty(seq)"}},
    {"seqcontains",
     {"Contains", SeqArgument::Value, SeqResult::Int, "SeqContains expects: SeqContains(seq, value)"}},
    {"seqremovefirst",
     {"RemoveFirst", SeqArgument::None, SeqResult::Item, "SeqRemoveFirst expects: SeqRemoveFirst(seq)",
      SeqEffect::RemovesFirst}},
    {"seqremovelast",
     {"RemoveLast", SeqArgument::None, SeqResult::Item, "SeqRemoveLast expects: SeqRemoveLast(seq)",
      SeqEffect::RemovesLast}},
    {"seqfind", {"Find", SeqArgument::Value, SeqResult::Int, "SeqFind expects: SeqFind(seq, value)"}},
    {"seqtoarray", {"ToArray", SeqArgument::None, SeqResult::Array, "SeqToArray expects: SeqToArray(seq)"}},
};

void RequireSequence(const Expr& expr, const std::string& name) {
    if (!expr.type.IsKnown() || expr.type.sequence) {
        if (expr.type.base == Base::Element) NeedClass(expr.type.cls);
        return;
    }
    RequireValue(expr);
    ReportFatal("'" + name + "' requires a Sequence argument, got " + KorvelName(expr.type) +
                    HintAtSequence(expr.type),
                expr.source);
}

void CheckValue(const Expr& sequence, const Expr& value, const std::string& name) {
    const ValueType item = sequence.type.Item();
    RequireValue(value);
    if (!Assignable(item, value.type)) {
        ReportFatal("'" + name + "' expects a value of type " + KorvelName(item) + " for a " +
                        KorvelName(sequence.type) + " but got " + KorvelName(value.type) +
                        ConversionHint(item, value.type),
                    value.source);
    }
    CheckConversion(value, item);
}

void CheckIndex(const Expr& index, const std::string& name) {
    RequireValue(index);
    if (index.type.IsKnown() && !index.type.IsNumber()) {
        ReportFatal("'" + name + "' expects a number as index but got " + KorvelName(index.type),
                    index.source);
    }
}

ValueType ResultType(const SeqFunction& function, const Expr& sequence) {
    if (function.result == SeqResult::Int) return Single(Base::Int);
    ValueType type = sequence.type.Item();
    if (function.result == SeqResult::Array) ++type.dims;
    return type;
}

// KVL_s.Get(index)
void WriteMemberCall(Code& out, const Expr& expr) {
    const Expr& sequence = *expr.first;
    const SeqFunction& function = *expr.seqFunction;
    Put(out, sequence, ".", function.member, "(");
    if (function.second == SeqArgument::Index) Write(out, *sequence.next);
    if (function.second == SeqArgument::Value) WriteAs(out, *sequence.next, sequence.type.Item());
    out += ')';
}

// Loops over the Sequence store their items before: (__kvWalk_KVL_x.Store(), KVL_s.RemoveFirst())
void WriteRemoval(Code& out, const Expr& expr) {
    const Code calls = WalkCalls(*expr.first, "Store", ", ");
    if (calls.text.empty()) return WriteMemberCall(out, expr);
    out += "(" + calls;
    WriteMemberCall(out, expr);
    out += ')';
}

}  // namespace

void WriteSeqFunction(Code& out, const Expr& expr) {
    const SeqEffect effect = expr.seqFunction->effect;
    const bool removes = effect == SeqEffect::RemovesFirst || effect == SeqEffect::RemovesLast;
    const AwayWalks away = AwayFrom(*expr.first, removes);
    BeginAway(out, away);
    removes ? WriteRemoval(out, expr) : WriteMemberCall(out, expr);
    EndAway(out, away);
}

bool IsSeqFunction(const std::string& lowerName) {
    return lowerName.compare(0, 3, "seq") == 0 && seqFunctions.count(lowerName) != 0;
}

Expr& ParseSeqFunction(Walk& walk, const std::string& lowerName) {
    const std::string& name = walk.tokens[walk.at - 1];
    const SeqFunction& function = seqFunctions.at(lowerName);
    walk.Take();
    const PartList arguments = ParseArguments(walk);
    if (arguments.size() == 0) ReportFatal("'" + name + "' requires a Sequence argument", Tokens{name});
    const Expr& sequence = *arguments.First();
    if (arguments.size() != (function.second == SeqArgument::None ? 1U : 2U)) ReportFatal(function.usage);
    RequireSequence(sequence, name);
    if (function.second == SeqArgument::Index) CheckIndex(*sequence.next, name);
    if (function.second == SeqArgument::Value) CheckValue(sequence, *sequence.next, name);
    Expr& expr = NewNode(ExprKind::SeqFunction,
                         sequence.type.IsKnown() ? ResultType(function, sequence) : ValueType());
    expr.seqFunction = &function;
    expr.first = arguments.First();
    expr.byValue = expr.type.IsArray();
    if (expr.byValue) expr.form = ArrayForm::Owned;
    expr.isCall = true;
    expr.effects = arguments.HaveEffects() || function.effect != SeqEffect::None;
    return expr;
}
