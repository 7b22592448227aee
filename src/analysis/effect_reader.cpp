#include "analysis/effect_reader.h"

#include <algorithm>

#include "base/run.h"
#include "lexer/holes.h"
#include "symbols/scopes.h"
#include "symbols/type_reader.h"

namespace {

// What a Global or Field of the name may be.
struct SharedName {
    bool known = false;
    bool items = false;                      // an array or Sequence
    std::vector<const ClassInfo*> elements;  // records of these classes
};

std::vector<SharedName> sharedNames;  // by the id of the name
const PartOfRun partOfRun(sharedNames);

void AddShared(const Word& called, const Variable& variable) {
    const std::size_t id = called.id;
    if (id >= sharedNames.size()) sharedNames.resize(WordCount());
    SharedName& name = sharedNames[id];
    const ValueType& type = variable.type;
    name.known = true;
    name.items = name.items || !type.IsSingle() || !type.IsKnown();
    if (type.base == Base::Element && type.cls != nullptr) name.elements.push_back(type.cls);
}

// When all of them are known.
void NoteSharedNames() {
    sharedNames.resize(WordCount());
    for (const auto& [name, global] : symbols.globals) AddShared(*name, global);
    for (const auto& [name, constant] : symbols.constants) AddShared(*name, constant);
    for (const ClassInfo* cls : symbols.classList)
        for (const auto& [name, field] : cls->members) AddShared(*name, field);
}

const SharedName* FindShared(const Word& name) {
    if (sharedNames.empty()) NoteSharedNames();
    return name.id < sharedNames.size() && sharedNames[name.id].known ? &sharedNames[name.id] : nullptr;
}

bool IsAccessor(char sign) { return sign == '\\' || sign == '.'; }

}  // namespace

// Elements that hold one another have no end, and are refused elsewhere.
void AddFields(const ClassInfo& element, std::vector<Thing>& things, int depth) {
    constexpr int deepest = 16;
    for (const auto& field : element.members) {
        things.push_back(ThingOf(*field.first));
        const ClassInfo* inner = field.second.type.cls;
        if (inner != nullptr && field.second.type.base == Base::Element && depth < deepest)
            AddFields(*inner, things, depth + 1);
    }
}

// ---- names

OwnName EffectReader::OwnNameOf(const Word& name) const {
    if (names != nullptr) {
        const auto found = names->own.find(&name);
        return found == names->own.end() ? OwnName::None : found->second;
    }
    const Variable* local = FindLocal(name);
    if (local == nullptr || local->slot) return OwnName::None;
    if (local->isItem) return OwnName::Item;
    const OwnName kind = KindOf(local->type);
    return kind == OwnName::Items && local->isParameter ? OwnName::Passed : kind;
}

// The class of a record that is reached through a pointer: the Method's own, or an item of an array.
const ClassInfo* EffectReader::ReachedElement(const Word& name) const {
    const bool self = name.keyword == Keyword::This;
    if (names != nullptr) return self ? names->self : nullptr;
    const Variable* local = FindLocal(self ? "this" : name.text);
    return local != nullptr && local->slot ? local->type.cls : nullptr;
}

void EffectReader::TouchOwn(const Word& name, OwnName own, bool changes) {
    if (own == OwnName::Passed || own == OwnName::Item)
        (changes ? set.changesPassed : set.readsPassed) = true;
    if (names != nullptr && own == OwnName::Item) return TouchShared(name, true, changes);
    if (names != nullptr) return;
    (changes ? set.ownChanges : set.ownReads).push_back(ThingOf(name));
    if (own == OwnName::Items || own == OwnName::Element) handedOn.push_back(&name);
}

void EffectReader::TouchFields(const ClassInfo& element, bool changes) {
    std::vector<Thing>& things = changes ? set.changes : set.reads;
    const auto from = static_cast<std::ptrdiff_t>(things.size());
    AddFields(element, things);
    if (std::any_of(things.begin() + from, things.end(), HoldsItems))
        (changes ? set.changesItems : set.readsItems) = true;
}

