#include "distributions/continuous/weibull.h"

#include "distributions/exports.h"

PRAL_EXPORT_FAMILY(Weibull, (double alpha, double beta), (alpha, beta));
PRAL_EXPORT_FAMILY(Weibull3, (double Alpha, double Beta, double Theta), (Alpha, Beta, Theta));
PRAL_EXPORT_FAMILY(WeibullAlt,
                   (double value1, double probability1, double value2, double probability2, double minimum),
                   (value1, probability1, value2, probability2, minimum));
PRAL_EXPORT_FAMILY(Rayleigh, (double b), (b));
