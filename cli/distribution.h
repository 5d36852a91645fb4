// A distribution as it stands on the command line: a family's name and its parameters, or one text.
#pragma once

#include <optional>
#include <pral_core/objects.hpp>
#include <string>
#include <vector>

#include "families.h"

namespace cli {

struct DistributionOptions {
    std::string distribution;          // a family's name, or a text that has brackets
    std::vector<std::string> numbers;  // what stands behind it
    std::optional<double> min, max, min_percentile, max_percentile, shift;
};

/// The same, taken apart: a name takes as many numbers as the family has parameters, and what is left are values.
struct DistributionParts {
    const Family* family = nullptr;  // null for a text
    std::vector<std::vector<double>> parameters;
    std::vector<std::string> values;
};

/// `with_values`: whether values may stand behind the distribution.
DistributionParts parts_of(const DistributionOptions& options, bool with_values);

/// Truncated first, then shifted.
pral::Distribution make_distribution(const DistributionOptions& options, const DistributionParts& parts);

}  // namespace cli
