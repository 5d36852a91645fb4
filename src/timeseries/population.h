// Populations in which every individual splits (Yule) or dies (pure death) at a constant rate, counted at equal intervals.
#pragma once

#include "distributions/discrete/binomial.h"
#include "distributions/discrete/negative_binomial.h"
#include "timeseries/path.h"

namespace pral::timeseries {

/// Finite, so that the infinite population, DBL_MAX, counts as whole and an infinite argument does not.
inline bool is_whole(double x) { return std::isfinite(x) && x == std::floor(x); }

/// X_i = X_(i-1) + NegBin(X_(i-1), p), p = e^(-beta t): every individual leaves a geometric number of descendants. A
/// population beyond the largest double stays there. `Count` is the negative binomial distribution, or a form of it.
template <class Count>
struct YuleOf {
    double population, beta, t;
    double p = std::exp(-beta * t);

    Message check() const {
        if (!(is_whole(population) && population > 0)) return "n should be an positive integer";
        if (!(beta > 0)) return "beta should be >0";
        if (!(t > 0)) return "t should be >0";
        return nullptr;
    }
    double next(Draws& draws) {
        population = finite_or_limit(population + draws(Count{population, p}));
        return population;
    }
};
using Yule = YuleOf<NegBin>;

/// X_i ~ Binomial(X_(i-1), p), p = e^(-beta t): the survivors. `Count` is the binomial distribution, or a form of it.
template <class Count>
struct DeathOf {
    double population, beta, t;
    double p = std::exp(-beta * t);

    Message check() const {
        if (!is_whole(population)) return "n should be an integer";
        if (!(population >= 1)) return "n should be >=1";
        if (!(beta > 0)) return "beta should be >0";
        if (!(t > 0)) return "t should be >0";
        return nullptr;
    }
    double next(Draws& draws) {
        population = draws(Count{population, p});
        return population;
    }
};
using Death = DeathOf<Binomial>;

/// Counts of the population, or their base-10 logarithms when `logarithm` is not 0: -DBL_MAX for 0. Returns the first
/// objection, or null; what has been written before it stays.
template <class Process>
Message population_path(std::span<double> out, Process process, int logarithm, RandomStream& stream) {
    if (const Message objection = process.check()) return objection;
    return unless_refused(stream, [&](Draws& draws) {
        for (double& value : out) {
            const double population = process.next(draws);
            value = logarithm != 0 ? finite_or_limit(std::log10(population)) : population;
        }
    });
}

}  // namespace pral::timeseries
