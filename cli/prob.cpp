// pral prob: densities (probabilities where a value has one), cumulative probabilities and survival, one by one or joint.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>

#include "commands.h"
#include "errors.h"

namespace cli {

namespace {

using Evaluate = void (pral::Distribution::*)(std::span<const double>, std::span<double>) const;

struct Quantity {
    const char* name;
    Evaluate plain, logarithm;
};
const Quantity kQuantities[] = {
    {"density", &pral::Distribution::pdf, &pral::Distribution::logpdf},
    {"cumulative", &pral::Distribution::cdf, &pral::Distribution::logcdf},
    {"survival", &pral::Distribution::sf, &pral::Distribution::logsf},
};

/// Without overflow or underflow on the way.
double product(const std::vector<double>& factors) {
    double mantissa = 1;
    std::int64_t exponent = 0;
    for (const double factor : factors) {
        int of_factor = 0, of_product = 0;
        const double next = std::frexp(factor, &of_factor);
        mantissa = std::frexp(mantissa * next, &of_product);
        exponent += of_factor + of_product;
    }
    constexpr std::int64_t kBeyond = 5000;
    return std::ldexp(mantissa, static_cast<int>(std::clamp(exponent, -kBeyond, kBeyond)));
}

}  // namespace

void probability(const ProbabilityOptions& options) {
    if (options.cumulative && options.survival)
        throw UsageError("--cumulative and --survival: only one of them can be given");
    if (options.log && options.log10) throw UsageError("--log and --log10: only one of them can be given");
    const DistributionParts parts = parts_of(options, true);
    const auto distribution = make_distribution(options, parts);
    const std::vector<double> values = read_values(options.values, parts.values, "-x");

    const auto& [name, plain, logarithm] = kQuantities[options.survival ? 2 : options.cumulative ? 1 : 0];
    const bool logs = options.log || options.log10;
    std::vector<double> results(values.size());
    (distribution.*(logs ? logarithm : plain))(values, results);
    if (options.joint)
        results = {logs ? std::accumulate(results.begin(), results.end(), 0.0) : product(results)};
    if (options.log10) {
        for (double& result : results) result /= std::numbers::ln10;
    }

    const char* const scale = options.log10 ? "log10_" : options.log ? "log_" : "";
    Rows rows(options.format, {options.joint ? "count" : "x",
                               fmt::format("{}{}{}", scale, options.joint ? "joint_" : "", name)});
    for (std::size_t i = 0; i < results.size(); ++i)
        rows.add({options.joint ? static_cast<double>(values.size()) : values[i], results[i]});
    rows.end();
}

}  // namespace cli
