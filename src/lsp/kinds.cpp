#include "lsp/kinds.h"

#include <algorithm>
#include <iterator>

namespace lsp {

namespace {

using Kind = korvel::Symbol::Kind;

constexpr KindRow rows[] = {
    {Kind::File, "Include", 1, 17, 0},     {Kind::Type, "Type", 5, 7, 0},
    {Kind::Element, "Element", 23, 22, 1}, {Kind::Field, "Field", 8, 5, 2},
    {Kind::Method, "Method", 6, 2, 3},     {Kind::Function, "Function", 12, 3, 4},
    {Kind::Global, "Global", 13, 6, 5},    {Kind::Const, "Const", 14, 21, 5},
    {Kind::Local, "Local", 13, 6, 5},      {Kind::Parameter, "parameter", 13, 6, 6},
};

}  // namespace

const KindRow& RowOf(Kind kind) {
    return *std::find_if(std::begin(rows), std::end(rows),
                         [kind](const KindRow& row) { return row.kind == kind; });
}

}  // namespace lsp
