// Drawing without replacement from an urn: the hypergeometric distribution, the draws until a number of successes, and what
// a sample tells about the urn it came from.
#pragma once

#include "distributions/discrete/mass_sum.h"

namespace pral {

/// ln of C(D, k) C(M - D, n - k)/C(M, n); real numbers, all upper ones at least as large as the lower ones, n and k >= 0. A
/// few draws out of more than 2^53 items are taken as independent.
double log_hypergeometric(double n, double D, double M, double k);

/// Integers that count items: 0, 1, ..., all finite ones.
inline bool is_count(double v) { return v >= 0 && v - std::floor(v) == 0; }

/// The hypergeometric distribution for computing. By symmetry (exchanging marked and unmarked, drawn and left, drawn and
/// marked) it works with n <= D <= M/2, whose support begins at 0. As long as C(M, n) n is below 2^53 the tails are ratios of
/// exact integers, correctly rounded.
class Hypergeometric {
  public:
    /// Integers 0 <= n, D <= M.
    Hypergeometric(double n, double D, double M);

    double lower(double k) const {
        return reversed_ ? urn_.survival(inner(k) - 1) : urn_.cumulative(inner(k));
    }
    double upper(double k) const {
        return reversed_ ? urn_.cumulative(inner(k) - 1) : urn_.survival(inner(k));
    }
    double log_density(double k) const { return urn_.log_density(inner(k)); }
    bool counts_exactly() const { return urn_.count_of_none > 0; }

  private:
    /// The urn in its reduced form.
    struct Urn : SummedTails<Urn> {
        double n, D, M;
        double count_of_none;  // C(M - D, n) where all counts are exact, else 0
        double count_of_all;   // C(M, n)

        Support support() const { return {0, n}; }
        double pivot() const { return (n + 1) * ((D + 1) / (M + 2)); }
        double cumulative(double k) const;
        double survival(double k) const;
        double log_density(double k) const {
            return k >= 0 && k <= n ? log_hypergeometric(n, D, M, k) : -HUGE_VAL;
        }
        double mass_ratio(double k) const { return (D - k) / (k + 1) * ((n - k) / (M - D - n + k + 1)); }
        /// The number of samples with at most k marked items.
        double count_up_to(double k) const;
        /// F(k) = 1/2 by symmetry.
        bool balanced(double k) const {
            return (2 * D == M && 2 * k + 1 == n) || (2 * n == M && 2 * k + 1 == D);
        }
    };

    double inner(double k) const { return reversed_ ? offset_ - k : offset_ + k; }

    Urn urn_;
    bool reversed_ = false;
    double offset_ = 0;
};

/// Marked items among n drawn out of M of which D are marked; integers, 0 <= n, D <= M. n = 0, D = 0, n = M and D = M are
/// point masses. An exact hit stops the walk in both directions, so that one from above stays above it.
struct Hypergeo : OnIntegers<Hypergeo> {
    static constexpr Tie kTie = Tie::stay, kTieFromAbove = Tie::next;
    double n, D, M;

    Hypergeo(double n_, double D_, double M_) : n(n_), D(D_), M(M_), counts_(n_, D_, M_) {}
    Message check() const {
        if (!(n <= M)) return "Error: n must be <= M";
        if (!(D <= M)) return "Error: D must be <= M";
        if (!is_count(M)) return "Error: m must be a positive integer";
        if (!is_count(D)) return "Error: d must be a positive integer";
        if (!is_count(n)) return "Error: n must be a positive integer";
        return nullptr;
    }
    Support support() const { return {std::max(0.0, n - (M - D)), std::min(n, D)}; }
    std::optional<double> point_mass() const {
        if (D == M) return n;
        if (D == 0 || n == 0) return 0.0;
        return n == M ? std::optional(D) : std::nullopt;
    }

    std::optional<Moments> moments() const {
        if (M < 4) return std::nullopt;
        const double drawn = n / M, marked = D / M, of_drawn = drawn * ((M - n) / M),
                     of_marked = marked * ((M - D) / M);
        const double variance = M * of_drawn * (of_marked * (M / (M - 1)));
        const double kurtosis =
            ((M - 1) / (M - 2) *
                 ((1 + 1 / M - 6 * of_marked - 6 * of_drawn) / of_marked / (of_drawn * (M - 3))) +
             6 * ((5 * M - 6) / (M - 2) / (M - 3)));
        return Moments{n * marked, variance,
                       ((M - 2 * D) / M) * ((M - 2 * n) / (M - 2)) / std::sqrt(variance), kurtosis};
    }
    double mode() const {
        const auto [least, most] = support();
        return mode_before((n + 1) * ((D + 1) / (M + 2)), least, most);
    }
    double cumulative(double k) const { return counts_.lower(k); }
    double survival(double k) const { return counts_.upper(k); }
    double log_density(double k) const { return counts_.log_density(k); }
    double mass_ratio(double k) const { return (D - k) / (k + 1) * ((n - k) / (M - D - n + k + 1)); }
    double start(double p) const;

  private:
    Hypergeometric counts_;
};

/// Unmarked items drawn before the s-th marked one, out of M of which D are marked; integers 0 <= s <= D <= M. s = 0 and D = M
/// are point masses at 0. Up to x of them come before it unless the first s + x items hold fewer than s marked ones: the tails
/// are those of the hypergeometric distribution.
struct InvHypergeo : OnIntegers<InvHypergeo> {
    double s, D, M;

