// Binomial tails that doubles hold exactly: a percentile can hit them, and then the last bit decides.
#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <optional>

namespace pral {

/// Trials whose probability p, 0 < p < 1, is a/2^m with integers a and m, as that of every double is (another p has no
/// exact sums). The probability of up to k successes among n is the integer sum of C(n, j) a^j b^(n - j) over j <= k,
/// b = 2^m - a, in units of 2^(-m n).
class DyadicTrials {
  public:
    explicit DyadicTrials(double p) {
        if (!(p > 0 && p < 1)) return;
        int exponent = 0;
        const auto bits = static_cast<std::uint64_t>(std::ldexp(std::frexp(p, &exponent), 53));
        const int zeros = std::countr_zero(bits);
        a_ = bits >> zeros;
        m_ = 53 - exponent - zeros;
        b_ = m_ <= 53 ? (std::uint64_t{1} << m_) - a_ : kLargest + 1;
    }

    /// P(up to k of n trials succeed), 0 <= k < n; none if the sum has more than 53 bits, or n is not an integer.
    std::optional<double> at_most(double n, double k) const { return sum(a_, b_, n, k); }
    /// P(more than k of them do).
    std::optional<double> more_than(double n, double k) const { return sum(b_, a_, n, n - k - 1); }

  private:
    std::optional<double> sum(std::uint64_t a, std::uint64_t b, double trials, double k) const {
        if (a == 0 || b == 0) return std::nullopt;
        if (a == b && 2 * k + 1 == trials) return 0.5;  // by symmetry
        const bool counts = trials == std::floor(trials) && k >= 0 && k < trials;
        if (!(counts && trials * m_ <= kLeastExponent)) return std::nullopt;
        const auto n = static_cast<std::uint64_t>(trials);
        std::uint64_t term = 1;
        for (std::uint64_t i = 0; i < n && b > 1; ++i) {
            if (term > kLargest / b) return std::nullopt;
            term *= b;
        }
        std::uint64_t total = term;
        for (std::uint64_t j = 0; static_cast<double>(j) < k && total <= kLargest; ++j) {
            term = term / b * (n - j) / (j + 1);
            if (term > kLargest / a) return std::nullopt;
            term *= a;
            total += term;
        }
        if (total > kLargest) return std::nullopt;
        return std::ldexp(static_cast<double>(total), -m_ * static_cast<int>(n));
    }

    static constexpr std::uint64_t kLargest = std::uint64_t{1} << 53;
    static constexpr double kLeastExponent = 1022;

    std::uint64_t a_ = 0, b_ = 0;
    int m_ = 0;
};

}  // namespace pral
