#include "distributions/continuous/exponential.h"

#include "distributions/exports.h"

PRAL_EXPORT_FAMILY(Expon, (double beta), (beta));
