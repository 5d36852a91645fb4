// The exported members of every univariate family, written once: values, arrays of values, joint
// probabilities.
#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <span>
#include <vector>

#include "boundary/call.h"
#include "distributions/sample.h"
#include "distributions/truncated.h"

namespace pral {

/// The shift moves finite values only, and what leaves the library is finite.
inline double shifted(double value, const double* shift) {
    const double limited = numerics::finite_or_limit(value + 0.0);  // no -0.0
    if (shift == nullptr || std::fabs(limited) == numerics::kInfinity) return limited;
    return numerics::finite_or_limit(limited + *shift);
}

inline bool percentile_given(const double* U) { return U != nullptr && *U != -1.0; }

/// Whether the family rounds its values to integers only after the shift.
template <Family D>
bool rounds_after_shift(const D& d) {
    if constexpr (requires { d.rounds_after_shift(); })
        return d.rounds_after_shift();
    else
        return false;
}

/// The shifted and then rounded value at percentile 0 < u < 1 of such a family.
template <Family D>
double rounded_value(double u, const Truncated<D>& kept, double shift) {
    double value = kept.quantile(u) + shift;
    if constexpr (requires { kept.quantile_unrounded(u); })
        value = std::trunc(kept.quantile_unrounded(u) + shift);
    return numerics::finite_or_limit(value);
}

/// The shifted value at percentile u, ends included; `bare` calls may use a generator of the family's own.
template <Family D>
double value_at(double u, const Truncated<D>& kept, const double* shift, bool bare) {
    const D& d = kept.base();
    const bool at_an_end = u == 1 || (u == 0 && !Truncated<D>::kOwnBounds);
    if (const auto point = d.point_mass(); point && !(at_an_end && requires { D::kEndsFirst; }))
        return shifted(*point, shift);
    if (at_an_end) return shifted(u == 0 ? kept.lower() : kept.upper(), shift);
    if (rounds_after_shift(d) && shift != nullptr) return rounded_value(u, kept, *shift);
    if constexpr (requires { d.random(u, random_stream()); }) {
        if (bare) return shifted(d.random(u, random_stream()), shift);
    }
    return shifted(kept.limited(kept.quantile(u)), shift);
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
    *out = value_at(u, kept, given.shift, given.U == nullptr && !kept.bounded());
    return true;
}

/// A bare call of PralX_Core for the models that draw from families: the same value of the same draws of the stream,
/// the percentile completed before the parameters are looked at. False, with the family's message, when it refuses them.
template <Family D>
bool draw(double* out, const D& d) {
    return value_member(out, d, Modifiers{});
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
        std::ranges::fill(out, value_at(u, kept, given.shift, false));
        return true;
    }
    random_stream().fill(out);
    if (rounds_after_shift(d) && given.shift != nullptr) {
        for (double& value : out) value = rounded_value(value, kept, *given.shift);
        return true;
    }
    kept.quantiles(out);
    for (double& value : out) value = shifted(kept.limited(value), given.shift);
    return true;
}

/// How a joint probability is told.
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

/// The values as a family on the integers counts them: within 1e-8 of an integer that integer; otherwise, for a cumulative
/// probability, the integer next towards zero. A density asks for integers: the others stay and have none.
inline std::vector<double> counted_values(std::span<const double> values, bool density) {
    std::vector<double> whole(values.begin(), values.end());
    for (double& value : whole) {
        const double integer = counted(value);
        if (!density || counts_as(value, integer)) value = integer;
    }
    return whole;
}

/// At the end of a support at 0 the sign of a zero would decide between logarithms and powers that are infinite and not.
inline bool is_minus_zero(double value) {
    return std::bit_cast<std::uint64_t>(value) == std::bit_cast<std::uint64_t>(-0.0);
}

/// Whether so many values are better counted than taken one by one: a mass costs more than counting.
template <Family D>
bool counts_repay(std::size_t size) {
    return requires { D::kIntegers; }
    &&size >= 32;
}

/// PralXProb_Core and, on the logarithmic scale, PralXProb10_Core. The shift is taken off the caller's x
/// before all checks.
template <Family D>
bool probability_member(double* out, double* x, int count, const D& d, const int* cumulative,
                        const Modifiers& given, Scale scale) {
    if (x == nullptr && count > 0) return fail(kNullValuesMessage);
    const auto size = static_cast<std::size_t>(std::max(count, 0));
    if (given.shift != nullptr) {
        for (std::size_t i = 0; i < size; ++i) x[i] -= *given.shift;
    }
    std::span<const double> values(x, size);
    const Message objection = check_probability(d);
    const Truncated<D> kept(d, objection == nullptr, given);
    if (!kept.check()) return false;
    if (objection != nullptr) return fail(objection);

    const bool density = cumulative == nullptr || *cumulative == 0 || *cumulative == -1;
    std::vector<double> whole;
    if constexpr (requires { D::kIntegers; }) {
        whole = counted_values(values, density);
        values = whole;
    }
    if (std::ranges::any_of(values, is_minus_zero)) {
        whole.assign(values.begin(), values.end());
        for (double& value : whole) value += 0.0;
        values = whole;
    }
    double smallest = HUGE_VAL, largest = -HUGE_VAL;
    bool all_numbers = true, all_countable = true;
    for (const double value : values) {
        smallest = std::min(smallest, value);
        largest = std::max(largest, value);
        all_numbers &= value == value;
        if constexpr (requires { D::kIntegers; }) all_countable &= value == std::trunc(value);
    }
    const auto density_of = [&](const auto& of) { return joint_density(of, smallest, largest, kept, scale); };
    double joint = numerics::kNaN;
    if (smallest < kept.lower() || smallest == -numerics::kInfinity || (all_numbers && !all_countable))
        joint = impossible(scale);
    else if (all_numbers)
        joint = !density                ? joint_cumulative(values, smallest, kept, scale)
                : counts_repay<D>(size) ? density_of(Sample(values))
                                        : density_of(values);
    *out = numerics::finite_or_limit(scale == Scale::plain ? joint : base10(joint));
    return true;
}

}  // namespace pral
