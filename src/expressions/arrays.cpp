// Array access: the checks that can be made here and those that the program makes as it runs.
#include <algorithm>
#include <cstdlib>
#include <vector>

#include "base/debugger.h"
#include "base/report.h"
#include "base/settings.h"
#include "expressions/in_order.h"
#include "expressions/operators.h"
#include "expressions/order.h"
#include "expressions/walk.h"
#include "expressions/writer.h"
#include "prelude/support.h"
#include "symbols/own_names.h"
#include "symbols/scopes.h"

namespace {

// Only the first index must be a whole number; pointers take no other in C++ either.
void CheckIndex(const Expr& index, bool isFirst) {
    RequireValue(index);
    if (!index.type.IsKnown() || index.type.Is(Base::Int)) return;
    if (!isFirst && index.type.Is(Base::Double)) return;
    ReportFatal("Array index must be an integer type, got " + InWords(index.type) +
                    Hint{index.type.Is(Base::String)
                             ? "A TStringMap finds values by texts. It comes with Include \"std/maps.kvl\""
                             : ""},
                index.source);
}

void CheckCount(const Expr& array, const std::string& name, std::size_t indices, bool mayBeRow) {
    const auto count = static_cast<int>(indices);
    const ValueType& type = array.type;
    const bool partly = (array.form == ArrayForm::Pointer || mayBeRow) && count < type.dims;
    if (count == type.dims || partly || !type.IsKnown()) return;
    ReportFatal("Array '" + name + "' was declared with " + std::to_string(type.dims) +
                    " dimension(s) but is being accessed with " + std::to_string(count) + " index/indices",
                Tokens{name});
}

bool IsDigitsOnly(const std::string& text) {
    return !text.empty() && text.find_first_not_of("0123456789 ") == std::string::npos;
}

void CheckConstantIndex(const std::string& name, std::size_t dimension, const Expr& index,
                        const std::string& size) {
    if (index.kind != ExprKind::Number || !IsDigitsOnly(index.word->text) || !IsDigitsOnly(size)) return;
    const std::string& text = index.word->text;
    const long long i = std::strtoll(text.c_str(), nullptr, 10);
    const long long n = std::strtoll(size.c_str(), nullptr, 10);
    if (i < n) return;
    ReportFatal("Array index out of bounds: " + name + " dimension " + std::to_string(dimension) +
                " accessed with index [" + text + "] but size is [" + size + "] (valid range: 0 to " +
                std::to_string(n - 1) + ")");
}

void CheckConstantIndices(const Expr& array, const std::string& name, const Expr* index) {
    const Variable* variable = VariableOrField(array);
    if (variable == nullptr) return;
    for (std::size_t k = 0; k < variable->sizes.size() && index != nullptr; ++k, index = index->next)
        CheckConstantIndex(name, k, *index, variable->sizes[k]);
}

void ShowIndices(const Expr& array, const Expr* firstIndex) {
    const Variable* variable = VariableOrField(array);
    if (watches.indexing != nullptr && variable != nullptr) watches.indexing({*variable, *firstIndex});
}

// Whether the array is known by a name of its own here, and with it the constants that hold its sizes.
bool HasSizes(const Expr& array) {
    const Variable* variable = VariableOf(array);
    return variable != nullptr && array.text[0] == '\0' &&
           (FindLocal(variable->name) == variable || FindGlobal(variable->name) == variable);
}

// Of an array of which `whole` has no constants for its sizes here, a Field for instance.
std::string SizeByDeclaration(const Expr& array, const Expr& whole, std::size_t dimension) {
    const Variable* variable = VariableOrField(whole);
    if (variable == nullptr || dimension >= variable->sizes.size()) return "-1";
    if (IsDigitsOnly(variable->sizes[dimension])) return variable->sizes[dimension];
    const bool asks = array.form == ArrayForm::Vector && !array.effects;
    return asks ? "static_cast<int>(" + TextOf(array).text + ".size())" : "-1";
}

bool IsCheckWanted(const Expr& array, std::size_t indices) {
    constexpr std::size_t mostDimensions = 3;
    return ChecksValues() && array.type.IsKnown() && array.form != ArrayForm::Pointer &&
           indices <= mostDimensions;
}

// Whether the indices are all there may be: an argument for an array parameter may be a row.
bool MayBeRow(const Walk& walk, const Expr& array, bool wholeArgument) {
    const char next = walk.PeekSign();
    return wholeArgument && array.form != ArrayForm::Owned && (walk.Done() || next == ',' || next == ')');
}

PartList ParseAllIndices(Walk& walk) {
    PartList indices;
    while (walk.Match('[')) {
        const std::size_t begin = walk.at;
        Expr& index = InBrackets(walk, ParseValue);
        index.source = walk.Since(begin);
        CheckIndex(index, indices.size() == 0);
        indices.Add(index);
        walk.Expect(']');
    }
    return indices;
}

// ---- texts

using Texts = std::vector<Code>;

void WriteIndexText(Code& out, const Expr& index, bool isFirst, ArrayForm form) {
    const bool whole = isFirst || !index.type.Is(Base::Double) || form == ArrayForm::Vector;
    Put(out, whole ? "" : "static_cast<int>(", index, whole ? "" : ")");
}

void WriteArray(Code& out, const Expr& array) {
    if (array.form == ArrayForm::Owned)
        out += TakeOver(array, array.type.base == Base::Element);
    else
        Write(out, array);
}

// A lambda in front goes into parentheses, for "[[" begins something else in C++.
void WriteBracketed(Code& out, const Code& index) {
    const bool ledByLambda = index.lambda && index.text[0] == '[';
    Put(out, ledByLambda ? "[(" : "[", index, ledByLambda ? ")]" : "]");
}

// KVL_a[i][j]
void WriteWithIndices(Code& out, const Expr& array, const Texts& indices) {
    WriteArray(out, array);
    for (const Code& index : indices) WriteBracketed(out, index);
}

// ([&]() -> decltype(A) { if ((i) < 0 || (i) >= A_size_0) { std::cerr << ...; exit(1); } return A; })()
void WriteLambdaCheck(Code& out, const Expr& item, const Expr& array, const Texts& indices) {
    Code plain;
    WriteWithIndices(plain, array, indices);
    out.lambda = true;
    out += "([&]() -> decltype(" + plain + ") { ";
    const std::size_t last = indices.size() - 1;
    for (std::size_t k = 0; k <= last; ++k) {
        const Code& index = indices[k];
        const std::string size = SizeName(array.variable->cppName, static_cast<int>(k));
        out += "if ((" + index + ") < 0 || (" + index + ") >= " + size +
               ") { std::cerr << \"Array bounds error: " + item.word->text + "[\" << (" + index + ") << \"]" +
               (k == last ? "" : "[...]") + " dimension " + std::to_string(k) + " out of range [0, \" << (" +
               size + "-1) << \"]\" << std::endl; " + std::string(EndOfFailure()) + "(1); } ";
    }
    out += "return " + plain + "; })()";
}

// __kvAt("a", KVL_a, i, KVL_a_size_0, j, KVL_a_size_1) , or without known sizes __kvPick("a", items, i, j)
void WriteHelperCheck(Code& out, const Expr& item, const Expr& array, const Texts& indices) {
    RequireSupport(Support::SafeIndex);
    out += std::string(item.sized ? "__kvAt" : "__kvPick") + "(\"" + item.word->text + "\", ";
    WriteArray(out, array);
    for (std::size_t k = 0; k < indices.size(); ++k) {
        Put(out, ", ", indices[k]);
        if (item.sized) Put(out, ", ", SizeName(array.variable->cppName, static_cast<int>(k)));
    }
    out += ')';
}

// Whether the texts of the indices may stand in a lambda, and more than once.
bool AreSimple(const Expr& item, const Texts& indices) {
    const Expr* index = item.first->next;
    for (const Code& text : indices) {
        if (text.lambda || !MayRepeat(*index)) return false;
        index = index->next;
    }
    return true;
}

void WriteChecked(Code& out, const Expr& item, const Texts& indices) {
    const Expr& array = *item.first;
    const bool wanted = IsCheckWanted(array, indices.size());
    if (!wanted || (item.sized && array.variable->sizes.size() < indices.size()))
        WriteWithIndices(out, array, indices);
    // A lambda may not stand inside decltype, nor take what surrounds it outside of routines.
    else if (!item.sized || settings.fastMode || !InsideRoutine() || !AreSimple(item, indices))
        WriteHelperCheck(out, item, array, indices);
    else
        WriteLambdaCheck(out, item, array, indices);
}

// Indices that C++ would take in another order than they are written in. Those of tables and pointers it takes
// from left to right, and calls of member functions one after the other:
//     KVL_a.at(KVL_First (  )).at(KVL_Second (  ))
//     __kvPickIn("a", 2, KVL_a).Row(KVL_First (  )).Item(KVL_Second (  ))
void WriteInTurn(Code& out, const Expr& item, const Texts& indices) {
    const Expr& array = *item.first;
    if (!IsCheckWanted(array, indices.size())) {
        WriteArray(out, array);
        for (const Code& index : indices) Put(out, ".at(", index, ")");
        return;
    }
    RequireSupport(Support::IndexInOrder);
    out += "__kvPickIn(\"" + item.word->text + "\", " + std::to_string(indices.size()) + ", ";
    WriteArray(out, array);
    out += ')';
    for (const Code& index : indices) Put(out, &index == &indices.back() ? ".Item(" : ".Row(", index, ")");
}

// [&]() -> decltype(A[0][0]) { int __kv0 = first; int __kv1 = second; return checked A[__kv0][__kv1]; }()
void WriteTableInTurn(Code& out, const Expr& item, Texts indices) {
    InOrder inOrder;
    std::string type = "decltype(" + TextOf(*item.first).text;
    const Expr* index = item.first->next;
    for (Code& text : indices) {
        text = inOrder.Name(index->type.IsKnown() ? index->type : Single(Base::Int), text);
        type += "[0]";
        index = index->next;
    }
    Code checked;
    WriteChecked(checked, item, indices);
    inOrder.Write(out, type + ")", checked);
}

Texts IndexTexts(const Expr& item) {
    Texts texts;
    for (const Expr& index : PartRange{item.first->next}) {
        const bool isFirst = texts.empty();
        WriteIndexText(texts.emplace_back(), index, isFirst, item.first->form);
    }
    return texts;
}

// KVL_a[i][j]
void WritePlain(Code& out, const Expr& item) {
    const Expr& array = *item.first;
    WriteArray(out, array);
    for (const Expr& index : PartRange{array.next}) {
        Code text;
        WriteIndexText(text, index, &index == array.next, array.form);
        WriteBracketed(out, text);
    }
}

}  // namespace

