// Which families explain observations best.
#pragma once

#include <functional>
#include <string>

#include "inference/fit.h"

namespace pral::inference {

struct Ranked {
    std::shared_ptr<const Fit> fit;
    /// AICc less the least of all.
    double difference;
    /// Akaike's: how much of the evidence is for this family, among those whose maximum is regular or at an edge; 0 for
    /// others.
    double weight;
    /// Families that were left out because their fits are this distribution.
    std::vector<std::string_view> equal;
};

struct LeftOut {
    std::string_view family;
    std::string why;
};

/// The best first: fits with a regular maximum before those at an edge, before those that count by cells; within these by
/// AICc, to which special families have 4 added.
struct Ranking {
    std::vector<Ranked> fits;
    std::vector<LeftOut> left_out;
};

/// Fits all of the models, each within the time of `request`. Densities of values in whole units compare with
/// probabilities of them: both are of a cell as wide as 1. `progress` is called after each, from any thread, with how many
/// are done; false ends the work.
Ranking rank(std::span<const Model* const> models, std::shared_ptr<const Observations> observations,
             const Request& request, int threads, const std::function<bool(std::size_t)>& progress = {});

/// The families that suit the observations: those of whole numbers for whole numbers, and the others where the numbers are
/// no counts, or spread so widely that they may be amounts in whole units.
std::vector<const Model*> suitable(std::span<const Model> models, const Observations& observations);

}  // namespace pral::inference
