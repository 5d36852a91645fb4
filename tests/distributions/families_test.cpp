// Every family against its definition in 50-digit arithmetic (reference/families/values and truncated), both tails.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstdio>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "classic/core_api.h"
#include "classic/members.h"
#include "distributions/families.h"
#include "support/accuracy.h"
#include "support/table.h"

namespace {

using namespace pral;
using namespace pral::test;

/// A family's members with its type forgotten.
struct Members {
    Tails tails;
    double log_density, log_likelihood, log_cumulative;
    bool discrete;
    std::function<double(double)> quantile, quantile_upper;
    std::function<Tails(double)> tails_at;
    double truncated_cumulative, truncated_log_density;
    std::function<double(double)> truncated_quantile;
    std::function<double()> likelihood_error;
};

/// How far the likelihood of 300 values, in whatever way the family sums it, is from the sum of its terms.
template <class D>
double likelihood_error(const D& d) {
    std::vector<double> values;
    for (int i = 1; i <= 300; ++i) values.push_back(quantile(d, i / 301.0));
    double sum = 0, size = 1;
    for (const double value : values) {
        const double term = d.log_density(value);
        sum += term;
        size += std::fabs(term);
    }
    if (!std::isfinite(sum)) return 0;  // rounded to an end of the support
    const double joint = log_likelihood(d, std::span<const double>(values));
    return joint == sum ? 0 : error_of(std::fabs(joint - sum) / size);
}

using Evaluate = std::function<Members(const Parameters&, double x, const Modifiers&)>;

template <class D, std::size_t... I>
Members evaluate(const Parameters& p, double x, const Modifiers& given, std::index_sequence<I...>) {
    const D d(p.at(I)...);
    EXPECT_EQ(d.check(), nullptr);
    Members m;
    m.tails = tails(d, x);
    m.log_density = d.log_density(x);
    m.log_likelihood = log_likelihood(d, std::span<const double>(&x, 1));
    m.discrete = requires { D::kDiscrete; };
    m.log_cumulative = log_cumulative(d, x);
    m.quantile = [d](double u) { return quantile(d, u); };
    m.quantile_upper = [d](double q) { return quantile_upper(d, q); };
    m.tails_at = [d](double at) { return tails(d, at); };
    const Truncated<D> kept(d, true, given.limits());
    m.truncated_cumulative = kept.cumulative(x);
    m.truncated_log_density = joint_density(std::span(&x, 1), x, x, kept, Scale::natural_log);
    const Modifiers copy = given;
    m.truncated_quantile = [d, copy](double u) { return Truncated<D>(d, true, copy.limits()).quantile(u); };
    m.likelihood_error = [d] { return likelihood_error(d); };
    return m;
}

template <class D, class... T>
void add(std::map<std::string, Evaluate>& all, const char* name, bool (*)(double*, T...)) {
    if constexpr (!(std::is_same_v<T, int> || ...)) {
        all[name] = [](const Parameters& p, double x, const Modifiers& given) {
            return evaluate<D>(p, x, given, std::make_index_sequence<sizeof...(T) - 5>());
        };
    }
}

const std::map<std::string, Evaluate>& families() {
    static const auto all = [] {
        std::map<std::string, Evaluate> list;
#define PRAL_FAMILY(X, KIND, KIN, PARAMETERS, TEXT) add<pral::X>(list, #X, Pral##X##_Core);
#include "classic/core_api.h"
        return list;
    }();
    return all;
}

/// Every family keeps 1e-12; this is what users of the library may rely on.
constexpr double kBound = 1e-12;

TEST(Families, AgreeWithTheirDefinition) {
    Accuracy record;
    for (const auto& row : tables("reference/families/values")) {
        const std::string &name = row.at(0), place = row.at(2) + " x = " + row.at(3);
        const double x = number(row, 3), lower = number(row, 4), upper = number(row, 5), log = number(row, 6);
        if (name == "ZISkellam" && x < 0)
            continue;  // the classic calls count the extra zeros below 0 as well
        const Members m = families().at(name)(numbers(row[2]), x, {});
        record.record(name + " cumulative", relative_error(m.tails.lower, lower), place);
        record.record(name + " survival", relative_error(m.tails.upper, upper), place);
        record.record(name + " log density", scaled_error(m.log_density, log), place);
        // Sums over many values take ln x off as a whole, and keep the digits of the larger of the two.
        const double size = std::max({1.0, std::fabs(log), x == 0 ? 0 : std::fabs(std::log(std::fabs(x)))});
        const double missing =
            m.log_likelihood == log ? 0 : error_of(std::fabs(m.log_likelihood - log) / size);
        record.record(name + " log likelihood", missing, place);
        const double log_lower = upper < 0.5 ? std::log1p(-upper) : std::log(lower);
        record.record(name + " log cumulative", relative_error(m.log_cumulative, log_lower), place);
        if (lower == 1) continue;
        // The quantile gives back its percentile, measured in the smaller tail; an integer, from anywhere inside its step.
        const bool below = lower < 0.5;
        const double inside = m.discrete ? std::min(1e-9, 0.25 * std::exp(log) / std::min(lower, upper)) : 0;
        const double back = below ? m.quantile(lower * (1 - inside)) : m.quantile_upper(upper * (1 + inside));
        const double x_error = relative_error(back, x);
        const Tails at = m.tails_at(back);
        const double p_error = below ? relative_error(at.lower, lower) : relative_error(at.upper, upper);
        record.record(name + " quantile", inside > 4e-12 ? x_error : std::min(x_error, p_error), place);
    }
    record.report(kBound);
}

/// Once for each set of parameters: what does not need a reference.
TEST(Families, KeepTheirLaws) {
    Accuracy record;
    std::string before;
    for (const auto& row : tables("reference/families/values")) {
        const std::string &name = row.at(0), place = name + " " + row.at(2);
        if (place == before) continue;
        before = place;
        const Members m = families().at(name)(numbers(row[2]), number(row, 3), {});
        if (m.discrete) continue;
        record.record(name + " likelihood", m.likelihood_error(), 1e-13, row[2]);
        // A percentile next to 1 has all digits of what is above it.
        for (const double q : {0x1p-49, 0x1p-30, 0x1p-10, 0.125}) {
            const double from_lower = m.quantile(1 - q), from_upper = m.quantile_upper(q);
            const double p_error = relative_error(m.tails_at(from_lower).upper, q);
            const double error = std::min(relative_error(from_lower, from_upper) / 0x1p-52 * 1e-13, p_error);
            record.record(name + " quantile of 1 - q", error, 4e-13, row[2]);
        }
    }
    record.report();
}

TEST(Families, KeepTheirDigitsWhenTruncated) {
    Accuracy record;
    for (const auto& row : tables("reference/families/truncated")) {
        const std::string &name = row.at(0), place = row.at(1) + " kept on " + row.at(3) + ", " + row.at(4);
        const int mode = std::stoi(row.at(2));
        const double min = number(row, 3), max = number(row, 4), x = number(row, 5),
                     cumulative = number(row, 6), log = number(row, 7);
        const Members m = families().at(name)(numbers(row[1]), x, {nullptr, &mode, &min, &max, nullptr});
        record.record(name + " cumulative", relative_error(m.truncated_cumulative, cumulative), place);
        record.record(name + " log density", relative_error(m.truncated_log_density, log), place);
        // Closer to 1 the percentile, rounded to double, belongs to another x; and the tails must differ.
        if (cumulative < 0.99 && std::min(m.tails.lower, m.tails.upper) > DBL_MIN)
            record.record(name + " quantile",
                          relative_error(m.truncated_quantile(cumulative * (m.discrete ? 1 - 1e-9 : 1)), x),
                          place);
    }
    record.report(kBound);
}

}  // namespace
