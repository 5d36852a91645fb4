#include "distributions/discrete/delaporte.h"

#include <algorithm>

#include "numerics/extended_log.h"
#include "numerics/gauss_legendre.h"

namespace pral {

namespace {

constexpr double kNegligible = 1e-17;
/// A mass below it has lost digits, or all.
constexpr double kDenormalNear = 1e-280;

/// The sum over i = 0 .. k of P(J = k - i) e^log_other(i), where J is the Poisson part and log_other(i) the logarithm of a
/// mass or a tail of the Polya part, smooth but for i next to 0.
template <class Other>
class Convolution {
  public:
    Convolution(const Polya& polya, const Poisson& poisson, double k, Other log_other)
        : a_(polya), b_(poisson), k_(k), log_other_(log_other), edge_(std::min(k + 1, kSingular)) {}

    double sum() { return std::min(std::exp(log_sum()), 1.0); }
    double log_sum() {
        const bool is_long = edge_ <= k_;
        const Place peak = is_long ? largest_term() : Place{0, k_};
        log_unit_ =
            std::max({log_term(0, k_), log_term(edge_ - 1, k_ - (edge_ - 1)), log_term(peak.i, peak.j)});
        if (!(log_unit_ > kLogWithoutDigits)) return log_unit_;  // what the others add would not show
        if (is_long) peak.j < kFewCounts ? one_by_one(std::floor(peak.j)) : by_panels(peak);
        double i = edge_ - 1;
        while (i >= 0 && add(term(i, k_ - i))) --i;
        double first = 0;
        while (first < i && add(term(first, k_ - first))) ++first;
        return log_unit_ + std::log(sum_);
    }

  private:
    /// Holds i and j = k - i; only the smaller is exact.
    struct Place {
        double i, j;
    };
    double log_term(double i, double j) const {
        if (i > j) return b_.log_density(j) + log_other_(k_ - j);
        const auto [count, rest] = numerics::two_sum(k_, -i);
        const double slope = rest == 0 ? 0 : std::log(b_.lambda / count);
        return b_.log_density(count) + slope * rest + log_other_(i);
    }
    double term(double i, double j) const { return std::exp(log_term(i, j) - log_unit_); }
    /// Adds a term; true while such terms matter.
    bool add(double term) {
        sum_ += term;
        return term > kNegligible * sum_;
    }

    /// The length on which the product of both parts' masses bends.
    double width(Place at) const {
        const double s = a_.s;
        return 1 / std::sqrt(1 / (at.j + 1) + std::fabs(s - 1) / ((at.i + s) * (at.i + 1)));
    }

    /// From the edge on, to a fraction of the width, by bisection in ln(i/j). Where the Polya masses are singular at 0 the
    /// terms have no other maximum beyond sqrt(k).
    Place largest_term() const {
        const double first = a_.s < 1 ? std::max(edge_, std::sqrt(k_)) : edge_;
        double low = std::log(first / (k_ - first + 1)), high = std::log(2 * k_ + 1);
        for (int halvings = 0;; ++halvings) {
            const double x = 0.5 * low + 0.5 * high, odds = std::exp(x);
            const Place at = {k_ / (1 + 1 / odds), k_ / (1 + odds)};
            const double step = 0.05 * width(at);
            if (!((high - low) * (at.i / k_) * at.j > 2 * step) || halvings == kMostHalvings) return at;
            (log_term(at.i + step, std::max(at.j - step, 0.0)) > log_term(at.i, at.j) ? low : high) = x;
        }
    }

    /// For few Poisson counts: one by one, from j on in both directions.
    void one_by_one(double j) {
        const double last = std::min(k_ - edge_, j + kMostTerms);
        for (double up = j; up <= last && add(term(k_ - up, up));) ++up;
        for (double down = j - 1; down >= 0 && add(term(k_ - down, down));) --down;
    }