void EffectReader::TouchShared(const Word& name, bool whole, bool changes) {
    const SharedName* shared = FindShared(name);
    if (shared == nullptr) return;
    std::vector<Thing>& things = changes ? set.changes : set.reads;
    things.push_back(ThingOf(name));
    if (shared->items) (changes ? set.changesItems : set.readsItems) = true;
    if (!whole) return;
    for (const ClassInfo* element : shared->elements) TouchFields(*element, changes);
}

// A name that is none of the routine's own variables.
void EffectReader::TouchOther(const Word& name, bool whole, bool changes) {
    TouchShared(name, whole, changes);
    const ClassInfo* element = whole ? ReachedElement(name) : nullptr;
    if (element != nullptr) TouchFields(*element, changes);
}

void EffectReader::TouchSharedName(const Word& name) {
    TouchShared(name, true, false);
    TouchShared(name, true, true);
}

// ---- values

// Returns the position of the last token that it took: a Field of the routine's own record belongs to its name.
std::size_t EffectReader::ReadName(TokenSpan tokens, std::size_t at) {
    const Word& name = tokens.At(at);
    const bool whole = !IsAccessor(tokens.SignAt(at + 1));
    const bool member = at > 0 && IsAccessor(tokens.SignAt(at - 1));
    const OwnName own = member ? OwnName::None : OwnNameOf(name);
    if (own == OwnName::None) {
        member ? TouchShared(name, whole, false) : TouchOther(name, whole, false);
        return at;
    }
    TouchOwn(name, own, false);
    const bool field = own == OwnName::Element && !whole && tokens.SignAt(at + 3) != '(';
    return field ? at + 2 : at;
}

void EffectReader::ReadWord(TokenSpan tokens, std::size_t at) {
    switch (tokens.KeywordAt(at)) {
        case Keyword::Create:
        case Keyword::New:
            if (!IsElement(tokens.At(at + 1))) set.Change(instances);
            return;
        case Keyword::Insert:
            return set.Change(instances);
        case Keyword::First:
        case Keyword::Last:
        case Keyword::Before:
        case Keyword::After:
        case Keyword::Each:
        case Keyword::EachIn:
            return set.Read(instances);
        case Keyword::GetKey:
            return set.Change(keyboard);
        case Keyword::SeqFirst:
        case Keyword::SeqLast:
        case Keyword::SeqNext:
        case Keyword::SeqBefore:
        case Keyword::SeqRemoveFirst:
        case Keyword::SeqRemoveLast:
            if (tokens.SignAt(at + 1) == '(') ReadTarget(tokens.Inside(at + 1));
            return;
        default:
            break;
    }
    if (Is(tokens[at], "std") && tokens.SignAt(at + 1) == ':') set.anything = true;
}

void EffectReader::ReadValue(TokenSpan tokens) {
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        const Word& token = tokens.At(i);
        if (token.text.empty() || token.sign != '\0') continue;
        if (IsLetterByte(token.text[0])) {
            ReadWord(tokens, i);
            i = ReadName(tokens, i);
        } else if (HasHoles(token)) {
            for (const StringPiece& piece : PiecesOf(token)) ReadValue(piece.tokens);
        }
    }
}

// ---- statements

void EffectReader::ReadPlace(TokenSpan tokens) {
    const std::size_t last = LastName(tokens);
    if (last == tokens.size()) return ReadValue(tokens);
    ReadValue(tokens.Slice(0, last > 0 ? last - 1 : 0));
    ReadValue(tokens.From(last + 1));
}

// Its last name says what is changed, unless all of it is the routine's own.
void EffectReader::ReadTarget(TokenSpan tokens) {
    ReadPlace(tokens);
    const std::size_t last = LastName(tokens);
    if (last == tokens.size()) return;
    const Word& name = last == 0 && names != nullptr ? Meant(tokens.At(0), *names) : tokens.At(last);
    const OwnName own = OwnNameOf(last == 0 ? name : tokens.At(0));
    if (last == 0) return own == OwnName::None ? TouchOther(name, true, true) : TouchOwn(name, own, true);
    const bool ownRecord = own == OwnName::Element && last == 2;
    if (!ownRecord) TouchShared(name, true, true);
    if (ownRecord) TouchOwn(tokens.At(0), own, true);
}

