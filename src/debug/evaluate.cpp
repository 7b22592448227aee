// expression:  and { Or and }
// and:         not { And not }
// not:         [Not] sum [ (= | <> | < | <= | > | >=) sum ]
// sum:         product { (+ | - | &) product }
// product:     sign { (* | / | Mod) sign }
// sign:        [-] value { \name | [ expression ] }
// value:       number | "text" | True | False | Null | name | TName#number | ( expression )
#include "debug/evaluate.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "lexer/lexer.h"

namespace debug {

namespace {

bool IsNameByte(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || (c & 0x80) != 0;
}

Value Plain(char kind, const std::string& text) { return {"", "", kind, text, -1}; }
Value Truth(bool isTrue) { return Plain('b', isTrue ? "True" : "False"); }
Value Number(double number, bool isWhole) {
    char text[40];
    std::snprintf(text, sizeof text, isWhole ? "%.0f" : "%.15g", number);
    return Plain(isWhole ? 'n' : 'd', text);
}

bool IsWhole(const Value& value) { return value.kind != 'd'; }

double NumberOf(const Value& value) {
    if (value.kind == 'b') return IsTrue(value) ? 1 : 0;
    if (!IsNumber(value)) throw Refusal{"\"" + value.text + "\" is no number"};
    return std::strtod(value.text.c_str(), nullptr);
}

class Reader {
public:
    Reader(Session& of, std::size_t at, const std::string& what) : session(of), frame(at), text(what) {}

    Value Whole() {
        Value value = Either();
        Skip();
        if (at < text.size()) throw Refusal{"what is \"" + text.substr(at) + "\"?"};
        return value;
    }

private:
    Session& session;
    std::size_t frame;
    const std::string& text;
    std::size_t at = 0;
    int deeper = 0;
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
    bool TakeWord(const char* word) {
        const std::size_t before = at;
        if (Lower(Word()) == word) return true;
        at = before;
        return false;
    }
    // Before brackets and signs, each of which the reading goes into.
    void GoDeeper() {
        if (++deeper > deepest) throw Refusal{"these are too many brackets and signs"};
    }
    void Need(const char* sign) {
        if (!Take(sign)) throw Refusal{std::string("'") + sign + "' is missing"};
    }

    Value Either() {
        Value value = Both();
        while (TakeWord("or")) {
            const bool other = IsTrue(Both());
            value = Truth(IsTrue(value) || other);
        }
        return value;
    }
    Value Both() {
        Value value = Negated();
        while (TakeWord("and")) {
            const bool other = IsTrue(Negated());
            value = Truth(IsTrue(value) && other);
        }
        return value;
    }
    Value Negated() {
        if (TakeWord("not")) {
            GoDeeper();
            return Truth(!IsTrue(Negated()));
        }
        const Value left = Sum();
        for (const char* sign : {"<>", "<=", ">=", "=", "<", ">"})
            if (Take(sign)) return Truth(Compare(left, sign, Sum()));
        return left;
    }

    static bool Compare(const Value& left, const std::string& sign, const Value& right) {
        const bool texts = left.kind == right.kind && !IsNumber(left) && left.kind != 'b';
        const double a = texts ? left.text.compare(right.text) : NumberOf(left),
                     b = texts ? 0 : NumberOf(right);
        if (sign == "=") return a == b;
        if (sign == "<>") return a != b;
        if (sign == "<") return a < b;
        if (sign == "<=") return a <= b;
        return sign == ">" ? a > b : a >= b;
    }

    Value Sum() {
        Value value = Product();
        for (;;) {
            if (Take("+")) {
                const Value other = Product();
                const bool joins = value.kind == 's' || other.kind == 's';
                value = joins ? Plain('s', value.text + other.text)
                              : Number(NumberOf(value) + NumberOf(other), IsWhole(value) && IsWhole(other));
            } else if (Take("-")) {
                const Value other = Product();
                value = Number(NumberOf(value) - NumberOf(other), IsWhole(value) && IsWhole(other));
            } else if (Take("&")) {
                value = Together(value, Product());
            } else {
                return value;
            }
        }
    }

    // As between the items of a Print, or of whole numbers their bits.
    static Value Together(const Value& left, const Value& right) {
        if (left.kind != 'n' || right.kind != 'n') return Plain('s', left.text + right.text);
        const auto bits = [](const Value& value) { return static_cast<long long>(NumberOf(value)); };
        return Number(static_cast<double>(bits(left) & bits(right)), true);
    }

