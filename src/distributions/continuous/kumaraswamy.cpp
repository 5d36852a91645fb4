#include "distributions/continuous/kumaraswamy.h"

#include "distributions/exports.h"

PRAL_EXPORT_FAMILY(Kumaraswamy, (double alpha, double beta), (alpha, beta));
PRAL_EXPORT_FAMILY(Kumaraswamy4, (double alpha, double beta, double min, double max),
                   (alpha, beta, min, max));
PRAL_EXPORT_FAMILY(Bradford, (double theta, double min, double max), (theta, min, max));
