// The regularised incomplete beta function with full digits in both tails: what the distributions stand on.
// The prescribed incomplete_beta_ratio forms its factor from logarithms in double precision and loses up to
// three digits where they are large.
#pragma once

#include <optional>

#include "numerics/double_double.h"

namespace pral::numerics {

/// The beta distribution with parameters a, b > 0 and everything that depends on them alone. Each function takes
/// x and y = 1 - x; the smaller of the two is taken as exact. x <= 0 and y <= 0 are the ends, NaN gives NaN.
/// a <= 0 is a point mass at 0, b <= 0 at 1, with no density (NaN).
class BetaRatio {
  public:
    BetaRatio(double a, double b);

    double lower(double x, double y) const;      // I_x(a, b)
    double upper(double x, double y) const;      // 1 - I_x(a, b)
    double log_lower(double x, double y) const;  // the logarithms also where the ratios underflow;
    double log_upper(double x, double y) const;  // -kInfinity for a ratio of 0

    /// (a-1) ln x + (b-1) ln y - ln B(a, b); at the ends the limit, +-kInfinity where it is infinite.
    double log_density(double x, double y) const;

    /// A value factor e^exponent that may lie outside the range of a double.
    struct Scaled {
        double factor;
        DoubleDouble exponent;
    };
    Scaled scaled_tail(bool of_lower, double x, double y) const;  // 0 < x < 1
    Scaled scaled_density(double x, double y) const;              // x^a y^b / B(a, b)

    /// ln of one tail over `target` and its derivative in the logit of x, the hazard x y f(x)/tail: what an
    /// inverse needs of a point, 0 < x < 1.
    struct Step {
        double log_ratio, hazard;
    };
    Step step(bool of_lower, double x, double y, double target) const;

    /// The x (y for the upper tail) with factor x^a = p in the limit of small x: ln x in full precision, and
    /// the same for the other end.
    DoubleDouble log_leading(bool of_lower, DoubleDouble p) const;

    double a() const { return given_a_; }
    double b() const { return given_b_; }

  private:
    /// factor e^exponent is one of the tails.
    struct Tail {
        bool is_lower;
        double factor;
        DoubleDouble exponent;
        double complement;  // the other tail where it is known better than by subtraction, else negative
    };
    /// ln x and ln y, and a - (a + b) x, each from the smaller of x and y.
    struct Arguments;

    /// Where the larger shape is stretched and has left nothing on its side: the logarithm of that tail, and of the density.
    std::optional<double> log_power_beyond(double x, double y) const;

    /// The shapes as given, but for a common factor where both are so large that no double tells the distribution from a
    /// step; and with the larger one in the range of exact products, where the smaller coordinate is stretched to match.
    double given_a_, given_b_, a_, b_, common_ = 1, stretch_x_ = 1, stretch_y_ = 1;
    /// ln of the factor by which two tiny shapes are enlarged, which the density must lose again.
    double log_enlargement_ = 0;
    /// x^a y^b / B(a, b) = density_factor_ e^(a (ln x - shift_a_) + b (ln y - shift_b_)).
    double density_factor_, asymptotic_factor_ = 0;
    DoubleDouble shift_a_{}, shift_b_{};

    void limit_shapes();
    Arguments arguments(double x, double y) const;
    DoubleDouble log_stretch() const;
    Tail tail(const Arguments& at) const;
    double log_tail(bool of_lower, const Arguments& at) const;
    Tail series(bool lower, const Arguments& at) const;
    double series_complement(double a, double b, double log_x, double sum) const;
    DoubleDouble density_exponent(const Arguments& at) const;
};

/// The same for a single point.
double beta_lower(double a, double b, double x, double y);
double beta_upper(double a, double b, double x, double y);
double log_beta_lower(double a, double b, double x, double y);
double log_beta_upper(double a, double b, double x, double y);
double log_beta_density(double a, double b, double x, double y);

}  // namespace pral::numerics
