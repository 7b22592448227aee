#include "kv/units.h"

#include <algorithm>
#include <sstream>
#include <unordered_set>

#include "kv/hash.h"

namespace {

const char version[] = "kv-units 1";
const char endMark[] = "end";
const char batchMark[] = "batch-";
const char wholeMark[] = "unit-";
const char leaningMark[] = "lean-";

// A batch is worth the overhead of its own from some times that on.
const std::size_t worthwhile = 4;

// An edit that is taken back finds its object again.
const std::size_t singlesKept = 64;

using Hashes = std::unordered_set<std::string>;

Hashes HashesOf(const std::vector<UnitObject>& objects) {
    Hashes hashes;
    for (const UnitObject& object : objects) hashes.insert(object.units.begin(), object.units.end());
    return hashes;
}

bool StartsWith(const std::string& text, const std::string& start) {
    return text.compare(0, start.size(), start) == 0;
}

// Whether there were some.
template <typename Condition>
bool Erase(std::vector<UnitObject>& objects, Condition condition) {
    const auto end = std::remove_if(objects.begin(), objects.end(), condition);
    const bool any = end != objects.end();
    objects.erase(end, objects.end());
    return any;
}

// Of the units but the first.
std::size_t SizeOf(const std::vector<Unit>& units) {
    std::size_t size = 0;
    for (std::size_t at = 1; at < units.size(); ++at) size += units[at].size;
    return size;
}

// Makes batches of like size.
std::vector<UnitObject> NewBatches(const std::vector<Unit>& units, std::size_t overhead, std::size_t atOnce) {
    const std::size_t whole = SizeOf(units);
    const std::size_t count =
        std::max<std::size_t>(std::min(whole / (worthwhile * std::max<std::size_t>(overhead, 1)), atOnce), 1);
    std::vector<UnitObject> batches;
    std::size_t before = 0;
    for (std::size_t at = 1; at < units.size(); ++at) {
        if (batches.empty() || (batches.size() < count && before >= whole * batches.size() / count))
            batches.emplace_back();
        batches.back().units.push_back(units[at].hash);
        before += units[at].size;
    }
    for (UnitObject& batch : batches) {
        std::string hashes;
        for (const std::string& hash : batch.units) hashes += hash;
        batch.name = std::string(batchMark) + HashOf(hashes);
    }
    return batches;
}

class Planner {
public:
    Planner(const UnitRecord& before, const std::vector<Unit>& all, std::size_t cost, std::size_t atOnce,
            bool sparing)
        : units(all), overhead(cost), maySpare(sparing) {
        plan.record = before;
        inBatches = HashesOf(before.batches);
        if (plan.record.batches.empty() || IsCheaperAnew(atOnce)) {
            plan.record.batches = NewBatches(units, overhead, atOnce);
            inBatches = HashesOf(plan.record.batches);
            // Batches of the same units as before are the same.
            for (UnitObject& batch : plan.record.batches)
                for (const UnitObject& old : before.batches)
                    if (old.name == batch.name) batch.mark = old.mark;
        }
    }

    UnitPlan Plan() {
        std::vector<UnitObject> used;
        for (const Unit& unit : units)
            if (!IsInBatch(unit)) used.push_back(Single(unit));
        auto& batches = plan.record.batches;
        Erase(batches, [this](const UnitObject& batch) { return UnitsOf(batch, units).empty(); });
        for (const UnitObject& object : used) plan.linked.push_back(object.name);
        for (const UnitObject& batch : plan.record.batches) plan.linked.push_back(batch.name);
        KeepSingles(std::move(used));
        return std::move(plan);
    }

private:
    const std::vector<Unit>& units;
    const std::size_t overhead;
    const bool maySpare;
    UnitPlan plan;
    Hashes inBatches;

    bool IsInBatch(const Unit& unit) const { return &unit != &units[0] && inBatches.count(unit.hash) > 0; }

    UnitObject Single(const Unit& unit) const {
        for (const UnitObject& object : plan.record.singles)
            if (object.units[0] == unit.hash) return object;
        const bool leans = maySpare && &unit != &units[0];
        return {std::string(leans ? leaningMark : wholeMark) + unit.hash, "", {unit.hash}};
    }

    // Whether it takes less to make new batches than to make all that is missing one by one.
    bool IsCheaperAnew(std::size_t atOnce) const {
        const std::size_t batches = NewBatches(units, overhead, atOnce).size();
        std::size_t missing = 0, alone = 0;
        for (const Unit& unit : units) {
            if (&unit == &units[0] || IsInBatch(unit)) continue;
            ++alone;
            if (Single(unit).mark.empty()) missing += overhead + unit.size;
        }
        return alone > singlesKept / 2 || missing > SizeOf(units) + batches * overhead;
    }

    void KeepSingles(std::vector<UnitObject> used) {
        Hashes names;
        for (const UnitObject& object : used) names.insert(object.name);
        for (UnitObject& object : plan.record.singles)
            if (used.size() < singlesKept && names.insert(object.name).second)
                used.push_back(std::move(object));
        plan.record.singles = std::move(used);
    }
};

}  // namespace

bool IsBatch(const UnitObject& object) { return StartsWith(object.name, batchMark); }

bool LeansOnBatches(const UnitObject& object) { return StartsWith(object.name, leaningMark); }

std::string PackUnitRecord(const UnitRecord& record) {
    std::string text = std::string(version) + "\n" + record.key + "\n";
    for (const auto* objects : {&record.batches, &record.singles}) {
        for (const UnitObject& object : *objects) {
            text += object.name + "\n" + object.mark + "\n";
            for (const std::string& hash : object.units) text += hash + "\n";
            text += "\n";
        }
        text += "\n";
    }
    return text + endMark + "\n";
}

UnitRecord UnpackUnitRecord(const std::string& text) {
    std::istringstream lines(text);
    std::string line;
    UnitRecord record;
    if (!std::getline(lines, line) || line != version || !std::getline(lines, record.key)) return {};
    for (auto* objects : {&record.batches, &record.singles}) {
        while (std::getline(lines, line) && !line.empty()) {
            UnitObject object;
            object.name = line;
            std::getline(lines, object.mark);
            while (std::getline(lines, line) && !line.empty()) object.units.push_back(line);
            if (object.units.empty()) return {};
            objects->push_back(std::move(object));
        }
    }
    return std::getline(lines, line) && line == endMark ? record : UnitRecord();
}

UnitPlan PlanUnits(const UnitRecord& record, const std::vector<Unit>& units, std::size_t overhead,
                   std::size_t atOnce, bool maySpare) {
    return Planner(record, units, overhead, atOnce, maySpare).Plan();
}

bool GiveUpSparing(const UnitRecord& before, UnitRecord& record) {
    Hashes known;
    for (const UnitObject& object : before.singles) known.insert(object.name);
    if (Erase(record.singles, [&](const UnitObject& object) {
            return LeansOnBatches(object) && known.count(object.name) == 0;
        }))
        return true;
    record.batches.clear();
    return Erase(record.singles, LeansOnBatches);
}

std::vector<const Unit*> UnitsOf(const UnitObject& object, const std::vector<Unit>& units) {
    const Hashes hashes = HashesOf({object});
    std::vector<const Unit*> members;
    for (const Unit& unit : units)
        if (hashes.count(unit.hash) > 0) members.push_back(&unit);
    return members;
}
