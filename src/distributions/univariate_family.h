// A family as a Univariate: the family's functions, made total. One instantiation a family serves all callers that choose
// a distribution while they run.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "distributions/data/step_uniform.h"
#include "distributions/discrete/exact_inversion.h"
#include "distributions/inflated/variants.h"
#include "distributions/univariate.h"

namespace pral {

/// The parameters of a family in order: a number is an array of one.
using FamilyArguments = std::vector<std::vector<double>>;

/// "Gamma(2.5, 3)".
std::string family_text(const char* name, const FamilyArguments& arguments,
                        const std::vector<bool>& is_table);

/// What is objected to when integers may be real numbers where the mathematics lets them: not the trials of a family whose
/// support ends with them (kWholeTrials).
template <Family D>
Message check_real(const D& d) {
    if constexpr (requires { D::kWholeTrials; })
        return d.check();
    else if constexpr (requires { d.check_range(); })
        return d.check_range();
    else
        return d.check();
}
template <class Base, class Checks>
Message check_real(const ZeroInflated<Base, Checks>& d) {
    if (const Message objection = check_real(d.base)) return objection;
    return d.pi >= 0 && d.pi <= 1 ? nullptr : "Error: pi must be between [0,1]";
}
template <class Base, class Checks>
Message check_real(const ZeroTruncated<Base, Checks>& d) {
    return check_real(d.base);
}

namespace detail {

/// The library's largest double as the infinity that it stands for.
inline double infinite_again(double x) {
    if (x >= numerics::kInfinity) return HUGE_VAL;
    return x <= -numerics::kInfinity ? -HUGE_VAL : x;
}

/// One value with all of the probability.
void evaluate_point(double point, Function function, std::span<const double> in, std::span<double> out);

/// out[i] = function(in[i]); the arrays may be the same.
template <class F>
void for_each(std::span<const double> in, std::span<double> out, F function) {
    for (std::size_t i = 0; i < in.size(); ++i) out[i] = function(in[i]);
}

/// Percentiles inside (0,1) go through `inner`, all at once and in place; the others through `end`.
template <class Inner, class End>
void invert(std::span<const double> in, std::span<double> out, Inner inner, End end) {
    std::vector<std::pair<std::size_t, double>> ends;
    for (std::size_t i = 0; i < in.size(); ++i) {
        const double p = in[i];
        const bool inside = p > 0 && p < 1;
        if (!inside) ends.emplace_back(i, end(p));
        out[i] = inside ? p : 0.5;
    }
    inner(out);
    for (const auto& [i, value] : ends) out[i] = value;
}

}  // namespace detail

template <Family D>
class UnivariateFamily final : public Univariate {
  public:
    /// `make` turns the arguments, which this keeps, into the family.
    template <class Make>
    UnivariateFamily(const char* name, std::vector<bool> is_table, FamilyArguments arguments, Make make)
        : name_(name),
          is_table_(std::move(is_table)),
          arguments_(std::move(arguments)),
          d_(make(arguments_)) {}

    /// The objection to the parameters; without one all else may be called.
    Message check() const { return check_real(d_); }

    Values values() const override {
        if constexpr (requires { D::kIntegers; })
            return Values::integers;
        else if constexpr (requires { D::kDiscrete; })
            return Values::countable;
        else
            return d_.point_mass() ? Values::countable : Values::continuous;
    }
    Support support() const override {
        if (const auto point = d_.point_mass()) return {*point, *point};
        const auto [lower, upper] = d_.support();
        return {detail::infinite_again(lower), detail::infinite_again(upper)};
    }

    void evaluate(Function function, std::span<const double> in, std::span<double> out) const override {
        if (const auto point = d_.point_mass()) return detail::evaluate_point(*point, function, in, out);
        const auto [lower, upper] = support();
        switch (function) {
            case Function::log_density:
                return detail::for_each(in, out, [&, lower = lower, upper = upper](double x) {
                    if (std::isnan(x)) return x;
                    if (!(x >= lower && x <= upper) || std::isinf(x) || !countable(x)) return -HUGE_VAL;
                    return detail::infinite_again(d_.log_density(x + 0.0));
                });
            case Function::cumulative:
                return tail(in, out, 0, 1,
                            [&](double x) { return std::clamp(tail_at(Side::lower, x), 0.0, 1.0); });
            case Function::survival:
                return tail(in, out, 1, 0,
                            [&](double x) { return std::clamp(tail_at(Side::upper, x), 0.0, 1.0); });
            case Function::log_cumulative:
                return tail(in, out, -HUGE_VAL, 0, [&](double x) {
                    return detail::infinite_again(std::min(log_tail_at(Side::lower, x), 0.0));
                });
            case Function::log_survival:
                return tail(in, out, 0, -HUGE_VAL, [&](double x) {
                    return detail::infinite_again(std::min(log_tail_at(Side::upper, x), 0.0));
                });
            case Function::quantile:
                return quantiles(Side::lower, in, out);
            case Function::upper_quantile:
                return quantiles(Side::upper, in, out);
        }
    }

