#include "distributions/sample.h"

#include <algorithm>
#include <cmath>

#include "numerics/sums.h"

namespace pral {

namespace {

/// What the function gives, computed once.
template <class Function>
double once(std::optional<double>& memory, Function function) {
    if (!memory) memory = function();
    return *memory;
}

double squared(double x) { return x * x; }

}  // namespace

template <class Term>
double Sample::mean_of(Term term) const {
    return numerics::interleaved_sum(values_, term) / count();
}

Sample::Sample(std::span<const double> values, const Pause* pause)
    : values_(values), pause_(pause), min_(HUGE_VAL), max_(-HUGE_VAL) {
    for (const double x : values) {
        min_ = std::min(min_, x);
        max_ = std::max(max_, x);
    }
}

double Sample::mean() const {
    return once(mean_, [this] {
        if (constant()) return min_;
        const double rough = mean_of([](double x) { return x; });
        return rough + mean_of([=](double x) { return x - rough; });
    });
}
double Sample::variance() const {
    return once(variance_, [this] { return mean_of([m = mean()](double x) { return squared(x - m); }); });
}
double Sample::skewness() const {
    return mean_of([m = mean(), s = deviation()](double x) { return squared((x - m) / s) * ((x - m) / s); });
}
double Sample::excess_kurtosis() const {
    return mean_of([m = mean(), s = deviation()](double x) { return squared(squared((x - m) / s)); }) - 3;
}
double Sample::root_mean_square() const {
    return once(root_mean_square_, [this] { return std::sqrt(mean_of(squared)); });
}
double Sample::mean_log() const {
    return once(mean_log_,
                [this] { return numerics::sum_of_logs(values_, [](double x) { return x; }) / count(); });
}
double Sample::variance_log() const {
    return once(variance_log_, [this] {
        return mean_of([m = geometric_mean()](double x) { return squared(std::log(x / m)); });
    });
}
double Sample::harmonic_mean() const {
    return once(harmonic_mean_, [this] { return 1 / mean_of([](double x) { return 1 / x; }); });
}
double Sample::log_below_mean() const {
    return once(log_below_mean_, [this] {
        return numerics::sum_of_logs(values_, [m = mean()](double x) { return m / x; }) / count();
    });
}
double Sample::log_below_root_mean_square() const {
    return once(log_below_root_mean_square_, [this] {
        return numerics::sum_of_logs(values_, [m = root_mean_square()](double x) { return m / x; }) / count();
    });
}
double Sample::log_below_harmonic_mean() const {
    return once(log_below_harmonic_mean_, [this] {
        return numerics::sum_of_logs(values_, [m = harmonic_mean()](double x) { return m / x; }) / count();
    });
}
double Sample::log_complement_below_mean() const {
    return once(log_complement_below_mean_, [this] {
        return numerics::sum_of_logs(values_, [m = 1 - mean()](double x) { return m / (1 - x); }) / count();
    });
}

std::span<const double> Sample::sorted() const {
    if (sorted_.empty()) {
        sorted_.assign(values_.begin(), values_.end());
        std::ranges::sort(sorted_);
    }
    return sorted_;
}

double Sample::quantile(double p) const {
    const double place = p * (count() - 1);
    const auto i = static_cast<std::size_t>(place);
    const double low = sorted()[i], high = sorted()[std::min(i + 1, size() - 1)];
    return low + (place - std::floor(place)) * (high - low);
}

std::span<const Sample::Count> Sample::counts() const {
    if (counts_) return *counts_;
    std::vector<double> integers(values_.begin(), values_.end());
    for (double& x : integers) {
        const double nearest = std::round(x);
        if (!(std::fabs(x - nearest) < 1e-8)) return counts_.emplace();
        x = nearest;
    }
    auto& counts = counts_.emplace();
    const bool dense = range() < 4 * count() + 64;  // so few integers are counted, others are sorted
    if (const double low = std::round(min_); dense) {
        std::vector<double> times(static_cast<std::size_t>(std::round(max_) - low) + 1);
        for (const double x : integers) times[static_cast<std::size_t>(x - low)] += 1;
        for (std::size_t i = 0; i < times.size(); ++i) {
            if (times[i] > 0) counts.push_back({low + static_cast<double>(i), times[i]});
        }
        return counts;
    }
    std::ranges::sort(integers);
    for (const double x : integers) {
        if (counts.empty() || counts.back().value != x) counts.push_back({x, 0});
        counts.back().times += 1;
    }
    return counts;
}

std::span<const double> Sample::exceedances() const {
    if (exceedances_) return *exceedances_;
    auto& exceeding = exceedances_.emplace();
    constexpr double kMost = 1 << 14;
    if (!whole() || min_ < 0 || max_ > kMost) return exceeding;
    exceeding.resize(static_cast<std::size_t>(std::round(max_)));
    for (const auto& [value, times] : counts()) {
        if (value > 0) exceeding[static_cast<std::size_t>(value) - 1] = times;
    }
    for (std::size_t j = exceeding.size(); j-- > 1;) exceeding[j - 1] += exceeding[j];
    return exceeding;
}

double Sample::times(double integer) const {
    const auto found = std::ranges::lower_bound(counts(), integer, {}, &Count::value);
    return found != counts().end() && found->value == integer ? found->times : 0;
}

}  // namespace pral
