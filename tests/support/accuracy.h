// Measuring functions against tables: the worst error of each one, where it was, and whether it is within bounds.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <map>
#include <string>

namespace pral::test {

/// Relative error; absolute in units of 1e-300 where the expected value is smaller than that. A NaN, or an
/// infinity that is not expected, is infinitely wrong.
inline double relative_error(double actual, double expected) {
    if (actual == expected) return 0;
    const double error = std::fabs(actual - expected) / std::max(std::fabs(expected), 1e-300);
    return error >= 0 ? error : std::numeric_limits<double>::infinity();
}

class Accuracy {
  public:
    void record(const std::string& function, double error, const std::string& place) {
        Worst& worst = worst_[function];
        worst.points += 1;
        if (!(error <= worst.error)) worst.error = error, worst.place = place;
    }

    /// Prints what was measured; each function keeps its bound and each bound has a function.
    void expect_within(const std::map<std::string, double>& bounds) const {
        for (const auto& [function, worst] : worst_) {
            std::printf("%-24s %4d points, worst %.1e at %s\n", function.c_str(), worst.points, worst.error,
                        worst.place.c_str());
        }
        for (const auto& [function, bound] : bounds) {
            const auto found = worst_.find(function);
            ASSERT_NE(found, worst_.end()) << function;
            EXPECT_LE(found->second.error, bound) << function << " at " << found->second.place;
        }
        EXPECT_EQ(worst_.size(), bounds.size());
    }

  private:
    struct Worst {
        int points = 0;
        double error = 0;
        std::string place;
    };
    std::map<std::string, Worst> worst_;
};

}  // namespace pral::test
