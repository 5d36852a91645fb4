// Fits against the best log-likelihoods that an independent optimiser finds, and against fits that others have told.
#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <set>
#include <utility>

#include "classic/core_api.h"
#include "classic/fit_memory.h"
#include "classic/fits.h"
#include "classic/stream.h"
#include "support/table.h"

namespace {

using namespace pral::classic;
using pral::fitting::FittedFamily;
using pral::test::number;
using Values = std::vector<double>;

/// Numbers between commas.
Values list_of(std::string text) {
    std::ranges::replace(text, ',', ' ');
    return pral::test::numbers(text);
}

/// The cells of a table by the names in its first row.
class Row {
  public:
    Row(const std::vector<std::string>& names, const std::vector<std::string>& cells)
        : names_(names), cells_(cells) {}
    std::string operator[](const std::string& name) const {
        const auto at = static_cast<std::size_t>(std::ranges::find(names_, name) - names_.begin());
        return at < cells_.size() ? cells_[at] : "";
    }
    double number(const std::string& name) const { return std::strtod((*this)[name].c_str(), nullptr); }

  private:
    const std::vector<std::string>&names_, &cells_;
};

template <class Check>
void for_each_row(const char* path, Check check) {
    const auto rows = pral::test::table(path);
    for (std::size_t i = 1; i < rows.size(); ++i) check(Row(rows[0], rows[i]));
}

FitDescriptor descriptor_of(const std::string& family, const Values& parameters = {}) {
    FitDescriptor descriptor(code_of("Pral" + family));
    std::ranges::copy(parameters, descriptor.params.begin());
    return descriptor;
}

/// n values of the distribution, drawn from a fresh stream.
Values drawn(const FitDescriptor& descriptor, std::size_t n, unsigned seed, const FitCall& bounds = {}) {
    Values x(n);
    PralSetRandomSeed(seed);
    EXPECT_TRUE(EvaluateFitted(descriptor, x, std::nullopt, bounds.TruncMin, bounds.TruncMax))
        << PralCoreError();
    return x;
}

double natural_log_likelihood(const FitDescriptor& descriptor, const Values& x, const FitCall& bounds = {}) {
    return FitLogLikelihood(descriptor, x, bounds.TruncMin, bounds.TruncMax) * std::log(10.0);
}

/// Fits the row's observations; their likelihood is to be the best. Where a parameter has been rounded, the search is judged by
/// what it must have found before: the rounded best.
void check_fit(const Row& row, const FitCall& request) {
    const std::string label = row["family"] + " " + row["params"];
    const FitDescriptor truth = descriptor_of(row["family"], list_of(row["params"]));
    const Values x = drawn(truth, static_cast<std::size_t>(row.number("count")),
                           static_cast<unsigned>(row.number("seed")), request);
    EXPECT_NEAR(natural_log_likelihood(truth, x, request), row.number("true_log_likelihood"),
                1e-9 * std::fabs(row.number("true_log_likelihood")) + 1e-5)
        << label;
    FitDescriptor fit = descriptor_of(row["family"]);
    ASSERT_TRUE(FitDistribution(fit, x, request)) << label << ": " << PralCoreError();
    const int rounded = fitted_family(fit.code)->rounding.place;
    if (rounded >= 0) {
        const Values best = list_of(row["best_params"]);
        const auto place = static_cast<std::size_t>(rounded);
        for (std::size_t i = 0; i < best.size(); ++i)
            EXPECT_NEAR(fit.params[i], best[i], i == place ? 1 : 2e-3 * std::fabs(best[i]))
                << label << " " << i;
        EXPECT_EQ(fit.params[place], std::round(fit.params[place])) << label;
        std::copy(best.begin(), best.end(), fit.params.begin());
    }
    const double found = natural_log_likelihood(fit, x, request);
    EXPECT_GE(found, row.number("true_log_likelihood")) << label;
    EXPECT_GE(found, row.number("best_log_likelihood") - 0.01) << label;
}

TEST(Fits, FindTheGreatestLikelihood) {
    std::set<std::string> families;
    for_each_row("reference/fits/values.tsv", [&](const Row& row) {
        check_fit(row, {});
        families.insert(row["family"]);
    });
    for (int code = 0; code < static_cast<int>(catalogue().size()); ++code) {
        if (const FittedFamily* family = fitted_family(code)) {
            EXPECT_EQ(family->parameter_count, catalogue()[static_cast<std::size_t>(code)].parameter_count)
                << family->name;
            EXPECT_TRUE(families.contains(std::string(family->name))) << family->name << " has no row";
        }
    }
}

TEST(Fits, FindTheGreatestLikelihoodOfTruncatedData) {
    for_each_row("reference/fits/truncated.tsv", [&](const Row& row) {
        FitCall request;
        request.TruncMin = if_given(row.number("trunc_min"));
        request.TruncMax = if_given(row.number("trunc_max"));
        check_fit(row, request);
    });
}

Values first_column(const std::string& path) {
    std::ifstream file(path);
    EXPECT_TRUE(file) << path;
    Values values;
    bool header = true;
    for (std::string line; std::getline(file, line);) {
        if (line[0] == '#' || std::exchange(header, header && line[0] == '#')) continue;
        values.push_back(std::strtod(line.c_str(), nullptr));
    }
    return values;
}

TEST(Fits, AgreeWithThoseThatOthersTold) {
    for_each_row("reference/fits/published.tsv", [](const Row& row) {
        const Values x = first_column("reference/fits/" + row["data"]);
        const Values told = list_of(row["params"]), tolerances = list_of(row["tolerances"]);
        FitDescriptor fit = descriptor_of(row["family"]);
        ASSERT_TRUE(FitDistribution(fit, x, {})) << row["family"] << ": " << PralCoreError();
        for (std::size_t i = 0; i < told.size(); ++i)
            EXPECT_NEAR(fit.params[i], told[i], tolerances[i])
                << row["family"] << " " << row["data"] << " " << i;
        if (row["log_likelihood"] != "-") {
            EXPECT_NEAR(natural_log_likelihood(fit, x), row.number("log_likelihood"),
                        row.number("log_likelihood_tolerance"))
                << row["family"] << " " << row["data"];
        }
    });
}

/// The fit's log-likelihood, or NaN where there is no fit.
double fitted_log_likelihood(const std::string& family, const Values& x, const FitCall& request = {}) {
    FitDescriptor fit = descriptor_of(family);
    return FitDistribution(fit, x, request) ? natural_log_likelihood(fit, x, request) : std::nan("");
}

/// Likelihoods of several maxima, with one at the edge of the parameters, at a cusp or on a ridge; of the data times 2^40 and
/// 2^-40 as well.
TEST(Fits, FindTheGreatestOfSeveralMaxima) {
    constexpr double kTolerance = 0.002;
    for_each_row("reference/fits/maxima.tsv", [](const Row& row) {
        const Values x = first_column("reference/fits/" + row["data"]);
        for (const int power : {0, 40, -40}) {
            Values scaled = x;
            for (double& value : scaled) value = std::ldexp(value, power);
            const double moved = power * std::log(2.0) * static_cast<double>(x.size());
            EXPECT_GE(fitted_log_likelihood(row["family"], scaled) + moved,
                      row.number("log_likelihood") - kTolerance)
                << row["family"] << " " << row["data"] << " times 2^" << power;
        }
    });
}

/// A family is never below another that it contains, as a member or as a limit of members.
TEST(Fits, AreNotBelowThoseOfFamiliesTheyContain) {
    const std::pair<const char*, const char*> pairs[] = {
        {"Error", "Laplace"},      {"Error", "Uniform"},
        {"SkewNormal", "Normal"},  {"GEV", "ExtValueMax"},
        {"GLogistic", "Logistic"}, {"GLogistic", "ExtValueMax"},
        {"Dagum", "LogLogistic"},  {"Pearson6", "Gamma"},
        {"Pearson6", "Pearson5"},  {"Pearson6", "F"},
        {"Fatigue", "Normal"},     {"LogGamma", "Normal"},
        {"Polya", "Poisson"},      {"BurntFingerPoisson", "Poisson"},
        {"ZIPoisson", "Poisson"},  {"ZIPolya", "Polya"},
        {"Delaporte", "Polya"},    {"JohnsonB", "LognormalE"},
        {"JohnsonU", "Normal"},    {"JohnsonU", "LognormalE"},
        {"Burr", "Dagum"},         {"NormalMix", "Normal"}};
    for (const auto& entry : std::filesystem::directory_iterator("reference/fits/data")) {
        const Values x = first_column(entry.path().string());
        for (const auto& [family, contained] : pairs) {
            const double part = fitted_log_likelihood(contained, x), whole = fitted_log_likelihood(family, x);
            if (std::isnan(part) || std::isnan(whole)) continue;
            EXPECT_GE(whole, part - 1e-3) << family << " " << contained << " " << entry.path();
        }
    }
}

/// Where the sample ends below the triangle's, its likelihood is to be at least that of the true triangle.
TEST(Fits, TrianglesTruncatedFromAbove) {
    FitCall bounds;
    bounds.TruncMax = 12;
    for (const auto& [family, parameters] : {std::pair{"Triangle", Values{1, 10, 30}},
                                             {"Triangle", {1, 20, 25}},
                                             {"LogTriangle", {1, 4, 60}},
                                             {"LogTriangle", {1, 20, 30}}}) {
        const FitDescriptor truth = descriptor_of(family, parameters);
        for (const unsigned seed : {1, 2, 3, 4}) {
            const Values x = drawn(truth, 300, seed, bounds);
            EXPECT_GE(fitted_log_likelihood(family, x, bounds), natural_log_likelihood(truth, x, bounds))
                << family << " " << parameters[1] << " " << seed;
        }
    }
}

/// Every family meets data that it cannot have, or can hardly: a message or a fit, soon, and no parameters after failure.
TEST(Fits, EndForAnyData) {
    const double kNaN = std::nan(""), kInf = HUGE_VAL;
    const std::vector<Values> samples = {{5},
                                         {0},
                                         {-3},
                                         {0, 0, 0},
                                         {2, 2, 2, 2},
                                         {1, 2},
                                         {0, 1},
                                         {-1, 4},
                                         {0.25, 0.75},
                                         {kNaN, 1, 2},
                                         {1, kInf, 3},
                                         {1e300, 2e300},
                                         {5e-324, 1e-300, 3e-310},
                                         {-1e308, 1e308},
                                         {1, 1, 1, 7},
                                         {0.1, 0.2, 1e9},
                                         {1e15, 1e15 + 1, 1e15 + 4},
                                         {1e17, 1e17 + 16, 1e17 + 32},
                                         {0, 3, 0, 12, 1, 0, 5}};
    PralSetFitTimeout(5);
    for (const CatalogueRow& row : catalogue()) {
        FitDescriptor fit(code_of(row.name));
        if (fitted_family(fit.code) == nullptr) continue;
        for (const Values& x : samples) {
            for (const bool shifted : {false, true}) {
                fit.clear();
                PralSetCoreError("");
                double shift = 0.25;
                FitCall request;
                if (shifted) request.shift = &shift;
                const bool success = FitDistribution(fit, x, request);
                const bool silent = std::string(row.name) == "PralSkewNormal" && x.size() < 3;
                EXPECT_TRUE(success || silent || PralCoreError()[0] != '\0') << row.name;
                EXPECT_TRUE(success ? std::fabs(shift) < DBL_MAX : shift == 0.25) << row.name << " " << shift;
                for (int i = 0; i < row.parameter_count; ++i) {
                    const double p = fit.params[static_cast<std::size_t>(i)];
                    EXPECT_TRUE(success ? std::fabs(p) < DBL_MAX : p == -DBL_MAX)
                        << row.name << " of " << x[0] << ", ...";
                }
            }
        }
    }
    PralSetFitTimeout(60);
}

/// Replicates scatter about the fit as the estimator does: by sigma/sqrt(n) for a mean, whatever the scale of the data.
TEST(Fits, ReplicatesScatterAsTheEstimatorDoes) {
    for (const double scale : {1.0, 1e-6, 1e6}) {
        const std::size_t n = 400;
        const Values x = drawn(descriptor_of("Logistic", {0, scale}), n, 11);
        FitDescriptor fit = descriptor_of("Logistic");
        ASSERT_TRUE(FitDistribution(fit, x, {}));
        FitCall request;
        request.uncertainty = true;
        const int kReplicates = 200;
        double sum = 0, squares = 0;
        for (int i = 0; i < kReplicates; ++i) {
            FitDescriptor replicate = descriptor_of("Logistic");
            ASSERT_TRUE(FitDistribution(replicate, x, request));
            const double z =
                (replicate.params[0] - fit.params[0]) / (scale * std::sqrt(3.0 / static_cast<double>(n)));
            sum += z;
            squares += z * z;
        }
        EXPECT_NEAR(sum / kReplicates, 0, 4 / std::sqrt(kReplicates)) << scale;  // four standard deviations
        EXPECT_NEAR(squares / kReplicates, 1, 4 * std::sqrt(2.0 / kReplicates)) << scale;
    }
}

TEST(Fits, HoldTheCountThatTheCallerGives) {
    const Values x = drawn(descriptor_of("BetaBinomial", {20, 2, 3}), 500, 3);
    FitCall request;
    request.firstParameter = 30;
    FitDescriptor fit = descriptor_of("BetaBinomial");
    ASSERT_TRUE(FitDistribution(fit, x, request));
    EXPECT_EQ(fit.params[0], 30);
    const double found = natural_log_likelihood(fit, x);
    for (const double factor : {0.99, 1.01}) {
        for (const std::size_t i : {1, 2}) {
            FitDescriptor other = fit;
            other.params[i] *= factor;
            EXPECT_LT(natural_log_likelihood(other, x), found) << i;
        }
    }
}

/// Counts of which the zeros have not been observed: fitted as truncated above 1/2, and by the zero-truncated family.
TEST(Fits, CountsTruncatedBetweenIntegers) {
    const std::pair<const char*, Values> rows[] = {
        {"Poisson", {1.5}}, {"Geometric", {0.3}}, {"Polya", {2, 3}}, {"Delaporte", {2, 2, 1}}};
    for (const auto& [name, parameters] : rows) {
        const std::string truncated = std::string("ZT") + name;
        const Values x = drawn(descriptor_of(truncated, parameters), 300, 17);
        FitDescriptor by_bound = descriptor_of(name), by_family = descriptor_of(truncated);
        FitCall request;
        request.TruncMin = 0.5;
        ASSERT_TRUE(FitDistribution(by_bound, x, request)) << name << PralCoreError();
        ASSERT_TRUE(FitDistribution(by_family, x, {})) << name << PralCoreError();
        EXPECT_NEAR(FitLogLikelihood(by_bound, x, 0.5, std::nullopt),
                    FitLogLikelihood(by_family, x, std::nullopt, std::nullopt), 1e-5)
            << name;
    }
}

/// The sum of the log masses less the logarithm of their sum over the counts above the lower bound up to the upper one.
TEST(Fits, LikelihoodsOfCountsBetweenBounds) {
    const Values x = {9, 12, 12, 20, 35};
    const struct {
        const char* family;
        Values parameters;
        std::optional<double> lower, upper;
        double expected;  // mpmath
    } rows[] = {{"BetaNegBin", {2.5, 3, 7}, 8, 40, -15.728819884770775},
                {"BetaNegBin", {900.5, 80, 70}, 8, 40, -132.7155903058915},
                {"ZIBetaNegBin", {2.5, 3, 7, 0.6}, std::nullopt, 40, -24.206079390706025},
                {"ZIBetaNegBin", {2.5, 3, 7, 0.6}, 8, 40, -15.728819884770775},
                {"ZTBetaNegBin", {2.5, 3, 7}, std::nullopt, 40, -21.238659367377557},
                {"BetaBinomial", {90.5, 2, 3}, 8, 40, -18.158755975723427},
                {"BetaBinomial", {4000, 3000, 1000}, 8, 40, -508.30083036625279},
                {"ZIBetaBinomial", {90.5, 2, 3, 0.6}, -1, 40, -22.353841493218845},
                {"BetaGeometric", {3, 40}, 8.5, 40.5, -15.890305683380271},
                {"PoissonUniform", {3, 60}, 8, 40, -17.328290366910212}};
    for (const auto& [family, parameters, lower, upper, expected] : rows) {
        FitCall bounds;
        bounds.TruncMin = lower;
        bounds.TruncMax = upper;
        const FitDescriptor at = descriptor_of(family, parameters);
        EXPECT_NEAR(natural_log_likelihood(at, x, bounds), expected, 1e-11 * std::fabs(expected))
            << family << " above " << lower.value_or(-HUGE_VAL);
        EXPECT_EQ(FitLogLikelihood(at, x, lower, 30), -DBL_MAX) << family;
    }
}

/// Data moved by a known amount: the shift and the other parameters take it up.
TEST(Fits, FindTheShift) {
    Values x = drawn(descriptor_of("Gamma", {3, 2}), 2000, 5);
    for (double& value : x) value -= 100;
    double shift = -101;
    FitCall request;
    request.shift = &shift;
    FitDescriptor fit = descriptor_of("Gamma");
    ASSERT_TRUE(FitDistribution(fit, x, request)) << PralCoreError();
    EXPECT_NEAR(shift, -100, 0.3);
    EXPECT_NEAR(fit.params[0] * fit.params[1] + shift, std::reduce(x.begin(), x.end()) / 2000, 0.02);
    EXPECT_GT(FitLogLikelihood(fit, x, std::nullopt, std::nullopt, shift),
              FitLogLikelihood(descriptor_of("Gamma", {3, 2}), x, std::nullopt, std::nullopt, -100));
}

/// Data that a family can have, however hard they make it to begin.
TEST(Fits, AcceptTiesZerosAndOutliers) {
    const Values ties = {1, 2, 2, 2, 2, 2, 2, 2, 3, 4.5}, low_ties = {1, 1, 1, 1, 1, 1, 1, 1, 2, 5},
                 zeros = {0, 0, 0, 0, 0, 0, 0, 0.5, 2, 7};
    Values outlier(40, 0), inflated(50, 0);
    for (std::size_t i = 0; i < outlier.size(); ++i) outlier[i] = std::sin(static_cast<double>(i));
    outlier[0] = 1e9;
    Values below = outlier;
    below[0] = -1e9;
    std::copy_n(Values{1, 1, 2, 1, 3}.begin(), 5, inflated.begin());
    const std::pair<const char*, Values> rows[] = {
        {"Cauchy", ties},       {"Logistic", ties},    {"HS", ties},
        {"Slash", ties},        {"ExtValueMax", ties}, {"ExtValueMin", ties},
        {"Burr", low_ties},     {"Fatigue", low_ties}, {"LogGamma", low_ties},
        {"Levy", low_ties},     {"Pareto2", zeros},    {"ExtValueMin", outlier},
        {"ExtValueMax", below}, {"Logistic", outlier}, {"ZILogarithmic", inflated}};
    for (const auto& [name, x] : rows) {
        FitDescriptor fit = descriptor_of(name);
        EXPECT_TRUE(FitDistribution(fit, x, {})) << name << ": " << PralCoreError();
        double median = 0;
        const double half = 0.5;
        EXPECT_TRUE(EvaluateFitted(fit, {&median, 1}, half, std::nullopt, std::nullopt)) << name;
    }
}

/// Wherever there is a fit, it has values and replicates.
TEST(Fits, HaveValuesWhateverTheParameters) {
    for (const char* name : {"BetaNegBin", "ZIBetaNegBin", "ZTBetaNegBin"}) {
        for (const Values& x : {Values{1, 1, 1, 1, 2}, Values{1, 2, 5, 40, 1000}, Values{3, 4, 4, 5, 5, 6},
                                Values{1, 1, 2, 1, 1, 30}}) {
            FitDescriptor fit = descriptor_of(name);
            ASSERT_TRUE(FitDistribution(fit, x, {})) << name << ": " << PralCoreError();
            Values out(3);
            EXPECT_TRUE(FitAndEvaluate(fit, out, x, 0.5, {})) << name << " " << x.back() << PralCoreError();
        }
    }
}

/// A fit that the time-out has ended leaves nothing behind, in the memory of results neither.
TEST(Fits, UnfinishedOnesAreFailures) {
    const Values x = drawn(descriptor_of("Gamma", {3, 2}), 200, 21);
    for (const char* name : {"JohnsonU", "Kumaraswamy4", "Gamma", "Triangle", "Delaporte"}) {
        const Values& data = std::string(name) == "Delaporte" ? Values{3, 1, 0, 4, 9, 2, 2, 7} : x;
        for (const bool shifted : {false, true}) {
            double shift = -1;
            FitCall request;
            if (shifted) request.shift = &shift;
            FitDescriptor fit = descriptor_of(name);
            PralSetFitTimeout(0);
            EXPECT_FALSE(FitDistribution(fit, data, request)) << name;
            EXPECT_EQ(fit.params[0], -DBL_MAX) << name;
            EXPECT_EQ(shift, -1) << name;
            PralSetFitTimeout(60);
            const long before = fit_memory().evaluations;
            EXPECT_TRUE(FitDistribution(fit, data, request)) << name << PralCoreError();
            EXPECT_GT(fit_memory().evaluations, before) << name;
        }
    }
}

/// The deadline reaches into the likelihood of a large sample.
TEST(Fits, LongSumsCanBeInterrupted) {
    struct Enough {};
    const FitDescriptor truth = descriptor_of("NegBin", {2, 1e-9});
    const Values counts = drawn(truth, 5000, 1), reals = drawn(descriptor_of("Cauchy", {0, 1}), 20000, 2);
    const std::pair<const char*, const Values*> rows[] = {{"Poisson", &counts},   {"Skellam", &counts},
                                                          {"ZIPoisson", &counts}, {"Delaporte", &counts},
                                                          {"Cauchy", &reals},     {"JohnsonU", &reals}};
    for (const auto& [name, x] : rows) {
        int pauses = 0;
        const pral::Sample::Pause pause = [&] {
            if (++pauses == 3) throw Enough();
        };
        const FitDescriptor fit = descriptor_of(name, {1, 0.5, 0.5, 0.5});
        EXPECT_THROW(fitted_family(fit.code)->log_likelihood(fit.params.data(), pral::Sample(*x, &pause),
                                                             pral::Limits{}),
                     Enough)
            << name;
    }
}

/// One change of each member of a request: another fit, whichever comes first.
TEST(Fits, AreRememberedAndFoundAgain) {
    using Change = void (*)(FitCall&);
    static double shift;
    static Values start;
    const Change changes[] = {[](FitCall&) {},
                              [](FitCall& r) { r.TruncMin = 0; },
                              [](FitCall& r) { r.TruncMax = 1000; },
                              [](FitCall& r) { r.key = "Sheet1!A1"; },
                              [](FitCall& r) { r.firstParameter = 30; },
                              [](FitCall& r) { r.firstParameter = 31; },
                              [](FitCall& r) { r.shift = &(shift = 0); },
                              [](FitCall& r) { r.shift = &(shift = -1); },
                              [](FitCall& r) { r.startValues = start.data(); },
                              [](FitCall& r) { r.uncertainty = true; }};
    constexpr std::size_t kFirstNotKept = 6;
    Values x = drawn(descriptor_of("BetaBinomial", {20, 2, 3}), 100, 9);
    start = {25, 2, 3};
    for (const bool backwards : {false, true}) {
        x.front() += 1;  // data that no fit has met
        for (std::size_t i = 0; i < std::size(changes); ++i) {
            const std::size_t change = backwards ? std::size(changes) - 1 - i : i;
            FitCall request;
            changes[change](request);
            const long before = fit_memory().evaluations;
            FitDescriptor fit = descriptor_of("BetaBinomial"), again = fit;
            ASSERT_TRUE(FitDistribution(fit, x, request)) << change << PralCoreError();
            EXPECT_GT(fit_memory().evaluations, before) << change;
            changes[change](request);
            const long so_far = fit_memory().evaluations;
            ASSERT_TRUE(FitDistribution(again, x, request));
            EXPECT_EQ(fit_memory().evaluations == so_far, change < kFirstNotKept) << change;
            EXPECT_EQ(fit.params == again.params, !request.uncertainty) << change;
        }
    }
    FitDescriptor last = descriptor_of("BetaBinomial");
    ASSERT_TRUE(FitDistribution(last, x, {}));
    const long before = fit_memory().evaluations;
    x.back() = x.back() > 0 ? x.back() - 1 : 1;
    ASSERT_TRUE(FitDistribution(last, x, {}));
    EXPECT_GT(fit_memory().evaluations, before);
}

/// Fits as other parts of the library use them: numbers come from the stream given, failures are thrown, the process's error
/// text and stream stay as they are.
TEST(Fits, InsideKeepNothingOfTheirOwn) {
    const Values x = {1, 2, 4, 8, 3, 2.5, 6, 0.5};
    const FittedFamily& gamma = *pral::fitting::fitted_family("Gamma");
    const auto deadline = pral::fitting::Deadline::in(60);
    PralSetRandomSeed(3);
    const double first = pral::random_stream().uniform();
    PralSetRandomSeed(3);
    PralSetCoreError("untouched");

    const auto fitted = pral::fitting::fit(gamma, x, {}, deadline).parameters;
    std::set<double> replicates;
    for (const unsigned seed : {11, 11, 12}) {
        pral::RandomStream stream;
        stream.seed(seed);
        replicates.insert(pral::fitting::refit(gamma, fitted, x.size(), {}, deadline, stream).parameters[0]);
    }
    EXPECT_EQ(replicates.size(), 2);

    // Counts from 1 on are counts without zeros.
    const Values counts = {1, 2, 1, 4, 3, 1, 2, 6, 1, 2};
    pral::fitting::FitRequest from_one;
    from_one.TruncMin = 1;
    const auto fit = [&](const char* name, const pral::fitting::FitRequest& request) {
        return pral::fitting::fit(*pral::fitting::fitted_family(name), counts, request, deadline)
            .parameters[0];
    };
    EXPECT_NEAR(fit("Poisson", from_one), fit("ZTPoisson", {}), 1e-4);
    from_one.above_min = true;
    EXPECT_LT(fit("Poisson", from_one), fit("ZTPoisson", {}) - 0.1);

    pral::fitting::FitRequest above;
    above.TruncMin = 1;
    EXPECT_THROW(pral::fitting::fit(gamma, x, above, deadline), pral::fitting::Failure);
    EXPECT_THROW(pral::fitting::fit(gamma, Values{-1, 2}, {}, deadline), pral::fitting::Failure);
    EXPECT_THROW(pral::fitting::fit(gamma, x, {}, pral::fitting::Deadline::in(0)), pral::fitting::TimedOut);
    pral::RandomStream stream;
    double value = 0;
    EXPECT_THROW(gamma.values({&value, 1}, fitted.data(), pral::fitting::limits_of(3, 2), nullptr, stream),
                 pral::fitting::Contradiction);
    EXPECT_STREQ(PralCoreError(), "untouched");
    EXPECT_EQ(pral::random_stream().uniform(), first);
}

}  // namespace
