#include "distributions/data/step_uniform.h"

#include "distributions/exports.h"

PRAL_EXPORT_FAMILY(StepUniform, (double min, double max, double step), (min, max, step));
