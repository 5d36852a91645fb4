// Numbers inside messages.
#include <gtest/gtest.h>

#include <cmath>

#include "boundary/error_text.h"

namespace {

struct Row {
    double value;
    const char* text;
};

constexpr Row kRows[] = {
    {0.0, "0"},
    {0.5, "0.5"},
    {3.0, "3"},
    {-2.25, "-2.25"},
    {100.0, "100"},
    {-1e15, "-1000000000000000"},
    {0.1, "0.1"},
    {1.0 / 3, "0.3333333333333333"},
    {1e-16, "0.0000000000000001"},
    {12.125, "12.125"},
    // Below 16 decimals the number prints with an exponent, and the zeros of the exponent go with the others.
    {1e-30, "1e-3"},
    {1e-20, "9.999999999999999e-21"},
    {3e-17, "3e-17"},
};

TEST(NumberText, PrintsAsMessagesDo) {
    for (const Row& row : kRows) EXPECT_EQ(pral::number_text(row.value), row.text);
}

TEST(NumberText, SurvivesNumbersThatCannotBeRounded) {
    EXPECT_EQ(pral::number_text(1e300).substr(0, 17), "10000000000000000");
    EXPECT_EQ(pral::number_text(HUGE_VAL), "inf");
}

}  // namespace
