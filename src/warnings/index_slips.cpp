#include "expressions/constants.h"
#include "symbols/scopes.h"
#include "warnings/slips.h"

namespace {

// A number, or a Const of the program that nothing nearer hides.
std::optional<long long> SizeOf(const std::string& text) {
    if (FindLocal(text) != nullptr) return {};
    return IntegerOf(ConstantIn(Tokens{text}));
}

}  // namespace

// list[-1], or list[SIZE], where its size is known; what is too large as a plain number is a mistake
TokenSpan IndexesBeyondSize(const Indexing& indexing) {
    const Expr* index = &indexing.firstIndex;
    for (auto size = indexing.array.sizes.begin(); size != indexing.array.sizes.end() && index != nullptr;
         ++size, index = index->next) {
        const auto item = IntegerOf(ConstantOf(*index));
        if (!item) continue;
        const auto items = *item < 0 ? item : SizeOf(*size);
        if (items && *item >= *items) return index->source;
    }
    return {};
}
