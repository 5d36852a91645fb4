// Moments, ranks, rank correlations, bootstrap and powers of transition matrices.
#include <benchmark/benchmark.h>

#include <cfloat>
#include <vector>

#include "classic/core_api.h"

namespace {

std::vector<double> normal_data(int count, unsigned seed) {
    std::vector<double> values(count);
    PralSetRandomSeed(seed);
    PralNormalArray_Core(values.data(), count, 0, 1, nullptr, nullptr, nullptr, nullptr, nullptr);
    return values;
}

/// A function of two arrays of as many values as the argument tells.
template <bool Function(double*, const double*, const double*, int)>
void correlation(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const std::vector<double> x = normal_data(n, 1), y = normal_data(n, 2);
    double out = 0;
    for (auto _ : state) {
        Function(&out, x.data(), y.data(), n);
        benchmark::DoNotOptimize(out);
    }
    state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(correlation<PralKendallsTau_Core>)->Name("KendallsTau")->Arg(50)->Arg(20000);
BENCHMARK(correlation<PralSpearman_Core>)->Name("Spearman")->Arg(20000);

void Rank(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    const std::vector<double> x = normal_data(n, 1);
    std::vector<double> out(n);
    for (auto _ : state) {
        PralRank_Core(out.data(), n, x.data(), 0);
        benchmark::DoNotOptimize(out.data());
    }
    state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(Rank)->Arg(100)->Arg(500)->Arg(1000)->Arg(100000);

void Shuffle(benchmark::State& state) {
    std::vector<double> out(state.range(0));
    for (auto _ : state) {
        PralShuffle_Core(out.data(), static_cast<int>(out.size()));
        benchmark::DoNotOptimize(out.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(Shuffle)->Arg(100000);

void Kurtosis(benchmark::State& state) {
    const std::vector<double> x = normal_data(static_cast<int>(state.range(0)), 1);
    double out = 0;
    for (auto _ : state) {
        PralKurtosis_Core(&out, x.data(), x.size());
        benchmark::DoNotOptimize(out);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(Kurtosis)->Arg(100000);

void BootstrapPercentile(benchmark::State& state) {
    const std::vector<double> x = normal_data(static_cast<int>(state.range(0)), 1);
    double out = 0;
    for (auto _ : state) {
        PralNBootPercentile_Core(&out, x.data(), static_cast<int>(x.size()), 0.9);
        benchmark::DoNotOptimize(out);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(BootstrapPercentile)->Arg(1000);

/// 50 states: by the eigen-decomposition where each mostly stays, else by multiplication.
void markov(benchmark::State& state, double staying, double t) {
    const int n = 50;
    std::vector<double> P(n * n, (1 - staying) / (n - 1)), out(n * n);
    for (int i = 0; i < n; ++i) P[i * n + i] = staying;
    for (auto _ : state) {
        if (!PralMarkovMatrix_Core(out.data(), P.data(), n, n, t)) state.SkipWithError(PralCoreError());
        benchmark::DoNotOptimize(out.data());
    }
}
BENCHMARK_CAPTURE(markov, fractional, 0.9, 2.5)->Name("MarkovMatrix/fractional");
BENCHMARK_CAPTURE(markov, forever, 0.9, DBL_MAX)->Name("MarkovMatrix/forever");
BENCHMARK_CAPTURE(markov, whole, 0.001, 1000.0)->Name("MarkovMatrix/whole");

}  // namespace
