// expression:  signed { operator signed }    (operators.cpp has these, and which of them come first)
// signed:      { sign } value { \name | [ expression ] }
// value:       number | "text" | True | False | Null | name | TName#number | SeqLength ( expression ) | ( expression )
#include "debug/evaluate.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <functional>

#include "base/text.h"
#include "base/token_text.h"
#include "lexer/lexer.h"

namespace debug {

namespace {

const struct {
    char letter, meant;
} escapes[] = {{'n', '\n'}, {'t', '\t'}, {'r', '\r'}, {'q', '"'}, {'~', '~'}, {'{', '{'}, {'}', '}'}};

// Behind a tilde in a text; 0 where the tilde is one.
char Meant(char letter) {
    for (const auto& row : escapes)
        if (row.letter == letter) return row.meant;
    return '\0';
}

bool BeginsHole(const std::string& text, std::size_t at) {
    return text[at] == '{' && at + 1 < text.size() && std::strchr("$%!", text[at + 1]) != nullptr;
}

// What there is for an expression, worked out or only looked for.
class Reader {
public:
    Reader(Session& of, std::size_t at, const std::string& what) : session(&of), frame(at), text(what) {}
    Reader(const std::function<void(const std::string& name)>& check, const std::string& what)
        : checkName(check), text(what), isLeftOut(true) {}

    // Of a part of what the other one reads.
    Reader(const Reader& whole, const std::string& what)
        : session(whole.session),
          frame(whole.frame),
          checkName(whole.checkName),
          text(what),
          isLeftOut(whole.isLeftOut) {}

    Value Whole() {
        Value value = From(Level::Or);
        Skip();
        if (value.ref == -1) value.type.clear();
        if (at < text.size()) throw Refusal{"what is \"" + text.substr(at) + "\"?"};
        return value;
    }

private:
    Session* session = nullptr;
    std::size_t frame = 0;
    std::function<void(const std::string& name)> checkName;  // where it is only read
    const std::string& text;
    std::size_t at = 0;
    int deeper = 0;
    bool isLeftOut = false;  // what is read is not worked out
    static constexpr int deepest = 200;

    void Skip() {
        while (at < text.size() && (text[at] == ' ' || text[at] == '\t')) ++at;
    }
    bool Take(const std::string& sign) {
        Skip();
        if (text.compare(at, sign.size(), sign) != 0) return false;
        at += sign.size();
        return true;
    }
    std::string Word() {
        Skip();
        const std::size_t from = at;
        while (at < text.size() && IsNameByte(text[at])) ++at;
        return text.substr(from, at - from);
    }
    // Before brackets and signs, each of which the reading goes into.
    void GoDeeper() {
        if (++deeper > deepest) throw Refusal{"these are too many brackets and signs"};
    }
    void Need(const char* sign) {
        if (!Take(sign)) throw Refusal{std::string("'") + sign + "' is missing"};
    }

    // An operand that decides alone leaves the other one out.
    static bool Decides(Level level, const Value& left) {
        return level == Level::And ? !IsTrue(left) : level == Level::Or && IsTrue(left);
    }
    // Of operators of this level, and of higher ones.
    Value From(Level lowest) {
        Value left = Signed();
        for (;;) {
            Skip();
            const Operator* const found = FindOperator(text, at);
            if (found == nullptr || found->level < lowest) return left;
            at += std::strlen(found->word);
            const bool leavesOut = !isLeftOut && Decides(found->level, left);
            if (leavesOut) isLeftOut = true;
            const Value right = From(static_cast<Level>(static_cast<int>(found->level) + 1));
            if (leavesOut) isLeftOut = false;
            if (leavesOut)
                left = Truth(IsTrue(left));
            else if (!isLeftOut)
                left = found->apply(left, right);
        }
    }

    Value Signed() {
        Skip();
        if (const Operator* const sign = FindSign(text, at)) {
            GoDeeper();
            at += std::strlen(sign->word);
            const Value value = Signed();
            return isLeftOut ? value : sign->apply(Plain('n', "0"), value);
        }
        Value value = Single();
        for (;;) {
            if (Take("\\") || Take("."))
                value = Member(value, Word());
            else if (Take("["))
                value = Item(value);
            else
                return value;
        }
    }

