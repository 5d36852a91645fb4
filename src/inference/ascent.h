// The way up to a maximum of a likelihood, and what the likelihood does where the way ends.
#pragma once

#include <optional>
#include <vector>

#include "fitting/coordinates.h"
#include "fitting/deadline.h"
#include "inference/curvature.h"
#include "inference/likelihood.h"

namespace pral::inference {

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
    /// All but the ranges must outlive it.
    Ascent(const Model& model, const Observations& observations, Criterion criterion, bool shifted,
           double cell, const fitting::Deadline& deadline);

    const fitting::Extent& extent() const { return extent_; }
    double value(const fitting::Parameters& place) const { return likelihood_(place); }
    Candidate candidate(const fitting::Parameters& place) const { return {place, value(place)}; }

    /// The end of a climb, some ten times `negligible` below the top.
    Candidate climb(const fitting::Parameters& place, std::span<const fitting::Range> ranges,
                    double negligible) const;

    struct End {
        Candidate candidate;
        Nature nature;
        SquareMatrix inverse_information;  ///< of the coordinates; empty where there is none
    };
    /// What the likelihood does at a climb's end; a maximum is polished by accurate derivatives, for the digits that a search
    /// by values alone leaves.
    End end_of(Candidate candidate, std::span<const fitting::Range> ranges) const;

  private:
    const Likelihood likelihood_;
    const fitting::Extent extent_;
    const fitting::Deadline& deadline_;
};

}  // namespace pral::inference
