// The fit of a family to observations, and what kind of maximum it is.
//
// A likelihood may grow without bound: where an end of the support moves onto a datum and the density is infinite there, or
// where a scale shrinks about values that tie. Its largest value is then an accident of rounding. The fit is the highest
// local maximum inside (Smith 1985); where there is none, values count by the cells in which they have been recorded, which
// bounds the likelihood (Cheng and Iles 1987).
#pragma once

#include <algorithm>
#include <span>
#include <string>
#include <vector>

#include "fitting/deadline.h"
#include "inference/ascent.h"

namespace pral::inference {

enum class Kind {
    regular,  ///< the gradient vanishes and the Hessian is negative definite; or the data determine all parameters
    edge,        ///< the likelihood levels off towards an edge of the parameters
    cells,       ///< there is no maximum by the density: that by the cells
    unfinished,  ///< none has been found
};

struct Request {
    std::vector<double> held;  ///< by parameter, NaN where it is free; empty: all are free
    bool shift = false;        ///< fit a shift as well
    Criterion method = Criterion::density;
    double cell = 0;      ///< the unit in which values have been recorded; 0: as the data show it
    double seconds = 60;  ///< of processor time

    bool holds(std::size_t parameter) const {
        return parameter < held.size() && !std::isnan(held[parameter]);
    }
    bool holds_any() const {
        return std::ranges::any_of(held, [](double value) { return !std::isnan(value); });
    }
};

struct Estimate {
    /// The family's own, then the shift where that was fitted.
    fitting::Parameters parameters;
    double log_likelihood;  ///< of the observations, by cells where the kind says so
    Kind kind;
    double cell = 0;  ///< where values count by cells
    /// How many parameters were fitted; one that is a datum, as the end of a support, counts as two.
    int free = 0;
    /// The parameter that is a whole number, -1 where there is none.
    int whole = -1;
    /// The inverse of the observed information in the coordinates of the search; empty where it is not known.
    SquareMatrix inverse_information = {};
};

/// Fits. Throws fitting::Failure where data and family do not go together, BadData, and fitting::TimedOut.
Estimate estimate(const Model& model, const Observations& observations, const Request& request);

/// The fit that is found upwards from `start`, of the same kind: for replicates, which are many.
Estimate estimate_from(const Estimate& start, const Model& model, const Observations& observations,
                       const Request& request, const fitting::Deadline& deadline);

/// What an estimate maximises, as a function of coordinates around it, which are the parameters that move.
class LocalView {
  public:
    LocalView(const Model& model, const Observations& observations, const Request& request,
              const Estimate& estimate);

    std::size_t size() const { return centre_.size(); }
    const fitting::Point& centre() const { return centre_; }
    fitting::Parameters parameters(std::span<const double> point) const { return chart_.parameters(point); }
    double operator()(std::span<const double> point) const { return likelihood_(parameters(point)); }
    /// Whether an end of the support is as good as on a datum.
    bool end_on_datum(const fitting::Parameters& parameters) const;
    /// The slope of a function of the parameters along each coordinate.
    std::vector<double> gradient(const std::function<double(const fitting::Parameters&)>& of) const;
    /// The inverse of the observed information; empty where there is none.
    SquareMatrix covariance() const;

  private:
    Motion motion_;
    fitting::Extent extent_;
    Likelihood likelihood_;
    Chart chart_;
    fitting::Point centre_;
    SquareMatrix known_;
};

/// The covariance of the parameters from the observed information, in their order, the shift last: 0 for those that were
/// held, NaN for those that are whole numbers or determined by the extremes of the data; NaN in all where there is none.
SquareMatrix covariance(const Model& model, const Observations& observations, const Request& request,
                        const Estimate& estimate);

}  // namespace pral::inference
