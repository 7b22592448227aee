// One million lines of output.
#include <iostream>

int main() {
    std::cout.precision(15);
    double half = 0;
    for (int i = 1; i <= 1000000; ++i) {
        half = i * 0.5;
        std::cout << "line " << i << " of a million, half " << half << '\n';
    }
}
