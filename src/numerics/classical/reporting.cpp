#include "numerics/classical/reporting.h"

#include <cmath>

#include "numerics/classical/error_report.h"
#include "numerics/constants.h"
#include "numerics/gamma.h"
#include "numerics/normal.h"

namespace pral::numerics::classical {

namespace {

int sign_of_gamma = 1;

bool is_pole(double x) { return x <= 0 && x == std::floor(x); }

}  // namespace

double gamma(double x) {
    const double value = numerics::gamma(x);
    sign_of_gamma = value < 0 ? -1 : 1;
    if (is_pole(x)) math_error_report("gamma", x < -33 ? MathError::overflow : MathError::singularity);
    return value;
}

double lgam(double x) {
    constexpr double kLargest = 2.556348e305;
    const bool overflows = is_pole(x) || x > kLargest;
    const bool negative = x < 0 && !overflows && std::fmod(std::floor(x), 2) != 0;
    sign_of_gamma = negative ? -1 : 1;
    if (!overflows) return lgam_quiet(x);
    math_error_report("lgam", MathError::overflow);
    return kInfinity;
}

int gamma_sign() { return sign_of_gamma; }

double erfc(double x) {
    if (numerics::erfc(std::fabs(x)) == 0) math_error_report("erfc", MathError::underflow);
    return numerics::erfc(x);
}

}  // namespace pral::numerics::classical
