// Reads tokens for their effects. Errs on the side of more.
#pragma once

#include <vector>

#include "analysis/effect_set.h"
#include "analysis/routine_names.h"

// The Fields of an Element and of those in it.
void AddFields(const ClassInfo& element, std::vector<Thing>& things, int depth = 0);

class EffectReader {
public:
    // What happens to the names of a routine that is read as a whole, nobody else can see. Without such names
    // the tokens stand where the translation is, and mean what they mean there.
    EffectReader(EffectSet& effects, const RoutineNames* routineNames) : set(effects), names(routineNames) {}

    void ReadStatement(TokenSpan tokens);
    void ReadValue(TokenSpan tokens);
    // What each "=" outside of brackets assigns, and the value behind the last one.
    void ReadAssignment(TokenSpan tokens);
    // A variable, Field or item for what it is and not for its value: what leads to it and its indices.
    void ReadPlace(TokenSpan tokens);
    // The same when it is changed.
    void ReadTarget(TokenSpan tokens);
    // A name in inline C++, which may do anything to the Global or Field that it is.
    void TouchSharedName(const Word& name);

    // Arrays, Sequences and records of the routine's own that are mentioned: who is called may change them.
    std::vector<const Word*> handedOn;

private:
    EffectSet& set;
    const RoutineNames* names;

    OwnName OwnNameOf(const Word& name) const;
    const ClassInfo* ReachedElement(const Word& name) const;

    void ReadWord(TokenSpan tokens, std::size_t at);
    std::size_t ReadName(TokenSpan tokens, std::size_t at);
    void TouchOwn(const Word& name, OwnName own, bool changes);
    void TouchFields(const ClassInfo& element, bool changes);
    void TouchShared(const Word& name, bool whole, bool changes);
    void TouchOther(const Word& name, bool whole, bool changes);
    void ReadOneLineIf(TokenSpan tokens);
    void ReadLoop(TokenSpan tokens);
    void ReadTargets(TokenSpan tokens, std::size_t count);
};

// Whether the thing is an array or a Sequence that is no routine's own.
bool HoldsItems(Thing thing);
