// Distributions as objects: making them, single values, and arrays beside those of the classic calls.
#include <benchmark/benchmark.h>
#include <pral_core/core_api.h>
#include <pral_core/objects.h>

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr const char* kTexts[] = {"Uniform(0, 1)",
                                  "Normal(0, 1)",
                                  "Expon(2)",
                                  "Lognormal(2, 3)",
                                  "Weibull(1.5, 3)",
                                  "Logistic(0, 1)",
                                  "ExtValueMax(0, 1)",
                                  "Pareto(3, 1)",
                                  "Cauchy(0, 1)",
                                  "Laplace(0, 1)",
                                  "Gamma(2.5, 3)",
                                  "Beta(2, 3)",
                                  "Student(5)",
                                  "Poisson(4)",
                                  "Binomial(20, 0.3)",
                                  "NegBin(5, 0.3)",
                                  "Hypergeo(20, 30, 100)",
                                  "NCChiSq(3, 5)",
                                  "ZIPoisson(4, 0.6)",
                                  "ZTPoisson(4)",
                                  "Normal(0, 1) within [1, 2]",
                                  "Weibull(1.5, 3) within percentiles [0.05, 0.95]",
                                  "Gamma(2.5, 3) within percentiles [0.05, 0.95]",
                                  "Poisson(4) within [2, 9]"};

pral_distribution* parsed(const std::string& text) {
    pral_distribution* distribution = nullptr;
    pral_distribution_parse(text.c_str(), &distribution, nullptr);
    return distribution;
}

/// Making an object of a family with the parameters 2, 3, ... where these are in range.
void MakeObject(benchmark::State& state, const char* family, const std::vector<double>& parameters) {
    for (auto _ : state) {
        pral_distribution* d = nullptr;
        pral_distribution_make(family, parameters.data(), nullptr, parameters.size(), &d, nullptr);
        benchmark::DoNotOptimize(d);
        pral_distribution_free(d);
    }
}

using Function = pral_status (*)(const pral_distribution*, const double*, double*, size_t, pral_error*);

/// `n` values a call, from percentiles or from the values there; the time of one is the inverse of items_per_second.
void EvaluateObject(benchmark::State& state, const char* text, Function function, bool inverse) {
    pral_distribution* d = parsed(text);
    const auto n = static_cast<std::size_t>(state.range(0));
    std::vector<double> in(n), out(n);
    for (std::size_t i = 0; i < n; ++i)
        in[i] = (static_cast<double>((i * 7919) % n) + 0.5) / static_cast<double>(n);
    if (!inverse) pral_quantile(d, in.data(), in.data(), n, nullptr);
    for (auto _ : state) {
        function(d, in.data(), out.data(), n, nullptr);
        benchmark::DoNotOptimize(out.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    pral_distribution_free(d);
}

/// As many random values by an object and its stream as the classic array calls give.
void SampleObject(benchmark::State& state, const char* text) {
    pral_distribution* d = parsed(text);
    const std::uint64_t word = 1;
    pral_stream* stream = nullptr;
    pral_stream_make(&word, 1, &stream, nullptr);
    std::vector<double> out(10000);
    for (auto _ : state) pral_sample(d, stream, out.data(), out.size(), nullptr);
    state.SetItemsProcessed(state.iterations() * 10000);
    pral_stream_free(stream);
    pral_distribution_free(d);
}
template <class Call>
void SampleClassic(benchmark::State& state, Call call) {
    std::vector<double> out(10000);
    for (auto _ : state) call(out.data(), 10000);
    state.SetItemsProcessed(state.iterations() * 10000);
}

const bool kRegistered = [] {
    for (size_t i = 0; i < pral_family_count(); ++i) {
        pral_family family = {};
        family.size = sizeof family;
        pral_family_info(pral_family_name(i), &family, nullptr);
        if (family.kind == PRAL_TABLE) continue;
        std::vector<double> parameters;
        for (const double first : {2.0, 0.25, 0.5}) {
            parameters.clear();
            for (std::size_t j = 0; j < family.parameter_count; ++j)
                parameters.push_back(first + static_cast<double>(j) * first);
            pral_distribution* d = nullptr;
            if (pral_distribution_make(family.name, parameters.data(), nullptr, parameters.size(), &d,
                                       nullptr) == PRAL_OK) {
                pral_distribution_free(d);
                benchmark::RegisterBenchmark((std::string("MakeObject/") + family.name).c_str(), MakeObject,
                                             family.name, parameters);
                break;
            }
        }
    }
    const std::pair<const char*, std::pair<Function, bool>> functions[] = {
        {"pdf", {pral_pdf, false}},          {"logpdf", {pral_logpdf, false}},
        {"cdf", {pral_cdf, false}},          {"sf", {pral_sf, false}},
        {"logcdf", {pral_logcdf, false}},    {"logsf", {pral_logsf, false}},
        {"quantile", {pral_quantile, true}}, {"upper_quantile", {pral_upper_quantile, true}}};
    for (const char* text : kTexts) {
        for (const auto& [name, function] : functions)
            benchmark::RegisterBenchmark((std::string("EvaluateObject/") + text + "/" + name).c_str(),
                                         EvaluateObject, text, function.first, function.second)
                ->Arg(1)
                ->Arg(10000);
        benchmark::RegisterBenchmark((std::string("SampleObject/") + text).c_str(), SampleObject, text);
    }
#define PRAL_CLASSIC(X, ...)                                                                             \
    benchmark::RegisterBenchmark("SampleClassic/" #X "(" #__VA_ARGS__ ")", [](benchmark::State& state) { \
        SampleClassic(state, [](double* out, int n) {                                                    \
            Pral##X##Array_Core(out, n, __VA_ARGS__, nullptr, nullptr, nullptr, nullptr, nullptr);       \
        });                                                                                              \
    })
    PRAL_CLASSIC(Uniform, 0, 1);
    PRAL_CLASSIC(Normal, 0, 1);
    PRAL_CLASSIC(Expon, 2);
    PRAL_CLASSIC(Lognormal, 2, 3);
    PRAL_CLASSIC(Weibull, 1.5, 3);
    PRAL_CLASSIC(Logistic, 0, 1);
    PRAL_CLASSIC(ExtValueMax, 0, 1);
    PRAL_CLASSIC(Pareto, 3, 1);
    PRAL_CLASSIC(Cauchy, 0, 1);
    PRAL_CLASSIC(Laplace, 0, 1);
    PRAL_CLASSIC(Gamma, 2.5, 3);
    PRAL_CLASSIC(Beta, 2, 3);
    PRAL_CLASSIC(Student, 5);
    PRAL_CLASSIC(Poisson, 4);
    PRAL_CLASSIC(Binomial, 20, 0.3);
    PRAL_CLASSIC(NCChiSq, 3, 5);
    PRAL_CLASSIC(ZIPoisson, 4, 0.6);
    PRAL_CLASSIC(ZTPoisson, 4);
#undef PRAL_CLASSIC
    return true;
}();

}  // namespace
