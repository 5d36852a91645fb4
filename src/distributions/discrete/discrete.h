// What the families on the integers share: how values next to integers count, and how a percentile becomes an integer.
#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <span>
#include <vector>

#include "distributions/family.h"

namespace pral {

/// An inversion's answer to a percentile that equals F(k) exactly: the walk upwards goes on to k + 1, or stops at k.
enum class Tie { next, stay };

/// The walk from a percentile to an integer, for a family on consecutive integers that has, beyond the members of every
/// family,
///
///   start(p)        where the walk begins
///   mass_ratio(k)   f(k + 1)/f(k)
///   kTie            what an exact hit on the way up means; kTieFromAbove, on the way down
///
/// and, where the ratio is costly,
///
///   masses(k, out)  f(k), f(k + 1), ... for a table
///
/// Walking upwards from a start below, the result is the first k with F(k) > p (Tie::next) or F(k) >= p (Tie::stay); from a
/// start at or above it, the first k with F(k) >= p, or with F(k) > p unless the start itself hits (kTieFromAbove =
/// Tie::next). Tails are compared, not percentiles, above the median. A start that is far off is improved by Newton steps
/// first; the side it lay on still decides about an exact hit.
template <class D>
class InversionWalk {
  public:
    /// With `least` an exact hit always stays: the result is the least k with F(k) >= p.
    InversionWalk(const D& d, double p, double q, bool by_lower_tail, bool least = false)
        : d_(d),
          bottom_(d.support().lower),
          top_(d.support().upper),
          p_(p),
          q_(q),
          lower_(by_lower_tail),
          least_(least) {}
    InversionWalk(const D& d, double p, bool least = false) : InversionWalk(d, p, 1 - p, p <= 0.5, least) {}

    double operator()() const {
        const double told = d_.start(std::min(p_, 1 - 0x1p-53));
        double k = std::isnan(told) ? bottom_ : std::clamp(told, bottom_, top_);
        double tail = tail_at(k);
        const Origin origin = {k, falls_short(tail)};
        for (int round = 0; round < kRounds; ++round) {
            if (approach(k, tail)) return k;
            const auto found = falls_short(tail) ? upwards(k, tail, origin) : downwards(k, tail, origin);
            if (found) return *found;
            tail = tail_at(k);
        }
        return settled(falls_short(tail) ? first_reached(k, gallop(k, 1)) : first_reached(gallop(k, -1), k),
                       origin);
    }

  private:
    /// Where the walk began, and on which side of its end.
    struct Origin {
        double start;
        bool below;
    };

    // A tail costs a hundred calls of a function: one copy of it is enough.

    /// The tail that is compared: F(k) below the median, 1 - F(k) above.
    [[gnu::noinline]] double tail_at(double k) const { return lower_ ? d_.cumulative(k) : d_.survival(k); }
    bool falls_short(double tail) const { return lower_ ? tail < p_ : tail > q_; }
    [[gnu::noinline]] double other_tail_at(double k) const {
        return lower_ ? d_.survival(k) : d_.cumulative(k);
    }
    [[gnu::noinline]] double mass_at(double k) const { return std::exp(d_.log_density(k)); }
    bool short_at(double k) const { return falls_short(tail_at(k)); }
    /// Within rounding error of the target: the comparison must be repeated with exactly computed tails.
    bool doubtful(double tail) const {
        const double target = lower_ ? p_ : q_;
        return std::fabs(tail - target) < 1e-11 * target;
    }

    /// Where the result lies: not below `low`, nor above `high`, and which of them the steps have found.
    struct Bracket {
        double low, high;
        bool seen_low = false, seen_high = false;

        void narrow(double k, bool is_short) {
            (is_short ? low : high) = k;
            (is_short ? seen_low : seen_high) = true;
        }
        bool complete() const { return seen_low && seen_high; }
        bool contains(double k) const { return k > low && k < high; }
    };
    /// Newton's step at a place: the tail that guides it, how far that is from its target, and how far to go.
    struct Newton {
        double tail, log_ratio, distance;
        bool is_short;

        double size() const { return std::fabs(log_ratio); }
        bool walkable() const { return std::fabs(distance) <= (size() < kStraight ? kWalk : 1); }
    };
    struct Pace {
        double before = HUGE_VAL;  ///< the size of the last step
        double stretch = 1;        ///< how much longer than Newton's the next one is
    };
    enum class Step { result, walk, next };

