// Arrays of quantiles of the distributions of Pearson's system, some twenty times faster than one by one.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <memory>

#include "distributions/family.h"

namespace pral {

/// f'/f of a density f, which for Pearson's distributions and their near kin is the quotient of two polynomials
/// c[0] + c[1] x + c[2] x^2.
struct LogDensitySlope {
    std::array<double, 3> numerator, denominator;
};

/// Quantiles by Taylor series in the tail probability: each bin of 1/32 octave gets the series around its centre when it is
/// first asked for, from one exact quantile and the density there. The quantile x as a function of its tail v obeys
/// x' = +-1/f(x), hence x'' = -(f'/f) x'^2, a recurrence for the coefficients. Where the series does not reach full
/// precision (powers of v above some 15: small shapes), or cancels, the table has no answer.
///
/// `Standard` is a distribution with a log_density_slope(); `Place` maps its values to those of the family.
template <class Standard, class Place>
class QuantileTable {
  public:
    /// Results of `place` smaller than `cancels_below` are left to the family, since they would lose digits;
    /// `mirrored` when place is falling.
    QuantileTable(const Standard& standard, const Place& place, double cancels_below = 0,
                  bool mirrored = false)
        : standard_(standard),
          slope_(standard.log_density_slope()),
          place_(place),
          cancels_below_(cancels_below),
          mirrored_(mirrored) {}

    /// The value whose lower (upper) tail is `tail`, at most some 1/2; NaN where the family must be asked itself.
    double operator()(Side side, double tail) {
        const auto bits = std::bit_cast<std::uint64_t>(tail);
        const std::uint64_t octave = kFirstExponent - (bits >> 52);
        if (octave >= kOctaves) return numerics::kNaN;
        const bool upper = (side == Side::upper) != mirrored_;
        std::unique_ptr<Octave>& bins = octaves_[2 * octave + upper];
        if (bins == nullptr) bins = std::make_unique<Octave>();
        const std::size_t index = (bits >> (52 - kBinBits)) & (kBins - 1);
        Bin& bin = (*bins)[index];
        if (bin.centre == 0)
            build(bin, upper, std::ldexp(1 + (index + 0.5) / kBins, -1 - static_cast<int>(octave)));
        const double h = (tail - bin.centre) * bin.per_centre, h2 = h * h;
        const auto& c = bin.coefficients;
        const double even = c[0] + h2 * (c[2] + h2 * (c[4] + h2 * (c[6] + h2 * c[8])));
        const double odd = c[1] + h2 * (c[3] + h2 * (c[5] + h2 * c[7]));
        const double y = even + h * odd;
        if (!(std::fabs(y) >= bin.smallest)) return numerics::kNaN;
        const double x = place_(y);
        return std::fabs(x) >= cancels_below_ ? x : numerics::kNaN;
    }

  private:
    static constexpr std::size_t kDegree = 8;
    static constexpr int kBinBits = 5, kBins = 1 << kBinBits;
    static constexpr std::uint64_t kOctaves = 64, kFirstExponent = 1022;
    using Series = std::array<double, kDegree + 1>;

    struct Bin {
        double centre = 0, per_centre = 0;  // 0: not yet built
        double smallest = HUGE_VAL;         // below it the series cancels or has not converged
        Series coefficients = {};
    };
    using Octave = std::array<Bin, kBins>;

    /// Coefficient k of the product of two series.
    static double product(const Series& a, const Series& b, std::size_t k) {
        double sum = 0;
        for (std::size_t i = 0; i <= k; ++i) sum += a[i] * b[k - i];
        return sum;
    }

    /// The series in h of the quantile at tail = centre (1 + h), from its first two coefficients x and x'.
    Series series(double x, double slope) const {
        Series c = {x, slope}, rate = {slope}, squares = {}, rate_squares = {}, above = {}, below = {};
        for (std::size_t k = 0; k + 2 <= kDegree; ++k) {
            squares[k] = product(c, c, k);
            rate_squares[k] = product(rate, rate, k);
            const auto polynomial = [&](const std::array<double, 3>& p) {
                return (k == 0 ? p[0] : 0) + p[1] * c[k] + p[2] * squares[k];
            };
            above[k] = polynomial(slope_.numerator);
            below[k] = polynomial(slope_.denominator);
            double sum = product(above, rate_squares, k);
            for (std::size_t j = 1; j <= k; ++j)
                sum += below[j] * static_cast<double>(k - j + 1) * rate[k - j + 1];
            rate[k + 1] = -sum / (static_cast<double>(k + 1) * below[0]);
            c[k + 2] = rate[k + 1] / static_cast<double>(k + 2);
        }
        return c;
    }

    void build(Bin& bin, bool upper, double centre) const {
        constexpr double kReach = 1.0 / 65;   // largest |h| in a bin
        constexpr double kTolerance = 2e-15;  // relative
        bin.centre = centre;
        bin.per_centre = 1 / centre;
        const double x = upper ? standard_.quantile_upper(centre) : standard_.quantile(centre);
        const double slope = centre * std::exp(-standard_.log_density(x));
        bin.coefficients = series(x, upper ? -slope : slope);
        const auto& c = bin.coefficients;
        const double left_out =
            (std::fabs(c[7]) * kReach + std::fabs(c[8])) * std::pow(kReach, 8) * 2 * kReach;
        // Squares of x and of its slope take part.
        const bool in_range = std::fabs(x) > 1e-140 && std::fabs(x) < 1e140;
        if (in_range) bin.smallest = std::max(std::fabs(x) / 128, left_out / kTolerance);
    }

    Standard standard_;
    LogDensitySlope slope_;
    Place place_;
    double cancels_below_;
    bool mirrored_;
    std::array<std::unique_ptr<Octave>, 2 * kOctaves> octaves_ = {};
};

/// y -> origin + scale y.
struct LinearPlace {
    double origin, scale;
    double operator()(double y) const { return origin + scale * y; }
    /// Where the sum has lost 8 bits or more.
    double cancels_below() const { return std::fabs(origin) / 256; }
};

}  // namespace pral
