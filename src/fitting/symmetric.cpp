// Start values of the families on all real numbers.
#include <numbers>
#include <optional>

#include "distributions/families.h"
#include "distributions/real_counts.h"
#include "fitting/starts.h"
#include "numerics/constants.h"
#include "numerics/gamma.h"
#include "numerics/golden_section.h"

namespace pral::fitting {

namespace {

using std::numbers::sqrt2;

/// A location and a scale by quantiles for each shape that is tried.
template <class D>
Starts by_quantiles(const Sample& x, std::initializer_list<double> shapes) {
    Starts starts;
    for (const double shape : shapes) {
        const LocationAndScale fit(D{0, 1, shape}, x);
        starts.places.push_back(place({fit.location, fit.scale, shape}));
    }
    return starts;
}

Starts start_normal(const StartData& data) { return one({data.x.mean(), data.x.deviation()}); }
Starts start_erf(const StartData& data) { return one({1 / (sqrt2 * data.x.root_mean_square())}); }

template <class D>
Starts start_location_scale(const StartData& data) {
    const Sample& x = data.x;
    const LocationAndScale fit(D{0, 1}, x, 0.25);
    const D d{fit.location, fit.scale};
    if (std::isfinite(d.log_density(x.min()) + d.log_density(x.max()))) return one({fit.location, fit.scale});
    // An outlier so far out that its density underflows.
    return {place({x.quantile(0.5), x.deviation()}), place({x.quantile(0.5), x.range()})};
}

/// The median and the mean distance from it.
Starts start_laplace(const StartData& data) {
    const double median = data.x.quantile(0.5);
    double sum = 0;
    for (const double x : data.x.values()) sum += std::fabs(x - median);
    return one({median, sqrt2 * sum / data.x.count()});
}

/// The likelihood of a location and a shape, with the best scale for them: the generalised mean of the distances.
struct ErrorProfile {
    double log_mean, mean_log_likelihood;

    ErrorProfile(const Sample& x, double mu, double nu) {
        const double farthest = std::fmax(x.max() - mu, mu - x.min());
        double sum = 0;
        for (const double value : x.values()) sum += std::pow(std::fabs(value - mu) / farthest, nu);
        log_mean = std::log(farthest) + std::log(nu * sum / x.count()) / nu;
        mean_log_likelihood = std::log(0.5 * nu) - numerics::log_gamma(1 / nu) - log_mean - 1 / nu;
    }
};
Parameters error_place(const Sample& x, double mu, double nu) {
    const double log_moments = numerics::log_gamma(3 / nu) - numerics::log_gamma(1 / nu);
    return place({mu, std::exp(ErrorProfile(x, mu, nu).log_mean + 0.5 * log_moments), nu});
}

/// The search for the location and the shape where that is below 1: then the likelihood has a cusp at every value, and its
/// greatest is at one of them. It has no bound as the shape goes to 0, which is not followed.
class CuspSearch {
  public:
    explicit CuspSearch(const Sample& x)
        : all_(x), part_values_(thinned(x.sorted(), kPart)), part_(part_values_) {}

    std::optional<Parameters> operator()() const {
        constexpr std::array kShapes = {1.0, 0.85, 0.7, 0.55, 0.42, 0.32, 0.24, 0.18};
        std::array<Cusp, kShapes.size()> found;
        for (std::size_t i = 0; i < found.size(); ++i) found[i] = best_of_part(kShapes[i]);
        std::size_t best = 0;
        for (std::size_t i = 1; i + 1 < found.size(); ++i) {
            const bool peak = found[i].value > found[i - 1].value && found[i].value > found[i + 1].value;
            if (peak && (best == 0 || found[i].value > found[best].value)) best = i;
        }
        if (best == 0) return std::nullopt;
        return refined(found[best], kShapes[best + 1], kShapes[best - 1]);
    }

  private:
    static constexpr std::size_t kPart = 250;
    struct Cusp {
        double mu, value;
    };

