// Points of a square that belong to the Mandelbrot set.
#include <iostream>

const int size = 700;
const int limit = 100;

static int Rounds(double cr, double ci) {
    double zr = 0, zi = 0;
    int n = 0;
    while (n < limit) {
        double r2 = zr * zr, i2 = zi * zi;
        if (r2 + i2 > 4) break;
        zi = 2 * zr * zi + ci;
        zr = r2 - i2 + cr;
        ++n;
    }
    return n;
}

int main() {
    int total = 0, inside = 0;
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            int n = Rounds(2.0 * x / size - 1.5, 2.0 * y / size - 1.0);
            total += n;
            if (n == limit) ++inside;
        }
    }
    std::cout << inside << " " << total << '\n';
}
