// A sum of Strings under way: a + b + c. Where the order of its parts can be seen they stand between braces,
// which C++ works out from left to right:
//     text + __kvText({KVL_First (  ), ", ", KVL_Second (  )})
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "analysis/effect_set.h"
#include "expressions/expression.h"

struct TextSum {
    // Appends an operand, a number as its text.
    void Add(Expr&& operand);
    // Makes a value of the expression that the sum belongs to.
    void Close(Expr& sum) const;

    struct Part {
        std::string text;
        TokenSpan source;
        bool literal = false;
        bool effects = false;
        EffectSet does;  // known as soon as one of the parts runs code
    };
    std::vector<Part> parts;
    std::size_t from = 0, to = 0;  // the parts between braces; none when both are 0
    // With so many parts all stand between braces: a C++ compiler needs minutes for a thousand "+".
    static constexpr std::size_t many = 200;
    // Ends the run when the Strings are more than a C++ compiler joins without using up all memory.
    static void Limit(std::size_t count);

private:
    bool watched = false;  // one of the parts runs code

    void Watch(std::size_t at);
};
