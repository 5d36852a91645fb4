// Populations in which every individual splits (Yule) or dies (pure death) at a constant rate, counted at equal intervals.
#include "distributions/discrete/binomial.h"
#include "distributions/discrete/negative_binomial.h"
#include "timeseries/exports.h"

namespace pral::timeseries {
namespace {

/// Finite, so that the infinite population, DBL_MAX, counts as whole and an infinite argument does not.
bool is_whole(double x) { return std::isfinite(x) && x == std::floor(x); }

/// X_i = X_(i-1) + NegBin(X_(i-1), p), p = e^(-beta t): every individual leaves a geometric number of descendants. A
/// population beyond the largest double stays there.
struct Yule {
    double population, beta, t;
    double p = std::exp(-beta * t);

    Message check() const {
        if (!(is_whole(population) && population > 0)) return "n should be an positive integer";
        if (!(beta > 0)) return "beta should be >0";
        if (!(t > 0)) return "t should be >0";
        return nullptr;
    }
    double next() {
        population = finite_or_limit(population + drawn(NegBin{population, p}));
        return population;
    }
};

/// X_i ~ Binomial(X_(i-1), p), p = e^(-beta t): the survivors.
struct Death {
    double population, beta, t;
    double p = std::exp(-beta * t);

    Message check() const {
        if (!is_whole(population)) return "n should be an integer";
        if (!(population >= 1)) return "n should be >=1";
        if (!(beta > 0)) return "beta should be >0";
        if (!(t > 0)) return "t should be >0";
        return nullptr;
    }
    double next() {
        population = drawn(Binomial{population, p});
        return population;
    }
};

/// Counts of the population, or their base-10 logarithms when `logarithm` is not 0: -DBL_MAX for 0.
template <class Process>
bool population_path(double* out, int n, Process process, int logarithm) {
    return guarded(out, n, [&](int count) {
        if (const Message objection = process.check()) return fail(objection);
        return unless_refused([&] {
            for (int i = 0; i < count; ++i) {
                const double population = process.next();
                out[i] = logarithm != 0 ? finite_or_limit(std::log10(population)) : population;
            }
        });
    });
}

}  // namespace
}  // namespace pral::timeseries

using namespace pral::timeseries;

PRAL_EXPORT_PATH(Yule, (double N0, double beta, double t, int logarithm), (N0, beta, t, logarithm),
                 population_path(out, n, Yule{N0, beta, t}, logarithm))

PRAL_EXPORT_PATH(Death, (double N0, double beta, double t, int logarithm), (N0, beta, t, logarithm),
                 population_path(out, n, Death{N0, beta, t}, logarithm))