    InvHypergeo(double s_, double D_, double M_) : s(s_), D(D_), M(M_) {}
    Message check() const {
        if (!(s <= D)) return "Error: s must be less than D";
        if (!(D <= M)) return "Error: d must be less than M";
        if (!is_count(M)) return "Error: m must be a positive integer";
        if (!is_count(D)) return "Error: d must be a positive integer";
        if (!is_count(s)) return "Error: s must be a positive integer";
        return nullptr;
    }
    Support support() const { return {0, M - D}; }
    std::optional<double> point_mass() const { return s == 0 || D == M ? std::optional(0.0) : std::nullopt; }

    /// Beta-binomial: the part of the unmarked items before the s-th of D marks is a beta variable.
    std::optional<Moments> moments() const {
        const Moments all = beta_binomial_moments(M - D, s, D - s + 1);
        return std::isfinite(all.kurtosis) ? std::optional(all) : std::nullopt;
    }
    double mode() const { return beta_binomial_mode(M - D, s, D - s + 1); }
    double cumulative(double x) const { return Hypergeometric(s + x, D, M).upper(s - 1); }
    double survival(double x) const { return Hypergeometric(s + x, D, M).lower(s - 1); }
    double log_density(double x) const {
        return Hypergeometric(s + x, D, M).log_density(s) - numerics::log1p_fn(x / s);
    }
    double mass_ratio(double x) const { return (s + x) / (x + 1) * ((M - D - x) / (M - s - x)); }
    double start(double p) const;
};

/// Marked items in an urn of M of which a sample of n held s marked ones, every number of them being equally likely before:
/// s and the unmarked items before the (s + 1)-th marked one of n + 1 among M + 1. Integers 0 <= s <= n <= M; n = M is a
/// point mass at s.
struct HypergeoD : OnIntegers<HypergeoD> {
    static constexpr Tie kTie = Tie::stay;
    double s, n, M;

    HypergeoD(double s_, double n_, double M_) : s(s_), n(n_), M(M_), beyond_(s_ + 1, n_ + 1, M_ + 1) {}
    Message check() const {
        if (!(s >= 0)) return "Error: s must be >= 0";
        if (!(n >= s)) return "Error: n must be >= S";
        if (!(M >= n)) return "Error: M must be >= N";
        if (!is_count(M)) return "Error: M must be integer";
        if (!is_count(n)) return "Error: n must be integer";
        if (!is_count(s)) return "Error: s must be integer";
        return nullptr;
    }
    Support support() const { return {s, s + (M - n)}; }
    std::optional<double> point_mass() const { return n == M ? std::optional(s) : std::nullopt; }

    std::optional<Moments> moments() const {
        const auto of_unmarked = beyond_.moments();
        return of_unmarked ? std::optional(linear(*of_unmarked, 1, s)) : std::nullopt;
    }
    double mode() const { return s + beyond_.mode(); }
    double cumulative(double k) const { return beyond_.cumulative(k - s); }
    double survival(double k) const { return beyond_.survival(k - s); }
    double log_density(double k) const { return beyond_.log_density(k - s); }
    double mass_ratio(double k) const { return beyond_.mass_ratio(k - s); }
    double start(double p) const { return s + beyond_.start(p); }

  private:
    InvHypergeo beyond_;
};

/// Items in an urn with D marked ones, of which a sample of n held s marked ones, every number of items up to Max being
/// equally likely before: f(M) ~ C(M - D, n - s)/C(M, n). Integers s >= 1, n, D >= s, Max >= D + n - s, where equality is a
/// point mass.
struct HypergeoM : SummedTails<HypergeoM> {
    static constexpr Tie kTie = Tie::stay;
    double s, n, D, Max;

    HypergeoM(double s_, double n_, double D_, double Max_);
    Message check() const {
        if (!(Max >= D + n - s)) return "Error: Max must be >= D+n-s";
        if (!(D >= s)) return "Error: D must be >= s";
        if (!(n >= s)) return "Error: n must be >= s";
        if (!(s >= 1)) return "Error: s must be >= 1";
        if (!is_count(Max)) return "Error: max must be integer";
        if (!is_count(D)) return "Error: M must be integer";
        if (!is_count(n)) return "Error: n must be integer";
        if (!is_count(s)) return "Error: s must be integer";
        return nullptr;
    }
    Support support() const { return {D + n - s, Max}; }
    std::optional<double> point_mass() const { return Max == D + n - s ? std::optional(Max) : std::nullopt; }

    /// The mode: the ratio of masses is (M' - D)(M' - n)/(M'(M' - D - n + s)), M' = M + 1, and so 1 at M' = D n/s.
    double pivot() const { return std::clamp(std::floor(D * (n / s)), D + n - s, Max); }
    double mode() const { return mode_before(D * (n / s), D + n - s, Max); }
    double log_density(double M) const { return log_hypergeometric(n, D, M, s) - log_total_; }
    double mass_ratio(double M) const {
        return (M + 1 - D) / (M + 1 - D - (n - s)) * ((M + 1 - n) / (M + 1));
    }
    /// f(M) falls as M^-s.
    double tail_exponent() const { return s - 1; }
    double tail_scale() const { return (n + 1) * (D + 1); }
    double start(double p) const;

  private:
    double log_total_ = 0;
};

}  // namespace pral
