// A text built piece by piece, and the small texts that go into it.
#include <iostream>
#include <string>

static std::string Piece(int i) { return "<" + std::to_string(i % 1000) + "," + std::to_string(i % 7) + ">"; }

int main() {
    std::string longest;
    for (int round = 1; round <= 2000; ++round) {
        std::string text;
        for (int i = 1; i <= 1000; ++i) {
            text += Piece(i);
            text += " and ";
            if (i % 10 == 0) {
                text += std::to_string(i);
                text += "; ";
            }
        }
        if (text > longest) longest = text;
    }
    std::cout << longest << '\n';
}
