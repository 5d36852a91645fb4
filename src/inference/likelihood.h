// How well a distribution explains observations: the log-likelihood, the same with values that count by the cells they were
// recorded in, and the product of spacings.
#pragma once

#include <functional>
#include <span>
#include <string_view>

#include "distributions/univariate.h"
#include "fitting/fitted_family.h"
#include "inference/observations.h"

namespace pral::inference {

/// A family that can be fitted, and how a distribution of it is made: null where parameters are out of range.
struct Model {
    const fitting::FittedFamily* family;
    bool integers;
    std::function<Shared(std::span<const double> parameters)> make;

    std::string_view name() const { return family->name; }
    std::size_t parameter_count() const { return static_cast<std::size_t>(family->parameter_count); }
};

enum class Criterion {
    density,   ///< values count by their density, or probability where the family is discrete
    cells,     ///< values count by the probability of x +- h/2 divided by h
    spacings,  ///< the probabilities between neighbouring values (Cheng and Amin 1983; Ranneby 1984); ties count by their density
};

/// A criterion of given observations as a function of the parameters.
class Likelihood {
  public:
    /// With `shifted` the parameter after the family's own is added to its variable. `cell` is h. All must outlive it.
    Likelihood(const Model& model, const Observations& observations, Criterion criterion, bool shifted,
               double cell = 0);

    /// -inf where there is none.
    double operator()(const fitting::Parameters& parameters) const;
    /// For many exact values: `pause` is called now and then and throws to end the sum.
    void set_pause(const Sample::Pause* pause) { sample_.emplace(observations_.values(), pause); }

  private:
    double of_plain(const fitting::Parameters& parameters, double shift) const;
    double of_values(const Univariate& d, double shift) const;
    double of_cells(const Univariate& d, double shift) const;
    double of_spacings(const Univariate& d, double shift) const;
    double of_intervals(const Univariate& d, double shift) const;
    double of_truncations(const Univariate& d, double shift) const;

    const Model& model_;
    const Observations& observations_;
    const Criterion criterion_;
    const bool shifted_;
    const double cell_;
    std::optional<Sample> sample_;
    mutable std::vector<double> buffer_;
};

/// The values less `shift`.
void moved(std::span<const double> values, double shift, std::vector<double>& out);

}  // namespace pral::inference
