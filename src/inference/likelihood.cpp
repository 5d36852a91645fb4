#include "inference/likelihood.h"

#include <algorithm>

namespace pral::inference {

namespace {

/// ln P(lower < X <= upper) of a continuous distribution from its tails there; NaN where too many of their digits cancel.
double log_between(const Tails& lower, const Tails& upper) {
    constexpr double kShare = 1e-7;
    const Difference difference = {lower, upper};
    return difference.share() > kShare ? difference.log_mass() : numerics::kNaN;
}

/// The tails at each of the values, which ascend: of the upper ones only those above the median, others by their complement.
struct TailColumns {
    std::vector<double> below, above;

    TailColumns(const Univariate& d, std::span<const double> values)
        : below(values.size()), above(values.size()) {
        d.evaluate(Function::cumulative, values, below);
        std::size_t lower = 0;
        for (; lower < values.size() && below[lower] < 0.25; ++lower) above[lower] = 1 - below[lower];
        d.evaluate(Function::survival, values.subspan(lower), std::span(above).subspan(lower));
    }
    Tails operator[](std::size_t i) const { return {below[i], above[i]}; }
};

/// The limits that the likelihood of a continuous family takes.
Limits limits_of(const Truncation& truncation) {
    if (!truncation.bounded()) return {};
    const bool below = truncation.lower > -HUGE_VAL, above = truncation.upper < HUGE_VAL;
    return {below ? truncation.lower : 0, above ? truncation.upper : 1, !below, !above, true};
}

}  // namespace

void moved(std::span<const double> values, double shift, std::vector<double>& out) {
    out.assign(values.begin(), values.end());
    if (shift == 0) return;
    for (double& x : out) x -= shift;
}

Likelihood::Likelihood(const Model& model, const Observations& observations, Criterion criterion,
                       bool shifted, double cell)
    : model_(model), observations_(observations), criterion_(criterion), shifted_(shifted), cell_(cell) {
    if (observations.plain()) sample_.emplace(observations.values());
}

double Likelihood::operator()(const fitting::Parameters& parameters) const {
    const double shift = shifted_ ? parameters[model_.parameter_count()] : 0;
    if (!std::isfinite(shift)) return -HUGE_VAL;
    const bool own_sum =
        observations_.plain() && !(model_.integers && observations_.common_truncation().bounded());
    if (criterion_ == Criterion::density && own_sum) return of_plain(parameters, shift);
    const Shared made = model_.make(std::span(parameters).first(model_.parameter_count()));
    if (made == nullptr) return -HUGE_VAL;
    const auto [lower, upper] = made->support();
    if (!model_.integers && !(lower < upper)) return -HUGE_VAL;
    double sum = criterion_ == Criterion::spacings ? of_spacings(*made, shift)
                 : criterion_ == Criterion::cells  ? of_cells(*made, shift)
                                                   : of_values(*made, shift);
    if (sum > -HUGE_VAL) sum += of_intervals(*made, shift);
    if (sum > -HUGE_VAL && criterion_ != Criterion::spacings) sum -= of_truncations(*made, shift);
    return std::isfinite(sum) ? sum : -HUGE_VAL;
}

/// The family's own sum, which needs no more than statistics of the data where there are such.
double Likelihood::of_plain(const fitting::Parameters& parameters, double shift) const {
    const Limits limits = limits_of(observations_.common_truncation());
    const double* const own = parameters.data();
    double log = 0;
    if (shift == 0) {
        log = model_.family->log_likelihood(own, *sample_, limits);
    } else {
        moved(observations_.values(), shift, buffer_);
        Limits with_shift = limits;
        if (!limits.min_is_percentile) with_shift.min -= shift;
        if (!limits.max_is_percentile) with_shift.max -= shift;
        log = model_.family->log_likelihood(own, Sample(buffer_), with_shift);
    }
    return std::isfinite(log) && std::fabs(log) < numerics::kInfinity ? log : -HUGE_VAL;
}

double Likelihood::of_values(const Univariate& d, double shift) const {
    moved(observations_.distinct(), shift, buffer_);
    d.evaluate(Function::log_density, buffer_, buffer_);
    double sum = 0;
    for (std::size_t i = 0; i < buffer_.size(); ++i) sum += observations_.distinct_weights()[i] * buffer_[i];
    return sum;
}

double Likelihood::of_cells(const Univariate& d, double shift) const {
    const std::span<const double> values = observations_.distinct();
    const Truncation truncation = observations_.common_truncation();
    std::vector<double> lower, upper;
    moved(values, shift, buffer_);
    for (const double x : buffer_) {
        lower.push_back(std::max(x - 0.5 * cell_, truncation.lower - shift));
        upper.push_back(std::min(x + 0.5 * cell_, truncation.upper - shift));
    }
    // Where the density hardly bends within a cell Simpson's rule gives its mean; elsewhere, as next to an end of the
    // support, the probability of the cell does.
    constexpr double kBend = 0.05;
    std::vector<double> at_lower(lower.size()), at_upper(upper.size());
    d.evaluate(Function::log_density, lower, at_lower);
    d.evaluate(Function::log_density, upper, at_upper);
    d.evaluate(Function::log_density, buffer_, buffer_);
    double sum = 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const double to_lower = at_lower[i] - buffer_[i], to_upper = at_upper[i] - buffer_[i];
        const double width = upper[i] - lower[i];
        const bool even = std::fabs(to_lower) < kBend && std::fabs(to_upper) < kBend && width > 0.99 * cell_;
        const double log = even ? buffer_[i] + std::log((std::exp(to_lower) + 4 + std::exp(to_upper)) / 6)
                                : d.log_within(lower[i], upper[i]) - std::log(width);
        sum += observations_.distinct_weights()[i] * log;
    }
    return sum;
}

double Likelihood::of_spacings(const Univariate& d, double shift) const {
    const Truncation truncation = observations_.common_truncation();
    moved(observations_.values(), shift, buffer_);
    std::vector<double> ends = {truncation.lower - shift};
    ends.insert(ends.end(), buffer_.begin(), buffer_.end());
    ends.push_back(truncation.upper - shift);
    const TailColumns tails(d, ends);
    d.evaluate(Function::log_density, buffer_, buffer_);
    double sum = 0;
    for (std::size_t i = 1; i < ends.size(); ++i) {
        // Of equal values the second one, and the others, have no space below them.
        if (ends[i] == ends[i - 1]) {
            sum += buffer_[i - 1];
            continue;
        }
        double log = log_between(tails[i - 1], tails[i]);
        if (std::isnan(log)) log = d.log_within(ends[i - 1], ends[i]);
        sum += log;
    }
    if (!truncation.bounded()) return sum;
    return sum - static_cast<double>(ends.size() - 1) * d.log_within(ends.front(), ends.back());
}

double Likelihood::of_intervals(const Univariate& d, double shift) const {
    double sum = 0;
    for (const auto& [left, right, weight, truncation] : observations_.intervals()) {
        const double from = std::max(left, truncation.lower), to = std::min(right, truncation.upper);
        sum += weight * d.log_within(from - shift, to - shift);
    }
    return sum;
}

double Likelihood::of_truncations(const Univariate& d, double shift) const {
    double sum = 0;
    for (const auto& [truncation, weight] : observations_.truncations())
        sum += weight * d.log_within(truncation.lower - shift, truncation.upper - shift);
    return sum;
}

}  // namespace pral::inference
