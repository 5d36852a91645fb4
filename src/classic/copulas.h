// Where the classic copulas differ from those of multivariate/.
#pragma once

#include "multivariate/archimedean.h"

namespace pral::classic {

/// Gumbel's copula with a pi cut to 13 decimals in its frailty.
class CutPiGumbel : public multivariate::Gumbel {
  public:
    using Gumbel::Gumbel;
    void frailties(std::span<double> first, std::span<const double> second) const {
        constexpr double kCutPi = 3.1415926535898;
        for (std::size_t i = 0; i < first.size(); ++i) first[i] = log_frailty(kCutPi * first[i], second[i]);
    }
};

}  // namespace pral::classic
