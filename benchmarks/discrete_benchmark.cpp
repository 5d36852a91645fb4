// Discrete families: one inversion, and arrays of them.
#include <benchmark/benchmark.h>

#include <vector>

#include "classic/core_api.h"

namespace {

template <auto value, double... parameters>
void OneCall(benchmark::State& state) {
    double u = 0.01, out;
    for (auto _ : state) {
        u = u < 0.98 ? u + 0.013 : 0.011;
        value(&out, parameters..., &u, nullptr, nullptr, nullptr, nullptr);
        benchmark::DoNotOptimize(out);
    }
}

template <auto array, double... parameters>
void Array(benchmark::State& state) {
    std::vector<double> out(state.range(0));
    for (auto _ : state) {
        array(out.data(), static_cast<int>(out.size()), parameters..., nullptr, nullptr, nullptr, nullptr,
              nullptr);
        benchmark::DoNotOptimize(out.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <auto array, double... parameters>
void ArrayAboveMedian(benchmark::State& state) {
    std::vector<double> out(state.range(0));
    const int by_percentiles = 3;
    const double min = 0.9, max = 0.999;
    for (auto _ : state) {
        array(out.data(), static_cast<int>(out.size()), parameters..., nullptr, &by_percentiles, &min, &max,
              nullptr);
        benchmark::DoNotOptimize(out.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(OneCall<PralPoisson_Core, 3.5>);
BENCHMARK(OneCall<PralPoisson_Core, 4999.0>);
BENCHMARK(OneCall<PralBinomial_Core, 100.0, 0.3>);
BENCHMARK(OneCall<PralBinomial_Core, 400000.0, 0.25>);
BENCHMARK(Array<PralPoissonArray_Core, 3.5>)->Arg(100000);
BENCHMARK(Array<PralPoissonArray_Core, 4999.0>)->Arg(100000);
BENCHMARK(Array<PralBinomialArray_Core, 100.0, 0.3>)->Arg(100000);
BENCHMARK(Array<PralBinomialArray_Core, 400000.0, 0.25>)->Arg(100000);
BENCHMARK(OneCall<PralNegBin_Core, 3.0, 0.25>);
BENCHMARK(OneCall<PralNegBin_Core, 20.0, 0.02>);
BENCHMARK(OneCall<PralPolya_Core, 2.5, 3.0>);
BENCHMARK(OneCall<PralBetaBinomial_Core, 100.0, 2.0, 3.0>);
BENCHMARK(OneCall<PralBetaBinomial_Core, 1e15, 2.0, 3.0>);
BENCHMARK(OneCall<PralBetaNegBin_Core, 3.0, 4.0, 2.0>);
BENCHMARK(OneCall<PralBetaNegBin_Core, 3.0, 0.01, 5.0>);
BENCHMARK(OneCall<PralBetaNegBin_Core, 1e6, 3.0, 5.0>);
BENCHMARK(OneCall<PralBetaGeometric_Core, 3.0, 2.0>);
BENCHMARK(OneCall<PralBetaGeometric_Core, 1e-10, 1.0>);
BENCHMARK(OneCall<PralLogarithmic_Core, 0.99>);
BENCHMARK(OneCall<PralLogarithmic_Core, 1 - 1e-16>);
BENCHMARK(OneCall<PralZIPoisson_Core, 3.5, 0.3>);
BENCHMARK(OneCall<PralZTPoisson_Core, 3.5>);
BENCHMARK(OneCall<PralZIHypergeo_Core, 20.0, 30.0, 100.0, 0.9>);
BENCHMARK(OneCall<PralZTBetaBinomial_Core, 1e12, 1e-9, 41.0>);
BENCHMARK(OneCall<PralBetaBinomial_Core, 1e12, 1e-9, 41.0>);
BENCHMARK(OneCall<PralBetaNegBin_Core, 1e5, 1.0, 1e18>);
BENCHMARK(OneCall<PralBetaBinomial_Core, 1.7e308, 1.7e308, 0.9>);
BENCHMARK(OneCall<PralBetaBinomial_Core, 1e18, 2.5, 1e-9>);
BENCHMARK(OneCall<PralZTBetaBinomial_Core, 1e16, 1e-100, 1e6>);
BENCHMARK(OneCall<PralBetaNegBin_Core, 1e100, 1.7e308, 1e300>);
BENCHMARK(OneCall<PralZTBetaNegBin_Core, 1e16, 0.3, 1e-300>);
BENCHMARK(OneCall<PralHypergeo_Core, 20.0, 30.0, 100.0>);
BENCHMARK(OneCall<PralHypergeo_Core, 5e5, 5e5, 1e6>);
BENCHMARK(OneCall<PralInvHypergeo_Core, 1000.0, 5e5, 1e6>);
BENCHMARK(OneCall<PralHypergeoD_Core, 5.0, 1000.0, 1e9>);
BENCHMARK(OneCall<PralHypergeoM_Core, 1.0, 30.0, 40.0, 1e9>);
BENCHMARK(OneCall<PralHypergeoM_Core, 1.0, 1e6, 1e6, 1e15>);
BENCHMARK(OneCall<PralHypergeoM_Core, 9.0, 1e12, 9.0, 1e15>);
BENCHMARK(OneCall<PralHypergeoM_Core, 1.0, 2.0, 300.0, 1.7e308>);
BENCHMARK(OneCall<PralSkellam_Core, 3.5, 2.0>);
BENCHMARK(OneCall<PralSkellam_Core, 1e12, 1e12>);
BENCHMARK(OneCall<PralBurntFingerPoisson_Core, 3.0, 2.0>);
BENCHMARK(OneCall<PralBurntFingerPoisson_Core, 1e6, 1e5>);
BENCHMARK(OneCall<PralPoissonUniform_Core, 2.0, 9.0>);
BENCHMARK(OneCall<PralPoissonUniform_Core, 1e5, 1e9>);
BENCHMARK(OneCall<PralDelaporte_Core, 2.0, 3.0, 4.0>);
BENCHMARK(OneCall<PralDelaporte_Core, 1e6, 1.0, 1e6>);
BENCHMARK(OneCall<PralDelaporte_Core, 0.5, 1e6, 1e9>);
BENCHMARK(OneCall<PralDelaporte_Core, 1e5, 1e5, 1e12>);
BENCHMARK(OneCall<PralDelaporte_Core, 300.0, 300.0, 3000.0>);
BENCHMARK(Array<PralHypergeoArray_Core, 20.0, 30.0, 100.0>)->Arg(100000);
BENCHMARK(Array<PralSkellamArray_Core, 3.5, 2.0>)->Arg(100000);
BENCHMARK(Array<PralSkellamArray_Core, 1e6, 1e6>)->Arg(100000);
BENCHMARK(Array<PralDelaporteArray_Core, 2.0, 3.0, 4.0>)->Arg(100000);
BENCHMARK(Array<PralDelaporteArray_Core, 1e6, 1.0, 1e6>)->Arg(100000);
BENCHMARK(Array<PralPoissonUniformArray_Core, 2.0, 9.0>)->Arg(100000);
BENCHMARK(Array<PralNegBinArray_Core, 3.0, 0.25>)->Arg(100000);
BENCHMARK(Array<PralBetaBinomialArray_Core, 100.0, 2.0, 3.0>)->Arg(100000);
BENCHMARK(Array<PralBetaNegBinArray_Core, 3.0, 4.0, 2.0>)->Arg(100000);
BENCHMARK(Array<PralBetaNegBinArray_Core, 3.0, 0.5, 5.0>)->Arg(100000);
BENCHMARK(Array<PralLogarithmicArray_Core, 0.99>)->Arg(100000);
BENCHMARK(Array<PralZIPoissonArray_Core, 3.5, 0.3>)->Arg(100000);
BENCHMARK(Array<PralZTPoissonArray_Core, 3.5>)->Arg(100000);
BENCHMARK(ArrayAboveMedian<PralPoissonArray_Core, 350.0>)->Arg(100000);
BENCHMARK(ArrayAboveMedian<PralBetaBinomialArray_Core, 100.0, 2.0, 3.0>)->Arg(100000);

}  // namespace