    Value Product() {
        Value value = Signed();
        for (;;) {
            const bool times = Take("*"), over = !times && Take("/");
            if (!times && !over && !TakeWord("mod")) return value;
            const Value other = Signed();
            const double a = NumberOf(value), b = NumberOf(other);
            const bool isWhole = IsWhole(value) && IsWhole(other);
            if (!times && b == 0) throw Refusal{"division by zero"};
            if (times)
                value = Number(a * b, isWhole);
            else if (over)
                value = Number(isWhole ? std::trunc(a / b) : a / b, isWhole);
            else
                value = Number(std::fmod(a, b), isWhole);
        }
    }

    Value Signed() {
        if (Take("-")) {
            GoDeeper();
            const Value value = Signed();
            return Number(-NumberOf(value), IsWhole(value));
        }
        Value value = Single();
        for (;;) {
            if (Take("\\"))
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
            Value value = Either();
            Need(")");
            return value;
        }
        if (Take("\"")) return Text();
        if (at < text.size() && std::isdigit(static_cast<unsigned char>(text[at])) != 0) {
            const char* const from = &text[at];
            char* end = nullptr;
            const double number = std::strtod(from, &end);
            const std::string digits(from, static_cast<std::size_t>(end - from));
            at += digits.size();
            return Number(number, digits.find_first_of(".eE") == std::string::npos);
        }
        const std::string name = Word(), lower = Lower(name);
        if (name.empty())
            throw Refusal{at < text.size() ? "what is \"" + text.substr(at) + "\"?" : "a value is missing"};
        if (lower == "true" || lower == "false") return Truth(lower == "true");
        if (lower == "null") return Plain('o', "Null");
        if (Take("#")) return Object(name, Word());
        return Variable(name);
    }

    Value Text() {
        const std::size_t end = text.find('"', at);
        if (end == std::string::npos) throw Refusal{"the closing quote is missing"};
        const std::string inside = text.substr(at, end - at);
        at = end + 1;
        return Plain('s', inside);
    }

    static const Value* Named(const Part& part, const std::string& name) {
        const auto found = std::find_if(part.items.begin(), part.items.end(),
                                        [&](const Value& one) { return one.name == name; });
        return found == part.items.end() ? nullptr : &*found;
    }

    // As the program sees it: Locals, the object's own Fields, Globals.
    Value Variable(const std::string& name) {
        const Part locals = session.Locals(frame);
        if (const Value* local = Named(locals, name)) return *local;
        if (const Value* self = Named(locals, "this")) {
            const Part fields = session.Items(*self, 0, all);
            if (const Value* field = Named(fields, name)) return *field;
        }
        const Part globals = session.Globals();
        if (const Value* global = Named(globals, name)) return *global;
        throw Refusal{"there is no " + name + " here"};
    }

    Value Member(const Value& of, const std::string& name) {
        if (of.text == "Null") throw Refusal{"what stands before \\" + name + " is Null"};
        const Part fields = session.Items(of, 0, all);
        if (const Value* field = Named(fields, name)) return *field;
        throw Refusal{"there is no Field " + name + " in " + of.text};
    }

    Value Item(const Value& of) {
        GoDeeper();
        const double index = NumberOf(Either());
        Need("]");
        if (of.kind != 'l') throw Refusal{"only arrays and Sequences whose size is known have items here"};
        const Part part = index < 0 ? Part() : session.Items(of, static_cast<std::size_t>(index), 1);
        if (part.items.empty())
            throw Refusal{"index " + Number(index, true).text + " is outside of " + of.text};
        return part.items.front();
    }

    Value Object(const std::string& type, const std::string& number) {
        const Part objects = session.Objects(type, 0, all);
        if (const Value* object = Named(objects, "[" + number + "]")) return *object;
        throw Refusal{"there is no " + type + "#" + number};
    }

    static constexpr std::size_t all = 1000000;
};

}  // namespace

Value Evaluate(Session& session, std::size_t frame, const std::string& text) {
    return Reader(session, frame, text).Whole();
}

bool IsNumber(const Value& value) { return value.kind == 'n' || value.kind == 'd'; }

bool IsTrue(const Value& value) {
    switch (value.kind) {
        case 'b':
            return value.text == "True";
        case 'n':
        case 'd':
            return std::strtod(value.text.c_str(), nullptr) != 0;
        case 's':
            return !value.text.empty();
        default:
            return value.text != "Null";
    }
}

}  // namespace debug
