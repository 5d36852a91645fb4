// Gamma kin beside Boost.Math (in double precision, not promoted) and libRmath in the same run, where these are installed.
// libRmath is loaded at run time, so that nothing links with it. The argument of each benchmark is the shape.
#include <benchmark/benchmark.h>
#include <dlfcn.h>

#include <cmath>
#include <vector>

#include "numerics/classical/gamma_quantile.h"
#include "numerics/classical/incomplete_gamma.h"
#include "numerics/gamma.h"
#include "numerics/gamma_ratio.h"
#include "numerics/noncentral_chi_square.h"

#if __has_include(<boost/math/special_functions/gamma.hpp>)
#include <boost/math/special_functions/gamma.hpp>
#define PRAL_HAS_BOOST 1
#endif

namespace {

namespace own = pral::numerics;

constexpr double kShapes[] = {0.3, 2.5, 50, 1e4};
constexpr int kPercentiles = 97;

/// Every hundredth percentile but the ends, and the points there.
const std::vector<double>& percentiles() {
    static const std::vector<double> values = [] {
        std::vector<double> p;
        for (int i = 0; i < kPercentiles; ++i) p.push_back((i + 1.5) / 100);
        return p;
    }();
    return values;
}

std::vector<double> points(double shape) {
    std::vector<double> x;
    for (const double p : percentiles()) x.push_back(own::gamma_lower_inverse(shape, p));
    return x;
}

template <class Function>
void over(benchmark::State& state, const std::vector<double>& values, Function function) {
    std::size_t i = 0;
    for (auto _ : state) {
        double result = function(values[i]);
        benchmark::DoNotOptimize(result);
        if (++i == values.size()) i = 0;
    }
}

/// One benchmark per shape of a function of (shape, point) or (shape, percentile).
template <class Function>
void add(const char* name, bool inverse, Function function) {
    for (const double shape : kShapes) {
        const std::string full = std::string(name) + "/" + std::to_string(shape);
        benchmark::RegisterBenchmark(full.c_str(), [=](benchmark::State& state) {
            over(state, inverse ? percentiles() : points(shape),
                 [&](double v) { return function(shape, v); });
        });
    }
}

/// One benchmark of a function of one argument, over a range.
template <class Function>
void add_unary(const char* name, Function function) {
    benchmark::RegisterBenchmark(name, [=](benchmark::State& state) {
        std::vector<double> values;
        for (int i = 1; i < 200; ++i) values.push_back(0.01 * i * i);
        over(state, values, function);
    });
}

void add_own() {
    add_unary("lgam/own", own::lgam_quiet);
    add_unary("lgam/own_log_gamma", own::log_gamma);
    add("incomplete_gamma/own", false, own::gamma_lower);
    add("incomplete_gamma/classical", false, own::incomplete_gamma_lower);
    add("incomplete_gamma/gamma_cdf", false,
        [](double a, double x) { return own::gamma_cdf(x, a, true, false); });
    add("inverse/own", true, own::gamma_lower_inverse);
    add("inverse/gamma_quantile", true,
        [](double a, double p) { return own::gamma_quantile(p, a, 1, true, false); });
    add("noncentral_chi_square/own", false,
        [](double a, double x) { return own::noncentral_chi_square_upper(a, a, 2 * x); });
}

void add_boost() {
#ifdef PRAL_HAS_BOOST
    using namespace boost::math;
    using Plain = policies::policy<policies::promote_double<false>>;
    add_unary("lgam/boost", [](double x) { return lgamma(x, Plain()); });
    add("incomplete_gamma/boost", false, [](double a, double x) { return gamma_p(a, x, Plain()); });
    add("inverse/boost", true, [](double a, double p) { return gamma_p_inv(a, p, Plain()); });
#endif
}

void add_rmath() {
    void* library = dlopen("libRmath.so.1", RTLD_NOW);
    if (!library) library = dlopen("libRmath.so", RTLD_NOW);
    if (!library) return;
    const auto lgamma = reinterpret_cast<double (*)(double)>(dlsym(library, "lgammafn"));
    using Cumulative = double (*)(double, double, double, int, int);
    const auto cumulative = reinterpret_cast<Cumulative>(dlsym(library, "pgamma"));
    const auto quantile = reinterpret_cast<Cumulative>(dlsym(library, "qgamma"));
    if (lgamma) add_unary("lgam/rmath", lgamma);
    if (cumulative)
        add("incomplete_gamma/rmath", false, [=](double a, double x) { return cumulative(x, a, 1, 1, 0); });
    if (quantile) add("inverse/rmath", true, [=](double a, double p) { return quantile(p, a, 1, 1, 0); });
}

const bool added = (add_own(), add_boost(), add_rmath(), true);

}  // namespace
