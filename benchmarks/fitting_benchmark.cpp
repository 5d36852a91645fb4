// Fits of telling families to 100, 1,000 and 100,000 observations of their own; never from the memory of results.
#include <benchmark/benchmark.h>

#include <string>

#include "family_benchmarks.h"

namespace {

using pral::benchmarks::values;

template <auto array, auto fit, double... parameters>
void Fit(benchmark::State& state) {
    const auto count = static_cast<int>(state.range(0));
    const std::vector<double> x = values<array, parameters...>(count);
    double out[sizeof...(parameters)];
    static long fits = 0;
    for (auto _ : state) {
        const std::string key = std::to_string(++fits);
        fit(out, sizeof...(parameters), x.data(), count, nullptr, 1e100, 1e100, nullptr, 0, 0, key.c_str(),
            false);
        benchmark::DoNotOptimize(out);
    }
}

}  // namespace

#define PRAL_BENCHMARK_FIT(X, ...)                                       \
    BENCHMARK(Fit<Pral##X##Array_Core, Pral##X##FitP_Core, __VA_ARGS__>) \
        ->Name("Fit" #X)                                                 \
        ->Arg(100)                                                       \
        ->Arg(1000)                                                      \
        ->Arg(100000)                                                    \
        ->Unit(benchmark::kMicrosecond)

PRAL_BENCHMARK_FIT(Normal, 1.0, 2.0);
PRAL_BENCHMARK_FIT(Gamma, 2.5, 3.0);
PRAL_BENCHMARK_FIT(Beta, 2.0, 5.0);
PRAL_BENCHMARK_FIT(Weibull, 2.0, 3.0);
PRAL_BENCHMARK_FIT(LognormalE, 1.0, 0.5);
PRAL_BENCHMARK_FIT(Logistic, 1.0, 2.0);
PRAL_BENCHMARK_FIT(GEV, 1.0, 2.0, 0.2);
PRAL_BENCHMARK_FIT(Burr, 1.0, 2.0, 3.0, 1.5);
PRAL_BENCHMARK_FIT(JohnsonU, 0.5, 1.5, 1.0, 0.0);
PRAL_BENCHMARK_FIT(Poisson, 7.0);
PRAL_BENCHMARK_FIT(NegBin, 5.0, 0.3);
PRAL_BENCHMARK_FIT(ZIPoisson, 4.0, 0.7);
PRAL_BENCHMARK_FIT(BetaBinomial, 20.0, 2.0, 3.0);