std::string KnownSize(const Expr& array) {
    const bool isRow = array.kind == ExprKind::Index;
    const Expr& whole = isRow ? *array.first : array;
    std::size_t dimension = 0;
    if (isRow)
        for (const Expr* index = whole.next; index != nullptr; index = index->next) ++dimension;
    if (whole.form == ArrayForm::Pointer) return "-1";
    return HasSizes(whole) ? SizeName(whole.variable->cppName, static_cast<int>(dimension))
                           : SizeByDeclaration(array, whole, dimension);
}

void WriteIndex(Code& out, const Expr& item) {
    const ArrayForm form = item.first->form;
    if (!item.ordered && !ChecksValues()) return WritePlain(out, item);
    const Texts indices = IndexTexts(item);
    if (!item.ordered)
        WriteChecked(out, item, indices);
    else if (form != ArrayForm::Fixed)
        WriteInTurn(out, item, indices);
    else if (IsCheckWanted(*item.first, indices.size()) && InsideRoutine())
        WriteTableInTurn(out, item, indices);
    else
        WriteChecked(out, item, indices);
}

Expr& ParseIndices(Walk& walk, Expr& array, const Word& name) {
    const bool wholeArgument = walk.rowAt != std::string::npos && walk.rowAt == walk.operandAt;
    const PartList indices = ParseAllIndices(walk);
    CheckCount(array, name.text, indices.size(), MayBeRow(walk, array, wholeArgument));
    CheckConstantIndices(array, name.text, indices.First());
    ShowIndices(array, indices.First());
    if (array.form == ArrayForm::Owned) CheckTakeOver(array);

    Expr& item = NewNode(ExprKind::Index, array.type, array);
    array.next = indices.First();
    item.word = &name;
    item.effects = array.effects || indices.HaveEffects();
    item.assignable = array.form != ArrayForm::Owned && !array.isCall;
    if (!array.type.IsKnown()) return item;
    item.sized = IsCheckWanted(array, indices.size()) && HasSizes(array);
    item.type.dims -= static_cast<int>(indices.size());
    item.form = item.type.IsArray() ? array.form : ArrayForm::None;
    item.slot = item.type.Is(Base::Element);
    return item;
}
