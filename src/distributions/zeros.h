// Counts with more zeros than their distribution has, and with none.
#pragma once

#include "distributions/univariate.h"

namespace pral {

/// With probability pi, in [0,1], a value of `base`, which has integers, else 0.
Shared zero_inflated(Shared base, double pi);

/// `base`, which has integers >= 0, given a value of 1 or more. What has nothing but 0 leaves 1.
Shared zero_truncated(Shared base);

}  // namespace pral
