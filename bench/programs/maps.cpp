#include <iostream>
#include <string>
#include <unordered_map>
int main() {
    std::unordered_map<std::string, int> counts;
    int hits = 0, sum = 0;
    for (int i = 1; i <= 1000000; ++i) counts["key" + std::to_string((i * 1009) % 1000003)] += 1;
    for (int i = 1; i <= 2000000; ++i)
        if (counts.find("key" + std::to_string(i)) != counts.end()) ++hits;
    for (int i = 1; i <= 1000000; ++i) {
        const auto found = counts.find("key" + std::to_string(i));
        sum += found == counts.end() ? 5 : found->second;
    }
    std::cout << counts.size() << " " << hits << " " << sum << "\n";
    std::unordered_map<int, int> ints;
    for (int i = 1; i <= 1000000; ++i) ints[(i * 1009) % 1000003 * 7] += 1;
    sum = 0;
    for (int i = 1; i <= 3000000; ++i) {
        const auto found = ints.find(i);
        sum += found == ints.end() ? 1 : found->second;
    }
    std::cout << ints.size() << " " << sum << "\n";
}
