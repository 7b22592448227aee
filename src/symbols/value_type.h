// What a Korvel value is: the type that the typed walk over expressions carries along.
#pragma once

#include <string>

#include "base/wording.h"

struct ClassInfo;

enum class Base : unsigned char {
    Unknown,  // lets every check pass; only after inline C++ and mistakes
    Void,
    Int,
    Double,
    String,
    Byte,
    Short,
    Long,
    Bool,
    Pointer,  // void*
    Null,
    Object,     // a Type: C++ handles it through KVL_T*
    Element,    // an Element: a C++ value KVL_T
    AnyObject,  // an object whose Type is known when the program runs: KVAnyObject
};

struct ValueType {
    Base base = Base::Unknown;
    bool sequence = false;           // KVSeq of `base`
    int dims = 0;                    // number of array dimensions, 0 for a single value
    const ClassInfo* cls = nullptr;  // for Object and Element

    bool IsArray() const { return dims > 0; }
    bool IsSingle() const { return dims == 0 && !sequence; }
    bool Is(Base b) const { return IsSingle() && base == b; }
    bool IsKnown() const { return base != Base::Unknown; }
    // Int, Double, Byte, Short, Long and Bool, which convert into each other.
    bool IsNumber() const;
    bool IsInteger() const;  // a number other than Double
    // What may be Null: an object of a known Type or any, a pointer.
    bool IsReference() const;
    ValueType Item() const;  // what one index, one round of EachIn or SeqGet yields
};

bool operator==(const ValueType& a, const ValueType& b);
inline bool operator!=(const ValueType& a, const ValueType& b) { return !(a == b); }

inline ValueType Single(Base base, const ClassInfo* cls = nullptr) { return {base, false, 0, cls}; }

// The C++ spelling of a variable of the type: "int", "KVL_TFoo*", "KVSeq<int>",
// "std::vector<std::vector<double>>". Arrays of Elements hold pointers ("std::vector<KVL_TPoint*>").
std::string CppName(const ValueType& type);

// The C++ spelling in signatures: arrays become pointers ("int*", "double**", "KVL_TPoint**").
// As a parameter a Sequence is taken by reference ("KVSeq<int>&"), as a result by value.
std::string ParameterCppName(const ValueType& type);
std::string ResultCppName(const ValueType& type);

// The spelling a Korvel programmer uses: "Int", "TPlayer", "Sequence Of Int".
std::string KorvelName(const ValueType& type);

// A type in a message that is quoted with C++ types.
inline Wording InWords(const ValueType& type) { return {CppName(type), KorvelName(type)}; }

// Whether the name is that of a type of the language: Int, String ...
bool IsBasicType(const std::string& name);

// Whether a name is one of a Type by its look: "T" followed by an upper-case letter.
bool HasTypeName(const std::string& name);

// The type that an annotation names ("Int", "TPlayer", "Int[]" with dims counted). Names of Types
// and Elements are known from the start of the run, wherever they are declared. An unknown name gives
// Base::Void for "anything else" and ends the run for T-names, like MapType.
ValueType ParseType(const std::string& annotation);

// Whether this run has met the type AnyObject, which takes support code.
bool NamesAnyObject();

// C++ spelling of a Korvel annotation; "void" for a name that is no type. A T-name that is declared
// nowhere ends the run.
std::string MapType(const std::string& annotation);

// C++ initialiser of a variable declared without a value.
std::string DefaultValue(const std::string& cppType);

// Whether a value of type `from` may be assigned to, passed to or returned as `to`.
bool Assignable(const ValueType& to, const ValueType& from);

// What turns one into the other ("Use ToString(...) ..."), behind a message, whose second line it is when quoted.
Wording ConversionHint(const ValueType& to, const ValueType& from);

// For those who hand something else than a Sequence to what works on one.
Hint HintAtSequence(const ValueType& type);
