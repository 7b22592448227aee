#include "statements/definition.h"

#include <algorithm>
#include <optional>

#include "analysis/bool_arrays.h"
#include "analysis/effects.h"
#include "base/report.h"
#include "base/settings.h"
#include "expressions/constants.h"
#include "lexer/lexer.h"
#include "lexer/mentions.h"
#include "lexer/source_lines.h"
#include "prelude/support.h"
#include "statements/array_declarations.h"
#include "statements/array_loops.h"
#include "statements/array_results.h"
#include "statements/const_order.h"
#include "statements/dispatch.h"
#include "statements/shadowing.h"
#include "statements/words.h"
#include "symbols/identifiers.h"
#include "symbols/own_names.h"
#include "symbols/scopes.h"
#include "symbols/type_reader.h"
#include "symbols/uses.h"

namespace {

// A declaration as it was read.
struct Declared {
    Declared(Token called, DefinitionKind what) : name(called), kind(what) {}

    Token name;
    DefinitionKind kind;
    bool typed = false;  // a type or sizes are written
    TypeNote note;
    bool hasValue = false;
    TokenSpan value;
};

void ListTokens(TokenSpan tokens) {
    if (!settings.verbose) return;
    Say("DEBUG CreateDefinition ENTRY: definitionType=GLOBAL, line tokens:");
    for (std::size_t i = 0; i < tokens.size(); ++i) Say("  [" + std::to_string(i) + "] '" + tokens[i] + "'");
}

void CheckNewName(const Declared& declared) {
    const Token name = declared.name;
    if (declared.kind == DefinitionKind::Field) return;
    if (declared.kind != DefinitionKind::Local) CheckGlobalName(name);
    if (declared.kind == DefinitionKind::Const) ReachConst(name);
    if (declared.kind != DefinitionKind::Local) return;
    CheckCppWord(name);
    // A Local may hide a Function: calls of it are told apart.
    if (IsClass(name)) FailAlreadyDefined(name);
    if (FindDispatchRow(name->keyword) != nullptr) CheckKeyword(name);
    CheckName(name);
}

// In a Local an unknown type is an unknown type, however its name looks.
void CheckLocalType(TokenSpan tokens) {
    const std::string& name = tokens[2];
    if (HasTypeName(name) && FindClass(tokens.At(2)) == nullptr) FailUnknownType(name);
}

std::size_t ReadAnnotation(TokenSpan tokens, Declared& declared) {
    declared.typed = Is(tokens[1], ":") || Is(tokens[1], "[");
    if (Is(tokens[1], ":")) {
        if (declared.kind == DefinitionKind::Local) CheckLocalType(tokens);
        declared.note = ReadType(tokens, 2);
        if (declared.note.type.sequence && Is(tokens[declared.note.end], "["))
            ReportFatal("An array cannot hold Sequences: '" + declared.name->text + "'",
                        Tokens{declared.name});
    } else if (Is(tokens[1], "[")) {
        declared.note.type = Single(Base::Int);
        ReadSizes(tokens, 1, declared.note);
    } else {
        declared.note.end = 1;
    }
    return declared.note.end;
}

// Of what stands behind a name, or its type, without '='.
Hint HintAtMore(TokenSpan tokens, std::size_t at) {
    const std::string &name = tokens[0], &more = tokens[at];
    if (IsBasicType(more)) return Hint{"The type stands behind a colon: " + name + ":" + more};
    if (IsBasicType(name) && IsName(more))
        return Hint{"The type stands behind the name: " + more + ":" + name};
    return Hint{IsDigit(more[0]) || IsQuoted(more)
                    ? "A value stands behind '=', the size of an array in brackets: n:Int = 3, a:Int[10]"
                    : "A name is one word of letters, digits and '_': my_name"};
}

void ReadValue(TokenSpan tokens, std::size_t at, Declared& declared) {
    if (at >= tokens.size()) return;
    if (!Is(tokens[at], "="))
        ReportFatal("Unexpected '" + tokens[at] + "' in the declaration of '" + declared.name->text + "'" +
                        HintAtMore(tokens, at),
                    tokens.Slice(at, at + 1));
    declared.hasValue = true;
    declared.value = tokens.From(at + 1);
    if (declared.value.empty())
        ReportFatal("Missing value after '=' in the declaration of '" + declared.name->text + "'",
                    Tokens{declared.name});
}

Declared Read(TokenSpan tokens, DefinitionKind kind) {
    if (tokens.empty())
        ReportFatal("Unexpected end of line" + Hint{"A name stands here, with its type or value: n:Int = 3"});
    Declared declared(tokens.At(0), kind);
    CheckNewName(declared);
    ReadValue(tokens, ReadAnnotation(tokens, declared), declared);
    return declared;
}

bool IsCreation(TokenSpan value) { return Has(value.KeywordAt(0), trait::creates); }

void CheckCreation(TokenSpan value) {
    if (value.KeywordAt(0) != Keyword::Create) return;
    if (!IsName(value[1])) ReportFatal("Expected class name after 'Create'" + Hint{"Write Create TName"});
    if (!IsClass(value.At(1)))
        ReportFatal("Type '" + value[1] + "' is not defined. Cannot create instance of non-existent Type",
                    value.Slice(1, 2), Sought::Type);
}

void CheckComplete(const Declared& declared) {
    if (declared.hasValue) return;
    if (declared.kind == DefinitionKind::Const)
        ReportFatal("Constant must be initialized" + Hint{"Write its value behind it: Const MAX = 10"});
    if (!declared.typed)
        ReportFatal("Variable '" + declared.name->text +
                        "' requires either a type annotation (:Type) or an initial value" +
                        Hint{"Each variable has its own: " + declared.name->text + ":Int, or " +
                             declared.name->text + " = 1"},
                    Tokens{declared.name});
}

// The type an untyped variable takes from its value.
void InferDeclaredType(Declared& declared, const Expr& value) {
    if (declared.typed) return;
    declared.note.type = value.type;
    if (value.type.base == Base::Null)
        ReportFatal("Variable '" + declared.name->text + "' requires a type annotation (:Type) beside Null",
                    Tokens{declared.name});
}

void CheckConstType(const Declared& declared) {
    const ValueType& type = declared.note.type;
    if (declared.kind != DefinitionKind::Const || !type.IsKnown()) return;
    if (!type.IsNumber() && !type.Is(Base::String))
        ReportFatal("Const '" + declared.name->text + "' must hold a number, a Bool or a String, got " +
                        KorvelName(type),
                    Tokens{declared.name});
}

// Statements before the class may have named the Field already.
std::string CppNameOf(const State& state, const Declared& declared, TokenSpan tokens) {
    if (declared.kind == DefinitionKind::Local) return NameBeside(state, declared.name, tokens.From(1));
    const Variable* field =
        declared.kind == DefinitionKind::Field ? FindField(*state.cls, declared.name) : nullptr;
    return field != nullptr ? field->cppName : SafeName(declared.name);
}

void NeedTypeComplete(const Declared& declared) {
    const ValueType& type = declared.note.type;
    if (type.base != Base::Element) return;
    if (!type.sequence || declared.kind != DefinitionKind::Field) NeedClass(type.cls);
}

// With -v the value's type is explained.
void NoteValueType(TokenSpan value) {
    if (settings.verbose) GetExpressionType(value);
}

// Where the header of a Const does not know the Consts that it uses yet, its value is written out.
std::optional<long long> WrittenOut(const Declared& declared, const Expr& value) {
    if (declared.kind != DefinitionKind::Const || !declared.note.type.IsInteger()) return {};
    return UsesOnlyEarlierConsts(value) ? std::nullopt : IntegerOf(ConstantOf(value));
}

Code SingleText(const Declared& declared, const std::string& variable, const Expr& value) {
    const ValueType& type = declared.note.type;
    if (!declared.hasValue && settings.fastMode && type.Is(Base::String)) return variable + ";";
    if (!declared.hasValue)
        return variable + " = " + DefaultValue(type.IsKnown() ? CppName(type) : "auto") + ";";
    return variable + " = " + (type.IsKnown() ? TextAs(value, type) : ValueText(value)) + ";";
}

// Whether C++ puts the value into the variable before any code runs.
bool IsConstant(const Declared& declared, const Expr& value) {
    const ValueType& type = declared.note.type;
    if (!type.IsNumber() && !type.IsReference()) return false;
    if (!declared.hasValue || value.type.base == Base::Null) return true;
    const std::optional<ConstantValue> known = ConstantOf(value);
    return known && known->toCpp;
}

// Whether the value calls a Method of the object under way, or hands that on.
bool RunsOwnMethod(const ClassInfo& cls, TokenSpan value) {
    const Tokens mentioned = MentionedTokens(value);
    const TokenSpan tokens(mentioned);
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const bool isOther = i > 0 && tokens.SignAt(i - 1) == '\\';
        const bool isCall =
            !isOther && tokens.SignAt(i + 1) == '(' && FindMethod(cls, tokens.At(i)) != nullptr;
        if (isCall || tokens.KeywordAt(i) == Keyword::This) return true;
    }
    return false;
}

