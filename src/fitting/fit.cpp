#include "fitting/fit.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <optional>
#include <stdexcept>

#include "fitting/catalogue.h"
#include "fitting/coordinates.h"
#include "fitting/maximise.h"
#include "fitting/result_cache.h"
#include "fitting/starts.h"
#include "statistics/moments.h"

namespace pral::fitting {

namespace {

double timeout_seconds = 60;
std::string message_of_last_failure;
long evaluation_count = 0;
ResultCache result_cache;

bool valid(double value) { return std::fabs(value) < numerics::kInfinity; }

bool fail_fit(const std::string& message) {
    message_of_last_failure = message;
    return fail(message);
}

double natural_log_likelihood(const FittedFamily& family, const Parameters& parameters, const Sample& x,
                              const Bounds& bounds) {
    ++evaluation_count;
    const double log = family.log_likelihood(parameters.data(), x, bounds.modifiers().limits());
    return log > -numerics::kInfinity && log < numerics::kInfinity ? log : -HUGE_VAL;
}

/// Messages of the families with a search of their own begin with their names.
std::string message(const FittedFamily& family, const char* text) {
    return (family.own_search ? std::string(family.name) : "Error") + ": " + text;
}

/// What a first climb may leave to gain.
constexpr double kRoughly = 1e-2;

/// A place where the search may begin.
struct Candidate {
    Parameters place;
    double log_likelihood;
};

/// One fit on its way from the data to the parameters.
class Fit {
  public:
    Fit(FitDescriptor& descriptor, const FittedFamily& family, std::span<const double> data,
        const FitRequest& request, const Deadline& deadline)
        : descriptor_(descriptor),
          family_(family),
          request_(request),
          deadline_(deadline),
          x_(data, &pause_),
          bounds_(request.TruncMin, request.TruncMax) {}

    bool operator()() {
        if (given(request_.TruncMin) && x_.min() < request_.TruncMin)
            return fail_fit(message(family_, "TruncData minimum must be <= min(data)"));
        if (given(request_.TruncMax) && request_.TruncMax < x_.max())
            return fail_fit(message(family_, "TruncData maximum must be >= max(data)"));
        if (!EstimateStartParameters()) return false;
        if (shifting()) choose_shift();
        approach();
        if (!(log_likelihood(descriptor_.params, x_) > -HUGE_VAL)) return fail_without_likelihood();
        if (family_.sample_moments && !truncated() && !shifting()) {
            descriptor_.params[0] = statistics::mean(x_.values());
            if (x_.size() > 1) descriptor_.params[1] = std::sqrt(statistics::variance(x_.values()));
        } else if (!family_.own_search) {
            MinimiseNegLogLikelihood();
        }
        for (std::size_t i = 0; i < parameter_count() + (shifting() ? 1 : 0); ++i) {
            if (!valid(descriptor_.params[i])) return fail_without_likelihood();
        }
        RoundIntegerParameters();
        if (shifting()) *request_.shift = shift(descriptor_.params);
        return true;
    }

  private:
    bool EstimateStartParameters();
    bool keep_possible_places(const Sample& x);
    void choose_shift();
    void climb(Candidate& candidate, const Sample& x, double negligible);
    std::vector<Candidate> candidates(const Sample& x);
    void approach();
    void MinimiseNegLogLikelihood();
    void RoundIntegerParameters();

    bool fail_without_likelihood() const {
        return fail_fit(family_.own_search ? message(family_, "Unable to perform the fit")
                                           : "Error: Unable to perform a fit from selected data");
    }
    bool truncated() const { return given(request_.TruncMin) || given(request_.TruncMax); }
    bool shifting() const { return request_.shift != nullptr; }
    std::size_t parameter_count() const { return static_cast<std::size_t>(descriptor_.paramCount); }
    double& shift(Parameters& parameters) const { return parameters[parameter_count()]; }

    /// How the parameters may move: the first not at all when the caller has fixed it.
    std::vector<Range> ranges() const {
        std::vector<Range> ranges(family_.ranges.begin(), family_.ranges.begin() + descriptor_.paramCount);
        if (held_) ranges[0] = kHeld;
        if (shifting()) ranges.push_back(kLocation);
        return ranges;
    }

