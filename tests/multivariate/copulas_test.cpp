// Copulas: statistics of a seeded stream, the cases that are their own, messages, hostile arguments.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <functional>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include "boundary/automation.h"
#include "boundary/core_api.h"
#include "multivariate/sample_statistics.h"
#include "support/table.h"

namespace {

using pral::test::closeness;
using pral::test::coordinate;
using pral::test::Values;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr int kSamples = 20000;

using Sampler = std::function<bool(double* out, int size, int samples)>;

Sampler clayton(double alpha) {
    return [=](double* out, int size, int n) { return PralCopulaMultiClayton_Core(out, size, alpha, n); };
}
Sampler gumbel(double theta) {
    return [=](double* out, int size, int n) { return PralCopulaMultiGumbel_Core(out, size, theta, n); };
}
Sampler frank(double theta) {
    return [=](double* out, int size, int n) { return PralCopulaMultiFrank_Core(out, size, theta, n); };
}
Sampler normal(Values corr, int d) {
    return [=](double* out, int size, int n) mutable {
        return PralCopulaMultiNormal_Core(out, size, corr.data(), d, n);
    };
}
Sampler student(double nu, Values corr, int d) {
    return [=](double* out, int size, int n) mutable {
        return PralCopulaMultiT_Core(out, size, nu, corr.data(), d, n);
    };
}
/// Pairs, one call each.
Sampler pairs(std::function<bool(double*)> one) {
    return [=](double* out, int, int n) {
        bool all = true;
        for (int i = 0; i < n; ++i) all = one(out + 2 * i) && all;
        return all;
    };
}

/// tau of the elliptical copulas: 2 asin(rho)/pi.
double elliptical_tau(double rho) { return 2 * std::asin(rho) / M_PI; }

/// What is unknown about a copula, or not looked at.
constexpr double kAny = -1;

// The tail dependence that finite samples show lies near P(U2 < q | U1 < q) at q = 0.01, known for each copula.
double clayton_corner(double a) { return std::pow(2 * std::pow(0.01, -a) - 1, -1 / a) / 0.01; }
double gumbel_corner(double t) { return 1 / 0.01 * (2 * 0.01 - 1 + std::pow(0.99, std::pow(2, 1 / t))); }

TEST(Copulas, SamplesShowTheCopula) {
    const Values corr3 = {1, 0, 0, 0.5, 1, 0, -0.25, 0.25, 1};
    const struct {
        const char* name;
        int d;
        Sampler sampler;
        double tau;  // of the first and the last coordinate
        double lower = kAny, upper = kAny;
    } rows[] = {
        {"Clayton 2", 3, clayton(2), 0.5, clayton_corner(2)},
        {"Clayton 36", 4, clayton(36), 36.0 / 38, clayton_corner(36)},
        {"Clayton 1e-12", 2, clayton(1e-12), 0, 0.01},
        {"Clayton -2", 2, clayton(-2), -0.5},
        {"Clayton 0", 5, clayton(0), 0, 0.01, 0.01},
        {"Gumbel 1", 2, gumbel(1), 0, 0.01, 0.01},
        {"Gumbel 1.0000000001", 3, gumbel(1.0000000001), 0, 0.01, 0.01},
        {"Gumbel 2", 5, gumbel(2), 0.5, kAny, gumbel_corner(2)},
        {"Gumbel 36", 3, gumbel(36), 35.0 / 36, kAny, gumbel_corner(36)},
        {"Gumbel -3", 2, gumbel(-3), -2.0 / 3},
        {"Frank 5.04", 3, frank(5.04), 0.45920194785161071568},
        {"Frank 34.92", 2, frank(34.92), 0.89084831461225134933},
        {"Frank -18", 2, frank(-18), -0.79808560219109394002},
        {"Frank 1e-15", 2, frank(1e-15), 0, 0.01, 0.01},
        {"Normal -0.25", 3, normal(corr3, 3), elliptical_tau(-0.25)},
        {"Normal 0.7 for pairs", 2, normal({0.7}, 1), elliptical_tau(0.7)},
        {"Normal of rank 1", 3, normal({1, -1, 1, -1, 1, -1, 1, -1, 1}, 3), 1},
        {"Normal of rank 2", 3, normal({1, 1, 0.5, 1, 1, 0.5, 0.5, 0.5, 1}, 3), elliptical_tau(0.5)},
        {"T 4", 3, student(4, corr3, 3), elliptical_tau(-0.25)},
        {"T 1, rho -1", 2, student(1, {-1}, 1), -1},
        {"T 200", 2, student(200, {1, 0.5, 0, 1}, 2), elliptical_tau(0.5)},
        {"BiNormal", 2, pairs([](double* out) { return PralCopulaBiNormal_Core(out, 2, 0.5); }),
         elliptical_tau(0.5)},
        {"BiNormal -1", 2, pairs([](double* out) { return PralCopulaBiNormal_Core(out, 2, -1); }), -1},
        {"BiT", 2, pairs([](double* out) { return PralCopulaBiT_Core(out, 2, 3, 0.5); }),
         elliptical_tau(0.5)},
        {"BiT -1", 2, pairs([](double* out) { return PralCopulaBiT_Core(out, 2, 3, -1); }), -1},
        {"BiClayton", 2, pairs([](double* out) { return PralCopulaBiClayton_Core(out, 2, 2, 1); }), 0.5,
         clayton_corner(2)},
        {"BiGumbel", 2, pairs([](double* out) { return PralCopulaBiGumbel_Core(out, 2, 2, 4); }), 0.5,
         gumbel_corner(2)},
        {"BiFrank", 2, pairs([](double* out) { return PralCopulaBiFrank_Core(out, 2, -5.04, 2); }),
         0.45920194785161},
    };
    for (const auto& row : rows) {
        Values samples(row.d * kSamples);
        PralSetRandomSeed(20);
        ASSERT_TRUE(row.sampler(samples.data(), row.d * kSamples, kSamples)) << row.name << PralCoreError();
        for (int j = 0; j < row.d; ++j) pral::test::expect_uniform(coordinate(samples, row.d, j), row.name);
        const Values first = coordinate(samples, row.d, 0), last = coordinate(samples, row.d, row.d - 1);
        EXPECT_NEAR(pral::test::kendall(first, last), row.tau, pral::test::tau_margin(kSamples)) << row.name;
        const double margin =
            5 * 0.5 / std::sqrt(0.01 * kSamples);  // five standard deviations of a share of 1 %
        if (row.lower != kAny) {
            EXPECT_NEAR(closeness(first, last, 0.01), row.lower, margin) << row.name;
        }
        if (row.upper != kAny) {
            EXPECT_NEAR(closeness(first, last, 0.99), row.upper, margin) << row.name;
        }
    }
}

/// The density of a t copula at its corners is far above the normal's: P(U2 < q | U1 < q) for nu = 1, rho = 0 is known.
TEST(Copulas, StudentHasTailDependence) {
    Values samples(2 * kSamples), corr = {1, 0, 0, 1};
    corr[1] = corr[2] = 0.5;
    PralSetRandomSeed(3);
    ASSERT_TRUE(PralCopulaMultiT_Core(samples.data(), 2 * kSamples, 1, corr.data(), 2, kSamples));
    const Values x = coordinate(samples, 2, 0), y = coordinate(samples, 2, 1);
    // 2 F(-sqrt((nu + 1)(1 - rho)/(1 + rho)); nu + 1), F of two degrees of freedom (1 + t/sqrt(2 + t^2))/2
    const double t = -std::sqrt(2 / 3.0), limit = 1 + t / std::sqrt(2 + t * t);
    EXPECT_NEAR(closeness(x, y, 0.005), limit, 5 * 0.5 / std::sqrt(0.005 * kSamples));
    EXPECT_NEAR(closeness(x, y, 0.995), limit, 5 * 0.5 / std::sqrt(0.005 * kSamples));
}

TEST(Copulas, DirectionsAndSignsMirrorCoordinates) {
    const struct {
        bool (*function)(double*, int, double, int);
        double parameter;
        int directions;
    } rows[] = {
        {PralCopulaBiClayton_Core, 3, 4}, {PralCopulaBiGumbel_Core, 3, 4}, {PralCopulaBiFrank_Core, 9, 2}};
    for (const auto& row : rows) {
        for (const double sign : {1.0, -1.0}) {
            double plain[2] = {};
            for (int direction = 1; direction <= row.directions; ++direction) {
                double out[2] = {};
                PralSetRandomSeed(4);
                ASSERT_TRUE(row.function(plain, 2, row.parameter, 1));
                PralSetRandomSeed(4);
                ASSERT_TRUE(row.function(out, 2, sign * row.parameter, direction));
                const double second = sign < 0 ? 1 - plain[1] : plain[1];
                EXPECT_EQ(out[0], direction % 2 == 0 ? 1 - plain[0] : plain[0]) << direction;
                EXPECT_EQ(out[1], direction >= 3 ? 1 - second : second) << direction;
            }
        }
    }
}

TEST(Copulas, OneCallAndManyTakeTheSameDraws) {
    const Values corr = {1, 0.5, 0.25, 0.5, 1, 0.5, 0.25, 0.5, 1};
    const Sampler samplers[] = {clayton(0.5), clayton(0),      gumbel(1.5),
                                frank(8),     normal(corr, 3), student(5, corr, 3)};
    for (std::size_t k = 0; k < std::size(samplers); ++k) {
        const int count = 3000;
        Values together(3 * count), one(3);
        PralSetRandomSeed(8);
        ASSERT_TRUE(samplers[k](together.data(), 3 * count, count));
        PralSetRandomSeed(8);
        for (int s = 0; s < count; ++s) {
            ASSERT_TRUE(samplers[k](one.data(), 3, 1));
            for (int j = 0; j < 3; ++j) ASSERT_NEAR(one[j], together[3 * s + j], 1e-12) << k << ' ' << s;
        }
    }
}

TEST(Copulas, Shortcuts) {
    Values out(6, -7), ones(9, 1);
    PralSetRandomSeed(5489);
    ASSERT_TRUE(PralCopulaMultiNormal_Core(out.data(), 6, ones.data(), 3, 2));
    const double first = (3499211612.0 + 0.5) * 0x1p-32;
    EXPECT_EQ(out, Values(6, first));
    double one = 1, next = 0;  // a single correlation of 1; then the second number of the stream
    PralSetRandomSeed(5489);
    ASSERT_TRUE(PralCopulaMultiT_Core(out.data(), 6, 2, &one, 1, 3));
    EXPECT_EQ(out, Values(6, first));
    ASSERT_TRUE(PralUniform_Core(&next, 0, 1, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(next, (581869302.0 + 0.5) * 0x1p-32);

    ASSERT_TRUE(PralCopulaBiNormal_Core(out.data(), 2, 1));
    EXPECT_EQ(out[0], out[1]);
    ASSERT_TRUE(PralCopulaBiNormal_Core(out.data(), 2, -1));
    EXPECT_EQ(out[0], 1 - out[1]);

    Values lower = {1, 0, 0.5, 1};
    ASSERT_TRUE(PralCopulaMultiNormal_Core(out.data(), 2, lower.data(), 2, 1));
    EXPECT_EQ(lower, (Values{1, 0.5, 0.5, 1}));

    Values nine(9, -7);
    ASSERT_TRUE(PralCopulaMultiClayton_Core(nine.data(), 9, 2, 2));  // four coordinates
    EXPECT_EQ(nine[8], -7);
    EXPECT_GT(nine[7], 0);
}

TEST(Copulas, EmpiricalCopulaKeepsObservationsAndFillsTheirCells) {
    // Three variables in columns; the second is tied, the third falls.
    const Values data = {1, 5, 9, 2, 5, 8, 3, 6, 7, 4, 7, 6};
    const double low[4][3] = {{0, 0, 0.75}, {0.25, 0, 0.5}, {0.5, 0.5, 0.25}, {0.75, 0.75, 0}};
    const int count = 20000;
    Values out(3 * count + 1, -7), transposed(12), again(3 * count);
    for (int i = 0; i < 12; ++i) transposed[i % 3 * 4 + i / 3] = data[i];
    for (const bool series : {false, true}) {
        const auto sample = series ? PralCopulaDataSeries_Core : PralCopulaData_Core;
        PralSetRandomSeed(1);
        ASSERT_TRUE(sample(out.data(), 3 * count + 1, data.data(), 4, 3, 0));
        EXPECT_EQ(out.back(), -7);
        PralSetRandomSeed(1);
        ASSERT_TRUE(sample(again.data(), 3 * count, transposed.data(), 3, 4, 1));
        EXPECT_TRUE(std::equal(again.begin(), again.end(), out.begin()));
        int before = -1;
        for (int s = 0; s < count; ++s) {
            const int at = static_cast<int>(4 * out[3 * s]);
            for (int j = 0; j < 3; ++j) {
                const double width = j == 1 && at < 2 ? 0.5 : 0.25, within = out[3 * s + j] - low[at][j];
                ASSERT_TRUE(within > 0 && within < width) << s << ' ' << j;
            }
            if (series && s > 0) {
                ASSERT_EQ(at, (before + 1) % 4);
            }
            before = at;
        }
        if (series) continue;
        for (int j = 0; j < 3; ++j) pral::test::expect_uniform(coordinate(again, 3, j), "empirical");
    }
}

using OneParameter = bool (*)(double*, int, double, int);
const std::map<std::string, OneParameter> kOneParameter = {
    {"BiClayton", PralCopulaBiClayton_Core},
    {"BiGumbel", PralCopulaBiGumbel_Core},
    {"BiFrank", PralCopulaBiFrank_Core},
    {"MultiClayton", PralCopulaMultiClayton_Core},
    {"MultiGumbel", PralCopulaMultiGumbel_Core},
    {"MultiFrank", PralCopulaMultiFrank_Core},
    {"BiNormal", [](double* out, int n, double rho, int) { return PralCopulaBiNormal_Core(out, n, rho); }},
    {"BiT", [](double* out, int n, double rho, int nu) { return PralCopulaBiT_Core(out, n, nu, rho); }},
};

/// A call fails with its message, leaves zeros and takes nothing of the stream.
void expect_refusal(const std::function<bool(double*)>& call, int size, const std::string& message) {
    Values out(size, -7);
    double next = 0;
    PralSetRandomSeed(5489);
    EXPECT_FALSE(call(out.data())) << message;
    EXPECT_EQ(PralCoreError(), message);
    EXPECT_EQ(out, Values(size, 0)) << message;
    ASSERT_TRUE(PralUniform_Core(&next, 0, 1, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(next, (3499211612.0 + 0.5) * 0x1p-32) << message;
}

TEST(Copulas, FailuresTellWhyBeforeAnyDraw) {
    for (const auto& row : pral::test::table("reference/copula_refusals.tsv")) {
        const int size = std::stoi(row[1]), choice = std::stoi(row[3]);
        expect_refusal(
            [&](double* out) {
                return kOneParameter.at(row[0])(out, size, pral::test::number(row, 2), choice);
            },
            size, row[4]);
    }
    const std::string kCovariance = "Error: cov_matrix must be positive semi-definite";
    const std::string kElements =
        "Error: number of elements in the output must equal to the size of the matrix";
    const std::string kNu = "Error: nu must be a positive integer";
    const struct {
        int size, d, samples;
        Values corr;
        std::string message;
    } rows[] = {
        {4, 3, 1, {1, 0.9, -0.9, 0.9, 1, 0.9, -0.9, 0.9, 1}, kElements},
        {3, 3, 1, {1, 0.9, -0.9, 0.9, 1, 0.9, -0.9, 0.9, 1}, kCovariance},
        {2, 2, 1, {1, 0.5, 0.25, 1}, "Error: Matrix must be positive semi-definite"},
        {2, 1, 1, {1.0000001}, kCovariance},
        {2, -2, -1, {1, 0, 0, 1}, kElements},
        {3, 3, 1, {}, "Error: corr must not be null"},
    };
    for (const auto& row : rows) {
        Values corr = row.corr;
        double* const matrix = corr.empty() ? nullptr : corr.data();
        const auto normal_copula = [&](double* out) {
            return PralCopulaMultiNormal_Core(out, row.size, matrix, row.d, row.samples);
        };
        const auto t_copula = [&](double nu) {
            return [&, nu](double* out) {
                return PralCopulaMultiT_Core(out, row.size, nu, matrix, row.d, row.samples);
            };
        };
        expect_refusal(normal_copula, row.size, row.message);
        expect_refusal(t_copula(2), row.size, row.message);
        expect_refusal(t_copula(2.5), row.size, kNu);
    }
    const Values data = {1, 2, 3, 4};
    const auto empirical = [&](int size, const double* values, int rows_, int cols) {
        return [=](double* out) { return PralCopulaDataSeries_Core(out, size, values, rows_, cols, 0); };
    };
    expect_refusal(empirical(2, data.data(), 1, 2), 2, "Error: {data} array length must be >=2");
    expect_refusal(empirical(1, data.data(), 2, 2), 1, "Error: output array size is not valid");
    expect_refusal(empirical(2, nullptr, 2, 2), 2, "Error: data must not be null");

    // ChiSq refuses after its percentile has been drawn.
    double out[2], corr[] = {1, 0, 0, 1};
    EXPECT_FALSE(PralCopulaBiT_Core(out, 2, -1, 0.5));
    EXPECT_EQ(PralCoreError(), kNu);
    EXPECT_FALSE(PralCopulaMultiT_Core(out, 2, -1, corr, 2, 1));
    EXPECT_EQ(PralCoreError(), kNu);
    EXPECT_FALSE(PralCopulaBiClayton_Core(nullptr, 2, 1, 1));
    EXPECT_STREQ(PralCoreError(), "Error: out must not be null");
}

TEST(Copulas, AutomationArraysGetTheSameSamples) {
    Values corr = {1, 0.5, 0.5, 1}, data = {1, 2, 3, 4, 9, 8};
    const struct {
        std::function<bool(double*)> plain;
        std::function<bool(SAFEARRAY**)> automation;
    } rows[] = {
        {[](double* o) { return PralCopulaBiClayton_Core(o, 2, 3, 2); },
         [](SAFEARRAY** o) { return PralCopulaBiClaytonVB_Core(o, 3, 2); }},
        {[](double* o) { return PralCopulaBiGumbel_Core(o, 2, 3, 2); },
         [](SAFEARRAY** o) { return PralCopulaBiGumbelVB_Core(o, 3, 2); }},
        {[](double* o) { return PralCopulaBiFrank_Core(o, 2, 3, 2); },
         [](SAFEARRAY** o) { return PralCopulaBiFrankVB_Core(o, 3, 2); }},
        {[](double* o) { return PralCopulaBiNormal_Core(o, 2, 0.5); },
         [](SAFEARRAY** o) { return PralCopulaBiNormalVB_Core(o, 0.5); }},
        {[](double* o) { return PralCopulaBiT_Core(o, 2, 3, 0.5); },
         [](SAFEARRAY** o) { return PralCopulaBiTVB_Core(o, 3, 0.5); }},
        {[](double* o) { return PralCopulaMultiClayton_Core(o, 2, 3, 1); },
         [](SAFEARRAY** o) { return PralCopulaMultiClaytonVB_Core(o, 3, 1); }},
        {[](double* o) { return PralCopulaMultiGumbel_Core(o, 2, 3, 1); },
         [](SAFEARRAY** o) { return PralCopulaMultiGumbelVB_Core(o, 3, 1); }},
        {[](double* o) { return PralCopulaMultiFrank_Core(o, 2, 3, 1); },
         [](SAFEARRAY** o) { return PralCopulaMultiFrankVB_Core(o, 3, 1); }},
        {[&](double* o) { return PralCopulaMultiNormal_Core(o, 2, corr.data(), 2, 1); },
         [&](SAFEARRAY** o) { return PralCopulaMultiNormalVB_Core(o, corr.data(), 2, 1); }},
        {[&](double* o) { return PralCopulaMultiT_Core(o, 2, 4, corr.data(), 2, 1); },
         [&](SAFEARRAY** o) { return PralCopulaMultiTVB_Core(o, 4, corr.data(), 2, 1); }},
        {[&](double* o) { return PralCopulaData_Core(o, 2, data.data(), 3, 2, 0); },
         [&](SAFEARRAY** o) { return PralCopulaDataVB_Core(o, data.data(), 3, 2, 0); }},
        {[&](double* o) { return PralCopulaDataSeries_Core(o, 2, data.data(), 3, 2, 0); },
         [&](SAFEARRAY** o) { return PralCopulaDataSeriesVB_Core(o, data.data(), 3, 2, 0); }},
    };
    SAFEARRAY* array = SafeArrayCreateVector(VT_R8, 0, 2);
    SAFEARRAY* none = nullptr;
    for (const auto& row : rows) {
        double out[2] = {};
        PralSetRandomSeed(6);
        ASSERT_TRUE(row.plain(out));
        PralSetRandomSeed(6);
        ASSERT_TRUE(row.automation(&array));
        const auto* written = static_cast<const double*>(array->pvData);
        EXPECT_EQ(written[0], out[0]);
        EXPECT_EQ(written[1], out[1]);
        EXPECT_EQ(array->cLocks, 0u);
        EXPECT_FALSE(row.automation(&none));
        EXPECT_STREQ(PralCoreError(), "Error: Output array is not valid");
    }
    SafeArrayDestroy(array);
}

TEST(Copulas, HostileArgumentsGiveProbabilitiesOrFail) {
    const double specials[] = {
        0,    1,    -1,       1e300, -1e300, 5e-324, -5e-324, DBL_MIN,           DBL_MAX,
        kNaN, kInf, -DBL_MAX, 36,    -35,    35,     1e-300,  0.9999999999999999};
    for (const double a : specials) {
        for (const double b : specials) {
            Values out(6), corr = {1, a, b, 0, 1, a, 0, 0, 1};
            const auto check = [&](bool success) {
                for (const double u : out)
                    ASSERT_TRUE(!success || (u >= 0 && u <= 1)) << a << ' ' << b << ' ' << u;
            };
            check(PralCopulaMultiClayton_Core(out.data(), 6, a, 3));
            check(PralCopulaMultiGumbel_Core(out.data(), 6, a, 3));
            check(PralCopulaMultiFrank_Core(out.data(), 6, a, 3));
            check(PralCopulaBiNormal_Core(out.data(), 2, a));
            check(PralCopulaBiT_Core(out.data(), 2, a, b));
            check(PralCopulaMultiNormal_Core(out.data(), 6, corr.data(), 3, 2));
            corr = {1, 0, 0, a, 1, 0, b, 0, 1};
            check(PralCopulaMultiT_Core(out.data(), 6, b, corr.data(), 3, 2));
            check(PralCopulaMultiNormal_Core(out.data(), 6, &corr[3], 1, 3));
            const Values data = {a, b, 1, b, a, 2};
            check(PralCopulaDataSeries_Core(out.data(), 6, data.data(), 3, 2, 0));
        }
    }
    EXPECT_TRUE(PralCopulaMultiNormal_Core(nullptr, 0, Values{1, 0.5, 0.5, 1}.data(), 2, 0));
}

}  // namespace
