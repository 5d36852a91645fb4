#include "distributions/continuous/lifetime.h"

#include "distributions/exports.h"

PRAL_EXPORT_FAMILY(Lifetime2, (double A, double B), (A, B));
PRAL_EXPORT_FAMILY(Lifetime3, (double A, double B, double C), (A, B, C));
PRAL_EXPORT_FAMILY(LifetimeExp, (double A, double B), (A, B));
