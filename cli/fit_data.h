// What pral fit reads, and how it looks beside a distribution.
#pragma once

#include <pral_core/objects.hpp>
#include <string>
#include <vector>

#include "commands.h"

namespace cli {

struct FitData {
    std::vector<CsvColumn> columns;            // values or left ends; right ends; weights
    std::vector<double> left, right, weights;  // the last two may be empty
    std::vector<std::size_t> lines;            // of the file, where they stand
    std::size_t missing = 0;
    double least, greatest;  // finite ends

    pral::Observations observations() const { return {.left = left, .right = right, .weights = weights}; }
    /// Values all, not intervals that hold one.
    bool exact() const { return right.empty() || left == right; }
    bool whole() const;
    /// The sum of the weights.
    double count() const;
};

/// Throws a UsageError where the file cannot be read with certainty.
FitData read_fit_data(const FitOptions& options);

/// "losses.csv, column 2 (loss) of 3: 20 values from 1 to 9, none missing".
std::string summary_of(const FitData& data, const FitOptions& options);

/// The shares of exact data in cells (edges[i], edges[i + 1]] and beyond them; the first holds its lower edge as well.
struct Histogram {
    std::vector<double> edges, shares;
    double below = 0, above = 0;
};
Histogram histogram_of(const FitData& data);

/// At most 200 of the sorted data, with their percentiles.
struct Quantiles {
    std::vector<double> percentiles, values;
};
Quantiles quantiles_of(const FitData& data);

}  // namespace cli
