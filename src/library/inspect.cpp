#include "library/inspect.h"

#include <algorithm>
#include <tuple>
#include <unordered_map>

#include "lexer/source_lines.h"
#include "lexer/token_places.h"
#include "symbols/program_files.h"
#include "symbols/symbols.h"
#include "symbols/uses.h"

using korvel::Inspection;
using korvel::Range;
using korvel::Symbol;

namespace {

std::string NameOf(const ValueType& type) { return type.IsKnown() ? KorvelName(type) : std::string(); }

std::string ResultOf(const Routine& routine) {
    return routine.result.Is(Base::Void) ? std::string() : KorvelName(routine.result);
}

std::string ParametersOf(const Routine& routine) {
    std::string text;
    for (const Parameter& parameter : routine.parameters) {
        text += text.empty() ? "" : ", ";
        text += parameter.name;
        if (parameter.type.IsKnown()) text += ":" + KorvelName(parameter.type);
        if (parameter.hasDefault) text += " = " + TokenSpan(parameter.defaultValue).Text("");
    }
    return "(" + text + ")";
}

// Files by their order in the program.
class FileOrder {
public:
    FileOrder() {
        for (const std::string& file : symbols.sourceFiles) numbers.emplace(file, numbers.size());
    }
    std::size_t Of(const std::string& file) const {
        const auto found = numbers.find(file);
        return found == numbers.end() ? numbers.size() : found->second;
    }
    // The numbers of the ranges in the order of their places, equal ones as they stand.
    template <class Ranges>
    std::vector<std::size_t> Arranged(const Ranges& ranges) const {
        std::vector<std::tuple<std::size_t, int, int, int, std::size_t>> places;
        places.reserve(ranges.size());
        for (const Range& range : ranges)
            places.emplace_back(Of(range.file), range.line, range.firstColumn, range.lastColumn,
                                places.size());
        std::sort(places.begin(), places.end());
        std::vector<std::size_t> numbersInOrder;
        numbersInOrder.reserve(places.size());
        for (const auto& place : places) numbersInOrder.push_back(std::get<4>(place));
        return numbersInOrder;
    }
    template <class Ranges>
    void Sort(Ranges& ranges) const {
        Ranges sorted;
        sorted.reserve(ranges.size());
        for (const std::size_t number : Arranged(ranges)) sorted.push_back(std::move(ranges[number]));
        ranges = std::move(sorted);
    }

private:
    std::unordered_map<std::string, std::size_t> numbers;
};

// Finds the places of tokens, mostly of one file for many in a row.
class Places {
public:
    bool Find(const Token* token, Range& range) {
        if (token < tokens.first || token >= tokens.last) Enter(token);
        const auto index = static_cast<std::size_t>(token - tokens.first);
        if (places == nullptr || index >= places->size()) return false;
        const TokenPlace& place = (*places)[index];
        range = {file, place.line, place.first, place.last};
        return true;
    }

    bool Find(const NotedUse& use, Range& range) {
        if (!Find(use.at, range)) return false;
        if (use.from < 0) return true;
        range.lastColumn = range.firstColumn + use.to - 1;
        range.firstColumn += use.from;
        return true;
    }

    // The part of the tokens that stands on the line of the last one.
    bool Find(TokenSpan wanted, Range& range) {
        Range first;
        if (!Find(wanted.last - 1, range)) return false;
        for (const Token* token = wanted.last - 1; token-- > wanted.first;) {
            if (!Find(token, first) || first.line != range.line) return false;
            range.firstColumn = first.firstColumn;
        }
        return true;
    }

private:
    std::string file;
    TokenSpan tokens;
    const std::vector<TokenPlace>* places = nullptr;

    void Enter(const Token* token) {
        std::size_t index = 0;
        file = FileWithToken(token, index);
        tokens = TokensOf(file);
        places = file.empty() ? nullptr : &PlacesOf(file);
    }
};

class SymbolList {
public:
    std::vector<Symbol> list;
    std::unordered_map<const void*, std::size_t> numbers;  // by what is noted as a meaning

