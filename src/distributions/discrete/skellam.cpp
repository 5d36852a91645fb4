#include "distributions/discrete/skellam.h"

#include "numerics/normal.h"

namespace pral {

double Skellam::start(double p) const {
    const double z = numerics::normal_quantile(p), variance = Lambda1 + Lambda2;
    const double mean = Lambda1 - Lambda2;
    return std::floor(mean + z * std::sqrt(variance) + mean / variance * ((z * z - 1) / 6));
}

/// By the recurrence of the Bessel functions (DLMF 10.29.1), towards 0 from both sides, where it only adds. It begins anew
/// after some steps, and goes on only from masses that have all their digits.
void Skellam::masses(double first, std::span<double> out) const {
    constexpr std::size_t kAnchor = 1024;
    constexpr double kDenormalNear = 1e-280;
    const auto k = [&](std::size_t i) { return first + static_cast<double>(i); };
    const auto exact = [&](std::size_t i) { return std::exp(log_density(k(i))); };
    const auto anew = [&](std::size_t steps, auto mass_before) {
        return steps % kAnchor < 2 || mass_before() < kDenormalNear;
    };
    const auto below_zero =
        static_cast<std::size_t>(std::clamp(-first, 0.0, static_cast<double>(out.size())));
    for (std::size_t i = 0; i < below_zero; ++i) {
        out[i] = anew(i, [&] { return out[i - 2]; })
                     ? exact(i)
                     : (Lambda1 * out[i - 2] - k(i - 1) * out[i - 1]) / Lambda2;
    }
    for (std::size_t n = 0; n < out.size() - below_zero; ++n) {
        const std::size_t i = out.size() - 1 - n;
        out[i] = anew(n, [&] { return out[i + 2]; })
                     ? exact(i)
                     : (Lambda2 * out[i + 2] + k(i + 1) * out[i + 1]) / Lambda1;
    }
}

}  // namespace pral
