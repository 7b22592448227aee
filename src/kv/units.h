// A program that is compiled in several translation units: what has to be compiled of it, and what is linked.
//
// An object is made of one unit, or of many, a batch: there the routines are such that those of an object of one unit
// take their place when both are linked. So a unit that was edited is compiled alone, and no object is lost for it. It
// does without what is made of templates, most of its machine code, for the batches have that; where they lack something,
// which the linker finds out, it has to be compiled once more. The first unit, which has what there is once, is always
// alone and whole.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

struct Unit {
    std::string path;  // from the folder of the generated files
    std::string hash;  // of its text, and of all else that its object depends on
    std::size_t size = 0;
};

// What was made of which units, by their hashes.
struct UnitObject {
    std::string name;  // of the file
    std::string mark;  // of what was made; empty: it has to be made
    std::vector<std::string> units;
};

// What it is, by its name.
bool IsBatch(const UnitObject& object);
bool LeansOnBatches(const UnitObject& object);

struct UnitRecord {
    std::string key;  // of all that the objects depend on together
    std::vector<UnitObject> batches;
    std::vector<UnitObject> singles;  // those that were used last come first
};

// As a text; empty records come of what is none, or not a whole one.
std::string PackUnitRecord(const UnitRecord& record);
UnitRecord UnpackUnitRecord(const std::string& text);

// What is to be done: the record as it will be when all that has no mark in it is made, and of it the objects to link,
// by name.
struct UnitPlan {
    UnitRecord record;
    std::vector<std::string> linked;
};

// `overhead` is what the compiler spends on each object before it comes to the units, as the size of a unit that takes
// as long; `atOnce` objects can be made side by side. New objects may lean on batches if `maySpare`.
UnitPlan PlanUnits(const UnitRecord& record, const std::vector<Unit>& units, std::size_t overhead,
                   std::size_t atOnce, bool maySpare);

// For a plan from the record `before` whose objects could not be linked: leaves out of its record what leans on batches
// and is new; where nothing is, all that leans, and the batches. Returns false where nothing leans.
bool GiveUpSparing(const UnitRecord& before, UnitRecord& record);

// The unit that an object is made of alone, or the units of a batch, in the program's order.
std::vector<const Unit*> UnitsOf(const UnitObject& object, const std::vector<Unit>& units);
