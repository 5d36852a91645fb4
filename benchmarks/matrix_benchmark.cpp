// Decompositions at the sizes that correlated sampling meets.
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "classic/core_api.h"

namespace {

/// A covariance matrix of n variables: exponentially falling correlation and a common part.
std::vector<double> covariance(int n) {
    std::vector<double> matrix(static_cast<std::size_t>(n) * n);
    for (int i = 0; i < n; ++i) {
        for (int j = 0; j < n; ++j) matrix[i * n + j] = 0.2 + 0.8 * std::exp(-std::abs(i - j) / 5.0);
    }
    return matrix;
}

template <bool Function(double*, const double*, int, int)>
void matrix_function(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const std::vector<double> matrix = covariance(n);
    std::vector<double> out(matrix.size());
    for (auto _ : state) {
        if (!Function(out.data(), matrix.data(), n, n)) state.SkipWithError(PralCoreError());
        benchmark::DoNotOptimize(out.data());
    }
}
BENCHMARK(matrix_function<PralEigenValues_Core>)->Name("EigenValues")->Arg(5)->Arg(50);
BENCHMARK(matrix_function<PralCholesky_Core>)->Name("Cholesky")->Arg(5)->Arg(100);

void ValidCorrmat(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    std::vector<double> matrix = covariance(n), out(matrix.size());
    matrix[1] = matrix[n] = -0.9;  // contradicts its neighbours
    for (auto _ : state) {
        if (!PralValidCorrmat_Core(out.data(), matrix.data(), n, n)) state.SkipWithError(PralCoreError());
        benchmark::DoNotOptimize(out.data());
    }
}
BENCHMARK(ValidCorrmat)->Arg(50);

}  // namespace
