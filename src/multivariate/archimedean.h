// The Archimedean copulas Clayton, Gumbel and Frank, sampled by a common frailty (Marshall and Olkin 1988): given the
// frailty V the coordinates are independent, U = psi(-ln(u)/V) with the Laplace transform psi of V.
//
// A copula is made from the absolute value of its parameter and has
//
//   bivariate_range(p), multivariate_range(p)   whether a signed parameter is valid in two and in more dimensions
//   kBivariate, kPair, kMultivariate            the messages when it is not; kPair is that of many samples of pairs
//   kDirections                                 how many of the directions of apply_direction() it knows
//   kFrailtyUniforms                            uniforms that a frailty takes
//   frailties(first, second)                    replaces the first uniform of each frailty by it; second has the second
//                                               ones, if there are any
//   coordinate(u, v)                            a coordinate from its uniform and the frailty
//   kOwnCorner                                  the sign of E (u1 + u2 - 1)^3: negative when the dependence is closest
//                                               near (0, 0), 0 when both corners are alike
//   from_tau(tau)                               the parameter with that Kendall's tau, as fits of pairs give it
//   limited(p)                                  the parameter of a fit within what fits of more variables give
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>
#include <vector>

#include "base/message.h"
#include "base/random_stream.h"
#include "numerics/constants.h"
#include "numerics/elementary.h"

namespace pral::multivariate {

/// -ln u of a uniform.
inline double exponential(double u) { return -std::log(u); }

/// ln(1 + x) for x >= -1/2, and 1 - e^x for x <= 0 from e^x, by the runtime's logarithm (Kahan): to a few units in
/// the last place, in a third of the time of log1p_fn and expm1_fn.
inline double log_one_plus(double x) {
    const double w = 1 + x;
    return w == 1 ? x : std::log(w) * (x / (w - 1));
}
inline double one_minus_exp(double x, double power) {
    if (power < 0.5) return 1 - power;
    return power == 1 ? -x : (1 - power) * (x / std::log(power));
}

/// psi(s) = (1 + s)^(-1/alpha), V gamma of shape 1/alpha. Lower tail dependence 2^(-1/alpha).
class Clayton {
  public:
    static constexpr Message kBivariate = "Error:  alpha must be between [-35:36] for bivariate case";
    static constexpr Message kPair = kBivariate;
    static constexpr Message kMultivariate = "Error:  alpha must be between [0:36] for multivariate case";
    static constexpr int kDirections = 4, kFrailtyUniforms = 1, kOwnCorner = -1;
    static constexpr double kMost = 36;
    static bool bivariate_range(double alpha) { return alpha >= -35 && alpha <= 36; }
    static bool multivariate_range(double alpha) { return alpha >= 0 && alpha <= 36; }
    static double from_tau(double tau) { return 2 * tau / (1 - tau); }
    static double limited(double alpha) { return std::clamp(alpha, 0.0, kMost); }

    explicit Clayton(double alpha) : alpha_(alpha) {}
    void frailties(std::span<double> first, std::span<const double> second) const;
    double coordinate(double u, double v) const {
        return std::exp(-log_one_plus(numerics::finite_or_limit(exponential(u) / v)) / alpha_);
    }

  private:
    double alpha_;
};

/// psi(s) = exp(-s^(1/theta)), V positive stable of index 1/theta. Upper tail dependence 2 - 2^(1/theta); theta = 1 is
/// independence.
class Gumbel {
  public:
    static constexpr Message kBivariate =
        "Error:  theta must be between [-35:-1] or [1:36] for bivariate case";
    static constexpr Message kPair = "Error:  theta must be between [-35:-1] or [1,36] for bivariate case";
    static constexpr Message kMultivariate = "Error:  theta must be between [1:36] for multivariate case";
    static constexpr int kDirections = 4, kFrailtyUniforms = 2, kOwnCorner = 1;
    static constexpr double kLeast = 1.0000000001, kMost = 36;
    static bool bivariate_range(double theta) { return theta >= -35 && theta <= 36 && std::fabs(theta) >= 1; }
    static bool multivariate_range(double theta) { return theta >= 1 && theta <= 36; }
    static double from_tau(double tau) {
        const double theta = 1 / (1 - tau);
        return theta < 1 ? kLeast : theta;
    }
    static double limited(double theta) { return std::min(theta, kMost); }

