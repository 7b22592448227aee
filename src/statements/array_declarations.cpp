// What comes out of Local m:Double[3][4]:
//     std::vector<std::vector<double>> KVL_m(3, std::vector<double>(4));
//     				const int KVL_m_size_0 = 3;
//     				const int KVL_m_size_1 = 4;
// Sizes that are worked out when the program runs stand before the vector, so that they are worked out once.
#include "statements/array_declarations.h"

#include <optional>

#include "base/report.h"
#include "base/settings.h"
#include "expressions/constants.h"
#include "lexer/lexer.h"
#include "prelude/output.h"
#include "prelude/support.h"
#include "statements/array_loops.h"
#include "statements/const_order.h"
#include "statements/words.h"
#include "symbols/own_names.h"

namespace {

constexpr long long largestSize = 2147483647;
constexpr char sizeIndent[] = "\n\t\t\t\t";

struct Size {
    Code text;
    std::optional<long long> value;  // when it is known while translating
};

void CheckKnownSize(long long size) {
    const std::string shown = std::to_string(size);
    if (size < 0) ReportFatal("Array size cannot be negative: " + shown);
    if (size == 0) ReportFatal("Array size must be positive, got: " + shown);
    if (size > largestSize) ReportFatal("Array size is too large: " + shown);
}

Size ReadSize(const Variable& array, ArrayPlace place, const std::string& written) {
    const Tokens tokens = Split(written);
    if (tokens.empty())
        ReportFatal("Array '" + array.name + "' needs a size in each pair of brackets", Tokens{array.name});
    if (TokenSpan(tokens).SplitAt(',').size() > 1)
        ReportFatal("Array declaration missing closing bracket ]\nEach dimension of array '" + array.name +
                        "' needs brackets of its own, like [3][4]",
                    Tokens{array.name});
    const Expr& size = TranslateValue(tokens, ExprMode::Condition);
    const std::optional<ConstantValue> constant = ConstantOf(size);
    const std::optional<long long> known = IntegerOf(constant);
    const bool fits = !size.type.IsKnown() || (size.type.IsInteger() && size.type.base != Base::Bool);
    if (!fits || (constant && !known))
        ReportFatal("The size of array '" + array.name + "' must be an Int, got " + KorvelName(size.type),
                    Tokens{array.name});
    if (known) CheckKnownSize(*known);
    if (!known) {
        RequireSupport(Support::ArraySize);
        return {"__kvSize(" + TextOf(size) + (", \"" + array.name + "\")"), std::nullopt};
    }
    // A header knows only the Consts above.
    const bool tooEarly = place == ArrayPlace::Global && !UsesOnlyEarlierConsts(size);
    const bool named = constant->toCpp && !tooEarly;
    return {named ? TextOf(size) : Code(std::to_string(*known)), known};
}

std::vector<Size> ReadSizes(const Variable& array, ArrayPlace place) {
    std::vector<Size> sizes;
    for (const std::string& written : array.sizes) sizes.push_back(ReadSize(array, place, written));
    return sizes;
}

bool AllKnown(const std::vector<Size>& sizes) {
    for (const Size& size : sizes)
        if (!size.value) return false;
    return true;
}

// "3, std::vector<double>(4)": what the vector is constructed with.
std::string Construction(const Variable& array, ArrayPlace place, const std::vector<std::string>& sizes) {
    ValueType type = array.type;
    std::string text = sizes.back();
    for (std::size_t k = sizes.size() - 1; k-- > 0;) {
        type.dims = static_cast<int>(sizes.size() - k - 1);
        text = sizes[k] + ", " + ArrayCppName(type, place, array.handsOnBools) + "(" + text + ")";
    }
    return text;
}

std::string Declarator(const Variable& array, ArrayPlace place, const std::string& construction) {
    const std::string type = ArrayCppName(array.type, place, array.handsOnBools);
    if (place == ArrayPlace::Field)
        return type + " " + array.cppName + " = " + type + "(" + construction + ");";
    return type + " " + array.cppName + "(" + construction + ");";
}

// Bytes of one item.
std::size_t ItemSize(const ValueType& type) {
    switch (type.base) {
        case Base::Byte:
        case Base::Bool:
            return 1;
        case Base::Short:
            return 2;
        case Base::Int:
            return 4;
        case Base::String:
            return 32;
        default:
            return 8;
    }
}

// Whether the array may lie in the frame of its routine; takes its bytes from the room there.
bool TakesRoom(const ValueType& type, ArrayPlace place, const std::vector<Size>& sizes,
               std::size_t& frameRoom) {
    if (place == ArrayPlace::Global || place == ArrayPlace::Field) return false;
    std::size_t bytes = ItemSize(type);
    for (const Size& size : sizes) {
        if (!size.value || *size.value > largestSize) return false;
        bytes *= static_cast<std::size_t>(*size.value);
        if (bytes > frameRoom) return false;
    }
    frameRoom -= bytes;
    return true;
}

std::string FrameDeclarator(const Variable& array, ArrayPlace place, const std::vector<Size>& sizes) {
    RequireSupport(Support::FixedArray);
    ValueType item = array.type;
    item.dims = 0;
    std::string type = array.handsOnBools ? "KVBool" : CppName(item);
    if (item.Is(Base::Element)) type = place == ArrayPlace::Local ? type + "*" : "KVSlot<" + type + ">";
    for (std::size_t k = sizes.size(); k-- > 0;)
        type = "KVArray<" + type + ", " + std::to_string(*sizes[k].value) + ">";
    return type + " " + array.cppName + " = {};";
}

Code SizeConstant(const Variable& array, ArrayPlace place, int k, const Code& value, bool known) {
    std::string text = place != ArrayPlace::Field ? "const int " : known ? "static const int " : "int ";
    return text + SizeName(array.cppName, k) + " = " + value + ";";
}

// Size constants that are numbers stay with the extern line; others are worked out where the vector is.
void AddMovableForm(const Variable& array, ArrayPlace place, bool sizesKnown, ArrayText& text) {
    text.declaration =
        "extern " + ArrayCppName(array.type, place, array.handsOnBools) + " " + array.cppName + ";";
    if (sizesKnown) {
        text.declaration += text.tail.text;
        text.definition = text.variable.text;
        return;
    }
    for (int k = 0; k < array.type.dims; ++k)
        text.declaration += sizeIndent + std::string("extern const int ") + SizeName(array.cppName, k) + ";";
    text.definition = text.head.text + text.variable.text + text.tail.text;
}

void RequireFor(const ValueType& type, ArrayPlace place) {
    if (type.base == Base::Element && place != ArrayPlace::Local) RequireSupport(Support::ElementSlots);
    if (type.base == Base::Element) NeedClass(type.cls);
}

// Size of a dimension as the vector itself tells it: "KVL_a.size()", "KVL_a[0].size()" ...
std::string MeasuredSize(const std::string& name, int k) {
    std::string row = name;
    std::string guard;
    for (int i = 0; i < k; ++i) {
        guard += row + ".empty() ? 0 : ";
        row += "[0]";
    }
    return guard + "static_cast<int>(" + row + ".size())";
}

// __kvResultSize(static_cast<int>(KVL_a.size()), 5, "a", 0, "Make")
Code CheckedSize(const Variable& array, int k, const Code& given, const Code& wanted,
                 const std::string& function) {
    RequireSupport(Support::ResultSize);
    return "__kvResultSize(" + given + ", " + wanted + ", \"" + array.name + "\", " + std::to_string(k) +
           ", \"" + function + "\")";
}

}  // namespace

