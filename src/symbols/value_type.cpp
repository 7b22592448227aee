#include "symbols/value_type.h"

#include <array>

#include "base/report.h"
#include "base/run.h"
#include "base/token_text.h"
#include "lexer/lexer.h"
#include "symbols/identifiers.h"
#include "symbols/symbols.h"

namespace {

struct BasicType {
    Base base;
    std::string_view annotation;  // lower case; empty when it cannot be written
    const char* korvel;
    const char* cpp;
};

constexpr std::array<BasicType, 12> basicTypes = {{
    {Base::Unknown, "", "unknown", "unknown"},
    {Base::Void, "", "nothing", "void"},
    {Base::Int, "int", "Int", "int"},
    {Base::Double, "double", "Double", "double"},
    {Base::String, "string", "String", "std::string"},
    {Base::Byte, "byte", "Byte", "uint8_t"},
    {Base::Short, "short", "Short", "short"},
    {Base::Long, "long", "Long", "long"},
    {Base::Bool, "bool", "Bool", "bool"},
    {Base::Pointer, "void*", "void*", "void*"},
    {Base::Null, "", "Null", "std::nullptr_t"},
    {Base::AnyObject, "anyobject", "AnyObject", "KVAnyObject"},
}};

bool namesAnyObject = false;
const PartOfRun partOfRun(namesAnyObject);

const BasicType* FindBasic(const std::string& annotation) {
    for (const BasicType& type : basicTypes) {
        if (!annotation.empty() && IsWord(annotation, type.annotation)) return &type;
    }
    return nullptr;
}

const BasicType* FindBasic(Base base) {
    for (const BasicType& type : basicTypes) {
        if (type.base == base) return &type;
    }
    return nullptr;
}

[[noreturn]] void FailUndefinedType(const std::string& name) {
    ReportFatal("Type '" + name + "' is not defined. Make sure to declare it with 'Type " + name +
                    "' before using it.",
                Tokens{name}, Sought::Type);
}

ValueType ClassType(const ClassInfo* cls) {
    return Single(cls->isElement ? Base::Element : Base::Object, cls);
}

ValueType ParseSingle(const std::string& name) {
    const BasicType* basic = FindBasic(name);
    if (basic && basic->base != Base::AnyObject) return Single(basic->base);
    const ClassInfo* cls = FindClass(name);
    if (basic && !cls) {
        namesAnyObject = true;
        return Single(basic->base);
    }
    if (cls && cls->isElement) return ClassType(cls);
    if (!HasTypeName(name)) return Single(Base::Void);
    if (!cls) FailUndefinedType(name);
    return ClassType(cls);
}

// Inside an array every class is reached by any name it was given, so an unknown one can only be a mistake.
ValueType ParseArrayItem(const std::string& name) {
    const BasicType* basic = FindBasic(name);
    if (basic && basic->base != Base::Pointer && basic->base != Base::Void && basic->base != Base::AnyObject)
        return Single(basic->base);
    const ClassInfo* cls = FindClass(name);
    if (!cls) FailUndefinedType(name);
    return ClassType(cls);
}

std::string SingleCppName(const ValueType& type) {
    if (type.base == Base::Object) return type.cls->cppName + "*";
    if (type.base == Base::Element) return type.cls->cppName;
    return FindBasic(type.base)->cpp;
}

// How one slot of an array is held: Elements behind a pointer.
std::string SlotCppName(const ValueType& type) {
    return type.base == Base::Element ? type.cls->cppName + "*" : SingleCppName(type);
}

std::string PointerCppName(const ValueType& type) {
    return SlotCppName(type) + std::string(static_cast<std::size_t>(type.dims), '*');
}

}  // namespace

bool IsBasicType(const std::string& name) { return FindBasic(name) != nullptr; }

bool HasTypeName(const std::string& name) {
    if (name.size() < 2 || name[0] != 'T') return false;
    return (name[1] >= 'A' && name[1] <= 'Z') || static_cast<unsigned char>(name[1]) >= 128;
}

bool ValueType::IsInteger() const { return IsNumber() && base != Base::Double; }

bool ValueType::IsNumber() const {
    if (!IsSingle()) return false;
    switch (base) {
        case Base::Int:
        case Base::Double:
        case Base::Byte:
        case Base::Short:
        case Base::Long:
        case Base::Bool:
            return true;
        default:
            return false;
    }
}

bool ValueType::IsReference() const { return Is(Base::Object) || Is(Base::Pointer) || Is(Base::AnyObject); }

ValueType ValueType::Item() const {
    ValueType item = *this;
    if (item.dims > 0) {
        --item.dims;
    } else if (item.sequence) {
        item.sequence = false;
    } else {
        item = ValueType();
    }
    return item;
}

bool operator==(const ValueType& a, const ValueType& b) {
    return a.base == b.base && a.sequence == b.sequence && a.dims == b.dims && a.cls == b.cls;
}

