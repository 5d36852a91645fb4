// The calls of multivariate distributions, copulas and their fits: messages in their order, what is written and drawn,
// vectors as they are made of univariate draws, hostile arguments.
#include "multivariate/exports.h"

#include "classic/stream.h"

namespace {

using namespace pral::test;

constexpr unsigned kSeed = 5489;

TEST(Calls, EndAsToldAfterTheirDraws) {
    PralSetRandomSeed(kSeed);
    Values uniforms(20);
    pral::random_stream().fill(uniforms);
    std::map<std::string, int> accepted;
    for (const auto& row : table("reference/multivariate_calls.tsv")) {
        ASSERT_EQ(row.size(), 5u) << row[0];
        const std::string call = row[0] + " " + row[2], outcome = row[4];
        const bool is_written = outcome.starts_with("wrote "), is_told = outcome.starts_with("= ");
        Values out(std::stoul(row[1]));
        ASSERT_EQ(simulate(kVectorFunctions, row[0], kSeed, Written(row[2]).arguments, out),
                  is_written || is_told)
            << call << ": " << PralCoreError();
        const int draws = std::stoi(row[3]);
        if (draws >= 0) {
            EXPECT_EQ(pral::random_stream().uniform(), uniforms.at(draws)) << call;
        }
        accepted[row[0]] += is_written || is_told;
        if (is_written) {
            for (std::size_t i = 0; i < out.size(); ++i)
                EXPECT_EQ(out[i] == 7, i >= std::stoul(outcome.substr(6))) << call << ' ' << i;
        } else if (is_told) {
            const Values expected = numbers(outcome.substr(2));
            ASSERT_EQ(out.size(), expected.size()) << call;
            for (std::size_t i = 0; i < out.size(); ++i) EXPECT_DOUBLE_EQ(out[i], expected[i]) << call;
        } else {
            EXPECT_EQ(PralCoreError(), outcome) << call;
            EXPECT_EQ(out, Values(out.size())) << call;
        }
    }
    for (const Functions& functions : {kDistributions, kCopulas}) {
        for (const auto& [name, function] : functions)
            EXPECT_TRUE(accepted[name] > 0 || !function.automation) << name;
    }
}

/// The steps of doubles by which a sum of probabilities may miss 1: 2e-15 for two of them lies between 18 and 19 steps next
/// to 0.5, 1e-15 between 9 and 10.
TEST(Calls, SumsOfProbabilitiesMayMissOneByTheirRounding) {
    constexpr double kStep = 0x1p-53;
    const double counts[] = {1, 2}, shapes[] = {2, 3};
    for (const int steps : {0, 17, 19, -17, -19, 8, 10}) {
        const double p[] = {0.5, 0.5 + steps * kStep};
        const bool is_near = std::abs(steps) < 18, is_nearer = std::abs(steps) < 9;
        double out[2];
        EXPECT_EQ(PralMultinomial_Core(out, 2, 3, p, 2), is_near) << steps;
        EXPECT_EQ(PralMultinomialProb_Core(out, counts, 2, p, 2), is_near) << steps;
        EXPECT_EQ(PralDirichletProb_Core(out, p, 2, shapes, 2), is_near) << steps;
        EXPECT_EQ(PralNegMultinomial_Core(out, counts, 2, p, 2), is_nearer) << steps;
    }
}

TEST(Calls, CompleteLowerTrianglesInPlace) {
    double out[2];
    for (const double correlation : {0.5, 2.0}) {  // also when the call then fails
        for (const char* name : {"MultiNormal", "MultiNormalProb", "CopulaMultiNormal"}) {
            Values matrix = {1, 0, correlation, 1}, zero(2);
            const auto array = [](Values& values) {
                Argument argument;
                argument.array = values.data();
                return argument;
            };
            const Argument two(2), four(4);
            const Arguments arguments =
                name[0] == 'C'  ? Arguments{array(matrix), two, Argument(1)}
                : name[11] == 0 ? Arguments{array(zero), two, array(matrix), four}
                                : Arguments{array(zero), two, array(zero), two, array(matrix), four};
            EXPECT_EQ(kVectorFunctions.at(name).plain(out, 2, arguments), correlation < 1) << name;
            EXPECT_EQ(matrix, (Values{1, correlation, correlation, 1})) << name;
        }
    }
}

TEST(Calls, SurviveHostileArguments) {
    expect_refused_arrays(kVectorFunctions);
    expect_survival(kDistributions, 1000);
    expect_survival(kCopulas, 1000, 0, 1);
    expect_survival(kFits, 200);
    EXPECT_TRUE(PralDirichlet_Core(nullptr, 0, nullptr, 0));
    EXPECT_TRUE(PralMultiHypergeo_Core(nullptr, 0, 0, nullptr, -1));
}

/// A bare call of a univariate function.
template <class F, class... P>
double drawn(F function, P... parameters) {
    double value = 0;
    EXPECT_TRUE(function(&value, parameters..., nullptr, nullptr, nullptr, nullptr, nullptr));
    return value;
}
double uniform() { return drawn(PralUniform_Core, 0, 1); }
double normal() { return drawn(PralNormal_Core, 0, 1); }

/// The percentile of a normal, or of Student's t.
double percentile(double z) {
    double p = 0;
    const int cumulative = 1;
    EXPECT_TRUE(PralNormalProb_Core(&p, &z, 1, 0, 1, &cumulative, nullptr, nullptr, nullptr, nullptr));
    return p;
}
double percentile(double t, double nu) {
    double p = 0, size = std::fabs(t);
    const int cumulative = 1;
    EXPECT_TRUE(PralStudentProb_Core(&p, &size, 1, nu, &cumulative, nullptr, nullptr, nullptr, nullptr));
    return t >= 0 ? 1 - (1 - p) : 1 - p;
}
/// A correlation of 0.6 by its Cholesky factor.
Values correlated(double first, double second) { return {first, 0.6 * first + 0.8 * second}; }

Values student_pair(double nu, bool by_inversion) {
    const double scale = std::sqrt(nu / drawn(PralChiSq_Core, nu));
    double z[2] = {};
    if (by_inversion) {
        EXPECT_TRUE(PralNormalArray_Core(z, 2, 0, 1, nullptr, nullptr, nullptr, nullptr, nullptr));
    } else {
        for (double& value : z) value = normal();
    }
    Values pair = correlated(z[0], z[1]);
    for (double& value : pair) value = percentile(value * scale, nu);
    return pair;
}

/// Waiting for 3 and 2 items out of two groups, which have 5 and 4 of them or come with probability 1/4 and 3/4.
Values waited(bool urn) {
    const double others = urn ? drawn(PralInvHypergeo_Core, 3, 5, 9) : drawn(PralNegBin_Core, 3, 0.25);
    double y = urn ? drawn(PralHypergeo_Core, others, 4, 4) : drawn(PralBinomial_Core, others, 1);
    if (y >= 2) return {0, y - 2};
    const double before =
        urn ? drawn(PralInvHypergeo_Core, 2 - y, 4 - y, 6 - y) : drawn(PralNegBin_Core, 2 - y, 0.75);
    return {urn ? drawn(PralHypergeo_Core, before, 2, 2) : drawn(PralBinomial_Core, before, 1), 0};
}

TEST(Calls, MakeVectorsOfUnivariateDraws) {
    const std::tuple<const char*, const char*, std::function<Values()>> rows[] = {
        {"MultiNormal", "[3,-1] 2 [4,0,2.4,4] 4",
         [] {
             const Values z = {normal(), normal()};
             return Values{3 + 2 * z[0], -1 + 2 * correlated(z[0], z[1])[1]};
         }},
        {"Multinomial", "20 [0.5,0.125,0.375] 3",
         [] {
             const double a = drawn(PralBinomial_Core, 20, 0.5), b = drawn(PralBinomial_Core, 20 - a, 0.25);
             return Values{a, b, a + b < 20 ? drawn(PralBinomial_Core, 20 - a - b, 1) : 0};
         }},
        {"Dirichlet", "[0,1.5] 2",
         [] {
             const double a = drawn(PralGamma_Core, 1, 1), b = drawn(PralGamma_Core, 2.5, 1);
             return Values{a / (a + b), b / (a + b)};
         }},
        {"MultiHypergeo", "6 [3,2,4] 3",
         [] {
             const double a = drawn(PralHypergeo_Core, 6, 3, 9), b = drawn(PralHypergeo_Core, 6 - a, 2, 6);
             return Values{a, b, a + b < 6 ? drawn(PralHypergeo_Core, 6 - a - b, 4, 4) : 0};
         }},
        {"InvMultiHypergeo2", "[3,2] 2 [5,4] 2", [] { return waited(true); }},
        {"NegMultinomial2", "[3,2] 2 [0.25,0.75] 2", [] { return waited(false); }},
        {"CopulaBiClayton", "2.5 1",
         [] {
             const double v = drawn(PralGamma_Core, 0.4, 1), a = uniform(), b = uniform();
             return Values{std::pow(1 - std::log(a) / v, -0.4), std::pow(1 - std::log(b) / v, -0.4)};
         }},
        {"CopulaBiFrank", "5 2",
         [] {
             const double c = std::exp(-5), v = drawn(PralLogarithmic_Core, 1 - c), a = uniform(),
                          b = uniform();
             return Values{1 - std::log(1 - std::pow(a, 1 / v) * (1 - c)) / -5,
                           std::log(1 - std::pow(b, 1 / v) * (1 - c)) / -5};
         }},
        {"CopulaBiNormal", "0.6",
         [] {
             const double a = normal(), b = normal();
             return Values{percentile(a), percentile(correlated(a, b)[1])};
         }},
        {"CopulaBiT", "3 0.6", [] { return student_pair(3, false); }},
        {"CopulaMultiT", "1 [0.6] 1 1", [] { return student_pair(1, true); }},
        {"CopulaMultiT", "8 [0.6] 1 1", [] { return student_pair(8, true); }},
        {"CopulaMultiT", "101 [0.6] 1 1", [] { return student_pair(101, true); }},
    };
    for (const auto& [name, arguments, expected] : rows) {
        for (unsigned seed = 1; seed <= 100; ++seed) {
            PralSetRandomSeed(seed);
            const Values by_hand = expected();
            const double next = uniform();
            Values out(by_hand.size());
            ASSERT_TRUE(simulate(kVectorFunctions, name, seed, Written(arguments).arguments, out)) << name;
            for (std::size_t i = 0; i < out.size(); ++i)
                EXPECT_NEAR(out[i], by_hand[i], 4e-15 * std::fmax(1, std::fabs(out[i])))
                    << name << ' ' << seed;
            EXPECT_EQ(uniform(), next) << name << ' ' << seed;
        }
    }
}

}  // namespace
