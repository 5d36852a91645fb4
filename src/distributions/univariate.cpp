#include "distributions/univariate.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <type_traits>

#include "distributions/univariate_family.h"
#include "numerics/each.h"

namespace pral {

std::string shortest(double value) {
    if (std::isnan(value)) return "nan";
    if (std::isinf(value)) return value > 0 ? "inf" : "-inf";
    char text[32];
    return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

double Univariate::log_within(double lower, double upper) const {
    if (!(lower <= upper)) return -HUGE_VAL;
    return Difference{tails_below(lower), tails(upper)}.log_mass();
}

void detail::evaluate_point(double point, Function function, std::span<const double> in,
                            std::span<double> out) {
    const double no =
        function == Function::log_cumulative || function == Function::log_survival ? -HUGE_VAL : 0;
    const double yes = no == 0 ? 1 : 0;
    const auto value = [&](double x) {
        if (std::isnan(x)) return x;
        switch (function) {
            case Function::log_density:
                return x == point ? 0 : -HUGE_VAL;
            case Function::cumulative:
            case Function::log_cumulative:
                return x >= point ? yes : no;
            case Function::survival:
            case Function::log_survival:
                return x >= point ? no : yes;
            default:
                return x >= 0 && x <= 1 ? point : numerics::kNaN;
        }
    };
    for (std::size_t i = 0; i < in.size(); ++i) out[i] = value(in[i]);
}

void FamilyObject::complete(Values values, const Support& support, const std::optional<double>& point) {
    point_ = point;
    values_ = point && values == Values::continuous ? Values::countable : values;
    support_ = point ? Support{*point, *point}
                     : Support{detail::infinite_again(support.lower), detail::infinite_again(support.upper)};
}

void FamilyObject::evaluate(Function function, std::span<const double> in, std::span<double> out) const {
    if (point_) return detail::evaluate_point(*point_, function, in, out);
    if (is_inverse(function)) return evaluate_all(function, in, out);
    if (values_ == Values::integers) {
        if (in.data() != out.data()) std::ranges::copy(in, out.begin());
        return detail::each_once(out, [&](std::span<double> x) { evaluate_all(function, x, x); });
    }
    for (std::size_t first = 0; first < in.size(); first += kArrayBlock) {
        const std::size_t n = std::min(kArrayBlock, in.size() - first);
        evaluate_all(function, in.subspan(first, n), out.subspan(first, n));
    }
}

void FamilyObject::evaluate_all(Function function, std::span<const double> in, std::span<double> out) const {
    const auto [lower, upper] = support_;
    const auto limited = [](double p) {
        p = p < 0 ? 0 : p;
        return (p > 1 ? 1 : p) + 0.0;  // no -0.0
    };
    const auto evaluated = [&](auto integer, std::span<double> x, auto inner) {
        if constexpr (integer())
            detail::each_once(x, inner);
        else
            inner(x);
    };
    const auto densities = [&](auto integer) {
        const auto look = [=, lower = lower, upper = upper](double& x, double& answer) {
            answer = std::isnan(x) ? x : -HUGE_VAL;
            x += 0.0;  // -0.0 is 0
            bool inside = (x >= lower) & (x <= upper) & (std::fabs(x) < HUGE_VAL);
            if constexpr (integer()) inside = inside & (x == detail::whole_below(x));
            return inside;
        };
        detail::evaluate_inside(in, out, look, [&](std::span<double> x) {
            evaluated(integer, x, [&](std::span<double> k) {
                inside(function, k);
                for (double& log : k) log = detail::infinite_again(log);
            });
        });
    };
    // A tail is known below the support and above it.
    const auto tails = [&](auto integer, double below, double above, auto inner) {
        const auto look = [=, lower = lower, upper = upper](double& x, double& answer) {
            answer = std::isnan(x) ? x : x < upper ? below : above;
            if constexpr (integer()) x = detail::whole_below(x);
            x += 0.0;
            return (x >= lower) & (x < upper) & (x > -HUGE_VAL);
        };
        detail::evaluate_inside(in, out, look, [&](std::span<double> x) { evaluated(integer, x, inner); });
    };
    const auto plain = [&](auto integer, double below, double above) {
        tails(integer, below, above, [&](std::span<double> x) {
            inside(function, x);
            for (double& p : x) p = limited(p);
        });
    };
    const auto logs = [&](auto integer, Side side, double below, double above) {
        tails(integer, below, above, [&](std::span<double> x) {
            log_tails(side, x);
            for (double& log : x) log = detail::infinite_again(log > 0 ? 0 : log);
        });
    };
    const auto inverses = [&, lower = lower, upper = upper](Side side) {
        detail::evaluate_inside(
            in, out,
            [&](double p, double& end) { return detail::is_inner_percentile(p, side, support_, end); },
            [&](std::span<double> x_or_p) {
                inside(function, x_or_p);
                for (double& x : x_or_p) {
                    x = x < lower ? lower : x;
                    x = detail::infinite_again(x > upper ? upper : x);
                }
            });
    };
    const auto choose = [&](auto integer) {
        switch (function) {
            case Function::log_density:
                return densities(integer);
            case Function::cumulative:
                return plain(integer, 0, 1);
            case Function::survival:
                return plain(integer, 1, 0);
            case Function::log_cumulative:
                return logs(integer, Side::lower, -HUGE_VAL, 0);
            case Function::log_survival:
                return logs(integer, Side::upper, 0, -HUGE_VAL);
            case Function::quantile:
                return inverses(Side::lower);
            case Function::upper_quantile:
                return inverses(Side::upper);
        }
    };
    values_ == Values::integers ? choose(std::true_type()) : choose(std::false_type());
}

namespace {

/// ln of a tail at the distance d from the end of a support, where it is a power of the distance, from its logarithms
/// further inside; NaN where it is no power there, or these are beyond doubles as well.
template <class LogTail>
double log_by_power(double distance, LogTail log_tail) {
    constexpr int kStride = 30, kMost = 2100;  // powers of 2
    constexpr double kWithDigits = -700;
    for (int power = 2 * kStride; power < kMost; power += kStride) {
        const auto at = [&](int more) { return log_tail(std::ldexp(distance, power + more)); };
        const double log = at(0);
        if (!(log > kWithDigits && log < 0)) continue;
        const double once = at(kStride) - log, twice = at(2 * kStride) - at(kStride);
        const bool straight = once > 0 && std::fabs(twice - once) <= 1e-12 * once;
        return straight ? log - once * power / kStride : numerics::kNaN;
    }
    return numerics::kNaN;
}

}  // namespace

/// The logarithm of a tail that is beyond doubles, from the density where that falls towards the end, or from the power that
/// the tail is next to it; NaN where there is no way to it.
double FamilyObject::log_beyond(Side side, double x) const {
    const bool lower = side == Side::lower;
    const double end = lower ? support_.lower : support_.upper;
    const auto log_tail = [&](double distance) {
        const double place = lower ? end + distance : end - distance;
        double log = place;
        if (!(place > support_.lower && place < support_.upper)) return numerics::kNaN;
        if (inside(lower ? Function::log_cumulative : Function::log_survival, {&log, 1})) return log;
        log = place;
        inside(lower ? Function::cumulative : Function::survival, {&log, 1});
        return std::log(log);
    };
    const bool falls =
        std::isinf(end) || values_ != Values::continuous ||
        (*this)(Function::log_density, end + (x - end) / 2) <= (*this)(Function::log_density, x);
    const auto by_density = [&] {
        const double first = lower ? support_.lower - (values_ == Values::integers) : support_.upper;
        const double finite = std::clamp(first, -numerics::kInfinity, numerics::kInfinity);
        return lower ? log_far_probability(finite, x, side) : log_far_probability(x, finite, side);
    };
    double log = falls ? by_density() : numerics::kNaN;
    if (!(log > -numerics::kInfinity) && std::isfinite(end) && values_ == Values::continuous)
        log = log_by_power(std::fabs(x - end), log_tail);
    return std::isnan(log) ? by_density() : log;
}

void FamilyObject::log_tails(Side side, std::span<double> x) const {
    constexpr std::size_t kBlock = 128;
    double at[kBlock];
    const Function own = side == Side::lower ? Function::log_cumulative : Function::log_survival;
    for (std::size_t first = 0; first < x.size(); first += kBlock) {
        const std::span<double> logs = x.subspan(first, std::min(kBlock, x.size() - first));
        const std::span<double> places(at, logs.size());
        std::ranges::copy(logs, at);
        if (!inside(own, logs)) {
            log_tails_from(side, places, logs);
            continue;
        }
        constexpr double kLeast = -708;  // of a double that has all of its digits
        std::uint64_t beyond = 0;
        for (const double log : logs)
            beyond |= (log >= kLeast) & (log < 1) ? std::uint64_t{0} : std::uint64_t{1};
        if (beyond == 0) continue;
        for (std::size_t i = 0; i < logs.size(); ++i) {
            // May be the logarithm of a number in between that was denormal, or 0.
            const bool denormal = logs[i] > -746 && !has_exact_logarithms();
            const bool underflowed = logs[i] < kLeast && (denormal || logs[i] <= -numerics::kInfinity);
            const bool lost = !(logs[i] < 1);
            if (!underflowed && !lost) continue;
            const double log = log_beyond(side, at[i]);
            if (!std::isnan(log)) logs[i] = log;
        }
    }
}

/// Logarithms of tails from the tails: of 1 less the other one as long as that has the digits, or of itself. x are no more
/// than kArrayBlock.
void FamilyObject::log_tails_from(Side side, std::span<const double> x, std::span<double> logs) const {
    constexpr double kComplement = 0.75;
    const bool lower = side == Side::lower;
    double tails[kArrayBlock], complements[kArrayBlock];
    std::ranges::copy(x, logs.begin());
    inside(lower ? Function::survival : Function::cumulative, logs);
    std::size_t count = 0;
    for (std::size_t i = 0; i < x.size(); ++i) {
        complements[i] = logs[i] <= kComplement ? 1 : 0;
        tails[count] = x[i];
        count += complements[i] == 0;
    }
    if (count > 0) inside(lower ? Function::cumulative : Function::survival, {tails, count});
    const double* next = tails;
    for (std::size_t i = 0; i < x.size(); ++i)
        if (complements[i] == 0) logs[i] = *next++;
    std::copy_n(logs.begin(), x.size(), tails);
    numerics::log_tail_each(logs, {complements, x.size()});
    for (std::size_t i = 0; i < x.size(); ++i) {
        if (complements[i] != 0 || !(tails[i] < kFarTail)) continue;
        const double log = log_beyond(side, x[i]);
        if (!std::isnan(log)) logs[i] = log;
    }
}

Tails FamilyObject::tails_below(double x) const {
    if (values_ == Values::integers) return tails(std::ceil(x) - 1);
    if (values_ == Values::continuous) return tails(x);
    if (!counts_neighbours() || point_) return tails(std::nextafter(x, -HUGE_VAL));
    const Tails at = tails(x);
    const double mass = std::exp((*this)(Function::log_density, x));
    return {std::max(at.lower - mass, 0.0), std::min(at.upper + mass, 1.0)};
}

/// Where the difference of the tails has lost its digits, the integral of the density, or the sum of the masses, from the end
/// where it is higher.
double FamilyObject::log_within(double lower, double upper) const {
    lower = std::max(lower, support_.lower);
    upper = std::min(upper, support_.upper);
    const bool integers = values_ == Values::integers;
    if (integers) lower = std::ceil(lower), upper = std::floor(upper);
    if (!(lower <= upper)) return -HUGE_VAL;
    if (point_) return 0;
    const Difference difference = {tails_below(lower), tails(upper)};
    if (values_ == Values::countable || difference.share() >= kResolved) return difference.log_mass();
    const double before = integers ? lower - 1 : lower;
    if (upper >= support_.upper) return (*this)(Function::log_survival, before);
    if (lower <= support_.lower) return (*this)(Function::log_cumulative, upper);
    const bool rises = (*this)(Function::log_density, lower) < (*this)(Function::log_density, upper);
    const double log = log_far_probability(before, upper, rises ? Side::lower : Side::upper);
    return std::isnan(log) ? difference.log_mass() : log;
}

std::optional<Moments> FamilyObject::moments() const {
    if (point_) return Moments{*point_, 0, numerics::kNaN, numerics::kNaN};
    const std::optional<Moments> own = own_moments();
    if (!own) return std::nullopt;
    const auto existing = [&](Side side) {
        return std::isinf(side == Side::lower ? support_.lower : support_.upper) ? moment_limit(side)
                                                                                 : HUGE_VAL;
    };
    return with_divergences(*own, existing(Side::lower), existing(Side::upper));
}

std::optional<double> FamilyObject::mode() const { return point_ ? point_ : own_mode(); }

std::string FamilyObject::text() const {
    std::string text = std::string(origin_.name) + "(";
    for (std::size_t i = 0; i < origin_.arguments.size(); ++i) {
        const auto& argument = origin_.arguments[i];
        const bool table = (origin_.tables >> i & 1) != 0;
        if (i > 0) text += ", ";
        if (table) text += "{";
        for (std::size_t j = 0; j < argument.size(); ++j) {
            if (j > 0) text += ", ";
            text += shortest(argument[j]);
        }
        if (table) text += "}";
    }
    return text + ")";
}

}  // namespace pral
