// Time series: paths of a million steps, as log returns and as prices; populations, whose steps are inversions.
#include <benchmark/benchmark.h>

#include <vector>

#include "classic/core_api.h"

namespace {

constexpr int kSteps = 1000000;

/// A function of `out, n` and the arguments that follow.
template <class Function, class... Arguments>
void path(benchmark::State& state, int steps, Function function, Arguments... arguments) {
    std::vector<double> out(steps);
    PralSetRandomSeed(1);
    for (auto _ : state) {
        if (!function(out.data(), steps, arguments...)) state.SkipWithError(PralCoreError());
        benchmark::DoNotOptimize(out.data());
    }
    state.SetItemsProcessed(state.iterations() * steps);
}

std::vector<double> uneven_times() {
    std::vector<double> times(kSteps);
    for (int i = 0; i < kSteps; ++i) times[i] = i + 0.25 * (i % 3);
    return times;
}
const std::vector<double> kTimes = uneven_times();
const double kSeasons[] = {0.01, -0.02, 0.005, 0.005};

#define PATH(X, NAME, STEPS, ...) \
    BENCHMARK_CAPTURE(path, X, STEPS, PralTime##X##_Core, __VA_ARGS__)->Name("Time" NAME)

PATH(GBM, "GBM/returns", kSteps, 0.0, 0.01, 1.0, nullptr, 1, 0.0);
PATH(GBM, "GBM/prices", kSteps, 0.0, 0.01, 1.0, nullptr, 0, 0.0);
PATH(GBM, "GBM/uneven", kSteps, 0.0, 0.01, 1.0, kTimes.data(), 0, -1.0);
PATH(GBMJD, "GBMJD", kSteps, 0.0, 0.01, 0.1, 0.0, 0.05, 1, 1.0);
PATH(GBMJDMR, "GBMJDMR", kSteps, 0.0, 0.01, 0.5, 0.1, 0.0, 0.05, 1, 1.0);
PATH(GBMMR, "GBMMR/even", kSteps, 0.0, 0.01, 0.5, 0.0, 1.0, nullptr, 1);
PATH(GBMMR, "GBMMR/uneven", kSteps, 0.0, 0.01, 0.5, 0.0, 1.0, kTimes.data(), 1);
PATH(SeasonalGBM, "SeasonalGBM", kSteps, 0.0, 0.01, kSeasons, 4, 4, kSeasons, 4, 2, 1, 1.0);
PATH(AR1, "AR1", kSteps, 0.0, 0.01, 0.5, 0.0, 1, 1.0);
PATH(AR2, "AR2", kSteps, 0.0, 0.01, 0.5, 0.25, 0.0, 0.0, 1, 1.0);
PATH(MA1, "MA1", kSteps, 0.0, 0.01, 0.5, 1, 1.0);
PATH(MA2, "MA2", kSteps, 0.0, 0.01, 0.5, 0.25, 1, 1.0);
PATH(ARMA, "ARMA", kSteps, 0.0, 0.01, 0.5, 0.25, 0.0, 1, 1.0);
PATH(ARCH, "ARCH", kSteps, 0.0, 0.0001, 0.5, 0.0, 1, 1.0);
PATH(GARCH, "GARCH", kSteps, 0.0, 0.0001, 0.25, 0.5, 0.0, 1, 1.0);
PATH(EGARCH, "EGARCH", kSteps, 0.0, -0.5, -0.25, 0.25, 0.75, 0.1, 1, 1.0);
PATH(APARCH, "APARCH", kSteps, 0.0, 0.0001, 1.5, 0.25, 0.25, 0.5, 0.1, 1, 1.0);
PATH(Yule, "Yule", 1000, 100.0, 0.01, 1.0, 0);
PATH(Death, "Death", 1000, 1e9, 0.01, 1.0, 0);
PATH(PriceInflation, "PriceInflation", kSteps, 0.0, 0.01, 0.5);
PATH(WageInflation, "WageInflation", kSteps, 0.0, 0.01, 0.5, 0.0, 0.01, 0.5, 0.75, 0.25);
PATH(ShortTermInterestRate, "ShortTermInterestRate", kSteps, 0.03, 0.01, 0.5, 0.25, 0.03, 0.125, 0.75, 0.25,
     -0.125, 0.0625, 1.0, 0.5, 0.1, 0.05, -0.5);

}  // namespace
