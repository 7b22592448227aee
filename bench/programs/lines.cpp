#include <cstdio>
#include <fstream>
#include <iostream>
#include <string>
int main() {
    const char* name = "/tmp/korvel-lines.txt";
    std::string text, whole;
    for (int i = 1; i <= 1000; ++i)
        text += "line " + std::to_string(i) + ": what a line has to say" + std::string(i % 40, 'x') + "\n";
    for (int i = 0; i < 400; ++i) whole += text;
    std::ofstream(name, std::ios::binary) << whole;
    long sum = 0;
    for (int turn = 1; turn <= 5; ++turn) {
        std::ifstream file(name, std::ios::binary);
        for (std::string line; std::getline(file, line);) sum += (long)line.size();
    }
    std::remove(name);
    std::cout << sum << "\n";
}
