//     for(auto KVL_p : KVL_TPlayer::_instances)         for(auto& KVL_x : KVL_list)
//     {                                                 {
//      if(!KVL_p) continue;
// A loop over a Type whose body may create objects of it walks by index, up to the number of objects at
// its start, because a growing list would break the iterators. -fast has walks of its own.
#include "statements/for_loops.h"
#include "statements/handlers.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "analysis/reach.h"
#include "base/report.h"
#include "base/settings.h"
#include "expressions/sequence_walks.h"
#include "statements/shadowing.h"
#include "statements/words.h"
#include "symbols/identifiers.h"
#include "symbols/scopes.h"

namespace {

// What an EachIn loop walks over.
struct Collection {
    Code text;
    ValueType item;
    const ClassInfo* walked = nullptr;  // the Type, when it walks instances
    ArrayForm itemForm = ArrayForm::None;
    bool sequence = false;
    const Expr* expr = nullptr;  // a Sequence as it was translated
    bool pointers = false;       // items may be null
    bool slot = false;           // Elements reached through pointers
    bool copies = true;          // "auto" makes a copy of the item
};

struct EachHeader {
    std::string name;
    std::string annotation;
    TokenSpan collection;
};

const Hint wayToWalk = {
    "Write For p:TName EachIn TName for all objects of a Type, For n EachIn numbers for items"};

// name [: type] word collection, from index `at` on. The word is EachIn or In.
EachHeader ReadHeader(TokenSpan tokens, std::size_t at, Keyword word, const char* missing) {
    EachHeader header;
    header.name = tokens[at];
    if (Is(tokens[at + 1], ":") && at + 2 < tokens.size()) {
        header.annotation = tokens[at + 2];
        at += 2;
    }
    if (tokens.KeywordAt(at) == Keyword::Local)
        ReportFatal(missing + Hint{"Such a loop declares its variable without Local: For p EachIn list"},
                    tokens.Slice(at, at + 1));
    if (tokens.KeywordAt(at + 1) != word) ReportFatal(missing + wayToWalk);
    header.collection = tokens.From(at + 2);
    if (header.collection.empty()) ReportFatal("Missing value section within EachIn loop" + wayToWalk);
    for (const Keyword stray : {Keyword::To, Keyword::Step, Keyword::EachIn, Keyword::In})
        if (header.collection.Find(stray) != noToken) ReportFatal("Unknown end of EachIn loop" + wayToWalk);
    return header;
}

const ClassInfo* NamedClass(TokenSpan tokens) {
    if (tokens.size() != 1 || FindVariable(tokens.At(0)) != nullptr) return nullptr;
    return FindClass(tokens.At(0));
}

Collection InstancesOf(const ClassInfo& cls) {
    if (cls.isElement)
        ReportFatal("'" + cls.name +
                    "' is an Element, which has no list of instances. EachIn works over Types, arrays and "
                    "Sequences.");
    Collection collection;
    NeedClass(&cls);
    collection.text = cls.cppName + "::_instances";
    collection.item = Single(Base::Object, &cls);
    collection.walked = &cls;
    collection.pointers = true;
    return collection;
}

// For those who walk over texts, numbers or maps.
Hint HintAtWalk(const ValueType& type) {
    if (type.Is(Base::String)) return Hint{"Write For Local i = 0 To Length(s) - 1, and CharAt(s, i)"};
    if (type.IsNumber()) return Hint{"Write For Local i = 0 To n - 1"};
    const bool isMap = type.Is(Base::Object) && type.cls != nullptr && type.cls->routines.Has("Keys");
    return isMap ? Hint{"Write For key EachIn m\\Keys(), and m\\Get(key)"} : wayToWalk;
}

void CheckWalkable(const Expr& expr) {
    if (!expr.type.IsKnown()) return;
    if (expr.type.IsSingle())
        ReportFatal("EachIn works over Types, arrays and Sequences, got " + KorvelName(expr.type) +
                        HintAtWalk(expr.type),
                    expr.source);
    if (expr.form == ArrayForm::Pointer)
        ReportFatal(
            "EachIn needs an array whose size is known. An array parameter does not carry its size: "
            "pass the size along and count with For.");
}

// A row of a PreCalc table is no value in C++. Elements in rows are met where they are, as in arrays of one
// dimension; a Local array holds pointers to them, but others hold slots that copy.
bool RowsCopy(const State& state, const Expr& table) {
    if (table.form == ArrayForm::Fixed || table.type.base != Base::Element)
        return table.form != ArrayForm::Fixed;
    return std::any_of(state.routine.localArrays.begin(), state.routine.localArrays.end(),
                       [&](const LocalArray& array) { return array.variable == VariableOf(table); });
}

Collection CollectionOf(const State& state, TokenSpan tokens) {
    if (const ClassInfo* cls = NamedClass(tokens)) return InstancesOf(*cls);
    const Expr& expr = TranslateValue(tokens, ExprMode::Condition);
    CheckWalkable(expr);
    Collection collection;
    collection.text = WalkableText(expr);
    if (!expr.type.IsKnown()) return collection;
    collection.item = expr.type.Item();
    collection.sequence = expr.type.sequence && !expr.isCall;
    collection.expr = &expr;
    const bool element = collection.item.Is(Base::Element);
    if (element) NeedClass(collection.item.cls);
    if (collection.item.IsArray()) {
        collection.itemForm = expr.form == ArrayForm::Fixed ? ArrayForm::Fixed : ArrayForm::Vector;
        collection.copies = RowsCopy(state, expr);
    }
    if (expr.type.IsArray()) {
        collection.slot = element && !expr.byValue;
        collection.pointers = collection.slot || collection.item.Is(Base::Object);
    }
    return collection;
}

// C++ type of the loop variable. Without an annotation "auto" serves, except where it would name a bit of a
// packed vector.
std::string ItemCppType(const Collection& collection, const ValueType& declared, bool annotated) {
    if (collection.slot) return CppName(Single(Base::Element, collection.item.cls)) + "*";
    if (!collection.copies) return annotated ? CppName(declared) + "&" : "auto&";
    if (annotated) return CppName(declared);
    return collection.item.Is(Base::Bool) ? "bool" : "auto";
}

ValueType DeclaredType(const EachHeader& header, const Collection& collection) {
    if (header.annotation.empty()) return collection.item;
    ValueType declared = ParseType(header.annotation);
    if (declared.Is(Base::Void)) FailUnknownType(header.annotation);
    if (collection.item.IsKnown() && !Assignable(declared, collection.item))
        FailMismatch(collection.item, declared, header.name);
    return declared;
}

void EmitIndexWalk(State& state, const std::string& variable, const std::string& type,
                   const std::string& list) {
    const std::string index = "__kvIndex_" + variable;
    EmitLine(state, "for(size_t " + index + " = 0, " + index + "_end = " + list + ".size(); " + index +
                        " < " + index + "_end; ++" + index + ")");
    EmitLine(state, "{");
    EmitLine(state, " " + type + " " + variable + " = " + list + "[" + index + "];");
}

// for(KVWalk __kvWalk(KVL_T::_instances); auto KVL_p = static_cast<KVL_T*>(__kvWalk.Next());)
void EmitSharedWalk(State& state, const std::string& variable, const std::string& type,
                    const Collection& collection) {
    EmitLine(state, "for(KVWalk __kvWalk(" + collection.text + "); " + type + " " + variable +
                        " = static_cast<" + collection.walked->cppName + "*>(__kvWalk.Next());)");
    EmitLine(state, "{");
}

// Emits the lines "for(...)" and "{".
void EmitRangeHeader(State& state, const std::string& type, const std::string& variable, const Code& range) {
    EmitLine(state, "for(" + type + " " + variable + " : " + range + ")");
    EmitLine(state, "{");
}

// The same for a Sequence, with slots for what comes when the body changes it.
void EmitSequenceHeader(State& state, Braces& loop, const std::string& type, const std::string& variable,
                        const Code& range, const Expr& sequence, bool isItem) {
    auto walk = std::make_unique<SequenceWalk>();
    walk->variable = variable;
    walk->type = type;
    walk->item = CppName(sequence.type.Item());
    walk->before = BeforeInnerLoop(sequence, false);
    walk->behind = BehindInnerLoop(sequence, false);
    walk->beforeSlot = state.routine.slots.size();
    const std::vector<std::size_t> slots =
        EmitSlottedLine(state, {BeforeInnerLoop(sequence, true) + "for(", range, ")"});
    walk->headSlot = slots.front();
    walk->tailSlot = slots.back();
    EmitLine(state, "{");
    walk->bodySlot = OpenSlot(state);
    loop.walk = std::move(walk);
    loop.behind = BehindInnerLoop(sequence, true);
    OpenSequenceWalk(sequence, variable, isItem);
}

void TranslateEach(State& state, const EachHeader& header) {
    Collection collection = CollectionOf(state, header.collection);
    ValueType declared = DeclaredType(header, collection);
    PushBlock();
    Variable& variable = DeclareLoopVariable(header.name, NameBeside(state, header.name, {}), declared);
    variable.form = collection.itemForm;
    variable.slot = collection.slot;
    const std::string type = ItemCppType(collection, declared, !header.annotation.empty());
    Braces& loop = OpenNewBlock(state, BlockKind::Loop, "For", header.name);
    const bool shared = collection.walked != nullptr && settings.fastMode;
    if (shared) {
        EmitSharedWalk(state, variable.cppName, type, collection);
    } else if (collection.walked != nullptr &&
               LoopMayCreate(settings.currentFile, state.place.line, *collection.walked)) {
        EmitIndexWalk(state, variable.cppName, type, collection.text.text);
    } else if (collection.sequence) {
        EmitSequenceHeader(state, loop, type, variable.cppName, collection.text, *collection.expr, false);
    } else {
        EmitRangeHeader(state, type, variable.cppName, collection.text);
    }
    if (collection.pointers && !shared) EmitLine(state, " if(!" + variable.cppName + ") continue;");
}

constexpr char noSequence[] = "Expected a Sequence after 'In' in EachSeq loop";

}  // namespace

