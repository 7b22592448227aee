// Primes below n, several times over.
#include <cstdint>
#include <iostream>
#include <vector>

const int n = 2000000;

int main() {
    int found = 0;
    std::vector<uint8_t> composite(n);
    for (int round = 1; round <= 20; ++round) {
        for (int i = 0; i < n; ++i) composite[i] = 0;
        found = 0;
        for (int i = 2; i < n; ++i) {
            if (composite[i] != 0) continue;
            ++found;
            for (int j = i + i; j < n; j += i) composite[j] = 1;
        }
    }
    std::cout << found << '\n';
}
