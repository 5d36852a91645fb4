// Joint densities and cumulative probabilities of independent values of one truncated distribution.
#pragma once

#include <cmath>
#include <span>
#include <vector>

#include "distributions/sample.h"
#include "distributions/truncated.h"

namespace pral {

/// The values of a joint probability as the family takes them, and what decides before any of them is looked at.
class JointValues {
  public:
    /// -0.0 is 0.0. A family on the integers (`integers`) takes what is within 1e-8 of one for it; otherwise, for a
    /// cumulative probability, the integer next towards zero. Its density has integers only: the others stay and have none.
    JointValues(std::span<const double> given, bool integers, bool density);

    JointValues(const JointValues&) = delete;
    JointValues& operator=(const JointValues&) = delete;

    std::span<const double> values() const { return values_; }
    double smallest() const { return smallest_; }
    double largest() const { return largest_; }
    bool all_numbers() const { return all_numbers_; }
    /// All are values that a family on the integers has.
    bool all_whole() const { return all_whole_; }

  private:
    std::span<const double> values_;
    std::vector<double> taken_;  // only where a value is taken for another one
    double smallest_ = HUGE_VAL, largest_ = -HUGE_VAL;
    bool all_numbers_ = true, all_whole_ = true;
};

/// The scale of a joint probability.
enum class Scale { plain, natural_log };

constexpr double impossible(Scale scale) { return scale == Scale::plain ? 0 : -HUGE_VAL; }
constexpr double certain(Scale scale) { return scale == Scale::plain ? 1 : 0; }
/// The base-10 logarithm of what has this natural one; the infinite ones, +-DBL_MAX included, stay infinite.
inline double base10(double log) {
    return std::fabs(log) >= numerics::kInfinity ? log : log / numerics::kLn10;
}
inline double on_scale(Scale scale, double p) { return scale == Scale::plain ? p : std::log(p); }

/// The joint density of `x`, values or a Sample, whose extremes are given.
template <Family D, class Values>
double joint_density(const Values& x, double smallest, double largest, const Truncated<D>& kept,
                     Scale scale) {
    const auto all_at = [&](double point) {
        const bool all = x.empty() || (smallest == point && largest == point);
        return all ? certain(scale) : impossible(scale);
    };
    if (largest > kept.upper()) return impossible(scale);
    if (kept.degenerate()) return all_at(kept.lower());
    if (kept.zero_width()) return impossible(scale);
    if (const auto point = kept.base().point_mass()) return all_at(*point);
    if (largest == numerics::kInfinity) return impossible(scale);
    const double log = log_likelihood(kept.base(), x) - static_cast<double>(x.size()) * kept.log_mass();
    return scale == Scale::plain ? std::exp(log) : log;
}

/// The joint cumulative probability.
template <Family D>
double joint_cumulative(std::span<const double> x, double smallest, const Truncated<D>& kept, Scale scale) {
    const auto all_reach = [&](double point) {
        return smallest >= point ? certain(scale) : impossible(scale);
    };
    if (kept.degenerate()) return all_reach(kept.lower());
    if (kept.zero_width()) return on_scale(scale, kept.max_percentile());
    if (const auto point = kept.base().point_mass()) return all_reach(*point);
    double joint = certain(scale);
    for (const double value : x) {
        if (value >= kept.upper()) continue;
        if (scale == Scale::plain)
            joint *= kept.cumulative(value);
        else
            joint += kept.log_cumulative(value);
    }
    return joint;
}

/// Whether tabulating the distinct integers is cheaper than `size` masses.
template <Family D>
bool counts_repay(std::size_t size) {
    return IntegerFamily<D> && size >= 32;
}

}  // namespace pral
