// The way up to a maximum of a likelihood, and what the likelihood does where the way ends.
#pragma once

#include <optional>
#include <vector>

#include "fitting/coordinates.h"
#include "fitting/deadline.h"
#include "inference/curvature.h"
#include "inference/likelihood.h"

namespace pral::inference {

/// How the parameters of a fit may move: the family's own, or those that its search moves in their place.
struct Motion {
    std::vector<fitting::Range> ranges;
    fitting::SearchParameters search = {};
};

/// Coordinates of the parameters near a place, of which a step of 1 is a large one.
class Chart {
  public:
    Chart(const Motion& motion, const fitting::Parameters& place, const fitting::Extent& extent)
        : search_(motion.search), coordinates_(motion.ranges, search_.from(place), extent) {}

    fitting::Point point(const fitting::Parameters& parameters) const {
        return coordinates_.point(search_.from(parameters));
    }
    fitting::Parameters parameters(std::span<const double> point) const {
        return search_.own(coordinates_.parameters(point));
    }

  private:
    fitting::SearchParameters search_;
    fitting::Coordinates coordinates_;
};

struct Candidate {
    fitting::Parameters place;
    double value;
};

/// A climb's end, by what the likelihood does there.
enum class Nature {
    maximum,
    level,      ///< levels off towards an edge of the parameters
    ascending,  ///< grows for ever
};

/// Whether a parameter is an end of the support that the data limit.
bool is_end(const fitting::Range& range);

/// Where an end of the support is as good as on a datum: the place with the end there.
std::optional<fitting::Parameters> on_datum(const fitting::Parameters& place,
                                            std::span<const fitting::Range> ranges,
                                            const fitting::Extent& extent);

/// Between what unknown ends of a support may lie when values are cells of that width, and the spread of the data.
fitting::Extent extent_of(const Observations& observations, double cell);

/// Climbs of one criterion over given observations.
class Ascent {
  public:
    /// All must outlive it.
    Ascent(const Model& model, const Observations& observations, Criterion criterion, bool shifted,
           double cell, const fitting::Deadline& deadline);

    const fitting::Extent& extent() const { return extent_; }
    double value(const fitting::Parameters& place) const { return likelihood_(place); }
    Candidate candidate(const fitting::Parameters& place) const { return {place, value(place)}; }

    /// The end of a climb, some ten times `negligible` below the top.
    Candidate climb(const fitting::Parameters& place, const Motion& motion, double negligible) const;

    struct End {
        Candidate candidate;
        Nature nature;
        SquareMatrix inverse_information;  ///< of the coordinates; empty where there is none
    };
    /// What the likelihood does at a climb's end; a maximum is polished by accurate derivatives, for the digits that a search
    /// by values alone leaves.
    End end_of(Candidate candidate, const Motion& motion) const;

  private:
    const Likelihood likelihood_;
    const fitting::Extent extent_;
    const fitting::Deadline& deadline_;
};

}  // namespace pral::inference