// Whether what the value calls may meet Fields that stand below, which are not made yet.
bool MeetsFieldsBelow(const ClassInfo& cls, const Declared& declared) {
    if (!RunsOwnMethod(cls, declared.value)) return false;
    const EffectSet effects = EffectsOf(declared.value);
    const auto below = std::find(cls.fields.begin(), cls.fields.end(), declared.name);
    return std::any_of(below, cls.fields.end(), [&](Token name) {
        const std::vector<Thing> field = {ThingOf(*name)};
        const Variable* const variable = FindField(cls, name);
        const bool hasItems = variable != nullptr && !variable->type.IsSingle();
        return effects.anything || Meet(field, effects.reads) || Meet(field, effects.changes) ||
               (hasItems && (effects.readsItems || effects.changesItems));
    });
}

// Fields get their values in their order, and below one that comes late all that may use it.
bool ComesLate(const State& state, const Declared& declared, const Expr& value) {
    if (declared.kind != DefinitionKind::Field || !declared.hasValue || state.cls == nullptr) return false;
    const bool isFixed = value.literal || value.type.base == Base::Null || ConstantOf(value);
    return !isFixed && (!state.lateValues.empty() || MeetsFieldsBelow(*state.cls, declared));
}

void DefineSingle(const State& state, const Declared& declared, const Expr& value, Definition& definition) {
    const ValueType& type = declared.note.type;
    if (declared.hasValue && !Assignable(type, value.type))
        FailMismatch(value.type, type, declared.name, declared.value);
    const std::string variable = (type.IsKnown() ? CppName(type) : "auto") + " " + definition.cppName;
    definition.text = SingleText(declared, variable, value);
    if (ComesLate(state, declared, value)) {
        definition.text = variable + " = " + DefaultValue(CppName(type)) + ";";
        definition.late = definition.cppName + " = " + TextAs(value, type);
    }
    if (const std::optional<long long> number = WrittenOut(declared, value)) {
        definition.text = variable + " = " + std::to_string(*number) + ";";
        definition.constant = true;
        return;
    }
    if (settings.verbose && type.Is(Base::Object))
        Say("Registering object variable: " + declared.name->text + " of type " + type.cls->name);
    if (declared.kind == DefinitionKind::Field) return;
    if (declared.kind == DefinitionKind::Local) {
        if (IsCreation(declared.value) && value.type.Is(Base::Object))
            definition.registration =
                " __" + value.type.cls->cppName + "_list__.push_back(" + definition.cppName + ");";
        return;
    }
    definition.declaration = "extern " + variable + ";";
    definition.moved = definition.text.text;
    const bool global = declared.kind == DefinitionKind::Global;
    definition.constant = (global || declared.kind == DefinitionKind::Const) && IsConstant(declared, value);
    const bool built = type.Is(Base::String) || type.sequence;
    if (global && (definition.constant || built) && declared.hasValue)
        definition.again = definition.cppName + " = " + TextAs(value, type).text;
    if (global && built && declared.hasValue) definition.empty = variable + ";";
}

