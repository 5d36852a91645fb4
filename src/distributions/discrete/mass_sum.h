// Tails of families on the integers that have no closed form: sums of their masses, of any length.
#pragma once

#include <algorithm>
#include <cmath>

#include "distributions/discrete/discrete.h"
#include "numerics/falling_sums.h"
#include "numerics/gauss_legendre.h"

namespace pral {

/// The sum of the masses f(k) from one integer towards another, both included. The first hundreds of terms follow from one
/// another by their ratio; when the rest still counts, it is taken by the Euler-Maclaurin formula, with its derivatives as
/// central differences and its integral in panels of the logarithm of the distance from the singularities of f. So a sum
/// over 10^15 integers takes some hundred values of f.
///
/// Needs of the family: support(), log_density(k) at real k, smooth between the ends of the support, and mass_ratio(k). A
/// family whose masses fall as k^(-a - 1), too slowly for panels, has tail_exponent() = a >= 0 and tail_scale(), beyond
/// which powers of k alone count.
template <class D>
class MassSum {
  public:
    MassSum(const D& d, double from, double to)
        : d_(d),
          to_(to),
          step_(from <= to ? 1 : -1),
          k_(from),
          singular_(end(-step_)),
          ahead_(end(step_)),
          offset_(std::clamp(d.log_density(from), lowest_offset(from, to), 0.0)) {}

    double operator()() {
        add_all();
        return offset_ < -650 ? std::exp(std::log(sum_) + offset_) : sum_ * std::exp(offset_);
    }

  private:
    /// Sums what counts.
    void add_all() {
        const bool short_sum = left() <= kShort;
        if (countable()) {
            if (!recur(short_sum ? kShort : kFirst)) return;
            sum_ += difference_terms();
        }
        double length = 0.5;
        for (int panel = 0; panel < kMaxPanels; ++panel) {
            if (left() <= kShort) {
                if (!countable()) {
                    sum_ += left() * mass(k_);
                    return;
                }
                sum_ -= difference_terms();
                recur(kShort);
                return;
            }
            if (!integrate(length)) return;
        }
    }

    /// Whether doubles still tell an integer from the next; if not, the sum is an integral to rounding.
    bool countable() const { return std::fabs(k_) < 0x1p53; }
    double left() const { return std::fabs(to_ - k_) + 1; }
    double end(double direction) const {
        const auto [lower, upper] = d_.support();
        return direction > 0 ? upper : lower;
    }
    /// Masses of a far tail would be denormal; they are all told in units of e^offset. A tail that falls as a power of k can
    /// count where its masses are below any double; where the sum leads back to larger ones they must not overflow.
    static double lowest_offset(double from, double to) {
        return to > from ? -650 - std::log(std::fabs(from) + 1) : -650;
    }
    double mass(double k) const { return std::exp(d_.log_density(k) - offset_); }

    /// Adds at most `terms` terms; whether there are more that count.
    bool recur(int terms) {
        double term = mass(k_);
        for (int i = 0; i < terms; ++i) {
            sum_ += term;
            if (k_ == to_) return false;
            const double ratio = step_ > 0 ? d_.mass_ratio(k_) : 1 / d_.mass_ratio(k_ - 1);
            k_ += step_;
            term = term > kDenormalNear ? term * ratio : mass(k_);
            if (ratio < 1 && term <= kNegligible * sum_ * (1 - ratio)) return false;
        }
        return true;
    }

    double difference_terms() const {
        return numerics::sum_less_integral([&](int n) { return mass(k_ + step_ * n); });
    }

