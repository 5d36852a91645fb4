// Families with an integer parameter, between whose values a likelihood is maximised.
#pragma once

#include "distributions/family.h"

namespace pral {

/// The family without the check for an integer: only check_range() is applied.
template <Family D>
struct RealCounts : D {
    using D::D;
    Message check() const { return D::check_range(); }
};

}  // namespace pral
