#include "distributions/discrete/binomial.h"

#include "distributions/exports.h"

PRAL_EXPORT_FAMILY(Binomial, (double n, double p), (n, p));
