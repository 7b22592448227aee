#include "expressions/writer.h"

#include <array>

#include "expressions/operators.h"
#include "expressions/walk.h"
#include "prelude/output.h"
#include "prelude/support.h"
#include "symbols/scopes.h"

namespace {

void WriteNothing(Code&, const Expr&) {}
void WriteFixed(Code& out, const Expr& expr) { out += expr.text; }
void WriteNumber(Code& out, const Expr& expr) { out += expr.word->text; }

void WriteParentheses(Code& out, const Expr& expr) { Put(out, "( ", AsValue{*expr.first}, " )"); }

void WriteAssignment(Code& out, const Expr& expr) {
    const Expr& target = *expr.first;
    Put(out, AsValue{target}, " = ");
    WriteAs(out, *target.next, target.type);
}

using Writer = void (*)(Code& out, const Expr& expr);

// In the order of the kinds.
constexpr std::array<Writer, static_cast<std::size_t>(ExprKind::Count)> writers = {
    WriteNothing,   WriteFixed,       WriteNumber,  WriteText,       WriteHoles,     WriteParentheses,
    WriteName,      WriteField,       WriteIndex,   WriteCall,       WriteCreate,    WriteInstances,
    WriteNeighbour, WriteInsert,      WriteGetKey,  WriteEnclosed,   WriteEnclosed,  WriteAsc,
    WriteMath,      WriteSeqFunction, WriteLibrary, WriteSign,       WriteOperation, WriteQuotient,
    WriteRemainder, WriteElements,    WriteSum,     WriteAssignment,
};

}  // namespace

void BeginHidden(Code& out, const Expr& expr) {
    if (!expr.hidden) return;
    RequireSupport(Support::ReadNow);
    // An item of an array of Bools is a reference of its own kind.
    out += expr.type.Is(Base::Bool) ? "__kvNow<bool>(" : "__kvNow(";
}

void EndHidden(Code& out, const Expr& expr) {
    if (expr.hidden) out += ')';
}

void Write(Code& out, const Expr& expr) {
    const Writer writer = writers[static_cast<std::size_t>(expr.kind)];
    if (!expr.given) {
        const FileLevelNames names;
        writer(out, expr);
        return;
    }
    BeginHidden(out, expr);
    writer(out, expr);
    EndHidden(out, expr);
}

void WriteValue(Code& out, const Expr& expr) {
    if (!expr.slot) return Write(out, expr);
    NeedClass(expr.type.cls);
    Put(out, "(*", expr, ")");
}

void WriteAs(Code& out, const Expr& expr, const ValueType& to) {
    RequireValue(expr);
    if (watches.giving != nullptr && expr.given) watches.giving({expr, to});
    if (const Word* written = AsWritten(expr, to))
        out += written->text;
    else if (expr.form == ArrayForm::Owned && to.IsArray())
        out += TakeOver(expr, false);
    else
        WriteValue(out, expr);
}

Code TextOf(const Expr& expr) {
    Code text;
    Write(text, expr);
    return text;
}

Code ValueText(const Expr& expr) {
    Code text;
    WriteValue(text, expr);
    return text;
}

Code TextAs(const Expr& expr, const ValueType& to) {
    Code text;
    WriteAs(text, expr, to);
    return text;
}
