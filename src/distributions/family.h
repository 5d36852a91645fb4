// What a univariate distribution family is, and the questions that any family answers the same way.
#pragma once

#include <algorithm>
#include <cmath>
#include <concepts>
#include <optional>
#include <span>

#include "base/message.h"
#include "base/random_stream.h"
#include "distributions/moments.h"
#include "distributions/optional_members.h"
#include "numerics/constants.h"
#include "numerics/elementary.h"
#include "numerics/falling_sums.h"

namespace pral {

/// The ends of a support; -kInfinity and kInfinity where it has none.
struct Support {
    double lower, upper;
};

inline constexpr Support kReals = {-numerics::kInfinity, numerics::kInfinity};
inline constexpr Support kPositiveReals = {0, numerics::kInfinity};

/// Of the values of a variable, or of a probability.
enum class Side { lower, upper };

/// What an adapter needs of a distribution that has no parameters to check.
template <class D>
concept Distribution = requires(const D& d, double x) {
    { d.support() } -> std::same_as<Support>;
    { d.cumulative(x) } -> std::same_as<double>;
    { d.survival(x) } -> std::same_as<double>;
    { d.log_density(x) } -> std::same_as<double>;
    { d.quantile(x) } -> std::same_as<double>;
};

/// A family is a small value type made from its parameters: pure functions that know nothing of pointers, shifts or
/// truncation. What depends on the parameters alone is computed by its constructor. A family may be made from any
/// parameters; the other members are asked only once check() has no objection, and the functions of x and p only when
/// there is no point_mass(). NaN in gives NaN out.
///
///   check()          the message of the first parameter that is out of its range (written so that NaN is), or null
///   support()        the ends of the support
///   point_mass()     the one value that degenerate parameters leave, if they do
///   cumulative(x)    F(x) and
///   survival(x)      1 - F(x), each with its own digits, for x inside the support
///   log_density(x)   the natural logarithm of the density (-inf where it is 0, +inf at a pole)
///   quantile(p)      the inverse of the cumulative, 0 < p < 1
///
/// A family that knows better adds any of these, and is asked first:
///
///   quantile_upper(q)       the inverse of the survival, without forming 1 - q
///   quantiles(span)         quantile() of each element, in place
///   quantiles_upper(span)   quantile_upper() of each element, in place
///   quantile_table()        a QuantileTable (quantile_table.h) for arrays, truncated or not; neither is a point mass.
///                           LocationScale has it for standard distributions with kCostlyQuantiles = true
///   log_cumulative(x)       ln F(x), where F itself loses digits or underflows
///   log_survival(x)         ln(1 - F(x)), likewise
///   log_likelihood(values)  the sum of the log densities, where it is cheaper than its terms; also of a Sample
///                           (sample.h), where the statistics of the data are enough
///   moments()               Moments (moments.h), also optional ones, where they have closed forms or sums of their own
///   moment_limit(side)      the largest order, not included, up to which E|X|^k is finite on that side of an infinite
///                           support; without it all are
///   mode()                  a value of the highest density, the least of several; peak() where a parameter is called mode
///   random(u, stream)       a generator of its own for bare calls; u is a uniform already drawn
///   kIntegers = true        values are integers; the probability members count those within 1e-8 of one
///   kKnots = true           the density jumps at places inside the support
///   kDiscrete = true        values are a countable set: the percentile that is inverted is exactly the one that the
///                           truncation prescribes, since a value next to it would be another value
template <class D>
concept Family = Distribution<D> && requires(const D& d) {
    { d.check() } -> std::same_as<Message>;
    { d.point_mass() } -> std::same_as<std::optional<double>>;
};

/// The two tails at a point: lower = P(X <= x), upper = P(X > x).
struct Tails {
    double lower, upper;
};

/// A tail probability and which of the two it is.
struct Tail {
    Side side;
    double probability;
};

/// The tails at any x, outside the support and at a point mass included.
template <Family D>
Tails tails(const D& d, double x) {
    if (const auto point = d.point_mass()) return x >= *point ? Tails{1, 0} : Tails{0, 1};
    const auto [lower, upper] = d.support();
    if (x < lower || x == -numerics::kInfinity) return {0, 1};
    if (x >= upper) return {1, 0};
    return {d.cumulative(x), d.survival(x)};
}

/// The quantile at any 0 <= p <= 1.
template <Distribution D>
double quantile(const D& d, double p) {
    if (p <= 0) return d.support().lower;
    if (p >= 1) return d.support().upper;
    return d.quantile(p);
}

/// The x that leaves q above it, 0 <= q <= 1.
template <Distribution D>
double quantile_upper(const D& d, double q) {
    if (q <= 0) return d.support().upper;
    if (q >= 1) return d.support().lower;
    if constexpr (HasUpperQuantile<D>)
        return d.quantile_upper(q);
    else
        return d.quantile(1 - q);
}

/// A value as a bare call draws it, the percentile's uniform included.
template <Family D>
double draw(const D& d, RandomStream& stream) {
    const double u = stream.uniform();
    if (const auto point = d.point_mass()) return *point;
    if constexpr (requires { d.random(u, stream); })
        return d.random(u, stream);
    else
        return d.quantile(u);
}

/// Smaller tails, denormal numbers, have lost digits that even their logarithm would show.
inline constexpr double kFarTail = 1e-310;

/// Distributions whose probabilities are integrals of the density, or sums of it over the integers; not those given by knots,
/// where the density jumps.
template <class D>
concept HasFarTails = IntegerFamily<D> || !(CountableFamily<D> || HasKnots<D>);

/// ln P(from < X <= to), both inside the support, from the density, which falls from the one to the other: from `to` down on
/// the lower side, from `from` up on the upper one. It knows no range of doubles, and no tails that nearly cancel.
template <HasFarTails D>
[[gnu::noinline]] double log_probability(const D& d, double from, double to, Side side) {
    const bool lower = side == Side::lower;
    const double outwards = lower ? -1 : 1;
    const auto from_place = [&](double place) {
        return [&d, place, outwards](double t) { return d.log_density(place + outwards * t); };
    };
    if constexpr (IntegerFamily<D>) {
        const double first = std::floor(from) + 1, last = std::floor(to);
        return numerics::log_falling_sum(from_place(lower ? last : first), last - first + 1);
    } else {
        const double nearer = lower ? to : from;
        return numerics::log_falling_integral(from_place(nearer), to - from,
                                              std::max(std::fabs(nearer), 1e-300));
    }
}

/// The ends of the support as log_probability() takes them.
template <HasFarTails D>
Support far_ends(const D& d) {
    auto [lower, upper] = d.support();
    if constexpr (IntegerFamily<D>) lower -= 1;
    return {lower, upper};
}

/// ln F(x) inside the support.
template <Distribution D>
double log_cumulative(const D& d, double x) {
    if constexpr (HasLogCumulative<D>) {
        const double log = d.log_cumulative(x);
        if constexpr (HasFarTails<D>) {
            // May be the logarithm of a number in between that was denormal, or 0.
            const bool underflowed = log < -708 && (log > -746 || log == -HUGE_VAL);
            if (underflowed) return log_probability(d, far_ends(d).lower, x, Side::lower);
        }
        return log;
    } else {
        const double upper = d.survival(x);
        if (upper < 0.5) return numerics::log1p_fn(-upper);
        const double lower = d.cumulative(x);
        if constexpr (HasFarTails<D>) {
            if (lower < kFarTail) return log_probability(d, far_ends(d).lower, x, Side::lower);
        }
        return std::log(lower);
    }
}

/// ln(1 - F(x)) inside the support.
template <Distribution D>
double log_survival(const D& d, double x) {
    if constexpr (HasLogSurvival<D>) {
        return d.log_survival(x);
    } else {
        const double lower = d.cumulative(x);
        if (lower < 0.5) return numerics::log1p_fn(-lower);
        const double upper = d.survival(x);
        if constexpr (HasFarTails<D>) {
            if (upper < kFarTail) return log_probability(d, x, far_ends(d).upper, Side::upper);
        }
        return std::log(upper);
    }
}

/// The sum of the log densities, one by one; -inf as soon as one of the values has density 0.
template <Distribution D>
double sum_of_log_densities(const D& d, std::span<const double> values) {
    double sum = 0;
    for (const double value : values) {
        const double term = d.log_density(value);
        if (term == -HUGE_VAL) return term;
        sum += term;
    }
    return sum;
}

/// The sum of the log densities of values inside the support.
template <Distribution D>
double log_likelihood(const D& d, std::span<const double> values) {
    if constexpr (HasLogLikelihood<D>)
        return d.log_likelihood(values);
    else
        return sum_of_log_densities(d, values);
}

}  // namespace pral
