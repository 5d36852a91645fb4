#include "distributions/discrete/poisson.h"

#include "distributions/exports.h"

PRAL_EXPORT_FAMILY(Poisson, (double lambda), (lambda));
