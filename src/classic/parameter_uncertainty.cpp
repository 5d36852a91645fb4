// What data tell of a binomial probability and of a Poisson rate.
#include "classic/call.h"
#include "classic/core_api.h"
#include "classic/members.h"
#include "classic/stream.h"
#include "distributions/discrete/binomial.h"
#include "numerics/beta_quantile.h"
#include "numerics/gamma_ratio.h"

namespace {

/// Whether a process that has shown no event exists, both ways being equally likely.
bool decided_to_exist() { return pral::draw(pral::Binomial(1, 0.5), pral::random_stream()) == 1; }

/// The quantile at *U or at a draw; 0 when no process exists.
template <class Quantile>
bool uncertain_parameter(double* out, pral::Message objection, bool certain, const double* U,
                         Quantile quantile) {
    const double u = pral::percentile_given(U) ? *U : pral::random_stream().uniform();
    if (objection != nullptr) return pral::fail(objection);
    if (!(u >= 0 && u <= 1)) return pral::fail(pral::kPercentileMessage);
    *out = certain || decided_to_exist() ? pral::numerics::finite_or_limit(quantile(u)) : 0;
    return true;
}

}  // namespace

bool PralBinomialP_Core(double* out, double successes, double trials, int processExists, const double* U) {
    return pral::guarded(out, 1, [&](int) {
        const auto objection = [&]() -> pral::Message {
            if (processExists != 0 && !(successes >= 0))
                return "Error: if process_exists=TRUE then Successes must be >=0";
            if (!(trials > 0)) return "Error: Trials must be > 0";
            if (processExists == 0 && successes != 0)
                return "Error: if process_exists=False then Successes must be 0";
            if (!(trials >= successes)) return "Error: Trials must be >= successes";
            return nullptr;
        };
        return uncertain_parameter(out, objection(), processExists != 0, U, [&](double u) {
            return pral::numerics::beta_lower_inverse(successes + 1, trials - successes + 1, u).x;
        });
    });
}

bool PralPoissonLambda_Core(double* out, double alpha, double T, int processExists, const double* U) {
    return pral::guarded(out, 1, [&](int) {
        const auto objection = [&]() -> pral::Message {
            if (!(alpha >= 0)) return "Error: alpha must be >= 0";
            if (alpha > 0 && processExists == 0)
                return "Error: if alpha > 0 then process_exists must be True";
            if (!(T > 0)) return "Error: T must be > 0";
            return nullptr;
        };
        return uncertain_parameter(out, objection(), processExists != 0, U, [&](double u) {
            return pral::numerics::gamma_lower_inverse(alpha + 1, u) / T;
        });
    });
}
