// The incomplete beta ratio and its inverse: the distributions' route, the classical routines, and Boost.Math's and
// libRmath's beside them where these are installed.
#include <benchmark/benchmark.h>

#include <cmath>
#include <string>

#include "numerics/beta_quantile.h"
#include "numerics/beta_ratio.h"
#include "numerics/classical/incomplete_beta.h"
#include "numerics/noncentral_beta.h"
#include "numerics/owens_t.h"
#include "numerics/toms708.h"

#if __has_include(<boost/math/special_functions/beta.hpp>)
#define PRAL_BENCHMARK_BOOST
#include <boost/math/special_functions/beta.hpp>
#endif
#if __has_include(<dlfcn.h>)
#define PRAL_BENCHMARK_RMATH
#include <dlfcn.h>
#endif

namespace {

using namespace pral::numerics;

using Function = double (*)(double a, double b, double u);

/// u runs over (0, 1); the argument of a ratio stays within three standard deviations of the mean.
double argument(double a, double b, double u) {
    const double mean = a / (a + b), width = std::sqrt(mean * (1 - mean) / (a + b + 1));
    const double x = mean + width * (6 * u - 3);
    return x > 0 && x < 1 ? x : u;
}

void run(benchmark::State& state, Function f, double a, double b) {
    int i = 0;
    for (auto _ : state) {
        i = i < 996 ? i + 1 : 0;
        benchmark::DoNotOptimize(f(a, b, (i + 0.5) / 997));
    }
}

#ifdef PRAL_BENCHMARK_RMATH
using RFunction = double (*)(double, double, double, int, int);

/// libRmath is loaded, not linked: it is no dependency of anything here.
RFunction rmath(const char* name) {
    static void* const library = dlopen("libRmath.so.1", RTLD_LAZY);
    static void* const fallback = library ? library : dlopen("libRmath.so", RTLD_LAZY);
    return fallback ? reinterpret_cast<RFunction>(dlsym(fallback, name)) : nullptr;
}
#endif

struct Contender {
    const char* name;
    Function function;
};

const Contender kContenders[] = {
    {"ratio",
     [](double a, double b, double u) {
         const double x = argument(a, b, u);
         return beta_lower(a, b, x, 1 - x);
     }},
    {"ratio/toms708",
     [](double a, double b, double u) {
         double w;
         incomplete_beta_ratio(w, argument(a, b, u), a, b);
         return w;
     }},
    {"ratio/classical",
     [](double a, double b, double u) { return incomplete_beta(a, b, argument(a, b, u)); }},
#ifdef PRAL_BENCHMARK_BOOST
    {"ratio/boost", [](double a, double b, double u) { return boost::math::ibeta(a, b, argument(a, b, u)); }},
#endif
#ifdef PRAL_BENCHMARK_RMATH
    {"ratio/rmath",
     [](double a, double b, double u) {
         static const RFunction f = rmath("pbeta");
         return f ? f(argument(a, b, u), a, b, 1, 0) : 0;
     }},
#endif
    {"inverse", [](double a, double b, double u) { return beta_lower_inverse(a, b, u).x; }},
    {"inverse/incbi", [](double a, double b, double u) { return incbi(a, b, u); }},
#ifdef PRAL_BENCHMARK_BOOST
    {"inverse/boost", [](double a, double b, double u) { return boost::math::ibeta_inv(a, b, u); }},
#endif
#ifdef PRAL_BENCHMARK_RMATH
    {"inverse/rmath",
     [](double a, double b, double u) {
         static const RFunction f = rmath("qbeta");
         return f ? f(u, a, b, 1, 0) : 0;
     }},
#endif
    {"noncentral", [](double a, double b, double u) { return NoncentralBeta(a, b, 100).lower(u, 1 - u); }},
    {"owens_t", [](double a, double b, double u) { return owens_t(std::fmod(a, 3) + u, std::fmod(b, 5)); }},
};

const int kRegistered = [] {
    const double kParameters[][2] = {{2, 5}, {0.5, 0.5}, {0.1, 3}, {30, 40}, {1000, 1000}, {1e6, 2e6}};
    for (const auto& contender : kContenders) {
        for (const auto& [a, b] : kParameters) {
            const std::string name =
                std::string("beta/") + contender.name + "/" + std::to_string(a) + "/" + std::to_string(b);
            benchmark::RegisterBenchmark(name.c_str(), [&contender, a = a, b = b](benchmark::State& state) {
                run(state, contender.function, a, b);
            });
        }
    }
    return 0;
}();

}  // namespace