void EffectReader::ReadAssignment(TokenSpan tokens) {
    std::size_t begin = 0;
    for (std::size_t i = tokens.FindEquals(); i != noToken; i = tokens.FindEquals(begin)) {
        ReadTarget(tokens.Slice(begin, i));
        begin = i + 1;
    }
    ReadValue(tokens.From(begin));
}

// If a Then b | c Else d
void EffectReader::ReadOneLineIf(TokenSpan tokens) {
    std::size_t begin = tokens.size();
    for (std::size_t i = 1; i <= tokens.size(); ++i) {
        const Keyword word = tokens.KeywordAt(i);
        const bool ends = i == tokens.size() || word == Keyword::Then || word == Keyword::Else ||
                          word == Keyword::ElseIf || tokens.SignAt(i) == '|';
        if (!ends) continue;
        if (begin < i) ReadStatement(tokens.Slice(begin, i));
        if (begin == tokens.size()) ReadValue(tokens.Slice(1, i));
        begin = word == Keyword::ElseIf ? i : i + 1;
    }
}

// For [Local] x = ... , For [Each] x In ... , EachSeq x In ...
void EffectReader::ReadLoop(TokenSpan tokens) {
    if (tokens.KeywordAt(0) == Keyword::EachSeq) return ReadValue(tokens.From(3));
    std::size_t at = 1;
    while (tokens.KeywordAt(at) == Keyword::Local || tokens.KeywordAt(at) == Keyword::Each) ++at;
    if (at == 1) ReadTarget(tokens.Slice(at, at + 1));
    ReadValue(tokens.From(1));
}

// The first arguments of a statement are changed.
void EffectReader::ReadTargets(TokenSpan tokens, std::size_t count) {
    for (const TokenSpan argument : tokens.From(1).WithoutParentheses().SplitAt(',')) {
        if (count > 0) {
            ReadTarget(argument);
            --count;
        } else {
            ReadValue(argument);
        }
    }
}

void EffectReader::ReadStatement(TokenSpan tokens) {
    switch (tokens.KeywordAt(0)) {
        case Keyword::If:
        case Keyword::ElseIf:
            return ReadOneLineIf(tokens);
        case Keyword::For:
        case Keyword::EachSeq:
            return ReadLoop(tokens);
        case Keyword::While:
        case Keyword::Until:
        case Keyword::Case:
        case Keyword::Return:
        case Keyword::With:
            return ReadValue(tokens.From(1));
        case Keyword::Select:
            return ReadAssignment(tokens.From(1));
        case Keyword::Local:
        case Keyword::Const:
        case Keyword::Field:
        case Keyword::Global:
            for (const TokenSpan declaration : tokens.From(1).SplitAt(',')) ReadValue(declaration.From(1));
            return;
        case Keyword::Print:
        case Keyword::End:
            set.Change(screen);
            return ReadValue(tokens.From(1));
        case Keyword::Input:
            set.Change(screen);
            set.Change(keyboard);
            return ReadTargets(tokens, tokens.size());
        case Keyword::Remove:
            set.Change(instances);
            return ReadTarget(tokens.From(1));
        case Keyword::AutoCall:
        case Keyword::StopCall:
            return set.Change(timers);
        case Keyword::SeqSwap:
            return ReadTargets(tokens, 2);
        default:
            return Has(tokens.KeywordAt(0), trait::changesFirst) ? ReadTargets(tokens, 1)
                                                                 : ReadAssignment(tokens);
    }
}

bool HoldsItems(Thing thing) {
    const std::size_t id = thing - firstNamed;
    return thing >= firstNamed && id < sharedNames.size() && sharedNames[id].items;
}
