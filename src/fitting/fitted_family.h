// What a fit needs of a family: its likelihood, its members, how its parameters may move and where to start.
#pragma once

#include <array>
#include <cmath>
#include <initializer_list>
#include <string_view>
#include <utility>
#include <vector>

#include "base/random_stream.h"
#include "distributions/draws.h"
#include "distributions/joint.h"
#include "distributions/sample.h"
#include "fitting/failure.h"
#include "fitting/maximise.h"
#include "fitting/window_sum.h"

namespace pral::fitting {

/// Slots of a descriptor; the families use at most four, a fitted shift the next.
inline constexpr std::size_t kSlots = 10;
using Parameters = std::array<double, kSlots>;

/// Where a parameter may be, and by what measure it moves.
struct Range {
    enum class Kind {
        location,   ///< any number, measured by the spread of the data to the given power
        real,       ///< any number, of order 1
        shape,      ///< between -`upper` and `upper`, of either sign and any order
        between,    ///< inside (lower, upper), either of which may be infinite
        below_min,  ///< between `lower` and the smallest value of the data
        above_max,  ///< above the largest
        held,       ///< stays where the start has put it: the data determine it
    };
    Kind kind = Kind::held;
    double lower = -HUGE_VAL, upper = HUGE_VAL;
    double power = 1;
    bool closed = false;  ///< `lower` itself is allowed to start from
};
inline constexpr Range kLocation = {Range::Kind::location}, kReal = {Range::Kind::real},
                       kBelowMin = {Range::Kind::below_min}, kAboveMax = {Range::Kind::above_max},
                       kHeld = {Range::Kind::held};
/// A location that cannot be negative.
inline constexpr Range kPositiveBelowMin = {Range::Kind::below_min, 0};
constexpr Range between(double lower, double upper) { return {Range::Kind::between, lower, upper}; }
constexpr Range shape_up_to(double most) { return {Range::Kind::shape, -most, most}; }
constexpr Range above(double lower) { return between(lower, HUGE_VAL); }
inline constexpr Range kPositive = above(0), kProbability = between(0, 1);

/// Where a search begins: one place or several, or the reason why there is none.
struct Starts {
    std::vector<Parameters> places;
    Message objection = nullptr;

    Starts() = default;
    Starts(std::initializer_list<Parameters> all) : places(all) {}
    Starts(Message why) : objection(why) {}
};

/// The estimator's view of a fit.
struct StartData {
    const Sample& x;
    /// The first parameter where the caller has fixed it; families of counts build the others on it.
    const double* first;
    /// For estimators that search.
    Deadline deadline;
    /// Between which the data have been observed; infinite where the sample is not truncated.
    double lower = -HUGE_VAL, upper = HUGE_VAL;
};

/// The names of the messages "can't estimate ... start parameter", by place; null for the number.
using ParameterNames = std::array<const char*, 4>;

/// How an integer parameter leaves the search: rounded to the nearest or towards zero, and at least `least`.
struct Rounding {
    int place = -1;
    bool truncated = false;
    double least = -HUGE_VAL;
};

/// Parameters that the search moves in place of the family's own, one for one, and back: those of which one tells nothing
/// about the others, as a median and a slope do, and of which the limits are no edges.
struct SearchParameters {
    using Map = Parameters (*)(const Parameters&);
    Map from_own = nullptr, to_own = nullptr;
    /// Of the family's own, for fits in which one of them is held.
    std::array<Range, 4> own_ranges = {};

