// What the list of families says of them: the ranges of their parameters, and which of them can be fitted.
#include <gtest/gtest.h>
#include <pral_core/core_api.h>
#include <pral_core/objects.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <string>
#include <vector>

#include "objects/examples.h"

namespace {

using namespace pral::test;

std::vector<std::string> words(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> all;
    for (std::string word; stream >> word;) all.push_back(word);
    return all;
}

struct Bound {
    char side;  // '<' or '>'
    bool closed;
    double at;
};
struct Range {
    bool whole = false;
    std::vector<Bound> bounds;

    bool has(double x) const {
        return std::ranges::all_of(bounds, [x](const Bound& bound) {
            return (bound.closed && x == bound.at) || (bound.side == '<' ? x < bound.at : x > bound.at);
        });
    }
};

/// A number, the name of a parameter, or some of them with + and - between.
double value_of(const std::string& text, const std::vector<std::string>& names,
                const std::vector<double>& values) {
    double sum = 0;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::size_t end = std::min(text.find_first_of("+-", begin + 1), text.size());
        const double sign = text[begin] == '-' ? -1 : 1;
        const bool signed_term = text[begin] == '-' || text[begin] == '+';
        const std::string term = text.substr(begin + signed_term, end - begin - signed_term);
        const auto name = std::ranges::find(names, term);
        EXPECT_TRUE(name != names.end() || std::isdigit(static_cast<unsigned char>(term[0]))) << text;
        sum += sign * (name == names.end() ? std::stod(term)
                                           : values[static_cast<std::size_t>(name - names.begin())]);
        begin = end;
    }
    return sum;
}

Range parsed(std::string text, const std::vector<std::string>& names, const std::vector<double>& values) {
    Range range;
    if (text == "any number") return range;
    if (text.starts_with("in ")) {
        const std::size_t comma = text.find(',');
        range.bounds = {{'>', text[3] == '[', std::stod(text.substr(4, comma - 4))},
                        {'<', text.back() == ']', std::stod(text.substr(comma + 1))}};
        return range;
    }
    const std::vector<std::string> all = words(text);
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (all[i] == "whole") {
            range.whole = true;
        } else if (all[i] != "and") {
            EXPECT_TRUE(i + 1 < all.size() && (all[i][0] == '<' || all[i][0] == '>')) << text;
            range.bounds.push_back({all[i][0], all[i].size() == 2, value_of(all[i + 1], names, values)});
            ++i;
        }
    }
    return range;
}

/// The text after the last comma that is not inside an interval.
std::string range_of(const std::string& text) {
    const std::size_t comma = text.rfind(", ");
    EXPECT_NE(comma, std::string::npos) << text;
    return text.substr(comma + 2);
}

bool is_made(const std::string& family, const std::vector<double>& values) {
    pral_distribution* made = nullptr;
    const pral_status status =
        pral_distribution_make(family.c_str(), values.data(), nullptr, values.size(), &made, nullptr);
    EXPECT_TRUE(status == PRAL_OK || status == PRAL_ERROR_PARAMETER) << family;
    pral_distribution_free(made);
    return status == PRAL_OK;
}

/// Just outside a bound a parameter is refused; at a closed one, and just inside, it is taken.
TEST(Families, TakeParametersInTheirRangesOnly) {
    for (const auto& [family, example] : examples()) {
        std::vector<double> values;
        std::vector<std::string> names;
        for (std::size_t i = 0; i < example.size(); ++i) {
            const pral_parameter parameter = parameter_of(family, i);
            names.emplace_back(parameter.name);
            ASSERT_GT(std::string(parameter.text).find(','), 2U) << family << " " << parameter.name;
            if (!parameter.is_table) values.push_back(example[i][0]);
            if (parameter.is_table) {
                EXPECT_EQ(range_of(parameter.text), "an array");
            }
        }
        if (values.size() != example.size() || family == "StepUniform") continue;
        ASSERT_TRUE(is_made(family, values)) << family;
        for (std::size_t i = 0; i < values.size(); ++i) {
            const Range range = parsed(range_of(parameter_of(family, i).text), names, values);
            const auto with = [&](double value) {
                std::vector<double> changed = values;
                changed[i] = value;
                return is_made(family, changed);
            };
            const std::string where = family + " " + names[i] + " at ";
            EXPECT_FALSE(with(std::nan(""))) << where << "nan";
            for (const auto& [side, closed, at] : range.bounds) {
                const double outwards = side == '<' ? HUGE_VAL : -HUGE_VAL;
                const double beyond =
                    range.whole ? at + std::copysign(1, outwards) : std::nextafter(at, outwards);
                EXPECT_FALSE(with(beyond)) << where << beyond;
                if (range.has(at) || !closed) {
                    EXPECT_EQ(with(at), closed) << where << at;
                }
            }
            if (range.whole) {
                EXPECT_FALSE(with(values[i] + 0.5)) << where << "a fraction";
            }
            // Where all is open, all is taken.
            if (range.bounds.empty()) {
                for (const double any : {-1e6, -1.0, 0.0, 1.0, 1e6}) {
                    EXPECT_TRUE(with(any) || family == "Lifetime3") << where << any;
                }
            }
        }
    }
}

TEST(Families, KnowWhichOfThemHaveFits) {
    for (std::size_t i = 0; i < pral_family_count(); ++i) {
        const std::string name = pral_family_name(i);
        const double data[] = {1, 2, 3, 2, 1}, parameters[] = {1, 1, 1, 1, 1, 1};
        double out = 0;
        PralSetCoreError("");
        PralFitLogLikelihood_Core(&out, name.c_str(), parameters,
                                  static_cast<int>(family_of(name).parameter_count), data, 5, -1e100, 1e100,
                                  nullptr);
        const bool missing = std::string(PralCoreError()).find("there is no fit of") != std::string::npos;
        EXPECT_EQ(family_of(name).fittable == 1, !missing) << name;
    }
}

}  // namespace
