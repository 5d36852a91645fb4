#include "inference/fit.h"

#include <algorithm>
#include <mutex>

#include "distributions/combined.h"
#include "inference/parallel.h"

namespace pral::inference {

Shared distribution_of(const Model& model, const Request& request, const Estimate& estimate) {
    const std::size_t own = model.parameter_count();
    Shared made = model.make(std::span(estimate.parameters).first(own));
    std::string objection;
    if (made != nullptr && request.shift)
        made = affine(std::move(made), 1, estimate.parameters[own], objection);
    return made;
}

Fit::Fit(const Model& model, std::shared_ptr<const Observations> observations, Request request)
    : model_(&model),
      observations_(std::move(observations)),
      request_(std::move(request)),
      estimate_(inference::estimate(model, *observations_, request_)),
      covariance_(inference::covariance(model, *observations_, request_, estimate_)),
      distribution_(distribution_of(model, request_, estimate_)) {}

double Fit::aic() const { return 2.0 * estimate_.free - 2 * estimate_.log_likelihood; }

double Fit::aicc() const {
    const double k = estimate_.free, n = observations_->count();
    return n - k - 1 > 0 ? aic() + 2 * k * (k + 1) / (n - k - 1) : HUGE_VAL;
}

double Fit::bic() const {
    return estimate_.free * std::log(observations_->count()) - 2 * estimate_.log_likelihood;
}

namespace {

using Row = Observations::Row;

/// Observations like those of a fit, drawn from its distribution.
class FromFit {
  public:
    explicit FromFit(const Fit& fit) : fit_(fit) {
        if (!fit.observations().intervals().empty())
            throw BadData("censored data are replicated by drawing from the data, not from the fit");
        if (fit.distribution() == nullptr) throw BadData("the fit has no distribution to draw from");
        for (const auto& share : fit.observations().truncations()) {
            std::string objection;
            const Truncation& seen = share.truncation;
            Shared kept = truncated(fit.distribution(), {seen.lower, false}, {seen.upper, false}, objection);
            if (kept == nullptr) throw BadData(objection);
            kept_.emplace_back(seen, std::move(kept));
        }
    }
    std::shared_ptr<const Observations> operator()(PhiloxStream& stream) const {
        const std::span<const Row> rows = fit_.observations().rows();
        std::vector<double> values(rows.size());
        stream.fill(values);
        if (fit_.observations().plain()) {
            from(fit_.observations().common_truncation()).evaluate(Function::quantile, values, values);
        } else {
            for (std::size_t i = 0; i < rows.size(); ++i)
                values[i] = from(rows[i].truncation)(Function::quantile, values[i]);
        }
        std::vector<Row> drawn;
        drawn.reserve(rows.size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const double x = recorded(values[i], rows[i].truncation);
            drawn.push_back({x, x, rows[i].weight, rows[i].truncation});
        }
        return std::make_shared<const Observations>(std::move(drawn));
    }

  private:
    const Univariate& from(const Truncation& seen) const {
        if (!seen.bounded()) return *fit_.distribution();
        return *std::ranges::find(kept_, seen, &std::pair<Truncation, Shared>::first)->second;
    }
    /// In the unit of the data, where that counts.
    double recorded(double x, const Truncation& seen) const {
        const double unit = fit_.estimate().cell;
        return unit > 0 ? std::clamp(std::round(x / unit) * unit, seen.lower, seen.upper) : x;
    }

    const Fit& fit_;
    std::vector<std::pair<Truncation, Shared>> kept_;
};

/// As many rows as the weights sum up to, drawn with replacement by weight.
class FromData {
  public:
    explicit FromData(const Fit& fit) : rows_(fit.observations().rows()) {
        double sum = 0;
        for (const Row& row : rows_) cumulated_.push_back(sum += row.weight);
        if (!(sum < 1e8)) throw BadData("these are too many observations to be drawn again");
    }
    std::shared_ptr<const Observations> operator()(PhiloxStream& stream) const {
        std::vector<double> times(rows_.size());
        const double total = cumulated_.back(), draws = std::max(std::round(total), 1.0);
        for (double i = 0; i < draws; ++i) {
            const auto drawn = std::ranges::upper_bound(cumulated_, stream.uniform() * total);
            ++times[std::min(static_cast<std::size_t>(drawn - cumulated_.begin()), rows_.size() - 1)];
        }
        std::vector<Row> rows;
        for (std::size_t i = 0; i < rows_.size(); ++i) {
            Row row = rows_[i];
            if (row.weight == 1) {
                rows.insert(rows.end(), static_cast<std::size_t>(times[i]), row);
            } else if (times[i] > 0) {
                row.weight = times[i];
                rows.push_back(row);
            }
        }
        return std::make_shared<const Observations>(std::move(rows));
    }

  private:
    std::span<const Row> rows_;
    std::vector<double> cumulated_;
};

}  // namespace

void replicate(const Fit& fit, const Replication& how,
               const std::function<void(std::size_t, const Replicate*)>& use) {
    std::function<std::shared_ptr<const Observations>(PhiloxStream&)> draw;
    if (how.source == Source::fit)
        draw = FromFit(fit);
    else
        draw = FromData(fit);
    std::mutex lock;
    std::size_t done = 0;
    in_parallel(how.count, how.threads, [&](std::size_t i) {
        PhiloxStream stream(how.stream->name().child(static_cast<std::uint32_t>(i)));
        Replicate made;
        bool fitted = true;
        try {
            made.observations = draw(stream);
            const auto deadline = fitting::Deadline::in(fit.request().seconds);
            made.estimate =
                estimate_from(fit.estimate(), fit.model(), *made.observations, fit.request(), deadline);
            fitted = made.estimate.kind != Kind::unfinished;
        } catch (const fitting::Failure&) {
            fitted = false;
        } catch (const fitting::TimedOut&) {
            fitted = false;
        }
        use(i, fitted ? &made : nullptr);
        if (!how.progress) return;
        const std::lock_guard guard(lock);
        if (!how.progress(++done)) throw Stopped();
    });
}

}  // namespace pral::inference
