#include "distributions/data/cumulative.h"
#include "distributions/data/density.h"
#include "distributions/data/discrete_table.h"
#include "distributions/data/step_uniform.h"

#include "classic/family_exports.h"

namespace pral {

/// The ordinates of an OgiveU are uniforms of the process's stream, drawn by every call before anything else.
template <>
OgiveU made<OgiveU>(double min, double max, const double* data, int n) {
    return OgiveU(min, max, data, n, random_stream());
}

}  // namespace pral

PRAL_EXPORT_FAMILY(StepUniform, (double min, double max, double step), (min, max, step));
PRAL_EXPORT_FAMILY(Discrete, (const double* values, int n, const double* probabilities, int m),
                   (values, n, probabilities, m));
PRAL_EXPORT_FAMILY(DUniform, (const double* values, int n), (values, n));
PRAL_EXPORT_FAMILY(CumulA,
                   (double min, double max, const double* values, int n, const double* probabilities, int m),
                   (min, max, values, n, probabilities, m));
PRAL_EXPORT_FAMILY(CumulD,
                   (double min, double max, const double* values, int n, const double* probabilities, int m),
                   (min, max, values, n, probabilities, m));
PRAL_EXPORT_FAMILY(Ogive, (double min, double max, const double* data, int n), (min, max, data, n));
PRAL_EXPORT_FAMILY(OgiveU, (double min, double max, const double* data, int n), (min, max, data, n));
PRAL_EXPORT_FAMILY(Histogram, (double min, double max, const double* f, int n), (min, max, f, n));
PRAL_EXPORT_FAMILY(Relative,
                   (double min, double max, const double* values, int n, const double* weights, int m),
                   (min, max, values, n, weights, m));