ArrayPlace PlaceOf(const State& state, DefinitionKind kind) {
    if (kind == DefinitionKind::Field) return ArrayPlace::Field;
    if (kind != DefinitionKind::Local) return ArrayPlace::Global;
    return BlockCount() > 1 || IsOpen(state, BlockKind::Select) ? ArrayPlace::Inner : ArrayPlace::Local;
}

bool AnySizeWritten(const std::vector<std::string>& sizes) {
    return std::any_of(sizes.begin(), sizes.end(), [](const std::string& size) { return !size.empty(); });
}

ArrayText TextOfArray(State& state, const Declared& declared, const Variable& array, ArrayPlace place,
                      const Expr& value) {
    if (!declared.hasValue) return DeclareArray(array, place, state.routine.frameRoom);
    const ValueType& type = declared.note.type;
    if (!value.type.IsArray() && !value.isCall) FailMismatch(value.type, type, declared.name, declared.value);
    if (!value.isCall || value.form != ArrayForm::Owned) FailArrayAssignment(type, value);
    CheckArrayResult(declared.name, type, array.sizes, declared.value, value, state.routine.declared);
    if (type != value.type) FailMismatch(value.type, type, declared.name, declared.value);
    return TakeOverArray(array, place, value,
                         {HasSizes(value, array.sizes, state.routine.declared), CalledName(declared.value)});
}

// Sizes as later accesses see them: those that are written, or else the constants'.
void CompleteSizes(Variable& array) {
    array.sizes.resize(static_cast<std::size_t>(array.type.dims));
    for (int k = 0; k < array.type.dims; ++k) {
        std::string& size = array.sizes[static_cast<std::size_t>(k)];
        if (size.empty()) size = SizeName(array.cppName, k);
    }
}

// The Variable record that look-ups find.
Variable& Register(const Declared& declared, const Definition& definition, const State& state) {
    if (declared.kind == DefinitionKind::Local) return AddVarToScopeList(declared.name, definition.cppName);
    if (declared.kind == DefinitionKind::Field) return state.cls->members[declared.name];
    auto& table = declared.kind == DefinitionKind::Const ? symbols.constants : symbols.globals;
    return table[declared.name];
}

