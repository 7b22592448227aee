// The most flips that turn a permutation of n cards until card 1 lies on top.
#include <iostream>

const int n = 10;

int main() {
    int perm[n], work[n], count[n] = {};
    int most = 0, checksum = 0, number = 0;
    for (int i = 0; i < n; ++i) perm[i] = i;
    int r = n;
    for (;;) {
        while (r != 1) {
            count[r - 1] = r;
            --r;
        }
        for (int i = 0; i < n; ++i) work[i] = perm[i];
        int flips = 0;
        int k = work[0];
        while (k != 0) {
            int low = 0, high = k;
            while (low < high) {
                int held = work[low];
                work[low] = work[high];
                work[high] = held;
                ++low;
                --high;
            }
            ++flips;
            k = work[0];
        }
        if (flips > most) most = flips;
        if (number % 2 == 0)
            checksum += flips;
        else
            checksum -= flips;
        bool done = false;
        for (;;) {
            if (r == n) {
                done = true;
                break;
            }
            int top = perm[0];
            for (int i = 0; i < r; ++i) perm[i] = perm[i + 1];
            perm[r] = top;
            --count[r];
            if (count[r] > 0) break;
            ++r;
        }
        if (done) break;
        ++number;
    }
    std::cout << checksum << '\n' << most << '\n';
}
