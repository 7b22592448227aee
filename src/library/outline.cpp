#include "library/outline.h"

#include <algorithm>
#include <tuple>

#include "symbols/symbols.h"
#include "symbols/token_places.h"

namespace korvel {

namespace {

std::string TypeOf(const Variable& variable) {
    return variable.type.IsKnown() ? KorvelName(variable.type) : std::string();
}

std::string ResultOf(const Routine& routine) {
    return routine.result.Is(Base::Void) ? std::string() : KorvelName(routine.result);
}

class Outline {
public:
    void Add(Symbol::Kind kind, const std::string& name, const std::string& type, const std::string& file,
             int line, const std::string& owner = {}) {
        Symbol symbol = {kind, name, owner, type, file, line, 0, 0};
        TokenPlace place;
        if (FindName(file, line, name, place)) {
            symbol.line = place.line;
            symbol.firstColumn = place.first;
            symbol.lastColumn = place.last;
        }
        list.push_back(symbol);
    }

    void AddMembers(const ClassInfo& cls) {
        for (const auto& [name, field] : cls.members)
            Add(Symbol::Kind::Field, name, TypeOf(field), cls.sourceFile, field.line, cls.name);
        for (const auto& [name, method] : cls.routines)
            Add(Symbol::Kind::Method, name, ResultOf(method), method.file, method.line, cls.name);
    }

    void AddVariables(const std::unordered_map<std::string, Variable>& variables, Symbol::Kind kind) {
        for (const auto& [name, variable] : variables)
            Add(kind, name, TypeOf(variable), variable.file, variable.line);
    }

    std::vector<Symbol> InOrder() {
        const auto placeOf = [](const Symbol& symbol) {
            const auto& files = symbols.sourceFiles;
            const auto file = std::find(files.begin(), files.end(), symbol.file) - files.begin();
            return std::make_tuple(file, symbol.line, symbol.firstColumn);
        };
        std::sort(list.begin(), list.end(),
                  [&](const Symbol& a, const Symbol& b) { return placeOf(a) < placeOf(b); });
        return std::move(list);
    }

private:
    std::vector<Symbol> list;
};

}  // namespace

std::vector<Symbol> DeclaredSymbols() {
    Outline outline;
    for (const ClassInfo& cls : symbols.classes) {
        const auto kind = cls.isElement ? Symbol::Kind::Element : Symbol::Kind::Type;
        outline.Add(kind, cls.name, {}, cls.sourceFile, cls.line);
        outline.AddMembers(cls);
    }
    for (const auto& [name, routine] : symbols.functions)
        outline.Add(Symbol::Kind::Function, name, ResultOf(routine), routine.file, routine.line);
    outline.AddVariables(symbols.globals, Symbol::Kind::Global);
    outline.AddVariables(symbols.constants, Symbol::Kind::Const);
    return outline.InOrder();
}

}  // namespace korvel
