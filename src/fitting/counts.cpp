// Start values of the families on the integers.
#include "distributions/families.h"
#include "distributions/real_counts.h"
#include "fitting/starts.h"

namespace pral::fitting {

namespace {

/// What the estimators know of a sample, or of the part of it that a zero-inflated or zero-truncated family leaves to its
/// base family.
struct CountMoments {
    double mean, variance, zeros, max;
    const double* first;  // a count that the caller has fixed, or null

    /// The variance beyond the mean, as a Poisson sample has none, and at least a small part of it.
    double excess() const { return std::fmax(variance - mean, 1e-3 * mean); }
};
using Places = std::vector<Parameters>;
using CountEstimator = Places (*)(const CountMoments&);

Places places_poisson(const CountMoments& m) { return {place({m.mean})}; }
Places places_geometric(const CountMoments& m) { return {place({1 / (1 + m.mean)})}; }
Places places_polya(const CountMoments& m) {
    return {place({m.mean * m.mean / m.excess(), m.excess() / m.mean})};
}
Places places_neg_bin(const CountMoments& m) {
    const double s = m.mean * m.mean / m.excess();
    return {place({s, s / (s + m.mean)})};
}
/// Numbers of trials above the largest count: near to it, by the moments, many.
Places places_binomial(const CountMoments& m) {
    const double by_moments = m.mean * m.mean / std::fmax(m.mean - m.variance, 1e-3 * m.mean);
    Places places;
    for (const double n : {by_moments, m.max + 0.1, 2 * m.max + 1, 100 * m.max + 1}) {
        const double trials = m.first != nullptr ? *m.first : std::fmax(n, m.max + 0.01);
        places.push_back(place({trials, m.mean / trials}));
    }
    return places;
}
/// The moments of each number of trials, what would be negative set to a small number.
Places places_beta_binomial(const CountMoments& m) {
    Places places;
    for (const double n : {m.max + 0.1, 1.2 * m.max + 1, 2 * m.max + 1, 10 * m.max + 1}) {
        const double trials = m.first != nullptr ? *m.first : n, p = m.mean / trials;
        const double ratio = m.variance / (trials * p * (1 - p));  // 1 + (n - 1)/(alpha + beta + 1)
        const double sum = std::clamp((trials - ratio) / (ratio - 1), 0.1, 1e4);
        places.push_back(place({trials, std::fmax(p * sum, 1e-3), std::fmax((1 - p) * sum, 1e-3)}));
    }
    return places;
}
/// The share of zeros is alpha/(alpha + beta).
Places places_beta_geometric(const CountMoments& m) {
    Places places;
    const double zeros = std::clamp(m.zeros, 0.02, 0.98);
    for (const double alpha : {2.0, 0.6, 6.0, 50.0})
        places.push_back(place({alpha, std::fmax(alpha * (1 - zeros) / zeros, 2.1)}));
    return places;
}
/// The mean is s b/(a - 1).
Places places_beta_neg_bin(const CountMoments& m) {
    Places places;
    for (const double s : {1.0, 3.0, 10.0, 40.0}) {
        for (const double a : {1.2, 3.0, 10.0, 50.0}) places.push_back(place({s, a, m.mean * (a - 1) / s}));
    }
    return places;
}
Places places_logarithmic(const CountMoments& m) {
    Places places;
    for (const double part : {1.0, 3.0, 10.0, 30.0})
        places.push_back(place({1 - 1 / (1 + part * (m.mean - 1))}));
    return places;
}

/// Half the sum and half the difference of variance and mean are the two rates.
Places places_skellam(const CountMoments& m) {
    const double least = 1e-3 * m.variance;
    return {place(
        {std::fmax(0.5 * (m.variance + m.mean), least), std::fmax(0.5 * (m.variance - m.mean), least)})};
}
/// The first rate by the share of zeros, which cannot be below the second: the last place is the Poisson distribution.
Places places_burnt_finger(const CountMoments& m) {
    const double first = std::fmax(-std::log(std::clamp(m.zeros, 1e-12, 0.99)), 0.01);
    Places places;
    for (const double part : {0.9, 0.5, 0.1}) places.push_back(place({first, part * first}));
    places.push_back(place({m.mean, m.mean}));
    return places;
}

/// A part of the mean is the constant rate; the mean and the excess variance alpha beta^2 tell the others.
Places places_delaporte(const CountMoments& m) {
    Places places;
    for (const double part : {0.3, 0.6, 0.05, 0.85}) {
        const double mean = (1 - part) * m.mean, beta = m.excess() / mean;
        places.push_back(place({mean / beta, beta, part * m.mean}));
    }
    return places;
}

/// The ends of the uniform rate by mean and variance.
Starts start_poisson_uniform(const StartData& data) {
    const double n = data.x.count(), m = data.x.mean(), variance = data.x.variance() * n / (n - 1);
    if (m >= variance) return "Fit not possible as variance < mean";
    // Not a number for a single value, which has no variance.
    const double low = std::max(m - std::sqrt(3 * (variance - m)), 0.0), high = 2 * m - low;
    return {place({low, high}), place({0.05 * m, 1.95 * m}), place({0.5 * m, 1.5 * m})};
}
Starts start_mean(const StartData& data) { return one({data.x.mean()}); }

/// The families that begin at 0, and Skellam's on all integers.
template <CountEstimator estimator>
Starts by_moments(const StartData& data) {
    const Sample& x = data.x;
    if (const Message objection = estimator == places_skellam ? nullptr : not_negative(x)) return objection;
    Starts starts;
    starts.places = estimator({x.mean(), x.variance(), x.share_of(0), x.max(), data.first});
    return starts;
}
Starts start_logarithmic(const StartData& data) {
    if (const Message objection = positive(data.x)) return objection;
    return by_moments<places_logarithmic>(data);
}

/// The base family's estimate for each weight that is tried: the share of what is not 0, all that a base family without
/// zeros can have, and others up to 1.
template <CountEstimator estimator, int BaseParameters>
Starts inflated(const StartData& data) {
    const Sample& x = data.x;
    const double zeros = x.share_of(0), mean = x.mean(), mean_square = x.variance() + mean * mean;
    Starts starts;
    for (const double part : {0.0, 0.05, 0.3, 0.7, 0.95}) {
        const double weight = std::fmin(1 - zeros * (1 - part), 1 - 1e-3), base_mean = mean / weight;
        const CountMoments base = {base_mean, mean_square / weight - base_mean * base_mean,
                                   zeros * part / weight, x.max(), data.first};
        for (Parameters p : estimator(base)) {
            p[BaseParameters] = weight;
            starts.places.push_back(p);
        }
    }
    return starts;
}

/// The base family's estimate for each share of zeros that may have been left out.
template <CountEstimator estimator>
Starts truncated(const StartData& data) {
    const Sample& x = data.x;
    if (const Message objection = positive(x)) return objection;
    Starts starts;
    for (const double zeros : {0.01, 0.2, 0.5, 0.8}) {
        const double mean = x.mean() * (1 - zeros),
                     mean_square = (x.variance() + x.mean() * x.mean()) * (1 - zeros);
        const CountMoments base = {mean, mean_square - mean * mean, zeros, x.max(), data.first};
        for (const Parameters& p : estimator(base)) starts.places.push_back(p);
    }
    return starts;
}
Starts start_zt_geometric(const StartData& data) {
    if (const Message objection = positive(data.x)) return objection;
    return one({1 / data.x.mean()});
}

constexpr ParameterNames kInflated1 = {"1", "pi"}, kInflated2 = {"1", "2", "pi"},
                         kInflated3 = {"1", "2", "3", "pi"};
constexpr Range kCount = kAboveMax, kNotNegative = {Range::Kind::between, 0, HUGE_VAL, 1, true};

// clang-format off
const FittedFamily kFamilies[] = {
    fitted<Bernoulli, 1>("Bernoulli", {kProbability}, start_mean, {.closed_form = true}),
    fitted<Poisson, 1>("Poisson", {kPositive}, start_mean, {.closed_form = true}),
    fitted<PoissonUniform, 2>("PoissonUniform", {kNotNegative, kPositive}, start_poisson_uniform),
    fitted<BurntFingerPoisson, 2>("BurntFingerPoisson", {kPositive, kPositive}, by_moments<places_burnt_finger>),
    fitted<Skellam, 2>("Skellam", {kPositive, kPositive}, by_moments<places_skellam>),
    fitted<Geometric, 1>("Geometric", {kProbability}, by_moments<places_geometric>, {.closed_form = true}),
    fitted<Logarithmic, 1>("Logarithmic", {kProbability}, start_logarithmic),
    fitted<RealCounts<Binomial>, 2>("Binomial", {kCount, kProbability},
        by_moments<places_binomial>, {.begins_with_count = true, .rounding = {0}}),
    fitted<RealCounts<BetaBinomial>, 3>("BetaBinomial", {kCount, kPositive, kPositive},
        by_moments<places_beta_binomial>, {.begins_with_count = true, .rounding = {0}}),
    fitted<RealCounts<NegBin>, 2>("NegBin", {kPositive, kProbability}, by_moments<places_neg_bin>, {.rounding = {0}}),
    fitted<Polya, 2>("Polya", {kPositive, kPositive}, by_moments<places_polya>),
    fitted<Delaporte, 3>("Delaporte", {kPositive, kPositive, kPositive}, by_moments<places_delaporte>),
    fitted<BetaGeometric, 2>("BetaGeometric", {kPositive, kPositive}, by_moments<places_beta_geometric>),
    fitted<RealCounts<BetaNegBin>, 3>("BetaNegBin", {kPositive, kPositive, kPositive}, by_moments<places_beta_neg_bin>),
    fitted<ZIPoisson, 2>("ZIPoisson", {kPositive, kProbability},
        inflated<places_poisson, 1>, {.names = {"lambda", "pi"}}),
    fitted<ZIGeometric, 2>("ZIGeometric", {kProbability, kProbability},
        inflated<places_geometric, 1>, {.names = kInflated1}),
    fitted<ZILogarithmic, 2>("ZILogarithmic", {kProbability, kProbability},
        inflated<places_logarithmic, 1>, {.names = kInflated1}),
    fitted<ZeroInflated<RealCounts<Binomial>>, 3>("ZIBinomial", {kCount, kProbability, kProbability},
        inflated<places_binomial, 2>, {.names = kInflated2, .begins_with_count = true}),
    fitted<ZeroInflated<RealCounts<NegBin>>, 3>("ZINegBin", {kPositive, kProbability, kProbability},
        inflated<places_neg_bin, 2>, {.names = kInflated2}),
    fitted<ZIPolya, 3>("ZIPolya", {kPositive, kPositive, kProbability},
        inflated<places_polya, 2>, {.names = kInflated2}),
    fitted<ZIDelaporte, 4>("ZIDelaporte", {kPositive, kPositive, kPositive, kProbability},
        inflated<places_delaporte, 3>, {.names = kInflated3}),
    fitted<ZISkellam, 3>("ZISkellam", {kPositive, kPositive, kProbability},
        inflated<places_skellam, 2>, {.names = kInflated2}),
    fitted<ZeroInflated<RealCounts<BetaBinomial>>, 4>("ZIBetaBinomial", {kCount, kPositive, kPositive, kProbability},
        inflated<places_beta_binomial, 3>, {.names = kInflated3, .begins_with_count = true, .rounding = {0}}),
    fitted<ZIBetaGeometric, 3>("ZIBetaGeometric", {kPositive, kPositive, kProbability},
        inflated<places_beta_geometric, 2>, {.names = kInflated2}),
    fitted<ZeroInflated<RealCounts<BetaNegBin>>, 4>("ZIBetaNegBin",
        {kPositive, kPositive, kPositive, kProbability}, inflated<places_beta_neg_bin, 3>, {.names = kInflated3}),
    fitted<ZTPoisson, 1>("ZTPoisson", {kPositive}, truncated<places_poisson>),
    fitted<ZTDelaporte, 3>("ZTDelaporte", {kPositive, kPositive, kPositive}, truncated<places_delaporte>),
    fitted<ZTGeometric, 1>("ZTGeometric", {kProbability}, start_zt_geometric, {.closed_form = true}),
    fitted<ZeroTruncated<RealCounts<Binomial>>, 2>("ZTBinomial", {kCount, kProbability},
        truncated<places_binomial>, {.begins_with_count = true}),
    fitted<ZeroTruncated<RealCounts<NegBin>>, 2>("ZTNegBin", {kPositive, kProbability},
        truncated<places_neg_bin>),
    fitted<ZTPolya, 2>("ZTPolya", {kPositive, kPositive}, truncated<places_polya>),
    fitted<ZeroTruncated<RealCounts<BetaBinomial>>, 3>("ZTBetaBinomial", {kCount, kPositive, kPositive},
        truncated<places_beta_binomial>, {.begins_with_count = true, .rounding = {0}}),
    fitted<ZTBetaGeometric, 2>("ZTBetaGeometric", {kPositive, kPositive}, truncated<places_beta_geometric>),
    fitted<ZeroTruncated<RealCounts<BetaNegBin>>, 3>("ZTBetaNegBin",
        {kPositive, kPositive, kPositive}, truncated<places_beta_neg_bin>),
};
// clang-format on

}  // namespace

std::span<const FittedFamily> count_families() { return kFamilies; }

}  // namespace pral::fitting
