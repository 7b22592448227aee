// Types and Elements with their Fields and Methods.
#include "base/journal.h"
#include "base/report.h"
#include "base/settings.h"
#include "collect/first_pass_state.h"
#include "collect/parameters.h"
#include "symbols/identifiers.h"
#include "symbols/modules.h"
#include "symbols/scopes.h"
#include "symbols/type_reader.h"

namespace {

void RefuseTaken(const FirstPass& pass, const std::string& name, bool taken, const std::string& kind) {
    if (!taken) return;
    const std::string earlier = kind.substr(0, kind.find(' '));
    FailOnErrorStream("ERROR: Field '" + name + "' in Type " + pass.open.name +
                          " conflicts with already-declared " + kind + " '" + name +
                          "'\n  First come first served - the " + earlier + " was declared first.",
                      Tokens{name});
}

// The support code sorts by a Compare that always has its prefix.
std::string MethodCppName(const ClassInfo& cls, const std::string& name) {
    if (name == "constructor") return cls.cppName;
    if (name == "destructor") return "~" + cls.cppName;
    return name == "Compare" ? "KVL_Compare" : SafeName(name);
}

// The member of an open Type, if there is one.
Elsewhere MemberOf(const ClassInfo& open, const std::string& file, Token name) {
    const Variable* field = open.members.Find(name);
    const Routine* method = open.routines.Find(name);
    const int line = field != nullptr ? field->line : method != nullptr ? method->line : 0;
    return {file, line, name, declaredHere};
}

// A member may not take the name of another one or, in C++, that of a class. Modules name no class of the program, which
// need not know of their members.
void RefuseMemberName(const FirstPass& pass, Token name) {
    const ClassInfo& open = pass.open;
    const bool isClass = IsClass(name) && !IsModule(pass.out.source);
    const bool taken = isClass || open.members.Has(name) || open.routines.Has(name);
    if (taken) FailAlreadyDefined(name, MemberOf(open, pass.out.source, name));
    CheckCppWord(name);
    CheckValueWord(name);
    CheckName(name);
}

// The text kept for a Field's type: "int", "KVL_TFoo*", "int[10][4]".
std::string FieldTypeText(const Variable& field) {
    ValueType item = field.type;
    item.dims = 0;
    std::string text = CppName(item);
    for (const std::string& size : field.sizes) text += "[" + size + "]";
    return text;
}

void AddField(FirstPass& pass, TokenSpan tokens) {
    if (tokens.empty()) return;
    const Token name = tokens.At(0);
    ClassInfo& open = pass.open;
    if (open.members.Has(name)) {
        ReportFatal("Syntax error: Duplicate field '" + name->text + "' in Type " + open.name, Tokens{name},
                    MemberOf(open, pass.out.source, name));
    }
    RefuseTaken(pass, name, pass.globals.count(name) != 0, "Global variable");
    RefuseTaken(pass, name, pass.constants.count(name) != 0, "Const");
    RefuseMemberName(pass, name);
    Variable field = ReadDeclaration(pass, tokens);
    field.isPrivate = pass.isPrivate;
    open.fields.push_back(name);
    if (settings.verbose && field.typed) open.fieldTypes[name] = FieldTypeText(field);
    open.members.Add(name, std::move(field));
}

void SayRegistered(const ClassInfo& cls) {
    if (!settings.verbose) return;
    Say("  - Registered class: " + cls.name + " with " + std::to_string(cls.fields.size()) + " fields and " +
        std::to_string(cls.methods.size()) + " methods");
    for (std::size_t i = 0; i < cls.fields.size(); ++i) {
        const auto type = cls.fieldTypes.find(cls.fields[i]);
        const std::string text = type == cls.fieldTypes.end() ? "" : " : " + type->second;
        Say("    Field " + std::to_string(i) + ": " + cls.fields[i]->text + text);
    }
}

void SayDuplicate(const ClassInfo& cls) {
    VerboseNote("  - Skipping duplicate class: " + cls.name + " (already defined in " + cls.sourceFile->text +
                ")");
}

void Register(ClassInfo& cls, ClassInfo&& read) {
    cls = std::move(read);
    cls.registered = true;
    for (auto& routine : cls.routines) routine.second.owner = &cls;
    for (const Token field : cls.fields) symbols.fieldOwners.Add(field, &cls);
    symbols.classList.push_back(&cls);
    {
        const TellOnly first(Telling::First);
        SayRegistered(cls);
    }
    const TellOnly second(Telling::Second);
    SayDuplicate(cls);
}

ClassInfo& ClassNamed(const std::string& name) {
    if (ClassInfo* cls = FindClass(name)) return *cls;
    ClassInfo& cls = symbols.classes.emplace_back();
    cls.name = name;
    symbols.classIndex.Add(name, &cls);
    return cls;
}

}  // namespace

void CollectClass(FirstPass& pass, TokenSpan tokens) {
    const std::string& name = tokens[1];
    pass.open = ClassInfo();
    pass.open.name = name;
    pass.open.sourceFile = pass.out.source;
    pass.open.isElement = tokens.KeywordAt(0) == Keyword::Element;
    pass.open.cppName = SafeName(name);
    pass.open.line = pass.line;
    pass.inType = true;
    pass.isPrivate = false;
    CheckName(name);
    pass.out.classes.push_back(&ClassNamed(name));
}

void CollectEndClass(FirstPass& pass, TokenSpan) {
    if (!pass.inType) return;
    pass.inType = false;
    ClassInfo& cls = ClassNamed(pass.open.name);
    if (cls.registered) return SayDuplicate(cls);
    Register(cls, std::move(pass.open));
    pass.open = ClassInfo();
}

void CollectField(FirstPass& pass, TokenSpan tokens) {
    if (!pass.inType) ReportFatal("Syntax error: 'Field' can only be declared inside a Type");
    for (const TokenSpan& part : tokens.From(1).SplitAt(',')) AddField(pass, part);
}

void CollectMethod(FirstPass& pass, TokenSpan tokens) {
    if (!pass.inType) ReportFatal("Syntax error: 'Method' can only be declared inside a Type");
    if (tokens.size() < 2) ReportFatal("Expected a name after '" + tokens[0] + "'", tokens.Slice(0, 1));
    const Token name = tokens.At(1);
    ClassInfo& open = pass.open;
    if (open.routines.Has(name)) {
        ReportFatal("Syntax error: Duplicate method '" + name->text + "' in Type " + open.name, Tokens{name},
                    MemberOf(open, pass.out.source, name));
    }
    RefuseMemberName(pass, name);
    Routine method = ParseRoutineHeader(tokens);
    method.cppName = MethodCppName(open, name);
    method.isPrivate = pass.isPrivate;
    method.file = pass.out.source;
    method.line = pass.line;
    open.methods.push_back(name);
    open.routines.Add(name, std::move(method));
}

// Only the lower-case spellings are access keywords.
void CollectAccess(FirstPass& pass, TokenSpan tokens) {
    if (Is(tokens[0], "private") || Is(tokens[0], "public")) pass.isPrivate = Is(tokens[0], "private");
}
