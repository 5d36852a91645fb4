#include "distributions/continuous/lognormal.h"

#include "distributions/exports.h"

PRAL_EXPORT_FAMILY(Lognormal, (double mu, double sigma), (mu, sigma));
PRAL_EXPORT_FAMILY(LognormalE, (double mu, double sigma), (mu, sigma));
