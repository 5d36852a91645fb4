// The parameters of a fit as coordinates without bounds, of which a step of 1 is a large one.
#pragma once

#include "fitting/fitted_family.h"
#include "fitting/maximise.h"

namespace pral::fitting {

class Coordinates {
  public:
    /// For parameters near `origin`.
    Coordinates(std::span<const Range> ranges, const Parameters& origin, const Sample& x);

    /// The first parameter outside of its range, or -1.
    int first_outside(const Parameters& parameters) const;
    Point point(const Parameters& parameters) const;
    Parameters parameters(std::span<const double> point) const;

  private:
    std::vector<Range> ranges_;
    Parameters origin_;
    double spread_;
};

}  // namespace pral::fitting
