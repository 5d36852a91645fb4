// Copulas in 5 dimensions and the multivariate normal in 10, per sample; and fits to 1000 observations of 5 variables.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdlib>
#include <vector>

#include "classic/core_api.h"

namespace {

constexpr int kSamples = 100000, kDimensions = 5;

/// Exponentially falling correlations.
std::vector<double> correlations(int d) {
    std::vector<double> matrix(static_cast<std::size_t>(d) * d);
    for (int i = 0; i < d; ++i) {
        for (int j = 0; j < d; ++j) matrix[i * d + j] = std::exp(-std::abs(i - j) / 3.0);
    }
    return matrix;
}

/// Runs `call`, which fills an array of samples, and counts the samples.
template <class Call>
void samples(benchmark::State& state, Call call) {
    std::vector<double> out(kDimensions * kSamples);
    for (auto _ : state) {
        if (!call(out.data())) state.SkipWithError(PralCoreError());
        benchmark::DoNotOptimize(out.data());
    }
    state.SetItemsProcessed(state.iterations() * kSamples);
}

template <bool Function(double*, int, double, int)>
void Archimedean(benchmark::State& state) {
    const double parameter = static_cast<double>(state.range(0));
    samples(state, [=](double* out) { return Function(out, kDimensions * kSamples, parameter, kSamples); });
}
BENCHMARK(Archimedean<PralCopulaMultiClayton_Core>)->Name("Clayton")->Arg(2)->Arg(30);
BENCHMARK(Archimedean<PralCopulaMultiGumbel_Core>)->Name("Gumbel")->Arg(2);
BENCHMARK(Archimedean<PralCopulaMultiFrank_Core>)->Name("Frank")->Arg(5)->Arg(20)->Arg(35);

void NormalCopula(benchmark::State& state) {
    std::vector<double> matrix = correlations(kDimensions);
    samples(state, [&](double* out) {
        return PralCopulaMultiNormal_Core(out, kDimensions * kSamples, matrix.data(), kDimensions, kSamples);
    });
}
BENCHMARK(NormalCopula);

void StudentCopula(benchmark::State& state) {
    std::vector<double> matrix = correlations(kDimensions);
    const double nu = static_cast<double>(state.range(0));
    samples(state, [&](double* out) {
        return PralCopulaMultiT_Core(out, kDimensions * kSamples, nu, matrix.data(), kDimensions, kSamples);
    });
}
BENCHMARK(StudentCopula)->Arg(4)->Arg(30);

/// One vector a call, the matrix being validated and factorised in each.
void MultiNormal(benchmark::State& state) {
    const int d = 10;
    std::vector<double> matrix = correlations(d), mu(d), out(d);
    for (auto _ : state) {
        if (!PralMultiNormal_Core(out.data(), d, mu.data(), d, matrix.data(), d * d))
            state.SkipWithError(PralCoreError());
    }
}
BENCHMARK(MultiNormal);

template <bool Function(double*, const double*, int, int, int, int)>
void Fit(benchmark::State& state) {
    const int observations = 1000;
    std::vector<double> data(kDimensions * observations), matrix = correlations(kDimensions),
                                                          out(matrix.size());
    PralCopulaMultiNormal_Core(data.data(), kDimensions * observations, matrix.data(), kDimensions,
                               observations);
    for (auto _ : state) {
        if (!Function(out.data(), data.data(), observations, kDimensions, 0, 0))
            state.SkipWithError(PralCoreError());
    }
}
bool fit_student(double* corr, const double* data, int rows, int cols, int in_rows, int uncertainty) {
    double nu = 0;
    return PralCopulaMultiTFitP_Core(&nu, corr, data, rows, cols, in_rows, uncertainty);
}
BENCHMARK(Fit<PralCopulaMultiClaytonFitP_Core>)->Name("FitClayton")->Unit(benchmark::kMicrosecond);
BENCHMARK(Fit<fit_student>)->Name("FitStudent")->Unit(benchmark::kMicrosecond);

}  // namespace