    Symbol& Add(const void* meaning, Symbol::Kind kind, const std::string& name, const std::string& file,
                int line, const std::string& owner = {}) {
        numbers.emplace(meaning, list.size());
        Symbol& symbol = list.emplace_back();
        symbol.kind = kind;
        symbol.name = name;
        symbol.file = file;
        symbol.line = line;
        symbol.owner = owner;
        return symbol;
    }

    void AddVariable(const Variable& variable, Symbol::Kind kind, const std::string& file,
                     const std::string& owner = {}) {
        Add(&variable, kind, variable.name, file, variable.line, owner).type = NameOf(variable.type);
    }

    void AddRoutine(const Routine& routine, Symbol::Kind kind, const std::string& owner = {}) {
        Symbol& symbol = Add(&routine, kind, routine.name, routine.file, routine.line, owner);
        symbol.type = ResultOf(routine);
        symbol.parameters = ParametersOf(routine);
    }

    void AddClass(const ClassInfo& cls) {
        Add(&cls, cls.isElement ? Symbol::Kind::Element : Symbol::Kind::Type, cls.name, cls.sourceFile,
            cls.line);
        for (const auto& [name, field] : cls.members)
            AddVariable(field, Symbol::Kind::Field, cls.sourceFile, cls.name);
        for (const auto& [name, method] : cls.routines) AddRoutine(method, Symbol::Kind::Method, cls.name);
    }

    void AddConstant(const Variable& constant) {
        AddVariable(constant, Symbol::Kind::Const, constant.file);
        const TokenSpan value = constant.initialiser;
        list.back().value = value.Text(value.size() == 2 ? "" : " ");  // -1
    }

    void AddLocal(const NotedLocal& local) {
        const Variable& variable = local.variable;
        const auto kind = variable.isParameter ? Symbol::Kind::Parameter : Symbol::Kind::Local;
        Symbol& symbol = Add(&local, kind, variable.name, variable.file, variable.line);
        symbol.type = NameOf(variable.type);
        symbol.lastLine = local.lastLine;
    }

    void AddAll() {
        for (const std::string& file : symbols.sourceFiles) Add(&file, Symbol::Kind::File, file, file, 1);
        for (const ClassInfo& cls : symbols.classes) AddClass(cls);
        for (const auto& [name, routine] : symbols.functions) AddRoutine(routine, Symbol::Kind::Function);
        for (const auto& [name, routine] : symbols.userlibRoutines)
            AddRoutine(routine, Symbol::Kind::Function);
        for (const auto& [name, global] : symbols.globals)
            AddVariable(global, Symbol::Kind::Global, global.file);
        for (const auto& [name, constant] : symbols.constants) AddConstant(constant);
        for (const NotedLocal& local : notedUses.locals) AddLocal(local);
    }
};

// Of what no statement has declared: the first place of the name behind the beginning of its line.
void FindByName(Symbol& symbol) {
    TokenPlace place;
    if (symbol.kind == Symbol::Kind::File || !FindName(symbol.file, symbol.line, symbol.name, place)) return;
    static_cast<Range&>(symbol) = {symbol.file, place.line, place.first, place.last};
}

bool IsRoutine(const Symbol& symbol) {
    return symbol.kind == Symbol::Kind::Function || symbol.kind == Symbol::Kind::Method;
}

// Locals belong to the routine before them.
void NameOwners(std::vector<Symbol>& list) {
    std::string routine;
    for (Symbol& symbol : list) {
        if (IsRoutine(symbol))
            routine = symbol.owner.empty() ? symbol.name : symbol.owner + "\\" + symbol.name;
        if (symbol.kind == Symbol::Kind::Local || symbol.kind == Symbol::Kind::Parameter)
            symbol.owner = routine;
    }
}

class Description {
public:
    explicit Description(Inspection& target) : inspection(target) { found.AddAll(); }

    void Fill() {
        for (const NotedUse& use : notedUses.uses) AddUse(use);
        AddIncludes();
        for (Symbol& symbol : found.list)
            if (symbol.firstColumn == 0) FindByName(symbol);
        AddDeclarations();
        Arrange();
        AddTypes();
    }

private:
    Inspection& inspection;
    SymbolList found;
    Places places;
    FileOrder order;

