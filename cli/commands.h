// The commands of pral: what each is told, and the function that carries it out. A command has a file of its own;
// command_line.cpp alone knows how the options are spelt.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "csv.h"
#include "distribution.h"
#include "output.h"
#include "values.h"

namespace cli {

struct ListOptions {
    std::string kind, search;  // empty: all
    Format format = Format::table;
};
void list(const ListOptions& options);

struct DescribeOptions : DistributionOptions {
    std::vector<std::string> limits;  // of limited means
    Format format = Format::table;
};
/// A family by its name alone, otherwise a distribution.
void describe(const DescribeOptions& options);
void describe_family(const Family& family, Format format);
void describe_distribution(const DescribeOptions& options);

struct SampleOptions : DistributionOptions {
    double count = 1;
    std::optional<double> seed;
    std::optional<std::string> stream;
    bool latin_hypercube = false;
    Format format = Format::table;
};
void sample(const SampleOptions& options);

struct QuantileOptions : DistributionOptions {
    ValueOptions percentiles;
    bool upper = false, log = false;
    Format format = Format::table;
};
void quantile(const QuantileOptions& options);

struct ProbabilityOptions : DistributionOptions {
    ValueOptions values;
    bool cumulative = false, survival = false, log = false, log10 = false, joint = false;
    Format format = Format::table;
};
void probability(const ProbabilityOptions& options);

/// By what fits are ranked, smallest first.
enum class Criterion { aic, aicc, bic };

struct FitOptions {
    std::string file, kind;      // kind: chosen by the data when empty
    std::string right, weights;  // columns; empty: all values are exact, and count once
    CsvRequest csv = {.purpose = Purpose::data};
    std::vector<std::string> families;  // empty: all that suit the data
    std::vector<std::string> held;      // "alpha=2"
    std::optional<double> min, max, cell, timeout, threads, top, interval, replicates, seed;
    std::optional<int> test;  // PRAL_KOLMOGOROV_SMIRNOV, ...
    int method = PRAL_MAXIMUM_LIKELIHOOD, interval_method = PRAL_PROFILE;
    bool shift = false, errors = false, plot = false, verbose = false;
    Criterion rank = Criterion::aicc;
    Format format = Format::table;
};
void fit(const FitOptions& options);

}  // namespace cli
