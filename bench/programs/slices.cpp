#include <iostream>
#include <string>
int main() {
    std::string text;
    for (int i = 1; i <= 20000; ++i) text += "The quick brown fox ";
    long sum = 0;
    for (int turn = 1; turn <= 300; ++turn)
        for (std::size_t i = 0; i < text.size(); ++i)
            if ((unsigned char)text[i] == 111) sum += (long)i;
    for (std::size_t i = 0; i + 30 <= text.size(); ++i) {
        if (text.substr(i, 1) == "q") sum += 1;
        const std::string part = text.substr(i, 25);
        if (part.compare(0, 3, "fox") == 0)
            sum += (long)(part.size() + part.substr(0, 3).size() + part.substr(part.size() - 20).size());
    }
    std::cout << sum << "\n";
}