    static double likelihood(const Sample& x, double mu, double nu) {
        return ErrorProfile(x, mu, nu).mean_log_likelihood;
    }
    static void improve(Cusp& best, const Sample& x, double mu, double nu) {
        const double value = likelihood(x, mu, nu);
        if (value > best.value) best = {mu, value};
    }
    /// Of part of the values, at distances that become smaller about the best.
    Cusp best_of_part(double nu) const {
        constexpr std::ptrdiff_t kTries = 24;
        const std::span<const double> sorted = part_.sorted();
        Cusp best = {sorted[0], -HUGE_VAL};
        std::ptrdiff_t from = 0, end = std::ssize(sorted);
        for (std::ptrdiff_t step = (end - from + kTries - 1) / kTries;; step = (step + 3) / 4) {
            for (std::ptrdiff_t i = from; i < end; i += step)
                improve(best, part_, sorted[static_cast<std::size_t>(i)], nu);
            if (step <= 1) return best;
            const std::ptrdiff_t at = std::ranges::lower_bound(sorted, best.mu) - sorted.begin();
            from = std::max<std::ptrdiff_t>(at - 2 * step, 0);
            end = std::min(at + 2 * step, std::ssize(sorted));
        }
    }
    /// Of all values: in turn the shape for the location, and the values about the location for the shape.
    Parameters refined(Cusp best, double least, double most) const {
        constexpr int kRounds = 4;
        const std::span<const double> sorted = all_.sorted();
        const std::ptrdiff_t reach = 2 * (std::ssize(sorted) / static_cast<std::ptrdiff_t>(kPart) + 4);
        double nu = 1;
        for (int round = 0; round < kRounds; ++round) {
            const auto cost = [&](double t) { return -likelihood(all_, best.mu, std::exp(t)); };
            nu = std::exp(numerics::golden_section_minimise(cost, std::log(least), std::log(most), 1e-6));
            best.value = likelihood(all_, best.mu, nu);
            const double before = best.mu;
            const std::ptrdiff_t at = std::ranges::lower_bound(sorted, best.mu) - sorted.begin();
            const std::ptrdiff_t end = std::min(at + reach, std::ssize(sorted));
            double last = before;
            for (std::ptrdiff_t i = std::max<std::ptrdiff_t>(at - reach, 0); i < end; ++i) {
                const double value = sorted[static_cast<std::size_t>(i)];
                if (value != last) improve(best, all_, value, nu);
                last = value;
            }
            if (best.mu == before) break;
        }
        return error_place(all_, best.mu, nu);
    }

