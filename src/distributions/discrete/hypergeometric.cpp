#include "distributions/discrete/hypergeometric.h"

#include "numerics/beta_quantile.h"
#include "numerics/beta_ratio.h"
#include "numerics/gamma_ratio.h"

namespace pral {

namespace {

/// Integers up to it are exact.
constexpr double kExact = 0x1p53;

/// Whether `less` draws, or marked items, are so few among all of them that they are as good as independent.
bool drawn_independently(double less, double more, double M) {
    return M > kExact && less * less < 1e-16 * more;
}

/// The same for tails, where many draws out of so many are taken so, too: their sums have no end.
bool tails_of_independent(double less, double more, double M) {
    return drawn_independently(less, more, M) || (M > kExact && less > 1e4);
}

/// ln of C(n, k) p^k (1 - p)^(n - k), real 0 <= k <= n, as the density of a beta distribution.
double log_binomial(double n, double k, double p, double q) {
    return numerics::log_beta_density(k + 1, n - k + 1, p, q) - numerics::log1p_fn(n);
}

/// C(n, k) for an integer k, or 0 when it does not fit with its factors.
double exact_binomial(double n, double k) {
    double c = 1;
    for (double i = 1; i <= k; ++i) {
        c *= n - k + i;
        if (!(c <= kExact)) return 0;
        c /= i;
    }
    return c;
}

}  // namespace

Hypergeometric::Hypergeometric(double n, double D, double M) {
    if (2 * D > M) {  // count the unmarked
        D = M - D;
        reversed_ = true;
        offset_ = n;
    }
    if (2 * n > M) {  // count those left
        n = M - n;
        offset_ = reversed_ ? D - offset_ : D;
        reversed_ = !reversed_;
    }
    urn_.n = std::min(n, D);
    urn_.D = std::max(n, D);
    urn_.M = M;
    // Every count is a divisor or a part of C(M, n), and its factors are at most n times as large.
    const double all = urn_.n < 53 ? exact_binomial(M, urn_.n) : 0;
    const bool fits = all * urn_.n <= kExact;
    urn_.count_of_all = fits ? all : 0;
    urn_.count_of_none = fits && all > 0 ? exact_binomial(M - urn_.D, urn_.n) : 0;
}

double log_hypergeometric(double n, double D, double M, double k) {
    const double less = std::min(n, D), more = std::max(n, D);
    if (drawn_independently(less, more, M)) return log_binomial(less, k, more / M, (M - more) / M);
    // Any p gives the masses; this one, between 0 and 1, makes all three binomial ones large.
    const double p = (n + 0.5) / (M + 1), q = (M - n + 0.5) / (M + 1);
    return log_binomial(D, k, p, q) + log_binomial(M - D, n - k, p, q) - log_binomial(M, n, p, q);
}

double Hypergeometric::Urn::count_up_to(double k) const {
    double marked = 1, unmarked = count_of_none, count = unmarked;
    for (double i = 0; i < k; ++i) {
        marked = marked * (D - i) / (i + 1);
        unmarked = unmarked * (n - i) / (M - D - n + i + 1);
        count += marked * unmarked;
    }
    return count;
}

double Hypergeometric::Urn::cumulative(double k) const {
    if (k < 0 || k >= n) return k >= n;
    if (count_of_none > 0) return count_up_to(k) / count_of_all;
    if (tails_of_independent(n, D, M)) return numerics::beta_upper(k + 1, n - k, D / M, 1 - D / M);
    return balanced(k) ? 0.5 : SummedTails::cumulative(k);
}

double Hypergeometric::Urn::survival(double k) const {
    if (k < 0 || k >= n) return k < 0;
    if (count_of_none > 0) return (count_of_all - count_up_to(k)) / count_of_all;
    if (tails_of_independent(n, D, M)) return numerics::beta_lower(k + 1, n - k, D / M, 1 - D / M);
    return balanced(k) ? 0.5 : SummedTails::survival(k);
}

double Hypergeo::start(double p) const {
    if (n <= 2) return std::floor(n * (D / M));
    const double alpha = (n - 2) * (D / (M - n)), beta = (M - D) * (n / (M - n));
    return std::floor(n * numerics::beta_lower_inverse(alpha, beta, p).x);
}

/// A gamma distribution with the same mean and variance.
double InvHypergeo::start(double p) const {
    const double mean = s * ((M - D) / (D + 1));
    const double dispersion = (M + 1) / (D + 1) * ((D - s + 1) / (D + 2));
    return std::floor(dispersion * numerics::gamma_lower_inverse(mean / dispersion, p));
}

HypergeoM::HypergeoM(double s_, double n_, double D_, double Max_) : s(s_), n(n_), D(D_), Max(Max_) {
    if (check() != nullptr || point_mass()) return;
    log_total_ = log_density(pivot());
    double total = MassSum<HypergeoM>(*this, pivot(), support().lower)();
    if (pivot() < Max) total += MassSum<HypergeoM>(*this, pivot() + 1, Max)();
    log_total_ += std::log(total);
}

/// For large populations n D/M is nearly gamma distributed with shape s - 1, above n D/Max (shape 0 is a limit).
double HypergeoM::start(double p) const {
    const double shape = std::max(s - 1, 1e-9), middle = 0.5 * (D + n - s);
    const double all = numerics::gamma_upper(shape, n * (D / Max));
    return std::floor(n * (D / numerics::gamma_upper_inverse(shape, p * all)) + middle);
}

}  // namespace pral
