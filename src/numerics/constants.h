// Numbers that the whole library shares, and its convention for infinity.
#pragma once

#include <cfloat>
#include <limits>

namespace pral::numerics {

/// The largest finite double stands for +infinity wherever a result leaves the library; its negative for
/// -infinity.
inline constexpr double kInfinity = DBL_MAX;

inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kPi = 3.141592653589793238462643383279502884;
inline constexpr double kLn2 = 0.693147180559945309417232121458176568;
inline constexpr double kLn10 = 2.302585092994045684017991454684364208;
inline constexpr double kLnSqrt2Pi = 0.918938533204672741780329736405617640;
inline constexpr double kSqrt2Pi = 2.506628274631000502415765284811045253;
inline constexpr double kInvSqrt2Pi = 0.398942280401432677939946059934381868;
inline constexpr double kEuler = 0.577215664901532860606512090082402431;

/// e^x is a normal number, not infinite, for |x| up to here.
inline constexpr double kExpLimit = 700;
/// Squares of smaller numbers are finite, and so are some of their multiples.
inline constexpr double kSquareLimit = 1e150;
/// Smaller numbers are next to those that have lost digits, or have come to 0: what follows from them is computed in
/// logarithms.
inline constexpr double kLeastWithDigits = 1e-290;
/// Shapes of gamma and beta distributions from which on the rounding of x, counted so many times, shows in the density.
inline constexpr double kRoundingCounts = 1e4;

/// `value` with the infinities replaced by their stand-ins; NaN passes.
inline constexpr double finite_or_limit(double value) {
    if (value > kInfinity) return kInfinity;
    if (value < -kInfinity) return -kInfinity;
    return value;
}

}  // namespace pral::numerics
