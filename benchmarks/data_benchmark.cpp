// Families given by tables: single calls and arrays.
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include "classic/core_api.h"

namespace {

/// Ascending values with unequal weights, and their cumulative probabilities.
struct Table {
    std::vector<double> values, weights, ordinates;

    explicit Table(int size) {
        std::mt19937 random(1);
        std::exponential_distribution<double> step(1.0);
        double value = 0, sum = 0;
        for (int i = 0; i < size; ++i) {
            values.push_back(value += 0.001 + step(random));
            weights.push_back(0.001 + step(random));
            ordinates.push_back(sum += weights.back());
        }
        for (double& ordinate : ordinates) ordinate /= sum + 1;
    }
    int size() const { return static_cast<int>(values.size()); }
    double max() const { return values.back() + 1; }
};

void DiscreteSingle(benchmark::State& state) {
    const Table t(static_cast<int>(state.range(0)));
    double out = 0;
    for (auto _ : state) {
        PralDiscrete_Core(&out, t.values.data(), t.size(), t.weights.data(), t.size(), nullptr, nullptr,
                          nullptr, nullptr, nullptr);
        benchmark::DoNotOptimize(out);
    }
}

/// Runs `fill(out, count)` on arrays of the state's second range.
template <class Fill>
void array(benchmark::State& state, Fill fill) {
    std::vector<double> out(static_cast<std::size_t>(state.range(1)));
    for (auto _ : state) {
        fill(out.data(), static_cast<int>(out.size()));
        benchmark::DoNotOptimize(out.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(1));
}

void DiscreteArray(benchmark::State& state) {
    const Table t(static_cast<int>(state.range(0)));
    array(state, [&](double* out, int count) {
        PralDiscreteArray_Core(out, count, t.values.data(), t.size(), t.weights.data(), t.size(), nullptr,
                               nullptr, nullptr, nullptr, nullptr);
    });
}

void DUniformArray(benchmark::State& state) {
    const Table t(static_cast<int>(state.range(0)));
    array(state, [&](double* out, int count) {
        PralDUniformArray_Core(out, count, t.values.data(), t.size(), nullptr, nullptr, nullptr, nullptr,
                               nullptr);
    });
}

void CumulAArray(benchmark::State& state) {
    const Table t(static_cast<int>(state.range(0)));
    array(state, [&](double* out, int count) {
        PralCumulAArray_Core(out, count, 0, t.max(), t.values.data(), t.size(), t.ordinates.data(), t.size(),
                             nullptr, nullptr, nullptr, nullptr, nullptr);
    });
}

void RelativeArray(benchmark::State& state) {
    const Table t(static_cast<int>(state.range(0)));
    array(state, [&](double* out, int count) {
        PralRelativeArray_Core(out, count, 0, t.max(), t.values.data(), t.size(), t.weights.data(), t.size(),
                               nullptr, nullptr, nullptr, nullptr, nullptr);
    });
}

void DiscreteJointProbability(benchmark::State& state) {
    const Table t(static_cast<int>(state.range(0)));
    const int cumulative = 1;
    double out = 0;
    for (auto _ : state) {
        std::vector<double> x = t.values;
        PralDiscreteProb10_Core(&out, x.data(), t.size(), t.values.data(), t.size(), t.weights.data(),
                                t.size(), &cumulative, nullptr, nullptr, nullptr, nullptr);
        benchmark::DoNotOptimize(out);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(DiscreteSingle)->Arg(1000)->Arg(100000);
BENCHMARK(DiscreteArray)->Args({1000, 100})->Args({1000, 100000})->Args({100000, 1000000});
BENCHMARK(DUniformArray)->Args({1000, 100000});
BENCHMARK(CumulAArray)->Args({100, 100000});
BENCHMARK(RelativeArray)->Args({100, 100000})->Args({100000, 1000000});
BENCHMARK(DiscreteJointProbability)->Arg(1000);

}  // namespace
