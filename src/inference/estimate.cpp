#include "inference/estimate.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>

#include "fitting/starts.h"
#include "inference/ascent.h"

namespace pral::inference {

namespace {

using fitting::Deadline;
using fitting::Failure;
using fitting::Objective;
using fitting::Parameters;
using fitting::Point;
using fitting::Range;
using RangeKind = fitting::Range::Kind;

/// Those that are held do not move, a shift is an end of the support.
Motion motion_of(const Model& model, const Request& request) {
    const fitting::FittedFamily& family = *model.family;
    const bool as_searched = family.search.to_own == nullptr || !request.holds_any();
    const auto& own = as_searched ? family.ranges : family.search.own_ranges;
    Motion motion = {{own.begin(), own.begin() + family.parameter_count}};
    if (as_searched) motion.search = family.search;
    for (std::size_t i = 0; i < model.parameter_count(); ++i) {
        if (request.holds(i)) motion.ranges[i] = fitting::kHeld;
    }
    if (request.shift) motion.ranges.push_back(fitting::kBelowMin);
    return motion;
}

/// The highest first, and no more than `count`.
void keep_best(std::vector<Candidate>& candidates, std::size_t count) {
    std::ranges::stable_sort(candidates, std::greater<>(), &Candidate::value);
    if (candidates.size() > count) candidates.resize(count);
}

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
          motion_(motion_of(model, request)) {
        check_request();
    }

    Estimate operator()();
    Estimate from(const Estimate& start);

  private:
    void check_request() const;
    std::vector<Parameters> starts() const;
    void free_ends(std::vector<Parameters>& places);
    std::optional<Estimate> closed_form(const Parameters& start) const;
    std::vector<Parameters> starts(const Sample& sample, double shift) const;
    std::optional<std::size_t> whole_parameter(const Parameters& place) const;
    std::vector<Candidate> climbed(const std::vector<Parameters>& places, Criterion criterion,
                                   double cell) const;
    std::optional<Estimate> best_of(const std::vector<Candidate>& candidates, const Ascent& ascent,
                                    double cell) const;
    Estimate by_cells(const std::vector<Parameters>& places) const;
    Estimate with_whole(std::size_t place, const Parameters& start) const;
    std::vector<Parameters> places_by_spacings(const std::vector<Parameters>& places) const;
    Ascent ascent(Criterion criterion, double cell = 0) const {
        return {model_, observations_, criterion, request_.shift, cell, deadline_};
    }
    /// Families that sum up statistics of plain data, or distinct integers.
    bool summarised() const {
        return observations_.plain() && !request_.shift && request_.method == Criterion::density &&
               model_.family->summarised;
    }
    int free_parameters() const;
    Estimate finished(const Candidate& candidate, Kind kind, SquareMatrix inverse = {},
                      double cell = 0) const;

