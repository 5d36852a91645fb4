#include "distributions/continuous/uniform.h"

#include "distributions/exports.h"

PRAL_EXPORT_FAMILY(Uniform, (double min, double max), (min, max));
