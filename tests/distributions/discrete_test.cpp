// What is special among the families on the integers: exact hits of a percentile, large parameters against closed forms, and
// tables against single inversions where they have recurrences of their own.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstdio>
#include <typeinfo>
#include <utility>
#include <vector>

#include "distributions/families.h"
#include "distributions/sample.h"

namespace {

using namespace pral;

TEST(Discrete, ExactHitsFollowTheDirectionOfTheWalk) {
    EXPECT_EQ(Hypergeo(1, 1, 2).quantile(0.5), 0);  // the start itself
    EXPECT_EQ(Hypergeo(3, 3, 6).quantile(0.5), 1);  // from below: F(1) = 1/2 stops the walk
    EXPECT_EQ(Hypergeo(3, 3, 6).quantile(0.5 + 0x1p-53), 2);
    EXPECT_EQ(Hypergeo(3, 3, 6).quantile(0.5 - 0x1p-54), 1);
    EXPECT_EQ(Hypergeo(501, 1001, 2002).quantile(0.5), 250);  // by symmetry
    // From above, a hit is passed: the walk ends below it.
    struct Above : Hypergeo {
        using Hypergeo::Hypergeo;
        double start(double) const { return 3; }
    };
    const Above above(3, 3, 6);
    EXPECT_EQ(InversionWalk<Above>(above, 0.5)(), 2);
    EXPECT_EQ(InvHypergeo(1, 1, 8).quantile(0.375), 2);  // uniform on 0 .. 7, F(2) = 3/8: the start itself
    EXPECT_EQ(HypergeoD(0, 0, 7).quantile(0.375), 2);    // the smallest k with F(k) >= u
    EXPECT_EQ(HypergeoD(0, 0, 7).quantile(0.375 + 0x1p-54), 3);
}

/// A percentile that equals a cumulative probability, as exact arithmetic has it: the start of the walk stays there, a walk
/// from below goes on, unless the family stops at the first k with F(k) >= u. Odd denominators are those of correctly
/// rounded quotients.
TEST(Discrete, ExactHitsDoNotDependOnRounding) {
    for (double n = 1; n < 200; n += 2) {  // F = 1/2 by symmetry, where the starts are
        const double k = (n - 1) / 2;
        EXPECT_EQ(Binomial(n, 0.5).quantile(0.5), k) << n;
        EXPECT_EQ(Binomial(n, 0.5).quantile(0.5 + 0x1p-53), k + 1) << n;
        EXPECT_EQ(Binomial(n, 0.5).cumulative(k), 0.5);
        EXPECT_EQ(NegBin(k + 1, 0.5).cumulative(k), 0.5);
        EXPECT_EQ(NegBin(k + 1, 0.5).quantile(0.5), k) << n;
        EXPECT_EQ(NegBin(k + 1, 0.5).quantile(0.5 - 0x1p-54), k) << n;
        EXPECT_EQ(Polya(k + 1, 1).survival(k), 0.5);
        EXPECT_EQ(BetaBinomial(n, 1, 1).quantile(0.5), k) << n;
        EXPECT_EQ(BetaBinomial(n, 0.3, 0.3).quantile(0.5), k) << n;
        EXPECT_EQ(BetaNegBin(k + 1, 3, 3).cumulative(k), 0.5);
    }
    // The sums of C(n, j) a^j b^(n - j), and what is left of them.
    EXPECT_EQ(Binomial(53, 0.5).cumulative(20), 0x1p-53 * 443022015660793);
    EXPECT_EQ(Binomial(60, 0.5).survival(57), 0x1p-60 * (1770 + 60 + 1));
    EXPECT_EQ(Binomial(5, 0.1875).cumulative(1), 0x1p-20 * (371293 + 5 * 28561 * 3));
    EXPECT_EQ(Binomial(1, 0.9).cumulative(0), 1 - 0.9);
    EXPECT_EQ(Binomial(2, 0.25).quantile(0.5625), 0);
    EXPECT_EQ(NegBin(3, 0.25).cumulative(2), 0x1p-10 * 106);
    EXPECT_EQ(Geometric(0.25).survival(2), 0x1p-6 * 27);
    for (const double tenth : {1.0, 2.0, 3.0, 4.0, 5.0}) {
        EXPECT_EQ(BetaBinomial(9, 1, 1).cumulative(tenth - 1), tenth / 10);
        EXPECT_EQ(BetaBinomial(9, 1, 1).quantile(tenth / 10), tenth - 1);
    }
    EXPECT_EQ(BetaBinomial(3, 2, 1).cumulative(1), 0.3);  // masses 1, 2, 3, 4 of 10
    EXPECT_EQ(BetaNegBin(2, 1, 1).cumulative(2), 0.6);    // (k + 1)/(k + 3)
    EXPECT_EQ(BetaGeometric(1, 1).quantile(0.75), 2);     // F(k) = (k + 1)/(k + 2)
    const struct {
        double p, u, value;
    } bernoulli[] = {{0.9, 0.1, 0}, {0.8, 0.2, 0}, {0.55, 0.45, 0}, {0.9, 0.1 + 0x1p-53, 1}, {0.1, 0.9, 1}};
    for (const auto& [p, u, value] : bernoulli) {  // 0 when p <= 1 - u
        EXPECT_EQ(Bernoulli(p).quantile(u), value) << p << ' ' << u;
        std::vector<double> many(400, u);
        Bernoulli(p).quantiles(many);
        EXPECT_EQ(many, std::vector<double>(400, value)) << p << ' ' << u;
    }
}

/// mpmath, as 1 less the sum of the first masses to 140 digits: where s is not whole a and k + 1 change places.
TEST(Discrete, UpperTailsOfBetaNegBinWithRealCounts) {
    const struct {
        double s, a, b, k, upper;
    } rows[] = {{0.5, 0.75, 0.875, 40, 0.028108879701960158},
                {3.25, 4.5, 0.75, 40, 2.2502443612951829e-5},
                {50.5, 4.25, 0.75, 40, 0.055402317903760022},
                {2.25, 45, 1.5, 1000, 3.0944410660231421e-77}};
    for (const auto& [s, a, b, k, upper] : rows)
        EXPECT_NEAR(BetaNegBin(s, a, b).survival(k), upper, 4e-14 * upper) << s << ' ' << a << ' ' << b;
}

/// How often each integer occurs.
using Occurrences = std::vector<std::pair<double, int>>;

template <class D>
void expect_sum_of_single_ones(const D& d, const Occurrences& occurrences) {
    std::vector<double> values;
    double sum = 0;
    for (const auto& [value, times] : occurrences) {
        values.insert(values.end(), static_cast<std::size_t>(times), value);
        sum += times * d.log_density(value);
    }
    ASSERT_TRUE(std::isfinite(sum)) << typeid(D).name();
    EXPECT_NEAR(log_likelihood(d, Sample(values)), sum, 1e-14 * std::fabs(sum)) << typeid(D).name();
}

/// Where ratios of masses overflow, vanish or only take back what the first mass has, where a recurrence would begin with
/// a mass that has lost its digits, where zeros have nearly all of a likelihood, and where integers have no neighbours.
TEST(Discrete, JointProbabilitiesAreSumsOfSingleOnes) {
    expect_sum_of_single_ones(BurntFingerPoisson(720, 5), {{0, 1}, {5, 31}});
    expect_sum_of_single_ones(Poisson(1e-6), {{0, 31}, {60, 1}});
    expect_sum_of_single_ones(Binomial(112, 0.9999977), {{48, 1}, {50, 1}, {60, 1}, {112, 300000}});
    expect_sum_of_single_ones(Skellam(5, 4), {{-190, 1}, {-2, 10}, {0, 10}, {1, 9}, {2, 3}, {252, 1}});
    expect_sum_of_single_ones(
        Delaporte(2, 3, 4), {{2, 40}, {3, 4}, {5, 3}, {2520, 1}, {2521, 1}, {4090, 1}, {4092, 1}, {9000, 1}});
    expect_sum_of_single_ones(Delaporte(20, 300, 4000), {{2, 1}, {7990, 9}, {8000, 9}, {8005, 9}, {8010, 9}});
    expect_sum_of_single_ones(ZIPoisson(1e10, 0.5), {{0, 1000000}, {1e10, 1}, {1e10 + 7, 1}});
    expect_sum_of_single_ones(ZISkellam(4, 5, 0.5), {{-2, 9}, {-1, 9}, {0, 900}, {1, 9}, {2, 9}});
    expect_sum_of_single_ones(ZILogarithmic(0.5, 0.5), {{0, 30}, {1, 9}, {3, 2}});
    expect_sum_of_single_ones(Poisson(1e17), {{1e17, 12}, {1e17 + 16, 12}, {1e17 + 32, 12}});
    expect_sum_of_single_ones(Skellam(1e17, 3), {{1e17, 9}, {1e17 + 16, 9}, {1e17 + 32, 9}, {1e17 + 48, 9}});
}

/// Recurrences that begin, or pass, where masses are below the range of doubles.
TEST(Discrete, MassesOfFarTailsKeepTheirDigits) {
    const auto expect_masses = [](const auto& d, double first, std::size_t size) {
        std::vector<double> masses(size);
        d.masses(first, masses);
        for (std::size_t i = 0; i < size; i += 29) {
            const double exact = std::exp(d.log_density(first + static_cast<double>(i)));
            EXPECT_NEAR(masses[i], exact, 1e-12 * exact + DBL_MIN) << i;
        }
    };
    const Delaporte small_counts(2, 3, 4);
    for (const double k : {2500.0, 4090.0})
        EXPECT_NEAR(small_counts.mass_ratio(k),
                    std::exp(small_counts.log_density(k + 1) - small_counts.log_density(k)), 1e-12);
    expect_masses(Skellam(5, 4), -260, 520);
    expect_masses(Skellam(900, 2), -50, 1500);
    expect_masses(Delaporte(20, 300, 4000), 2, 4000);  // up to the mode and beyond, from 1e-1600
    expect_masses(Delaporte(200, 30, 40000), 39000, 4000);
}

/// Closed forms where the sums are long: uniform distributions, and 1/C(M, 2) whose sum telescopes.
TEST(Discrete, LongSumsHaveTheirClosedForms) {
    double worst = 0;
    const auto expect = [&](double actual, double exact) {
        worst = std::max(worst, std::fabs(actual - exact) / exact);
        EXPECT_NEAR(actual, exact, 1e-12 * exact);
    };
    for (const double M : {1e6, 1e9, 1e15, 1e300}) {
        for (const double part : {1e-5, 0.25, 0.875}) {
            const double k = std::floor(part * M);
            expect(InvHypergeo(1, 1, M).cumulative(k), (k + 1) / M);
            expect(HypergeoD(0, 0, M).survival(k), (M - k) / (M + 1));
            const HypergeoM pairs(2, 2, 2, M);  // f(x) ~ 1/(x (x - 1)), summed from 2: 1 - 1/x
            expect(pairs.cumulative(k), (1 - 1 / k) / (1 - 1 / M));
            expect(pairs.survival(k), (M - k) / k / M / (1 - 1 / M));
            if (M == 1e6) expect(pairs.quantile(1 - 1 / (k + 0.5)), std::ceil(M * (k + 0.5) / (M + k - 0.5)));
        }
        // Half of the items drawn, half marked: the median by symmetry, and its mass from Stirling's series.
        const double half = M / 2, k = M / 4;
        const double mass = std::sqrt(8 / (M * numerics::kPi)) * (1 - 0.75 / M);
        if (M == 1e6)
            expect(Hypergeo(half, half, M).cumulative(k),
                   0.5 + 0.5 * std::exp(Hypergeo(half, half, M).log_density(k)));
        expect(std::exp(Hypergeo(half, half, M).log_density(std::floor(k))), mass);
    }
    // Negative binomial rates of both widths: Poisson with a rate between alpha beta = 1 and none.
    for (const double lambda : {1e4, 1e7, 1e9}) {
        const Delaporte both(lambda, 1e-14, lambda);
        const Poisson single(lambda * (1 + 1e-14));
        const double k = lambda + 3 * std::sqrt(lambda);
        EXPECT_NEAR(both.survival(std::floor(k)) / single.survival(std::floor(k)), 1, 1e-10);
    }
    std::printf("worst %.1e\n", worst);
}

template <class D>
void expect_table_equals_walk(const D& d) {
    RandomStream stream;
    stream.seed(5);
    std::vector<double> p(400);
    stream.fill(p);
    std::vector<double> values = p;
    d.quantiles(values);
    for (std::size_t i = 0; i < p.size(); ++i) ASSERT_EQ(values[i], d.quantile(p[i])) << p[i];
    for (double& q : p) q *= 1e-30;
    values = p;
    d.quantiles_upper(values);
    for (std::size_t i = 0; i < p.size(); ++i) ASSERT_EQ(values[i], d.quantile_upper(p[i])) << p[i];
}

TEST(Discrete, TablesEqualTheWalk) {
    expect_table_equals_walk(Skellam(500, 300));
    expect_table_equals_walk(Skellam(1e-3, 4000));
    expect_table_equals_walk(PoissonUniform(100, 900));
    expect_table_equals_walk(Delaporte(0.01, 50, 30));
    expect_table_equals_walk(Delaporte(400, 2, 0.001));
    expect_table_equals_walk(Delaporte(20000, 2, 30000));
    expect_table_equals_walk(InvHypergeo(3, 5, 4000));
    expect_table_equals_walk(BetaBinomial(1000, 0.25, 3));
    expect_table_equals_walk(ZTPoisson(40));
}

/// A family that counts how often it is asked for a tail.
template <class D>
struct Counted : D {
    using D::D;
    mutable int tails = 0;
    double cumulative(double k) const { return ++tails, D::cumulative(k); }
    double survival(double k) const { return ++tails, D::survival(k); }
};

template <class D, class... Parameters>
void expect_few_tails(Parameters... parameters) {
    constexpr int kFew = 40;
    for (const double p : {1e-300, 1e-20, 1e-3, 0.3, 0.7, 0.9999, 1 - 0x1p-53}) {
        const Counted<D> d(parameters...);
        const double k = InversionWalk<Counted<D>>(d, p)();
        EXPECT_LE(d.tails, kFew) << typeid(D).name() << " at " << p << ": " << k;
    }
}

/// Tails that are sums cost up to a millisecond: the search must not need many of them, wherever it begins.
TEST(Discrete, InversionsTakeFewTails) {
    expect_few_tails<BetaBinomial>(1e18, 2.5, 1e-9);
    expect_few_tails<BetaBinomial>(1e16, 1e-100, 1e6);
    expect_few_tails<BetaBinomial>(1e153, 1e-300, 1.0);
    expect_few_tails<BetaBinomial>(1e300, 1.0, 1e153);
    expect_few_tails<BetaBinomial>(1.7e308, 1.7e308, 0.9);
    expect_few_tails<BetaNegBin>(3.0, 1e-20, 1e-9);
    expect_few_tails<BetaNegBin>(1e15, 1.0, 1e15);
    expect_few_tails<Delaporte>(300.0, 300.0, 3000.0);
    expect_few_tails<Delaporte>(1e5, 1e5, 1e12);
    expect_few_tails<Delaporte>(0.01, 1e16, 9e15);
    expect_few_tails<HypergeoM>(9.0, 1e12, 9.0, 1e15);
    expect_few_tails<HypergeoM>(1.0, 2.0, 9.0, 1e300);
}

}  // namespace