    const Model& model_;
    const Observations& observations_;
    const Request& request_;
    const std::vector<double> representatives_;
    const Sample sample_;
    const Deadline deadline_;
    Motion motion_;
};

/// An end of the support that is a datum counts as two parameters: the likelihood ratio has two degrees of freedom for it,
/// where a parameter of a regular likelihood has one (Hogg 1956).
int Search::free_parameters() const {
    int free = request_.shift;
    for (std::size_t i = 0; i < model_.parameter_count(); ++i) {
        // The base of a logarithm gives no other distributions.
        const bool is_base = model_.name() == "LognormalB" && i == 2;
        if (!request_.holds(i) && !is_base) free += model_.family->ranges[i].kind == RangeKind::held ? 2 : 1;
    }
    return free;
}

/// The log-likelihood is that by density, or by cells, whatever has been maximised.
Estimate Search::finished(const Candidate& candidate, Kind kind, SquareMatrix inverse, double cell) const {
    Estimate found = {candidate.place,   candidate.value, kind, cell, free_parameters(), -1,
                      std::move(inverse)};
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
    if (model_.family->begins_with_count && request_.holds(0)) first = request_.held[0];
    const fitting::Starts found = model_.family->starts(
        {sample, first ? &*first : nullptr, deadline_, truncation.lower - shift, truncation.upper - shift});
    if (found.objection != nullptr) throw Failure(found.objection);
    std::vector<Parameters> places;
    for (Parameters place : found.places) {
        for (std::size_t i = 0; i < request_.held.size(); ++i) {
            if (request_.holds(i)) place[i] = request_.held[i];
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
    for (const double distance : fitting::end_distances()) {
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

/// The ends of climbs from the places, the best first. Of many observations parts come first, and what they lead to is
/// not climbed further.
std::vector<Candidate> Search::climbed(const std::vector<Parameters>& places, Criterion criterion,
                                       double cell) const {
    constexpr double kRoughly = 1e-2;
    constexpr std::size_t kMost = 8, kFew = 3;
    constexpr std::array<std::size_t, 2> kParts = {250, 2000};
    const bool ends = std::ranges::any_of(motion_.ranges, is_end);
    std::size_t kept = criterion == Criterion::cells ? kFew
                       : ends                        ? kMost
                                                     : static_cast<std::size_t>(model_.family->climbs);
    std::vector<Candidate> all;
    for (const Parameters& place : places) all.push_back({place, -HUGE_VAL});
    const auto climb_on = [&](const Observations& part, bool to_climb) {
        const Ascent ascent(model_, part, criterion, request_.shift, cell, deadline_);
        for (Candidate& candidate : all) candidate = ascent.candidate(candidate.place);
        keep_best(all, kept);
        for (Candidate& candidate : all) {
            if (to_climb && candidate.value > -HUGE_VAL)
                candidate = ascent.climb(candidate.place, motion_, kRoughly);
        }
        keep_best(all, kept);
        kept = std::min(kept, kFew);
    };
    bool in_parts = false;
    for (const std::size_t size : kParts) {
        if (summarised() || observations_.rows().size() < 2 * size) continue;
        climb_on(observations_.part(size), true);
        in_parts = true;
    }
    climb_on(observations_, !in_parts);
    return all;
}

/// The highest of the candidates that is a maximum, or from which the likelihood only levels off.
std::optional<Estimate> Search::best_of(const std::vector<Candidate>& candidates, const Ascent& ascent,
                                        double cell) const {
    constexpr double kToTheTop = 1e-9, kSame = 1e-7, kToGain = 0.1;
    std::optional<Estimate> best;
    double highest = -HUGE_VAL;
    for (Candidate candidate : candidates) {
        if (!(candidate.value > highest - kToGain)) continue;
        const Candidate top = ascent.climb(candidate.place, motion_, kToTheTop);
        if (top.value > candidate.value) candidate = top;
        if (!(candidate.value > highest + kSame)) continue;
        if (const auto place = on_datum(candidate.place, motion_.ranges, ascent.extent());
            place && cell == 0) {
            // A density that is finite at the end of its support has its maximum there, if the others are at theirs.
            Motion others = motion_;
            for (std::size_t i = 0; i < others.ranges.size(); ++i) {
                if ((*place)[i] != candidate.place[i]) others.ranges[i] = fitting::kHeld;
            }
            const Candidate end = ascent.candidate(*place);
            if (!(end.value >= candidate.value - kSame)) continue;
            if (ascent.end_of(end, others).nature == Nature::ascending) continue;
            best = finished(end, Kind::edge);
            highest = end.value;
            continue;
        }
        Ascent::End end = ascent.end_of(candidate, motion_);
        if (end.nature == Nature::ascending) continue;
        const Kind kind = end.nature == Nature::level ? Kind::edge : cell > 0 ? Kind::cells : Kind::regular;
        highest = end.candidate.value;
        best = finished(end.candidate, kind, std::move(end.inverse_information), cell);
    }
    return best;
}

/// Where the spacings of a part of the values have their maxima, which exist for all families: places from which an inner
/// maximum is in sight.
std::vector<Parameters> Search::places_by_spacings(const std::vector<Parameters>& places) const {
    constexpr std::size_t kPart = 200, kMost = 3;
    if (model_.integers || !observations_.plain()) return {};
    const Observations part = observations_.part(kPart);
    const Ascent spacings(model_, part, Criterion::spacings, request_.shift, 0, deadline_);
    std::vector<Candidate> all;
    for (const Parameters& place : places) all.push_back(spacings.candidate(place));
    keep_best(all, kMost);
    std::vector<Parameters> found;
    for (const Candidate& candidate : all) {
        if (candidate.value > -HUGE_VAL)
            found.push_back(spacings.climb(candidate.place, motion_, 1e-2).place);
    }
    return found;
}

Estimate Search::by_cells(const std::vector<Parameters>& places) const {
    const double cell = request_.cell > 0 ? request_.cell : observations_.recording_unit();
    const std::vector<Candidate> ends = climbed(places, Criterion::cells, cell);
    if (std::optional<Estimate> best = best_of(ends, ascent(Criterion::cells, cell), cell)) {
        best->kind = Kind::cells;
        best->cell = cell;
        return *best;
    }
    if (ends.empty() || !(ends.front().value > -HUGE_VAL)) refuse(model_, "these data cannot be fitted");
    return finished(ends.front(), Kind::unfinished, {}, cell);
}

/// The maximum over the whole numbers of one parameter, with the others fitted for each: steps that grow as long as they
/// lead higher.
Estimate Search::with_whole(std::size_t place, const Parameters& start) const {
    constexpr double kMost = 1e9, kRoughly = 1e-5, kSame = 1e-4;
    constexpr int kMostTrials = 100;
    const Ascent ascent = this->ascent(Criterion::density);
    Motion motion = motion_;
    motion.ranges[place] = fitting::kHeld;
    std::map<double, Candidate> tried;
    Parameters from = start;
    const auto value = [&](double whole) {
        const auto known = tried.find(whole);
        if (known != tried.end()) return known->second.value;
        from[place] = whole;
        const Candidate& end = tried[whole] = ascent.climb(from, motion, kRoughly);
        if (end.value > -HUGE_VAL) from = end.place;
        return end.value;
    };
    const auto& rounding = model_.family->rounding;
    const double own_least = rounding.place == static_cast<int>(place) ? rounding.least : -HUGE_VAL;
    const double least =
        std::max(own_least, model_.family->begins_with_count ? std::max(observations_.largest(), 1.0) : 1);
    double best = std::clamp(std::round(start[place]), least, kMost), highest = value(best);
    for (double step = 1; step >= 1 && tried.size() < kMostTrials;) {
        bool moved = false;
        for (const double next : {best + step, best - step}) {
            if (next < least || next > kMost || !(value(next) > highest + kRoughly)) continue;
            highest = value(next);
            best = next;
            moved = true;
            break;
        }
        step = moved ? 2 * step : std::floor(step / 2);
    }
    if (!(highest > -HUGE_VAL)) refuse(model_, "these data cannot be fitted");
    // From there on a larger number changes nothing.
    const bool level = value(std::min(2 * best, kMost)) > highest - kSame;
    const Candidate& rough = tried.at(best);
    const Candidate top = ascent.climb(rough.place, motion, 1e-9);
    Ascent::End end = ascent.end_of(top.value > rough.value ? top : rough, motion);
    Estimate found =
        finished(end.candidate, level ? Kind::edge : Kind::regular, std::move(end.inverse_information));
    found.whole = static_cast<int>(place);
    return found;
}

/// Spacings set ends of the support beyond the extremes of the data that the likelihood puts them on.
void Search::free_ends(std::vector<Parameters>& places) {
    const double beyond = sample_.range() / observations_.count();
    for (std::size_t i = 0; i < model_.parameter_count(); ++i) {
        if (motion_.ranges[i].kind != RangeKind::held || request_.holds(i)) continue;
        const double at = places.front()[i];
        if (at != sample_.min() && at != sample_.max()) continue;
        motion_.ranges[i] = at == sample_.min() ? fitting::kBelowMin : fitting::kAboveMax;
        if (at == sample_.min() && at > 0 && beyond >= at) motion_.ranges[i] = fitting::kPositiveBelowMin;
        for (Parameters& place : places)
            place[i] = at == sample_.max()            ? at + beyond
                       : motion_.ranges[i].lower == 0 ? 0.5 * at
                                                      : at - beyond;
    }
}

/// Families whose start is the maximum begin anew, as do those with an end at the data.
Estimate Search::from(const Estimate& start) {
    const bool ends = std::ranges::any_of(motion_.ranges, is_end);
    if (model_.family->closed_form || ends || start.whole >= 0 || start.kind != Kind::regular)
        return (*this)();
    const Candidate top = ascent(request_.method).climb(start.parameters, motion_, 1e-8);
    if (!(top.value > -HUGE_VAL)) return (*this)();
    return finished(top, Kind::regular);
}

/// Where the family's own start is the maximum.
std::optional<Estimate> Search::closed_form(const Parameters& start) const {
    if (!model_.family->closed_form || request_.method != Criterion::density || request_.shift ||
        request_.holds_any() || !observations_.plain() || observations_.common_truncation().bounded())
        return std::nullopt;
    const Ascent ascent = this->ascent(Criterion::density);
    const Candidate candidate = ascent.candidate(start);
    if (!(candidate.value > -HUGE_VAL)) return std::nullopt;
    if (!std::ranges::any_of(motion_.ranges, is_end)) return finished(candidate, Kind::regular);
    Ascent::End end = ascent.end_of(candidate, motion_);
    if (end.nature != Nature::maximum) return std::nullopt;
    return finished(candidate, Kind::regular, std::move(end.inverse_information));
}

Estimate Search::operator()() {
    std::vector<Parameters> places = starts();
    if (places.empty()) refuse(model_, "these data give no start for the search");
    if (request_.method == Criterion::spacings) free_ends(places);
    const auto whole = whole_parameter(places.front());
    if (whole && motion_.ranges[*whole].kind != RangeKind::held && request_.method == Criterion::density) {
        // Real numbers between the whole ones show the way where the family has them.
        const std::vector<Candidate> real = climbed(places, Criterion::density, 0);
        const bool found = !real.empty() && real.front().value > -HUGE_VAL;
        return with_whole(*whole, found ? real.front().place : places.front());
    }
    if (const auto best = closed_form(places.front())) return *best;
    const Ascent ascent = this->ascent(request_.method);
    const std::vector<Candidate> found = climbed(places, request_.method, 0);
    if (const auto best = best_of(found, ascent, 0)) return *best;
    if (request_.method == Criterion::density) {
        const std::vector<Parameters> inner = places_by_spacings(places);
        if (const auto best = best_of(climbed(inner, Criterion::density, 0), ascent, 0)) return *best;
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

Motion moving(const Model& model, const Request& request, const Estimate& estimate) {
    Motion motion = motion_of(model, request);
    if (estimate.whole >= 0) motion.ranges[static_cast<std::size_t>(estimate.whole)] = fitting::kHeld;
    return motion;
}

}  // namespace

LocalView::LocalView(const Model& model, const Observations& observations, const Request& request,
                     const Estimate& estimate)
    : motion_(moving(model, request, estimate)),
      extent_(extent_of(observations, estimate.cell)),
      likelihood_(model, observations, criterion_of(request, estimate), request.shift, estimate.cell),
      chart_(motion_, estimate.parameters, extent_),
      centre_(chart_.point(estimate.parameters)),
      known_(estimate.inverse_information) {}

bool LocalView::end_on_datum(const Parameters& parameters) const {
    return on_datum(parameters, motion_.ranges, extent_).has_value();
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
    if (known_.size() == size() && size() > 0) return known_;
    const Objective objective = [this](std::span<const double> x) { return (*this)(x); };
    return Curvature(objective, centre_).inverse_information(kLeast);
}

SquareMatrix covariance(const Model& model, const Observations& observations, const Request& request,
                        const Estimate& estimate) {
    const std::size_t count = model.parameter_count() + request.shift;
    const Motion motion = moving(model, request, estimate);
    const LocalView view(model, observations, request, estimate);
    const SquareMatrix of_coordinates = view.covariance();
    const bool known = of_coordinates.size() > 0;
    std::vector<std::vector<double>> slopes;
    for (std::size_t i = 0; i < count; ++i)
        slopes.push_back(view.gradient([i](const Parameters& parameters) { return parameters[i]; }));
    SquareMatrix result(count);
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t j = 0; j <= i; ++j) {
            double sum = 0;
            for (std::size_t k = 0; known && k < view.size(); ++k) {
                for (std::size_t l = 0; l < view.size(); ++l)
                    sum += slopes[i][k] * of_coordinates(k, l) * slopes[j][l];
            }
            const auto told = [&](std::size_t place) {
                return request.holds(place) || motion.ranges[place].kind != RangeKind::held;
            };
            result(i, j) = result(j, i) = request.holds(i) || request.holds(j) ? 0
                                          : known && told(i) && told(j)        ? sum
                                                                               : numerics::kNaN;
        }
    }
    return result;
}

Estimate estimate_from(const Estimate& start, const Model& model, const Observations& observations,
                       const Request& request, const Deadline& deadline) {
    return Search(model, observations, request, deadline).from(start);
}

}  // namespace pral::inference
