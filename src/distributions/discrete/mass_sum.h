// Tails of families on the integers that have no closed form: sums of their masses, of any length.
#pragma once

#include <algorithm>
#include <cmath>

#include "distributions/discrete/discrete.h"
#include "numerics/gauss_legendre.h"

namespace pral {

/// The sum of the masses f(k) from one integer towards another, both included. The first hundreds of terms follow from one
/// another by their ratio; when the rest still counts, it is taken by the Euler-Maclaurin formula, with its derivatives as
/// central differences and its integral in panels that grow with the distance from the singularities of f. So a sum
/// over 10^15 integers takes some thousand values of f.
///
/// Needs of the family: support(), log_density(k) at real k, smooth between the ends of the support, and mass_ratio(k). A
/// family whose masses fall as k^(-a - 1), too slowly for panels, has tail_exponent() = a and tail_scale(), beyond which
/// powers of k alone count.
template <class D>
class MassSum {
  public:
    MassSum(const D& d, double from, double to)
        : d_(d), to_(to), step_(from <= to ? 1 : -1), k_(from), singular_(singularity_behind()) {}

    double operator()() {
        const bool short_sum = left() <= kShort;
        if (!recur(short_sum ? kShort : kFirst)) return sum_;
        sum_ += difference_terms();
        double length = kFirst;
        for (int panel = 0; panel < kMaxPanels; ++panel) {
            if (left() <= kShort) {
                sum_ -= difference_terms();
                recur(kShort);
                return sum_;
            }
            if (!integrate(length)) return sum_;
        }
        return sum_;
    }

  private:
    double left() const { return std::fabs(to_ - k_) + 1; }
    double singularity_behind() const {
        const auto [lower, upper] = d_.support();
        return step_ > 0 ? lower : upper;
    }
    double mass(double k) const { return std::exp(d_.log_density(k)); }

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

    /// The sum from k on less the integral from half a step before k on: [delta/24 - 17/5760 delta^3 + ...] f there.
    double difference_terms() const {
        double v[8];
        for (int i = 0; i < 8; ++i) v[i] = mass(k_ + step_ * (i - 4));
        const double d1 = v[4] - v[3], d3 = v[5] - 3 * v[4] + 3 * v[3] - v[2],
                     d5 = v[6] - 5 * v[5] + 10 * v[4] - 10 * v[3] + 5 * v[2] - v[1],
                     d7 = v[7] - 7 * v[6] + 21 * v[5] - 35 * v[4] + 35 * v[3] - 21 * v[2] + 7 * v[1] - v[0];
        return d1 / 24 - d3 * (17.0 / 5760) + d5 * (367.0 / 967680) - d7 * (27859.0 / 464486400);
    }

    /// Adds the integral over the next panel, whose length follows the one before; whether more of them count.
    bool integrate(double& length) {
        const double edge = k_ - 0.5 * step_;
        length = std::min({length, left() / 2, std::fabs(edge - singular_)});
        const double at_edge = d_.log_density(edge);
        double middle, end, variation;
        for (;;) {
            length = std::floor(length);
            middle = d_.log_density(edge + 0.5 * step_ * length);
            end = d_.log_density(edge + step_ * length);
            variation = std::max({at_edge, middle, end}) - std::min({at_edge, middle, end});
            if (!(variation > kVariation) || length <= kShortestPanel) break;
            length /= 2;
        }
        const double half = 0.5 * length;
        sum_ += numerics::integrate(length, 1, [&](double t) { return mass(edge + step_ * t); });
        k_ += step_ * length;
        const double next_edge = k_ - 0.5 * step_, decline = (middle - end) / half;
        if (decline > 0 && std::exp(end) <= kNegligible * sum_ * decline) return false;
        if constexpr (requires { d_.tail_scale(); }) {
            if (step_ > 0 && next_edge > 0x1p54 * d_.tail_scale()) {
                sum_ += std::exp(end) * (next_edge / d_.tail_exponent());
                return false;
            }
        }
        if (variation < 0.5 * kVariation) length *= 2;
        return true;
    }

    static constexpr int kFirst = 512, kShort = 2048, kMaxPanels = 2000;
    /// Panels in which f varies by e^3 are integrated to rounding, whatever its curvature; shorter ones than this are not
    /// needed, since the sum would have ended.
    static constexpr double kVariation = 3, kShortestPanel = 32;
    static constexpr double kNegligible = 1e-17, kDenormalNear = 1e-280;

    const D& d_;
    double to_, step_, k_, singular_, sum_ = 0;
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