std::string CppName(const ValueType& type) {
    std::string name = type.dims > 0 ? SlotCppName(type) : SingleCppName(type);
    if (type.sequence) name = "KVSeq<" + SingleCppName(type) + ">";
    for (int i = 0; i < type.dims; ++i) name = "std::vector<" + name + ">";
    return name;
}

std::string ParameterCppName(const ValueType& type) {
    return type.sequence ? CppName(type) + "&" : ResultCppName(type);
}

std::string ResultCppName(const ValueType& type) {
    return type.IsArray() && !type.sequence ? PointerCppName(type) : CppName(type);
}

std::string KorvelName(const ValueType& type) {
    std::string name = type.cls ? type.cls->name : FindBasic(type.base)->korvel;
    if (type.sequence) name = "Sequence Of " + name;
    for (int i = 0; i < type.dims; ++i) name += "[]";
    return name;
}

ValueType ParseType(const std::string& annotation) {
    const std::size_t brackets = annotation.size() < 2 ? std::string::npos : annotation.find("[]");
    if (brackets == std::string::npos) return ParseSingle(annotation);
    ValueType type = ParseArrayItem(annotation.substr(0, brackets));
    for (std::size_t at = brackets; at != std::string::npos; at = annotation.find("[]", at + 2)) ++type.dims;
    return type;
}

std::string MapType(const std::string& annotation) {
    ValueType type = ParseType(annotation);
    if (!type.IsArray()) return CppName(type);
    type.dims = 0;
    return "std::vector<" + PointerCppName(type) + ">";
}

std::string DefaultValue(const std::string& cppType) {
    if (cppType.find("KVSeq<") != std::string::npos) return "{}";
    if (cppType == "int" || cppType == "short" || cppType == "long" || cppType == "uint8_t" ||
        cppType == "unsigned char") {
        return "0";
    }
    if (cppType == "double") return "0.0";
    if (cppType == "bool") return "false";
    if (cppType == "std::string") return "\"\"";
    return cppType.find('*') != std::string::npos ? "nullptr" : "{}";
}

bool NamesAnyObject() { return namesAnyObject; }

bool Assignable(const ValueType& to, const ValueType& from) {
    if (!to.IsKnown() || !from.IsKnown()) return true;
    if (!to.IsSingle() || !from.IsSingle()) return to == from;
    if (to.IsNumber() && from.IsNumber()) return true;
    switch (to.base) {
        case Base::String:
            return from.base == Base::String;
        case Base::Object:
            return from.base == Base::Null || from.base == Base::AnyObject || to == from;
        case Base::Element:
            return to == from;
        case Base::Pointer:
            return from.base == Base::Pointer || from.base == Base::Null || from.base == Base::Object;
        case Base::AnyObject:
            return from.base == Base::AnyObject || from.base == Base::Null || from.base == Base::Object;
        default:
            return false;
    }
}

static std::string HowToConvert(const ValueType& to, const ValueType& from) {
    if (to.Is(Base::String) && from.IsNumber()) return "Use ToString(...) to turn the number into a String.";
    if (!from.Is(Base::String)) return {};
    if (to.Is(Base::Double)) return "Use ToDouble(...) to turn the String into a number.";
    if (to.IsNumber()) return "Use ToInt(...) to turn the String into a number.";
    return {};
}

// For those who take the one list for the other.
static Hint HintAtLists(const ValueType& to, const ValueType& from) {
    if (to.sequence && from.IsArray())
        return Hint{"SeqFromArray s, a puts the items of an array into a Sequence"};
    if (to.IsArray() && from.sequence) return Hint{"It is a Sequence: Local words:Sequence Of String"};
    if (to.IsArray() && from.IsArray()) return Hint{"The items of both have to be of one type"};
    if (to.IsArray())
        return Hint{
            "A whole array is named without brackets, one of its items with its number: Draw(a), a[0] = 3"};
    if (to.sequence && !from.sequence) return Hint{"SeqAdd s, 3 puts an item at the end of a Sequence"};
    if (from.sequence && !to.sequence)
        return Hint{"What can be done with a Sequence begins with Seq: SeqLength(s), SeqGet(s, 0)"};
    return from.IsArray() ? Hint{"Items of an array are named one by one: a[0]. Hold its size in a Const"}
                          : Hint{};
}

Wording ConversionHint(const ValueType& to, const ValueType& from) {
    const std::string how = HowToConvert(to, from);
    if (how.empty()) return Wording{""} + HintAtLists(to, from);
    const bool isAnswer = to.Is(Base::Bool) && from.Is(Base::String);
    return Wording{"\n" + how, ""} +
           Hint{isAnswer ? "A Bool takes what a comparison gives: answer = \"yes\"" : how};
}

Hint HintAtSequence(const ValueType& type) {
    if (!type.IsArray()) return Hint{"The Sequence stands first: SeqAdd s, 3"};
    return Hint{"An array keeps its size: hold that in a Const. A Sequence grows: Local s:Sequence Of Int"};
}
