#include "distributions/continuous/extreme_value.h"

#include "distributions/exports.h"

PRAL_EXPORT_FAMILY(ExtValueMax, (double a, double b), (a, b));
PRAL_EXPORT_FAMILY(ExtValueMin, (double a, double b), (a, b));
PRAL_EXPORT_FAMILY(GEV, (double a, double b, double c), (a, b, c));