    Parameters from(const Parameters& own) const { return from_own != nullptr ? from_own(own) : own; }
    Parameters own(const Parameters& moved) const { return to_own != nullptr ? to_own(moved) : moved; }
};

/// What is special to the fit of a family.
struct Peculiarities {
    /// The starts are the maximum of the likelihood, truncation apart.
    bool closed_form = false;
    ParameterNames names = {};
    /// The first parameter is a count that the caller may fix.
    bool begins_with_count = false;
    /// Without truncation the fit is the mean and the standard deviation of the sample, divisor n - 1.
    bool sample_moments = false;
    /// No search over the parameters as they are, and messages that begin with the family's name.
    bool own_search = false;
    Rounding rounding = {};
    /// From how many of the starts the search climbs: more than two where the likelihood is known to have several maxima.
    int climbs = 2;
    /// The density takes about a microsecond.
    bool costly = false;
    /// The ranges are theirs.
    SearchParameters search = {};
};

struct FittedFamily : Peculiarities {
    std::string_view name;
    int parameter_count;
    std::array<Range, 4> ranges;
    Starts (*starts)(const StartData&);
    /// The likelihood needs statistics of the data, or counts, not the values one by one.
    bool summarised;
    /// The natural log-likelihood of values within the bounds; -inf where parameters are refused.
    double (*log_likelihood)(const double* parameters, const Sample&, const Limits&);
    /// Values within the bounds, at percentile u or, where that is null, draws of the stream. Throws what is objected to.
    void (*values)(std::span<double> out, const double* parameters, const Limits&, const double* u,
                   RandomStream&);
};

namespace detail {

[[noreturn]] void fail(Message objection);
/// Throws what is objected to in completed bounds.
void check_bounds(const Limits& limits, bool ordered, const Bound& min, const Bound& max);

template <class D, std::size_t... I>
D made_of(const double* parameters, std::index_sequence<I...>) {
    return D{parameters[I]...};
}

template <Family D, int N>
struct Member {
    static D of(const double* parameters) { return made_of<D>(parameters, std::make_index_sequence<N>()); }

    static double log_likelihood(const double* parameters, const Sample& x, const Limits& limits) {
        const D d = of(parameters);
        if (d.check() != nullptr) return -HUGE_VAL;
        if (const auto log_mass = log_window_mass(d, limits); log_mass && within(x, d.support(), limits))
            return pral::log_likelihood(d, x) - x.count() * *log_mass;
        const Truncated<D> kept(d, true, limits);
        if (!kept.ordered() || x.min() < kept.lower()) return -HUGE_VAL;
        return joint_density(x, x.min(), x.max(), kept, Scale::natural_log);
    }
    /// Whether the data lie between bounds that are values, of which the lower may be missing.
    static bool within(const Sample& x, const Support& support, const Limits& limits) {
        const double lower = limits.min_is_percentile ? support.lower : std::max(support.lower, limits.min);
        return x.min() >= lower && x.max() <= std::min(support.upper, limits.max);
    }
    static void values(std::span<double> out, const double* parameters, const Limits& limits, const double* u,
                       RandomStream& stream) {
        const D d = of(parameters);
        const Message objection = d.check();
        const Truncated<D> kept(d, objection == nullptr, limits);
        check_bounds(limits, kept.ordered(), kept.min(), kept.max());
        if (u != nullptr && !(*u >= 0 && *u <= 1)) fail(kPercentileOutside);
        if (objection != nullptr) fail(objection);
        if (u != nullptr)
            std::ranges::fill(out, value_at_percentile(kept, *u));
        else
            draw_each(out, kept, stream);
    }
};

}  // namespace detail

/// A family with N parameters: how they move, where they start, and what else is special.
template <Family D, int N>
constexpr FittedFamily fitted(std::string_view name, const std::array<Range, 4>& ranges,
                              Starts (*starts)(const StartData&), const Peculiarities& peculiarities = {}) {
    constexpr bool kSummarised = SummarisedLikelihood<D> || IntegerFamily<D>;
    return {peculiarities,
            name,
            N,
            ranges,
            starts,
            kSummarised,
            detail::Member<D, N>::log_likelihood,
            detail::Member<D, N>::values};
}

/// The families by kin.
std::span<const FittedFamily> symmetric_families();
std::span<const FittedFamily> positive_families();
std::span<const FittedFamily> bounded_families();
std::span<const FittedFamily> count_families();

}  // namespace pral::fitting
