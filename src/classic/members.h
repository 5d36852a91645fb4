// The exported members of every univariate family, written once: values, arrays of values, joint
// probabilities.
#pragma once

#include <cmath>
#include <span>
#include <type_traits>

#include "classic/call.h"
#include "classic/forms.h"
#include "classic/kept.h"
#include "classic/stream.h"
#include "distributions/draws.h"
#include "distributions/joint.h"

namespace pral {

/// The optional inputs of a call as the caller gave them; null means not given, a bound that is null 0.
struct Modifiers {
    const double* U;
    const int* bounds_mode;
    const double* min;
    const double* max;
    const double* shift;

    bool bounded() const { return bounds_mode != nullptr && *bounds_mode >= 0; }
    Limits limits() const {
        if (!bounded()) return {};
        return {min != nullptr ? *min : 0,
                max != nullptr ? *max : 0,
                (*bounds_mode & 2) != 0,
                (*bounds_mode & 1) != 0,
                true,
                classic::kAboveMin};
    }
};

/// Reports bounds that contradict each other or percentiles outside [0,1].
bool check_bounds(const Limits& limits, bool ordered, const Bound& min, const Bound& max);
template <Family D>
bool check_bounds(const Truncated<D>& kept, const Limits& limits) {
    return !limits.given || check_bounds(limits, kept.ordered(), kept.min(), kept.max());
}

/// The shift moves finite values only, and what leaves the library is finite.
inline double shifted(double value, const double* shift) {
    const double limited = numerics::finite_or_limit(value + 0.0);  // no -0.0
    if (shift == nullptr || std::fabs(limited) == numerics::kInfinity) return limited;
    return numerics::finite_or_limit(limited + *shift);
}

inline bool percentile_given(const double* U) { return U != nullptr && *U != -1.0; }

/// Whether values are rounded to integers only after the shift.
template <Family D>
bool rounds_after_shift(const D& d, const double* shift) {
    if constexpr (classic::RoundedAfterShift<D>)
        return shift != nullptr && d.approximates();
    else
        return false;
}

/// The shifted and then rounded value at percentile 0 < u < 1 of such a family.
template <class Kept>
double rounded_value(double u, const Kept& kept, double shift) {
    double value = kept.quantile(u) + shift;
    if constexpr (requires { kept.quantile_unrounded(u); })
        value = std::trunc(kept.quantile_unrounded(u) + shift);
    return numerics::finite_or_limit(value);
}

/// The shifted value at percentile u, ends included; `bare` calls may use a generator of the family's own.
template <class Kept>
double value_at(double u, const Kept& kept, const double* shift, bool bare) {
    const auto& d = kept.base();
    using D = std::remove_cvref_t<decltype(d)>;
    const bool at_an_end = u == 1 || (u == 0 && !requires { Kept::kBeginsWithZeros; });
    if (const auto point = d.point_mass(); point && !(at_an_end && classic::kEndsFirst<D>))
        return shifted(*point, shift);
    if (at_an_end) return shifted(u == 0 ? kept.lower() : kept.upper(), shift);
    if (rounds_after_shift(d, shift)) return rounded_value(u, kept, *shift);
    if constexpr (requires { kept.random(random_stream()); }) {
        if (bare) return shifted(kept.random(random_stream()), shift);
    } else if constexpr (requires { d.random(u, random_stream()); }) {
        if (bare) return shifted(d.random(u, random_stream()), shift);
    }
    return shifted(kept.limited(kept.quantile(u)), shift);
}

/// PralX_Core: checks bounds, then the percentile (drawn when not given), then the parameters.
template <Family D>
bool value_member(double* out, const D& d, const Modifiers& given) {
    const Message objection = classic::sampling_objection(d);
    const Limits limits = given.limits();
    const classic::Kept<D> kept(d, objection == nullptr, limits);
    if (!check_bounds(kept, limits)) return false;
    const double u = percentile_given(given.U) ? *given.U : random_stream().uniform();
    if (!(u >= 0 && u <= 1)) return fail(kPercentileMessage);
    if (objection != nullptr) return fail(objection);
    *out = value_at(u, kept, given.shift, given.U == nullptr && !kept.bounded());
    return true;
}

/// value_at() of a call that is not bare.
template <class Kept>
double value_apart(double u, const Kept& kept, const double* shift) {
    using D = std::remove_cvref_t<decltype(kept.base())>;
    if constexpr (std::is_same_v<Kept, Truncated<D>> && !classic::kEndsFirst<D>)
        return shifted(value_at_percentile(kept, u), shift);
    else
        return value_at(u, kept, shift, false);
}

/// PralXArray_Core: one inverted draw an element, never a special generator; a given percentile fills the
/// array.
template <Family D>
bool array_member(std::span<double> out, const D& d, const Modifiers& given) {
    const Message objection = classic::sampling_objection(d);
    const Limits limits = given.limits();
    const classic::Kept<D> kept(d, objection == nullptr, limits);
    if (!check_bounds(kept, limits)) return false;
    const bool same = percentile_given(given.U);
    if (same && !(*given.U >= 0 && *given.U <= 1)) return fail(kPercentileMessage);
    if (objection != nullptr) return fail(objection);

    if (same || d.point_mass()) {
        const double u = same ? *given.U : 0.5;  // any percentile gives a point mass
        std::ranges::fill(out, value_apart(u, kept, given.shift));
        return true;
    }
    if (rounds_after_shift(d, given.shift)) {
        random_stream().fill(out);
        for (double& value : out) value = rounded_value(value, kept, *given.shift);
        return true;
    }
    draw_each(out, kept, random_stream());
    if (given.shift != nullptr) {
        for (double& value : out) value = shifted(value, given.shift);
    }
    return true;
}

/// Takes the shift off the caller's values; false without values.
inline bool shift_values(double* x, int count, const double* shift) {
    if (x == nullptr && count > 0) return fail(kNullValuesMessage);
    if (shift == nullptr) return true;
    for (int i = 0; i < count; ++i) x[i] -= *shift;
    return true;
}

/// PralXProb_Core and, on the logarithmic scale, PralXProb10_Core. The shift is taken off the caller's x
/// before all checks.
template <Family D>
bool probability_member(double* out, double* x, int count, const D& d, const int* cumulative,
                        const Modifiers& given, Scale scale) {
    if (!shift_values(x, count, given.shift)) return false;
    const Message objection = classic::objection_to_probability(d);
    const Limits limits = given.limits();
    const Truncated<D> kept(d, objection == nullptr, limits);
    if (!check_bounds(kept, limits)) return false;
    if (objection != nullptr) return fail(objection);

    const bool density = cumulative == nullptr || *cumulative == 0 || *cumulative == -1;
    constexpr bool kWhole = IntegerFamily<D>;
    const auto size = static_cast<std::size_t>(std::max(count, 0));
    const JointValues x_taken({x, size}, kWhole, density);
    const double smallest = x_taken.smallest(), largest = x_taken.largest();
    double joint = numerics::kNaN;
    if (smallest < kept.lower() || smallest == -numerics::kInfinity ||
        (kWhole && x_taken.all_numbers() && !x_taken.all_whole()))
        joint = impossible(scale);
    else if (x_taken.all_numbers() && !density)
        joint = joint_cumulative(x_taken.values(), smallest, kept, scale);
    else if (x_taken.all_numbers() && counts_repay<D>(size))
        joint = joint_density(Sample(x_taken.values()), smallest, largest, kept, scale);
    else if (x_taken.all_numbers())
        joint = joint_density(x_taken.values(), smallest, largest, kept, scale);
    *out = numerics::finite_or_limit(scale == Scale::plain ? joint : base10(joint));
    return true;
}

}  // namespace pral
