#include "fitting/fit.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <optional>

#include "fitting/coordinates.h"
#include "fitting/maximise.h"
#include "fitting/starts.h"
#include "statistics/moments.h"

namespace pral::fitting {

namespace detail {

void fail(Message objection) { throw Failure(objection); }

void check_bounds(const Limits& limits, bool ordered, const Bound& min, const Bound& max) {
    if (!limits.given) return;
    if (!ordered)
        throw limits.both_values() ? Contradiction(min.x, max.x, true)
                                   : Contradiction(min.tails.lower, max.tails.lower, false);
    if (!(min.tails.lower >= 0 && max.tails.lower <= 1)) fail(kPercentileOutside);
}

}  // namespace detail

namespace {

bool valid(double value) { return std::fabs(value) < numerics::kInfinity; }

/// Messages of the families with a search of their own begin with their names.
std::string message(const FittedFamily& family, const char* text) {
    return (family.own_search ? std::string(family.name) : "Error") + ": " + text;
}

/// What a first climb may leave to gain.
constexpr double kRoughly = 1e-2;
/// From so many places the search climbs where the likelihood is not known to have several maxima.
constexpr std::size_t kClimbs = 2;

/// A place where the search may begin.
struct Candidate {
    Parameters place;
    double log_likelihood;
};

/// One fit on its way from the data to the parameters.
class Fit {
  public:
    Fit(const FittedFamily& family, std::span<const double> data, const FitRequest& request,
        const Deadline& deadline)
        : family_(family),
          request_(request),
          deadline_(deadline),
          x_(data, &pause_),
          limits_(limits_of(request.TruncMin, request.TruncMax, request.above_min)) {
        parameters_.fill(-numerics::kInfinity);
    }

    FitResult operator()() {
        if (request_.TruncMin && x_.min() < *request_.TruncMin)
            throw Failure(message(family_, "TruncData minimum must be <= min(data)"));
        if (request_.TruncMax && *request_.TruncMax < x_.max())
            throw Failure(message(family_, "TruncData maximum must be >= max(data)"));
        EstimateStartParameters();
        if (shifting()) choose_shift();
        approach();
        if (!(log_likelihood(parameters_, x_) > -HUGE_VAL)) fail_without_likelihood();
        if (family_.sample_moments && !truncated() && !shifting()) {
            parameters_[0] = statistics::mean(x_.values());
            if (x_.size() > 1) parameters_[1] = std::sqrt(statistics::variance(x_.values()));
        } else if (!family_.own_search) {
            MinimiseNegLogLikelihood();
        }
        for (std::size_t i = 0; i < parameter_count() + (shifting() ? 1 : 0); ++i) {
            if (!valid(parameters_[i])) fail_without_likelihood();
        }
        RoundIntegerParameters();
        if (shifting()) *request_.shift = shift(parameters_);
        return {parameters_, evaluations_};
    }

  private:
    void EstimateStartParameters();
    void keep_possible_places(const Sample& x);
    void choose_shift();
    void climb(Candidate& candidate, const Sample& x, double negligible);
    std::vector<Candidate> candidates(const Sample& x);
    void approach();
    void MinimiseNegLogLikelihood();
    void RoundIntegerParameters();

    [[noreturn]] void fail_without_likelihood() const {
        throw Failure(family_.own_search ? message(family_, "Unable to perform the fit")
                                         : "Error: Unable to perform a fit from selected data");
    }
    bool truncated() const { return request_.TruncMin || request_.TruncMax; }
    bool shifting() const { return request_.shift != nullptr; }
    std::size_t parameter_count() const { return static_cast<std::size_t>(family_.parameter_count); }
    double& shift(Parameters& parameters) const { return parameters[parameter_count()]; }

    /// How the parameters may move: the first not at all when the caller has fixed it.
    std::vector<Range> ranges() const {
        std::vector<Range> ranges(family_.ranges.begin(), family_.ranges.begin() + family_.parameter_count);
        if (held_) ranges[0] = kHeld;
        if (shifting()) ranges.push_back(kLocation);
        return ranges;
    }

