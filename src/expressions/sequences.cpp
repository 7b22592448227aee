// Functions over Sequences, and the checks that they share with the Seq statements.
#include <unordered_map>
#include <unordered_set>

#include "base/report.h"
#include "expressions/sequence_walks.h"
#include "expressions/walk.h"
#include "prelude/output.h"

namespace {

enum class SeqResult : unsigned char { Item, Int, Array };
enum class SeqArgument : unsigned char { None, Index, Value };

struct SeqFunction {
    const char* member;
    SeqArgument second;
    SeqResult result;
    const char* usage;
};

const std::unordered_map<std::string, SeqFunction> seqFunctions = {
    {"seqget", {"Get", SeqArgument::Index, SeqResult::Item, "SeqGet expects: SeqGet(seq, index)"}},
    {"seqlength", {"Length", SeqArgument::None, SeqResult::Int, "SeqLength expects: SeqLength(seq)"}},
    {"seqfirst", {"First", SeqArgument::None, SeqResult::Item, "SeqFirst expects: SeqFirst(seq)"}},
    {"seqlast", {"Last", SeqArgument::None, SeqResult::Item, "SeqLast expects: SeqLast(seq)"}},
    {"seqnext", {"Next", SeqArgument::None, SeqResult::Item, "SeqNext expects: SeqNext(seq)"}},
    {"seqbefore", {"Before", SeqArgument::None, SeqResult::Item, "SeqBefore expects: SeqBefore(seq)"}},
    {"seqisempty", {"IsEmpty", SeqArgument::None, SeqResult::Int, "SeqIsEmpty expects: SeqIsEmpty(seq)"}},
    {"seqcontains",
     {"Contains", SeqArgument::Value, SeqResult::Int, "SeqContains expects: SeqContains(seq, value)"}},
    {"seqremovefirst",
     {"RemoveFirst", SeqArgument::None, SeqResult::Item, "SeqRemoveFirst expects: SeqRemoveFirst(seq)"}},
    {"seqremovelast",
     {"RemoveLast", SeqArgument::None, SeqResult::Item, "SeqRemoveLast expects: SeqRemoveLast(seq)"}},
    {"seqfind", {"Find", SeqArgument::Value, SeqResult::Int, "SeqFind expects: SeqFind(seq, value)"}},
    {"seqtoarray", {"ToArray", SeqArgument::None, SeqResult::Array, "SeqToArray expects: SeqToArray(seq)"}},
};

void RequireSequence(const Expr& expr, const std::string& name) {
    if (!expr.type.IsKnown() || expr.type.sequence) {
        if (expr.type.base == Base::Element) NeedClass(expr.type.cls);
        return;
    }
    ReportFatal("'" + name + "' requires a Sequence argument, got " + KorvelName(expr.type), expr.source);
}

std::string ValueFor(const Expr& sequence, const Expr& value, const std::string& name) {
    const ValueType item = sequence.type.Item();
    RequireValue(value);
    if (!Assignable(item, value.type)) {
        ReportFatal("'" + name + "' expects a value of type " + KorvelName(item) + " for a " +
                        KorvelName(sequence.type) + " but got " + KorvelName(value.type) +
                        ConversionHint(item, value.type),
                    value.source);
    }
    return TextAs(value, item);
}

std::string IndexFor(const Expr& index, const std::string& name) {
    if (index.type.IsKnown() && !index.type.IsNumber()) {
        ReportFatal("'" + name + "' expects a number as index but got " + KorvelName(index.type),
                    index.source);
    }
    return index.text;
}

ValueType ResultType(const SeqFunction& function, const Expr& sequence) {
    if (function.result == SeqResult::Int) return Single(Base::Int);
    ValueType type = sequence.type.Item();
    if (function.result == SeqResult::Array) ++type.dims;
    return type;
}

// Loops over the Sequence hear of an item that goes: (__kvWalk_KVL_x.Removing(0), KVL_s.RemoveFirst())
std::string WithWalksTold(const std::string& lowerName, const Expr& sequence, std::string call) {
    const bool first = lowerName == "seqremovefirst";
    if (!first && lowerName != "seqremovelast") return WhileAway(sequence, false, std::move(call));
    const std::string position = first ? "0" : sequence.text + ".Length() - 1";
    const std::string told = TellWalks(sequence, "Removing", position);
    return WhileAway(sequence, true, told == position ? std::move(call) : "(" + told + ", " + call + ")");
}

bool MovesOrRemoves(const std::string& lowerName) {
    static const std::unordered_set<std::string> names = {"seqfirst",  "seqlast",        "seqnext",
                                                          "seqbefore", "seqremovefirst", "seqremovelast"};
    return names.count(lowerName) != 0;
}

}  // namespace

bool IsSeqFunction(const std::string& lowerName) {
    return lowerName.compare(0, 3, "seq") == 0 && seqFunctions.count(lowerName) != 0;
}

Expr ParseSeqFunction(Walk& walk, const std::string& lowerName) {
    const std::string& name = walk.tokens[walk.at - 1];
    const SeqFunction& function = seqFunctions.at(lowerName);
    walk.Take();
    const std::vector<Expr> arguments = ParseArguments(walk);
    if (arguments.empty()) ReportFatal("'" + name + "' requires a Sequence argument", Tokens{name});
    const Expr& sequence = arguments[0];
    if (arguments.size() != (function.second == SeqArgument::None ? 1U : 2U)) ReportFatal(function.usage);
    RequireSequence(sequence, name);

    std::string second;
    if (function.second == SeqArgument::Index) second = IndexFor(arguments[1], name);
    if (function.second == SeqArgument::Value) second = ValueFor(sequence, arguments[1], name);
    Expr expr;
    expr.text =
        WithWalksTold(lowerName, sequence, sequence.text + "." + function.member + "(" + second + ")");
    expr.type = sequence.type.IsKnown() ? ResultType(function, sequence) : ValueType();
    expr.byValue = expr.type.IsArray();
    if (expr.byValue) expr.form = ArrayForm::Owned;
    expr.isCall = true;
    if (MovesOrRemoves(lowerName)) ++callCount;
    return expr;
}
