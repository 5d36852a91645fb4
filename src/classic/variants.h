// Zero-inflated and zero-truncated counts as the classic calls have them: their own checks come before those of the count,
// the count itself may be approximated, and extra zeros are no part of what bounds rescale.
#pragma once

#include <algorithm>
#include <span>
#include <type_traits>
#include <utility>
#include <vector>

#include "classic/kept.h"
#include "classic/short_cuts.h"
#include "distributions/inflated/variants.h"

namespace pral::classic {

// ------------------------------------------------------------------------------------------------------- Checks

/// What a variant objects to before its count does; `of_base` is what the count objects to.
inline Message variant_objection(const BetaGeometric& base, Message) {
    if (!(base.alpha > 0)) return "Error: alpha must be >0";
    if (!(base.beta > 2)) return "Error: beta must be > 2";
    return nullptr;
}
inline Message variant_objection(const BetaNegBin& base, Message of_base) {
    if (!(base.s > 0)) return "Error: s must be >0";
    if (!(base.a > 0)) return "Error: alpha must be > 0";
    if (!(base.b > 0)) return "Error: beta must be > 0";
    return of_base;
}
inline Message variant_ranges(const Hypergeo& base) {
    if (!(base.n >= 0)) return "Error: n must be >= 0";
    if (!(base.D > 0)) return "Error: D must be > 0";
    if (!(base.M > 0)) return "Error: M must be > 0";
    return nullptr;
}
inline Message variant_objection(const Hypergeo& base, Message of_base) {
    if (const Message objection = variant_ranges(base)) return objection;
    const bool others_pass = Hypergeo(0, base.D, base.M).check() == nullptr && base.n <= base.M;
    return others_pass && of_base != nullptr ? "Error: n must be an integer" : of_base;
}
inline Message variant_ranges(const InvHypergeo& base) {
    if (!(base.D > 0)) return "Error: D must be > 0";
    if (!(base.M > 0)) return "Error: M must be > 0";
    return nullptr;
}
inline Message variant_objection(const InvHypergeo& base, Message of_base) {
    if (const Message objection = variant_ranges(base)) return objection;
    if (!(base.s >= 0 && base.s <= base.D)) return "Error: s must be between [0,D]";
    const bool others_pass = InvHypergeo(0, base.D, base.M).check() == nullptr;
    return others_pass && of_base != nullptr ? "Error: s must be an integer" : of_base;
}
inline Message variant_objection(const Logarithmic& base, Message) {
    return base.theta > 0 && base.theta <= 1 ? nullptr : "Error: theta must be between (0,1]";
}
inline Message variant_objection(const NegBin& base, Message of_base) {
    if (!(base.s >= 0)) return "Error: s must be >= 0";
    if (!(base.p >= 0 && base.p <= 1)) return "Error: p must be between [0,1]";
    return base.p > 0 ? of_base : nullptr;
}
inline Message variant_objection(const Geometric&, Message of_base) { return of_base; }

/// The first objection to the count of a variant in a sampling member, and in a probability member.
template <class Base>
Message first_objection(const Base& base) {
    const Message of_base = base.check();
    if constexpr (requires { variant_objection(base, of_base); })
        return variant_objection(base, of_base);
    else
        return of_base;
}
template <class Base>
Message first_objection_to_probability(const Base& base) {
    if constexpr (requires { variant_ranges(base); }) {
        const Message objection = variant_ranges(base);
        return objection != nullptr ? objection : objection_to_probability(base);
    } else {
        return first_objection(base);
    }
}

/// The objection to the weight of what is not extra.
template <class Base>
Message weight_objection(const Base&, double pi) {
    if constexpr (std::is_same_v<Base, Skellam>)
        return pi >= 0 && pi <= 1 ? nullptr : "Error: P must be between [0,1]";
    else
        return pi > 0 && pi < 1 ? nullptr : "Error: pi should be on (0,1)";
}

/// The first of them.
inline Message first_of(Message first, Message second, Message third = nullptr) {
    return first != nullptr ? first : second != nullptr ? second : third;
}

/// The form of a variant's count.
template <class Base>
decltype(auto) form_of(const Base& base) {
    if constexpr (std::is_same_v<Form<Base>, Base>)
        return (base);
    else
        return Form<Base>(base);
}

template <class Base>
struct InflatedObjections {
    static Message sampling(const ZeroInflated<Base>& d) {
        return first_of(first_objection(d.base), weight_objection(d.base, d.pi), d.base.check());
    }
    static Message probability(const ZeroInflated<Base>& d) {
        return first_of(first_objection_to_probability(d.base), weight_objection(d.base, d.pi),
                        objection_to_probability(d.base));
    }
};
template <class Base>
struct TruncatedObjections {
    static Message sampling(const ZeroTruncated<Base>& d) {
        return first_of(first_objection(d.base), d.base.check());
    }
    static Message probability(const ZeroTruncated<Base>& d) {
        return first_of(first_objection_to_probability(d.base), objection_to_probability(d.base));
    }
};
template <class Base>
struct Objections<ZeroInflated<Base>> : InflatedObjections<Base> {};
template <class Base>
struct Objections<Inflated<Base>> : InflatedObjections<Base> {};
template <class Base>
struct Objections<ZeroTruncated<Base>> : TruncatedObjections<Base> {};
template <class Base>
struct Objections<WithoutZeros<Base>> : TruncatedObjections<Base> {};

// ------------------------------------------------------------------------------------------------------ Variants

/// Percentiles above the extra zeros. A percentile u <= 1 - pi is 0, and any other that of the count at (u - 1 + pi)/pi. Bounds
/// rescale this second percentile by the family's own percentiles there: the extra zeros keep their weight between any bounds,
/// and since the count has more above a bound than the family, values may lie beyond the upper one.
template <class Base>
class AboveZeros {
  public:
    explicit AboveZeros(const ZeroInflated<Base>& d) : d_(d), count_(form_of(d.base)) {}

