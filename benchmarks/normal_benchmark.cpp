// The Normal family and the random stream: the hot paths that every family shares.
#include <benchmark/benchmark.h>

#include <vector>

#include "classic/core_api.h"

namespace {

std::vector<double> normal_values(int count) {
    std::vector<double> values(count);
    PralSetRandomSeed(1);
    PralNormalArray_Core(values.data(), count, 3, 2, nullptr, nullptr, nullptr, nullptr, nullptr);
    return values;
}

void NormalQuantileOneCall(benchmark::State& state) {
    double u = 0.01, out;
    for (auto _ : state) {
        u = u < 0.98 ? u + 0.013 : 0.011;
        PralNormal_Core(&out, 3, 2, &u, nullptr, nullptr, nullptr, nullptr);
        benchmark::DoNotOptimize(out);
    }
}
BENCHMARK(NormalQuantileOneCall);

void NormalBareCall(benchmark::State& state) {
    double out;
    for (auto _ : state) {
        PralNormal_Core(&out, 3, 2, nullptr, nullptr, nullptr, nullptr, nullptr);
        benchmark::DoNotOptimize(out);
    }
}
BENCHMARK(NormalBareCall);

void NormalTruncatedOneCall(benchmark::State& state) {
    const double min = 0, max = 5;
    const int mode = 0;
    double out;
    for (auto _ : state) {
        PralNormal_Core(&out, 3, 2, nullptr, &mode, &min, &max, nullptr);
        benchmark::DoNotOptimize(out);
    }
}
BENCHMARK(NormalTruncatedOneCall);

void NormalCumulativeOneCall(benchmark::State& state) {
    const int cumulative = 1;
    double x = -5, out;
    for (auto _ : state) {
        x = x < 11 ? x + 0.13 : -5;
        double value = x;
        PralNormalProb_Core(&out, &value, 1, 3, 2, &cumulative, nullptr, nullptr, nullptr, nullptr);
        benchmark::DoNotOptimize(out);
    }
}
BENCHMARK(NormalCumulativeOneCall);

void NormalArray(benchmark::State& state) {
    std::vector<double> out(state.range(0));
    for (auto _ : state) {
        PralNormalArray_Core(out.data(), static_cast<int>(out.size()), 3, 2, nullptr, nullptr, nullptr,
                             nullptr, nullptr);
        benchmark::DoNotOptimize(out.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(NormalArray)->Arg(1000000)->Unit(benchmark::kMillisecond);

void UniformArray(benchmark::State& state) {
    std::vector<double> out(state.range(0));
    for (auto _ : state) {
        PralUniformArray_Core(out.data(), static_cast<int>(out.size()), 0, 1, nullptr, nullptr, nullptr,
                              nullptr, nullptr);
        benchmark::DoNotOptimize(out.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(UniformArray)->Arg(1000000)->Unit(benchmark::kMillisecond);

void ExponArray(benchmark::State& state) {
    std::vector<double> out(state.range(0));
    for (auto _ : state) {
        PralExponArray_Core(out.data(), static_cast<int>(out.size()), 2, nullptr, nullptr, nullptr, nullptr,
                            nullptr);
        benchmark::DoNotOptimize(out.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(ExponArray)->Arg(1000000)->Unit(benchmark::kMillisecond);

void NormalLogLikelihood(benchmark::State& state) {
    std::vector<double> x = normal_values(static_cast<int>(state.range(0)));
    double out;
    for (auto _ : state) {
        PralNormalProb10_Core(&out, x.data(), static_cast<int>(x.size()), 3, 2, nullptr, nullptr, nullptr,
                              nullptr, nullptr);
        benchmark::DoNotOptimize(out);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(NormalLogLikelihood)->Arg(100000);

}  // namespace