    /// The natural log-likelihood, of data less the shift where that is fitted.
    double log_likelihood(const Parameters& parameters, const Sample& x) {
        const double moved = shifting() ? parameters[parameter_count()] : 0;
        if (moved == 0) return natural_log_likelihood(family_, parameters, x, bounds_);
        return natural_log_likelihood(family_, parameters, Sample(less(x, moved), &pause_), bounds_);
    }
    /// The values less `moved`, valid until the next call.
    std::span<const double> less(const Sample& x, double moved) {
        moved_.assign(x.values().begin(), x.values().end());
        for (double& value : moved_) value -= moved;
        return moved_;
    }

    FitDescriptor& descriptor_;
    const FittedFamily& family_;
    const FitRequest& request_;
    const Deadline& deadline_;
    const Sample::Pause pause_ = [this] { deadline_.check(); };
    const Sample x_;
    Bounds bounds_;
    bool held_ = false;
    std::vector<Parameters> places_;
    std::vector<double> moved_;
};

/// The places where the search may begin; the first, checked, becomes the descriptor's parameters.
bool Fit::EstimateStartParameters() {
    std::optional<Sample> moved;
    if (shifting() && !given(request_.TruncMin) && *request_.shift != 0)
        moved.emplace(less(x_, *request_.shift));
    const Sample& x = moved ? *moved : x_;
    const double* first = nullptr;
    if (family_.begins_with_count && request_.firstParameter != nullptr) {
        held_ = given(*request_.firstParameter);
        if (held_)
            first = request_.firstParameter;
        else
            *request_.firstParameter = x.max();
    }
    Starts starts =
        std::isfinite(x.mean())
            ? family_.starts({x, first, deadline_, given(request_.TruncMin) ? request_.TruncMin : -HUGE_VAL,
                              given(request_.TruncMax) ? request_.TruncMax : HUGE_VAL})
            : Starts{Parameters{numerics::kNaN}};
    if (starts.objection != nullptr) return starts.objection[0] != '\0' && fail_fit(starts.objection);
    if (starts.places.empty()) starts.places = {Parameters{numerics::kNaN}};
    places_ = std::move(starts.places);
    for (Parameters& place : places_) {
        if (held_) place[0] = *first;
        std::fill(place.begin() + descriptor_.paramCount, place.end(), -numerics::kInfinity);
        if (shifting()) shift(place) = *request_.shift;
    }
    if (!keep_possible_places(x)) return false;
    descriptor_.params = places_.front();
    if (request_.startValues != nullptr) {
        std::copy_n(request_.startValues, parameter_count(), descriptor_.params.begin());
        places_.insert(places_.begin(), descriptor_.params);
    }
    return true;
}

/// Drops the places with a value that is no number or outside of its range. Where all are such, reports the first such
/// value of the first.
bool Fit::keep_possible_places(const Sample& x) {
    const auto first_wrong = [&](const Parameters& place) {
        const int outside = family_.closed_form ? -1 : Coordinates(ranges(), place, x).first_outside(place);
        for (int i = 0; i < descriptor_.paramCount; ++i) {
            if (i == outside || !valid(place[static_cast<std::size_t>(i)])) return i;
        }
        return -1;
    };
    const int wrong = first_wrong(places_.front());
    std::erase_if(places_, [&](const Parameters& place) { return first_wrong(place) >= 0; });
    if (!places_.empty()) return true;
    if (family_.own_search) return fail_fit(message(family_, "Unable to perform the fit"));
    if (const char* name = family_.names[static_cast<std::size_t>(wrong)])
        return fail_fit(std::string("Error: Can't estimate {") + name + "} start parameter");
    return fail_fit("Error: Unable to perform a fit because can't estimate (" + std::to_string(wrong + 1) +
                    ") start parameter");
}

/// With a lower bound the shift starts so that the distribution begins just below it.
void Fit::choose_shift() {
    constexpr double kLowPercentile = 0.0001, kMargin = 0.01;
    double low = 0, start = *request_.shift;
    if (given(request_.TruncMin)) {
        EvaluateFitted(descriptor_, {&low, 1}, &kLowPercentile, request_.TruncMin, request_.TruncMax);
        start = low <= request_.TruncMin ? 0 : request_.TruncMin - low - kMargin;
    }
    for (Parameters& place : places_) shift(place) = start;
    shift(descriptor_.params) = start;
}

/// Moves a place to the maximum of the likelihood of x that the family's coordinates lead to.
void Fit::climb(Candidate& candidate, const Sample& x, double negligible) {
    const Coordinates coordinates(ranges(), candidate.place, x_);
    // Where the likelihood grows without end, as it may for few data, it is not followed beyond these coordinates.
    constexpr double kFar = 17;
    const Point start = coordinates.point(candidate.place);
    const Objective objective = [&](std::span<const double> point) {
        for (std::size_t i = 0; i < point.size(); ++i) {
            if (!(std::fabs(point[i] - start[i]) < kFar)) return -HUGE_VAL;
        }
        return log_likelihood(coordinates.parameters(point), x);
    };
    const Maximum found = maximise(objective, start, deadline_, negligible);
    if (found.value > candidate.log_likelihood)
        candidate = {coordinates.parameters(found.point), found.value};
}

/// The best places, the best first: of families that ask for more than two climbs the first climbs are of a small part.
std::vector<Candidate> Fit::candidates(const Sample& x) {
    constexpr std::size_t kClimbs = 2, kSmallPart = 128;
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
    const bool each_value_counts = !at_maximum && (!family_.summarised || shifting());
    std::vector<double> part;
    if (each_value_counts && 2 * part_size < x_.size()) part = thinned(x_.values(), part_size);
    const Sample first(part.empty() ? x_.values() : part, &pause_);
    std::vector<Candidate> best_places = candidates(first);
    if (!at_maximum && (best_places.size() > 1 || !part.empty())) {
        for (Candidate& candidate : best_places) climb(candidate, first, kRoughly);
    }
    Candidate best = *std::ranges::max_element(best_places, {}, &Candidate::log_likelihood);
    if (!part.empty()) best.log_likelihood = log_likelihood(best.place, x_);
    if (!at_maximum) climb(best, x_, kToTheTop);
    descriptor_.params = best.place;
}

/// The search itself: Nelder and Mead's simplex over the parameters as they are, a held one and families' own searches
/// excepted. Ending at the limit of iterations is no failure.
void Fit::MinimiseNegLogLikelihood() {
    constexpr SimplexRules kRules = {0.1, 1e-5, 1000, false};
    constexpr double kRefused = 1e100;
    const std::size_t first = held_ ? 1 : 0, end = parameter_count() + (shifting() ? 1 : 0);
    Point point(descriptor_.params.begin() + first, descriptor_.params.begin() + end);
    if (point.empty()) return;
    Parameters parameters = descriptor_.params;
    const Coordinates ranges_of_search(ranges(), parameters, x_);
    const bool keep_ranges = family_.costly && !shifting();
    const Objective objective = [&](std::span<const double> coordinates) {
        std::ranges::copy(coordinates, parameters.begin() + first);
        if (keep_ranges && ranges_of_search.first_outside(parameters) >= 0) return kRefused;
        const double log = log_likelihood(parameters, x_);
        return log > -HUGE_VAL ? -log / numerics::kLn10 : kRefused;
    };
    minimise(objective, point, kRules, deadline_);
    std::ranges::copy(point, descriptor_.params.begin() + first);
}

/// After the search, and nothing is fitted again after it.
void Fit::RoundIntegerParameters() {
    const auto& [place, truncated, least] = family_.rounding;
    if (place < 0) return;
    double& parameter = descriptor_.params[static_cast<std::size_t>(place)];
    parameter = std::fmax(truncated ? std::trunc(parameter) : std::floor(parameter + 0.5), least);
}

const FittedFamily& family_of(const FitDescriptor& descriptor) {
    const FittedFamily* family = fitted_family(descriptor.code);
    if (family == nullptr) throw std::invalid_argument(descriptor.name + " cannot be fitted");
    return *family;
}

bool fit_until(const Deadline& deadline, FitDescriptor& descriptor, std::span<const double> data,
               const FitRequest& request);

/// The parametric bootstrap: as many draws from the fitted distribution as there were data, fitted in their turn.
bool replicate(const Deadline& deadline, FitDescriptor& descriptor, std::size_t count,
               const FitRequest& request) {
    constexpr std::size_t kDrawsBetweenLooks = 1 << 14;
    std::vector<double> draws(count);
    for (std::span<double> left = draws; !left.empty(); deadline.check()) {
        const std::size_t size = std::min(left.size(), kDrawsBetweenLooks);
        if (!EvaluateFitted(descriptor, left.first(size), nullptr, request.TruncMin, request.TruncMax))
            return false;
        left = left.subspan(size);
    }
    if (request.shift != nullptr) {
        for (double& value : draws) value += *request.shift;
    }
    const Parameters fitted_parameters = descriptor.params;
    FitRequest again = request;
    again.uncertainty = false;
    again.startValues = fitted_parameters.data();
    return fit_until(deadline, descriptor, draws, again);
}

bool fit_until(const Deadline& deadline, FitDescriptor& descriptor, std::span<const double> data,
               const FitRequest& request) {
    // The results of a fit with a shift and of a replicate's are not kept: the key holds neither where the shift begins
    // nor start values.
    const bool kept = request.shift == nullptr && request.startValues == nullptr;
    const FitKey key = {request.key != nullptr ? request.key : descriptor.name,
                        descriptor.code,
                        request.uncertainty,
                        request.TruncMin,
                        request.TruncMax,
                        request.firstParameter != nullptr ? *request.firstParameter : kNotGiven};
    if (const Parameters* known = kept ? result_cache.find(key, data) : nullptr) {
        descriptor.params = *known;
    } else {
        if (!Fit(descriptor, family_of(descriptor), data, request, deadline)()) return false;
        if (kept) result_cache.store(key, data, descriptor.params);
    }
    return !request.uncertainty || replicate(deadline, descriptor, data.size(), request);
}

}  // namespace

FitDescriptor::FitDescriptor(int code_)
    : paramCount(catalogue()[static_cast<std::size_t>(code_)].parameter_count),
      name(catalogue()[static_cast<std::size_t>(code_)].name),
      code(code_) {
    clear();
}

bool FitDistribution(FitDescriptor& descriptor, std::span<const double> data, const FitRequest& request) {
    const FittedFamily& family = family_of(descriptor);
    /// What a fit that fails, or ends by an exception, must leave behind.
    struct Undo {
        FitDescriptor& descriptor;
        double* shift;
        double shift_before = shift != nullptr ? *shift : 0;
        bool success = false;
        ~Undo() {
            if (success) return;
            descriptor.clear();
            if (shift != nullptr) *shift = shift_before;
        }
    } undo{descriptor, request.shift};
    if (data.empty()) return fail_fit("Error: source array is not valid");
    std::vector<double> cleaned;
    if (std::ranges::any_of(data, is_minus_zero)) {
        for (const double value : data) cleaned.push_back(value + 0.0);
        data = cleaned;
    }
    try {
        undo.success = fit_until(Deadline::in(timeout_seconds), descriptor, data, request);
    } catch (const TimedOut& reason) {
        fail(std::string("Error: ") + reason.what());
        return fail_fit(family.own_search ? message(family, "Unable to perform the fit")
                                          : "Error: Unable to fit from selected data array");
    }
    return undo.success;
}

bool within_bounds(std::span<const double> data, const FitRequest& request) {
    const Sample x(data);
    return !(given(request.TruncMin) && x.min() < request.TruncMin) &&
           !(given(request.TruncMax) && x.max() > request.TruncMax);
}

bool FitAndEvaluate(FitDescriptor& descriptor, std::span<double> out, std::span<const double> data, double U,
                    const FitRequest& request) {
    if (!within_bounds(data, request) || !FitDistribution(descriptor, data, request)) return false;
    if (!EvaluateFitted(descriptor, out, U == kNotGiven ? nullptr : &U, request.TruncMin, request.TruncMax))
        return false;
    return out.empty() || valid(out.front());
}

double FitLogLikelihood(const FitDescriptor& descriptor, std::span<const double> data, double TruncMin,
                        double TruncMax, double shift) {
    std::vector<double> moved(data.begin(), data.end());
    for (double& value : moved) value = value - shift + 0.0;  // no -0.0
    const double log = natural_log_likelihood(family_of(descriptor), descriptor.params, Sample(moved),
                                              Bounds(TruncMin, TruncMax));
    return numerics::finite_or_limit(log / numerics::kLn10);
}

bool EvaluateFitted(const FitDescriptor& descriptor, std::span<double> out, const double* U, double TruncMin,
                    double TruncMax) {
    return family_of(descriptor)
        .values(out, descriptor.params.data(), Bounds(TruncMin, TruncMax).modifiers(U));
}

void set_timeout(double seconds) { timeout_seconds = std::fmax(seconds, 0); }
const std::string& last_message() { return message_of_last_failure; }
long evaluations() { return evaluation_count; }

}  // namespace pral::fitting
