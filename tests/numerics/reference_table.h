// Reference tables: rows of numbers, the error of a result, and the worst of them with its place.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "support/table.h"

namespace pral::test {

/// A row's cell as a number; decimal or hexadecimal.
inline double number(const std::vector<std::string>& row, std::size_t column) {
    return std::strtod(row.at(column).c_str(), nullptr);
}

/// |actual/expected - 1|; 0 for equal values (infinities too), infinite where only one is zero, infinite or NaN.
inline double relative_error(double actual, double expected) {
    if (actual == expected) return 0;
    const double error = std::fabs(actual - expected) / std::fabs(expected);
    return std::isfinite(error) ? error : HUGE_VAL;
}

/// Relative for large values, absolute below 1: for logarithms, whose zero has no digits of its own.
inline double scaled_error(double actual, double expected) {
    if (actual == expected) return 0;
    const double error = std::fabs(actual - expected) / std::fmax(1, std::fabs(expected));
    return std::isfinite(error) ? error : HUGE_VAL;
}

/// The largest error of each name, where it was found, and whether it keeps its bound.
class WorstCases {
  public:
    void record(const std::string& name, double error, double bound, const std::string& place) {
        Case& worst = cases_[name];
        ++worst.points;
        worst.bound = bound;
        if (!(error <= worst.error)) {
            worst.error = error;
            worst.place = place;
        }
    }

    /// Prints one line per name and fails where a bound is exceeded.
    void report() const {
        for (const auto& [name, worst] : cases_) {
            std::printf("%-32s %5d points  worst %.1e at %s\n", name.c_str(), worst.points, worst.error,
                        worst.place.c_str());
            EXPECT_LE(worst.error, worst.bound) << name << " at " << worst.place;
        }
    }

  private:
    struct Case {
        double error = -1, bound = 0;
        int points = 0;
        std::string place;
    };
    std::map<std::string, Case> cases_;
};

/// The cells of a row before `end`, for messages.
inline std::string place(const std::vector<std::string>& row, std::size_t begin, std::size_t end) {
    std::string text;
    for (std::size_t i = begin; i < end; ++i) text += (i == begin ? "" : " ") + row.at(i);
    return text;
}

}  // namespace pral::test