    /// The quantile in a window of the family.
    double quantile_within(double u, const Window& window) const {
        const double excess = d_.above_zeros(u);
        if (!(excess > 0)) return 0;
        const double p = window.percentile(excess / d_.pi);
        if (window.mass == 1) return quantile(p, (1 - u) / d_.pi, false);
        if (window.above_median())
            return quantile(p, window.upper_tail((1 - u) / d_.pi), is_beyond_percentiles(window));
        return quantile(p, 1 - p, false);
    }
    void quantiles_within(std::span<double> u, const Window& window) const {
        const bool by_upper = window.above_median();
        std::vector<double> counts;
        for (double& value : u) {
            const double excess = d_.above_zeros(value);
            if (excess > 0)
                counts.push_back(by_upper ? window.upper_tail((1 - value) / d_.pi)
                                          : window.percentile(excess / d_.pi));
            value = excess > 0 ? 1 : 0;
        }
        invert(by_upper, is_beyond_percentiles(window), counts);
        auto next = counts.begin();
        for (double& value : u) {
            if (value == 1) value = *next++;
        }
    }
    double quantile_upper(double q) const {
        return q >= d_.pi ? 0 : quantile(1 - q / d_.pi, q / d_.pi, false);
    }
    /// A Bernoulli(pi), and then a bare call of the count, whatever the Bernoulli gave.
    double random(RandomStream& stream) const {
        const bool counted = Bernoulli(d_.pi).quantile(stream.uniform()) == 1;
        const double value = draw(count_, stream);
        return counted ? value : 0;
    }

  private:
    double quantile(double p, double q, bool is_far) const {
        if (const auto point = d_.base.point_mass()) return *point;
        if (p <= 0.5) return pral::quantile(count_, p);
        return is_far ? far_quantile_upper(count_, q) : pral::quantile_upper(count_, q);
    }
    void invert(bool by_upper, bool is_far, std::span<double> tails) const {
        if (const auto point = d_.base.point_mass())
            std::ranges::fill(tails, *point);
        else if (!by_upper)
            count_.quantiles(tails);
        else if (is_far && is_approximated(count_))
            for (double& value : tails) value = far_quantile_upper(count_, value);
        else
            count_.quantiles_upper(tails);
    }

    const ZeroInflated<Base>& d_;
    decltype(form_of(std::declval<const Base&>())) count_;
};

/// Extra zeros over a count that is approximated, or that has negative values (Skellam): F(x) counts the zeros below the
/// negative values, too.
template <class Base>
struct Inflated : ZeroInflated<Base> {
    using ZeroInflated<Base>::ZeroInflated;
    using ZeroInflated<Base>::base;
    using ZeroInflated<Base>::pi;

    Message check() const { return Objections<Inflated>::sampling(*this); }
    double cumulative(double x) const { return pi * tails(base, x).lower + (1 - pi); }
    double survival(double x) const { return pi * tails(base, x).upper; }
    double quantile(double u) const { return AboveZeros<Base>(*this).quantile_within(u, Window{}); }
    double quantile_upper(double q) const { return AboveZeros<Base>(*this).quantile_upper(q); }
};

/// A family with extra zeros between bounds.
template <class D, class Base>
class KeptWithZeros : public Truncated<D> {
  public:
    /// Percentile 0 is no end, but a zero.
    static constexpr bool kBeginsWithZeros = true;

    using Truncated<D>::Truncated;

    double quantile(double u) const {
        return zero_or_nearest(above_zeros().quantile_within(u, this->window()));
    }
    void quantiles(std::span<double> u) const {
        above_zeros().quantiles_within(u, this->window());
        if (!this->inseparable()) return;
        for (double& value : u) value = zero_or_nearest(value);
    }
    double random(RandomStream& stream) const { return above_zeros().random(stream); }
    /// Between bounds values may lie beyond them.
    double limited(double x) const { return this->bounded() ? x : Truncated<D>::limited(x); }

  private:
    AboveZeros<Base> above_zeros() const { return AboveZeros<Base>(this->base()); }
    double zero_or_nearest(double x) const {
        if (!this->inseparable() || x == 0) return x;
        return this->denser_side() == Side::upper ? this->lower() : this->upper();
    }
};
template <class Base>
struct KeptOf<ZeroInflated<Base>> {
    using type = KeptWithZeros<ZeroInflated<Base>, Base>;
};
template <class Base>
struct KeptOf<Inflated<Base>> {
    using type = KeptWithZeros<Inflated<Base>, Base>;
};

/// An approximated count given a value of 1 or more.
template <class Base>
struct WithoutZeros : ZeroTruncated<Base> {
    using ZeroTruncated<Base>::ZeroTruncated;
    using ZeroTruncated<Base>::base;

    double quantile(double u) const { return this->quantile_by(form_of(base), u); }
    double quantile_upper(double q) const { return this->quantile_upper_by(form_of(base), q); }
    void quantiles(std::span<double> u) const { this->quantiles_by(form_of(base), u); }
    void quantiles_upper(std::span<double> q) const { this->quantiles_upper_by(form_of(base), q); }

    bool approximates() const { return form_of(base).approximates(); }
    double far_quantile_upper(double q) const {
        return std::max(classic::far_quantile_upper(form_of(base), this->share_of_base(q)), 1.0);
    }
};

}  // namespace pral::classic
