#include "inference/intervals.h"

#include <algorithm>

#include "fitting/coordinates.h"
#include "numerics/normal.h"

namespace pral::inference {

namespace {

using fitting::Parameters;
using fitting::Point;

double target_of(const Model& model, const Request& request, const Estimate& estimate, const Target& target) {
    if (target.kind == Target::Kind::parameter) return estimate.parameters[target.index];
    const Shared distribution = distribution_of(model, request, estimate);
    return distribution == nullptr ? numerics::kNaN : (*distribution)(Function::quantile, target.p);
}

/// The target as a function of the parameters.
auto function_of(const Fit& fit, const Target& target) {
    return [&fit, target](const Parameters& parameters) {
        Estimate moved = fit.estimate();
        moved.parameters = parameters;
        return target_of(fit.model(), fit.request(), moved, target);
    };
}

double normal_deviate(double level) { return numerics::normal_quantile_upper(0.5 * (1 - level)); }

/// The standard error of the target by its slopes.
double standard_error(const Fit& fit, const LocalView& view, const Target& target) {
    if (target.kind == Target::Kind::parameter)
        return std::sqrt(fit.covariance()(target.index, target.index));
    const SquareMatrix covariance = view.covariance();
    if (covariance.size() == 0) return numerics::kNaN;
    const std::vector<double> slopes = view.gradient(function_of(fit, target));
    double variance = 0;
    for (std::size_t i = 0; i < slopes.size(); ++i) {
        for (std::size_t j = 0; j < slopes.size(); ++j) variance += slopes[i] * covariance(i, j) * slopes[j];
    }
    return std::sqrt(variance);
}

LocalView view_of(const Fit& fit) { return {fit.model(), fit.observations(), fit.request(), fit.estimate()}; }

/// One end of a profile interval: the log-likelihood is raised by a multiple of the target, which leads along the profile;
/// the multiple is found that lets it fall by `drop`. For targets within sight: the logarithm is taken of positive ones.
class Profile {
  public:
    Profile(const Fit& fit, const Target& target, double drop)
        : fit_(fit),
          view_(view_of(fit)),
          target_(function_of(fit, target)),
          logarithmic_(positive(fit, target)),
          drop_(drop),
          deadline_(fitting::Deadline::in(fit.request().seconds)),
          error_(standard_error(fit, view_, target)) {}

    double end(double sign) const {
        constexpr int kMostSteps = 40;
        constexpr double kDone = 1e-6, kNegligible = 1e-14, kEnough = 1e-4;
        const double at = scaled(target_(view_.parameters(view_.centre()))), top = view_(view_.centre());
        const double error = logarithmic_ ? error_ / std::exp(at) : error_;
        if (!(error > 0 && std::isfinite(error))) return numerics::kNaN;
        // The root of the fall is nearly proportional to the factor.
        const double wanted = std::sqrt(drop_);
        double low = 0, low_root = 0, high = HUGE_VAL, high_root = HUGE_VAL;
        double factor = sign * std::sqrt(2 * drop_) / error;
        Point point = view_.centre();
        double nearest = HUGE_VAL, value = numerics::kNaN;
        for (int i = 0; i < kMostSteps && nearest > kDone * wanted; ++i) {
            const fitting::Objective raised = [&](std::span<const double> x) {
                return view_(x) + factor * (scaled(target_(view_.parameters(x))) - at);
            };
            const fitting::Maximum found = fitting::maximise(raised, point, deadline_, kNegligible);
            const double fall = top - view_(found.point);
            const double root = std::isfinite(fall) ? std::sqrt(std::max(fall, 0.0)) : HUGE_VAL;
            // Where the likelihood grows without bound it tells no more.
            const Parameters there = view_.parameters(found.point);
            if (std::fabs(root - wanted) < nearest && !view_.end_on_datum(there)) {
                nearest = std::fabs(root - wanted);
                value = target_(there);
            }
            if (root < wanted) {
                low = factor;
                low_root = root;
                point = found.point;
            } else {
                high = factor;
                high_root = root;
            }
            const double share = (wanted - low_root) / (high_root - low_root);
            if (std::isinf(high))
                factor *= std::clamp(wanted / root, 1.01, 2.0);
            else if (high_root > 3 * wanted || i % 4 == 3)  // more than the likelihood can hold back
                factor = 0.5 * (low + high);
            else
                factor = low + (high - low) * std::clamp(share, 0.01, 0.99);
        }
        return nearest < kEnough * wanted ? value : numerics::kNaN;
    }

  private:
    static bool positive(const Fit& fit, const Target& target) {
        if (target.kind == Target::Kind::quantile)
            return fit.distribution()->support().lower >= 0 && value_of(fit, target) > 0;
        if (target.index >= fit.model().parameter_count()) return false;
        const fitting::Range& range = fit.model().family->ranges[target.index];
        return range.kind == fitting::Range::Kind::between && range.lower >= 0 && std::isinf(range.upper);
    }
    double scaled(double value) const { return logarithmic_ ? std::log(value) : value; }

    const Fit& fit_;
    const LocalView view_;
    const std::function<double(const Parameters&)> target_;
    const bool logarithmic_;
    const double drop_;
    const fitting::Deadline deadline_;
    const double error_;
};

}  // namespace

double value_of(const Fit& fit, const Target& target) {
    return target_of(fit.model(), fit.request(), fit.estimate(), target);
}

Range wald_interval(const Fit& fit, const Target& target, double level) {
    // Quantiles of counts are steps: they have no slopes.
    if (target.kind == Target::Kind::quantile && fit.model().integers)
        return {numerics::kNaN, numerics::kNaN};
    const double value = value_of(fit, target),
                 margin = normal_deviate(level) * standard_error(fit, view_of(fit), target);
    return {value - margin, value + margin};
}

Range profile_interval(const Fit& fit, const Target& target, double level) {
    const double z = normal_deviate(level);
    const Profile profile(fit, target, 0.5 * z * z);
    return {profile.end(-1), profile.end(1)};
}

Range bootstrap_interval(const Fit& fit, const Target& target, double level, const Replication& how,
                         std::size_t& failed) {
    std::vector<double> values(how.count, numerics::kNaN);
    replicate(fit, how, [&](std::size_t i, const Replicate* made) {
        if (made != nullptr) values[i] = target_of(fit.model(), fit.request(), made->estimate, target);
    });
    failed = static_cast<std::size_t>(std::ranges::count_if(values, [](double x) { return std::isnan(x); }));
    std::erase_if(values, [](double x) { return std::isnan(x); });
    if (values.empty()) return {numerics::kNaN, numerics::kNaN};
    std::ranges::sort(values);
    // The values at ranks (B + 1) alpha, as a test with those replicates would have it.
    const auto at = [&](double p) {
        const double rank =
            std::clamp(p * static_cast<double>(values.size() + 1), 1.0, static_cast<double>(values.size()));
        const auto below = static_cast<std::size_t>(rank);
        const double share = rank - std::floor(rank);
        const double upper = values[std::min(below, values.size() - 1)];
        return values[below - 1] + share * (upper - values[below - 1]);
    };
    return {at(0.5 * (1 - level)), at(0.5 * (1 + level))};
}

}  // namespace pral::inference
