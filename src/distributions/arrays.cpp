#include "distributions/arrays.h"

#include <cmath>

#include "distributions/continuous/cauchy.h"
#include "distributions/continuous/exponential.h"
#include "distributions/continuous/extreme_value.h"
#include "distributions/continuous/laplace.h"
#include "distributions/continuous/logistic.h"
#include "distributions/continuous/normal.h"
#include "distributions/continuous/pareto.h"
#include "distributions/continuous/uniform.h"

namespace pral {

using namespace numerics;

namespace {

void negate(std::span<double> values) {
    for (double& x : values) x = -x;
}

/// -function(-x), or function(-x).
template <class Each>
void each_negated(Each each, std::span<double> values) {
    negate(values);
    each(values);
}

/// The values, and what they were before.
struct Kept {
    double before[kArrayBlock];
    explicit Kept(std::span<const double> values) { std::ranges::copy(values, before); }
    std::span<const double> of(std::span<const double> values) const { return {before, values.size()}; }
};

/// ln F or ln(1 - F) at each z of a distribution symmetrical about 0, from its tail beyond |z|.
template <class Tail>
void symmetrical_log_tails(Tail tail, Side side, std::span<double> z) {
    if (side == Side::upper) negate(z);
    const Kept kept(z);
    for (double& value : z) value = std::fabs(value);
    tail(z);
    log_tail_each(z, kept.of(z));
}

}  // namespace

Function mirrored(Function function) {
    switch (function) {
        case Function::cumulative:
            return Function::survival;
        case Function::survival:
            return Function::cumulative;
        case Function::log_cumulative:
            return Function::log_survival;
        case Function::log_survival:
            return Function::log_cumulative;
        case Function::quantile:
            return Function::upper_quantile;
        case Function::upper_quantile:
            return Function::quantile;
        default:
            return function;
    }
}

void evaluate_each(const Uniform& d, Function function, std::span<double> values) {
    const double width = d.max - d.min;
    const bool wide = !(width <= DBL_MAX);
    switch (function) {
        case Function::log_density:
            std::ranges::fill(values, d.log_density(d.min));
            return;
        case Function::cumulative:
            if (wide) break;
            for (double& x : values) x = (x - d.min) / width;
            return;
        case Function::survival:
            if (wide) break;
            for (double& x : values) x = (d.max - x) / width;
            return;
        case Function::log_cumulative:
        case Function::log_survival: {
            // The nearer end has the digits.
            const bool lower = function == Function::log_cumulative;
            double farther[kArrayBlock];
            for (std::size_t i = 0; i < values.size(); ++i) {
                const double x = values[i], below = d.cumulative(x), above = d.survival(x);
                farther[i] = (lower ? below : above) > 0.5 ? 1 : 0;
                values[i] = below < above ? below : above;
            }
            return log_tail_each(values, {farther, values.size()});
        }
        case Function::quantile:
            if (wide) break;
            for (double& p : values) p = d.min + width * p;
            return;
        case Function::upper_quantile:
            if (wide) break;
            for (double& q : values) q = d.max - width * q;
            return;
    }
    for (double& x : values)
        x = function == Function::cumulative ? d.cumulative(x)
            : function == Function::survival ? d.survival(x)
            : function == Function::quantile ? d.quantile(x)
                                             : d.quantile_upper(x);
}

void evaluate_each(const StandardExponential&, Function function, std::span<double> values) {
    switch (function) {
        case Function::cumulative:
            each_negated(expm1_each, values);
            return negate(values);
        case Function::survival:
            return each_negated(exp_each, values);
        case Function::log_cumulative:
            return log1m_exp_each(values);
        case Function::log_density:
        case Function::log_survival:
            return negate(values);
        case Function::quantile:
            each_negated(log1p_each, values);
            return negate(values);
        case Function::upper_quantile:
            log_each(values);
            return negate(values);
    }
}

void evaluate_each(const Expon& d, Function function, std::span<double> values) {
    if (!is_inverse(function))
        for (double& x : values) x /= d.beta;
    evaluate_each(StandardExponential(), function, values);
    if (is_inverse(function))
        for (double& z : values) z *= d.beta;
    if (function != Function::log_density) return;
    const double log_beta = std::log(d.beta);
    for (double& log : values) log -= log_beta;
}

void evaluate_each(const StandardNormal&, Function function, std::span<double> values) {
    switch (function) {
        case Function::log_density:
            for (double& z : values) z = -0.5 * z * z - kLnSqrt2Pi;
            return;
        case Function::cumulative:
            return normal_cumulative_each(values);
        case Function::survival:
            return each_negated(normal_cumulative_each, values);
        case Function::log_cumulative:
            return normal_log_cumulative_each(values);
        case Function::log_survival:
            return each_negated(normal_log_cumulative_each, values);
        case Function::quantile:
            return normal_quantile_each(values);
        case Function::upper_quantile:
            normal_quantile_each(values);
            return negate(values);
    }
}

void evaluate_each(const Normal& d, Function function, std::span<double> values) {
    if (is_inverse(function)) {
        evaluate_each(StandardNormal(), function, values);
        for (double& z : values) z = d.mu + d.sigma * z;
        return;
    }
    for (double& x : values) x = (x - d.mu) / d.sigma;
    if (function != Function::log_density) return evaluate_each(StandardNormal(), function, values);
    const double log_peak = -(std::log(d.sigma) + kLnSqrt2Pi);
    for (double& z : values) z = log_peak - 0.5 * (z * z);
}

void evaluate_each(const StandardLogistic&, Function function, std::span<double> values) {
    const auto tails = [&] {
        exp_each(values);
        for (double& e : values) e = 1 / (1 + e);
    };
    const auto log_odds = [&] {
        for (double& p : values) {
            const double odds = p / (1 - p), excess = (2 * p - 1) / (1 - p);
            p = std::fabs(p - 0.5) < 0.1 ? 1 + excess : odds;
        }
        log_each(values);
    };
    switch (function) {
        case Function::cumulative:
            negate(values);
            return tails();
        case Function::survival:
            return tails();
        case Function::log_cumulative:
            each_negated(softplus_each, values);
            return negate(values);
        case Function::log_survival:
            softplus_each(values);
            return negate(values);
        case Function::log_density: {
            for (double& z : values) z = -std::fabs(z);
            const Kept sizes(values);
            softplus_each(values);
            for (std::size_t i = 0; i < values.size(); ++i) values[i] = sizes.before[i] - 2 * values[i];
            return;
        }
        case Function::quantile:
            return log_odds();
        case Function::upper_quantile:
            log_odds();
            return negate(values);
    }
}

void evaluate_each(const StandardGumbel&, Function function, std::span<double> values) {
    constexpr double kSingleTerm = 40;  // from there on the upper tail is e^-z
    switch (function) {
        case Function::cumulative:
            each_negated(exp_each, values);
            return each_negated(exp_each, values);
        case Function::survival:
            each_negated(exp_each, values);
            each_negated(expm1_each, values);
            return negate(values);
        case Function::log_cumulative:
            each_negated(exp_each, values);
            return negate(values);
        case Function::log_survival: {
            const Kept z(values);
            each_negated(exp_each, values);
            log1m_exp_each(values);
            for (std::size_t i = 0; i < values.size(); ++i)
                values[i] = z.before[i] > kSingleTerm ? -z.before[i] : values[i];
            return;
        }
        case Function::log_density: {
            const Kept z(values);
            each_negated(exp_each, values);
            for (std::size_t i = 0; i < values.size(); ++i)
                values[i] = z.before[i] == -HUGE_VAL ? -HUGE_VAL : -z.before[i] - values[i];
            return;
        }
        case Function::quantile:
            log_each(values);
            each_negated(log_each, values);
            return negate(values);
        case Function::upper_quantile:
            each_negated(log1p_each, values);
            each_negated(log_each, values);
            return negate(values);
    }
}

void evaluate_each(const StandardCauchy& d, Function function, std::span<double> values) {
    const auto tails = [](std::span<double> z) {
        acot_each(z);
        for (double& angle : z) angle /= kPi;
    };
    switch (function) {
        case Function::cumulative:
            return each_negated(tails, values);
        case Function::survival:
            return tails(values);
        case Function::log_cumulative:
            return symmetrical_log_tails(tails, Side::lower, values);
        case Function::log_survival:
            return symmetrical_log_tails(tails, Side::upper, values);
        case Function::log_density: {
            constexpr double kOrdinary = 1e150;
            const Kept z(values);
            for (double& value : values) value = std::min(value * value, kOrdinary * kOrdinary);
            log1p_each(values);
            const double log_pi = std::log(kPi);
            for (std::size_t i = 0; i < values.size(); ++i)
                values[i] =
                    std::fabs(z.before[i]) < kOrdinary ? -values[i] - log_pi : d.log_density(z.before[i]);
            return;
        }
        case Function::quantile:
            cot_pi_each(values);
            return negate(values);
        case Function::upper_quantile:
            return cot_pi_each(values);
    }
}

/// F = (2/pi) acot(e^(-pi z/2)).
void evaluate_each(const StandardHyperbolicSecant& d, Function function, std::span<double> values) {
    constexpr double kHalfPi = kPi / 2;
    const auto survival = [](std::span<double> z) {
        for (double& value : z) value *= kHalfPi;
        exp_each(z);
        acot_each(z);
        for (double& angle : z) angle /= kHalfPi;
    };
    switch (function) {
        case Function::cumulative:
            return each_negated(survival, values);
        case Function::survival:
            return survival(values);
        case Function::log_density: {
            for (double& z : values) z = -kHalfPi * std::fabs(z);
            const Kept sizes(values);
            for (double& z : values) z *= 2;
            softplus_each(values);
            for (std::size_t i = 0; i < values.size(); ++i) values[i] = sizes.before[i] - values[i];
            return;
        }
        case Function::quantile:
            for (double& p : values) p = d.quantile(p);
            return;
        case Function::upper_quantile:
            for (double& q : values) q = d.quantile_upper(q);
            return;
        case Function::log_cumulative:
        case Function::log_survival: {
            const Kept z(values);
            const bool lower = function == Function::log_cumulative;
            symmetrical_log_tails(survival, lower ? Side::lower : Side::upper, values);
            constexpr double kFar = 30;  // the arc tangent is its argument
            for (std::size_t i = 0; i < values.size(); ++i) {
                const double at = lower ? z.before[i] : -z.before[i];
                if (at < -kFar) values[i] = d.log_cumulative(at);
            }
            return;
        }
    }
}

void evaluate_each(const AsymmetricLaplace& d, Function function, std::span<double> values) {
    const double below = d.lower_weight(), above = d.upper_weight();
    const double rate_below = d.lower_rate(), rate_above = d.upper_rate();
    switch (function) {
        case Function::cumulative:
        case Function::survival: {
            // A tail by the power itself, the other side by what the power leaves.
            const bool lower = function == Function::cumulative;
            const Kept z(values);
            for (double& value : values) value *= value < 0 ? rate_below : -rate_above;
            Kept powers(values);
            exp_each({powers.before, values.size()});
            expm1_each(values);
            for (std::size_t i = 0; i < values.size(); ++i) {
                const bool under = z.before[i] < 0;
                const double here = under ? below : above, other = under ? above : below;
                values[i] = under == lower ? here * powers.before[i] : other - here * values[i];
            }
            return;
        }
        case Function::log_density:
            for (double& z : values) z = d.log_density(z);
            return;
        case Function::log_cumulative:
        case Function::log_survival: {
            const bool lower = function == Function::log_cumulative;
            const Kept z(values);
            Kept other(values);
            const std::span<double> others = {other.before, values.size()};
            evaluate_each(d, lower ? Function::survival : Function::cumulative, others);
            evaluate_each(d, lower ? Function::cumulative : Function::survival, values);
            for (std::size_t i = 0; i < values.size(); ++i) {
                const bool smaller = others[i] < 0.5;
                values[i] = smaller ? others[i] : values[i];
                others[i] = smaller ? 1 : 0;
            }
            log_tail_each(values, others);
            for (std::size_t i = 0; i < values.size(); ++i) {
                const double at = z.before[i];
                if (lower ? at < 0 : at >= 0) values[i] = lower ? d.log_cumulative(at) : d.log_survival(at);
            }
            return;
        }
        case Function::quantile:
        case Function::upper_quantile: {
            // ln(p/below)/rate under the median, -ln((1 - p)/above)/rate over it; next to it by ln(1 - what is passed).
            const bool lower = function == Function::quantile;
            const double first = lower ? below : above, second = lower ? above : below;
            const double first_rate = lower ? rate_below : rate_above,
                         second_rate = lower ? rate_above : rate_below;
            const Kept p(values);
            for (double& value : values) {
                const double part = (value - first) / second;
                value = value < first ? value / first : part < 0.5 ? 1 - part : (1 - value) / second;
            }
            log_each(values);
            for (std::size_t i = 0; i < values.size(); ++i) {
                const double at = p.before[i], part = (at - first) / second;
                const double rounded = part < 0.5 ? ((1 - (1 - part)) - part) / (1 - part) : 0;
                const double z = at < first ? values[i] / first_rate : -(values[i] + rounded) / second_rate;
                values[i] = lower ? z : -z;
            }
            return;
        }
    }
}

void map_forward(const ScaledExpm1& map, std::span<double> y) {
    constexpr double kOrdinary = 700;
    const Kept before(y);
    for (double& value : y) value /= map.q;
    expm1_each(y);
    for (std::size_t i = 0; i < y.size(); ++i)
        y[i] = before.before[i] / map.q < kOrdinary ? map.b * y[i] : map.forward(before.before[i]);
}

void map_inverse(const ScaledExpm1& map, std::span<double> x) {
    const Kept before(x);
    for (double& value : x) value = std::min(value / map.b, DBL_MAX);
    log1p_each(x);
    for (std::size_t i = 0; i < x.size(); ++i)
        x[i] = before.before[i] / map.b <= DBL_MAX ? map.q * x[i] : map.inverse(before.before[i]);
}

}  // namespace pral