    /// Newton steps on the logarithm of the smaller tail, within the bracket that they leave, until the walk can do the
    /// rest; one that is no better than the one before is followed by a longer one, or by a halving. True when k is the
    /// result, as near as the tails themselves tell: with masses below their rounding no walk could settle it.
    bool approach(double& k, double& tail) const {
        Bracket bracket{bottom_, top_};
        Pace pace;
        for (int step = 0; step < kApproach; ++step) {
            if (step == kEndsFrom && at_an_end(k, tail)) return false;
            const Step outcome = advance(k, tail, bracket, pace);
            if (outcome != Step::next) return outcome == Step::result;
            tail = tail_at(k);
        }
        return false;
    }
    Newton newton_at(double k, double tail) const {
        const double target = lower_ ? p_ : q_;
        // The side of the smaller tail guides the steps.
        const bool mirrored = tail > kSmaller, is_short = falls_short(tail);
        const double guide = !mirrored ? tail : tail < kNearOne ? 1 - tail : other_tail_at(k);
        const double log_ratio = std::log((mirrored ? 1 - target : target) / guide);
        const double next_mass = d_.log_density(is_short ? std::min(k + 1, top_) : k);
        const double towards = lower_ != mirrored ? log_ratio : -log_ratio;
        return {guide, log_ratio, towards * std::exp(std::log(guide) - next_mass), is_short};
    }
    /// One step of approach(): leaves k at the result, or at the next place.
    Step advance(double& k, double tail, Bracket& bracket, Pace& pace) const {
        const Newton newton = newton_at(k, tail);
        const bool countable = std::fabs(k) < 0x1p53;
        if ((newton.walkable() && countable) || std::isnan(tail)) return Step::walk;
        const bool no_better = !(newton.size() < 0.9 * pace.before);
        const double noise = std::fabs(k) < kFarOut ? kNoise : kNoiseFarOut;
        if (newton.size() < (no_better ? noise : kRounding)) return Step::result;
        if (newton.tail == 0 && !newton.is_short && short_at(neighbour_below(k))) return Step::result;
        bracket.narrow(k, newton.is_short);
        if (bracket.high - bracket.low <= kWalk) return Step::walk;
        pace.before = newton.size();
        pace.stretch = no_better ? kStretch * pace.stretch * pace.stretch : 1;
        double next = moved(k, pace.stretch * newton.distance);
        if (next == k) {  // beyond 2^53 integers have no neighbours
            if (newton.is_short) k = std::nextafter(k, top_);
            return Step::result;
        }
        if (next >= top_ && bracket.high == top_ && short_at(neighbour_below(top_))) {
            k = top_;
            return Step::result;
        }
        if (newton.tail == 0 && !bracket.complete()) {  // a tail without digits has no slope
            const double length = pace.stretch * std::max<double>(kWalk, std::fabs(k) * 0x1p-50);
            next = newton.is_short ? k + length : k - length;
        }
        if ((no_better && bracket.complete()) || !bracket.contains(next))
            next = middle(bracket.low, bracket.high);
        const bool exhausted = next <= bracket.low || next >= bracket.high;
        k = exhausted ? bracket.high : next;
        return exhausted ? Step::result : Step::next;
    }
    /// k moved by Newton's step. Long steps are those of the logarithm of the distance from the end of the support that k
    /// is nearer to: tails and masses there are like powers of it, if not of its exponential.
    double moved(double k, double distance) const {
        const auto stretched = [](double from_end, double step) {
            return std::floor(
                from_end * std::exp(std::clamp(step / from_end, -numerics::kExpLimit, numerics::kExpLimit)));
        };
        if (bottom_ > -numerics::kInfinity) {
            const double above = k - bottom_, below = top_ - k;
            if (below < above && below > 1 && std::fabs(distance) > 0.25 * below)
                return top_ - std::min(stretched(below, -distance), top_);
            if (above > 1 && std::fabs(distance) > 0.25 * above) return bottom_ + stretched(above, distance);
        }
        return k + std::trunc(distance);
    }
    /// Whether the result is an end of the support, which k then is. Infinity can be the result where the upper tail falls
    /// as a power of k, and only there.
    bool at_an_end(double& k, double& tail) const {
        const bool bounded_above = top_ < numerics::kInfinity || requires { d_.tail_exponent(); };
        const bool at_bottom = bottom_ > -numerics::kInfinity && !short_at(bottom_);
        if (!at_bottom && !(bounded_above && short_at(neighbour_below(top_)))) return false;
        k = at_bottom ? bottom_ : top_;
        tail = tail_at(k);
        return true;
    }
    double neighbour_below(double k) const {
        return std::max(std::min(k - 1, std::nextafter(k, bottom_)), bottom_);
    }

