#include "inference/estimate.h"

#include <algorithm>
#include <map>
#include <optional>

#include "fitting/coordinates.h"
#include "fitting/starts.h"

namespace pral::inference {

namespace {

using fitting::Coordinates;
using fitting::Deadline;
using fitting::Failure;
using fitting::Objective;
using fitting::Parameters;
using fitting::Point;
using fitting::Range;
using RangeKind = fitting::Range::Kind;

/// Beyond this many coordinates from its start a climb does not go: there the likelihood grows for ever, or levels off.
constexpr double kFar = 17;

fitting::Extent extent_of(const Observations& observations, const Sample& representatives, double cell) {
    const fitting::Extent whole(representatives);
    return {observations.smallest() + 0.5 * cell, observations.largest() - 0.5 * cell, whole.spread};
}

/// How the parameters may move: those that are held not at all, a shift as an end of the support.
std::vector<Range> ranges_of(const Model& model, const Request& request) {
    const auto& own = model.family->ranges;
    std::vector<Range> ranges(own.begin(), own.begin() + model.family->parameter_count);
    for (std::size_t i = 0; i < request.held.size(); ++i) {
        if (!std::isnan(request.held[i])) ranges[i] = fitting::kHeld;
    }
    if (request.shift) ranges.push_back(fitting::kBelowMin);
    return ranges;
}

bool is_end(const Range& range) {
    return range.kind == RangeKind::below_min || range.kind == RangeKind::above_max;
}

/// Where an end of the support is as good as on a datum: the place with the end there.
std::optional<Parameters> on_datum(const Parameters& place, std::span<const Range> ranges,
                                   const fitting::Extent& extent) {
    constexpr double kNear = 1e-5;
    Parameters moved = place;
    for (std::size_t i = 0; i < ranges.size(); ++i) {
        if (!is_end(ranges[i])) continue;
        const double datum = ranges[i].kind == RangeKind::below_min ? extent.min : extent.max;
        if (std::fabs(place[i] - datum) < kNear * extent.spread) moved[i] = datum;
    }
    return moved == place ? std::nullopt : std::optional(moved);
}

/// A climb's end, by what the likelihood does there.
enum class Nature {
    maximum,
    level,      ///< levels off towards an edge of the parameters
    ascending,  ///< grows for ever
};

struct Candidate {
    Parameters place;
    double value;
};

class Search {
  public:
    Search(const Model& model, const Observations& observations, const Request& request,
           const Deadline& deadline)
        : model_(model),
          observations_(observations),
          request_(request),
          representatives_(observations.representatives()),
          sample_(representatives_),
          deadline_(deadline),
          ranges_(ranges_of(model, request)) {
        check_request();
    }

    Estimate operator()();
    Estimate from(const Estimate& start);

  private:
    void check_request() const;
    std::vector<Parameters> starts() const;
    void free_ends(std::vector<Parameters>& places);
    std::vector<Parameters> starts(const Sample& sample, double shift) const;
    std::optional<std::size_t> whole_parameter(const Parameters& place) const;
    Candidate climb(const Parameters& place, const Likelihood& likelihood, const std::vector<Range>& ranges,
                    double negligible, double cell = 0) const;
    void polish(Candidate& candidate, const Likelihood& likelihood, double cell) const;
    Nature nature(const Candidate& candidate, const Likelihood& likelihood, double cell) const;
    std::vector<Candidate> climbed(const std::vector<Parameters>& places, const Likelihood& likelihood,
                                   double cell) const;
    std::optional<Estimate> best_of(std::vector<Candidate> candidates, const Likelihood& likelihood,
                                    double cell) const;
    Estimate by_cells(const std::vector<Parameters>& places) const;
    Estimate with_whole(std::size_t place, Parameters start) const;
    std::vector<Parameters> places_by_spacings(const std::vector<Parameters>& places) const;
    fitting::Extent extent(double cell) const { return extent_of(observations_, sample_, cell); }
    int free_parameters() const {
        int held = 0;
        for (const double value : request_.held) held += !std::isnan(value);
        // The base of a logarithm gives no other distributions.
        if (model_.name() == "LognormalB") ++held;
        return model_.family->parameter_count - held + request_.shift;
    }
    Estimate finished(const Candidate& candidate, Kind kind, double cell = 0, int whole = -1) const;