    const Sample& all_;
    std::vector<double> part_values_;
    Sample part_;
};
/// Locations that suit the shapes: the likelihood has maxima about the quartiles as well, and for few data or flat ones its
/// maximum is the limit of large nu, the uniform distribution.
Starts start_error(const StartData& data) {
    const Sample& x = data.x;
    if (x.constant()) return one({x.mean(), 0, 2});
    constexpr double kUniform = 1e12;
    const double median = x.quantile(0.5), centre = x.min() + 0.5 * x.range();
    Starts starts;
    for (const auto& [mu, nu] : {std::pair(x.mean(), 2.0),
                                 {median, 1.2},
                                 {median, 0.7},
                                 {x.quantile(0.25), 1.2},
                                 {x.quantile(0.75), 1.2},
                                 {x.mean(), 5.0},

                                 {centre, kUniform}})
        starts.places.push_back(error_place(x, mu, nu));
    if (const auto cusp = CuspSearch(x)()) starts.places.push_back(*cusp);
    return starts;
}

Starts start_gev(const StartData& data) {
    return by_quantiles<GEV>(data.x, {0.01, 0.15, 0.5, 1, 3, 8, -0.15, -0.4});
}
/// The last place is the limit of small shapes and scales: an exponential distribution that falls from its largest value.
Starts start_glogistic(const StartData& data) {
    constexpr double kLimit = 1e-10, kBeyond = 20;
    const double mean_distance = data.x.max() - data.x.mean(), scale = kLimit * mean_distance;
    Starts starts = by_quantiles<GLogistic>(data.x, {1, 0.3, 3, 12, 1000});
    starts.places.push_back(place({data.x.max() + kBeyond * scale, scale, kLimit}));
    return starts;
}

Starts start_normal_mix(const StartData& data) {
    const double kurtosis = data.x.excess_kurtosis();
    Starts starts;
    for (const double k : {std::clamp(kurtosis, 0.1, 2.8), 0.3, 1.5, 2.7})
        starts.places.push_back(place({data.x.mean(), data.x.deviation(), k}));
    starts.places.push_back(place({data.x.quantile(0.5), data.x.deviation(), 2.5}));
    for (const double p : {0.25, 0.5, 0.75})
        starts.places.push_back(place({data.x.quantile(p), data.x.deviation(), 2.9}));
    return starts;
}

/// The mean and deviation of the data, at which the family has the shape.
Parameters skew_normal_place(const Sample& x, double alpha) {
    const double mean = std::sqrt(2 / numerics::kPi) * alpha / std::sqrt(1 + alpha * alpha);
    const double scale = x.deviation() / std::sqrt(1 - mean * mean);
    return place({x.mean() - mean * scale, scale, alpha});
}
/// The shape of greatest magnitude: nearly one half of a normal distribution, which begins just beyond an end of the data.
Parameters half_normal_place(const Sample& x, double alpha) {
    constexpr double kRise = 2;  // the density has risen after so many scales over alpha
    const double end = alpha > 0 ? x.min() : x.max(), from_end = x.mean() - end;
    const double scale = std::sqrt(x.variance() + from_end * from_end);
    return place({end - kRise * scale / alpha, scale, alpha});
}
/// The moments' skewness, of which the family reaches up to 0.995, and shapes from slight ones to the largest of both signs.
Starts start_skew_normal(const StartData& data) {
    const Sample& x = data.x;
    if (x.size() < 3) return kSilent;
    const double skewness = std::clamp(x.skewness(), -0.95, 0.95),
                 r = std::cbrt(2 * skewness / (4 - numerics::kPi));
    const double delta = r * std::sqrt(numerics::kPi / 2) / std::sqrt(1 + r * r);
    Starts starts = {skew_normal_place(x, delta / std::sqrt(1 - delta * delta))};
    for (const double alpha : {0.6, 3.0, 12.0}) {
        for (const double sign : {1.0, -1.0}) starts.places.push_back(skew_normal_place(x, sign * alpha));
    }
    for (const double alpha : {99.0, -99.0}) starts.places.push_back(half_normal_place(x, alpha));
    return starts;
}

/// Degrees of freedom by a scan.
Starts start_student(const StartData&) {
    return {place({1}), place({3}), place({8}), place({30}), place({1000}), place({0.3})};
}
Starts start_student3(const StartData& data) {
    return by_quantiles<RealCounts<Student3>>(data.x, {3.5, 6, 15, 100});
}

/// The shapes as alpha1/alpha2 and alpha2, the reciprocal slope of the score where it is 0, and that place: the median.
/// With these held a large alpha2 leads to the normal distribution, a large ratio to the lognormal one.
Parameters johnson_u_search(const Parameters& own) {
    const auto [alpha1, alpha2, beta, gamma] = std::tuple(own[0], own[1], own[2], own[3]);
    const double ratio = alpha1 / alpha2;
    Parameters moved = own;
    moved[0] = ratio;
    moved[2] = beta * std::cosh(ratio) / alpha2;
    moved[3] = gamma - beta * std::sinh(ratio);
    return moved;
}
Parameters johnson_u_own(const Parameters& moved) {
    const auto [ratio, alpha2, width, median] = std::tuple(moved[0], moved[1], moved[2], moved[3]);
    Parameters own = moved;
    own[0] = ratio * alpha2;
    own[2] = width * alpha2 / std::cosh(ratio);
    own[3] = median + width * alpha2 * std::tanh(ratio);
    return own;
}
Starts start_johnson_u(const StartData& data) {
    Starts starts;
    for (const double alpha2 : {0.4, 0.7, 1.3, 2.5, 6.0}) {
        for (const double alpha1 : {0.0, -0.7 * alpha2, 0.7 * alpha2, -2 * alpha2, 2 * alpha2}) {
            const LocationAndScale fit(JohnsonU{alpha1, alpha2, 1, 0}, data.x);
            starts.places.push_back(place({alpha1, alpha2, fit.scale, fit.location}));
        }
    }
    return starts;
}

constexpr std::array<Range, 4> kLocationScale = {kLocation, kPositive};
constexpr ParameterNames kMoments = {"mu", "sigma", "nu"};

// clang-format off
const FittedFamily kFamilies[] = {
    fitted<Normal, 2>("Normal", kLocationScale, start_normal, {.closed_form = true, .sample_moments = true}),
    fitted<Erf, 1>("Erf", {kPositive}, start_erf, {.closed_form = true}),
    fitted<Laplace, 2>("Laplace", kLocationScale, start_laplace, {.closed_form = true}),
    fitted<Cauchy, 2>("Cauchy", kLocationScale, start_location_scale<Cauchy>),
    fitted<Logistic, 2>("Logistic", kLocationScale, start_location_scale<Logistic>),
    fitted<HS, 2>("HS", kLocationScale, start_location_scale<HS>),
    fitted<Slash, 2>("Slash", kLocationScale, start_location_scale<Slash>),
    fitted<ExtValueMax, 2>("ExtValueMax", kLocationScale, start_location_scale<ExtValueMax>),
    fitted<ExtValueMin, 2>("ExtValueMin", kLocationScale, start_location_scale<ExtValueMin>),
    fitted<GEV, 3>("GEV", {kLocation, kPositive, kReal}, start_gev),
    fitted<GLogistic, 3>("GLogistic", {kLocation, kPositive, kPositive}, start_glogistic, {.climbs = 4}),
    fitted<Error, 3>("Error", {kLocation, kPositive, kPositive}, start_error, {.names = kMoments, .climbs = 5}),
    fitted<NormalMix, 3>("NormalMix", {kLocation, kPositive, between(0, 3)}, start_normal_mix,
        {.names = {"mu", "sigma"}, .climbs = 4}),
    fitted<SkewNormal, 3>("SkewNormal", {kLocation, kPositive, shape_up_to(100)}, start_skew_normal,
        {.names = {"mu", "sigma"}, .climbs = 6}),
    fitted<RealCounts<Student>, 1>("Student", {kPositive}, start_student, {.names = {"nu"}, .rounding = {0}}),
    fitted<RealCounts<Student3>, 3>("Student3", {kLocation, kPositive, above(3)}, start_student3,
        {.names = kMoments, .rounding = {2}}),
    fitted<JohnsonU, 4>("JohnsonU", {kReal, kPositive, kPositive, kLocation}, start_johnson_u,
        {.own_search = true, .climbs = 4, .search = {johnson_u_search, johnson_u_own, {kReal, kPositive, kPositive, kLocation}}}),
};
// clang-format on

}  // namespace

std::span<const FittedFamily> symmetric_families() { return kFamilies; }

}  // namespace pral::fitting
