#include "distributions/continuous/cauchy.h"

#include "distributions/exports.h"

PRAL_EXPORT_FAMILY(Cauchy, (double a, double b), (a, b));
