#include "distributions/discrete/beta_mixtures.h"

#include "distributions/exports.h"

PRAL_EXPORT_FAMILY(BetaBinomial, (double n, double alpha, double beta), (n, alpha, beta));
PRAL_EXPORT_FAMILY(BetaNegBin, (double s, double a, double b), (s, a, b));
PRAL_EXPORT_FAMILY(BetaGeometric, (double alpha, double beta), (alpha, beta));
