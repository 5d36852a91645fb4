#include "distributions/continuous/pareto.h"

#include "distributions/exports.h"

PRAL_EXPORT_FAMILY(Pareto, (double theta, double a), (theta, a));
PRAL_EXPORT_FAMILY(Pareto2, (double b, double q), (b, q));
PRAL_EXPORT_FAMILY(Dagum, (double a, double b, double p), (a, b, p));
PRAL_EXPORT_FAMILY(Burr, (double a, double b, double c, double d), (a, b, c, d));
