// The exported entry points of the fits: arguments, checks and their order, messages.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cfloat>
#include <cmath>
#include <thread>

#include "classic/automation.h"
#include "classic/core_api.h"
#include "support/table.h"

namespace {

using Values = std::vector<double>;
constexpr double kNotGiven = 1e100;

using Fit = bool (*)(double*, const double*, int, int*, double, double, double, int, const char*, bool);
using FitP = bool (*)(double*, int, const double*, int, int*, double, double, double*, int, int, const char*,
                      bool);
struct Entry {
    const char* name;
    Fit values;
    FitP parameters;
};
constexpr Entry kEntries[] = {
#define PRAL_ENTRY(X) {#X, Pral##X##Fit_Core, Pral##X##FitP_Core},
    PRAL_FITTED_FAMILIES(PRAL_ENTRY) PRAL_ENTRY(Uniform){"Student3", PralStudent3Fit_Core, nullptr}};

const Entry& entry(const std::string& name) {
    return *std::ranges::find_if(kEntries, [&](const Entry& e) { return name == e.name; });
}

/// An automation array that frees itself.
struct Array {
    SAFEARRAY* array;
    explicit Array(unsigned length) : array(SafeArrayCreateVector(VT_R8, 0, length)) {
        std::fill_n(static_cast<double*>(array->pvData), length, 7.0);
    }
    ~Array() { SafeArrayDestroy(array); }
    double operator[](int i) const { return static_cast<double*>(array->pvData)[i]; }
};

TEST(EntryPoints, RefuseWithTheirMessages) {
    for (const auto& row : pral::test::table("reference/fits/refusals.tsv")) {
        Values x = pral::test::numbers(row.at(1)), bounds = pral::test::numbers(row.at(2));
        const Entry& family = entry(row.at(0));
        Values out(8);
        PralSetCoreError("");
        const int n = static_cast<int>(x.size());
        int length = 1;
        while (!family.parameters(out.data(), length, x.data(), n, nullptr, bounds[0], bounds[1], nullptr, 0,
                                  0, nullptr, false) &&
               std::string(PralCoreError()).starts_with("Error: Output array length"))
            PralSetCoreError(""), ++length;
        EXPECT_EQ(PralCoreError(), row.size() > 3 ? row.at(3) : "") << row.at(0) << " of " << row.at(1);
        for (int i = 0; i < length; ++i) EXPECT_EQ(out[static_cast<std::size_t>(i)], -DBL_MAX) << row.at(0);
    }
}

TEST(EntryPoints, AskForAsManyParametersAsThereAre) {
    const Values x = {1, 2, 4, 8};
    Values out(3, 7);
    EXPECT_FALSE(PralNormalFitP_Core(out.data(), 3, x.data(), 4, nullptr, kNotGiven, kNotGiven, nullptr, 0, 0,
                                     nullptr, false));
    EXPECT_STREQ(PralCoreError(),
                 "Error: Output array length(3) must equal to number of distribution parameters(2)");
    EXPECT_EQ(out, Values(3, 7));
    Array three(3);
    EXPECT_FALSE(PralNormalFitPVB_Core(&three.array, x.data(), 4, 0, kNotGiven, kNotGiven));
    EXPECT_STREQ(PralCoreError(),
                 "Error: Output array length(3) must equal to number of distribution parameters(2)");
    EXPECT_EQ(three[0], 7);
    EXPECT_FALSE(PralNormalFitP_Core(nullptr, 2, x.data(), 4, nullptr, kNotGiven, kNotGiven, nullptr, 0, 0,
                                     nullptr, false));
    EXPECT_STREQ(PralCoreError(), "Error: out must not be null");
}

TEST(EntryPoints, NormalIsMeanAndDeviationOfTheSample) {
    const Values x = {1, 2, 4, 8, -3};
    Values out(2), values(10);
    ASSERT_TRUE(PralNormalFitP_Core(out.data(), 2, x.data(), 5, nullptr, kNotGiven, kNotGiven, nullptr, 0, 0,
                                    nullptr, false));
    double mean = 0, variance = 0;
    PralMean_Core(&mean, x.data(), x.size());
    PralVariance_Core(&variance, x.data(), x.size());
    EXPECT_EQ(out, (Values{mean, std::sqrt(variance)}));

    ASSERT_TRUE(PralNormalFit_Core(values.data(), x.data(), 5, nullptr, kNotGiven, kNotGiven, 0.5, 10,
                                   nullptr, false));
    EXPECT_EQ(values, Values(10, mean));
    PralSetRandomSeed(4);
    ASSERT_TRUE(PralNormalFit_Core(values.data(), x.data(), 5, nullptr, kNotGiven, kNotGiven, kNotGiven, 10,
                                   nullptr, false));
    Values draws(10);
    PralSetRandomSeed(4);
    ASSERT_TRUE(
        PralNormalArray_Core(draws.data(), 10, out[0], out[1], nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(values, draws);

    Array ten(10), two(2);
    ASSERT_TRUE(PralNormalFitVB_Core(&ten.array, x.data(), 5, 0, kNotGiven, kNotGiven, 0.5));
    EXPECT_EQ(ten[0], mean);
    EXPECT_EQ(ten[1], 7);
    ASSERT_TRUE(PralNormalFitPVB_Core(&two.array, x.data(), 5, 0, kNotGiven, kNotGiven));
    EXPECT_EQ(two[1], out[1]);
}

TEST(EntryPoints, CheckTheSourceBeforeTheOutput) {
    SAFEARRAY* none = nullptr;
    const double x = 1;
    EXPECT_FALSE(PralNormalFitPVB_Core(&none, &x, 0, 0, kNotGiven, kNotGiven));
    EXPECT_STREQ(PralCoreError(), "Error: source array is not valid");
    EXPECT_FALSE(PralNormalFitVB_Core(&none, nullptr, 3, 0, kNotGiven, kNotGiven, 0.5));
    EXPECT_STREQ(PralCoreError(), "Error: source array is not valid");
    EXPECT_FALSE(PralNormalFitVB_Core(&none, &x, 1, 0, kNotGiven, kNotGiven, 0.5));
    EXPECT_STREQ(PralCoreError(), "Error: Output array is not valid");
}

TEST(EntryPoints, DataOutsideTheBoundsFailSilentlyInFit) {
    const Values x = {1, 2, 3};
    Values out(2);
    PralSetCoreError("as before");
    EXPECT_FALSE(PralGammaFit_Core(out.data(), x.data(), 3, nullptr, 1.5, kNotGiven, 0.5, 2, nullptr, false));
    EXPECT_FALSE(PralGammaFit_Core(out.data(), x.data(), 3, nullptr, kNotGiven, 2.5, 0.5, 2, nullptr, false));
    EXPECT_STREQ(PralCoreError(), "as before");
    EXPECT_EQ(out, Values(2, 0));
    EXPECT_FALSE(
        PralGammaFit_Core(out.data(), x.data(), 3, nullptr, kNotGiven, kNotGiven, 1.5, 2, nullptr, false));
    EXPECT_STREQ(PralCoreError(), "Error: U must be between [0,1]");
    EXPECT_TRUE(PralGammaFit_Core(out.data(), x.data(), 3, nullptr, 0.5, 3.5, 0, 2, nullptr, false));
    EXPECT_EQ(out, Values(2, 0.5));  // the values are truncated like the data
}

TEST(EntryPoints, ReplicatesDifferAndFitsDoNot) {
    Values x(50), first(2), second(2);
    for (std::size_t i = 0; i < x.size(); ++i) x[i] = std::exp(std::sin(static_cast<double>(i)));
    const auto fit = [&](Values& out, int uncertainty) {
        ASSERT_TRUE(PralGammaFitP_Core(out.data(), 2, x.data(), 50, &uncertainty, kNotGiven, kNotGiven,
                                       nullptr, 0, 0, nullptr, false));
    };
    fit(first, 0), fit(second, 0);
    EXPECT_EQ(first, second);
    fit(first, 1), fit(second, 1);
    EXPECT_NE(first, second);
}

TEST(EntryPoints, EndAtTheTimeout) {
    const Values x = {0.3, 1, 2, 4};
    Values out(2);
    PralSetFitTimeout(0);
    EXPECT_FALSE(PralLogisticFitP_Core(out.data(), 2, x.data(), 4, nullptr, kNotGiven, kNotGiven, nullptr, 0,
                                       0, nullptr, false));
    EXPECT_STREQ(PralCoreError(), "Error: Unable to fit from selected data array");
    EXPECT_EQ(out, Values(2, -DBL_MAX));
    PralSetFitTimeout(60);
    EXPECT_TRUE(PralLogisticFitP_Core(out.data(), 2, x.data(), 4, nullptr, kNotGiven, kNotGiven, nullptr, 0,
                                      0, nullptr, false));
}

/// Another thread's fit is refused while one is running, and does not disturb it.
TEST(EntryPoints, FitsThatOverlapAreRefused) {
    Values x(400), alone(3), beside(3), other(2);
    PralSetRandomSeed(8);
    ASSERT_TRUE(PralNCFArray_Core(x.data(), 400, 5, 12, 3, nullptr, nullptr, nullptr, nullptr, nullptr));
    std::atomic<bool> running = true;
    std::thread first([&] {
        // The other thread's fits may come first.
        while (!PralNCFFitP_Core(beside.data(), 3, x.data(), 400, nullptr, kNotGiven, kNotGiven, nullptr, 0,
                                 0, "beside another", false) &&
               PralCoreError() == std::string("Error: another fit is running, and calls must not overlap"))
            std::this_thread::yield();
        running = false;
    });
    int refused = 0;
    const Values few = {1, 2, 4, 8};
    while (running) {
        other = {7, 7};
        if (PralGammaFitP_Core(other.data(), 2, few.data(), 4, nullptr, kNotGiven, kNotGiven, nullptr, 0, 0,
                               nullptr, false))
            continue;
        ++refused;
        EXPECT_STREQ(PralCoreError(), "Error: another fit is running, and calls must not overlap");
        EXPECT_EQ(other, Values(2, -DBL_MAX));
    }
    first.join();
    EXPECT_GT(refused, 0);
    ASSERT_TRUE(PralNCFFitP_Core(alone.data(), 3, x.data(), 400, nullptr, kNotGiven, kNotGiven, nullptr, 0, 0,
                                 "alone", false));
    EXPECT_EQ(beside, alone);
}

TEST(EntryPoints, AFailureLeavesNoHalfOfAResult) {
    const Values none = {-1, std::nan(""), 2};
    for (const Entry& family : kEntries) {
        double shift = 0.25;
        Values out(9, 7);
        int length = 0;
        if (family.parameters == nullptr) continue;
        do {
            PralSetCoreError("");
            EXPECT_FALSE(family.parameters(out.data(), ++length, none.data(), 3, nullptr, kNotGiven,
                                           kNotGiven, &shift, 0, 0, nullptr, false))
                << family.name;
        } while (std::string(PralCoreError()).starts_with("Error: Output array length"));
        EXPECT_EQ(shift, 0.25) << family.name;
        for (int i = 0; i < 9; ++i)
            EXPECT_EQ(out[static_cast<std::size_t>(i)], i < length ? -DBL_MAX : 7) << family.name;
        std::fill_n(out.begin(), 2, 7.0);
        EXPECT_FALSE(
            family.values(out.data(), none.data(), 3, nullptr, kNotGiven, kNotGiven, 0.5, 2, nullptr, false));
        EXPECT_EQ(out[0], 0) << family.name;
        EXPECT_EQ(out[1], 0) << family.name;
    }
}

TEST(EntryPoints, TheLikelihoodTakesRealCounts) {
    const Values x = {3, 1, 2, 4}, parameters = {5.5, 0.5}, three = {0, 1, 3.5};
    double natural = 0, base10 = 0;
    ASSERT_TRUE(PralFitLogLikelihood_Core(&natural, "Binomial", parameters.data(), 2, x.data(), 4, kNotGiven,
                                          kNotGiven, nullptr));
    Values copy = x;
    ASSERT_TRUE(PralBinomialProb10_Core_for_fit(&base10, copy.data(), 4, 5.5, 0.5, nullptr, nullptr, nullptr,
                                                nullptr, nullptr));
    EXPECT_NEAR(natural, base10 * std::log(10.0), 1e-12);
    EXPECT_FALSE(PralBinomialProb10_Core(&base10, copy.data(), 4, 5.5, 0.5, nullptr, nullptr, nullptr,
                                         nullptr, nullptr));
    EXPECT_TRUE(PralFitLogLikelihood_Core(&natural, "Student3", three.data(), 3, x.data(), 4, kNotGiven,
                                          kNotGiven, nullptr));
    EXPECT_FALSE(PralFitLogLikelihood_Core(&natural, "PERT", three.data(), 3, x.data(), 4, kNotGiven,
                                           kNotGiven, nullptr));
    EXPECT_STREQ(PralCoreError(), "Error: there is no fit of PERT");
}

/// The empirical distribution, and its weighting: the share of a value in many draws of weights is on average its share.
TEST(EntryPoints, DiscreteIsTheDistributionOfTheData) {
    const Values x = {5, 1, 5, 2};
    Values out(3);
    ASSERT_TRUE(
        PralDiscreteFit_Core(out.data(), x.data(), 4, nullptr, kNotGiven, kNotGiven, 0.5, 3, nullptr, false));
    EXPECT_EQ(out, Values(3, 2));
    EXPECT_FALSE(
        PralDiscreteFit_Core(out.data(), x.data(), 4, nullptr, 2, kNotGiven, 0.5, 3, nullptr, false));
    const auto share_of_5 = [&](int uncertainty) {
        double p = 0, value = 5;
        EXPECT_TRUE(PralDiscreteFitProb_Core(&p, &value, 1, x.data(), 4, &uncertainty, nullptr, nullptr,
                                             nullptr, nullptr, nullptr));
        return p;
    };
    EXPECT_EQ(share_of_5(0), 0.5);
    PralSetRandomSeed(1);
    const int kDraws = 4000;
    double sum = 0, squares = 0;
    for (int i = 0; i < kDraws; ++i) {
        const double p = share_of_5(1);
        sum += p;
        squares += (p - 0.5) * (p - 0.5);
    }
    EXPECT_NEAR(sum / kDraws, 0.5, 4 * std::sqrt(0.05 / kDraws));  // a Beta(2, 2) variable
    EXPECT_NEAR(squares / kDraws, 0.05, 0.005);
    double log10 = 0;
    Values both = {5, 1};
    ASSERT_TRUE(PralDiscreteFitProb10_Core(&log10, both.data(), 2, x.data(), 4, nullptr, nullptr, nullptr,
                                           nullptr, nullptr, nullptr));
    EXPECT_NEAR(log10, std::log10(0.125), 1e-15);
}

}  // namespace
