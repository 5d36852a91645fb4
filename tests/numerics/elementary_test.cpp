// exp and log as written down, one by one and in blocks, against 40-digit arithmetic (reference/elementary.tsv).
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "numerics/each.h"
#include "numerics/exp_log.h"
#include "support/accuracy.h"
#include "support/table.h"

namespace {

using namespace pral;

TEST(Elementary, ExpAndLogKeepOneUlp) {
    test::Accuracy accuracy;
    for (const auto& row : test::table("reference/elementary.tsv")) {
        const double x = test::number(row, 1), expected = test::number(row, 2);
        const bool exp = row[0] == "exp";
        double in_block[] = {x, 1, x};
        exp ? numerics::exp_each(in_block) : numerics::log_each(in_block);
        EXPECT_EQ(in_block[0], exp ? numerics::written::exp(x) : numerics::written::log(x))
            << row[0] << ' ' << x;
        EXPECT_EQ(in_block[2], in_block[0]);
        accuracy.record(row[0], test::ulps(in_block[0], expected), 1, row[1]);
    }
    accuracy.report();
}

/// Blocks of any length, whose elements may be anything: each is what it would be alone.
TEST(Elementary, BlocksOfHostileArguments) {
    constexpr double inf = std::numeric_limits<double>::infinity(),
                     nan = std::numeric_limits<double>::quiet_NaN();
    const std::vector<double> hostile = {nan, inf, -inf, 0, -0.0, -1, 5e-324, 1e308, -1e308, 3};
    for (std::size_t count = 0; count <= hostile.size(); ++count) {
        std::vector<double> exps(hostile.begin(), hostile.begin() + count), logs = exps;
        numerics::exp_each(exps);
        numerics::log_each(logs);
        for (std::size_t i = 0; i < count; ++i) {
            if (const double e = std::exp(hostile[i]); std::isnan(e))
                EXPECT_TRUE(std::isnan(exps[i]));
            else
                EXPECT_LE(test::ulps(exps[i], e), 1) << hostile[i];
            if (const double l = std::log(hostile[i]); std::isnan(l))
                EXPECT_TRUE(std::isnan(logs[i])) << hostile[i];
            else
                EXPECT_LE(test::ulps(logs[i], l), 1) << hostile[i];
        }
    }
}

}  // namespace
