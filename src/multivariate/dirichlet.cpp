#include "multivariate/dirichlet.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "distributions/continuous/gamma.h"
#include "distributions/draws.h"

namespace pral::multivariate {

const Message kNoProportions = "Error: alpha values are too small";

Message sample_dirichlet(Vector alpha, double* out, RandomStream& stream) {
    const std::size_t k = alpha.size();
    double total = 0, largest = 0;
    for (std::size_t i = 0; i < k; ++i) {
        if (const Message objection = draw(out[i], Gamma{alpha[i], 1}, stream)) return objection;
        total += out[i];
        largest = std::max(largest, out[i]);
    }
    if (k > 0 && total == 0) return kNoProportions;
    if (std::isinf(total)) {
        total = 0;
        for (std::size_t i = 0; i < k; ++i) total += out[i] /= largest;
    }
    for (std::size_t i = 0; i < k; ++i) out[i] /= total;
    return nullptr;
}

}  // namespace pral::multivariate
