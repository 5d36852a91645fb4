#include "numerics/each.h"

#include <algorithm>

#include "numerics/exp_log.h"

namespace pral::numerics {

// Where the dynamic linker can choose, it takes the wider vectors of newer processors. The digits are the same: no fused
// operations. A sanitizer is not there yet when the linker asks.
#if defined(__linux__) && defined(__x86_64__) && !defined(__SANITIZE_ADDRESS__) && \
    !defined(__SANITIZE_THREAD__)
#define PRAL_WIDEST_VECTORS __attribute__((target_clones("avx2", "default")))
#else
#define PRAL_WIDEST_VECTORS
#endif

PRAL_WIDEST_VECTORS void exp_each(std::span<double> values) {
    for (double& x : values) x = written::exp(x);
}

PRAL_WIDEST_VECTORS void log_each(std::span<double> values) {
    bool all_ordinary = true;
    for (const double x : values) all_ordinary &= written::ordinary(x);
    if (!all_ordinary) {
        for (double& x : values) x = written::log(x);
        return;
    }
    for (double& x : values) x = written::log_ordinary(x);
}

}  // namespace pral::numerics
