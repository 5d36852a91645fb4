// Functions of many values at once for the distributions whose functions are exponentials, logarithms, arc tangents or those
// of the normal distribution, by the vector loops of numerics/each.h, and for what adapters make of these.
//
//   evaluate_each(distribution, function, values)
//
// changes each value in place: x inside the support, or a percentile inside (0,1). The digits of a value do not depend on its
// neighbours. They may differ in the last places from those of the distribution's own members, and logarithms of tails beyond
// the range of doubles may be lost.
#pragma once

#include <algorithm>
#include <concepts>
#include <span>

#include "distributions/adapters.h"
#include "distributions/univariate.h"

namespace pral {

struct StandardCauchy;
struct StandardExponential;
struct StandardGumbel;
struct StandardHyperbolicSecant;
struct StandardLogistic;
struct StandardNormal;
class AsymmetricLaplace;
struct Expon;
struct Normal;
struct ScaledExpm1;
struct Uniform;

void evaluate_each(const StandardCauchy&, Function, std::span<double>);
void evaluate_each(const StandardExponential&, Function, std::span<double>);
void evaluate_each(const StandardGumbel&, Function, std::span<double>);
void evaluate_each(const StandardHyperbolicSecant&, Function, std::span<double>);
void evaluate_each(const StandardLogistic&, Function, std::span<double>);
void evaluate_each(const StandardNormal&, Function, std::span<double>);
void evaluate_each(const AsymmetricLaplace&, Function, std::span<double>);
void evaluate_each(const Expon&, Function, std::span<double>);
void evaluate_each(const Normal&, Function, std::span<double>);
void evaluate_each(const Uniform&, Function, std::span<double>);

/// As many values are taken at a time; evaluate_each() is given no more.
inline constexpr std::size_t kArrayBlock = 256;

inline bool is_inverse(Function function) {
    return function == Function::quantile || function == Function::upper_quantile;
}
/// The function of -X at -x, of 1 - p.
Function mirrored(Function function);

namespace detail {

/// Whether the distribution has its tails and quantiles from this adapter, and none of its own in their place.
template <class D, class Adapter>
concept AdaptedBy = std::same_as<decltype(&D::cumulative), double (Adapter::*)(double) const> &&
    std::same_as<decltype(&D::survival), double (Adapter::*)(double) const> &&
    std::same_as<decltype(&D::quantile), double (Adapter::*)(double) const> &&
    std::same_as<decltype(&D::quantile_upper), double (Adapter::*)(double) const> &&
    std::same_as<decltype(&D::log_survival), double (Adapter::*)(double) const>;

template <class Standard>
LocationScale<Standard> adapter_of(const LocationScale<Standard>&);
template <class Standard>
LogLocationScale<Standard> adapter_of(const LogLocationScale<Standard>&);
template <class Base, class Map>
Transformed<Base, Map> adapter_of(const Transformed<Base, Map>&);

}  // namespace detail

template <class D>
concept HasOwnArrays = std::same_as<D, StandardCauchy> || std::same_as<D, StandardExponential> ||
    std::same_as<D, StandardGumbel> || std::same_as<D, StandardHyperbolicSecant> ||
    std::same_as<D, StandardLogistic> || std::same_as<D, StandardNormal> ||
    std::same_as<D, AsymmetricLaplace> || std::same_as<D, Expon> || std::same_as<D, Normal> ||
    std::same_as<D, Uniform>;

template <class D>
struct ArraysOf;

/// Distributions that evaluate_each() knows.
template <class D>
concept HasArrays = HasOwnArrays<D> || ArraysOf<D>::kAdapted;

/// Those that stand on one with arrays.
template <class D>
struct ArraysOf {
    static constexpr bool kAdapted = [] {
        if constexpr (requires(const D& d) { detail::adapter_of(d); }) {
            using Adapter = decltype(detail::adapter_of(std::declval<const D&>()));
            if constexpr (detail::AdaptedBy<D, Adapter>) {
                if constexpr (requires(const D& d) { d.standard; })
                    return HasArrays<decltype(Adapter::standard)>;
                else
                    return HasArrays<decltype(Adapter::base)>;
            }
        }
        return false;
    }();
};

/// What a map does to each value; x = b (e^(y/q) - 1) by blocks.
template <class Map>
void map_forward(const Map& map, std::span<double> y) {
    for (double& value : y) value = map.forward(value);
}
template <class Map>
void map_inverse(const Map& map, std::span<double> x) {
    for (double& value : x) value = map.inverse(value);
}
void map_forward(const ScaledExpm1& map, std::span<double> y);
void map_inverse(const ScaledExpm1& map, std::span<double> x);

template <class Standard>
[[gnu::noinline]] void evaluate_adapted(const LocationScale<Standard>& d, Function function,
                                        std::span<double> values) {
    if (is_inverse(function)) {
        evaluate_each(d.standard, function, values);
        for (double& x : values) x = d.location + d.scale * x;
        return;
    }
    for (double& x : values) x = d.standardised(x);
    evaluate_each(d.standard, function, values);
    if (function != Function::log_density) return;
    for (double& log : values) log -= d.log_scale_;
}

template <class Standard>
[[gnu::noinline]] void evaluate_adapted(const LogLocationScale<Standard>& d, Function function,
                                        std::span<double> values) {
    double before[kArrayBlock], log_x[kArrayBlock];
    const std::size_t n = values.size();
    if (is_inverse(function)) {
        evaluate_each(d.standard, function, values);
        std::ranges::copy(values, before);
        for (double& z : values) z = d.spread * z + d.center_rounding_;
        numerics::exp_each(values);
        for (std::size_t i = 0; i < n; ++i) {
            const bool ordinary = d.usable_ && std::fabs(d.spread * before[i]) < 700;
            values[i] = ordinary ? d.center_ * values[i] : d.value(before[i]);
        }
        return;
    }
    std::ranges::copy(values, before);
    if (d.usable_)
        numerics::log_ratio_each(values, d.center_);
    else
        numerics::log_each(values);
    const double log_center = d.usable_ ? d.center_rounding_ : d.log_center;
    for (std::size_t i = 0; i < n; ++i) {
        const double y = values[i] - log_center;
        log_x[i] = d.usable_ ? y + d.log_center : values[i];
        values[i] = y * d.rate_.hi + y * d.rate_.lo;
        if (std::isinf(y)) values[i] = y;
    }
    evaluate_each(d.standard, function, values);
    if (function != Function::log_density) return;
    for (std::size_t i = 0; i < n; ++i)
        values[i] = before[i] == 0 ? d.log_density_at_zero() : values[i] - d.log_spread_ - log_x[i];
}

template <class Base, class Map>
[[gnu::noinline]] void evaluate_adapted(const Transformed<Base, Map>& d, Function function,
                                        std::span<double> values) {
    const Function of_base = d.decreasing() ? mirrored(function) : function;
    if (is_inverse(function)) {
        evaluate_each(d.base, of_base, values);
        return map_forward(d.map, values);
    }
    double x[kArrayBlock];
    std::ranges::copy(values, x);
    map_inverse(d.map, values);
    evaluate_each(d.base, of_base, values);
    if constexpr (requires { d.map.log_slope(x[0]); }) {  // without it the density is the distribution's own
        if (function != Function::log_density) return;
        for (std::size_t i = 0; i < values.size(); ++i)
            if (values[i] != -HUGE_VAL) values[i] += d.map.log_slope(x[i]);
    }
}

/// The density may be the distribution's own.
template <class D>
requires ArraysOf<D>::kAdapted void evaluate_each(const D& d, Function function, std::span<double> values) {
    using Adapter = decltype(detail::adapter_of(d));
    if constexpr (!std::same_as<decltype(&D::log_density), double (Adapter::*)(double) const>) {
        if (function == Function::log_density) {
            for (double& x : values) x = d.log_density(x);
            return;
        }
    }
    evaluate_adapted(static_cast<const Adapter&>(d), function, values);
}

}  // namespace pral