void Complete(const Declared& declared, const Definition& definition, Variable& variable) {
    variable.cppName = definition.cppName;
    variable.type = declared.note.type;
    variable.typed = declared.typed;
    if (!variable.type.IsArray()) return;
    variable.form = ArrayForm::Vector;
    variable.handsOnBools = definition.handsOnBools;
    variable.sizes = declared.note.sizes;
    CompleteSizes(variable);
}

// Whether others cannot tell that its definition has been translated.
bool LooksAlike(const Variable& before, const Variable& after) {
    return before.cppName == after.cppName && before.type == after.type && before.typed == after.typed &&
           before.form == after.form && before.sizes == after.sizes &&
           before.handsOnBools == after.handsOnBools;
}

// Whether an array of Bool has to give out addresses of its items.
bool HandsOn(const Declared& declared) {
    const ValueType& type = declared.note.type;
    if (type.base != Base::Bool) return false;
    return declared.hasValue ? AnyHandsOnBools() : HandsOnBools(declared.name, type.dims);
}

void DefineArray(State& state, const Declared& declared, const Expr& value, Definition& definition) {
    Variable array;
    array.name = declared.name;
    array.cppName = definition.cppName;
    array.type = declared.note.type;
    array.sizes = declared.note.sizes;
    array.handsOnBools = HandsOn(declared);
    definition.handsOnBools = array.handsOnBools;
    if (!declared.hasValue && !AnySizeWritten(array.sizes))
        ReportFatal("Array '" + declared.name->text + "' requires a size or an initial value",
                    Tokens{declared.name});
    if (declared.hasValue && !AnySizeWritten(array.sizes)) array.sizes.clear();
    const ArrayPlace place = PlaceOf(state, declared.kind);
    const ArrayText text = TextOfArray(state, declared, array, place, value);
    definition.before = text.head;
    definition.text = text.variable + text.tail;
    definition.declaration = text.declaration;
    definition.moved = text.definition;
    for (const std::string& size : array.sizes) {
        const Tokens tokens = Split(size);
        if (!ConstantIn(tokens))
            definition.sizeNames.insert(definition.sizeNames.end(), tokens.begin(), tokens.end());
    }
    const bool plainSlots = array.type.base == Base::Element && place == ArrayPlace::Local;
    if (plainSlots && !declared.hasValue) definition.after = FillLoops(array);
}

}  // namespace

// Globals meet the other names of the program in the first pass.
void CheckGlobalName(const std::string& name) {
    CheckFileLevelName(name);
    CheckValueWord(name);
    // They may have the name of a built-in (MAX), but not that of a statement.
    if (FindDispatchRow(FindKeyword(name)) != nullptr) CheckKeyword(name);
    CheckName(name);
}

Definition CreateDefinition(State& state, TokenSpan tokens, DefinitionKind kind) {
    if (kind == DefinitionKind::Global) ListTokens(tokens);
    Declared declared = Read(tokens, kind);
    CheckCreation(declared.value);
    CheckComplete(declared);
    const std::size_t preludeUses = PreludeUses();
    Definition definition;
    definition.name = declared.name;
    definition.cppName = CppNameOf(state, declared, tokens);
    if (declared.hasValue) NoteValueType(declared.value);
    const Expr none;
    const auto translate = declared.typed ? TranslateExpression : TranslateValue;
    const Expr& value = declared.hasValue ? translate(declared.value, ExprMode::Condition) : none;
    if (declared.hasValue) InferDeclaredType(declared, value);
    CheckConstType(declared);
    NeedTypeComplete(declared);
    const bool array = declared.note.type.IsArray();
    if (array)
        DefineArray(state, declared, value, definition);
    else if (value.type.IsArray())
        CheckArrayResult(declared.name, declared.note.type, {}, declared.value, value,
                         state.routine.declared);
    else
        DefineSingle(state, declared, value, definition);
    definition.mentioned = declared.note.type.cls;
    const ValueType& type = declared.note.type;
    definition.usesPrelude = type.sequence || type.Is(Base::AnyObject) || PreludeUses() != preludeUses;
    Variable& variable = Register(declared, definition, state);
    std::optional<Variable> before;
    if (kind != DefinitionKind::Local && !settings.record.empty()) before = variable;
    Complete(declared, definition, variable);
    if (before && !LooksAlike(*before, variable)) LeanOnOthers();
    if (kind != DefinitionKind::Local) NoteDeclaration(variable);
    if (array && kind == DefinitionKind::Local && PlaceOf(state, kind) == ArrayPlace::Local)
        state.routine.localArrays.push_back({&variable, variable.type.base == Base::Element, true});
    return definition;
}