    const Model& model_;
    const Observations& observations_;
    const Request& request_;
    const std::vector<double> representatives_;
    const Sample sample_;
    const Deadline deadline_;
    std::vector<Range> ranges_;
};

/// The log-likelihood is that by density, or by cells, whatever has been maximised.
Estimate Search::finished(const Candidate& candidate, Kind kind, double cell, int whole) const {
    Estimate found = {candidate.place, candidate.value, kind, cell, free_parameters(), whole};
    if (request_.method == Criterion::spacings) {
        const Likelihood density(model_, observations_, Criterion::density, request_.shift);
        found.log_likelihood = density(candidate.place);
    }
    return found;
}

[[noreturn]] void refuse(const Model& model, const std::string& why) {
    throw Failure(std::string(model.name()) + ": " + why);
}

void Search::check_request() const {
    const auto& own = std::span(model_.family->ranges).first(model_.parameter_count());
    if (!request_.held.empty() && request_.held.size() != model_.parameter_count())
        refuse(model_, "there must be as many held values as parameters, NaN for those that are free");
    if (request_.method == Criterion::spacings) {
        if (model_.integers) refuse(model_, "spacings are for continuous families");
        if (!observations_.plain())
            refuse(model_, "spacings need exact values without weights, and one truncation for all");
    }
    if (model_.integers && !observations_.whole()) refuse(model_, "the data must be whole numbers");
    if (!request_.shift) return;
    if (model_.integers) refuse(model_, "counts are not shifted");
    if (std::ranges::any_of(
            own, [](const Range& range) { return range.kind == RangeKind::location || is_end(range); }) ||
        std::ranges::any_of(own, [](const Range& range) { return range.kind == RangeKind::held; }))
        refuse(model_, "a shift is not fitted beside a location of the family's own");
}

/// The family's places for a sample less `shift`.
std::vector<Parameters> Search::starts(const Sample& sample, double shift) const {
    const Truncation truncation = observations_.common_truncation();
    std::optional<double> first;
    if (model_.family->begins_with_count && !request_.held.empty() && !std::isnan(request_.held[0]))
        first = request_.held[0];
    const fitting::Starts found = model_.family->starts(
        {sample, first ? &*first : nullptr, deadline_, truncation.lower - shift, truncation.upper - shift});
    if (found.objection != nullptr) throw Failure(found.objection);
    std::vector<Parameters> places;
    for (Parameters place : found.places) {
        for (std::size_t i = 0; i < request_.held.size(); ++i) {
            if (!std::isnan(request_.held[i])) place[i] = request_.held[i];
        }
        place[model_.parameter_count()] = shift;
        const auto own = std::span(place).first(model_.parameter_count());
        if (std::ranges::all_of(own, [](double p) { return std::isfinite(p); })) places.push_back(place);
    }
    return places;
}

std::vector<Parameters> Search::starts() const {
    if (!std::isfinite(sample_.mean())) throw BadData("the data are too large");
    if (!request_.shift) return starts(sample_, 0);
    std::vector<Parameters> places;
    std::vector<double> buffer;
    const double reach = sample_.constant() ? std::fmax(std::fabs(sample_.mean()), 1) : sample_.range();
    for (const double distance : fitting::kEndDistances) {
        const double shift = sample_.min() - distance * reach;
        moved(representatives_, shift, buffer);
        const std::vector<Parameters> found = starts(Sample(buffer), shift);
        places.insert(places.end(), found.begin(), found.end());
    }
    return places;
}

/// The parameter that must be a whole number.
std::optional<std::size_t> Search::whole_parameter(const Parameters& place) const {
    if (model_.family->rounding.truncated) return model_.family->rounding.place;
    Parameters trial = place;
    for (std::size_t i = 0; i < model_.parameter_count(); ++i) {
        const double whole = std::ceil(place[i]) + 3;
        const auto makes = [&](double value) {
            trial[i] = value;
            return model_.make(std::span(trial).first(model_.parameter_count())) != nullptr;
        };
        const double kept = trial[i];
        const bool refused = makes(whole) && !makes(whole + 0.5);
        trial[i] = kept;
        if (refused) return i;
    }
    return std::nullopt;
}

Candidate Search::climb(const Parameters& place, const Likelihood& likelihood,
                        const std::vector<Range>& ranges, double negligible, double cell) const {
    const Coordinates coordinates(ranges, place, extent(cell));
    const Point start = coordinates.point(place);
    if (std::ranges::any_of(start, [](double t) { return !std::isfinite(t); })) return {place, -HUGE_VAL};
    const Objective objective = [&](std::span<const double> point) {
        for (std::size_t i = 0; i < point.size(); ++i) {
            if (!(std::fabs(point[i] - start[i]) < kFar)) return -HUGE_VAL;
        }
        return likelihood(coordinates.parameters(point));
    };
    const fitting::Maximum found = fitting::maximise(objective, start, deadline_, negligible);
    return {start.empty() ? place : coordinates.parameters(found.point), found.value};
}

/// Newton's method by accurate derivatives, for the digits that a search by values alone leaves.
void Search::polish(Candidate& candidate, const Likelihood& likelihood, double cell) const {
    constexpr int kSteps = 4;
    constexpr double kDone = 1e-13;
    for (int i = 0; i < kSteps; ++i) {
        deadline_.check();
        const Coordinates coordinates(ranges_, candidate.place, extent(cell));
        Point point = coordinates.point(candidate.place);
        const Objective objective = [&](std::span<const double> x) {
            return likelihood(coordinates.parameters(x));
        };
        const Curvature shape(objective, point);
        const SquareMatrix inverse = shape.inverse_information(1e-6);
        if (inverse.size() == 0) return;
        const double promised = shape.promised_gain(inverse);
        if (!(promised > kDone * (1 + std::fabs(candidate.value)) * 1e-3)) return;
        for (std::size_t row = 0; row < point.size(); ++row) {
            for (std::size_t column = 0; column < point.size(); ++column)
                point[row] += inverse(row, column) * shape.gradient[column];
        }
        const double value = objective(point);
        // Near the top the values themselves no longer tell.
        const double rounding = 1e-14 * std::fabs(candidate.value) * std::sqrt(observations_.count());
        if (!(value > candidate.value - rounding)) return;
        candidate = {coordinates.parameters(point), std::max(value, candidate.value)};
    }
}

Nature Search::nature(const Candidate& candidate, const Likelihood& likelihood, double cell) const {
    constexpr double kFlat = 1e-2, kLevel = 3e-3, kNegligibleGain = 1e-4;
    const Coordinates coordinates(ranges_, candidate.place, extent(cell));
    const Point point = coordinates.point(candidate.place);
    if (point.empty()) return Nature::maximum;
    const Objective objective = [&](std::span<const double> x) {
        return likelihood(coordinates.parameters(x));
    };
    const Curvature shape(objective, point);
    if (const SquareMatrix inverse = shape.inverse_information(kFlat); inverse.size() > 0) {
        if (shape.all_below || shape.promised_gain(inverse) < kNegligibleGain) return Nature::maximum;
    }
    return shape.slope() < kLevel || shape.all_below ? Nature::level : Nature::ascending;
}

/// The ends of climbs from the places, the best first. Of much data a part comes first.
std::vector<Candidate> Search::climbed(const std::vector<Parameters>& places, const Likelihood& likelihood,
                                       double cell) const {
    constexpr double kRoughly = 1e-2;
    constexpr std::size_t kMost = 8;
    std::vector<Candidate> all;
    for (const Parameters& place : places) all.push_back({place, likelihood(place)});
    std::ranges::stable_sort(all, std::greater<>(), &Candidate::value);
    const bool ends = std::ranges::any_of(ranges_, is_end);
    const std::size_t climbs = ends ? kMost : static_cast<std::size_t>(model_.family->climbs);
    if (all.size() > climbs) all.resize(climbs);
    for (Candidate& candidate : all) {
        if (candidate.value > -HUGE_VAL)
            candidate = climb(candidate.place, likelihood, ranges_, kRoughly, cell);
    }
    std::ranges::stable_sort(all, std::greater<>(), &Candidate::value);
    return all;
}

/// The highest of the candidates that is a maximum, or from which the likelihood only levels off.
std::optional<Estimate> Search::best_of(std::vector<Candidate> candidates, const Likelihood& likelihood,
                                        double cell) const {
    constexpr double kToTheTop = 1e-9, kSame = 1e-7;
    std::optional<Estimate> best;
    for (Candidate candidate : candidates) {
        if (!(candidate.value > -HUGE_VAL)) continue;
        // Roughly climbed: a little is still to be gained.
        if (best && candidate.value < best->log_likelihood - 0.1) break;
        const Candidate top = climb(candidate.place, likelihood, ranges_, kToTheTop, cell);
        if (top.value > candidate.value) candidate = top;
        if (best && candidate.value < best->log_likelihood + kSame) continue;
        if (const auto end = on_datum(candidate.place, ranges_, extent(0)); end && cell == 0) {
            // A density that is finite at the end of its support has its maximum there.
            const double value = likelihood(*end);
            if (value >= candidate.value - kSame) best = finished({*end, value}, Kind::edge);
            continue;
        }
        const Nature found = nature(candidate, likelihood, cell);
        if (found == Nature::ascending) continue;
        polish(candidate, likelihood, cell);
        best = finished(candidate,
                        found == Nature::level ? Kind::edge
                        : cell > 0             ? Kind::cells
                                               : Kind::regular,
                        cell);
    }
    return best;
}

/// Where the spacings have their maxima, which exist for all: places from which an inner maximum is in sight.
std::vector<Parameters> Search::places_by_spacings(const std::vector<Parameters>& places) const {
    if (model_.integers || !observations_.plain()) return {};
    const Likelihood spacings(model_, observations_, Criterion::spacings, request_.shift);
    std::vector<Parameters> found;
    for (const Candidate& candidate : climbed(places, spacings, 0)) {
        if (candidate.value > -HUGE_VAL) found.push_back(candidate.place);
    }
    return found;
}

Estimate Search::by_cells(const std::vector<Parameters>& places) const {
    const double cell = request_.cell > 0 ? request_.cell : observations_.recording_unit();
    const Likelihood likelihood(model_, observations_, Criterion::cells, request_.shift, cell);
    std::vector<Candidate> ends = climbed(places, likelihood, cell);
    if (std::optional<Estimate> best = best_of(ends, likelihood, cell)) {
        best->kind = Kind::cells;
        best->cell = cell;
        return *best;
    }
    if (ends.empty() || !(ends.front().value > -HUGE_VAL)) refuse(model_, "these data cannot be fitted");
    return finished(ends.front(), Kind::unfinished, cell);
}

/// The maximum over the whole numbers of one parameter, with the others fitted for each: steps that grow as long as they
/// lead higher.
Estimate Search::with_whole(std::size_t place, Parameters start) const {
    constexpr double kMost = 1e9, kNothing = 1e-9;
    constexpr int kMostTrials = 200;
    const Likelihood likelihood(model_, observations_, Criterion::density, request_.shift);
    std::vector<Range> ranges = ranges_;
    ranges[place] = fitting::kHeld;
    std::map<double, Candidate> tried;
    Parameters from = start;
    const auto value = [&](double whole) {
        const auto known = tried.find(whole);
        if (known != tried.end()) return known->second.value;
        from[place] = whole;
        Candidate& end = tried[whole] = climb(from, likelihood, ranges, 1e-9);
        if (end.value > -HUGE_VAL) from = end.place;
        return end.value;
    };
    const double least =
        model_.family->rounding.place == static_cast<int>(place) ? model_.family->rounding.least : -HUGE_VAL;
    const double largest = model_.family->begins_with_count ? std::max(observations_.largest(), 1.0) : 1;
    double best = std::max({std::round(start[place]), largest, least});
    double highest = value(best);
    for (double step = std::max(1.0, std::floor(best / 8)); step >= 1 && tried.size() < kMostTrials;) {
        bool moved = false;
        for (const double next : {best + step, best - step}) {
            if (next < std::max(largest, least) || next > kMost || !(value(next) > highest + kNothing))
                continue;
            highest = value(next);
            best = next;
            moved = true;
            break;
        }
        step = moved ? 2 * step : std::floor(step / 2);
    }
    if (!(highest > -HUGE_VAL)) refuse(model_, "these data cannot be fitted");
    // From there on a larger number changes nothing.
    const bool level = value(std::min(2 * best, kMost)) > highest - 1e-4;
    return finished(tried.at(best), level ? Kind::edge : Kind::regular, 0, static_cast<int>(place));
}

/// Families whose start is the maximum begin anew, as do those with an end at the data.
Estimate Search::from(const Estimate& start) {
    const bool ends = std::ranges::any_of(ranges_, is_end);
    if (model_.family->closed_form || ends || start.whole >= 0 || start.kind != Kind::regular)
        return (*this)();
    const Likelihood likelihood(model_, observations_, request_.method, request_.shift);
    const Candidate top = climb(start.parameters, likelihood, ranges_, 1e-8);
    if (!(top.value > -HUGE_VAL)) return (*this)();
    return finished(top, Kind::regular);
}

/// Spacings set ends of the support beyond the extremes of the data that the likelihood puts them on.
void Search::free_ends(std::vector<Parameters>& places) {
    const double beyond = sample_.range() / observations_.count();
    for (std::size_t i = 0; i < model_.parameter_count(); ++i) {
        const bool fixed = i < request_.held.size() && !std::isnan(request_.held[i]);
        if (ranges_[i].kind != RangeKind::held || fixed) continue;
        const double at = places.front()[i];
        if (at != sample_.min() && at != sample_.max()) continue;
        ranges_[i] = at == sample_.min() ? fitting::kBelowMin : fitting::kAboveMax;
        if (at == sample_.min() && at > 0 && beyond >= at) ranges_[i] = fitting::kPositiveBelowMin;
        for (Parameters& place : places)
            place[i] = at == sample_.max() ? at + beyond : ranges_[i].lower == 0 ? 0.5 * at : at - beyond;
    }
}

Estimate Search::operator()() {
    std::vector<Parameters> places = starts();
    if (places.empty()) refuse(model_, "these data give no start for the search");
    if (request_.method == Criterion::spacings) free_ends(places);
    const bool simple = observations_.plain() && !observations_.common_truncation().bounded() &&
                        !request_.shift &&
                        std::ranges::all_of(request_.held, [](double held) { return std::isnan(held); });
    if (const auto whole = whole_parameter(places.front());
        whole && ranges_[*whole].kind != RangeKind::held && request_.method == Criterion::density) {
        std::optional<Estimate> best;
        for (const Parameters& place : places) {
            const Estimate found = with_whole(*whole, place);
            if (!best || found.log_likelihood > best->log_likelihood) best = found;
        }
        return *best;
    }
    const Likelihood likelihood(model_, observations_, request_.method, request_.shift);
    const bool ends = std::ranges::any_of(ranges_, is_end);
    if (simple && model_.family->closed_form && request_.method == Criterion::density) {
        const Candidate start = {places.front(), likelihood(places.front())};
        if (start.value > -HUGE_VAL && (!ends || nature(start, likelihood, 0) == Nature::maximum))
            return finished(start, Kind::regular);
    }
    const std::vector<Candidate> found = climbed(places, likelihood, 0);
    if (const auto best = best_of(found, likelihood, 0)) return *best;
    if (request_.method == Criterion::density) {
        const std::vector<Parameters> inner = places_by_spacings(places);
        if (const auto best = best_of(climbed(inner, likelihood, 0), likelihood, 0)) return *best;
        places.insert(places.begin(), inner.begin(), inner.end());
        if (!model_.integers && !observations_.values().empty()) return by_cells(places);
    }
    if (found.empty() || !(found.front().value > -HUGE_VAL)) refuse(model_, "these data cannot be fitted");
    return finished(found.front(), Kind::unfinished);
}

}  // namespace

Estimate estimate(const Model& model, const Observations& observations, const Request& request) {
    return Search(model, observations, request, Deadline::in(request.seconds))();
}

namespace {

Criterion criterion_of(const Request& request, const Estimate& estimate) {
    return estimate.kind == Kind::cells ? Criterion::cells : request.method;
}

std::vector<Range> moving(const Model& model, const Request& request, const Estimate& estimate) {
    std::vector<Range> ranges = ranges_of(model, request);
    if (estimate.whole >= 0) ranges[static_cast<std::size_t>(estimate.whole)] = fitting::kHeld;
    return ranges;
}

/// The extent of data around an estimate, of which the spread is a measure of steps only.
fitting::Extent extent_around(const Observations& observations, double cell) {
    const std::vector<double> values = observations.representatives();
    return extent_of(observations, Sample(values), cell);
}

}  // namespace

LocalView::LocalView(const Model& model, const Observations& observations, const Request& request,
                     const Estimate& estimate)
    : ranges_(moving(model, request, estimate)),
      extent_(extent_around(observations, estimate.cell)),
      likelihood_(model, observations, criterion_of(request, estimate), request.shift, estimate.cell),
      coordinates_(ranges_, estimate.parameters, extent_),
      centre_(coordinates_.point(estimate.parameters)) {}

bool LocalView::end_on_datum(const Parameters& parameters) const {
    return on_datum(parameters, ranges_, extent_).has_value();
}

std::vector<double> LocalView::gradient(const std::function<double(const Parameters&)>& of) const {
    constexpr double kStep = 1e-3;
    std::vector<double> slopes;
    Point point = centre_;
    for (std::size_t i = 0; i < size(); ++i) {
        const auto difference = [&](double step) {
            point[i] = centre_[i] + step;
            const double above = of(parameters(point));
            point[i] = centre_[i] - step;
            const double below = of(parameters(point));
            point[i] = centre_[i];
            return (above - below) / (2 * step);
        };
        slopes.push_back((4 * difference(0.5 * kStep) - difference(kStep)) / 3);
    }
    return slopes;
}

SquareMatrix LocalView::covariance() const {
    constexpr double kLeast = 1e-6;
    const Objective objective = [this](std::span<const double> x) { return (*this)(x); };
    return Curvature(objective, centre_).inverse_information(kLeast);
}

SquareMatrix covariance(const Model& model, const Observations& observations, const Request& request,
                        const Estimate& estimate) {
    const std::size_t count = model.parameter_count() + request.shift;
    const std::vector<Range> ranges = moving(model, request, estimate);
    const LocalView view(model, observations, request, estimate);
    const SquareMatrix of_coordinates = view.covariance();
    const bool known = of_coordinates.size() > 0;
    std::vector<std::vector<double>> slopes;
    for (std::size_t i = 0; i < count; ++i)
        slopes.push_back(view.gradient([i](const Parameters& parameters) { return parameters[i]; }));
    SquareMatrix result(count);
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t j = 0; j < count; ++j) {
            double sum = 0;
            for (std::size_t k = 0; known && k < view.size(); ++k) {
                for (std::size_t l = 0; l < view.size(); ++l)
                    sum += slopes[i][k] * of_coordinates(k, l) * slopes[j][l];
            }
            const auto fixed = [&](std::size_t place) {
                return place < request.held.size() && !std::isnan(request.held[place]);
            };
            const auto moves = [&](std::size_t place) { return ranges[place].kind != RangeKind::held; };
            const bool both_known = (fixed(i) || moves(i)) && (fixed(j) || moves(j));
            result(i, j) = fixed(i) || fixed(j) ? 0 : known && both_known ? sum : numerics::kNaN;
        }
    }
    return result;
}

Estimate estimate_from(const Estimate& start, const Model& model, const Observations& observations,
                       const Request& request, const Deadline& deadline) {
    return Search(model, observations, request, deadline).from(start);
}

}  // namespace pral::inference
