// Start values of the families on the positive numbers, and of those that begin at a location of their own.
#include <numbers>
#include <optional>

#include "distributions/families.h"
#include "distributions/real_counts.h"
#include "fitting/starts.h"
#include "numerics/constants.h"
#include "numerics/elementary.h"
#include "numerics/gamma.h"
#include "numerics/golden_section.h"
#include "numerics/sums.h"

namespace pral::fitting {

namespace {

/// The shape of the gamma distribution whose ln mean - mean ln is s, to 1.5% (Minka 2002).
double gamma_shape(double s) { return (3 - s + std::sqrt((s - 3) * (s - 3) + 24 * s)) / (12 * s); }

Starts start_mean(const StartData& data) { return one({data.x.mean()}); }

Parameters gamma_place(const Sample& x) {
    const double shape = gamma_shape(x.log_below_mean());
    return place({shape, x.mean() / shape});
}
Starts start_gamma(const StartData& data) {
    if (const Message objection = positive(data.x)) return objection;
    return {gamma_place(data.x)};
}
/// The reciprocals are gamma variables.
Parameters inverse_gamma_place(const Sample& x) {
    const double shape = gamma_shape(-x.log_below_harmonic_mean());
    return place({shape, x.harmonic_mean() * shape});
}
Starts start_pearson5(const StartData& data) {
    if (const Message objection = positive(data.x)) return objection;
    return {inverse_gamma_place(data.x)};
}
Starts start_chi_square(const StartData& data) {
    if (const Message objection = positive(data.x)) return objection;
    return one({data.x.mean()});
}
Starts start_chi(const StartData& data) {
    if (const Message objection = positive(data.x)) return objection;
    const double mean_square = data.x.root_mean_square() * data.x.root_mean_square();
    return {place({std::fmax(mean_square, 1.05)}), place({1.01})};
}
/// A scale whose square is the mean square over Dimension.
template <int Dimension>
Starts start_root_mean_square(const StartData& data) {
    if (const Message objection = positive(data.x)) return objection;
    return one({data.x.root_mean_square() / std::sqrt(static_cast<double>(Dimension))});
}
Starts start_inverse_gauss(const StartData& data) {
    if (const Message objection = positive(data.x)) return objection;
    return one({data.x.mean(), 1 / (1 / data.x.harmonic_mean() - 1 / data.x.mean())});
}

Starts start_lognormal_e(const StartData& data) {
    if (const Message objection = positive(data.x)) return objection;
    return one({data.x.mean_log(), std::sqrt(data.x.variance_log())});
}
/// Mean and standard deviation of the lognormal variable itself.
Starts start_lognormal(const StartData& data) {
    if (const Message objection = positive(data.x)) return objection;
    const double variance = data.x.variance_log(), mean = data.x.geometric_mean() * std::exp(0.5 * variance);
    return one({mean, mean * std::sqrt(numerics::expm1_fn(variance))});
}
/// The base is a matter of taste: the likelihood is the same for each.
Starts start_lognormal_b(const StartData& data) {
    if (const Message objection = positive(data.x)) return objection;
    return one({data.x.mean_log() / numerics::kLn10, std::sqrt(data.x.variance_log()) / numerics::kLn10, 10});
}

/// By the mean and deviation of ln x, which for a shape of 1 and a scale of 1 are `mean` and `deviation`.
Parameters place_by_logarithms(const Sample& x, double mean, double deviation) {
    const double shape = deviation / std::sqrt(x.variance_log());
    return place({shape, std::exp(x.mean_log() - mean / shape)});
}
Parameters weibull_place(const Sample& x) {
    return place_by_logarithms(x, -numerics::kEuler, numerics::kPi / std::sqrt(6.0));
}
Starts start_weibull(const StartData& data) {
    if (const Message objection = positive(data.x)) return objection;
    return {weibull_place(data.x)};
}
Starts start_log_logistic(const StartData& data) {
    if (const Message objection = positive(data.x)) return objection;
    return {place_by_logarithms(data.x, 0, numerics::kPi / std::sqrt(3.0))};
}

/// At the smallest value, with the rate of the logarithms above it.
Starts start_pareto(const StartData& data) {
    if (const Message objection = positive(data.x)) return objection;
    const double mean = numerics::interleaved_sum(
        data.x.values(), [low = data.x.min()](double x) { return numerics::log_ratio(x, low); });
    return one({data.x.count() / mean, data.x.min()});
}
/// The rate that suits each scale.
Starts start_pareto2(const StartData& data) {
    if (const Message objection = not_negative(data.x)) return objection;
    const double median = data.x.quantile(0.5), middle = median > 0 ? median : data.x.mean();
    Starts starts;
    for (const double part : {1.0, 0.1, 10.0, 1000.0}) {
        const double b = part * middle;
        const double sum =
            numerics::interleaved_sum(data.x.values(), [=](double x) { return numerics::log1p_fn(x / b); });
        starts.places.push_back(place({b, data.x.count() / sum}));
    }
    return starts;
}

/// Shape and scale by the quantiles of ln x for each further shape p: ln X = ln b + G/a, where G is logistic of shape p.
Starts dagum_places(const Sample& x) {
    const std::vector<double> logs = logarithms(x);
    const Sample log_x(logs);
    Starts starts;
    for (const double p : {1.0, 0.3, 3.0, 10.0}) {
        const LocationAndScale fit(StandardGeneralisedLogistic(p), log_x);
        starts.places.push_back(place({1 / fit.scale, std::exp(fit.location), p}));
    }
    return starts;
}
/// The limit of small p and large a: a power of x up to its largest value.
Parameters power_place(const Sample& x) {
    constexpr double kLimit = 1e-10, kBeyond = 20;
    const double scale = kLimit * (std::log(x.max()) - x.mean_log());
    return place({1 / scale, x.max() * std::exp(kBeyond * scale), kLimit});
}

Starts start_dagum(const StartData& data) {
    if (const Message objection = positive(data.x)) return objection;
    Starts starts = dagum_places(data.x);
    if (!data.x.constant()) starts.places.push_back(power_place(data.x));
    return starts;
}

/// For families that have limits as their origin goes far below the data, and a ridge of their likelihood towards them.
constexpr std::array kFarOrigins = {0.002, 0.02, 0.2, 1.0, 4.0, 16.0, 64.0, 256.0, 1e3, 1e4, 1e6};

/// An origin below the data and the estimate of the family that begins there.
template <class Estimate>
Starts at_origins(const Sample& x, Estimate estimate, std::span<const double> distances = end_distances()) {
    Starts starts;
    for (const double part : distances) {
        const double origin = x.min() - part * reach(x);
        const std::vector<double> above = moved(x, origin);
        for (const Parameters& found : estimate(origin, Sample(above)).places) starts.places.push_back(found);
    }
    return starts;
}
/// The best power of the distance from an origin, of those that rise: others have no bound there. Shapes and scales of that
/// limit leave no room to climb along the origin, so it is searched for here.
std::optional<Parameters> rising_power_place(const Sample& x) {
    constexpr double kNearest = -6, kFarthest = 7, kStep = 0.5;
    const auto origin = [&](double t) { return x.min() - x.deviation() * std::exp(t); };
    const auto cost = [&](double t) {
        const double from = origin(t), width = x.max() - from;
        double sum = 0;
        for (const double value : x.values()) sum += std::log(width / (value - from));
        const double below = sum / x.count();  // the reciprocal of the power
        return below < 1 ? std::log(below) + std::log(width) - below : HUGE_VAL;
    };
    double best = kNearest;
    for (double t = kNearest; t <= kFarthest; t += kStep) {
        if (cost(t) < cost(best)) best = t;
    }
    if (std::isinf(cost(best))) return std::nullopt;
    const double t = numerics::golden_section_minimise(cost, best - kStep, best + kStep, 1e-4);
    const std::vector<double> above = moved(x, origin(t));
    const Parameters power = power_place(Sample(above));
    return place({origin(t), power[1], power[0], power[2]});
}
Starts start_burr(const StartData& data) {
    constexpr std::array kOrigins = {0.002, 0.02, 0.2, 1.0, 10.0, 1000.0};
    const auto estimate = [](double origin, const Sample& above) {
        Starts starts;
        for (const Parameters& p : dagum_places(above).places)
            starts.places.push_back(place({origin, p[1], p[0], p[2]}));
        return starts;
    };
    Starts starts = at_origins(data.x, estimate, kOrigins);
    if (data.x.constant()) return starts;
    if (const auto power = rising_power_place(data.x)) starts.places.push_back(*power);
    return starts;
}
Starts start_weibull3(const StartData& data) {
    if (const Message objection = positive(data.x)) return objection;
    Starts starts;
    for (const double part : {0.98, 0.9, 0.5, 0.05}) {
        const double origin = part * data.x.min();
        const std::vector<double> above = moved(data.x, origin);
        const Parameters p = weibull_place(Sample(above));
        starts.places.push_back(place({p[0], p[1], origin}));
    }
    return starts;
}
/// The mean and the harmonic mean (Ng, Kundu and Balakrishnan 2003).
Starts start_fatigue(const StartData& data) {
    const auto estimate = [](double origin, const Sample& above) {
        const double mean = above.mean(), harmonic = above.harmonic_mean();
        return one({origin, std::sqrt(mean * harmonic), std::sqrt(2 * (std::sqrt(mean / harmonic) - 1))});
    };
    return at_origins(data.x, estimate, kFarOrigins);
}
Starts start_levy(const StartData& data) {
    return at_origins(data.x, [](double origin, const Sample& above) {
        return one({above.harmonic_mean(), origin});
    });
}
/// The likelihood of an origin, with the best shape and scale for it: ln(x - origin + 1) are gamma variables.
class LogGammaProfile {
  public:
    Parameters place;
    double mean_log_likelihood;

