// The second door against arguments that no careful caller passes.
#include <gtest/gtest.h>
#include <pral_core/objects.hpp>

#include <cfloat>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

namespace {

using pral::Distribution;

pral_error fresh() {
    pral_error error = {};
    error.size = sizeof error;
    return error;
}

TEST(Hostile, NullPointersAreArgumentErrors) {
    const Distribution d("Normal", {0, 1});
    pral::Stream stream(1);
    pral_distribution* made = nullptr;
    pral_stream* made_stream = nullptr;
    double x = 0.5;
    const double weight = 1;
    std::uint64_t word = 1;
    pral_error error = fresh();
    const pral_status statuses[] = {
        pral_distribution_make(nullptr, &x, nullptr, 1, &made, &error),
        pral_distribution_make("Normal", nullptr, nullptr, 2, &made, &error),
        pral_distribution_make("Normal", &x, nullptr, 2, nullptr, &error),
        pral_distribution_parse(nullptr, &made, &error),
        pral_distribution_describe(nullptr, nullptr, 0, nullptr, &error),
        pral_distribution_describe(d.get(), nullptr, 10, nullptr, &error),
        pral_distribution_copy(nullptr, &made, &error),
        pral_truncated(nullptr, 0, 1, 0, &made, &error),
        pral_shifted(nullptr, 0, &made, &error),
        pral_scaled(nullptr, 1, &made, &error),
        pral_mixture(nullptr, &weight, 1, &made, &error),
        pral_cdf(nullptr, &x, &x, 1, &error),
        pral_cdf(d.get(), nullptr, &x, 1, &error),
        pral_cdf(d.get(), &x, nullptr, 1, &error),
        pral_moments(d.get(), nullptr, &error),
        pral_mode(d.get(), nullptr, &error),
        pral_support(d.get(), nullptr, &x, &error),
        pral_stream_make(nullptr, 1, &made_stream, &error),
        pral_stream_make(&word, 1, nullptr, &error),
        pral_stream_child(nullptr, 1, &made_stream, &error),
        pral_stream_child_named(stream.get(), nullptr, &made_stream, &error),
        pral_stream_restore(nullptr, 9, &made_stream, &error),
        pral_uniforms(nullptr, &x, 1, &error),
        pral_uniforms(stream.get(), nullptr, 1, &error),
        pral_sample(nullptr, stream.get(), &x, 1, &error),
        pral_sample(d.get(), nullptr, &x, 1, &error),
        pral_points(PRAL_SOBOL, nullptr, nullptr, 1, 1, &error),
        pral_family_info(nullptr, nullptr, &error),
    };
    for (const pral_status status : statuses) EXPECT_EQ(status, PRAL_ERROR_ARGUMENT) << &status - statuses;
    EXPECT_EQ(made, nullptr);
    EXPECT_EQ(x, 0.5);
    pral_distribution_free(nullptr);
    pral_stream_free(nullptr);
    EXPECT_EQ(pral_family_name(pral_family_count()), nullptr);
}

TEST(Hostile, NothingOfNothingSucceeds) {
    const Distribution d("Normal", {0, 1});
    pral::Stream stream(1);
    EXPECT_EQ(pral_cdf(d.get(), nullptr, nullptr, 0, nullptr), PRAL_OK);
    EXPECT_EQ(pral_sample(d.get(), stream.get(), nullptr, 0, nullptr), PRAL_OK);
    EXPECT_EQ(pral_points(PRAL_LATIN_HYPERCUBE, stream.get(), nullptr, 0, 3, nullptr), PRAL_OK);
}

TEST(Hostile, MemoryThatIsNoObjectIsRefused) {
    std::vector<std::uint64_t> zeros(64);
    auto* const none = reinterpret_cast<pral_distribution*>(zeros.data());
    double x = 1;
    EXPECT_EQ(pral_cdf(none, &x, &x, 1, nullptr), PRAL_ERROR_ARGUMENT);
    EXPECT_EQ(pral_uniforms(reinterpret_cast<pral_stream*>(zeros.data()), &x, 1, nullptr),
              PRAL_ERROR_ARGUMENT);
    pral_distribution_free(none);
}

TEST(Hostile, StructsOfAnotherSizeAreLeftAlone) {
    pral_error error = fresh();
    pral_moment_values moments = {};
    EXPECT_EQ(pral_moments(Distribution("Normal", {0, 1}).get(), &moments, &error), PRAL_ERROR_ARGUMENT);
    EXPECT_STREQ(error.text, "out->size must be the size of the struct");
    for (const std::size_t size : {std::size_t{0}, sizeof error - 1, std::size_t{1} << 60}) {
        pral_error other = {};
        other.size = size;
        pral_distribution* made = nullptr;
        EXPECT_EQ(pral_distribution_parse("Nix(1)", &made, &other), PRAL_ERROR_FAMILY);
        EXPECT_EQ(other.code, 0);
        EXPECT_EQ(other.text[0], 0);
    }
}

struct Refusal {
    const char* text;
    pral_status status;
    std::int64_t index;
    const char* part;  // of the message
};
const Refusal kRefusals[] = {
    {"", PRAL_ERROR_ARGUMENT, 0, "expected the name of a family"},
    {"Normal", PRAL_ERROR_ARGUMENT, 6, "expected '('"},
    {"Normal(0, 1", PRAL_ERROR_ARGUMENT, 11, "expected ')'"},
    {"Normal(0, 1))", PRAL_ERROR_ARGUMENT, 12, "more than a distribution"},
    {"Normal(0)", PRAL_ERROR_PARAMETER, -1, "Normal has 2 parameters (mu, sigma), 1 given"},
    {"Normal(0, -1)", PRAL_ERROR_PARAMETER, -1, "sigma"},
    {"Normal(mu = 0, mu = 1)", PRAL_ERROR_ARGUMENT, 19, "given twice"},
    {"Normal(sigma = 1)", PRAL_ERROR_ARGUMENT, 17, "mu is missing"},
    {"Normal(my = 0, sigma = 1)", PRAL_ERROR_ARGUMENT, 7, "one of mu, sigma"},
    {"Gama(1, 2)", PRAL_ERROR_FAMILY, -1, "did you mean Gamma?"},
    {"Normal(1e999, 1)", PRAL_ERROR_ARGUMENT, 7, "beyond the range"},
    {"Normal({1, 2}, 1)", PRAL_ERROR_PARAMETER, 0, "mu must be one number"},
    {"Discrete({}, {})", PRAL_ERROR_PARAMETER, -1, "at least one probability"},
    {"Normal(0, 1) within [2, 1]", PRAL_ERROR_PARAMETER, 19, "no probability"},
    {"Normal(0, 1) within [nan, 1]", PRAL_ERROR_PARAMETER, 19, "must be a number"},
    {"Normal(0, 1) within percentiles [0, 2]", PRAL_ERROR_PARAMETER, 19, "between 0 and 1"},
    {"Expon(1) within [-5, -2]", PRAL_ERROR_PARAMETER, 15, "no probability"},
    {"0 * Normal(0, 1)", PRAL_ERROR_PARAMETER, 0, "other than 0"},
    {"Normal(0, 1) + inf", PRAL_ERROR_PARAMETER, 14, "finite"},
    {"Mixture(0: Normal(0, 1))", PRAL_ERROR_PARAMETER, 8, "must be > 0"},
    {"Mixture(-1: Normal(0, 1))", PRAL_ERROR_PARAMETER, 8, ">= 0"},
};

TEST(Hostile, RefusalsSayWhatIsWrongAndWhere) {
    for (const Refusal& refusal : kRefusals) {
        pral_error error = fresh();
        pral_distribution* made = reinterpret_cast<pral_distribution*>(1);
        EXPECT_EQ(pral_distribution_parse(refusal.text, &made, &error), refusal.status) << refusal.text;
        EXPECT_EQ(made, nullptr);
        EXPECT_EQ(error.code, refusal.status);
        EXPECT_EQ(error.index, refusal.index) << refusal.text;
        EXPECT_NE(std::string(error.text).find(refusal.part), std::string::npos)
            << refusal.text << ": " << error.text;
    }
    const std::string deep(100000, '(');
    EXPECT_THROW(Distribution::parse(deep), pral::Error);
    EXPECT_THROW(Distribution::parse(std::string(5000, 'x') + "(1)"), pral::Error);
}

/// Every family of numbers with every combination of such parameters, at such places: no crash, no hang, and what should be
/// a probability is one.
TEST(Hostile, AnyNumbersHaveAnAnswer) {
    const double numbers[] = {0.5, 3, -1, 0, -0.0, 1e300, 5e-324, DBL_MAX, HUGE_VAL, std::nan("")};
    for (std::size_t f = 0; f < pral_family_count(); ++f) {
        pral_family family = {};
        family.size = sizeof family;
        ASSERT_EQ(pral_family_info(pral_family_name(f), &family, nullptr), PRAL_OK);
        if (family.kind == PRAL_TABLE) continue;
        const std::size_t n = family.parameter_count;
        for (std::size_t trial = 0; trial < 40; ++trial) {
            std::vector<double> parameters(n);
            for (std::size_t i = 0; i < n; ++i)
                parameters[i] =
                    numbers[(trial * (2 * i + 1) + 3 * i + trial / std::size(numbers)) % std::size(numbers)];
            pral_distribution* d = nullptr;
            if (pral_distribution_make(family.name, parameters.data(), nullptr, n, &d, nullptr) != PRAL_OK)
                continue;
            std::vector<double> x(std::begin(numbers), std::end(numbers)), out(x.size());
            for (const auto f_of : {pral_cdf, pral_sf}) {
                ASSERT_EQ(f_of(d, x.data(), out.data(), x.size(), nullptr), PRAL_OK);
                for (std::size_t i = 0; i < x.size(); ++i)
                    EXPECT_TRUE(std::isnan(out[i]) || (out[i] >= 0 && out[i] <= 1))
                        << family.name << " at " << x[i];
            }
            for (const auto f_of : {pral_logpdf, pral_quantile, pral_log_upper_quantile})
                ASSERT_EQ(f_of(d, x.data(), out.data(), x.size(), nullptr), PRAL_OK);
            pral_distribution_free(d);
        }
    }
}

}  // namespace
