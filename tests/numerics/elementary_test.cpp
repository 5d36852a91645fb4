// Exponentials, logarithms and cotangents as written down, in blocks, against 60-digit arithmetic (reference/elementary.tsv).
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include "numerics/each.h"
#include "numerics/exp_log.h"
#include "support/accuracy.h"
#include "support/table.h"

namespace {

using namespace pral;

using Block = std::function<void(std::span<double>)>;

const std::map<std::string, Block> kBlocks = {
    {"exp", numerics::exp_each},
    {"log", numerics::log_each},
    {"expm1", numerics::expm1_each},
    {"log1p", numerics::log1p_each},
    {"softplus", numerics::softplus_each},
    {"log1m_exp", numerics::log1m_exp_each},
    {"log_ratio", [](std::span<double> x) { numerics::log_ratio_each(x, 0.96875); }},
    {"log_complement",
     [](std::span<double> t) { numerics::log_tail_each(t, std::vector<double>(t.size(), 1)); }},
    {"acot", numerics::acot_each},
    {"cot_pi", numerics::cot_pi_each},
};

TEST(Elementary, BlocksKeepTheirDigits) {
    test::Accuracy accuracy;
    for (const auto& row : test::table("reference/elementary.tsv")) {
        const double x = test::number(row, 1), expected = test::number(row, 2);
        double block[] = {x, 0.25, x, 0.5, x};  // a vector, and what is left of it
        kBlocks.at(row[0])(block);
        EXPECT_EQ(block[2], block[0]) << row[0] << ' ' << x;
        EXPECT_EQ(block[4], block[0]) << row[0] << ' ' << x;
        const bool single = row[0] == "exp" || row[0] == "log";
        if (single) {
            EXPECT_EQ(block[0], row[0] == "exp" ? numerics::written::exp(x) : numerics::written::log(x));
        }
        // Far out the cotangent of pi x multiplies the rounding of pi x.
        const double bound = single ? 1 : row[0] == "cot_pi" ? 3 : 2.2;
        if (std::fabs(expected) >= std::numeric_limits<double>::min() || single)
            accuracy.record(row[0], test::ulps(block[0], expected), bound, row[1]);
        else
            EXPECT_NEAR(block[0], expected, 1e-323);
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
    for (const auto& [name, each] : kBlocks) {
        std::vector<double> together = hostile;
        each(together);
        for (std::size_t i = 0; i < hostile.size(); ++i) {
            double alone[] = {hostile[i]};
            each(alone);
            const bool same = alone[0] == together[i] || (std::isnan(alone[0]) && std::isnan(together[i]));
            EXPECT_TRUE(same) << name << ' ' << hostile[i] << ": " << alone[0] << ' ' << together[i];
        }
    }
}

}  // namespace
