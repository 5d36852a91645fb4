// The incomplete beta ratio by ACM TOMS Algorithm 708 (Didonato and Morris 1992), its digamma function, and
// the sums of the algorithm that need no constant factor, which other routes to the beta ratio share.
#pragma once

namespace pral::numerics {

/// Writes I_x(a, b) to `w` and returns true; a, b >= 0, not both 0, x in [0, 1]. Otherwise (NaN, an infinity
/// or a point where the ratio is undefined included) returns false and leaves 0 in `w`.
bool incomplete_beta_ratio(double& w, double x, double a, double b);

/// The digamma function (Cody, Strecok and Thacher 1973): accurate near its positive zero to an absolute
/// 1e-16; 0 at its poles and below -2147483647, where no figure of it would be right.
double digamma_708(double x);

namespace toms708 {

/// The rows of the algorithm's choice: A for min(a, b) <= 1, B above; `trivial` when no method was needed.
enum class Row { trivial, A1, A2, A3, A4, A5, A6, A7, A8, A9, A10, A11, B1, B2, B3, B4, B5, B6, B7, B8 };

struct Result {
    bool valid;
    double lower, upper;  // I_x(a, b) and its complement
    Row row;              // the method that gave them
};

/// Both tails, with y = 1 - x given by the caller. Refused when x + y is not 1 within three units.
Result beta_ratios(double a, double b, double x, double y);

/// 1/Gamma(1 + a) - 1, -1/2 <= a <= 3/2.
double gam1(double a);
/// ln Gamma(1 + a), -1/5 <= a <= 5/4.
double gamln1(double a);
/// ln Gamma(a), a > 0.
double gamln(double a);
/// ln(Gamma(b)/Gamma(a + b)), b >= 8; relative to a for small a.
double algdiv(double a, double b);
/// a sum_{n >= 1} c_n/(a + n), c_n = prod (1 - b/i) x: I_x(a, b) = x^a/(a B(a, b)) (1 + this).
double power_series_sum(double a, double b, double x, double tolerance);
/// sum_{i < n} of the increments of I_x(a, b) - I_x(a + n, b) in units of the first, x^a y^b/(a B(a, b))
/// scaled by `first`.
double shift_sum(double a, double b, double x, double y, int n, double first, double tolerance);
/// I_x(a, b) B(a, b)/(x^a y^b) by the continued fraction; lambda = a - (a + b) x >= 0.
double continued_fraction(double a, double b, double x, double y, double lambda, double tolerance);
/// I_x(a, b) exp(F + BCORR(a, b)) for large a and b, F = a rlog1(-lambda/a) + b rlog1(lambda/b).
double large_sum(double a, double b, double f, double tolerance);
/// x - ln(1 + x).
double rlog1(double x);

}  // namespace toms708

}  // namespace pral::numerics