void SettleWalk(State& state, Braces& loop) {
    const SequenceWalk& walk = *loop.walk;
    const ClosedWalk closed = CloseSequenceWalk();
    std::vector<Slot>& slots = state.routine.slots;
    if (!closed.changed) {
        slots[walk.headSlot].text = walk.type + " " + walk.variable + " : ";
        for (std::size_t i = 0; i < walk.before.passages.size(); ++i)
            slots[walk.beforeSlot + i].text = walk.before.passages[i].text;
        loop.behind = walk.behind;
        for (std::size_t i = walk.bodySlot; i < slots.size(); ++i)
            if (slots[i].walk == closed.number) slots[i].text.clear();
        return;
    }
    const std::string& name = closed.name;
    const std::string indent(static_cast<std::size_t>(state.place.indent), '\t');
    slots[walk.headSlot].text = "KVSeqWalk<" + walk.item + "> " + name + "(";
    slots[walk.tailSlot].text = "); " + name + ".HasItem(); " + name + ".Next()";
    slots[walk.bodySlot].text =
        indent + " " + walk.type + " " + walk.variable + " = " + name + "." + closed.item + ";\n";
}

Variable& DeclareLoopVariable(const std::string& name, const std::string& cppName, const ValueType& type) {
    Variable& variable = AddVarToScopeList(name, cppName);
    variable.type = type;
    return variable;
}

