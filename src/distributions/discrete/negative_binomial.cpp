#include "distributions/discrete/negative_binomial.h"

#include "distributions/exports.h"

PRAL_EXPORT_FAMILY(Bernoulli, (double p), (p));
PRAL_EXPORT_FAMILY(NegBin, (double s, double p), (s, p));
PRAL_EXPORT_FAMILY(Geometric, (double p), (p));
PRAL_EXPORT_FAMILY(Polya, (double alpha, double beta), (alpha, beta));
