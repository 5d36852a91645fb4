#include "distributions/continuous/pareto.h"

#include "distributions/exports.h"

PRAL_EXPORT_FAMILY(Pareto, (double theta, double a), (theta, a));
PRAL_EXPORT_FAMILY(Pareto2, (double b, double q), (b, q));
