#include "inference/rank.h"

#include <algorithm>
#include <array>
#include <mutex>
#include <optional>

#include "inference/parallel.h"

namespace pral::inference {

namespace {

/// Other parameters of a family that is there, or a base of logarithms: they stand back.
constexpr std::array<std::string_view, 2> kOnlyOnRequest = {"LognormalB", "BetaSubj"};

/// Families that models of amounts and counts begin with. Of some sixty others one nearly always fits fifty values a little
/// better by chance: to stand before these it must be better by an evidence of e^2.
constexpr std::array<std::string_view, 11> kUsual = {"Normal",   "Lognormal", "LognormalE", "Expon",
                                                     "Gamma",    "Weibull",   "Uniform",    "Poisson",
                                                     "Binomial", "NegBin",    "Geometric"};
constexpr double kEvidence = 4;

double place_by_evidence(const Fit& fit) {
    const bool usual = std::ranges::find(kUsual, fit.model().name()) != kUsual.end();
    return fit.aicc() + (usual ? 0 : kEvidence);
}

/// Whether two fits are one distribution, at all quantiles that the data could tell apart.
bool same(const Fit& a, const Fit& b) {
    constexpr double kSame = 1e-5;
    constexpr int kPoints = 64;
    if (std::fabs(a.estimate().log_likelihood - b.estimate().log_likelihood) > 1e-3) return false;
    if (a.distribution() == nullptr || b.distribution() == nullptr) return false;
    std::vector<double> x, of_a, of_b;
    for (int i = 0; i < kPoints; ++i) x.push_back((i + 0.5) / kPoints);
    a.distribution()->evaluate(Function::quantile, x, x);
    of_a.resize(x.size());
    of_b.resize(x.size());
    a.distribution()->evaluate(Function::cumulative, x, of_a);
    b.distribution()->evaluate(Function::cumulative, x, of_b);
    for (std::size_t i = 0; i < x.size(); ++i) {
        if (!(std::fabs(of_a[i] - of_b[i]) < kSame)) return false;
    }
    return true;
}

int place_of(Kind kind) {
    return kind == Kind::regular ? 0 : kind == Kind::edge ? 1 : kind == Kind::cells ? 2 : 3;
}
bool compares(const Fit& fit) { return place_of(fit.estimate().kind) < 2; }

/// Of equal distributions the one with the fewest parameters stays.
void merge(std::vector<Ranked>& fits) {
    std::vector<Ranked> kept;
    std::ranges::stable_sort(fits, [](const Ranked& a, const Ranked& b) {
        return a.fit->estimate().free < b.fit->estimate().free;
    });
    for (Ranked& next : fits) {
        const auto known =
            std::ranges::find_if(kept, [&](const Ranked& other) { return same(*other.fit, *next.fit); });
        if (known != kept.end())
            known->equal.push_back(next.fit->model().name());
        else
            kept.push_back(std::move(next));
    }
    fits = std::move(kept);
}

void weigh(std::vector<Ranked>& fits) {
    double least = HUGE_VAL, sum = 0;
    for (const Ranked& ranked : fits) {
        if (compares(*ranked.fit)) least = std::min(least, ranked.fit->aicc());
    }
    if (least == HUGE_VAL && !fits.empty()) least = fits.front().fit->aicc();
    for (Ranked& ranked : fits) {
        // Of data too few for the correction nothing is less than infinite.
        ranked.difference = std::isinf(least) ? 0 : ranked.fit->aicc() - least;
        ranked.weight = compares(*ranked.fit) ? std::exp(-0.5 * ranked.difference) : 0;
        sum += ranked.weight;
    }
    for (Ranked& ranked : fits) ranked.weight = sum > 0 ? ranked.weight / sum : 0;
}

}  // namespace

std::vector<const Model*> suitable(std::span<const Model> models, const Observations& observations) {
    constexpr double kWide = 50;
    const bool whole = observations.whole();
    const bool wide = observations.largest() - observations.smallest() >= kWide;
    std::vector<const Model*> chosen;
    for (const Model& model : models) {
        if (std::ranges::find(kOnlyOnRequest, model.name()) != kOnlyOnRequest.end()) continue;
        if (model.integers ? whole : !whole || wide) chosen.push_back(&model);
    }
    return chosen;
}

Ranking rank(std::span<const Model* const> models, std::shared_ptr<const Observations> observations,
             const Request& request, int threads, const std::function<bool(std::size_t)>& progress) {
    std::vector<std::shared_ptr<const Fit>> fits(models.size());
    std::vector<std::string> reasons(models.size());
    std::mutex lock;
    std::size_t done = 0;
    in_parallel(models.size(), threads, [&](std::size_t i) {
        try {
            fits[i] = std::make_shared<const Fit>(*models[i], observations, request);
            if (fits[i]->estimate().kind == Kind::unfinished) {
                fits[i] = nullptr;
                reasons[i] = "no maximum of its likelihood was found";
            }
        } catch (const fitting::Failure& failure) {
            reasons[i] = *failure.what() == 0 ? "these data cannot be fitted" : failure.what();
        } catch (const fitting::TimedOut&) {
            reasons[i] = "the time limit was reached";
        }
        if (!progress) return;
        const std::lock_guard guard(lock);
        if (!progress(++done)) throw Stopped();
    });
    Ranking ranking;
    for (std::size_t i = 0; i < models.size(); ++i) {
        if (fits[i] != nullptr)
            ranking.fits.push_back({fits[i], 0, 0, {}});
        else
            ranking.left_out.push_back({models[i]->name(), reasons[i]});
    }
    merge(ranking.fits);
    weigh(ranking.fits);
    std::ranges::stable_sort(ranking.fits, [](const Ranked& a, const Ranked& b) {
        const int first = place_of(a.fit->estimate().kind), second = place_of(b.fit->estimate().kind);
        return first != second ? first < second : place_by_evidence(*a.fit) < place_by_evidence(*b.fit);
    });
    return ranking;
}

}  // namespace pral::inference
