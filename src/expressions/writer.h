// How the nodes of each kind are written; expression.h has what statements call.
#pragma once

#include "expressions/expression.h"

// What stands around an operand that g++ must not look into; nothing around any other.
void BeginHidden(Code& out, const Expr& expr);
void EndHidden(Code& out, const Expr& expr);

void WriteName(Code& out, const Expr& expr);
void WriteField(Code& out, const Expr& expr);
void WriteIndex(Code& out, const Expr& item);
void WriteCall(Code& out, const Expr& call);
void WriteCreate(Code& out, const Expr& expr);
void WriteInstances(Code& out, const Expr& expr);
void WriteNeighbour(Code& out, const Expr& expr);
void WriteInsert(Code& out, const Expr& expr);
void WriteGetKey(Code& out, const Expr& expr);
void WriteEnclosed(Code& out, const Expr& expr);
void WriteAsc(Code& out, const Expr& expr);
void WriteMath(Code& out, const Expr& expr);
void WriteSeqFunction(Code& out, const Expr& expr);
void WriteLibrary(Code& out, const Expr& expr);
void WriteSign(Code& out, const Expr& expr);
void WriteOperation(Code& out, const Expr& expr);
void WriteQuotient(Code& out, const Expr& expr);
void WriteRemainder(Code& out, const Expr& expr);
void WriteElements(Code& out, const Expr& expr);
void WriteSum(Code& out, const Expr& sum);
void WriteText(Code& out, const Expr& expr);
void WriteHoles(Code& out, const Expr& expr);
