// A vector of records, sorted by their own Compare.
#include <algorithm>
#include <iostream>
#include <vector>

struct Item {
    int key;
    double weight;
    int Compare(const Item& other) const {
        if (key != other.key) return key - other.key;
        if (weight < other.weight) return -1;
        if (weight > other.weight) return 1;
        return 0;
    }
};

int main() {
    std::vector<Item> items;
    int seed = 42, checksum = 0;
    for (int round = 1; round <= 5; ++round) {
        items.clear();
        for (int i = 1; i <= 200000; ++i) {
            Item e;
            seed = (seed * 75 + 74) % 65537;
            e.key = seed % 10000;
            seed = (seed * 75 + 74) % 65537;
            e.weight = seed * 0.25;
            items.push_back(e);
        }
        std::sort(items.begin(), items.end(), [](const Item& a, const Item& b) { return a.Compare(b) < 0; });
        int previous = -1;
        for (const Item& e : items) {
            if (e.key < previous) std::cout << "wrong\n";
            previous = e.key;
            checksum = (checksum * 31 + e.key) % 1000003;
        }
    }
    std::cout << checksum << '\n';
}