    /// The integral over unit intervals around the integers from the peak on in both directions, in panels that are resolved
    /// by the rule of 20 points; at the edge it becomes a sum.
    void by_panels(Place peak) {
        for (const double direction : {1.0, -1.0}) {
            Place at = peak;
            double left = direction > 0 ? at.j + 0.5 : at.i - (edge_ - 0.5), stretch = 1;
            for (int panel = 0; panel < kMostPanels && left > 0; ++panel) {
                const double length = std::min(panel_length(at, direction, stretch), left);
                const double part = numerics::integrate(
                    length, 1, [&](double t) { return term(at.i + direction * t, at.j - direction * t); });
                if (!add(part)) break;
                at = {at.i + direction * length, at.j - direction * length};
                left -= length;
            }
            if (left == 0 && direction < 0)
                sum_ += numerics::sum_less_integral([&](int n) { return term(edge_ + n, k_ - edge_ - n); });
        }
    }
    /// Two widths; more and more of them, but not of the Poisson part's, while a tail of the Polya part is as good as 1.
    double panel_length(Place at, double direction, double& stretch) const {
        constexpr double kConstant = 1e-14;
        for (;; stretch = std::max(1.0, 0.25 * stretch)) {
            const double smooth = 2 * std::min(stretch * width(at), std::sqrt(at.j + 1));
            const double length = std::min(smooth, 0.5 * (at.i + 1));
            const double change = std::fabs(log_other_(at.i + direction * length) - log_other_(at.i));
            if (change < kConstant) stretch *= 2;
            if (change < kConstant || !(stretch > 1)) return length;
        }
    }

    /// Next to 0 and for few Poisson counts the terms are not smooth enough for an integral.
    static constexpr double kSingular = 256, kFewCounts = 400;
    static constexpr double kLogWithoutDigits = -1e13;
    static constexpr int kMostTerms = 2048, kMostPanels = 400, kMostHalvings = 100;

