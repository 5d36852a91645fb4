// Copulas: statistics of a seeded stream, mirrored coordinates, many samples at once, the empirical copula.
#include "multivariate/archimedean.h"
#include "multivariate/exports.h"
#include "multivariate/sample_statistics.h"

namespace {

using namespace pral::test;

/// Margins, Kendall's tau and the corners; pairs one call each, others all at once.
TEST(Copulas, SamplesShowTheCopula) {
    const std::size_t count = 20000;
    for (const auto& row : known("copula")) {
        const std::string what = row[1] + ' ' + row[2];
        const std::size_t d = std::stoul(row[3]);
        const bool pairs = row[1].starts_with("CopulaBi");
        const Values samples = sampled(row[1], row[2], pairs ? 2 : d * count, pairs ? count : 1, 20);
        for (std::size_t j = 0; j < d; ++j) expect_uniform(coordinate(samples, d, j), what);
        const Values first = coordinate(samples, d, 0), last = coordinate(samples, d, d - 1);
        // Five standard deviations of tau, which has the largest without dependence: 2/3 sqrt(2/n) at most here.
        EXPECT_NEAR(kendall(first, last), number(row, 4), 5 * 2 / 3.0 * std::sqrt(2.0 / count)) << what;
        expect_closeness(first, last, 0.01, true, number(row, 5), what);
        expect_closeness(first, last, 0.99, false, number(row, 6), what);
    }
}

TEST(Copulas, DirectionsAndSignsMirrorCoordinates) {
    for (const auto& [name, directions] :
         {std::pair{"CopulaBiClayton", 4}, {"CopulaBiGumbel", 4}, {"CopulaBiFrank", 2}}) {
        const auto pair = [name = name](double parameter, int direction) {
            Values out(2);
            EXPECT_TRUE(simulate(kCopulas, name, 4, {Argument(parameter), Argument(direction)}, out));
            return out;
        };
        const Values plain = pair(3, 1);
        for (const double sign : {1.0, -1.0}) {
            for (int direction = 1; direction <= directions; ++direction) {
                const double second = sign < 0 ? 1 - plain[1] : plain[1];
                const Values out = pair(sign * 3, direction);
                EXPECT_EQ(out[0], direction % 2 == 0 ? 1 - plain[0] : plain[0]) << name << direction;
                EXPECT_EQ(out[1], direction >= 3 ? 1 - second : second) << name << direction;
            }
        }
    }
}

TEST(Copulas, OneCallAndManyTakeTheSameDraws) {
    const std::string matrix = "[1,0.5,0.25,0.5,1,0.5,0.25,0.5,1] 3";
    for (const auto& [name, arguments] : {std::pair<const char*, std::string>{"CopulaMultiClayton", "0.5"},
                                          {"CopulaMultiGumbel", "1.5"},
                                          {"CopulaMultiFrank", "8"},
                                          {"CopulaMultiFrank", "34"},
                                          {"CopulaMultiNormal", matrix},
                                          {"CopulaMultiT", "5 " + matrix}}) {
        const Values together = sampled(name, arguments + " 3000", 9000, 1, 8);
        const Values one_by_one = sampled(name, arguments + " 1", 3, 3000, 8);
        for (std::size_t i = 0; i < together.size(); ++i)
            ASSERT_NEAR(together[i], one_by_one[i], 1e-12) << name << ' ' << i;
    }
}

/// Near theta = 35 the logarithmic parameter 1 - e^-theta is 1 but for a few units in the last place. The smallest k with
/// F(k) >= u, to 17 digits.
TEST(Copulas, FrailtiesOfFrankKeepTheRestOfTheirParameter) {
    for (const auto& [theta, u, expected] : {std::tuple{35.0, 0.5, 22360003.0},
                                             {35.0, 0.9, 27356042352835.794},
                                             {35.0, 0.999, 3560504125325436.7},
                                             {34.75, 0.96, 202138717586742.82},
                                             {20.0, 0.9, 39964042.0}}) {
        Values frailty = {u};
        pral::multivariate::Frank(theta).frailties(frailty, {});
        EXPECT_NEAR(frailty[0], expected, std::fmax(1, 1e-12 * expected)) << theta << ' ' << u;
    }
}

/// A normal vector has the copula of its correlations, whatever its variances; a singular matrix to the root of the
/// rounding of its eigenvalues.
TEST(Copulas, CovariancesGiveTheCopulaOfTheirCorrelations) {
    const std::string corr = "[1,0.5,-0.25,0.5,1,0,-0.25,0,1] 3 1000",
                      cov = "[4,3,-0.5,3,9,0,-0.5,0,1] 3 1000", singular = "[1,-1,-1,1] 2 1000",
                      singular_cov = "[4,-20,-20,100] 2 1000";
    for (const auto& [name, before] : {std::pair{"CopulaMultiNormal", ""}, {"CopulaMultiT", "5 "}}) {
        for (const auto& [a, b] : {std::pair{corr, cov}, {singular, singular_cov}}) {
            const std::size_t count = a == corr ? 3000 : 2000;
            const Values expected = sampled(name, before + a, count, 1, 8),
                         found = sampled(name, before + b, count, 1, 8);
            for (std::size_t i = 0; i < count; ++i) ASSERT_NEAR(found[i], expected[i], 1e-7) << name << i;
        }
    }
}

TEST(Copulas, EmpiricalCopulaKeepsObservationsAndFillsTheirCells) {
    // Three variables in columns, and in rows; the second is tied, the third falls.
    const std::string by_columns = "[1,5,9,2,5,8,3,6,7,4,7,6] 4 3 0",
                      by_rows = "[1,2,3,4,5,5,6,7,9,8,7,6] 3 4 1";
    const double low[4][3] = {{0, 0, 0.75}, {0.25, 0, 0.5}, {0.5, 0.5, 0.25}, {0.75, 0.75, 0}};
    const std::size_t count = 20000;
    for (const char* name : {"CopulaData", "CopulaDataSeries"}) {
        const bool series = name[10] != 0;
        const Values out = sampled(name, by_columns, 3 * count, 1, 1);
        EXPECT_EQ(out, sampled(name, by_rows, 3 * count, 1, 1));
        int before = -1;
        for (std::size_t s = 0; s < count; ++s) {
            const int at = static_cast<int>(4 * out[3 * s]);
            for (int j = 0; j < 3; ++j) {
                const double width = j == 1 && at < 2 ? 0.5 : 0.25, within = out[3 * s + j] - low[at][j];
                ASSERT_TRUE(within > 0 && within < width) << s << ' ' << j;
            }
            ASSERT_TRUE(!series || s == 0 || at == (before + 1) % 4) << s;
            before = at;
        }
        for (int j = 0; j < 3; ++j) expect_uniform(coordinate(out, 3, j), name);
    }
}

}  // namespace
