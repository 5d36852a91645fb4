// Families told by their mode and the values at two percentiles around it.
#pragma once

#include "distributions/family.h"

namespace pral {

/// Low < Mode < High; cumulative LowP at Low and HighP at High, 0 < LowP < 0.5 < HighP < 1.
struct ModeAndPercentiles {
    double Low, Mode, High, LowP, HighP;

    Message check() const {
        if (!(Low < Mode)) return "Error: Low must be < Mode";
        if (!(High > Mode)) return "Error: High must be > Mode";
        if (!(HighP > 0.5)) return "Error: HighP must be > 0.5";
        if (!(LowP < 0.5)) return "Error: LowP must be <0.5";
        if (!(LowP > 0)) return "Error: LowP must be >0";
        if (!(HighP < 1)) return "Error: HighP must be <1.0";
        if (!(LowP < HighP)) return "Error: LowP must be < HighP";
        return nullptr;
    }
};

}  // namespace pral
