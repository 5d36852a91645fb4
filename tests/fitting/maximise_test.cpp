// The searches for a maximum: objectives that misbehave, the deadline, and what GSL is left in.
#include <gsl/gsl_errno.h>
#include <gsl/gsl_sf_gamma.h>
#include <gtest/gtest.h>

#include <cmath>
#include <ctime>
#include <stdexcept>
#include <thread>

#include "fitting/maximise.h"
#include "numerics/gsl.h"

namespace {

using namespace pral::fitting;
using Coordinates = std::span<const double>;

constexpr SimplexRules kRules = {0.5, 1e-8, 1000, false};
constexpr double kSeconds = 60;

int errors_seen = 0;
void count_error(const char*, const char*, int, int) { ++errors_seen; }

/// GSL's handler for errors, until the end of the scope.
struct OwnHandler {
    gsl_error_handler_t* before = gsl_set_error_handler(count_error);
    ~OwnHandler() { gsl_set_error_handler(before); }
    bool is_back() const { return gsl_set_error_handler(count_error) == count_error; }
};

TEST(Maximise, GslErrorsAreReturnedAndTheHandlerComesBack) {
    const OwnHandler own;
    gsl_sf_result result;
    errors_seen = 0;
    {
        const pral::numerics::GslErrorsReturn guard;
        EXPECT_EQ(gsl_sf_lngamma_e(0, &result), GSL_EDOM);
    }
    EXPECT_EQ(errors_seen, 0);
    EXPECT_TRUE(own.is_back());
    EXPECT_EQ(gsl_sf_lngamma_e(0, &result), GSL_EDOM);
    EXPECT_EQ(errors_seen, 1);
}

/// A valley at (1, -2) whose surroundings have no value, of each kind there is.
TEST(Maximise, ValuesThatAreNotFiniteAreAvoided) {
    const OwnHandler own;
    errors_seen = 0;
    for (const double outside : {HUGE_VAL, -HUGE_VAL, std::nan("")}) {
        const auto distance = [](Coordinates x) { return std::hypot(x[0] - 1, x[1] + 2); };
        Point lowest = {1.2, -1.5}, nowhere = {40, 40}, infinite = {HUGE_VAL, 0};
        minimise([&](Coordinates x) { return distance(x) < 1 ? distance(x) : outside; }, lowest, kRules,
                 Deadline::in(kSeconds));
        EXPECT_LT(distance(lowest), 1e-6) << outside;
        minimise([&](Coordinates) { return outside; }, nowhere, kRules, Deadline::in(kSeconds));
        minimise([&](Coordinates) { return 1.0; }, infinite, kRules, Deadline::in(kSeconds));
        EXPECT_EQ(infinite[0], HUGE_VAL);

        const Maximum highest =
            maximise([&](Coordinates x) { return distance(x) < 1 ? -distance(x) * distance(x) : outside; },
                     {1.2, -1.5}, Deadline::in(kSeconds));
        EXPECT_LT(distance(highest.point), 1e-3) << outside;
        EXPECT_TRUE(std::isfinite(highest.value)) << outside;
    }
    EXPECT_EQ(errors_seen, 0);
    EXPECT_TRUE(own.is_back());
}

TEST(Maximise, WhatTheObjectiveThrowsComesOut) {
    const OwnHandler own;
    for (const int last : {1, 3, 10}) {
        int calls = 0;
        const Objective objective = [&](Coordinates x) {
            if (++calls >= last) throw std::runtime_error("no more");
            return x[0] * x[0] + std::fabs(x[1]);
        };
        Point point = {3, 4};
        EXPECT_THROW(minimise(objective, point, kRules, Deadline::in(kSeconds)), std::runtime_error);
        EXPECT_EQ(calls, last);
        EXPECT_EQ(point, (Point{3, 4}));
    }
    EXPECT_TRUE(own.is_back());
}

/// Not one evaluation begins after the deadline, and none that has been made counts as a result.
TEST(Maximise, EndsAtTheDeadline) {
    const Deadline deadline = Deadline::in(0.02);
    int late = 0;
    const Objective slow = [&](Coordinates x) {
        late += deadline.passed();
        for (const std::clock_t start = std::clock(); std::clock() - start < CLOCKS_PER_SEC / 500;) {
        }
        return -std::fabs(x[0]) - 1e-3 * x[1] * x[1];
    };
    Point point = {30, 40};
    EXPECT_THROW(minimise(slow, point, {1e-3, 0, 100000, false}, deadline), TimedOut);
    EXPECT_EQ(point, (Point{30, 40}));
    EXPECT_THROW(maximise(slow, point, deadline), TimedOut);
    EXPECT_EQ(late, 0);
    EXPECT_TRUE(Deadline::in(0).passed());
    EXPECT_TRUE(Deadline::in(-1).passed());
    EXPECT_TRUE(Deadline::in(std::nan("")).passed());
    EXPECT_FALSE(Deadline::in(1e300).passed());
}

/// Time during which the thread does not run, as on a machine that is busy, is not the fit's.
TEST(Maximise, TheDeadlineCountsProcessorTime) {
    const Deadline deadline = Deadline::in(0.1);
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    EXPECT_FALSE(deadline.passed());
}

}  // namespace
