// Product of two matrices.
#include <iostream>
#include <vector>

const int n = 400;

int main() {
    std::cout.precision(15);
    std::vector<std::vector<double>> a(n, std::vector<double>(n)), b = a, c = a;
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < n; ++j) {
            a[i][j] = (i - j) * (i + j) * 0.001;
            b[i][j] = (i + j) * 0.5;
        }
    }
    for (int round = 1; round <= 5; ++round) {
        for (int i = 0; i < n; ++i) {
            for (int j = 0; j < n; ++j) {
                double sum = 0;
                for (int k = 0; k < n; ++k) sum += a[i][k] * b[k][j];
                c[i][j] = sum;
            }
        }
    }
    std::cout << c[3][7] << " " << c[n / 2][n / 3] << '\n';
}