    explicit Gumbel(double theta) : theta_(theta), index_(1 / theta) {}
    /// The logarithm of the frailty, which itself may leave the range of a double.
    void frailties(std::span<double> first, std::span<const double> second) const {
        for (std::size_t i = 0; i < first.size(); ++i)
            first[i] = log_frailty(numerics::kPi * first[i], second[i]);
    }
    /// From an angle, pi times a uniform, and a second uniform.
    double log_frailty(double angle, double u) const;
    double coordinate(double u, double log_v) const {
        return std::exp(-std::exp((std::log(exponential(u)) - log_v) * index_));
    }

  private:
    double theta_, index_;
};

/// psi(s) = -ln(1 - (1 - e^-theta) e^-s)/theta, V logarithmic with parameter 1 - e^-theta. No tail dependence,
/// symmetric in both corners.
class Frank {
  public:
    static constexpr Message kBivariate = "Error:  theta must be between [-35:35] for bivariate case";
    static constexpr Message kPair = kBivariate;
    static constexpr Message kMultivariate = "Error:  theta must be between [0:35] for multivariate case";
    static constexpr int kDirections = 2, kFrailtyUniforms = 1, kOwnCorner = 0;
    static constexpr double kMost = 35;
    static bool bivariate_range(double theta) { return theta >= -35 && theta <= 35; }
    static bool multivariate_range(double theta) { return theta >= 0 && theta <= 35; }
    /// By a table of 98 points, linearly; 0 for a negative tau.
    static double from_tau(double tau);
    static double limited(double theta) { return theta; }

    explicit Frank(double theta)
        : theta_(theta), parameter_(-numerics::expm1_fn(-theta)), rest_(std::exp(-theta)) {}
    void frailties(std::span<double> first, std::span<const double> second) const;
    double coordinate(double u, double v) const {
        const double log = std::log(u) / v, power = std::exp(log), part = power * parameter_;
        // 1 - part, where that cancels, as (1 - power) + power e^-theta.
        const double result =
            part < 0.5 ? log_one_plus(-part) : std::log(one_minus_exp(log, power) + power * rest_);
        return result / -theta_;
    }

    /// Kendall's tau, 1 - 4/theta (1 - D1(theta)) with the first Debye function (Genest 1987).
    static double tau(double theta);

  private:
    double theta_, parameter_, rest_;
};

/// The message for a direction that a copula does not know.
template <class Copula>
Message refuse_direction(int direction) {
    if (direction >= 1 && direction <= Copula::kDirections) return nullptr;
    return Copula::kDirections == 2 ? "Error: Direction must be integer value in [1..2]"
                                    : "Error: Direction must be integer value in [1..4]";
}

/// The effect of a direction 1 to 4 on a pair: 2 mirrors the first coordinate, 3 the second, 4 both.
inline void apply_direction(int direction, double* pair) {
    if (direction == 2 || direction == 4) pair[0] = 1 - pair[0];
    if (direction == 3 || direction == 4) pair[1] = 1 - pair[1];
}

/// `count` samples of d coordinates, one after another. Each takes the uniforms of its frailty, then one for each of
/// its coordinates. With a negative parameter all coordinates but the first are mirrored; 0 (and a denormal) is
/// independence, a uniform each.
template <class Copula>
void sample(double parameter, int d, int count, double* out, RandomStream& stream) {
    const std::size_t width = d, samples = count;
    if (std::fabs(parameter) < 0x1p-1022) return stream.fill({out, width * samples});
    const Copula copula(std::fabs(parameter));
    const bool mirrored = parameter < 0;
    std::vector<double> frailty(samples), second(Copula::kFrailtyUniforms == 2 ? samples : 0);
    for (std::size_t s = 0; s < samples; ++s) {
        frailty[s] = stream.uniform();
        if (!second.empty()) second[s] = stream.uniform();
        stream.fill({out + s * width, width});
    }
    copula.frailties(frailty, second);
    for (const double v : frailty) {
        for (std::size_t j = 0; j < width; ++j, ++out) {
            const double value = copula.coordinate(*out, v);
            *out = mirrored && j > 0 ? 1 - value : value;
        }
    }
}

}  // namespace pral::multivariate
