// The exported members of every univariate family, written once: values, arrays of values, joint
// probabilities.
#pragma once

#include <algorithm>
#include <cmath>
#include <span>

#include "boundary/call.h"
#include "distributions/family.h"
#include "distributions/truncated.h"

namespace pral {

/// The shift moves finite values only, and what leaves the library is finite.
inline double shifted(double value, const double* shift) {
    const double limited = numerics::finite_or_limit(value);
    if (shift == nullptr || std::fabs(limited) == numerics::kInfinity) return limited;
    return numerics::finite_or_limit(limited + *shift);
}

inline bool percentile_given(const double* U) { return U != nullptr && *U != -1.0; }

/// The value at percentile u, ends included; `bare` calls may use a generator of the family's own.
template <Family D>
double value_at(double u, const Truncated<D>& kept, bool bare) {
    const D& d = kept.base();
    const bool at_an_end = u == 0 || u == 1;
    if (const auto point = d.point_mass(); point && !(at_an_end && requires { D::kEndsFirst; }))
        return *point;
    if (at_an_end) return u == 0 ? kept.lower() : kept.upper();
    if constexpr (requires { d.random(u, random_stream()); }) {
        if (bare) return d.random(u, random_stream());
    }
    return kept.quantile(u);
}

/// PralX_Core: checks bounds, then the percentile (drawn when not given), then the parameters.
template <Family D>
bool value_member(double* out, const D& d, const Modifiers& given) {
    const Message objection = d.check();
    const Truncated<D> kept(d, objection == nullptr, given);
    if (!kept.check()) return false;
    const double u = percentile_given(given.U) ? *given.U : random_stream().uniform();
    if (!(u >= 0 && u <= 1)) return fail(kPercentileMessage);
    if (objection != nullptr) return fail(objection);
    *out = shifted(value_at(u, kept, given.U == nullptr && !kept.bounded()), given.shift);
    return true;
}

/// Turns uniforms into values, in place.
template <Family D>
void invert(std::span<double> u, const Truncated<D>& kept) {
    if constexpr (requires { kept.base().quantiles(u); }) {
        if (!kept.bounded()) return kept.base().quantiles(u);
    }
    for (double& value : u) value = kept.quantile(value);
}

/// PralXArray_Core: one inverted draw an element, never a special generator; a given percentile fills the
/// array.
template <Family D>
bool array_member(std::span<double> out, const D& d, const Modifiers& given) {
    const Message objection = d.check();
    const Truncated<D> kept(d, objection == nullptr, given);
    if (!kept.check()) return false;
    const bool same = percentile_given(given.U);
    if (same && !(*given.U >= 0 && *given.U <= 1)) return fail(kPercentileMessage);
    if (objection != nullptr) return fail(objection);

    if (same || d.point_mass()) {
        const double u = same ? *given.U : 0.5;  // any percentile gives a point mass
        std::ranges::fill(out, shifted(value_at(u, kept, false), given.shift));
        return true;
    }
    random_stream().fill(out);
    invert(out, kept);
    for (double& value : out) value = shifted(value, given.shift);
    return true;
}

/// How a joint probability is told.
enum class Scale { plain, natural_log };

constexpr double impossible(Scale scale) { return scale == Scale::plain ? 0 : -HUGE_VAL; }
constexpr double certain(Scale scale) { return scale == Scale::plain ? 1 : 0; }
inline double on_scale(Scale scale, double p) { return scale == Scale::plain ? p : std::log(p); }

/// The joint density of `x`, whose extremes are given.
template <Family D>
double joint_density(std::span<const double> x, double smallest, double largest, const Truncated<D>& kept,
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
    const double log = log_likelihood(kept.base(), x) - static_cast<double>(x.size()) * std::log(kept.mass());
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

/// PralXProb_Core and, on the logarithmic scale, PralXProb10_Core. The shift is taken off the caller's x
/// before all checks.
template <Family D>
bool probability_member(double* out, double* x, int count, const D& d, const int* cumulative,
                        const Modifiers& given, Scale scale) {
    if (x == nullptr && count > 0) return fail(kNullValuesMessage);
    const std::span<double> values(x, static_cast<std::size_t>(std::max(count, 0)));
    if (given.shift != nullptr) {
        for (double& value : values) value -= *given.shift;
    }
    const Message objection = check_probability(d);
    const Truncated<D> kept(d, objection == nullptr, given);
    if (!kept.check()) return false;
    if (objection != nullptr) return fail(objection);

    double smallest = HUGE_VAL, largest = -HUGE_VAL;
    bool all_numbers = true;
    for (const double value : values) {
        smallest = std::min(smallest, value);
        largest = std::max(largest, value);
        all_numbers &= value == value;
    }
    const bool density = cumulative == nullptr || *cumulative == 0 || *cumulative == -1;
    double joint = numerics::kNaN;
    if (smallest < kept.lower() || smallest == -numerics::kInfinity)
        joint = impossible(scale);
    else if (all_numbers)
        joint = density ? joint_density<D>(values, smallest, largest, kept, scale)
                        : joint_cumulative<D>(values, smallest, kept, scale);
    *out = numerics::finite_or_limit(scale == Scale::plain ? joint : joint / numerics::kLn10);
    return true;
}

}  // namespace pral
