// What the exports with a vector of results share.
#pragma once

#include <algorithm>

#include "boundary/call.h"

namespace pral::multivariate {

/// Runs `body`, which returns the success flag and writes what the function promises, no element more. A failed call
/// leaves `count` zeros in `out`.
template <class Body>
bool guarded_vector(double* out, long long count, Body body) noexcept {
    if (out == nullptr && count > 0) return fail(kNullOutputMessage);
    if (guarded(body)) return true;
    std::fill_n(out, std::max(count, 0LL), 0.0);
    return false;
}

}  // namespace pral::multivariate
