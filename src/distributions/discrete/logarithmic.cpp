#include "distributions/discrete/logarithmic.h"

#include "distributions/exports.h"

PRAL_EXPORT_FAMILY(Logarithmic, (double theta), (theta));
