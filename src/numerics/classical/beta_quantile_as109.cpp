#include "numerics/classical/beta_quantile_as109.h"

#include <algorithm>
#include <cmath>

#include "numerics/coefficients.h"
#include "numerics/constants.h"
#include "numerics/gamma.h"
#include "numerics/polynomial.h"

namespace pral::numerics {

namespace {

/// I_x(p, q) by the recurrence of AS 63 after Soper, beta = ln B(p, q).
double beta_ratio_as63(double x, double p, double q, double beta) {
    constexpr double kAccuracy = 1e-15;
    constexpr int kMaxTerms = 20000;  // 6 sqrt(p + q) are needed at the mean
    double sum_pq = p + q, w = 1 - x;
    const bool swapped = p < sum_pq * x;
    if (swapped) {
        std::swap(p, q);
        std::swap(x, w);
    }
    double reductions = std::floor(q + w * sum_pq);
    double ratio = reductions == 0 ? x : x / w;
    double term = 1, sum = 1, factor = q - 1;
    for (int i = 1; i < kMaxTerms; ++i) {
        term *= factor * ratio / (p + i);
        sum += term;
        const double size = std::fabs(term);
        if (!(size > kAccuracy || size > kAccuracy * sum)) break;
        reductions -= 1;
        if (reductions >= 0) {
            factor = q - i - 1;
            if (reductions == 0) ratio = x;
        } else {
            factor = sum_pq;
            sum_pq += 1;
        }
    }
    const double value = sum * std::exp(p * std::log(x) + (q - 1) * std::log(w) - beta) / p;
    return swapped ? 1 - value : value;
}

double start_as109(double alpha, double p, double q, double beta) {
    using namespace coefficients::as109;
    const double r = std::sqrt(-2 * std::log(alpha));
    const double y = r - horner(hastings_num, r) / horner(hastings_den, r);
    double x;
    if (p > 1 && q > 1) {
        const double k = (y * y - 3) / 6, s = 1 / (2 * p - 1), t = 1 / (2 * q - 1), h = 2 / (s + t);
        const double w = y * std::sqrt(h + k) / h - (t - s) * (k + 5.0 / 6 - 2 / (3 * h));
        x = p / (p + q * std::exp(2 * w));
    } else {
        const double root = 1 - 1 / (9 * q) + y / (3 * std::sqrt(q));
        double t = 2 * q * root * root * root;
        if (t <= 0) {
            x = 1 - std::exp((std::log((1 - alpha) * q) + beta) / q);
        } else {
            t = (4 * p + 2 * q - 2) / t;
            x = t <= 1 ? std::exp((std::log(alpha * p) + beta) / p) : 1 - 2 / (t + 1);
        }
    }
    return x > 0.0001 ? std::min(x, 0.9999) : 0.0001;
}

/// The modified Newton iteration of AS 109: a step is cut by three until it is shorter than the last one and
/// stays inside [0, 1].
double refine_as109(double x, double alpha, double p, double q, double beta) {
    constexpr int kMaxIterations = 1000;
    constexpr double kSmallestStep = 3e-308, kRelativeStop = 1e-15;
    const double accuracy = std::max(1e-300, std::pow(10.0, -13 - 2.5 / (p * p) - 0.5 / (alpha * alpha)));
    double previous = 1, previous_y = 0, step = 1;
    for (int i = 0; i < kMaxIterations; ++i) {
        double y = beta_ratio_as63(x, p, q, beta);
        y = (y - alpha) * std::exp(beta + (1 - p) * std::log(x) + (1 - q) * std::log(1 - x));
        if (y * previous_y <= 0) previous = std::max(std::fabs(step), kSmallestStep);
        double next = x, cut = 1;
        for (int j = 0; j < kMaxIterations; ++j, cut /= 3) {
            step = cut * y;
            if (!(std::fabs(step) < previous)) continue;
            next = x - step;
            if (!(next >= 0 && next <= 1)) continue;
            if (previous <= accuracy || std::fabs(y) <= accuracy) return x;
            if (next != 0 && next != 1) break;
        }
        if (!(std::fabs(next - x) >= kRelativeStop * x)) return x;
        x = next;
        previous_y = y;
    }
    return x;
}

}  // namespace

double beta_quantile_as109(double p, double a, double b) {
    if (std::isnan(p + a + b)) return kNaN;
    if (a <= 0 || b <= 0) return kInfinity;
    if (p <= 0) return 0;
    if (p >= 1) return 1;
    const double beta = lgam_quiet(a) + lgam_quiet(b) - lgam_quiet(a + b);
    const bool swapped = p > 0.5;
    if (swapped) {
        std::swap(a, b);
        p = 1 - p;
    }
    const double x = refine_as109(start_as109(p, a, b, beta), p, a, b, beta);
    return swapped ? 1 - x : x;
}

}  // namespace pral::numerics
