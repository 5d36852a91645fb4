// The forms that families have in classic calls: what they draw, and in what they differ from the families themselves.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstdio>
#include <vector>

#include "classic/core_api.h"
#include "classic/variants.h"
#include "distributions/truncated.h"
#include "support/chi_square.h"

namespace {

using namespace pral;
using pral::classic::Form;

/// `counted_below` is what the cumulative at negative values tells of zeros.
template <class D>
void expect_fits(const char* name, const D& d, double counted_below = 0) {
    RandomStream stream;
    stream.seed(20240611);
    std::vector<double> sample(20000);
    const classic::Kept<D> kept(d, true, {});
    for (double& value : sample) {
        const double u = stream.uniform();
        if constexpr (requires { kept.random(stream); })
            value = kept.random(stream);
        else
            value = d.random(u, stream);
    }
    const double p = test::chi_square_p_value(
        sample, [&](double k) { return tails(d, k).lower - (k < 0 ? counted_below : 0); });
    std::printf("%-20s p = %.3f\n", name, p);
    EXPECT_GT(p, 1e-3) << name;
    EXPECT_LT(p, 1 - 1e-3) << name;
}

TEST(Forms, GeneratorsOfBareCallsHaveTheirDistribution) {
    expect_fits("Skellam", Form<Skellam>(3.5, 8));
    expect_fits("BurntFingerPoisson", Form<BurntFingerPoisson>(1.5, 0.75));
    expect_fits("BurntFingerPoisson", Form<BurntFingerPoisson>(2, 2));
    expect_fits("PoissonUniform", Form<PoissonUniform>(2, 9));
    expect_fits("ZIPoisson", Form<ZIPoisson>(3, 0.7));
    expect_fits("ZISkellam", Form<ZISkellam>(3.5, 8, 0.4), 0.6);
    expect_fits("ZIHypergeo", Form<ZIHypergeo>(20, 30, 100, 0.9));
    expect_fits("ZIBetaGeometric", Form<ZIBetaGeometric>(3, 4, 0.25));
}

/// The call's own uniform is spent first; what is nested draws afresh.
TEST(Forms, BareCallsDrawInTheirOrder) {
    double out, u[4], first, second;
    const auto draws = [&] {
        RandomStream stream;
        stream.seed(7);
        for (double& value : u) value = stream.uniform();
        PralSetRandomSeed(7);
    };
    draws();
    ASSERT_TRUE(PralSkellam_Core(&out, 30, 20, nullptr, nullptr, nullptr, nullptr, nullptr));
    PralPoisson_Core(&first, 30, &u[1], nullptr, nullptr, nullptr, nullptr);
    PralPoisson_Core(&second, 20, &u[2], nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(out, first - second);
    draws();
    ASSERT_TRUE(PralPoissonUniform_Core(&out, 30, 50, nullptr, nullptr, nullptr, nullptr, nullptr));
    PralPoisson_Core(&first, 30 + 20 * u[1], &u[2], nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(out, first);
    draws();
    ASSERT_TRUE(PralBurntFingerPoisson_Core(&out, 40, 30, nullptr, nullptr, nullptr, nullptr, nullptr));
    PralExpon_Core(&first, 1.0 / 40, &u[1], nullptr, nullptr, nullptr, nullptr);
    PralPoisson_Core(&second, (1 - first) * 30, &u[2], nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(out, first < 1 ? 1 + second : 0);
    // Equal rates: the Poisson's call, its rounding after the shift included.
    draws();
    const double shift = 0.75;
    ASSERT_TRUE(PralBurntFingerPoisson_Core(&out, 9000, 9000, nullptr, nullptr, nullptr, nullptr, &shift));
    PralPoisson_Core(&first, 9000, &u[0], nullptr, nullptr, nullptr, &shift);
    EXPECT_EQ(out, first);
}

TEST(Forms, BurntFingerEndsAtItsLastPercentile) {
    const Form<BurntFingerPoisson> d(3, 2);
    EXPECT_EQ(d.quantile(0.99999999999999), DBL_MAX);
    EXPECT_LT(d.quantile(std::nextafter(0.99999999999999, 0)), 40);
    EXPECT_EQ(Form<BurntFingerPoisson>(3, 3).quantile(0.999999999999999),
              Poisson(3).quantile(0.999999999999999));
}

/// Percentiles and least integers that reach them, by exact sums (mpmath), on the far side of each short cut, and what the
/// classic calls have in their place.
TEST(Forms, FamiliesThemselvesTakeNoShortCuts) {
    EXPECT_EQ(Poisson(5000.5).quantile(1e-12), 4511);
    EXPECT_EQ(Form<Poisson>(5000.5).quantile(1e-12), 4515);
    EXPECT_EQ(Binomial(1111112, 0.1).quantile(0.999), 112090);
    EXPECT_EQ(Form<Binomial>(1111112, 0.1).quantile(0.999), 112088);
    EXPECT_EQ(NegBin(3, 0.0099).quantile(0.001), 18);
    EXPECT_EQ(Form<NegBin>(3, 0.0099).quantile(0.001), 19);
    EXPECT_EQ(NegBin(8334, 0.25).quantile(0.001), 24035);
    EXPECT_EQ(Form<NegBin>(8334, 0.25).quantile(0.001), 24025);
    EXPECT_EQ(Geometric(0.5).quantile(1 - 0x1.8p-40), 39);
    EXPECT_EQ(Form<Geometric>(0.5).quantile(1 - 0x1.8p-40), DBL_MAX);
    EXPECT_EQ(ZTPoisson(5000.5).quantile(1e-12), 4511);
    EXPECT_EQ(Form<ZTPoisson>(5000.5).quantile(1e-12), 4515);
    EXPECT_EQ(ZIPoisson(5000.5, 0.5).quantile(0.5 + 0.5e-12), 4511);
    EXPECT_EQ(Form<ZIPoisson>(5000.5, 0.5).quantile(0.5 + 0.5e-12), 4515);
}

/// Below 0 a zero-inflated family has the share of its count, and bounds leave extra zeros out.
TEST(Forms, FamiliesThemselvesHaveTheirZerosAtZero) {
    const ZISkellam plain(2, 3, 0.6);
    const Form<ZISkellam> form(2, 3, 0.6);
    const double below = 0.6 * Skellam(2, 3).cumulative(-1);
    EXPECT_DOUBLE_EQ(plain.cumulative(-1), below);
    EXPECT_DOUBLE_EQ(plain.survival(-1), 1 - below);
    EXPECT_DOUBLE_EQ(form.cumulative(-1), below + 0.4);
    for (double k = -6; k <= 5; ++k) {
        const double p = plain.cumulative(k), q = plain.survival(k);
        EXPECT_EQ(plain.quantile(p - 1e-9), k);
        EXPECT_EQ(plain.quantile(p + 1e-9), k + 1);
        EXPECT_EQ(plain.quantile_upper(q + 1e-9), k);
        EXPECT_EQ(plain.quantile_upper(q - 1e-9), k + 1);
    }
    const ZIPoisson count(3.5, 0.3);
    const Truncated<ZIPoisson> kept(count, true, {2, 9, false, false, true});
    for (const double u : {1e-9, 0.3, 0.69, 0.9, 1 - 1e-9}) {
        EXPECT_GE(kept.quantile(u), 2) << u;
        EXPECT_LE(kept.quantile(u), 9) << u;
    }
}

/// Arrays of which some or all percentiles lie beyond the last one.
TEST(Forms, ArraysBeyondTheLastPercentile) {
    constexpr int kCount = 1000, kByPercentile = 3;
    const double high = 1;
    for (const double low : {0.999999, 0.99999989, 0.99999995}) {
        const double u = low + 0.5 * (1 - low);
        double array[kCount], one;
        PralSetRandomSeed(5);
        ASSERT_TRUE(
            PralNegBinArray_Core(array, kCount, 3, 0.5, nullptr, &kByPercentile, &low, &high, nullptr))
            << PralCoreError();
        PralSetRandomSeed(5);
        for (const double value : array) {
            ASSERT_TRUE(PralNegBin_Core(&one, 3, 0.5, nullptr, &kByPercentile, &low, &high, nullptr));
            EXPECT_EQ(value, one);
        }
        ASSERT_TRUE(PralNegBin_Core(&one, 3, 0.5, &u, nullptr, nullptr, nullptr, nullptr));
        EXPECT_EQ(one == DBL_MAX, u > 0.9999999);
    }
}

/// Percentiles 0 and 1 are the ends that the parameters and the bounds leave, any other gives the point mass.
TEST(Forms, EndsComeBeforePointMasses) {
    constexpr int kByValue = 0;
    const double low = 6, high = 8;
    const struct {
        double u, bernoulli, uniform, pert;
    } rows[] = {{0, 0, 6, 6}, {0.5, 1, 5, 5}, {1, 1, 5, 5}};
    for (const auto& [u, bernoulli, uniform, pert] : rows) {
        double out;
        ASSERT_TRUE(PralBernoulli_Core(&out, 1, &u, nullptr, nullptr, nullptr, nullptr));
        EXPECT_EQ(out, bernoulli) << u;
        ASSERT_TRUE(PralUniform_Core(&out, 5, 5, &u, &kByValue, &low, &high, nullptr));
        EXPECT_EQ(out, uniform) << u;
        ASSERT_TRUE(PralPERT_Core(&out, 5, 5, 5, &u, &kByValue, &low, &high, nullptr));
        EXPECT_EQ(out, pert) << u;
    }
    EXPECT_EQ(quantile(Bernoulli(1), 0.5), 1);
}

/// Counts between two values: both are kept, where a classic call takes the lower one's own probability off.
TEST(Forms, FamiliesThemselvesKeepBothBounds) {
    const Poisson count(3.5);
    const auto mass = [&](double k) { return std::exp(count.log_density(k)); };
    for (const double min : {2.0, 1.25, 2 + 1e-9}) {
        const Truncated<Poisson> kept(count, true, {min, 5, false, false, true});
        const double all = mass(2) + mass(3) + mass(4) + mass(5);
        EXPECT_NEAR(std::exp(kept.log_mass()), all, 1e-15) << min;
        EXPECT_NEAR(kept.cumulative(2), mass(2) / all, 1e-15) << min;
        EXPECT_EQ(kept.quantile(1e-9), 2) << min;
        const Truncated<Poisson> classic(count, true, {min, 5, false, false, true, classic::kAboveMin});
        EXPECT_NEAR(std::exp(classic.log_mass()), all - (min == 1.25 ? 0 : mass(2)), 1e-15) << min;
    }
    // So far out that the mass is a sum of masses.
    const Truncated<Poisson> far(count, true, {400, 401, false, false, true});
    EXPECT_NEAR(far.log_mass(), count.log_density(400) + std::log1p(3.5 / 401), 1e-12 * 2000);
}

}  // namespace