std::string ArrayCppName(const ValueType& type, ArrayPlace place, bool handsOnBools) {
    const bool slots = type.base == Base::Element && place != ArrayPlace::Local;
    if (!slots && !handsOnBools) return CppName(type);
    std::string name = slots ? "KVSlot<" + type.cls->cppName + ">" : "KVBool";
    for (int k = 0; k < type.dims; ++k) name = "std::vector<" + name + ">";
    return name;
}

ArrayText DeclareArray(const Variable& array, ArrayPlace place, std::size_t& frameRoom) {
    RequireFor(array.type, place);
    if (array.handsOnBools) RequireSupport(Support::BoolArray);
    const std::vector<Size> sizes = ReadSizes(array, place);
    const bool known = AllKnown(sizes);
    ArrayText text;
    std::vector<std::string> counts;
    for (int k = 0; k < array.type.dims; ++k) {
        const Size& size = sizes[static_cast<std::size_t>(k)];
        const bool first = !known && place != ArrayPlace::Field;
        // In a class only a number is sure to be a constant to C++.
        Code value = size.text;
        if (place == ArrayPlace::Field)
            value = known ? std::to_string(*size.value) : MeasuredSize(array.cppName, k);
        const Code constant = SizeConstant(array, place, k, value, known);
        if (first)
            text.head += constant + "\n";
        else
            text.tail += sizeIndent + constant;
        counts.push_back(first ? SizeName(array.cppName, k) : size.text.text);
    }
    text.variable = TakesRoom(array.type, place, sizes, frameRoom)
                        ? FrameDeclarator(array, place, sizes)
                        : Declarator(array, place, Construction(array, place, counts));
    AddMovableForm(array, place, known, text);
    return text;
}

Code TakenArray(const Expr& value, ArrayPlace place) {
    const ValueType& type = value.type;
    RequireFor(type, place);
    if (type.dims > maxPassedDimensions)
        ReportFatal("An array that a Function returns can have at most " +
                    std::to_string(maxPassedDimensions) + " dimensions");
    return TakeOver(value, type.base == Base::Element && place != ArrayPlace::Local);
}

ArrayText TakeOverArray(const Variable& array, ArrayPlace place, const Expr& value, const TakenSizes& taken) {
    ArrayText text;
    text.variable = ArrayCppName(array.type, place, array.handsOnBools) + " " + array.cppName + " = " +
                    TakenArray(value, place) + ";";
    for (std::size_t k = 0; k < static_cast<std::size_t>(array.type.dims); ++k) {
        const int dimension = static_cast<int>(k);
        Code size = MeasuredSize(array.cppName, dimension);
        if (k < array.sizes.size() && !array.sizes[k].empty()) {
            const Size declared = ReadSize(array, place, array.sizes[k]);
            const bool number = taken.known && place == ArrayPlace::Field;
            size = number        ? Code(std::to_string(*declared.value))
                   : taken.known ? declared.text
                                 : CheckedSize(array, dimension, size, declared.text, taken.from);
        }
        text.tail += sizeIndent + SizeConstant(array, place, dimension, size, taken.known);
    }
    AddMovableForm(array, place, taken.known, text);
    return text;
}

void FailArrayAssignment(const ValueType& to, const Expr& value) {
    ReportFatal(
        "Cannot assign arrays directly. Arrays are reference types.\n"
        "        Use a loop to copy elements, or return from a function for deep copy." +
            Hint{ConversionHint(to, value.type).hint},
        value.source);
}
