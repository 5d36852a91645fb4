// Arrays of quantiles by polynomials in the tail, some twenty times faster than one by one.
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

/// A distribution whose quantiles have series of their own.
template <class D>
concept HasDensitySlope = requires(const D& d) {
    { d.log_density_slope() } -> std::same_as<LogDensitySlope>;
};

/// Quantiles by polynomials in the tail probability v, one for each part of an octave.
///
/// With a log_density_slope(), Taylor's series around the centre of the bin, from one exact quantile and the density there:
/// the quantile x obeys x' = +-1/f(x), hence x'' = -(f'/f) x'^2, a recurrence for the coefficients. They are computed when
/// the bin is first asked for. Other distributions are interpolated at Chebyshev's points, once the bin has been asked for
/// as often as that takes quantiles. Where the polynomial does not reach full precision (powers of v above some 15: small
/// shapes), or cancels, the table has no answer.
///
/// `Place` maps the values of `Standard` to those of the family.
template <class Standard, class Place>
class QuantileTable {
  public:
    /// Results of `place` smaller than `cancels_below` are left to the family, since they would lose digits;
    /// `mirrored` when place is falling.
    QuantileTable(const Standard& standard, const Place& place, double cancels_below = 0,
                  bool mirrored = false)
        : standard_(standard), place_(place), cancels_below_(cancels_below), mirrored_(mirrored) {}

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
        if (bin.requests <= kPatience && ++bin.requests > kPatience)
            build(bin, upper, std::ldexp(1.0, -1 - static_cast<int>(octave)), index);
        const double h = (tail - bin.centre) * bin.per_unit, h2 = h * h;
        const auto& c = bin.coefficients;
        double even = c[kDegree], odd = c[kDegree - 1];
        for (std::size_t k = kDegree - 2; k > 0; k -= 2) {
            even = c[k] + h2 * even;
            odd = c[k - 1] + h2 * odd;
        }
        const double y = (c[0] + h2 * even) + h * odd;
        if (!(std::fabs(y) >= bin.smallest)) return numerics::kNaN;
        const double x = place_(y);
        return std::fabs(x) >= cancels_below_ ? x : numerics::kNaN;
    }

  private:
    static constexpr bool kTaylor = HasDensitySlope<Standard>;
    static constexpr std::size_t kDegree = kTaylor ? 8 : 12;
    static constexpr int kBinBits = kTaylor ? 5 : 2, kBins = 1 << kBinBits;
    static constexpr int kPatience = kTaylor ? 0 : kDegree + 1;
    static constexpr std::uint64_t kOctaves = 64, kFirstExponent = 1022;
    using Series = std::array<double, kDegree + 1>;

    struct Bin {
        int requests = 0;
        double centre = 0, per_unit = 0;
        double smallest =
            numerics::kNaN;  // below it the polynomial cancels or is not precise; NaN: it is not used
        Series coefficients = {};
    };
    using Octave = std::array<Bin, kBins>;

    double quantile(bool upper, double tail) const {
        return upper ? standard_.quantile_upper(tail) : standard_.quantile(tail);
    }

    void build(Bin& bin, bool upper, double octave, std::size_t index) const {
        bin.centre = octave * (1 + (index + 0.5) / kBins);
        const double left_out = kTaylor ? expand(bin, upper) : interpolate(bin, upper, octave * 0.5 / kBins);
        const double x = std::fabs(bin.coefficients[0]);
        // Squares of x and of its slope take part. Where they or higher coefficients leave the range of a double, so does
        // what is left out.
        if (x > 1e-140 && x < 1e140 && left_out <= x) bin.smallest = std::max(x / 128, left_out);
    }

    /// The Taylor series in (tail - centre)/centre, and the least value whose relative error is small enough.
    double expand(Bin& bin, bool upper) const requires kTaylor {
        constexpr double kReach = 1.0 / 65;   // largest |h| in a bin
        constexpr double kTolerance = 2e-15;  // relative
        bin.per_unit = 1 / bin.centre;
        const double x = quantile(upper, bin.centre);
        const double slope = bin.centre * std::exp(-standard_.log_density(x));
        const Series& c = bin.coefficients = series(x, upper ? -slope : slope);
        return (std::fabs(c[7]) * kReach + std::fabs(c[8])) * std::pow(kReach, 8) * 2 * kReach / kTolerance;
    }
    double expand(Bin&, bool) const { return HUGE_VAL; }

    /// The polynomial in (tail - centre)/half_width through the quantiles at Chebyshev's points, likewise.
    double interpolate(Bin& bin, bool upper, double half_width) const {
        constexpr double kTolerance = 3e-14;  // the quantiles themselves may be as good as that
        constexpr std::size_t n = kDegree + 1;
        bin.per_unit = 1 / half_width;
        Series chebyshev = {}, before = {}, polynomial = {1};
        for (std::size_t k = 0; k < n; ++k) {
            const double angle = numerics::kPi * (k + 0.5) / n;
            const double x = quantile(upper, bin.centre + half_width * std::cos(angle));
            for (std::size_t j = 0; j < n; ++j)
                chebyshev[j] += x * std::cos(j * angle) * (j == 0 ? 1.0 : 2.0) / n;
        }
        // T_(j+1) = 2 h T_j - T_(j-1)
        for (std::size_t j = 0; j < n; ++j) {
            Series next = {};
            for (std::size_t k = 0; k < n; ++k) {
                bin.coefficients[k] += chebyshev[j] * polynomial[k];
                next[k] = (k > 0 ? polynomial[k - 1] : 0) * (j == 0 ? 1 : 2) - before[k];
            }
            before = polynomial;
            polynomial = next;
        }
        return (std::fabs(chebyshev[n - 2]) + std::fabs(chebyshev[n - 1])) / kTolerance;
    }

    /// The series in h of the quantile at tail = centre (1 + h), from its first two coefficients x and x'.
    Series series(double x, double slope) const requires kTaylor {
        const LogDensitySlope log_slope = standard_.log_density_slope();
        Series c = {x, slope}, rate = {slope}, squares = {}, rate_squares = {}, above = {}, below = {};
        for (std::size_t k = 0; k + 2 <= kDegree; ++k) {
            squares[k] = product(c, c, k);
            rate_squares[k] = product(rate, rate, k);
            const auto polynomial = [&](const std::array<double, 3>& p) {
                return (k == 0 ? p[0] : 0) + p[1] * c[k] + p[2] * squares[k];
            };
            above[k] = polynomial(log_slope.numerator);
            below[k] = polynomial(log_slope.denominator);
            double sum = product(above, rate_squares, k);
            for (std::size_t j = 1; j <= k; ++j)
                sum += below[j] * static_cast<double>(k - j + 1) * rate[k - j + 1];
            rate[k + 1] = -sum / (static_cast<double>(k + 1) * below[0]);
            c[k + 2] = rate[k + 1] / static_cast<double>(k + 2);
        }
        return c;
    }
    /// Coefficient k of the product of two series.
    static double product(const Series& a, const Series& b, std::size_t k) {
        double sum = 0;
        for (std::size_t i = 0; i <= k; ++i) sum += a[i] * b[k - i];
        return sum;
    }

    Standard standard_;
    Place place_;
    double cancels_below_;
    bool mirrored_;
    std::array<std::unique_ptr<Octave>, 2 * kOctaves> octaves_ = {};
};

/// y -> origin + scale y.
struct LinearPlace {
    double origin, scale;
    double operator()(double y) const { return origin + scale * y; }
    /// Where the sum has lost 4 bits or more.
    double cancels_below() const { return std::fabs(origin) / 16; }
};

}  // namespace pral
