// Sizes of the arrays that routines return, against those of the declarations that take them.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/token_span.h"
#include "expressions/expression.h"
#include "symbols/symbols.h"

// The value of a size as written; none when only the running program knows it.
std::optional<long long> KnownSize(const std::string& written);

// Notes the sizes of an array that a Return of the routine gives; `first` when it is the first one.
void RecordResultSizes(Routine& routine, const Expr& value, bool first);

// Ends the run when a value taken from a call does not fit the declared array: its dimensions, or sizes that
// are known on both sides. `declared` are the size texts as written. A routine that comes later or that is
// the `open` one is asked at the end.
void CheckArrayResult(const std::string& name, const ValueType& type,
                      const std::vector<std::string>& declared, TokenSpan call, const Expr& value,
                      const Routine* open);

// The checks that were put off; once, at the end.
void CheckAwaitedResults();

// Name of what is called last, as messages show it.
std::string CalledName(TokenSpan call);

// Whether the sizes of the result are known and are the declared ones.
bool HasSizes(const Expr& value, const std::vector<std::string>& declared, const Routine* open);