    /// The natural log-likelihood, of data less the shift where that is fitted.
    double log_likelihood(const Parameters& parameters, const Sample& x) {
        const double moved = shifting() ? parameters[parameter_count()] : 0;
        if (moved == 0) return counted_log_likelihood(parameters, x);
        return counted_log_likelihood(parameters, Sample(less(x, moved), &pause_));
    }
    double counted_log_likelihood(const Parameters& parameters, const Sample& x) {
        ++evaluations_;
        return fitting::log_likelihood(family_, parameters, x, limits_);
    }
    /// The values less `moved`, valid until the next call.
    std::span<const double> less(const Sample& x, double moved) {
        moved_.assign(x.values().begin(), x.values().end());
        for (double& value : moved_) value -= moved;
        return moved_;
    }

    const FittedFamily& family_;
    const FitRequest& request_;
    const Deadline& deadline_;
    const Sample::Pause pause_ = [this] { deadline_.check(); };
    const Sample x_;
    const Limits limits_;
    bool held_ = false;
    long evaluations_ = 0;
    Parameters parameters_;
    std::vector<Parameters> places_;
    std::vector<double> moved_;
};

/// The places where the search may begin; the first, checked, becomes the parameters.
void Fit::EstimateStartParameters() {
    std::optional<Sample> moved;
    if (shifting() && !request_.TruncMin && *request_.shift != 0) moved.emplace(less(x_, *request_.shift));
    const Sample& x = moved ? *moved : x_;
    held_ = family_.begins_with_count && request_.firstParameter;
    const double* const first = held_ ? &*request_.firstParameter : nullptr;
    Starts starts = std::isfinite(x.mean())
                        ? family_.starts({x, first, deadline_, request_.TruncMin.value_or(-HUGE_VAL),
                                          request_.TruncMax.value_or(HUGE_VAL)})
                        : Starts{Parameters{numerics::kNaN}};
    if (starts.objection != nullptr) throw Failure(starts.objection);
    if (starts.places.empty()) starts.places = {Parameters{numerics::kNaN}};
    places_ = std::move(starts.places);
    for (Parameters& place : places_) {
        if (held_) place[0] = *first;
        std::fill(place.begin() + family_.parameter_count, place.end(), -numerics::kInfinity);
        if (shifting()) shift(place) = *request_.shift;
    }
    keep_possible_places(x);
    parameters_ = places_.front();
    if (request_.startValues != nullptr) {
        std::copy_n(request_.startValues, parameter_count(), parameters_.begin());
        places_.insert(places_.begin(), parameters_);
    }
}

/// Drops the places with a value that is no number or outside of its range. Where all are such, objects to the first such
/// value of the first.
void Fit::keep_possible_places(const Sample& x) {
    const auto first_wrong = [&](const Parameters& place) {
        const Parameters moved = family_.search.from(place);
        const int outside = family_.closed_form ? -1 : Coordinates(ranges(), moved, x).first_outside(moved);
        for (int i = 0; i < family_.parameter_count; ++i) {
            if (i == outside || !valid(place[static_cast<std::size_t>(i)])) return i;
        }
        return -1;
    };
    const int wrong = first_wrong(places_.front());
    std::erase_if(places_, [&](const Parameters& place) { return first_wrong(place) >= 0; });
    if (!places_.empty()) return;
    if (family_.own_search) throw Failure(message(family_, "Unable to perform the fit"));
    if (const char* name = family_.names[static_cast<std::size_t>(wrong)])
        throw Failure(std::string("Error: Can't estimate {") + name + "} start parameter");
    throw Failure("Error: Unable to perform a fit because can't estimate (" + std::to_string(wrong + 1) +
                  ") start parameter");
}

/// With a lower bound the shift starts so that the distribution begins just below it.
void Fit::choose_shift() {
    constexpr double kLowPercentile = 0.0001, kMargin = 0.01;
    double low = 0, start = *request_.shift;
    if (request_.TruncMin) {
        try {
            RandomStream unused;
            family_.values({&low, 1}, parameters_.data(), limits_, &kLowPercentile, unused);
        } catch (const Failure&) {  // the place has no distribution: the search may find one
        }
        start = low <= *request_.TruncMin ? 0 : *request_.TruncMin - low - kMargin;
    }
    for (Parameters& place : places_) shift(place) = start;
    shift(parameters_) = start;
}

/// Moves a place to the maximum of the likelihood of x that the family's coordinates lead to.
void Fit::climb(Candidate& candidate, const Sample& x, double negligible) {
    const Parameters origin = family_.search.from(candidate.place);
    const Coordinates coordinates(ranges(), origin, x_);
    // Where the likelihood grows without end, as it may for few data, it is not followed beyond these coordinates.
    constexpr double kFar = 17;
    const Point start = coordinates.point(origin);
    const auto parameters_at = [&](std::span<const double> point) {
        return family_.search.own(coordinates.parameters(point));
    };
    const Objective objective = [&](std::span<const double> point) {
        for (std::size_t i = 0; i < point.size(); ++i) {
            if (!(std::fabs(point[i] - start[i]) < kFar)) return -HUGE_VAL;
        }
        return log_likelihood(parameters_at(point), x);
    };
    const Maximum found = maximise(objective, start, deadline_, negligible);
    if (found.value > candidate.log_likelihood) candidate = {parameters_at(found.point), found.value};
}

/// The best places, the best first: of families that ask for more than two climbs the first climbs are of a small part.
std::vector<Candidate> Fit::candidates(const Sample& x) {
    constexpr std::size_t kSmallPart = 128;
    std::vector<Candidate> all;
    const auto keep = [&](std::size_t count, const Sample& of) {
        for (Candidate& candidate : all) candidate.log_likelihood = log_likelihood(candidate.place, of);
        std::ranges::stable_sort(all, std::greater<>(), &Candidate::log_likelihood);
        if (all.size() > count) all.erase(all.begin() + static_cast<std::ptrdiff_t>(count), all.end());
    };
    for (const Parameters& place : places_) all.push_back({place, -HUGE_VAL});
    const auto climbs = static_cast<std::size_t>(family_.climbs);
    if (climbs <= kClimbs) {
        keep(kClimbs, x);
        return all;
    }
    keep(climbs, x);
    if (2 * kSmallPart > x.size()) return all;
    const std::vector<double> part = thinned(x.values(), kSmallPart);
    const std::vector<Candidate> unmoved = all;
    for (Candidate& candidate : all) {
        candidate.log_likelihood = -HUGE_VAL;
        climb(candidate, Sample(part, &pause_), kRoughly);
    }
    all.insert(all.end(), unmoved.begin(), unmoved.end());
    keep(kClimbs, x);
    return all;
}

/// Brings the start as near to the maximum as can be: the steps of the search itself suit parameters of order 1 only. The
/// better places are climbed from, the best result remains and is climbed from once more, to the top. Of much data a part
/// comes first, not a small one: its likelihood must have the same maxima as that of all.
void Fit::approach() {
    constexpr double kToTheTop = 1e-8;
    const std::size_t part_size = family_.costly ? 250 : 2000;
    const bool at_maximum = family_.closed_form && !truncated() && !shifting();
    // A place of the first climbs so little below the best may be higher in the end, unless they were of a part.
    constexpr double kMayPass = 4 * kRoughly;
    const bool each_value_counts = !at_maximum && (!family_.summarised || shifting());
    std::vector<double> part;
    if (each_value_counts && 2 * part_size < x_.size()) part = thinned(x_.values(), part_size);
    const Sample first(part.empty() ? x_.values() : part, &pause_);
    std::vector<Candidate> best_places = candidates(first);
    if (!at_maximum && (best_places.size() > 1 || !part.empty())) {
        for (Candidate& candidate : best_places) climb(candidate, first, kRoughly);
    }
    const bool several = part.empty() && family_.climbs > static_cast<int>(kClimbs);
    Candidate best = *std::ranges::max_element(best_places, {}, &Candidate::log_likelihood);
    if (!part.empty()) best.log_likelihood = log_likelihood(best.place, x_);
    if (!at_maximum) {
        const double rough = best.log_likelihood;
        climb(best, x_, kToTheTop);
        for (Candidate& other : best_places) {
            if (!several || other.log_likelihood == rough || other.log_likelihood < rough - kMayPass)
                continue;
            climb(other, x_, kToTheTop);
            if (other.log_likelihood > best.log_likelihood) best = other;
        }
    }
    parameters_ = best.place;
}

/// The search itself: Nelder and Mead's simplex over the parameters as they are, a held one and families' own searches
/// excepted. Ending at the limit of iterations is no failure.
void Fit::MinimiseNegLogLikelihood() {
    constexpr SimplexRules kRules = {0.1, 1e-5, 1000, false};
    constexpr double kRefused = 1e100;
    const std::size_t first = held_ ? 1 : 0, end = parameter_count() + (shifting() ? 1 : 0);
    Point point(parameters_.begin() + first, parameters_.begin() + end);
    if (point.empty()) return;
    Parameters parameters = parameters_;
    const Coordinates ranges_of_search(ranges(), parameters, x_);
    const bool keep_ranges = family_.costly && !shifting();
    const Objective objective = [&](std::span<const double> coordinates) {
        std::ranges::copy(coordinates, parameters.begin() + first);
        if (keep_ranges && ranges_of_search.first_outside(parameters) >= 0) return kRefused;
        const double log = log_likelihood(parameters, x_);
        return log > -HUGE_VAL ? -log / numerics::kLn10 : kRefused;
    };
    minimise(objective, point, kRules, deadline_);
    std::ranges::copy(point, parameters_.begin() + first);
}

/// After the search, and nothing is fitted again after it.
void Fit::RoundIntegerParameters() {
    const auto& [place, truncated, least] = family_.rounding;
    if (place < 0) return;
    double& parameter = parameters_[static_cast<std::size_t>(place)];
    parameter = std::fmax(truncated ? std::trunc(parameter) : std::floor(parameter + 0.5), least);
}

}  // namespace

const FittedFamily* fitted_family(std::string_view name) {
    for (const auto kin : {symmetric_families(), positive_families(), bounded_families(), count_families()}) {
        const auto found = std::ranges::find(kin, name, &FittedFamily::name);
        if (found != kin.end()) return &*found;
    }
    return nullptr;
}

FitResult fit(const FittedFamily& family, std::span<const double> data, const FitRequest& request,
              const Deadline& deadline) {
    return Fit(family, data, request, deadline)();
}

FitResult refit(const FittedFamily& family, const Parameters& fitted, std::size_t count,
                const FitRequest& request, const Deadline& deadline, RandomStream& stream) {
    constexpr std::size_t kDrawsBetweenLooks = 1 << 14;
    const Limits limits = limits_of(request.TruncMin, request.TruncMax, request.above_min);
    std::vector<double> draws(count);
    for (std::span<double> left = draws; !left.empty(); deadline.check()) {
        const std::size_t size = std::min(left.size(), kDrawsBetweenLooks);
        family.values(left.first(size), fitted.data(), limits, nullptr, stream);
        left = left.subspan(size);
    }
    if (request.shift != nullptr) {
        for (double& value : draws) value += *request.shift;
    }
    FitRequest again = request;
    again.startValues = fitted.data();
    return fit(family, draws, again, deadline);
}

std::string timeout_message(const FittedFamily& family) {
    return family.own_search ? message(family, "Unable to perform the fit")
                             : "Error: Unable to fit from selected data array";
}

bool within_bounds(std::span<const double> data, const FitRequest& request) {
    const Sample x(data);
    return !(request.TruncMin && x.min() < *request.TruncMin) &&
           !(request.TruncMax && x.max() > *request.TruncMax);
}

double log_likelihood(const FittedFamily& family, const Parameters& parameters, const Sample& x,
                      const Limits& limits) {
    const double log = family.log_likelihood(parameters.data(), x, limits);
    return log > -numerics::kInfinity && log < numerics::kInfinity ? log : -HUGE_VAL;
}

}  // namespace pral::fitting
