// Measuring functions against tables: the worst error of each one, where it was, and whether it is within its bound.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <map>
#include <string>

namespace pral::test {

/// A NaN, or an infinity that was not expected, is infinitely wrong.
inline double error_of(double difference) {
    return difference >= 0 ? difference : std::numeric_limits<double>::infinity();
}

/// Relative error; absolute in units of 1e-300 where the expected value is smaller than that.
inline double relative_error(double actual, double expected) {
    if (actual == expected) return 0;
    return error_of(std::fabs(actual - expected) / std::max(std::fabs(expected), 1e-300));
}

/// Relative for large values, absolute below 1: for logarithms, whose zero has no digits of its own.
inline double scaled_error(double actual, double expected) {
    if (actual == expected) return 0;
    return error_of(std::fabs(actual - expected) / std::max(std::fabs(expected), 1.0));
}

/// In units in the last place of the expected value.
inline double ulps(double actual, double expected) {
    if (actual == expected) return 0;
    const double magnitude = std::fabs(expected);
    return error_of(std::fabs(actual - expected) / (std::nextafter(magnitude, HUGE_VAL) - magnitude));
}

class Accuracy {
  public:
    void record(const std::string& function, double error, const std::string& place) {
        record(function, error, kUnbounded, place);
    }
    void record(const std::string& function, double error, double bound, const std::string& place) {
        Worst& worst = worst_[function];
        worst.points += 1;
        worst.bound = bound;
        if (!(error <= worst.error)) worst.error = error, worst.place = place;
    }

    /// Prints what was measured; each function keeps the bound that was recorded with it and the one given here.
    void report(double common_bound = kUnbounded) const {
        for (const auto& [function, worst] : worst_) {
            std::printf("%-32s %5d points, worst %.1e at %s\n", function.c_str(), worst.points, worst.error,
                        worst.place.c_str());
            EXPECT_LE(worst.error, std::min(worst.bound, common_bound)) << function << " at " << worst.place;
        }
    }

    /// The same with a bound for each function, and a function for each bound.
    void expect_within(const std::map<std::string, double>& bounds) const {
        report();
        for (const auto& [function, bound] : bounds) {
            const auto found = worst_.find(function);
            ASSERT_NE(found, worst_.end()) << function;
            EXPECT_LE(found->second.error, bound) << function << " at " << found->second.place;
        }
        EXPECT_EQ(worst_.size(), bounds.size());
    }

  private:
    static constexpr double kUnbounded = std::numeric_limits<double>::infinity();
    struct Worst {
        int points = 0;
        double error = 0, bound = kUnbounded;
        std::string place;
    };
    std::map<std::string, Worst> worst_;
};

}  // namespace pral::test