// For [Local] i [: Type] = start To end [Step step]
// For x [: Type] EachIn collection
// For Each x [: Type] In collection
void TranslateFor(State& state, TokenSpan tokens) {
    if (tokens.KeywordAt(1) == Keyword::Each)
        TranslateEach(state, ReadHeader(tokens, 2, Keyword::In, "Expected 'In' in For Each...In loop"));
    else if (tokens.Find(Keyword::EachIn) != noToken)
        TranslateEach(state,
                      ReadHeader(tokens, 1, Keyword::EachIn, "Expected 'EachIn' in For...EachIn loop"));
    else
        TranslateCountedFor(state, tokens);
}

// EachSeq x In list
void TranslateEachSeq(State& state, TokenSpan tokens) {
    if (tokens.size() < 4 || tokens.KeywordAt(2) != Keyword::In)
        ReportFatal("Expected 'EachSeq item In seq'");
    const bool noVariable = tokens.size() == 4 && FindVariable(tokens.At(3)) == nullptr;
    if (noVariable) ReportUnknown(noSequence, tokens.From(3), Sought::Value);
    const Expr& sequence = TranslateValue(tokens.From(3), ExprMode::Condition);
    if (sequence.type.IsKnown() && !sequence.type.sequence) ReportFatal(noSequence, tokens.From(3));
    ValueType item = sequence.type.IsKnown() ? sequence.type.Item() : ValueType();
    if (item.Is(Base::Element)) NeedClass(item.cls);
    const Code text = ValueText(sequence);
    PushBlock();
    Variable& variable = DeclareLoopVariable(tokens[1], NameBeside(state, tokens[1], {}), item);
    variable.isItem = true;
    // A packed bit has no lvalue to refer to.
    const char* type = item.Is(Base::Bool) ? "auto&&" : "auto&";
    const bool lasting = sequence.type.IsKnown() && !sequence.isCall;
    Braces& loop = OpenNewBlock(state, BlockKind::Loop, "EachSeq", tokens[1]);
    if (lasting)
        EmitSequenceHeader(state, loop, type, variable.cppName, text, sequence, true);
    else
        EmitRangeHeader(state, type, variable.cppName, text);
    if (item.Is(Base::Object)) EmitLine(state, " if(!" + variable.cppName + ") continue;");
}
