#include "distributions/expectations.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "numerics/adaptive_integral.h"
#include "numerics/gauss_legendre.h"
#include "numerics/ordinals.h"

namespace pral {

namespace {

constexpr double kTolerance = 1e-14;
constexpr Side other(Side side) { return side == Side::lower ? Side::upper : Side::lower; }
constexpr Function tail_of(Side side) {
    return side == Side::lower ? Function::cumulative : Function::survival;
}
constexpr Function log_tail_of(Side side) {
    return side == Side::lower ? Function::log_cumulative : Function::log_survival;
}
constexpr Function quantile_of(Side side) {
    return side == Side::lower ? Function::quantile : Function::upper_quantile;
}
double end_of(const Univariate& d, Side side) {
    return side == Side::lower ? d.support().lower : d.support().upper;
}
bool by_atoms(const Univariate& d) {
    return d.values() == Values::integers || d.values() == Values::countable;
}

/// Powers 1 .. N of the distance from a centre, in a unit.
template <std::size_t N>
std::array<double, N> powers(double x, double centre, double unit) {
    const double distance = (x - centre) / unit;
    std::array<double, N> all;
    double power = 1;
    for (double& each : all) each = power *= distance;
    return all;
}

/// What is left of the integrals below the smallest tail that a double holds: there a quantile whose moments exist up to
/// `limit` goes as tail^(-1/limit).
template <std::size_t N>
void add_remainder(std::array<double, N>& sums, const std::array<double, N>& last, double tail,
                   double limit) {
    if (!(limit < HUGE_VAL)) return;
    for (std::size_t k = 0; k < N; ++k) sums[k] += last[k] * tail / (1 - static_cast<double>(k + 1) / limit);
}

/// The integrals over t in [least, most], most <= 1/2, of the powers of the quantile that leaves the tail t on `side`. In
/// y = ln(most/t) the integrand is smooth and falls as an exponential.
template <std::size_t N>
std::array<double, N> smooth_powers(const Univariate& d, Side side, double least, double most, double centre,
                                    double unit) {
    std::array<double, N> sums = {};
    if (!(least < most)) return sums;
    constexpr double kLast = 700;  // exp(-700) is no denormal number yet
    const double end = std::min(std::log(most / std::max(least, DBL_MIN)), kLast);
    std::vector<double> x;
    const auto values = [&](std::span<const double> y, std::span<std::array<double, N>> out) {
        x.resize(y.size());
        for (std::size_t i = 0; i < y.size(); ++i) x[i] = most * std::exp(-y[i]);
        d.evaluate(quantile_of(side), x, x);
        for (std::size_t i = 0; i < y.size(); ++i) {
            out[i] = powers<N>(x[i], centre, unit);
            for (double& each : out[i]) each *= most * std::exp(-y[i]);
        }
    };
    // The first pieces are short: most of the integral is there.
    for (double from = 0, to = std::min(1.0, end); from < end; from = to, to = std::min(4 * to, end)) {
        const auto piece = numerics::adaptive_integral<N>(from, to, kTolerance, values);
        for (std::size_t k = 0; k < N; ++k) sums[k] += piece[k];
    }
    if (least == 0) {
        const double tail = most * std::exp(-end);
        add_remainder(sums, powers<N>(d(quantile_of(side), tail), centre, unit), tail, d.moment_limit(side));
    }
    return sums;
}

/// The same for values that have probabilities: a sum over them, outwards.
template <std::size_t N>
std::array<double, N> atom_powers(const Univariate& d, Side side, double least, double most, double centre,
                                  double unit) {
    constexpr std::size_t kBlock = 512, kMostAtoms = std::size_t{1} << 21;
    const bool integers = d.values() == Values::integers;
    const double direction = side == Side::lower ? -1 : 1;
    std::array<double, N> sums = {};
    double x = d(quantile_of(side), most), above = most;  // `above`: the tail not yet summed
    std::vector<double> atoms, tails;
    for (std::size_t taken = 0; taken < kMostAtoms && above > least;) {
        atoms.clear();
        for (std::size_t i = 0; i < (integers ? kBlock : 1); ++i)
            atoms.push_back(x + direction * static_cast<double>(i));
        tails.resize(atoms.size());
        if (side == Side::upper)
            d.evaluate(Function::survival, atoms, tails);
        else
            for (std::size_t i = 0; i < atoms.size(); ++i) tails[i] = d.tails_below(atoms[i]).lower;
        const double before = above;
        for (std::size_t i = 0; i < atoms.size() && above > least; ++i) {
            const double left = std::max(tails[i], least);
            const auto each = powers<N>(atoms[i], centre, unit);
            for (std::size_t k = 0; k < N; ++k) sums[k] += each[k] * (above - left);
            above = left;
        }
        taken += atoms.size();
        if (above <= least) break;
        // The next value; far out its power no longer counts.
        const double before_x = x;
        x = integers ? x + direction * kBlock : d(quantile_of(side), std::nextafter(above, 0));
        if (x == before_x)
            x = d(quantile_of(side), std::max(above - DBL_EPSILON, 0.0));  // 1 - tail has changed
        if (x == before_x) break;
        const auto next = powers<N>(x, centre, unit);
        const bool negligible =
            std::fabs(next[N - 1]) * above <= 1e-18 * std::fabs(sums[N - 1]) && before > 4 * above;
        if (negligible) break;
    }
    return sums;
}

/// Wider than this, integers are as good as a continuum: their steps are below a millionth of the spread.
constexpr double kWide = 1 << 21;

template <std::size_t N>
std::array<double, N> tail_powers(const Univariate& d, Side side, double least, double most, double centre,
                                  double unit) {
    if (!(least < most)) return {};
    bool atoms = by_atoms(d);
    if (d.values() == Values::integers) {
        const double far = std::max(least, 1e-18 * most);
        atoms = std::fabs(d(quantile_of(side), far) - d(quantile_of(side), most)) < kWide;
    }
    return atoms ? atom_powers<N>(d, side, least, most, centre, unit)
                 : smooth_powers<N>(d, side, least, most, centre, unit);
}

double median(const Univariate& d) { return d(Function::quantile, 0.5); }

/// The sum of S(k) over first <= k < end for a tail that falls as k^-exponent: the
/// first ones by themselves, the others by the integral of S from first - 1/2 to end - 1/2 and its first correction
/// (Euler and Maclaurin) in panels of ln k, between integers by the parabola through ln S at three of them.
double sum_of_slow_tails(const Univariate& d, double first, double end, double exponent) {
    constexpr double kDirect = 1 << 13, kExact = 0x1p50, kPanel = 2, kNegligible = 1e-17;
    const auto log_tail = [&](double k) { return d(Function::log_survival, k); };
    const double direct = std::min(end, first + kDirect);
    std::vector<double> tails;
    for (double k = first; k < direct; ++k) tails.push_back(k);
    d.evaluate(Function::survival, tails, tails);
    double sum = 0;
    for (std::size_t i = tails.size(); i-- > 0;) sum += tails[i];
    if (!(direct < end)) return sum;
    const auto smooth = [&](double x) {
        const double k = std::round(x), s = x - k;
        if (x > kExact) return log_tail(x);
        const double below = log_tail(k - 1), here = log_tail(k), above = log_tail(k + 1);
        return here + 0.5 * s * (above - below) + 0.5 * s * s * (above - 2 * here + below);
    };
    const auto slope = [&](double k) { return std::exp(log_tail(k)) - std::exp(log_tail(k - 1)); };
    double rest = slope(direct) / 24 - (end < kExact ? slope(end) / 24 : 0);
    const double last = std::log(std::min(end - 0.5, numerics::kInfinity));
    for (double y = std::log(direct - 0.5); y < last;) {
        const double width = std::min(kPanel, last - y);
        rest += numerics::integrate(width, 1,
                                    [&](double t) { return std::exp(smooth(std::exp(y + t)) + y + t); });
        y += width;
        const double left = exponent > 1 ? std::exp(smooth(std::exp(y)) + y) / (exponent - 1) : HUGE_VAL;
        if (std::isinf(end) && left <= kNegligible * (sum + rest)) break;
        // Beyond any scale that counts the tail is its power.
        constexpr double kPurePower = 90;
        if (std::isinf(end) && y > kPurePower) return sum + (rest + left);
    }
    return sum + rest;
}

/// E (X - from)^+ less E (X - to)^+ for Side::upper, from >= median: the integral of S there, by quantiles. Mirrored for
/// Side::lower.
double outer_tail(const Univariate& d, Side side, double from, double to) {
    const double most = d(tail_of(side), from), least = std::isinf(to) ? 0 : d(tail_of(side), to);
    const double end = end_of(d, side);
    if (std::isinf(to) && std::isinf(end) && !(d.moment_limit(side) > 1)) return HUGE_VAL;
    if (side == Side::upper && d.values() == Values::integers && d.moment_limit(side) < HUGE_VAL) {
        // S is level from each integer to the next.
        const double first = std::floor(from) + 1, last = std::isinf(to) ? to : std::floor(to);
        const auto survival = [&](double k) { return d(Function::survival, k); };
        if (last < first) return (to - from) * most;
        return (first - from) * most + sum_of_slow_tails(d, first, last, d.moment_limit(side)) +
               (std::isinf(to) ? 0 : (to - last) * survival(last));
    }
    const double sum = std::fabs(tail_powers<1>(d, side, least, std::min(most, 0.5), from, 1)[0]);
    return least > 0 ? sum + std::fabs(to - from) * least : sum;
}

/// Moments about the mean from those about another point.
Moments central(double centre, double unit, const std::array<double, 4>& m) {
    const double d = m[0];
    const double second = m[1] - d * d;
    const double third = m[2] - 3 * d * m[1] + 2 * d * d * d;
    const double fourth = m[3] - 4 * d * m[2] + 6 * d * d * m[1] - 3 * d * d * d * d;
    return {centre + unit * d, unit * unit * second, third / (second * std::sqrt(second)),
            fourth / (second * second) - 3};
}

Moments numeric_moments(const Univariate& d) {
    const double centre = median(d);
    const double spread = d(Function::quantile, 0.75) - d(Function::quantile, 0.25);
    const double width = d.support().upper - d.support().lower;
    const double unit = spread > 0 ? spread : std::isfinite(width) && width > 0 ? width : 1;
    std::array<double, 4> sums = {};
    for (const Side side : {Side::lower, Side::upper}) {
        const auto part = tail_powers<4>(d, side, 0, 0.5, centre, unit);
        for (std::size_t k = 0; k < 4; ++k) sums[k] += part[k];
    }
    const auto limit = [&](Side side) {
        return std::isinf(end_of(d, side)) ? d.moment_limit(side) : HUGE_VAL;
    };
    return with_divergences(central(centre, unit, sums), limit(Side::lower), limit(Side::upper));
}

}  // namespace

double Univariate::integrated_tail(Side side, double from, double to) const {
    if (!(from < to)) return 0;
    const double middle = median(*this);
    const double split = std::clamp(middle, from, to);
    const auto complement = [&](double a, double b) {
        return a < b ? b - a -
                           outer_tail(*this, other(side), side == Side::upper ? b : a,
                                      side == Side::upper ? a : b)
                     : 0;
    };
    // Beyond the median by the tail itself, before it by 1 less the other one.
    if (side == Side::upper) {
        const double below = from < split ? (std::isinf(from) ? HUGE_VAL : complement(from, split)) : 0;
        return below + (split < to ? outer_tail(*this, side, split, to) : 0);
    }
    const double above = split < to ? (std::isinf(to) ? HUGE_VAL : complement(split, to)) : 0;
    return above + (from < split ? outer_tail(*this, side, split, from) : 0);
}

Moments moments(const Univariate& d) {
    const auto own = d.moments();
    return own ? *own : numeric_moments(d);
}

double tail_mean(const Univariate& d, Side side, double p) {
    if (!(p >= 0 && p <= 1)) return numerics::kNaN;
    const double tail = side == Side::upper ? 1 - p : p;
    const double x = d(Function::quantile, p);
    if (tail == 0) return x;
    if (tail == 1) return moments(d).mean;
    const double excess =
        side == Side::upper ? d.integrated_tail(side, x, HUGE_VAL) : d.integrated_tail(side, -HUGE_VAL, x);
    return side == Side::upper ? x + excess / tail : x - excess / tail;
}

double limited_mean(const Univariate& d, double limit) {
    if (std::isnan(limit)) return limit;
    if (limit == HUGE_VAL) return moments(d).mean;
    if (limit == -HUGE_VAL) return limit;
    const double from = std::min(limit, median(d));
    return from - d.integrated_tail(Side::lower, -HUGE_VAL, from) +
           d.integrated_tail(Side::upper, from, limit);
}

double mode(const Univariate& d) {
    if (const auto own = d.mode()) return *own;
    // The best of many quantiles and of the ends, then the top between its neighbours.
    constexpr std::size_t kPlaces = 1024;
    std::vector<double> x;
    for (const double end : {d.support().lower, d.support().upper})
        if (std::isfinite(end)) x.push_back(end);
    for (std::size_t i = 1; i < kPlaces; ++i) x.push_back(static_cast<double>(i) / kPlaces);
    const std::size_t ends = x.size() - (kPlaces - 1);
    d.evaluate(Function::quantile, std::span(x).subspan(ends), std::span(x).subspan(ends));
    std::ranges::sort(x);
    std::vector<double> log(x.size());
    d.evaluate(Function::log_density, x, log);
    const auto best = static_cast<std::size_t>(std::ranges::max_element(log) - log.begin());
    const double peak = x[best];
    if (log[best] == HUGE_VAL || d.values() == Values::countable) return peak;
    double low = x[best == 0 ? 0 : best - 1], high = x[std::min(best + 1, x.size() - 1)];
    const bool integers = d.values() == Values::integers;
    // Golden section, on the integers by their masses.
    constexpr double kGolden = 0.3819660112501051;
    constexpr int kSteps = 120;
    const auto at = [&](double place) { return d(Function::log_density, place); };
    for (int step = 0; step < kSteps && high - low > (integers ? 3 : 1e-12 * std::fabs(peak)); ++step) {
        double a = low + kGolden * (high - low), b = high - kGolden * (high - low);
        if (integers) a = std::floor(a), b = std::max(std::floor(b), a + 1);
        if (at(a) >= at(b))
            high = b;
        else
            low = a;
    }
    double top = peak;
    const double step = integers ? 1 : std::max(high - low, 0x1p-1000);
    for (double place = low; place <= high; place += step) {
        if (at(place) > at(top) || (at(place) == at(top) && place < top)) top = place;
        if (place + step == place) break;
    }
    if (!integers && at(0.5 * (low + high)) > at(top)) top = 0.5 * (low + high);
    return top;
}

namespace {

struct Trial {
    double x, value;
};

/// The least double (or integer) in (low, high] at which a rising function is not negative; it is at `high`. By false position
/// with the remedy of Illinois (Dowell and Jarratt 1971), since logarithms of tails are nearly straight, and every third time
/// by halving the doubles in the bracket.
template <class Function>
double first_not_missing(Function missing, Trial low, Trial high, bool integers) {
    constexpr int kSteps = 200;
    int side = 0;
    for (int step = 0; step < kSteps; ++step) {
        if (integers && high.x - low.x <= 1) break;
        double middle = numerics::middle_double(low.x, high.x);
        if (integers) middle = std::floor(middle);
        if (middle <= low.x || middle >= high.x) break;
        double next = middle;
        if (step % 3 != 2) {
            const double share = low.value / (low.value - high.value);
            next = low.x + share * (high.x - low.x);
            if (integers) next = std::floor(next);
            if (!(next > low.x && next < high.x)) next = middle;
        }
        const double value = missing(next);
        const int moved = value >= 0 ? 1 : -1;
        Trial& kept = moved > 0 ? low : high;
        if (moved == side) kept.value /= 2;
        (moved > 0 ? high : low) = {next, value};
        side = moved;
    }
    return high.x;
}

}  // namespace

double log_quantile(const Univariate& d, Side side, double log_p) {
    if (!(log_p <= 0)) return numerics::kNaN;
    if (log_p == -HUGE_VAL) return end_of(d, side);
    if (log_p > -numerics::kLn2) return d(quantile_of(other(side)), -std::expm1(log_p));
    constexpr double kLeast = -700;  // of normal numbers
    if (log_p >= kLeast) return d(quantile_of(side), std::exp(log_p));
    const double inner = d(quantile_of(side), std::exp(kLeast));
    double outer = end_of(d, side);
    const auto limited = [](double x) { return std::clamp(x, -numerics::kInfinity, numerics::kInfinity); };
    // The least x with ln F(x) >= log_p, or with ln S(x) <= log_p: what is missing of it rises through 0 there.
    const auto missing = [&](double x) {
        const double log = d(log_tail_of(side), x);
        return side == Side::lower ? log - log_p : log_p - log;
    };
    // From inside out in steps that grow: far beyond the answer some tails are costly.
    const double direction = side == Side::lower ? -1 : 1;
    for (double step = std::max(std::fabs(inner), DBL_MIN); std::isinf(outer) && step <= numerics::kInfinity;
         step *= 16) {
        const double place = inner + direction * step;
        if ((missing(place) >= 0) == (side == Side::upper)) outer = place;
    }
    const double low = limited(std::min(inner, outer)), high = limited(std::max(inner, outer));
    const double at_low = missing(low), at_high = missing(high);
    if (at_low >= 0) return low > -numerics::kInfinity ? low : outer;
    if (!(at_high >= 0)) return outer;
    return first_not_missing(missing, {low, at_low}, {high, at_high}, d.values() == Values::integers);
}

}  // namespace pral
