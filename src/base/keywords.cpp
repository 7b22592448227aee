#include "base/keywords.h"

#include <array>
#include <string>
#include <unordered_map>

#include "base/token_text.h"

namespace {

constexpr std::size_t longest = 14;

struct Text {
    std::array<char, longest + 1> letters{};
    std::size_t size = 0;
};

constexpr Text LowerText(std::string_view name) {
    Text text;
    for (const char c : name) text.letters[text.size++] = LowerLetter(c);
    return text;
}

constexpr std::array<Text, keywordCount> texts = {{
    {},
#define ROW(name, traits, block) LowerText(#name),
#include "base/keywords.inc"
#undef ROW
}};

std::unordered_map<std::string_view, Keyword> MakeIndex() {
    std::unordered_map<std::string_view, Keyword> index;
    for (std::size_t i = 1; i < keywordCount; ++i)
        index.emplace(TextOf(static_cast<Keyword>(i)), static_cast<Keyword>(i));
    return index;
}

}  // namespace

std::string_view TextOf(Keyword keyword) {
    const Text& text = texts[IndexOf(keyword)];
    return {text.letters.data(), text.size};
}

Keyword FindKeyword(std::string_view text) {
    static const std::unordered_map<std::string_view, Keyword> index = MakeIndex();
    if (text.empty() || text.size() > longest) return Keyword::None;
    std::array<char, longest> lower{};
    for (std::size_t i = 0; i < text.size(); ++i) lower[i] = LowerLetter(text[i]);
    const auto found = index.find(std::string_view(lower.data(), text.size()));
    return found == index.end() ? Keyword::None : found->second;
}
