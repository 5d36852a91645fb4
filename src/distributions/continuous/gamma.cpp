#include "distributions/continuous/gamma.h"

#include "distributions/exports.h"

PRAL_EXPORT_FAMILY(Gamma, (double alpha, double beta), (alpha, beta));
PRAL_EXPORT_FAMILY(Erlang, (double m, double beta), (m, beta));
