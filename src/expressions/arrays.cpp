// Array access: the checks that can be made here and those that the program makes as it runs.
#include <algorithm>
#include <cstdlib>

#include "base/report.h"
#include "base/settings.h"
#include "expressions/in_order.h"
#include "prelude/output.h"
#include "prelude/support.h"
#include "symbols/own_names.h"
#include "symbols/scopes.h"

namespace {

struct Access {
    std::string name;       // as written
    const Variable* array;  // null for anything but a variable or Field
    std::vector<std::string> indices;
    bool simple = true;     // the indices may be evaluated more than once
    bool mayBeRow = false;  // fewer indices than dimensions are allowed here
};

void CheckIndexType(const Expr& index) {
    if (!index.type.IsKnown() || index.type.Is(Base::Int)) return;
    ReportFatal("Array index must be an integer type, got " + CppName(index.type), index.source);
}

// Only the first index must be a whole number; pointers take no other in C++ either.
std::string IndexText(const Expr& index, bool isFirst, ArrayForm form) {
    RequireValue(index);
    if (isFirst || !index.type.Is(Base::Double)) {
        CheckIndexType(index);
        return index.text;
    }
    return form == ArrayForm::Vector ? index.text : "static_cast<int>(" + index.text + ")";
}

bool IsDigitsOnly(const std::string& text) {
    return !text.empty() && text.find_first_not_of("0123456789 ") == std::string::npos;
}

void CheckCount(const Access& access, const ValueType& type, ArrayForm form) {
    const auto count = static_cast<int>(access.indices.size());
    const bool partly = (form == ArrayForm::Pointer || access.mayBeRow) && count < type.dims;
    if (count == type.dims || partly || !type.IsKnown()) return;
    ReportFatal("Array '" + access.name + "' was declared with " + std::to_string(type.dims) +
                    " dimension(s) but is being accessed with " + std::to_string(count) + " index/indices",
                Tokens{access.name});
}

void CheckConstantIndex(const Access& access, std::size_t dimension) {
    const std::string& index = access.indices[dimension];
    const std::string& size = access.array->sizes[dimension];
    if (!IsDigitsOnly(index) || !IsDigitsOnly(size)) return;
    const long long i = std::strtoll(index.c_str(), nullptr, 10);
    const long long n = std::strtoll(size.c_str(), nullptr, 10);
    if (i < n) return;
    ReportFatal("Array index out of bounds: " + access.name + " dimension " + std::to_string(dimension) +
                " accessed with index [" + index + "] but size is [" + size + "] (valid range: 0 to " +
                std::to_string(n - 1) + ")");
}

void CheckConstantIndices(const Access& access) {
    if (access.array == nullptr) return;
    for (std::size_t k = 0; k < access.indices.size() && k < access.array->sizes.size(); ++k) {
        CheckConstantIndex(access, k);
    }
}

std::string Plain(const std::string& array, const Access& access) {
    std::string text = array;
    for (const std::string& index : access.indices) text += "[" + index + "]";
    return text;
}

// ([&]() -> decltype(A) { if ((i) < 0 || (i) >= A_size_0) { std::cerr << ...; exit(1); } return A; })()
std::string CheckedByLambda(const std::string& array, const Access& access) {
    const std::string plain = Plain(array, access);
    std::string text = "([&]() -> decltype(" + plain + ") { ";
    const std::size_t last = access.indices.size() - 1;
    for (std::size_t k = 0; k <= last; ++k) {
        const std::string& index = access.indices[k];
        const std::string size = SizeName(array, static_cast<int>(k));
        text += "if ((" + index + ") < 0 || (" + index + ") >= " + size +
                ") { std::cerr << \"Array bounds error: " + access.name + "[\" << (" + index + ") << \"]" +
                (k == last ? "" : "[...]") + " dimension " + std::to_string(k) + " out of range [0, \" << (" +
                size + "-1) << \"]\" << std::endl; exit(1); } ";
    }
    return text + "return " + plain + "; })()";
}

// __kvAt("a", KVL_a, i, KVL_a_size_0, j, KVL_a_size_1) , or without known sizes __kvPick("a", items, i, j)
std::string CheckedByHelper(const std::string& array, const Access& access, bool sized) {
    RequireSupport(Support::SafeIndex);
    std::string text = std::string(sized ? "__kvAt" : "__kvPick") + "(\"" + access.name + "\", " + array;
    for (std::size_t k = 0; k < access.indices.size(); ++k) {
        text += ", " + access.indices[k];
        if (sized) text += ", " + SizeName(array, static_cast<int>(k));
    }
    return text + ")";
}

bool IsField(const Variable* array, const std::string& text) {
    return array == nullptr || text != array->cppName ||
           (FindLocal(array->name) != array && FindGlobal(array->name) != array);
}

bool IsCheckWanted(const Expr& array, const Access& access) {
    constexpr std::size_t mostDimensions = 3;
    return settings.safeMode && !settings.debugMode && array.type.IsKnown() &&
           array.form != ArrayForm::Pointer && access.indices.size() <= mostDimensions;
}

std::string Checked(const Expr& array, const Access& access) {
    if (!IsCheckWanted(array, access)) return Plain(array.text, access);
    if (IsField(access.array, array.text)) return CheckedByHelper(array.text, access, false);
    if (access.array->sizes.size() < access.indices.size()) return Plain(array.text, access);
    // A lambda may not stand inside decltype, nor take what surrounds it outside of routines.
    if (!access.simple || !InsideRoutine() || settings.fastMode)
        return CheckedByHelper(array.text, access, true);
    ++lambdaCount;
    return CheckedByLambda(array.text, access);
}

// Indices that C++ would take in another order than they are written in. Those of tables and pointers it takes
// from left to right, and calls of member functions one after the other:
//     KVL_a.at(KVL_First (  )).at(KVL_Second (  ))
//     __kvPickIn("a", 2, KVL_a).Row(KVL_First (  )).Item(KVL_Second (  ))
std::string InTurn(const Expr& array, const Access& access) {
    const bool checked = IsCheckWanted(array, access);
    std::string text = array.text;
    if (checked) {
        RequireSupport(Support::IndexInOrder);
        text = "__kvPickIn(\"" + access.name + "\", " + std::to_string(access.indices.size()) + ", " + text +
               ")";
    }
    for (std::size_t k = 0; k < access.indices.size(); ++k) {
        const bool last = k + 1 == access.indices.size();
        text += (!checked ? ".at(" : last ? ".Item(" : ".Row(") + access.indices[k] + ")";
    }
    return text;
}

// [&]() -> decltype(A[0][0]) { int __kv0 = first; int __kv1 = second; return checked A[__kv0][__kv1]; }()
std::string TableInTurn(const Expr& table, Access access, const std::vector<Expr>& indices) {
    InOrder inOrder;
    std::string item = table.text;
    for (std::size_t k = 0; k < indices.size(); ++k) {
        const ValueType& type = indices[k].type;
        access.indices[k] = inOrder.Name(type.IsKnown() ? type : Single(Base::Int), access.indices[k]);
        item += "[0]";
    }
    return inOrder.Text("decltype(" + item + ")", Checked(table, access));
}

std::string ItemText(const Expr& array, const Access& access, const std::vector<Expr>& indices) {
    const bool simple = array.form == ArrayForm::Pointer || array.form == ArrayForm::None;
    if (simple || !IsLookUpSeen(array, indices)) return Checked(array, access);
    if (array.form != ArrayForm::Fixed) return InTurn(array, access);
    const bool checked = IsCheckWanted(array, access) && InsideRoutine();
    return checked ? TableInTurn(array, access, indices) : Checked(array, access);
}

}  // namespace