    Value Single() {
        Skip();
        if (Take("(")) {
            GoDeeper();
            Value value = From(Level::Or);
            Need(")");
            return value;
        }
        if (Take("\"")) return Text();
        if (at < text.size() && (IsDigit(text[at]) || text[at] == '$')) return Number();
        const std::string name = Word(), lower = Lower(name);
        if (name.empty())
            throw Refusal{at < text.size() ? "what is \"" + text.substr(at) + "\"?" : "a value is missing"};
        if (lower == "true" || lower == "false") return Truth(lower == "true");
        if (lower == "null") return Plain('o', "Null");
        if (Take("#")) return Object(name, Word());
        return Variable(name);
    }

    Value Number() {
        const bool isHex = Take("$");
        const char* const from = &text[at];
        char *end = nullptr, *endOfWhole = nullptr;
        const unsigned long long whole = std::strtoull(from, &endOfWhole, isHex ? 16 : 10);
        const double broken = isHex ? 0 : std::strtod(from, &end);
        const bool isWhole = isHex || end <= endOfWhole;
        at += static_cast<std::size_t>((isWhole ? endOfWhole : end) - from);
        return isWhole ? WholeNumber(static_cast<long long>(whole)) : Double(broken);
    }

    Value Text() {
        const std::size_t end = text.find('"', at);
        if (end == std::string::npos) throw Refusal{"the closing quote is missing"};
        std::string inside;
        for (; at < end; ++at) {
            if (BeginsHole(text, at)) {
                inside += Hole(end);
                continue;
            }
            const char meant = text[at] == '~' ? Meant(text[at + 1]) : '\0';
            inside += meant != '\0' ? meant : text[at];
            if (meant != '\0') ++at;
        }
        at = end + 1;
        return Plain('s', inside);
    }

    // "{$name}" in a text that ends there: what becomes of it. Stays at its brace.
    std::string Hole(std::size_t endOfText) {
        const std::size_t from = at + 2;
        at = text.find('}', at);
        if (at >= endOfText) throw Refusal{"'}' is missing"};
        GoDeeper();
        const std::string what = text.substr(from, at - from);
        const Value value = Reader(*this, what).Whole();
        return isLeftOut ? "" : FindOperator("+", 0)->apply(Plain('s', ""), value).text;
    }

    static const Value* Named(const Part& part, const std::string& name) {
        const auto found = std::find_if(part.items.begin(), part.items.end(),
                                        [&](const Value& one) { return one.name == name; });
        return found == part.items.end() ? nullptr : &*found;
    }

    static std::vector<std::string> NamesOf(const std::vector<Part>& parts) {
        std::vector<std::string> names;
        for (const Part& part : parts)
            for (const Value& value : part.items) names.push_back(value.name);
        return names;
    }

    // The one call whose result is known without the program.
    Value Length() {
        GoDeeper();
        const Value of = From(Level::Or);
        Need(")");
        if (isLeftOut) return {};
        if (of.kind != 'l') throw Refusal{"only arrays and Sequences have a length here"};
        return WholeNumber(static_cast<long long>(ItemCount(of)));
    }

    // As the program sees it: Locals, the object's own Fields, Globals, Consts.
    Value Variable(const std::string& name) {
        if (Take("(")) {
            if (Lower(name) == "seqlength") return Length();
            throw Refusal{name + " cannot be called here"};
        }
        if (Lower(name) == "its") return Its();
        if (checkName) checkName(name);
        if (isLeftOut) return {};
        const Part locals = session->Locals(frame);
        if (const Value* local = Named(locals, name)) return *local;
        const Value* const self = Named(locals, "this");
        const Part fields = self != nullptr ? session->Items(*self, 0, all) : Part();
        if (const Value* field = Named(fields, name)) return *field;
        const Part globals = session->Globals();
        if (const Value* global = Named(globals, name)) return *global;
        const Part consts = session->Consts();
        if (const Value* constant = Named(consts, name)) return *constant;
        const bool isNull = self != nullptr && self->text == "Null";
        throw Refusal{"there is no " + name + " here" + (isNull ? ": this is Null" : "") +
                      DidYouMean(name, NamesOf({locals, fields, globals, consts}))};
    }

