#include "classic/members.h"

namespace pral {

bool check_bounds(const Limits& limits, bool ordered, const Bound& min, const Bound& max) {
    if (!ordered)
        return limits.both_values() ? fail_bounds(min.x, max.x, true)
                                    : fail_bounds(min.tails.lower, max.tails.lower, false);
    return (min.tails.lower >= 0 && max.tails.lower <= 1) || fail(kPercentileMessage);
}

}  // namespace pral