Expr ParseIndices(Walk& walk, const Expr& array, const std::string& name, const Variable* variable) {
    Access access{name, variable, {}, true, false};
    const bool wholeArgument = walk.rowAt != std::string::npos && walk.rowAt == walk.operandAt;
    const std::size_t lambdas = lambdaCount;
    const std::size_t calls = callCount;
    std::vector<Expr> indices;
    const bool statement = walk.callStatement;
    walk.callStatement = false;
    while (walk.Match('[')) {
        const std::size_t begin = walk.at;
        const std::size_t callsBefore = callCount;
        Expr index = ParseValue(walk);
        index.effects = callCount != callsBefore;
        index.source = walk.tokens.Slice(begin, walk.at);
        access.indices.push_back(IndexText(index, access.indices.empty(), array.form));
        indices.push_back(std::move(index));
        walk.Expect(']');
    }
    walk.callStatement = statement;
    access.simple = lambdaCount == lambdas && std::all_of(indices.begin(), indices.end(), MayRepeat);
    const std::string& next = walk.Peek();
    access.mayBeRow =
        wholeArgument && array.form != ArrayForm::Owned && (walk.Done() || Is(next, ",") || Is(next, ")"));
    CheckCount(access, array.type, array.form);
    CheckConstantIndices(access);

    Expr item;
    Expr owner = array;
    if (array.form == ArrayForm::Owned) owner.text = TakeOver(array, array.type.base == Base::Element);
    item.text = ItemText(owner, access, indices);
    item.effects = array.effects || callCount != calls;
    item.type = array.type;
    item.assignable = array.form != ArrayForm::Owned && !array.isCall;
    if (!array.type.IsKnown()) return item;
    item.type.dims -= static_cast<int>(access.indices.size());
    item.form = item.type.IsArray() ? array.form : ArrayForm::None;
    item.slot = item.type.Is(Base::Element);
    return item;
}
