// A fit: a family, observations, and the estimate that goes with them.
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "base/philox.h"
#include "inference/estimate.h"

namespace pral::inference {

/// It never changes once it is made: any number of threads may use one.
class Fit {
  public:
    /// Throws what estimate() throws. The model must outlive the fit.
    Fit(const Model& model, std::shared_ptr<const Observations> observations, Request request);

    const Model& model() const { return *model_; }
    const Observations& observations() const { return *observations_; }
    const std::shared_ptr<const Observations>& shared_observations() const { return observations_; }
    const Request& request() const { return request_; }
    const Estimate& estimate() const { return estimate_; }
    /// How many parameters there are, a fitted shift among them.
    std::size_t parameter_count() const { return model_->parameter_count() + request_.shift; }
    const SquareMatrix& covariance() const { return covariance_; }
    /// The distribution, shifted, but not truncated as the observations may be. Null where it is none.
    const Shared& distribution() const { return distribution_; }

    /// Akaike's criterion; with the correction for small samples (Hurvich and Tsai 1989), infinite where n is too small for
    /// it; Schwarz's.
    double aic() const;
    double aicc() const;
    double bic() const;

  private:
    const Model* model_;
    std::shared_ptr<const Observations> observations_;
    Request request_;
    Estimate estimate_;
    SquareMatrix covariance_;
    Shared distribution_;
};

/// The distribution of an estimate; null where the parameters are none of it.
Shared distribution_of(const Model& model, const Request& request, const Estimate& estimate);

/// What replicates are drawn from.
enum class Source {
    fit,   ///< the fitted distribution, seen through the truncations of the data
    data,  ///< the observations, drawn with replacement
};

/// How replicates are made: replicate i depends on the stream's child i alone.
struct Replication {
    Source source = Source::fit;
    std::size_t count = 999;
    const PhiloxStream* stream = nullptr;
    int threads = 0;
    /// Called after each, from any thread, with how many are done; false ends the work.
    std::function<bool(std::size_t)> progress;
};

/// The observations and the refit of a replicate.
struct Replicate {
    std::shared_ptr<const Observations> observations;
    Estimate estimate;
};

/// Calls use(i, replicate) for all of them, from several threads; null where the refit has failed. Throws BadData where the
/// fit cannot be replicated so, and Stopped.
void replicate(const Fit& fit, const Replication& how,
               const std::function<void(std::size_t, const Replicate*)>& use);

/// The caller has ended the work.
struct Stopped : std::exception {
    const char* what() const noexcept override { return "stopped"; }
};

}  // namespace pral::inference
