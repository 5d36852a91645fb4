// The parameters of a fit as coordinates without bounds, of which a step of 1 is a large one.
#pragma once

#include "fitting/fitted_family.h"
#include "fitting/maximise.h"

namespace pral::fitting {

/// What coordinates need to know of the data: between what an unknown end of a support may lie, and their spread.
struct Extent {
    double min, max, spread;

    explicit Extent(const Sample& x)
        : min(x.min()),
          max(x.max()),
          spread(x.constant() ? std::fmax(std::fabs(x.mean()), 1) : x.deviation()) {}
    Extent(double min_, double max_, double spread_) : min(min_), max(max_), spread(spread_) {}
};

class Coordinates {
  public:
    /// For parameters near `origin`.
    Coordinates(std::span<const Range> ranges, const Parameters& origin, const Extent& x);
    Coordinates(std::span<const Range> ranges, const Parameters& origin, const Sample& x)
        : Coordinates(ranges, origin, Extent(x)) {}

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
