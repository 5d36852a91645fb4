#include "inference/ascent.h"

#include <algorithm>

namespace pral::inference {

namespace {

using fitting::Objective;
using fitting::Parameters;
using fitting::Point;
using fitting::Range;
using RangeKind = fitting::Range::Kind;

}  // namespace

bool is_end(const Range& range) {
    return range.kind == RangeKind::below_min || range.kind == RangeKind::above_max;
}

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

fitting::Extent extent_of(const Observations& observations, double cell) {
    const std::vector<double> values = observations.representatives();
    return {observations.smallest() + 0.5 * cell, observations.largest() - 0.5 * cell,
            fitting::Extent(Sample(values)).spread};
}

Ascent::Ascent(const Model& model, const Observations& observations, Criterion criterion, bool shifted,
               double cell, const fitting::Deadline& deadline)
    : likelihood_(model, observations, criterion, shifted, cell),
      extent_(extent_of(observations, cell)),
      deadline_(deadline) {}

Candidate Ascent::climb(const Parameters& place, const Motion& motion, double negligible) const {
    // Beyond this many coordinates from its start a climb does not go: there the likelihood grows for ever, or levels off.
    constexpr double kFar = 17;
    const Chart chart(motion, place, extent_);
    const Point start = chart.point(place);
    if (start.empty()) return candidate(place);
    if (std::ranges::any_of(start, [](double t) { return !std::isfinite(t); })) return {place, -HUGE_VAL};
    const Objective objective = [&](std::span<const double> point) {
        for (std::size_t i = 0; i < point.size(); ++i) {
            if (!(std::fabs(point[i] - start[i]) < kFar)) return -HUGE_VAL;
        }
        return likelihood_(chart.parameters(point));
    };
    const fitting::Maximum found = fitting::maximise(objective, start, deadline_, negligible);
    return {chart.parameters(found.point), found.value};
}

Ascent::End Ascent::end_of(Candidate candidate, const Motion& motion) const {
    constexpr double kFlat = 2e-3, kLevel = 3e-3, kNegligibleGain = 1e-4, kNothing = 1e-18, kLastStep = 1e-9,
                     kNear = 1e-12;
    constexpr int kSteps = 4;
    End end = {std::move(candidate), Nature::maximum, {}};
    for (int i = 0; i < kSteps; ++i) {
        deadline_.check();
        const Chart chart(motion, end.candidate.place, extent_);
        Point point = chart.point(end.candidate.place);
        if (point.empty()) return end;
        const Objective objective = [&](std::span<const double> x) {
            return likelihood_(chart.parameters(x));
        };
        const Curvature shape(objective, point);
        SquareMatrix inverse = shape.inverse_information(kFlat);
        const bool definite = inverse.size() > 0;
        const double promised = definite ? shape.promised_gain(inverse) : HUGE_VAL;
        if (i == 0 && !(definite && (shape.all_below || promised < kNegligibleGain))) {
            end.nature = shape.slope() < kLevel || shape.all_below ? Nature::level : Nature::ascending;
            return end;
        }
        if (!definite) return end;
        end.inverse_information = inverse;
        if (!(promised > kNothing)) return end;
        for (std::size_t row = 0; row < point.size(); ++row) {
            for (std::size_t column = 0; column < point.size(); ++column)
                point[row] += inverse(row, column) * shape.gradient[column];
        }
        const double value = objective(point);
        // Near the top the values themselves no longer tell.
        if (!(value > end.candidate.value - 1e-12 * (1 + std::fabs(end.candidate.value)))) return end;
        end.candidate = {chart.parameters(point), std::max(value, end.candidate.value)};
        if (promised > kNear) end.inverse_information = {};  // it is that of another place
        if (promised < kLastStep) return end;                // Newton's method squares what is left
    }
    return end;
}

}  // namespace pral::inference