    /// Between low and high: when their distances from an end of the support differ much, in the middle of the exponents.
    double middle(double low, double high) const {
        const auto by_exponents = [](double a, double b) { return std::sqrt(a + 1) * std::sqrt(b + 1); };
        if (low >= 0 && high > 4 * (low + 1)) return std::floor(by_exponents(low, high));
        if (top_ - low > 4 * (top_ - high + 1) && low > 0.5 * top_)
            return top_ - std::floor(by_exponents(top_ - low, top_ - high));
        const double from_low = low >= 0 ? low : low / 2 + high / 2;
        return std::floor(from_low + (high - from_low) / 2);
    }

    /// From k, which falls short, up to the first that does not; none if that is further than the walk goes, to where k is
    /// then.
    std::optional<double> upwards(double& k, double tail, Origin origin) const {
        double mass = mass_at(k), anchor = tail;
        bool doubt = doubtful(tail);
        for (int step = 0; step < kWalk; ++step) {
            if (k >= top_) return top_;
            mass = mass > kDenormalNear ? mass * d_.mass_ratio(k) : mass_at(k + 1);
            k += 1;
            tail += lower_ ? mass : -mass;
            if (!lower_ && tail < anchor * kFreshen) anchor = tail = tail_at(k);
            doubt = doubt || doubtful(tail);
            if (!falls_short(tail)) return doubt ? settled(k, origin) : k;
        }
        return std::nullopt;
    }

    /// From k, which does not fall short, down to the last that does not, likewise.
    std::optional<double> downwards(double& k, double tail, Origin origin) const {
        double mass = mass_at(k), anchor = tail;
        for (int step = 0; step < kWalk; ++step) {
            if (k <= bottom_) return bottom_;
            tail += lower_ ? -mass : mass;
            if (lower_ && tail < anchor * kFreshen) anchor = tail = tail_at(k - 1);
            if (doubtful(tail)) return settled(k, origin);
            if (falls_short(tail)) return k;
            k -= 1;
            mass = mass > kDenormalNear ? mass / d_.mass_ratio(k) : mass_at(k);
        }
        return std::nullopt;
    }

    /// The result next to k that the tails themselves give, and the rule for an exact hit.
    double settled(double k, Origin origin) const {
        for (int step = 0; step < 3 && k > bottom_ && !short_at(k - 1); ++step) k -= 1;
        for (int step = 0; step < 3 && k < top_ && short_at(k); ++step) k += 1;
        const bool hit = tail_at(k) == (lower_ ? p_ : q_);
        const Tie tie = least_ || (!origin.below && k == origin.start) ? Tie::stay
                        : origin.below                                 ? D::kTie
                                                                       : D::kTieFromAbove;
        return hit && tie == Tie::next && k < top_ ? k + 1 : k;
    }

    /// From k in growing strides to a place on the other side of the percentile, or to the end of the support.
    double gallop(double k, double direction) const {
        const double end = direction > 0 ? top_ : bottom_;
        for (double stride = std::max<double>(kWalk, std::fabs(k) * 0x1p-50); stride <= numerics::kInfinity;
             stride *= std::max(2.0, 0.125 * stride)) {
            k = direction > 0 ? std::min(k + stride, end) : std::max(k - stride, end);
            if (k == end || short_at(k) == (direction < 0)) return k;
        }
        return end;
    }

    /// The first k of [low, high] that does not fall short; high does not.
    double first_reached(double low, double high) const {
        if (!short_at(low)) return low;
        while (high - low > 1) {
            const double between = middle(low, high);
            if (between <= low || between >= high) break;  // beyond 2^53 integers have no neighbours
            (short_at(between) ? low : high) = between;
        }
        return high;
    }