    LogGammaProfile(const Sample& x, double origin) {
        const std::vector<double> raised = moved(x, origin - 1);
        const std::vector<double> logs = logarithms(Sample(raised));
        const Sample y(logs);
        const double below = y.log_below_mean();
        const auto minus = [&](double log_shape) { return -value(y.mean(), below, std::exp(log_shape)); };
        constexpr double kFormula = 0.03;  // how far it may be from the best shape
        const double formula = std::log(gamma_shape(below));
        const double shape =
            std::exp(numerics::golden_section_minimise(minus, formula - kFormula, formula + kFormula, 1e-8));
        place = fitting::place({shape, y.mean() / shape, origin});
        mean_log_likelihood = value(y.mean(), below, shape);
    }

  private:
    /// From the mean of the logarithms and the distance of their own mean logarithm below the logarithm of it.
    static double value(double mean, double below, double shape) {
        // The terms that grow with the shape cancel by Stirling's formula.
        const double peak = 0.5 * std::log(shape) - numerics::kLnSqrt2Pi - stirling_rest(shape);
        return peak - std::log(mean) - mean - (shape - 1) * below;
    }
    /// What Stirling's formula leaves of ln Gamma.
    static double stirling_rest(double a) {
        constexpr double kLarge = 10;
        if (a >= kLarge) return numerics::lgamma_correction(a);
        return numerics::log_gamma(a) - ((a - 0.5) * std::log(a) - a + numerics::kLnSqrt2Pi);
    }
};
/// The maximum itself. Shape, scale and origin make up for each other along a ridge of the likelihood, too narrow to climb
/// along: so only the distance of the origin is searched for, up to where nothing is left to gain.
Starts start_log_gamma(const StartData& data) {
    constexpr double kNearest = -6, kFarthest = 9, kStep = 1;
    constexpr std::size_t kPart = 2000;
    const Sample& all = data.x;
    const std::vector<double> values = thinned(all.values(), kPart);
    const Sample part(values);
    const auto at = [&](const Sample& x, double log_distance) {
        return LogGammaProfile(x, all.min() - all.deviation() * std::exp(log_distance));
    };
    if (!(all.range() > 0)) return one({numerics::kNaN});
    std::vector<double> grid;
    for (double t = kNearest; t <= kFarthest; t += kStep) grid.push_back(at(part, t).mean_log_likelihood);
    // An origin that approaches the smallest value may raise the likelihood without end; a maximum elsewhere is preferred.
    std::size_t best = 0;
    for (std::size_t i = 1; i < grid.size(); ++i) {
        const bool maximum = grid[i] > grid[i - 1] && (i + 1 == grid.size() || grid[i] >= grid[i + 1]);
        if (maximum && (best == 0 || grid[i] > grid[best])) best = i;
    }
    double about = kNearest + kStep * static_cast<double>(best);
    const auto cost = [&](double t) { return -at(all, t).mean_log_likelihood; };
    if (all.size() > part.size()) {  // of all, the maximum may be some steps further
        for (const double step : {-kStep, kStep}) {
            while (about + step > kNearest && about + step < kFarthest && cost(about + step) < cost(about))
                about += step;
        }
    }
    const double log_distance = numerics::golden_section_minimise(cost, about - kStep, about + kStep, 1e-3);
    return {at(all, log_distance).place};
}

/// The maximum itself: the sums of the distances of ln x from ln Delta below and above it, Delta being one of the values,
/// give both rates.
Starts start_log_laplace(const StartData& data) {
    if (const Message objection = positive(data.x)) return objection;
    std::vector<double> logs = logarithms(data.x);
    std::ranges::sort(logs);
    double above = 0, below = 0, best = HUGE_VAL;
    for (const double y : logs) above += y - logs[0];
    Starts starts = one({0, 0, 0});
    for (std::size_t i = 0; i < logs.size(); ++i) {
        if (i > 0) {
            const double step = logs[i] - logs[i - 1];
            below += step * static_cast<double>(i);
            above = std::fmax(above - step * static_cast<double>(logs.size() - i), 0);
        }
        const double both = std::sqrt(above * below), spread = above + below + 2 * both;
        if (!(spread < best)) continue;
        best = spread;
        // With Delta at an end of the data one of the sums is 0, and its rate as large as can be.
        const auto rate = [&](double sum) { return std::fmin(data.x.count() / sum, 1e9); };
        starts.places[0] = place({rate(above + both), rate(below + both), std::exp(logs[i])});
    }
    return starts;
}

/// Constant, then rising hazards with the data's mean.
Starts start_lifetime2(const StartData& data) {
    if (const Message objection = not_negative(data.x)) return objection;
    const double m = data.x.mean();
    return {place({0.5 / m, 0.6 / (m * m)}), place({0.05 / m, 1.5 / (m * m)}),
            place({0.95 / m, 0.05 / (m * m)})};
}
Starts start_lifetime3(const StartData& data) {
    if (const Message objection = not_negative(data.x)) return objection;
    const double m = data.x.mean();
    Starts starts;
    for (const double a : {0.9, 0.4, 0.05}) {
        for (const double c : {0.05, 0.5, 2.0}) starts.places.push_back(place({a / m, 0, c / (m * m * m)}));
    }
    return starts;
}
/// The coefficient B as a part of its limits, -2 sqrt(A C) and 2 sqrt(A C).
double lifetime3_limit(const Parameters& p) { return 2 * std::sqrt(p[0]) * std::sqrt(p[2]); }
Parameters lifetime3_search(const Parameters& own) {
    Parameters moved = own;
    moved[1] /= lifetime3_limit(own);
    return moved;
}
Parameters lifetime3_own(const Parameters& moved) {
    Parameters own = moved;
    own[1] *= lifetime3_limit(moved);
    return own;
}
/// The maximum itself: A has a closed form for each B, of which growths from almost none to several times that of Gumbel's
/// minimum, with the deviation of the data, are tried. A follows B too closely to climb along both.
Starts start_lifetime_exp(const StartData& data) {
    const Sample& x = data.x;
    if (const Message objection = not_negative(x)) return objection;
    if (x.constant()) return one({-1 - std::log(x.mean()), 1 / x.mean()});
    const auto best_a = [&](double b) {
        double sum = 0;  // of e^(b x) - 1, over e^(b max)
        for (const double value : x.values())
            sum -= std::exp(b * (value - x.max())) * numerics::expm1_fn(-b * value);
        return std::log(x.count() * b / sum) - b * x.max();
    };
    const auto cost = [&](double log_b) {
        const double b = std::exp(log_b);
        return -best_a(b) - b * x.mean();
    };
    constexpr double kLeastGrowth = 1e-3, kMostOfGumbel = 8, kStep = 0.7;
    const double of_gumbel = numerics::kPi / std::sqrt(6.0) / x.deviation();
    const double from = std::log(kLeastGrowth / x.mean()), to = std::log(kMostOfGumbel * of_gumbel);
    constexpr int kMostSteps = 2000;
    double best = from, least = cost(from);
    for (int i = 1; i < kMostSteps && from + i * kStep < to + kStep; ++i) {
        const double t = from + i * kStep, value = cost(t);
        if (value < least) best = t, least = value;
    }
    const double b = std::exp(numerics::golden_section_minimise(cost, best - kStep, best + kStep, 1e-9));
    return one({best_a(b), b});
}

/// Both shapes by a scan, the scale by the median; and the limits of large shapes: the gamma distribution, that of gamma
/// variables' reciprocals, the lognormal.
Starts start_pearson6(const StartData& data) {
    if (const Message objection = positive(data.x)) return objection;
    const Sample& x = data.x;
    Starts starts;
    for (const double alpha1 : {0.5, 2.0, 8.0, 40.0}) {
        for (const double alpha2 : {0.7, 3.0, 12.0, 100.0}) {
            const double median = Pearson6(alpha1, alpha2, 1).quantile(0.5);
            starts.places.push_back(place({alpha1, alpha2, x.quantile(0.5) / median}));
        }
    }
    constexpr double kLarge = 1e9;
    const Parameters gamma = gamma_place(x), inverse = inverse_gamma_place(x);
    starts.places.push_back(place({gamma[0], kLarge, gamma[1] * kLarge}));
    starts.places.push_back(place({kLarge, inverse[0], inverse[1] / kLarge}));
    const double both = 2 / x.variance_log();
    starts.places.push_back(place({both, both, x.geometric_mean()}));
    return starts;
}
Starts start_f(const StartData& data) {
    if (const Message objection = positive(data.x)) return objection;
    Starts starts;
    for (const double nu1 : {1.0, 4.0, 20.0, 200.0}) {
        for (const double nu2 : {1.0, 4.0, 20.0, 200.0}) starts.places.push_back(place({nu1, nu2}));
    }
    return starts;
}
/// Mean nu + pnonc and variance 2 nu + 4 pnonc.
Starts start_nc_chi_square(const StartData& data) {
    if (const Message objection = positive(data.x)) return objection;
    const double m = data.x.mean(), by_moments = 0.5 * data.x.variance() - m;
    Starts starts;
    for (const double pnonc : {std::clamp(by_moments, 0.02 * m, 0.9 * m), 0.3 * m, 0.9 * m})
        starts.places.push_back(place({m - pnonc, pnonc}));
    return starts;
}
Starts start_ncf(const StartData& data) {
    if (const Message objection = positive(data.x)) return objection;
    Starts starts;
    for (const double nu1 : {2.0, 10.0}) {
        for (const double nu2 : {4.0, 25.0}) {
            const double excess = nu1 * (data.x.mean() * (nu2 - 2) / nu2 - 1);
            starts.places.push_back(place({nu1, nu2, std::fmax(excess, 0.3)}));
        }
    }
    return starts;
}

/// Beyond, the family is as good as its limits, and its density takes long.
constexpr Range kNotHuge = between(0, 1e4);
constexpr std::array<Range, 4> kAllPositive = {kPositive, kPositive, kPositive, kPositive};

// clang-format off
const FittedFamily kFamilies[] = {
    fitted<Expon, 1>("Expon", kAllPositive, start_mean, {.closed_form = true}),
    fitted<Gamma, 2>("Gamma", kAllPositive, start_gamma),
    fitted<Gamma, 2>("Erlang", kAllPositive, start_gamma, {.rounding = {0, true, 1}}),
    fitted<RealCounts<ChiSq>, 1>("ChiSq", kAllPositive, start_chi_square, {.rounding = {0, false, 1}}),
    fitted<RealCounts<Chi>, 1>("Chi", {above(1)}, start_chi, {.rounding = {0}}),
    fitted<Rayleigh, 1>("Rayleigh", kAllPositive, start_root_mean_square<2>, {.closed_form = true}),
    fitted<Maxwell, 1>("Maxwell", kAllPositive, start_root_mean_square<3>, {.closed_form = true}),
    fitted<Pearson5, 2>("Pearson5", kAllPositive, start_pearson5),
    fitted<InvGauss, 2>("InvGauss", kAllPositive, start_inverse_gauss,
        {.closed_form = true, .names = {"mu", "lambda"}}),
    fitted<LognormalE, 2>("LognormalE", {kReal, kPositive}, start_lognormal_e,
        {.closed_form = true, .names = {"mu", "sigma"}}),
    fitted<Lognormal, 2>("Lognormal", kAllPositive, start_lognormal, {.closed_form = true, .names = {"mu", "sigma"}}),
    fitted<LognormalB, 3>("LognormalB", {kReal, kPositive, kHeld}, start_lognormal_b,
        {.closed_form = true, .names = {"mu", "sigma"}}),
    fitted<Weibull, 2>("Weibull", kAllPositive, start_weibull),
    fitted<Weibull3, 3>("Weibull3", {kPositive, kPositive, kPositiveBelowMin}, start_weibull3),
    fitted<LogLogistic, 2>("LogLogistic", kAllPositive, start_log_logistic),
    fitted<Pareto, 2>("Pareto", {kPositive, kHeld}, start_pareto, {.closed_form = true}),
    fitted<Pareto2, 2>("Pareto2", kAllPositive, start_pareto2),
    fitted<Dagum, 3>("Dagum", kAllPositive, start_dagum, {.climbs = 4}),
    fitted<Burr, 4>("Burr", {kBelowMin, kPositive, kPositive, kPositive}, start_burr, {.climbs = 4}),
    fitted<Fatigue, 3>("Fatigue", {kBelowMin, kPositive, kPositive}, start_fatigue),
    fitted<Levy, 2>("Levy", {kPositive, kBelowMin}, start_levy),
    fitted<LogGamma, 3>("LogGamma", {kPositive, kPositive, kBelowMin}, start_log_gamma, {.closed_form = true}),
    fitted<LogLaplace, 3>("LogLaplace", kAllPositive, start_log_laplace, {.closed_form = true}),
    fitted<Lifetime2, 2>("Lifetime2", kAllPositive, start_lifetime2),
    fitted<Lifetime3, 3>("Lifetime3", {kPositive, between(-1, 1), kPositive}, start_lifetime3, {.search = {lifetime3_search, lifetime3_own, {kPositive, {Range::Kind::location, -HUGE_VAL, HUGE_VAL, -2}, kPositive}}}),
    fitted<LifetimeExp, 2>("LifetimeExp", {kReal, kPositive}, start_lifetime_exp),
    fitted<Pearson6, 3>("Pearson6", kAllPositive, start_pearson6, {.names = {"alpha1", "alpha2"}, .climbs = 4}),
    fitted<F, 2>("F", kAllPositive, start_f),
    fitted<RealCounts<NCChiSq>, 2>("NCChiSq", kAllPositive, start_nc_chi_square,
        {.rounding = {0, false, 1}, .costly = true}),
    fitted<NCF, 3>("NCF", {kNotHuge, kNotHuge, kNotHuge}, start_ncf, {.costly = true}),
};
// clang-format on

}  // namespace

std::span<const FittedFamily> positive_families() { return kFamilies; }

}  // namespace pral::fitting