    // In a With.
    Value Its() {
        std::size_t total = 0;
        std::string object;
        if (checkName) checkName("its");
        if (isLeftOut) return {};
        for (const Frame& at : session->Stack(frame, 1, total))
            object = session->MeantByIts(at.file, at.line);
        if (object.empty()) throw Refusal{"there is no its here"};
        GoDeeper();
        return Reader(*this, object).Whole();
    }

    Value Member(const Value& of, const std::string& name) {
        if (name.empty()) throw Refusal{"the name of a Field is missing"};
        if (Take("(")) throw Refusal{name + " cannot be called here"};
        if (isLeftOut) return {};
        if (of.text == "Null") throw Refusal{"what stands before \\" + name + " is Null"};
        const Part fields = session->Items(of, 0, all);
        if (const Value* field = Named(fields, name)) return *field;
        if (EndsWith(of.text, "(removed)"))
            throw Refusal{"what stands before \\" + name + " has been removed"};
        const std::vector<std::string> routines = session->NamesOfRoutines();
        if (std::find(routines.begin(), routines.end(), of.type + "\\" + name) != routines.end())
            throw Refusal{name + " is a Method, and cannot be called here"};
        throw Refusal{"there is no Field " + name + " in " + of.text + DidYouMean(name, NamesOf({fields}))};
    }

    Value Item(const Value& of) {
        GoDeeper();
        const Value index = From(Level::Or);
        Need("]");
        if (isLeftOut) return {};
        if (of.kind != 'l') throw Refusal{"only arrays and Sequences whose size is known have items here"};
        const long long number = WholeOf(index);
        const Part part = number < 0 ? Part() : session->Items(of, static_cast<std::size_t>(number), 1);
        if (part.items.empty())
            throw Refusal{"index " + std::to_string(number) + " is outside of " + of.text};
        return part.items.front();
    }

    Value Object(const std::string& type, const std::string& number) {
        if (isLeftOut) return {};
        const Part objects = session->Objects(type, 0, all);
        if (const Value* object = Named(objects, "[" + number + "]")) return *object;
        throw Refusal{"there is no " + type + "#" + number};
    }

    static constexpr std::size_t all = 1000000;
};

}  // namespace

// Braces are none but where a hole would begin.
std::string Written(const std::string& text) {
    std::string written = "\"";
    for (std::size_t at = 0; at < text.size(); ++at) {
        const auto isMeant = [&](const auto& row) { return row.meant == text[at]; };
        const auto* const escape = std::find_if(std::begin(escapes), std::end(escapes), isMeant);
        const bool isBrace = text[at] == '}' || (text[at] == '{' && !BeginsHole(text, at));
        if (escape != std::end(escapes) && !isBrace)
            (written += '~') += escape->letter;
        else
            written += text[at];
    }
    return written + "\"";
}

Value Evaluate(Session& session, std::size_t frame, const std::string& text) {
    return Reader(session, frame, text).Whole();
}

void Check(const std::string& text) {
    Reader([](const std::string&) {}, text).Whole();
}

void Check(const Session& session, const std::string& file, int line, const std::string& text) {
    const auto check = [&](const std::string& name) {
        const bool isIts = name == "its";
        if (isIts && session.MeantByIts(file, line).empty()) throw Refusal{"there is no its here"};
        const std::vector<std::string> names = isIts ? std::vector{name} : session.NamesIn(file, line);
        if (std::find(names.begin(), names.end(), name) == names.end())
            throw Refusal{"there is no " + name + " here" + DidYouMean(name, names)};
    };
    Reader(check, text).Whole();
}

}  // namespace debug
