// Which families the classic calls know in a form of their own, and in which words they object to parameters. The forms
// themselves stand in short_cuts.h and variants.h; a file that exports such a family without including its form does not
// compile.
#pragma once

#include <type_traits>

#include "distributions/real_counts.h"

namespace pral {

struct Bernoulli;
struct Binomial;
struct BurntFingerPoisson;
class Discrete;
struct Geometric;
struct Hypergeo;
struct InvHypergeo;
struct Logarithmic;
struct ModPERT;
struct NegBin;
struct PERT;
struct PERTAlt;
struct Poisson;
struct PoissonUniform;
struct Skellam;
struct LogTriangle;
struct Triangle;
struct TriangleAlt;
struct Uniform;
template <class Base>
struct ZeroInflated;
template <class Base>
struct ZeroTruncated;

}  // namespace pral

namespace pral::classic {

template <class D>
struct ShortCut;
template <class D>
struct SumOfShortCuts;
template <class Base>
struct Inflated;
template <class Base>
struct WithoutZeros;

/// The form of a family that classic calls sample and evaluate: the family itself, or one derived from it.
template <class D>
struct FormOf {
    using type = D;
};
template <class D>
using Form = typename FormOf<D>::type;

template <>
struct FormOf<Poisson> {
    using type = ShortCut<Poisson>;
};
template <>
struct FormOf<Binomial> {
    using type = ShortCut<Binomial>;
};
template <>
struct FormOf<NegBin> {
    using type = ShortCut<NegBin>;
};
template <>
struct FormOf<Geometric> {
    using type = ShortCut<Geometric>;
};
template <Family D>
struct FormOf<RealCounts<D>> {
    using type = std::conditional_t<std::is_same_v<Form<D>, D>, RealCounts<D>, ShortCut<RealCounts<D>>>;
};
template <>
struct FormOf<BurntFingerPoisson> {
    using type = SumOfShortCuts<ShortCut<BurntFingerPoisson>>;
};
template <>
struct FormOf<PoissonUniform> {
    using type = SumOfShortCuts<PoissonUniform>;
};
template <>
struct FormOf<Skellam> {
    using type = SumOfShortCuts<Skellam>;
};
template <class Base>
struct FormOf<ZeroInflated<Base>> {
    using type = std::conditional_t<std::is_same_v<Form<Base>, Base>, ZeroInflated<Base>, Inflated<Base>>;
};
template <class Base>
struct FormOf<ZeroTruncated<Base>> {
    using type =
        std::conditional_t<std::is_same_v<Form<Base>, Base>, ZeroTruncated<Base>, WithoutZeros<Base>>;
};

/// A lower bound of a count takes its own probability off: what is kept between values is P(min < X <= max).
inline constexpr bool kAboveMin = true;

/// Percentiles 0 and 1 of these are their ends even where the parameters, or the bounds, leave a point mass.
template <class D>
inline constexpr bool kEndsFirst = false;
template <>
inline constexpr bool kEndsFirst<Bernoulli> = true;
template <>
inline constexpr bool kEndsFirst<Uniform> = true;
template <>
inline constexpr bool kEndsFirst<Triangle> = true;
template <>
inline constexpr bool kEndsFirst<LogTriangle> = true;
template <>
inline constexpr bool kEndsFirst<TriangleAlt> = true;
template <>
inline constexpr bool kEndsFirst<PERT> = true;
template <>
inline constexpr bool kEndsFirst<ModPERT> = true;
template <>
inline constexpr bool kEndsFirst<PERTAlt> = true;

/// What the probability members object to in other words, or in another order, than the sampling ones.
Message probability_objection(const Poisson& d);
Message probability_objection(const Hypergeo& d);
Message probability_objection(const InvHypergeo& d);
Message probability_objection(const Logarithmic& d);
Message probability_objection(const Discrete& d);

/// What the sampling members and the probability members of a family object to. Variants of counts have checks of their own
/// (variants.h).
template <class D>
struct Objections {
    static Message sampling(const D& d) { return d.check(); }
    static Message probability(const D& d) {
        if constexpr (requires { probability_objection(d); })
            return probability_objection(d);
        else
            return d.check();
    }
};
template <class Base>
struct Objections<ZeroInflated<Base>>;
template <class Base>
struct Objections<Inflated<Base>>;
template <class Base>
struct Objections<ZeroTruncated<Base>>;
template <class Base>
struct Objections<WithoutZeros<Base>>;

template <Family D>
Message sampling_objection(const D& d) {
    return Objections<D>::sampling(d);
}
template <Family D>
Message objection_to_probability(const D& d) {
    return Objections<D>::probability(d);
}

}  // namespace pral::classic