    /// Adds the integral over the next panel, in the logarithm of the distance from the nearer end of the support, where f
    /// is singular; whether more panels count. `length` in that logarithm follows from the panel before.
    bool integrate(double& length) {
        // No nearer to an end than doubles can tell.
        const double nearest = std::max(16.0, std::fabs(k_) * 0x1p-46), edge = k_ - 0.5 * step_;
        const double behind = std::max(std::fabs(edge - singular_), nearest),
                     ahead = std::max(std::fabs(ahead_ - k_) + 1, nearest);
        const bool leaving = behind <= ahead;
        const double distance = leaving ? behind : ahead, growth = leaving ? 1 : -1;
        const double log_distance = std::log(distance),
                     log_other = numerics::log1p_fn((leaving ? ahead : behind) / distance);
        length = leaving ? std::min({length, longest_panel(log_distance), log_distance, 0.5 * log_other})
                         : std::min({length, longest_panel(log_distance), 0.5 * log_distance, log_other});
        const auto moved = [&](double t) { return growth * distance * numerics::expm1_fn(growth * t); };
        const auto log_at = [&](double t) {
            const double k =
                leaving ? edge + step_ * moved(t) : ahead_ + step_ * (0.5 - distance * std::exp(-t));
            return d_.log_density(k) - offset_ + growth * t;
        };
        const double at_edge = log_at(0);
        double steps = 0, middle = 0, end = 0;
        bool calm = false;
        for (int halving = 0; halving < kMaxHalvings; ++halving) {
            steps = std::min(std::floor(moved(length)), left());
            length = leaving || steps < 0.5 * distance
                         ? growth * numerics::log1p_fn(growth * steps / distance)
                         : std::log(distance / (distance - steps));
            middle = log_at(0.5 * length);
            end = log_at(length);
            const double variation = std::max({at_edge, middle, end}) - std::min({at_edge, middle, end});
            const bool monotone = (at_edge <= middle) == (middle <= end);
            const double allowed = monotone ? kMonotoneVariation : kVariation;
            calm = variation < 0.5 * allowed;
            if (!(variation > allowed) || steps <= kShortestPanel) break;
            length /= 2;
        }
        if (k_ + step_ * steps == k_) return false;  // beyond 2^53: integers that doubles cannot tell apart
        sum_ += distance * numerics::integrate(length, 1, [&](double t) { return std::exp(log_at(t)); });
        const bool ended = steps == left();
        k_ += step_ * steps;
        if (ended) {
            if (countable()) sum_ -= difference_terms();
            return false;
        }
        const double mass_left = std::exp(end - growth * length) * (steps - moved(0.5 * length)),
                     decline = middle - end + 0.5 * growth * length;
        if (decline > 0 && mass_left <= kNegligible * sum_ * decline) return false;
        if constexpr (requires { d_.tail_scale(); }) {
            const double next_edge = k_ - 0.5 * step_;
            if (step_ > 0 && next_edge > 0x1p54 * d_.tail_scale()) {
                const double a = d_.tail_exponent(), log_rest = std::log(left() / next_edge + 1);
                const double finite = a > 0 ? -numerics::expm1_fn(-a * log_rest) / a : log_rest;
                const double powers = a > 0 && to_ == numerics::kInfinity ? 1 / a : finite;
                sum_ += std::exp(end - growth * length) * (next_edge * powers);
                return false;
            }
        }
        if (calm) length *= 2;
        return true;
    }

    /// Panels over a factor of e^6 are integrated to rounding, since singularities at other distances are i pi off; so are
    /// longer ones where those are far away in the logarithm as well.
    double longest_panel(double log_distance) const {
        constexpr double kNearSingularities = 6, kLongest = 30;
        if constexpr (requires { d_.tail_scale(); })
            return std::clamp(0.5 * (log_distance - std::log(d_.tail_scale())), kNearSingularities, kLongest);
        else
            return kNearSingularities;
    }

    static constexpr int kFirst = 512, kShort = 2048, kMaxPanels = 60, kMaxHalvings = 60;
    /// Panels in which f times the distance varies by e^5 around its mode, or by e^10 on one side of it, are integrated to
    /// rounding by 20 points. Shorter ones than 32 steps are not needed: the sum would have ended.
    static constexpr double kVariation = 5, kMonotoneVariation = 10, kShortestPanel = 32;
    static constexpr double kNegligible = 1e-17, kDenormalNear = 1e-280;

    const D& d_;
    double to_, step_, k_, singular_, ahead_, offset_, sum_ = 0;
};

template <class D>
double sum_masses(const D& d, double from, double to) {
    return std::min(MassSum<D>(d, from, to)(), 1.0);
}

/// The base of a family whose tails are sums of masses: on either side of the pivot(), somewhere in the middle, the sum
/// that is likely to be the smaller one, and the other as its complement where that keeps the digits. up_to and above may
/// be told better by the family.
template <class D>
struct SummedTails : OnIntegers<D> {
    double cumulative(double k) const {
        if (k >= self().support().upper) return 1;
        if (k >= self().pivot()) {
            const double upper = self().above(k);
            if (upper <= kComplement) return 1 - upper;
        }
        return self().up_to(k);
    }
    double survival(double k) const {
        if (k >= self().support().upper) return 0;
        if (k < self().pivot()) {
            const double lower = self().up_to(k);
            if (lower <= kComplement) return 1 - lower;
        }
        return self().above(k);
    }

    double up_to(double k) const { return sum_masses(self(), k, self().support().lower); }
    double above(double k) const { return sum_masses(self(), k + 1, self().support().upper); }

  private:
    static constexpr double kComplement = 0.75;
    const D& self() const { return static_cast<const D&>(*this); }
};

}  // namespace pral
