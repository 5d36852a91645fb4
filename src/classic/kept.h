// Families kept between two bounds, as classic calls sample them.
#pragma once

#include <span>

#include "classic/forms.h"
#include "distributions/truncated.h"

namespace pral::classic {

/// A family that is approximated for large parameters.
template <class D>
concept Approximated = requires(const D& d) {
    d.approximates();
    d.far_quantile_upper(0.1);
};
/// One whose approximation is rounded only after the shift.
template <class D>
concept RoundedAfterShift = requires(const D& d) {
    d.quantile_unrounded(Side::lower, 0.5);
};
/// Percentiles there are so near to 1 that approximations would be of no use.
inline bool is_beyond_percentiles(const Window& window) { return window.min.upper < 1e-13; }

template <class D>
bool is_approximated(const D& d) {
    if constexpr (Approximated<D>)
        return d.approximates();
    else
        return false;
}
template <class D>
double far_quantile_upper(const D& d, double q) {
    if constexpr (Approximated<D>) {
        if (q > 0 && q < 1) return d.far_quantile_upper(q);
    }
    return pral::quantile_upper(d, q);
}

template <Family D>
class KeptApproximation : public Truncated<D> {
  public:
    using Truncated<D>::Truncated;

    double quantile(double u) const {
        if (!is_far() || this->inseparable()) return Truncated<D>::quantile(u);
        return this->limited(far_quantile_upper(this->base(), this->tail_of_base(u).probability));
    }
    void quantiles(std::span<double> u) const {
        if (!is_far()) return Truncated<D>::quantiles(u);
        for (double& value : u) value = quantile(value);
    }
    /// Before the shift and the rounding.
    double quantile_unrounded(double u) const requires RoundedAfterShift<D> {
        if (this->inseparable() || is_beyond_percentiles(this->window())) return quantile(u);
        const auto [side, tail] = this->tail_of_base(u);
        return this->limited(this->base().quantile_unrounded(side, tail));
    }

  private:
    bool is_far() const {
        return this->bounded() && is_beyond_percentiles(this->window()) && this->base().approximates();
    }
};

template <class D>
struct KeptOf {
    using type = Truncated<D>;
};
template <Approximated D>
struct KeptOf<D> {
    using type = KeptApproximation<D>;
};
/// variants.h has those with extra zeros.
template <class Base>
struct KeptOf<ZeroInflated<Base>>;
template <class Base>
struct KeptOf<Inflated<Base>>;
template <class D>
using Kept = typename KeptOf<D>::type;

}  // namespace pral::classic
