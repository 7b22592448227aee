// The spectral norm of an endless matrix, cut at n.
#include <cmath>
#include <iostream>
#include <vector>

const int n = 1000;

static double Cell(int i, int j) { return 1.0 / ((i + j) * (i + j + 1) / 2 + i + 1); }

static void Times(const double* v, double* result) {
    for (int i = 0; i < n; ++i) {
        double sum = 0;
        for (int j = 0; j < n; ++j) sum += Cell(i, j) * v[j];
        result[i] = sum;
    }
}

static void TimesTransposed(const double* v, double* result) {
    for (int i = 0; i < n; ++i) {
        double sum = 0;
        for (int j = 0; j < n; ++j) sum += Cell(j, i) * v[j];
        result[i] = sum;
    }
}

int main() {
    std::cout.precision(15);
    std::vector<double> u(n, 1), v(n), held(n);
    for (int round = 1; round <= 20; ++round) {
        Times(u.data(), held.data());
        TimesTransposed(held.data(), v.data());
        Times(v.data(), held.data());
        TimesTransposed(held.data(), u.data());
    }
    double vBv = 0, vv = 0;
    for (int i = 0; i < n; ++i) {
        vBv += u[i] * v[i];
        vv += v[i] * v[i];
    }
    std::cout << std::sqrt(vBv / vv) << '\n';
}
