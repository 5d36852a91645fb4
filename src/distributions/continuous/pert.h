// Beta distributions on an interval told by their mode: PERT, and those told by mode and mean or by mode and percentiles.
#pragma once

#include "distributions/continuous/beta.h"
#include "distributions/continuous/mode_percentiles.h"

namespace pral {

/// min <= mode <= max, all equal being a point mass, weight gamma of the mode; support [min, max]:
/// min + (max - min) Beta(1 + gamma (mode - min)/(max - min), 1 + gamma (max - mode)/(max - min)).
struct WeightedPERT : BetaOnInterval {
    double mode, gamma;

    WeightedPERT(double min, double mode_, double max, double gamma_)
        : WeightedPERT(min, mode_, max, gamma_, LinearAxis::over(min, max)) {}
    Message check() const {
        if (!(mode >= map.min && mode <= map.max)) return "Error: mode must be between min and max";
        if (!(map.min <= map.max)) return "Error: min must be <max";
        return nullptr;
    }
    std::optional<double> point_mass() const {
        return map.min == map.max ? std::optional(map.min) : std::nullopt;
    }

  private:
    WeightedPERT(double min, double mode_, double max, double gamma_, const LinearAxis& along)
        : BetaOnInterval(1 + gamma_ * (along.distance(min, mode_) / along.distance(min, max)),
                         1 + gamma_ * (along.distance(mode_, max) / along.distance(min, max)), min, max),
          mode(mode_),
          gamma(gamma_) {}
};

/// WeightedPERT of weight 4.
struct PERT : WeightedPERT {
    PERT(double min, double mode, double max) : WeightedPERT(min, mode, max, 4) {}
};

/// WeightedPERT of weight gamma > 0.
struct ModPERT : WeightedPERT {
    using WeightedPERT::WeightedPERT;
    Message check() const {
        if (const Message objection = WeightedPERT::check()) return objection;
        if (!(gamma > 0)) return "Error: gamma must be positive";
        return nullptr;
    }
};

/// The PERT with mode Mode whose cumulative is LowP at Low and HighP at High. Its ends are computed; like other results they
/// carry a rounding error, and close to them the tails lose digits.
struct PERTAlt : PERT {
    ModeAndPercentiles given;

    PERTAlt(double Low, double Mode, double High, double LowP, double HighP)
        : PERTAlt(ModeAndPercentiles{Low, Mode, High, LowP, HighP}) {}
    Message check() const {
        const Message objection = given.check();
        return objection != nullptr ? objection : object_to_ends(map.min, map.max);
    }

  private:
    explicit PERTAlt(const ModeAndPercentiles& points) : PERTAlt(points, ends(points)) {}
    PERTAlt(const ModeAndPercentiles& points, Support ends)
        : PERT(ends.lower, points.Mode, ends.upper), given(points) {}

    static Support ends(const ModeAndPercentiles& points);
};

/// min < mode < max, min < mean < max; support [min, max]. Beta4 of shapes a1 = 2 (mean - min)(mid - mode)/
/// ((mean - mode)(max - min)), mid = (min + max)/2, and a2 = a1 (max - mean)/(mean - min); 3 and 3 if mean and mode are both
/// in the middle. No others than positive finite ones will do.
struct BetaSubj : BetaOnInterval {
    double mode, mean;

    BetaSubj(double min, double mode_, double mean_, double max)
        : BetaSubj(min, mode_, mean_, max, first_shape(min, mode_, mean_, max)) {}
    Message check() const {
        if (!(mode > map.min)) return "Error: mode must be > minimum";
        if (!(mean > map.min)) return "Error: mean must be > minimum";
        if (!(map.max > mode)) return "Error: maximum must be > mode";
        if (!(map.max > mean)) return "Error: maximum must be > mean";
        if (!(shape1_ > 0 && shape1_ <= DBL_MAX)) return "Error: alpha must be >0";
        if (!(shape2_ > 0 && shape2_ <= DBL_MAX)) return "Error: beta must be >0";
        return nullptr;
    }

  private:
    BetaSubj(double min, double mode_, double mean_, double max, double shape1)
        : BetaSubj(min, mode_, mean_, max, shape1, shape1 * ratio_of_distances(min, mean_, max)) {}
    BetaSubj(double min, double mode_, double mean_, double max, double shape1, double shape2)
        : BetaOnInterval(shape1, shape2, min, max),
          mode(mode_),
          mean(mean_),
          shape1_(shape1),
          shape2_(shape2) {}

    /// mid - mode is half the difference of the mode's distances from the ends: on a narrow interval far from 0 the rounding
    /// of mid itself would be most of it.
    static double first_shape(double min, double mode, double mean, double max) {
        const double mid = 0.5 * min + 0.5 * max;
        if (mode == mid && mean == mid) return 3;
        const numerics::DoubleDouble above = numerics::two_sum(0.5 * max, -0.5 * mode);
        const numerics::DoubleDouble below = numerics::two_sum(0.5 * mode, -0.5 * min);
        const LinearAxis along = LinearAxis::over(min, max);
        const double beyond_mode = numerics::add(above, numerics::negated(below)).hi * along.per_unit;
        return 2 * (along.distance(min, mean) / along.distance(min, max)) *
               (beyond_mode / along.distance(mode, mean));
    }
    static double ratio_of_distances(double min, double mean, double max) {
        const LinearAxis along = LinearAxis::over(min, max);
        return along.distance(mean, max) / along.distance(min, mean);
    }

    double shape1_, shape2_;
};

}  // namespace pral
