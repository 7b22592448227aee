// How deep the statements of a file stand in one another. It takes what comes: a block that is not closed, or one
// that is closed twice, is over with the routine at the latest.
#pragma once

#include <cstddef>
#include <vector>

#include "base/token_span.h"

class Nesting {
public:
    // The levels at which a line stands whose first statement this is the beginning of.
    std::size_t LevelOf(TokenSpan firstWords) const;

    // Goes on behind a line: all of it, continued lines included.
    void Pass(const Tokens& line);

private:
    std::vector<Keyword> open_;  // the openers of blocks, innermost last

    bool IsIn(Keyword opener) const { return !open_.empty() && open_.back() == opener; }
    // How many blocks are left when the keyword has closed what it closes.
    std::size_t LeftBy(Keyword keyword) const;
    void PassStatement(TokenSpan statement);
    void PassIf(TokenSpan statement);
};