    static constexpr int kWalk = D::kWalk;
    /// Newton's steps and a walk are tried so often: the first walk may begin where the tail falls as a power of k.
    static constexpr int kRounds = 3;
    /// Newton's steps or halvings of the exponent: 2^1024 down to a factor of 4 in 10, then 50 bits of it at worst.
    static constexpr int kApproach = 70;
    /// Steps that are no better than the one before are made longer by a factor that begins with this one, until the
    /// result is bracketed.
    static constexpr double kStretch = 16;
    /// Over a smaller part of its logarithm a tail is nearly as straight as Newton's step takes it to be.
    static constexpr double kStraight = 2;
    /// Steps after which the ends are tried, where most of the mass may be.
    static constexpr int kEndsFrom = 1;
    /// Tails are not known better than to this relative error; below kNoise (kNoiseFarOut beyond kFarOut) successive Newton
    /// steps oscillate.
    static constexpr double kRounding = 4e-15, kNoise = 1e-12, kNoiseFarOut = 1e-9, kFarOut = 0x1p46;
    /// A larger tail is so flat that the other one guides Newton's steps.
    static constexpr double kSmaller = 0.7;
    /// Up to it the other tail is the complement, with digits enough for a guide.
    static constexpr double kNearOne = 0.9999;
    /// A tail that has shrunk by subtractions to this part of what it was is computed anew.
    static constexpr double kFreshen = 0.0625;
    /// A mass below it has lost digits, or all, and cannot be continued by ratios.
    static constexpr double kDenormalNear = 1e-280;

    const D& d_;
    double bottom_, top_;
    double p_, q_;
    bool lower_, least_;
};

/// Many percentiles of one distribution, all given as lower tails or all as upper ones: the tails of all integers between the
/// extremes are summed once, and a guide table (Chen and Asau 1974) leads from a percentile to its integer in about one
/// comparison. The sums agree with the family's own tails to rounding; where that could decide, the walk does, so that the
/// integers are the same as one by one.
template <class D>
class InversionTable {
  public:
    /// Integers beyond which a table is not worth its memory, and for each percentile its time.
    static constexpr double kMostIntegers = 1 << 17, kMostForEach = 64;
    static constexpr std::size_t kFineness = 8;

    /// For `count` percentiles from `begin` to `end`, tails that ascend in the integers; the walk serves those that lie beyond
    /// the table's end. None where a table is not worth while.
    static std::optional<InversionTable> make(const D& d, Side side, double begin, double end,
                                              std::size_t count, bool least = false) {
        InversionTable table(d, side, begin, least);
        double last = table.walk(end);
        const double first = table.first_;
        const double room = std::min(kMostIntegers, kMostForEach * static_cast<double>(count));
        if (!(last - first < room)) {
            last = first + (room - 1);
            const double reached = side == Side::lower ? d.cumulative(last) : d.survival(last);
            if (!(last - first < room && (reached - begin) / (end - begin) > 0.5)) return std::nullopt;
        }
        table.sum_tails(last);
        table.make_guide(end, count);
        return table;
    }

    double operator()(double t) const {
        // Up to here sums of lower tails tell percentiles apart as well as upper ones would, for one comparison less.
        constexpr double kByLower = 0.9999;
        const bool lower = side_ == Side::lower && t <= kByLower;
        const double target = lower || side_ == Side::upper ? t : 1 - t;
        const double place = (t - begin_) * per_unit_;
        // NaN, where absurd parameters leave no percentiles or none apart from each other.
        if (!(place >= 0 && place < static_cast<double>(guide_.size()))) return walk(t);
        const auto tail = [&](std::size_t i) { return lower ? tails_[i].lower : tails_[i].upper; };
        const auto short_of = [&](std::size_t i) { return lower ? tail(i) < target : tail(i) > target; };
        std::size_t i = guide_[static_cast<std::size_t>(place)];
        while (i + 1 < tails_.size() && short_of(i)) ++i;
        if (short_of(i)) return walk(t);
        const double margin = 1e-11 * target * (1 - target);  // of the smaller tail, without a branch
        const bool doubt =
            std::fabs(tail(i) - target) < margin || (i > 0 && std::fabs(tail(i - 1) - target) < margin);
        return doubt ? walk(t) : first_ + static_cast<double>(i);
    }

