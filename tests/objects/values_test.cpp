// Every family through the second door: the tables that hold the classic calls to their definitions hold this one, too.
#include <gtest/gtest.h>
#include <pral_core/objects.hpp>

#include <cmath>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "objects/examples.h"
#include "support/accuracy.h"
#include "support/table.h"

namespace {

using pral::Distribution;
using namespace pral::test;

constexpr double kBound = 1e-12;

bool is_discrete(const std::string& family) { return family_of(family).kind == PRAL_DISCRETE; }

/// The tables of the families that classic calls have, too, and of the others.
std::vector<std::vector<std::string>> all_tables(const char* kind) {
    auto rows = tables((std::string("reference/families/") + kind).c_str());
    for (auto& row : tables((std::string("reference/objects/families/") + kind).c_str()))
        rows.push_back(std::move(row));
    return rows;
}

/// The logarithm of a tail, from the smaller one; none where that is below the range of doubles.
double log_of(double tail, double other) { return other < 0.5 ? std::log1p(-other) : std::log(tail); }

TEST(Values, AgreeWithTheDefinitionsInBothTails) {
    Accuracy record;
    for (const auto& row : all_tables("values")) {
        const std::string &name = row.at(0), place = row.at(2) + " x = " + row.at(3);
        const double x = number(row, 3), lower = number(row, 4), upper = number(row, 5), log = number(row, 6);
        if (name == "ZISkellam" && x < 0)
            continue;  // the classic calls count the extra zeros below 0 as well
        const Distribution d(name, numbers(row[2]));
        record.record(name + " cdf", relative_error(d.cdf(x), lower), place);
        record.record(name + " sf", relative_error(d.sf(x), upper), place);
        record.record(name + " logpdf", scaled_error(d.logpdf(x), log), place);
        if (lower > 0)
            record.record(name + " logcdf", relative_error(d.logcdf(x), log_of(lower, upper)), place);
        if (upper > 0)
            record.record(name + " logsf", relative_error(d.logsf(x), log_of(upper, lower)), place);
        if (!(lower > 0 && upper > 0)) continue;
        // The quantile gives back its percentile, measured in the smaller tail; an integer, from anywhere inside its step.
        const bool discrete = is_discrete(name), below = lower < 0.5;
        const double inside = discrete ? std::min(1e-9, 0.25 * std::exp(log) / std::min(lower, upper)) : 0;
        const double back = below ? d.quantile(lower * (1 - inside)) : d.upper_quantile(upper * (1 + inside));
        const double x_error = relative_error(back, x);
        const double p_error = below ? relative_error(d.cdf(back), lower) : relative_error(d.sf(back), upper);
        record.record(name + " quantile", inside > 4e-12 ? x_error : std::min(x_error, p_error), place);
    }
    record.report(kBound);
}

TEST(Values, OfContinuousFamiliesKeepTheirDigitsWhenTruncated) {
    Accuracy record;
    for (const auto& row : all_tables("truncated")) {
        const std::string &name = row.at(0), place = row.at(1) + " kept on " + row.at(3) + ", " + row.at(4);
        if (is_discrete(name)) continue;  // the classic calls leave out the mass at the lower bound
        const int mode = std::stoi(row.at(2));
        const double min = number(row, 3), max = number(row, 4), x = number(row, 5),
                     cumulative = number(row, 6), log = number(row, 7);
        const Distribution whole(name, numbers(row[1]));
        using End = Distribution::End;
        const Distribution kept = whole.truncated(mode & 2 ? End(pral::Percentile{min}) : End(min),
                                                  mode & 1 ? End(pral::Percentile{max}) : End(max));
        // Between percentiles that nearly agree, their rounding counts several times.
        const double tail = std::min(whole.cdf(max), whole.sf(min)), mass = std::exp(whole.logpdf(x) - log);
        const double allowed = mode == 0 ? 1 : kBound / std::max(kBound, 8e-16 * tail / mass);
        record.record(name + " cdf", relative_error(kept.cdf(x), cumulative) * allowed, place);
        record.record(name + " logpdf", relative_error(kept.logpdf(x), log) * allowed, place);
        if (cumulative < 0.99)  // closer to 1 the percentile, rounded to double, belongs to another x
            record.record(name + " quantile", relative_error(kept.quantile(cumulative), x), place);
    }
    record.report(kBound);
}

TEST(Values, OfTablesAgreeWithTheirDefinitions) {
    Accuracy record;
    for (const auto& row : table("reference/data_values.tsv")) {
        const std::string& name = row.at(0);
        if (name == "OgiveU" || row.at(2) != "-1") continue;
        const Distribution d(name, parameters_with_tables(name, row.at(1)));
        const double x = number(row, 5);
        record.record(name + " pdf", relative_error(d.pdf(x), number(row, 6)), row[1] + " x = " + row[5]);
        record.record(name + " cdf", relative_error(d.cdf(x), number(row, 7)), row[1] + " x = " + row[5]);
        record.record(name + " sf", relative_error(d.sf(x), number(row, 8)), row[1] + " x = " + row[5]);
    }
    record.report(kBound);
}

/// Logarithms of tails beyond doubles, and distributions kept between bounds far out or close together.
TEST(Values, BeyondDoublesHaveTheirLogarithms) {
    using Function = double (Distribution::*)(double) const;
    const std::map<std::string, Function> functions = {
        {"logcdf", &Distribution::logcdf}, {"logsf", &Distribution::logsf},
        {"cdf", &Distribution::cdf},       {"sf", &Distribution::sf},
        {"logpdf", &Distribution::logpdf}, {"quantile", &Distribution::quantile}};
    Accuracy record;
    for (const auto& row : table("reference/objects/tails.tsv")) {
        const Distribution d = Distribution::parse(row.at(0));
        const double actual = (d.*functions.at(row.at(1)))(number(row, 2)), expected = number(row, 3);
        const bool log = row[1].starts_with("log");
        record.record(row[0] + " " + row[1], (log ? scaled_error : relative_error)(actual, expected), row[2]);
    }
    record.report(kBound);
}

/// A few distributions of every sort, for laws.
const char* const kSorts[] = {
    "Normal(1, 2)",
    "Gamma(0.3, 2)",
    "Student(3)",
    "Pareto(1.5, 2)",
    "Triangle(0, 1, 4)",
    "NCChiSq(3, 5)",
    "Poisson(4)",
    "Poisson(7000)",
    "Binomial(20, 0.3)",
    "Binomial(1000000, 0.5)",
    "NegBin(3, 0.005)",
    "Skellam(2, 3)",
    "ZISkellam(2, 3, 0.6)",
    "ZIPoisson(4, 0.6)",
    "ZTPoisson(0.5)",
    "Hypergeo(5, 6, 10)",
    "BurntFingerPoisson(3, 1)",
    "Discrete({3, 1, 2, 1}, {1, 1, 2, 0})",
    "DUniform({1, 1, 5})",
    "StepUniform(0, 1, 0.25)",
    "Histogram(0, 4, {3, 0, 1})",
    "Relative(0, 4, {1, 2}, {1, 3})",
    "Gamma(2, 3) within [1, 9] + 10",
    "Poisson(4) within [2, 6]",
    "ZIPoisson(4, 0.6) within [1, 8]",
    "Skellam(2, 3) within percentiles [0.1, 0.9]",
    "-2 * Poisson(4) + 1",
    "-0.5 * Expon(2)",
    "Mixture(0.3: Normal(0, 1), 0.7: Gamma(2, 1))",
    "Mixture(1: Poisson(3), 2: Binomial(9, 0.5))",
    "Mixture(0.2: Discrete({0}, {1}), 0.8: Expon(2))",
    "Discrete({5}, {1})",
};

TEST(Values, ObeyTheLawsOfDistributions) {
    for (const char* text : kSorts) {
        const Distribution d = Distribution::parse(text);
        EXPECT_EQ(Distribution::parse(d.text()).text(), d.text());
        for (const double p : {1e-9, 1e-3, 0.0625, 0.25, 0.4999, 0.77, 0.96, 0.9999}) {
            const double x = d.quantile(p), beside = std::nextafter(x, -HUGE_VAL);
            // Q(p) is the least x with F(x) >= p, to the rounding of F.
            EXPECT_GE(d.cdf(x), p * (1 - 1e-11)) << text << " p = " << p;
            const double below =
                d.logpdf(x) > -HUGE_VAL && d.cdf(x) - d.cdf(beside) > 1e-12 ? d.cdf(beside) : 0;
            EXPECT_LE(below, p * (1 + 1e-11)) << text << " p = " << p;
            EXPECT_NEAR(d.cdf(x) + d.sf(x), 1, 4e-16) << text << " x = " << x;
            EXPECT_NEAR(std::exp(d.logcdf(x)), d.cdf(x), 1e-13) << text;
            EXPECT_NEAR(std::exp(d.logsf(x)), d.sf(x), 1e-13) << text;
            EXPECT_EQ(d.upper_quantile(0.25), d.quantile(0.75)) << text;
        }
        EXPECT_EQ(d.cdf(HUGE_VAL), 1) << text;
        EXPECT_EQ(d.cdf(-HUGE_VAL), 0) << text;
        EXPECT_EQ(d.sf(HUGE_VAL), 0) << text;
        EXPECT_EQ(d.pdf(HUGE_VAL), 0) << text;
        EXPECT_EQ(d.quantile(0), d.support().lower) << text;
        EXPECT_EQ(d.quantile(1), d.support().upper) << text;
        for (const double none : {-0.1, 1.1, -HUGE_VAL, std::nan("")})
            EXPECT_TRUE(std::isnan(d.quantile(none))) << text;
        EXPECT_TRUE(std::isnan(d.cdf(NAN)) && std::isnan(d.logpdf(NAN)) && std::isnan(d.logsf(NAN))) << text;
    }
}

/// Functions of arrays by vector loops, and what adapters make of them.
const char* const kInBlocks[] = {"Uniform(1, 3)",
                                 "Uniform(-1e308, 1.5e308)",
                                 "LognormalAlt(2, 0.2, 5, 0.7, 1)",
                                 "Weibull3(1.5, 3, 2)",
                                 "Logistic(1, 2)",
                                 "LogLogistic(2, 3)",
                                 "ExtValueMax(1, 2)",
                                 "ExtValueMin(1, 2)",
                                 "GEV(0, 1, 0.25)",
                                 "Pareto2(2, 3)",
                                 "Cauchy(1, 2)",
                                 "Laplace(0, 1)",
                                 "LogLaplace(2, 3, 1)",
                                 "HS(0, 1)",
                                 "JohnsonU(0, 2, 0, 1)",
                                 "Lifetime2(1, 2)",
                                 "Lognormal(2, 3) within percentiles [0.1, 0.9]",
                                 "3 * Laplace(0, 1) - 1"};

/// Bit for bit, whatever stands beside a value.
void expect_functions_of_single_calls(const Distribution& d, std::vector<double> x) {
    x.insert(x.end(), {HUGE_VAL, -HUGE_VAL, 0, -0.0, 2.5, 1e300, -1e300, 5e-324, std::nan("")});
    std::vector<double> values(x.size());
    using Function = pral_status (*)(const pral_distribution*, const double*, double*, size_t, pral_error*);
    for (const Function function : {pral_pdf, pral_logpdf, pral_cdf, pral_sf, pral_logcdf, pral_logsf}) {
        function(d.get(), x.data(), values.data(), x.size(), nullptr);
        for (std::size_t i = 0; i < x.size(); i += i < 990 ? 11 : 1) {
            double single = 0;
            function(d.get(), &x[i], &single, 1, nullptr);
            const bool same = single == values[i] || (std::isnan(single) && std::isnan(values[i]));
            EXPECT_TRUE(same) << d.text() << " x = " << x[i] << ": " << single << ' ' << values[i];
        }
    }
}

TEST(Values, OfArraysAreThoseOfSingleCalls) {
    pral::Stream stream(4);
    std::vector<const char*> texts(std::begin(kSorts), std::end(kSorts));
    texts.insert(texts.end(), std::begin(kInBlocks), std::end(kInBlocks));
    for (const char* text : texts) {
        const Distribution d = Distribution::parse(text);
        std::vector<double> u(1000);
        stream.fill(u);
        u[17] = 0, u[18] = 1, u[19] = std::nan(""), u[20] = -1;
        std::vector<double> x(u.size());
        d.quantile(u, x);
        for (std::size_t i = 0; i < u.size(); i += 7)
            EXPECT_LE(relative_error(x[i], d.quantile(u[i])), 2e-13) << text << " u = " << u[i];
        EXPECT_EQ(x[18], d.support().upper);
        EXPECT_TRUE(std::isnan(x[19]) && std::isnan(x[20]));
        std::vector<double> in_place = u;
        d.quantile(in_place, in_place);
        for (std::size_t i = 0; i < u.size(); ++i)
            EXPECT_TRUE(in_place[i] == x[i] || std::isnan(x[i])) << text;
        expect_functions_of_single_calls(d, x);
    }
}

TEST(Values, OfCountsAreProbabilitiesThatSumToOne) {
    for (const char* text :
         {"Poisson(4) within [2, 6]", "Poisson(4) within [0, 5]", "ZIPoisson(4, 0.6) within [0, 8]",
          "ZIBinomial(9, 0.5, 0.7) within [1, 9]", "Skellam(2, 3) within [-4, 3]",
          "ZISkellam(2, 3, 0.6) within [-3, 5]", "Binomial(9, 0.5) within percentiles [0.2, 0.8]",
          "StepUniform(0, 5, 1) within [1, 4]", "Discrete({3, 1, 2}, {1, 1, 2}) within [2, 3]"}) {
        const Distribution d = Distribution::parse(text);
        const auto [lower, upper] = d.support();
        double sum = 0;
        for (double k = lower; k <= upper; ++k) {
            sum += d.pdf(k);
            EXPECT_GT(d.pdf(k), 0) << text << " at " << k;  // both ends have their masses
            EXPECT_NEAR(d.cdf(k), sum, 1e-14) << text << " at " << k;
            EXPECT_EQ(d.cdf(k + 0.5), d.cdf(k)) << text;
        }
        EXPECT_NEAR(sum, 1, 1e-14) << text;
        EXPECT_EQ(d.pdf(lower + 0.5), 0) << text;
    }
    // F(x) = P(X <= x) on both sides of 0: Skellam(2, 3) at -1.5 is the sum up to -2.
    const Distribution skellam("Skellam", {2, 3});
    EXPECT_EQ(skellam.cdf(-1.5), skellam.cdf(-2));
    EXPECT_NEAR(Distribution("ZISkellam", {2, 3, 0.6}).cdf(-1), 0.6 * skellam.cdf(-1), 1e-15);
}

}  // namespace
