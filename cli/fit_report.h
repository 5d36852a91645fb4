// How pral fit shows what it has found.
#pragma once

#include <optional>
#include <pral_core/objects.hpp>
#include <string>
#include <vector>

#include "fit_data.h"

namespace cli {

struct FitRow {
    pral::Fit fit;
    pral::FitValues values;
    std::string equal_to;
    double criterion = 0, difference = 0, weight = 0;  // of the criterion by which fits are ranked
    std::vector<std::string> names;                    // of the parameters
    std::vector<double> parameters, errors;
    std::vector<pral::Interval> intervals = {};  // empty unless they are wanted
    std::optional<pral::TestValues> test = {};
};

struct FitReport {
    std::vector<FitRow> rows;
    std::vector<pral::Ranking::LeftOut> left_out;
    std::size_t tried = 0;
};

/// The name of a criterion, a test, a method, as the options have it.
std::string name_of(Criterion criterion);
std::string name_of_test(int test);

void write_report(const FitReport& report, const FitData& data, const FitOptions& options);

/// What the data look like beside a fit: counts of a histogram, and quantiles.
std::string picture_of(const FitRow& row, const FitData& data, const FitOptions& options);

/// The distribution that the data have been drawn from, if the fit is right: truncated as they are.
pral::Distribution seen_distribution(const FitRow& row, const FitOptions& options);

}  // namespace cli
