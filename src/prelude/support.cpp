#include "prelude/support.h"

#include <array>
#include <string_view>

#include "base/debugger.h"
#include "base/run.h"
#include "base/settings.h"
#include "prelude/fill.h"
#include "prelude/texts.h"
#include "symbols/own_names.h"
#include "symbols/value_type.h"

namespace {

constexpr std::size_t supportCount = static_cast<std::size_t>(Support::Count);

struct Row {
    const std::string_view& text;
    const std::string_view& fastText;
    Support builtOn;                           // itself when it stands alone
    const std::string_view* object = nullptr;  // behind the text, once in the program
};

// In the order of the enum; a row stands behind the one that it builds on.
const std::array<Row, supportCount> rows = {{
    {texts::arraySize, texts::arraySize, Support::ArraySize},
    {texts::resultSize, texts::resultSize, Support::ResultSize},
    {texts::arrayPassing, texts::arrayPassing, Support::ArrayPassing},
    {texts::boolArray, texts::boolArray, Support::BoolArray},
    {texts::elementSlots, texts::elementSlots, Support::ArrayPassing},
    {texts::textInOrder, texts::textInOrder, Support::TextInOrder},
    {texts::readNow, texts::readNow, Support::ReadNow},
    {texts::stringSelect, texts::stringSelect, Support::StringSelect},
    {texts::safeIndex, texts::fastSafeIndex, Support::SafeIndex},
    {texts::indexInOrder, texts::indexInOrder, Support::SafeIndex},
    {texts::sequenceWalk, texts::sequenceWalk, Support::SequenceWalk},
    {texts::inputEnd, texts::inputEnd, Support::InputEnd, &texts::inputEndObject},
    {texts::askedStep, texts::askedStep, Support::AskedStep},
    {texts::safeOperands, texts::safeOperands, Support::SafeOperands},
    {texts::fastFixedArray, texts::fastFixedArray, Support::FixedArray},
    {texts::misuse, texts::misuse, Support::Misuse},
    {texts::noMisuse, texts::noMisuse, Support::NoMisuse},
    {texts::anyObject, texts::anyObject, Support::AnyObject},
    {texts::takenObject, texts::takenObject, Support::AnyObject},
    {texts::presence, texts::presence, Support::Presence},
}};

std::array<bool, supportCount> used{};  // written by RequireSupport
std::size_t preludeUses = 0;
const PartOfRun partOfRun(used, preludeUses);

std::size_t IndexOf(Support support) { return static_cast<std::size_t>(support); }

}  // namespace

void NotePreludeUse() { ++preludeUses; }
std::size_t PreludeUses() { return preludeUses; }

void RequireSupport(Support support) {
    NotePreludeUse();
    used[IndexOf(support)] = true;
    used[IndexOf(rows[IndexOf(support)].builtOn)] = true;
    if (FileOutput* out = OpenOutput()) out->support |= std::uint32_t{1} << IndexOf(support);
}

void AddUsesOf(const FileOutput& out) {
    for (std::size_t i = 0; i < supportCount; ++i)
        if ((out.support >> i & 1U) != 0) RequireSupport(static_cast<Support>(i));
    for (bool ProgramUses::*const use : allProgramUses) programUses.*use = programUses.*use || out.uses.*use;
}

bool SupportUsed(Support support) { return used[IndexOf(support)]; }

std::string SupportText() {
    if (NamesAnyObject()) {
        if (ChecksValues()) RequireSupport(Support::Misuse);
        RequireSupport(Support::TakenObject);
    }
    std::string text;
    for (std::size_t i = 0; i < supportCount; ++i) {
        if (!used[i]) continue;
        text += FillNames(settings.fastMode ? rows[i].fastText : rows[i].text);
        if (rows[i].object != nullptr && !settings.units) text += *rows[i].object;
    }
    return text;
}

std::string SupportObjects() {
    std::string text;
    for (std::size_t i = 0; i < supportCount; ++i)
        if (used[i] && rows[i].object != nullptr) text += *rows[i].object;
    return text;
}

std::string SequenceText(std::string_view text, std::string_view items) {
    if (!SupportUsed(Support::SequenceWalk)) return Fill(text, {{"Items", items}});
    return Fill(texts::walkedItems, {{"Items", items}}) + Fill(text, {{"Items", "KVWalkedItems"}});
}

std::string FillNames(std::string_view text) {
    const std::string div = SafeDivName(), mod = SafeModName();
    const std::string_view before = settings.lineMarks ? texts::fastBeforeFailure : std::string_view();
    return Fill(text,
                {{"SafeDiv", div}, {"SafeMod", mod}, {"End", EndOfFailure()}, {"BeforeFailure", before}});
}

std::string_view EndOfFailure() { return settings.lineMarks ? "__kvFail" : "exit"; }
