#include <iostream>
#include <string>
#include <vector>
int main() {
    std::string text;
    for (int i = 0; i < 35000; ++i) text += "some words, and more of them; ";
    long sum = 0;
    for (int turn = 1; turn <= 20; ++turn) {
        std::vector<std::string> parts;
        std::size_t from = 0;
        for (std::size_t at; (at = text.find(' ', from)) != std::string::npos; from = at + 1)
            parts.push_back(text.substr(from, at - from));
        parts.push_back(text.substr(from));
        std::string joined;
        joined.reserve(text.size());
        for (std::size_t i = 0; i < parts.size(); ++i) {
            if (i > 0) joined += ' ';
            joined += parts[i];
        }
        text = joined;
        std::string replaced;
        from = 0;
        for (std::size_t at; (at = text.find("more", from)) != std::string::npos; from = at + 4)
            replaced.append(text, from, at - from).append("fewer");
        replaced.append(text, from, std::string::npos);
        long count = 0;
        for (std::size_t at = text.find("them"); at != std::string::npos; at = text.find("them", at + 4)) ++count;
        sum += (long)parts.size() + (long)replaced.size() + (text.find("nowhere") == std::string::npos ? -1 : 0) + count;
    }
    std::cout << sum << "\n";
}