    void AddUse(const NotedUse& noted) {
        const auto number = found.numbers.find(noted.meaning);
        korvel::Use use;
        if (number == found.numbers.end() || !places.Find(noted, use)) return;
        use.symbol = number->second;
        Symbol& symbol = found.list[use.symbol];
        if (noted.declares && symbol.firstColumn == 0) static_cast<Range&>(symbol) = use;
        inspection.uses.push_back(use);
    }

    void AddIncludes() {
        for (const std::string& file : symbols.sourceFiles) {
            const TokenSpan tokens = TokensOf(file);
            for (std::size_t i = 0; i < tokens.size(); ++i)
                if (const auto name = IncludedName(tokens.From(i))) AddInclude(tokens.first + i + 1, *name);
        }
    }

    void AddInclude(const Token* at, const std::string& name) {
        const std::string id = FileId(PathOfInclude(name));
        for (const std::string& file : symbols.sourceFiles)
            if (FileId(file) == id) AddUse({at, -1, -1, &file, false});
    }

    void AddDeclarations() {
        for (std::size_t i = 0; i < found.list.size(); ++i) {
            const Symbol& symbol = found.list[i];
            if (symbol.firstColumn == 0) continue;
            korvel::Use use;
            static_cast<Range&>(use) = symbol;
            use.symbol = i;
            use.declares = true;
            inspection.uses.push_back(use);
        }
    }

    // Sorts symbols and uses; what stands at one place is told once, declarations first.
    void Arrange() {
        const std::vector<std::size_t> at = order.Arranged(found.list);
        std::vector<std::size_t> newNumbers(at.size());
        for (std::size_t i = 0; i < at.size(); ++i) {
            newNumbers[at[i]] = i;
            inspection.symbols.push_back(std::move(found.list[at[i]]));
        }
        NameOwners(inspection.symbols);
        for (korvel::Use& use : inspection.uses) use.symbol = newNumbers[use.symbol];
        std::stable_partition(inspection.uses.begin(), inspection.uses.end(),
                              [](const korvel::Use& use) { return use.declares; });
        order.Sort(inspection.uses);
        DropRepeated(inspection.uses);
    }

    template <class Ranges>
    static void DropRepeated(Ranges& ranges) {
        const auto same = [](const Range& a, const Range& b) {
            return a.line == b.line && a.firstColumn == b.firstColumn && a.lastColumn == b.lastColumn &&
                   a.file == b.file;
        };
        ranges.erase(std::unique(ranges.begin(), ranges.end(), same), ranges.end());
    }

    void AddTypes() {
        for (const NotedType& noted : notedUses.types) {
            korvel::TypedRange typed;
            if (!places.Find(noted.tokens, typed)) continue;
            typed.type = KorvelName(noted.type);
            inspection.types.push_back(std::move(typed));
        }
        std::reverse(inspection.types.begin(), inspection.types.end());  // what is known last counts
        order.Sort(inspection.types);
        DropRepeated(inspection.types);
    }
};

bool IsAt(const Range& range, const std::string& file, int line, int column) {
    return range.line == line && range.firstColumn <= column && column <= range.lastColumn + 1 &&
           range.file == file;
}

}  // namespace

void Describe(Inspection& inspection) { Description(inspection).Fill(); }

namespace korvel {

const Use* UseAt(const Inspection& inspection, const std::string& file, int line, int column) {
    const Use* found = nullptr;
    for (const Use& use : inspection.uses)
        if (IsAt(use, file, line, column)) found = &use;  // the later one begins there
    return found;
}

std::string TypeAt(const Inspection& inspection, const std::string& file, int line, int column) {
    const TypedRange* found = nullptr;
    const auto length = [](const Range& range) { return range.lastColumn - range.firstColumn; };
    for (const TypedRange& typed : inspection.types) {
        if (!IsAt(typed, file, line, column)) continue;
        if (found == nullptr || length(typed) < length(*found)) found = &typed;
    }
    const Use* use = UseAt(inspection, file, line, column);
    const bool named = use != nullptr && !inspection.symbols[use->symbol].type.empty() &&
                       (found == nullptr || length(*use) < length(*found));
    if (named) return inspection.symbols[use->symbol].type;
    return found == nullptr ? std::string() : found->type;
}

}  // namespace korvel
