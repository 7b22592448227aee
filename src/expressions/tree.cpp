#include "expressions/tree.h"

#include <memory>
#include <string_view>
#include <vector>

#include "base/run.h"

namespace {

constexpr std::size_t chunkSize = 64;

// Nodes stay where they are when more are added.
struct Arena {
    std::vector<std::unique_ptr<Expr[]>> chunks;
    std::size_t used = 0;
};

Arena arena;
const PartOfRun partOfRun(arena);

}  // namespace

Expr& NewNode(ExprKind kind) {
    const std::size_t chunk = arena.used / chunkSize;
    if (chunk == arena.chunks.size()) arena.chunks.push_back(std::make_unique<Expr[]>(chunkSize));
    Expr& node = arena.chunks[chunk][arena.used++ % chunkSize];
    node = Expr();
    node.kind = kind;
    return node;
}

Expr& NewNode(ExprKind kind, const ValueType& type) {
    Expr& node = NewNode(kind);
    node.type = type;
    return node;
}

Expr& NewNode(ExprKind kind, const ValueType& type, Expr& first) {
    Expr& node = NewNode(kind, type);
    node.first = &first;
    node.effects = first.effects;
    return node;
}

Expr& NewNode(ExprKind kind, const ValueType& type, Expr& first, Expr& second) {
    Expr& node = NewNode(kind, type, first);
    first.next = &second;
    node.effects = first.effects || second.effects;
    return node;
}

void ForgetNodes() { arena.used = 0; }

BorrowedNodes::BorrowedNodes() : before(arena.used) {}
BorrowedNodes::~BorrowedNodes() { arena.used = before; }

const Routine* RoutineOf(const Expr& expr) {
    if (expr.kind == ExprKind::Parentheses) return RoutineOf(*expr.first);
    return expr.kind == ExprKind::Call ? expr.routine : nullptr;
}

bool AreAlike(const Expr& a, const Expr& b) {
    const bool same = a.kind == b.kind && a.word == b.word && a.variable == b.variable &&
                      a.routine == b.routine && a.operation == b.operation && a.math == b.math &&
                      a.seqFunction == b.seqFunction && std::string_view(a.text) == b.text &&
                      a.type == b.type;
    if (!same || (a.object == nullptr) != (b.object == nullptr)) return false;
    if (a.object != nullptr && !AreAlike(*a.object, *b.object)) return false;
    const Expr* one = a.first;
    const Expr* other = b.first;
    for (; one != nullptr && other != nullptr; one = one->next, other = other->next)
        if (!AreAlike(*one, *other)) return false;
    return one == other;
}

Expr& KeptTree::Copy(const Expr& expr) {
    Expr& copy = nodes.emplace_back(expr);
    copy.next = nullptr;
    if (expr.object != nullptr) copy.object = &Copy(*expr.object);
    PartList parts;
    for (const Expr& part : PartsOf(expr)) parts.Add(Copy(part));
    copy.first = parts.First();
    return copy;
}
