// The commands of pral: what each is told, and the function that carries it out. A command has a file of its own; main.cpp
// alone knows how the options are spelt.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "csv.h"
#include "families.h"
#include "output.h"

namespace cli {

struct ListOptions {
    std::string kind, search;  // empty: all
    Format format = Format::table;
};
void list(const ListOptions& options);

struct DescribeOptions {
    std::string family;
    Format format = Format::table;
};
void describe(const DescribeOptions& options);

struct SampleOptions : FamilyOptions {
    double count = 1;
    std::optional<double> seed;
};
void sample(const SampleOptions& options);

struct QuantileOptions : FamilyOptions {
    std::vector<std::string> percentiles;
};
void quantile(const QuantileOptions& options);

struct ProbabilityOptions : FamilyOptions {
    std::vector<std::string> values;
    bool cumulative = false, log10 = false, joint = false;
};
void probability(const ProbabilityOptions& options);

/// By what fits are ranked, smallest first.
enum class Criterion { aic, aicc, bic };

struct FitOptions {
    std::string file, kind;  // kind: chosen by the data when empty
    CsvRequest csv = {.purpose = Purpose::data};
    std::vector<std::string> families;  // empty: all that suit the data
    std::optional<double> min, max, timeout, top;
    bool shift = false, verbose = false;
    Criterion rank = Criterion::aicc;
    Format format = Format::table;
};
void fit(const FitOptions& options);

}  // namespace cli
