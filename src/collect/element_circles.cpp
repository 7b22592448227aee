#include "collect/element_circles.h"

#include <unordered_map>
#include <vector>

#include "base/report.h"
#include "base/settings.h"
#include "symbols/symbols.h"

namespace {

// Walks the Elements that an Element holds by value, depth first.
class CycleSearch {
public:
    void Visit(const ClassInfo& element) {
        int& state = states[&element];
        if (state == done) return;
        state = open;
        path.push_back(&element);
        for (const Token name : element.fields) Follow(element, *element.members.Find(name));
        path.pop_back();
        states[&element] = done;
    }

private:
    static constexpr int open = 1;
    static constexpr int done = 2;
    std::unordered_map<const ClassInfo*, int> states;
    std::vector<const ClassInfo*> path;

    void Follow(const ClassInfo& element, const Variable& field) {
        // The items of an array are constructed with the Element; those of a Sequence come later.
        if (field.type.base != Base::Element || field.type.sequence) return;
        if (states[field.type.cls] == open) Fail(element, field);
        Visit(*field.type.cls);
    }

    [[noreturn]] void Fail(const ClassInfo& element, const Variable& field) const {
        std::string chain;
        bool inCircle = false;
        for (const ClassInfo* cls : path) {
            inCircle = inCircle || cls == field.type.cls;
            if (inCircle) chain += cls->name + " -> ";
        }
        settings.currentFile = element.sourceFile;
        settings.currentLine = field.line;
        ReportFatal("An Element cannot contain itself: " + chain + field.type.cls->name +
                        ". Use a Type or a Sequence for the Field '" + field.name + "'",
                    Tokens{field.name});
    }
};

}  // namespace

void CheckElementCycles() {
    CycleSearch search;
    for (const ClassInfo* cls : symbols.classList) {
        if (cls->isElement) search.Visit(*cls);
    }
}
