#include "inference/goodness.h"

#include <algorithm>
#include <mutex>

#include "distributions/combined.h"

namespace pral::inference {

namespace {

/// The cumulative and survival probabilities of sorted values.
struct Probabilities {
    std::vector<double> below, above;

    Probabilities(const Univariate& d, std::span<const double> x) : below(x.size()), above(x.size()) {
        d.evaluate(Function::cumulative, x, below);
        d.evaluate(Function::survival, x, above);
    }
};

double kolmogorov_smirnov(const Univariate& d, std::span<const double> x) {
    const double n = static_cast<double>(x.size());
    const Probabilities at(d, x);
    double largest = 0;
    for (std::size_t i = 0; i < x.size(); ++i) {
        const double before = static_cast<double>(i) / n, after = static_cast<double>(i + 1) / n;
        largest = std::max({largest, after - at.below[i], at.below[i] - before});
    }
    return largest;
}

double cramer_von_mises(const Univariate& d, std::span<const double> x) {
    const double n = static_cast<double>(x.size());
    const Probabilities at(d, x);
    double sum = 1 / (12 * n);
    for (std::size_t i = 0; i < x.size(); ++i) {
        const double distance = at.below[i] - (static_cast<double>(i) + 0.5) / n;
        sum += distance * distance;
    }
    return sum;
}

double anderson_darling(const Univariate& d, std::span<const double> x) {
    const std::size_t n = x.size();
    std::vector<double> below(n), above(n);
    d.evaluate(Function::log_cumulative, x, below);
    d.evaluate(Function::log_survival, x, above);
    double sum = 0;
    for (std::size_t i = 0; i < n; ++i) sum += static_cast<double>(2 * i + 1) * (below[i] + above[n - 1 - i]);
    return -static_cast<double>(n) - sum / static_cast<double>(n);
}

/// The same distances between two step functions (Choulakian, Lockhart and Stephens 1994), summed over the integers up to
/// those beyond which nothing is left to tell.
double of_counts(Statistic statistic, const Univariate& d, std::span<const double> x) {
    constexpr double kNegligible = 1e-9, kMost = 1e6;
    const double n = static_cast<double>(x.size());
    const double least = std::min(x.front(), d(Function::quantile, kNegligible));
    const double most = std::max(x.back(), d(Function::upper_quantile, kNegligible));
    std::vector<double> integers;
    if (most - least < kMost) {
        for (double k = least; k <= most; ++k) integers.push_back(k);
    } else {
        integers.assign(x.begin(), x.end());
        integers.erase(std::unique(integers.begin(), integers.end()), integers.end());
    }
    const Probabilities at(d, integers);
    std::vector<double> masses(integers.size());
    d.evaluate(Function::log_density, integers, masses);
    double sum = 0, largest = 0, seen = 0;
    auto next = x.begin();
    for (std::size_t i = 0; i < integers.size(); ++i) {
        for (; next != x.end() && *next <= integers[i]; ++next) ++seen;
        const double distance = seen / n - at.below[i];
        largest = std::max(largest, std::fabs(distance));
        const double weight = statistic == Statistic::cramer_von_mises ? 1 : at.below[i] * at.above[i];
        if (weight > 0) sum += distance * distance * std::exp(masses[i]) / weight;
    }
    return statistic == Statistic::kolmogorov_smirnov ? largest : n * sum;
}

/// Of counts: integers are joined from below until 5 values are expected. Of others: cells of equal probability, at most
/// as many as Mann and Wald's rule for the size gives.
double chi_square(const Univariate& d, bool integers, std::span<const double> x) {
    constexpr double kExpected = 5;
    const double n = static_cast<double>(x.size());
    std::vector<double> ends;  // upper ends of all cells but the last
    if (integers) {
        double below = 0;
        for (double k = d(Function::quantile, std::min(kExpected / n, 1.0)); ends.size() < x.size();) {
            const Tails tails = d.tails(k);
            if (n * tails.upper < kExpected) break;
            ends.push_back(k);
            below = tails.lower;
            const double next = d(Function::quantile, std::min(below + kExpected / n, 1.0));
            k = std::max(next, k + 1);
        }
    } else {
        const double cells = std::clamp(std::floor(n / kExpected), 1.0, std::ceil(2 * std::pow(n, 0.4)));
        for (double i = 1; i < cells; ++i) ends.push_back(d(Function::quantile, i / cells));
    }
    double sum = 0, below = 0;
    auto next = x.begin();
    for (std::size_t i = 0; i <= ends.size(); ++i) {
        const auto end = i < ends.size() ? std::upper_bound(next, x.end(), ends[i]) : x.end();
        const double cumulative = i < ends.size() ? d(Function::cumulative, ends[i]) : 1;
        const double expected = n * (cumulative - below), seen = static_cast<double>(end - next);
        if (expected > 0) sum += (seen - expected) * (seen - expected) / expected;
        next = end;
        below = cumulative;
    }
    return sum;
}

/// The distribution that the observations have been drawn from, if the estimate is right.
Shared seen(const Model& model, const Request& request, const Estimate& estimate,
            const Observations& observations) {
    Shared distribution = distribution_of(model, request, estimate);
    const Truncation through = observations.common_truncation();
    if (distribution == nullptr || !through.bounded()) return distribution;
    std::string objection;
    return truncated(std::move(distribution), {through.lower, false}, {through.upper, false}, objection);
}

}  // namespace

double statistic_of(Statistic statistic, const Univariate& distribution, bool integers,
                    std::span<const double> sorted) {
    if (statistic == Statistic::chi_square) return chi_square(distribution, integers, sorted);
    if (integers) return of_counts(statistic, distribution, sorted);
    if (statistic == Statistic::kolmogorov_smirnov) return kolmogorov_smirnov(distribution, sorted);
    return statistic == Statistic::cramer_von_mises ? cramer_von_mises(distribution, sorted)
                                                    : anderson_darling(distribution, sorted);
}

TestResult test(const Fit& fit, Statistic statistic, const Replication& how) {
    if (!fit.observations().plain())
        throw BadData("tests are of exact values without weights, with one truncation for all");
    if (how.source != Source::fit) throw BadData("the replicates of a test are drawn from the fit");
    const auto of = [&](const Estimate& estimate, const Observations& observations) {
        const Shared distribution = seen(fit.model(), fit.request(), estimate, observations);
        return distribution == nullptr
                   ? numerics::kNaN
                   : statistic_of(statistic, *distribution, fit.model().integers, observations.values());
    };
    const double observed = of(fit.estimate(), fit.observations());
    if (std::isnan(observed)) throw BadData("the fit has no distribution to test");
    std::size_t larger = 0, failed = 0;
    std::mutex lock;
    replicate(fit, how, [&](std::size_t, const Replicate* made) {
        const double value = made != nullptr ? of(made->estimate, *made->observations) : numerics::kNaN;
        const std::lock_guard guard(lock);
        failed += std::isnan(value);
        larger += value >= observed;
    });
    const double count = static_cast<double>(how.count - failed),
                 p = (1 + static_cast<double>(larger)) / (count + 1);
    return {observed, p, std::sqrt(p * (1 - p) / std::max(count, 1.0)), how.count, failed};
}

}  // namespace pral::inference
