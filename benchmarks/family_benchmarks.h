// What a caller asks of a continuous family: one quantile, an array of values, one density, a log-likelihood.
// PRAL_BENCHMARK_FAMILY(Weibull, 2.0, 3.0) measures all four.
#pragma once

#include <benchmark/benchmark.h>

#include <vector>

#include "classic/core_api.h"

namespace pral::benchmarks {

template <auto value, double... parameters>
void Quantile(benchmark::State& state) {
    double u = 0.01, out;
    for (auto _ : state) {
        u = u < 0.98 ? u + 0.013 : 0.011;
        value(&out, parameters..., &u, nullptr, nullptr, nullptr, nullptr);
        benchmark::DoNotOptimize(out);
    }
}

template <auto array, double... parameters>
std::vector<double> values(int count) {
    std::vector<double> out(count);
    PralSetRandomSeed(1);
    array(out.data(), count, parameters..., nullptr, nullptr, nullptr, nullptr, nullptr);
    return out;
}

template <auto array, double... parameters>
void Array(benchmark::State& state) {
    const auto count = static_cast<int>(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(values<array, parameters...>(count).data());
    state.SetItemsProcessed(state.iterations() * count);
}

/// The joint log density of `count` values, in one call: with count 1 a density.
template <auto array, auto prob10, double... parameters>
void LogLikelihood(benchmark::State& state) {
    const auto count = static_cast<int>(state.range(0));
    std::vector<double> x = values<array, parameters...>(count);
    double out;
    for (auto _ : state) {
        prob10(&out, x.data(), count, parameters..., nullptr, nullptr, nullptr, nullptr, nullptr);
        benchmark::DoNotOptimize(out);
    }
    state.SetItemsProcessed(state.iterations() * count);
}

}  // namespace pral::benchmarks

#define PRAL_BENCHMARK_FAMILY(X, ...)                                                                  \
    BENCHMARK(pral::benchmarks::Quantile<Pral##X##_Core, __VA_ARGS__>);                                \
    BENCHMARK(pral::benchmarks::Array<Pral##X##Array_Core, __VA_ARGS__>)->Arg(1000000);                \
    BENCHMARK(pral::benchmarks::LogLikelihood<Pral##X##Array_Core, Pral##X##Prob10_Core, __VA_ARGS__>) \
        ->Arg(1)                                                                                       \
        ->Arg(100000)