  private:
    InversionTable(const D& d, Side side, double begin, bool least)
        : d_(d), side_(side), least_(least), begin_(begin), first_(walk(begin)) {}

    void sum_tails(double last) {
        tails_.resize(static_cast<std::size_t>(last - first_) + 1);
        std::vector<double> mass(tails_.size());
        if constexpr (requires { d_.masses(first_, std::span(mass)); })
            d_.masses(first_, mass);
        else
            recur(mass);
        // Each tail is summed inwards from its own end: sums of positive terms that lose nothing.
        tails_.front().lower = d_.cumulative(first_);
        for (std::size_t i = 1; i < tails_.size(); ++i) tails_[i].lower = tails_[i - 1].lower + mass[i];
        tails_.back().upper = d_.survival(last);
        for (std::size_t i = tails_.size() - 1; i > 0; --i) tails_[i - 1].upper = tails_[i].upper + mass[i];
    }
    void make_guide(double end, std::size_t count) {
        // Where there are many percentiles a finer guide saves comparisons, whose outcome is hard to predict.
        guide_.resize(std::bit_ceil(std::max(tails_.size(), std::min(kFineness * tails_.size(), count))));
        per_unit_ = (static_cast<double>(guide_.size()) - 0.5) / (end - begin_);
        std::size_t i = 0;
        for (std::size_t g = 0; g < guide_.size(); ++g) {
            const double t = begin_ + static_cast<double>(g) / per_unit_;
            const auto short_of = [&](std::size_t j) {
                return side_ == Side::lower ? tails_[j].lower < t : tails_[j].upper > t;
            };
            while (i + 1 < tails_.size() && short_of(i)) ++i;
            guide_[g] = static_cast<std::uint32_t>(i > 0 ? i - 1 : 0);  // one back: the guide rounds, too
        }
    }

    double walk(double t) const {
        return side_ == Side::lower ? InversionWalk<D>(d_, t, least_)()
                                    : InversionWalk<D>(d_, 1 - t, t, false, least_)();
    }

    void recur(std::span<double> mass) const {
        for (std::size_t i = 0; i < mass.size(); ++i) {
            const bool anchor = i % kAnchor == 0;
            const double k = first_ + static_cast<double>(i);
            mass[i] = anchor ? std::exp(d_.log_density(k)) : mass[i - 1] * d_.mass_ratio(k - 1);
        }
    }

    /// Masses by their recurrence from exact ones in these intervals.
    static constexpr std::size_t kAnchor = 32;

    const D& d_;
    Side side_;
    bool least_;
    double begin_, first_, per_unit_ = 0;
    std::vector<Tails> tails_;
    std::vector<std::uint32_t> guide_;
};

/// The base of a family on consecutive integers: its quantiles, one and many.
template <class D>
struct OnIntegers {
    static constexpr bool kDiscrete = true;
    static constexpr bool kIntegers = true;
    static constexpr Tie kTie = Tie::next, kTieFromAbove = Tie::stay;
    /// Steps of the walk, after those of Newton.
    static constexpr int kWalk = 32;

    double quantile(double p) const { return InversionWalk<D>(self(), p)(); }
    double quantile_upper(double q) const { return InversionWalk<D>(self(), 1 - q, q, false)(); }

    void quantiles(std::span<double> p) const { invert(Side::lower, p); }
    /// quantile_upper() of each element, in place.
    void quantiles_upper(std::span<double> q) const { invert(Side::upper, q); }

  private:
    void invert(Side side, std::span<double> tails) const {
        constexpr std::size_t kWorthATable = 300;
        const bool lower = side == Side::lower;
        if (tails.size() >= kWorthATable) {
            const auto [least, most] = std::ranges::minmax(tails);
            const double begin = lower ? least : most, end = lower ? most : least;
            if (const auto table = InversionTable<D>::make(self(), side, begin, end, tails.size())) {
                for (double& t : tails) t = (*table)(t);
                return;
            }
        }
        for (double& t : tails) t = lower ? quantile(t) : quantile_upper(t);
    }
    const D& self() const { return static_cast<const D&>(*this); }
};

}  // namespace pral
