// Any distribution of one variable behind one interface: what programs hold that choose it while they run.
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "distributions/family.h"
#include "distributions/moments.h"

namespace pral {

/// The functions of a distribution that take an array and give one.
enum class Function {
    log_density,  ///< of the probability itself where a value has one
    cumulative,
    survival,
    log_cumulative,
    log_survival,
    quantile,
    upper_quantile,
};

/// Which numbers a variable takes.
enum class Values { continuous, integers, countable, mixed };

/// A distribution whose parameters are in order. It never changes, so any number of threads may use it.
///
/// Everything holds for every double. Infinities are infinities. F(x) is P(X <= x) and S(x) is P(X > x), for whole
/// numbers and others. Q(p) is the least x with F(x) >= p; the upper quantile of q the least x with S(x) <= q. A
/// percentile outside of [0,1] has none. NaN in gives NaN out.
class Univariate {
  public:
    virtual ~Univariate() = default;
    Univariate() = default;
    Univariate(const Univariate&) = delete;
    Univariate& operator=(const Univariate&) = delete;

    virtual Values values() const = 0;
    virtual Support support() const = 0;
    /// `in` and `out` are of one size; they may be the same array.
    virtual void evaluate(Function, std::span<const double> in, std::span<double> out) const = 0;
    /// P(X < x) and P(X >= x).
    virtual Tails tails_below(double x) const = 0;
    /// ln P(lower <= X <= upper), also where the tails at these ends agree to most of their digits or are beyond doubles, as
    /// far as the distribution knows a way.
    virtual double log_within(double lower, double upper) const;
    /// Where they have closed forms or sums of their own; otherwise they are integrals over the quantiles.
    virtual std::optional<Moments> moments() const { return std::nullopt; }
    virtual std::optional<double> mode() const { return std::nullopt; }
    /// The integral of S (Side::upper) or of F (Side::lower) from one x to another, either of which may be infinite.
    virtual double integrated_tail(Side, double from, double to) const;
    /// The largest order, not included, up to which E|X|^k is finite; infinity where all are.
    virtual double moment_limit(Side) const { return HUGE_VAL; }
    /// As pral_distribution_parse() reads it.
    virtual std::string text() const = 0;

    double operator()(Function function, double x) const {
        evaluate(function, {&x, 1}, {&x, 1});
        return x;
    }
    Tails tails(double x) const { return {(*this)(Function::cumulative, x), (*this)(Function::survival, x)}; }
};

/// The probability between two values as the difference of the tails at them, of those that are the smaller ones: `below`
/// of what lies below the lower value, `above` at the upper one.
struct Difference {
    Tails below, above;
    bool by_upper = below.lower > 0.5;  ///< both values are above the median
    double mass = by_upper ? below.upper - above.upper : above.lower - below.lower;

    /// How much of the larger tail the difference is: little where most digits have cancelled, none below the doubles that
    /// have all of theirs.
    double share() const {
        const double larger = by_upper ? below.upper : above.lower;
        return larger > numerics::kLeastWithDigits ? mass / larger : 0;
    }
    double log_mass() const {
        return mass > 0.5 ? numerics::log1p_fn(-(below.lower + above.upper)) : std::log(mass);
    }
};
/// From this share on a difference of tails has the digits that the library promises.
inline constexpr double kResolved = 1e-3;

using Shared = std::shared_ptr<const Univariate>;

/// A number as short as it can be that reads back as itself.
std::string shortest(double value);

}  // namespace pral