    Tails tails_below(double x) const override {
        if constexpr (requires { D::kIntegers; })
            return tails(std::ceil(x) - 1);
        else if constexpr (std::is_same_v<D, StepUniform>) {
            const Tails at = tails(x);
            const double mass = std::exp((*this)(Function::log_density, x));
            return {std::max(at.lower - mass, 0.0), std::min(at.upper + mass, 1.0)};
        } else if constexpr (requires { D::kDiscrete; })
            return tails(std::nextafter(x, -HUGE_VAL));
        else
            return d_.point_mass() ? tails(std::nextafter(x, -HUGE_VAL)) : tails(x);
    }

    std::optional<Moments> moments() const override {
        if (const auto point = d_.point_mass()) return Moments{*point, 0, numerics::kNaN, numerics::kNaN};
        if constexpr (requires { d_.moments(); }) {
            const std::optional<Moments> all = d_.moments();
            if (all) return with_divergences(*all, existing(Side::lower), existing(Side::upper));
        }
        return std::nullopt;
    }
    std::optional<double> mode() const override {
        if (const auto point = d_.point_mass()) return *point;
        if constexpr (requires { d_.mode(); })
            return d_.mode();
        else if constexpr (requires { d_.peak(); })
            return d_.peak();
        else
            return std::nullopt;
    }
    double moment_limit(Side side) const override {
        if constexpr (requires { d_.moment_limit(side); })
            return d_.moment_limit(side);
        else
            return HUGE_VAL;
    }
    std::string text() const override { return family_text(name_, arguments_, is_table_); }

  private:
    double existing(Side side) const {
        const auto [lower, upper] = support();
        return std::isinf(side == Side::lower ? lower : upper) ? moment_limit(side) : HUGE_VAL;
    }
    bool countable([[maybe_unused]] double x) const {
        if constexpr (requires { D::kIntegers; })
            return x == std::floor(x);
        else
            return true;
    }

    /// Zero inflation of values below 0 (Skellam): the extra zeros are not below them.
    static constexpr bool kInflated = requires(const D& d) {
        d.pi;
        d.base;
    };
    double tail_at(Side side, double x) const {
        if constexpr (kInflated) {
            if (x < 0) {
                const Tails at = pral::tails(d_.base, x);
                return side == Side::lower ? d_.pi * at.lower : d_.pi * at.upper + (1 - d_.pi);
            }
        }
        return side == Side::lower ? d_.cumulative(x) : d_.survival(x);
    }
    double log_tail_at(Side side, double x) const {
        if constexpr (kInflated) {
            if (x < 0)
                return side == Side::lower ? std::log(d_.pi) + pral::log_cumulative(d_.base, x)
                                           : numerics::log1p_fn(-tail_at(Side::lower, x));
        }
        return side == Side::lower ? pral::log_cumulative(d_, x) : pral::log_survival(d_, x);
    }

    /// A tail at every x: `below` the support, `above` it, and between by the family.
    template <class F>
    void tail(std::span<const double> in, std::span<double> out, double below, double above, F inside) const {
        const auto [lower, upper] = support();
        detail::for_each(in, out, [&, lower = lower, upper = upper](double x) {
            if (std::isnan(x)) return x;
            if constexpr (requires { D::kIntegers; }) x = std::floor(x);
            if (x < lower || x == -HUGE_VAL) return below;
            return x >= upper ? above : inside(x + 0.0);  // -0.0 is 0
        });
    }

    void quantiles(Side side, std::span<const double> in, std::span<double> out) const {
        const auto [lower, upper] = support();
        const auto limited = [lower = lower, upper = upper](double x) {
            return std::isnan(x) ? x : detail::infinite_again(std::clamp(x, lower, upper));
        };
        detail::invert(
            in, out, [&](std::span<double> tails) { invert_all(side, tails, limited); },
            [&, lower = lower, upper = upper](double p) {
                if (p == 0) return side == Side::lower ? lower : upper;
                if (p == 1) return side == Side::lower ? upper : lower;
                return numerics::kNaN;
            });
    }
    template <class Limit>
    void invert_all(Side side, std::span<double> tails, Limit limited) const {
        const auto one = [&](double t) { return limited(exact_inverse(d_, {side, t})); };
        if constexpr (requires { D::kIntegers; }) {
            exact_inverses(d_, side, tails);
            for (double& value : tails) value = limited(value);
            return;
        } else if constexpr (requires { d_.quantiles(tails); }) {
            if (side == Side::lower) {
                d_.quantiles(tails);
                for (double& value : tails) value = limited(value);
                return;
            }
        }
        if constexpr (requires { d_.quantile_table(); }) {
            constexpr std::size_t kTableFrom = 300;  // fewer values do not repay the bins
            if (tails.size() >= kTableFrom) {
                auto table = d_.quantile_table();
                for (double& value : tails) {
                    const bool mirrored = value > 0.5;
                    const double x = mirrored
                                         ? table(side == Side::lower ? Side::upper : Side::lower, 1 - value)
                                         : table(side, value);
                    value = std::isnan(x) ? one(value) : limited(x);
                }
                return;
            }
        }
        for (double& value : tails) value = one(value);
    }

    const char* name_;
    std::vector<bool> is_table_;
    FamilyArguments arguments_;
    D d_;
};

}  // namespace pral