    const Polya& a_;
    const Poisson& b_;
    double k_;
    Other log_other_;
    double edge_;
    double log_unit_ = 0, sum_ = 0;
};

}  // namespace

Delaporte::Delaporte(double alpha_, double beta_, double lambda_)
    : alpha(alpha_), beta(beta_), lambda(lambda_), polya_(alpha_, beta_), poisson_(lambda_) {
    const double mean = pivot(), variance = mean + alpha * beta * beta;
    if (mean > kRoundedMean) {
        limit_ = {alpha, beta, lambda};
    } else {
        limit_.scale = 0.5 * ((lambda + alpha * beta * (1 + beta) * (1 + 2 * beta)) / variance);
        limit_.shape = variance / limit_.scale / limit_.scale;
        limit_.origin = mean - variance / limit_.scale;
    }
    if (!(mean + 9.5 * std::sqrt(variance) + 40 * beta <= kFewSteps)) return;
    const numerics::DoubleDouble log_mass =
        numerics::multiply({-0.5 * alpha, 0}, numerics::extended_log(numerics::two_sum(1, beta)));
    const numerics::DoubleDouble log_unit = numerics::add({-0.5 * lambda, 0}, log_mass);
    few_ = log_unit.hi > -640;
    unit_ = numerics::scaled_exp(1, log_unit);
}

double Delaporte::Masses::next(const Delaporte& d) {
    h = d.polya_.q * (h + f);
    k += 1;
    return f = (d.lambda * f + d.alpha * h) / k;
}

Delaporte::Masses Delaporte::from_zero(double k) const {
    Masses at = {0, unit_, 0};
    while (at.k < k) at.next(*this);
    return at;
}

double Delaporte::up_to(double k) const {
    if (is_continuous()) return numerics::gamma_lower(limit_.shape, limit_.standardised(k));
    if (no_polya()) return poisson_.cumulative(k);
    if (no_poisson()) return polya_.cumulative(k);
    if (is_beyond_poisson(k)) return polya_.cumulative(k - lambda);
    if (!is_near(k))
        return Convolution(polya_, poisson_, k, [&](double i) { return polya_.log_cumulative(i); }).sum();
    Masses at = {0, unit_, 0};
    double sum = at.f;
    while (at.k < k) sum += at.next(*this);
    return unit_ * sum;
}

double Delaporte::above(double k) const {
    if (is_continuous()) return numerics::gamma_upper(limit_.shape, limit_.standardised(k));
    if (no_polya()) return poisson_.survival(k);
    if (no_poisson()) return polya_.survival(k);
    if (is_beyond_poisson(k)) return polya_.survival(k - lambda);
    if (!is_near(k)) {
        const auto log_survival = [&](double i) { return polya_.log_survival(i); };
        return std::min(poisson_.survival(k) + Convolution(polya_, poisson_, k, log_survival).sum(), 1.0);
    }
    Masses at = from_zero(k + 1);
    double sum = at.f;
    while (at.k < 4 * kFewSteps) {
        const double before = at.f;
        sum += at.next(*this);
        // The ratio of masses falls or, where the Polya masses are singular, rises to q.
        const double ratio = std::max(at.f / before, polya_.q);
        if (ratio < 1 && at.f <= kNegligible * sum * (1 - ratio)) break;
    }
    return unit_ * sum;
}

double Delaporte::log_density(double k) const {
    if (is_continuous() && k < limit_.origin) return -HUGE_VAL;
    if (is_continuous())
        return numerics::log_gamma_density(limit_.shape, limit_.standardised(k)) - std::log(limit_.scale);
    if (no_polya()) return poisson_.log_density(k);
    if (no_poisson()) return polya_.log_density(k);
    if (is_beyond_poisson(k)) return polya_.log_density(k - lambda);
    if (is_near(k)) {
        const double mass = from_zero(k).f;
        if (mass > kDenormalNear) return std::log(mass) + std::log(unit_);
    }
    return Convolution(polya_, poisson_, k, [&](double i) { return polya_.log_density(i); }).log_sum();
}

/// Below the range of doubles by the same convolution.
double Delaporte::log_survival(double k) const {
    constexpr double kWithDigits = 1e-280;
    if (is_continuous()) return numerics::log_gamma_upper(limit_.shape, limit_.standardised(k));
    if (no_polya()) return poisson_.log_survival(k);
    if (no_poisson()) return polya_.log_survival(k);
    if (is_beyond_poisson(k)) return polya_.log_survival(k - lambda);
    const double upper = survival(k);
    if (upper > 0.5) return numerics::log1p_fn(-cumulative(k));
    if (upper > kWithDigits) return std::log(upper);
    const auto log_survival_of_polya = [&](double i) { return polya_.log_survival(i); };
    const double both = Convolution(polya_, poisson_, k, log_survival_of_polya).log_sum(),
                 poisson = poisson_.log_survival(k);
    return std::max(both, poisson) + numerics::log1p_fn(std::exp(-std::fabs(both - poisson)));
}

double Delaporte::mass_ratio(double k) const {
    if (is_near(k)) {
        Masses at = from_zero(k);
        const double before = at.f;
        if (at.next(*this) > kDenormalNear) return at.f / before;
    }
    return std::exp(log_density(k + 1) - log_density(k));
}

/// h(k) is beta times the mass at k - 1 with alpha + 1 in place of alpha. Far from 0 the unit, as two factors, is the first
/// mass, which may be below all doubles; it grows as the masses do.
void Delaporte::masses(double first, std::span<double> out) const {
    constexpr double kLarge = 0x1p960, kLogLarge = 960 * numerics::kLn2;
    Masses at = {first, 1, 0};
    double log_unit = 0, unit = unit_, other = 1;
    if (is_near(first)) {
        at = from_zero(first);
    } else {
        log_unit = log_density(first);
        if (log_unit == -HUGE_VAL) {
            std::ranges::fill(out, 0);
            return;
        }
        if (first > 0)
            at.h = beta * std::exp(Delaporte(alpha + 1, beta, lambda).log_density(first - 1) - log_unit);
        unit = other = std::exp(0.5 * log_unit);
    }
    for (double& mass : out) {
        mass = unit * at.f * other;
        if (at.next(*this) > kLarge) {  // never from 0 on
            at.f /= kLarge;
            at.h /= kLarge;
            log_unit += kLogLarge;
            unit = other = std::exp(0.5 * log_unit);
        }
    }
}

/// The gamma distribution with the same mean and variance. It is far off where the Polya part is mostly 0: then percentiles
/// up to P(Polya = 0) are near those of the Poisson part at p/P(Polya = 0). They are never below the Poisson part's own, nor
/// above the sum of both parts' at the root of p.
double Delaporte::start(double p) const {
    if (is_continuous())
        return std::floor(limit_.origin + limit_.scale * numerics::gamma_lower_inverse(limit_.shape, p));
    const double none = no_polya() ? 1 : std::exp(polya_.log_density(0));
    if (none > 0.5 && p < none) return std::floor(numerics::gamma_lower_inverse(lambda, p / none));
    constexpr double kNarrow = 1e4;  // a Polya part that is mostly next to 0 only widens the Poisson part
    if (alpha < 1 && lambda > kNarrow)
        return std::max(poisson_.start(p), std::floor(lambda + polya_.start(p)));
    const double mean = pivot(), dispersion = 1 + beta * (alpha * beta / mean);
    const double gamma = std::floor(dispersion * numerics::gamma_lower_inverse(mean / dispersion, p));
    if (no_poisson() || gamma >= poisson_.start(p)) return gamma;
    return poisson_.start(std::sqrt(p)) + polya_.start(std::sqrt(p));
}

}  // namespace pral
