// Start values of the families on the positive numbers, and of those that begin at a location of their own.
#include <numbers>

#include "distributions/families.h"
#include "distributions/real_counts.h"
#include "fitting/starts.h"
#include "numerics/constants.h"
#include "numerics/elementary.h"
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
Starts start_pearson5(const StartData& data) {
    if (const Message objection = positive(data.x)) return objection;
    const double shape = gamma_shape(-data.x.log_below_harmonic_mean());
    return one({shape, data.x.harmonic_mean() * shape});
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
Starts start_dagum(const StartData& data) {
    if (const Message objection = positive(data.x)) return objection;
    return dagum_places(data.x);
}

/// An origin below the data and the estimate of the family that begins there.
template <class Estimate>
Starts at_origins(const Sample& x, Estimate estimate) {
    Starts starts;
    for (const double part : kEndDistances) {
        const double origin = x.min() - part * reach(x);
        const std::vector<double> above = moved(x, origin);
        for (const Parameters& found : estimate(origin, Sample(above)).places) starts.places.push_back(found);
    }
    return starts;
}
Starts start_burr(const StartData& data) {
    return at_origins(data.x, [](double origin, const Sample& above) {
        Starts starts;
        for (const Parameters& p : dagum_places(above).places)
            starts.places.push_back(place({origin, p[1], p[0], p[2]}));
        return starts;
    });
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
    return at_origins(data.x, [](double origin, const Sample& above) {
        const double mean = above.mean(), harmonic = above.harmonic_mean();
        return one({origin, std::sqrt(mean * harmonic), std::sqrt(2 * (std::sqrt(mean / harmonic) - 1))});
    });
}
Starts start_levy(const StartData& data) {
    return at_origins(data.x, [](double origin, const Sample& above) {
        return one({above.harmonic_mean(), origin});
    });
}
Starts start_log_gamma(const StartData& data) {
    return at_origins(data.x, [](double origin, const Sample& above) {
        const std::vector<double> raised = moved(above, -1);
        const std::vector<double> logs = logarithms(Sample(raised));
        const Parameters p = gamma_place(Sample(logs));
        return one({p[0], p[1], origin});
    });
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
Starts start_lifetime_exp(const StartData& data) {
    if (const Message objection = not_negative(data.x)) return objection;
    const double m = data.x.mean();
    Starts starts;
    for (const double growth : {0.05, 0.5, 2.0, 8.0})
        starts.places.push_back(place({std::log(growth / (m * numerics::expm1_fn(growth))), growth / m}));
    return starts;
}

/// Both shapes by a scan, the scale by the median.
Starts start_pearson6(const StartData& data) {
    if (const Message objection = positive(data.x)) return objection;
    Starts starts;
    for (const double alpha1 : {0.5, 2.0, 8.0, 40.0}) {
        for (const double alpha2 : {0.7, 3.0, 12.0, 100.0}) {
            const double median = Pearson6(alpha1, alpha2, 1).quantile(0.5);
            starts.places.push_back(place({alpha1, alpha2, data.x.quantile(0.5) / median}));
        }
    }
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
constexpr Range kSquaredRate = {Range::Kind::location, -HUGE_VAL, HUGE_VAL, -2};
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
    fitted<Dagum, 3>("Dagum", kAllPositive, start_dagum),
    fitted<Burr, 4>("Burr", {kBelowMin, kPositive, kPositive, kPositive}, start_burr),
    fitted<Fatigue, 3>("Fatigue", {kBelowMin, kPositive, kPositive}, start_fatigue),
    fitted<Levy, 2>("Levy", {kPositive, kBelowMin}, start_levy),
    fitted<LogGamma, 3>("LogGamma", {kPositive, kPositive, kBelowMin}, start_log_gamma),
    fitted<LogLaplace, 3>("LogLaplace", kAllPositive, start_log_laplace, {.closed_form = true}),
    fitted<Lifetime2, 2>("Lifetime2", kAllPositive, start_lifetime2),
    fitted<Lifetime3, 3>("Lifetime3", {kPositive, kSquaredRate, kPositive}, start_lifetime3),
    fitted<LifetimeExp, 2>("LifetimeExp", {kReal, kPositive}, start_lifetime_exp),
    fitted<Pearson6, 3>("Pearson6", kAllPositive, start_pearson6, {.names = {"alpha1", "alpha2"}}),
    fitted<F, 2>("F", kAllPositive, start_f),
    fitted<RealCounts<NCChiSq>, 2>("NCChiSq", kAllPositive, start_nc_chi_square,
        {.rounding = {0, false, 1}, .costly = true}),
    fitted<NCF, 3>("NCF", {kNotHuge, kNotHuge, kNotHuge}, start_ncf, {.costly = true}),
};
// clang-format on

}  // namespace

std::span<const FittedFamily> positive_families() { return kFamilies; }

}  // namespace pral::fitting
