// The families, read from the public header's own list.
#include "families.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>

#include "arguments.h"
#include "classic/core_api.h"
#include "errors.h"
#include "text.h"

// Prototypes are shown without the import and linkage words.
#undef PRAL_API
#define PRAL_API

namespace cli {

const std::vector<Family>& families() {
    static const std::vector<Family> list = {
#define PRAL_FAMILY PRAL_FAMILY_ELEMENT
#include "classic/core_api.h"
    };
    return list;
}

namespace {

/// Levenshtein's distance: the least number of letters to insert, delete or replace.
std::size_t edit_distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced = diagonal + (a[i] != b[j]);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
        }
    }
    return row.back();
}

Arguments parse_arguments(const Family& family, const std::vector<std::string>& given) {
    const auto wanted = family.parameters.size();
    if (given.size() != wanted) {
        throw UsageError(fmt::format("{} takes {} parameter{} ({}), not {}", family.name, wanted,
                                     wanted == 1 ? "" : "s", parameter_names(family), given.size()));
    }
    Arguments arguments;
    for (std::size_t i = 0; i < wanted; ++i) {
        const auto& [name, is_table] = family.parameters[i];
        arguments.push_back(is_table ? parse_numbers(given[i], name)
                                     : std::vector{parse_number(given[i], name)});
    }
    return arguments;
}

Modifiers parse_modifiers(const FamilyOptions& options) {
    constexpr int max_is_percentile = 1, min_is_percentile = 2;
    Modifiers modifiers;
    modifiers.shift = options.shift;
    const auto& [min, max, min_p, max_p] =
        std::tie(options.min, options.max, options.min_percentile, options.max_percentile);
    if (!min && !max && !min_p && !max_p) return modifiers;
    if ((min && min_p) || (max && max_p)) throw UsageError("a bound is a value or a percentile, not both");
    modifiers.bounds_mode = (min_p ? min_is_percentile : 0) + (max_p ? max_is_percentile : 0);
    modifiers.bounds_min = min_p ? *min_p : min.value_or(-DBL_MAX);
    modifiers.bounds_max = max_p ? *max_p : max.value_or(DBL_MAX);
    return modifiers;
}

}  // namespace

const Family& find_family(const std::string& name) {
    const std::string wanted = lower_case(name);
    const auto distance = [&](const Family& family) {
        return edit_distance(wanted, lower_case(family.name));
    };
    const Family& nearest = *std::ranges::min_element(families(), {}, distance);
    if (distance(nearest) == 0) return nearest;
    throw UsageError(fmt::format("there is no family \"{}\"; did you mean {}? (pral list shows all)",
                                 shown(name), nearest.name));
}

std::string_view other_names(const Family& family) {
    static const std::map<std::string_view, std::string_view> names = {
        {"BetaBinomial", "beta-binomial, Polya-Eggenberger"},
        {"BetaGeometric", "beta-geometric, Waring"},
        {"BetaNegBin", "beta-negative binomial, generalized Waring"},
        {"BetaSubj", "subjective beta"},
        {"Burr", "Burr type XII, Singh-Maddala"},
        {"Cauchy", "Lorentz"},
        {"ChiSq", "chi-square, chi-squared"},
        {"CumulA", "cumulative, ascending"},
        {"CumulD", "cumulative, descending"},
        {"DUniform", "discrete uniform"},
        {"Dagum", "inverse Burr, Burr type III"},
        {"Erf", "error function"},
        {"Error", "generalized normal, Subbotin"},
        {"Expon", "exponential"},
        {"ExtValueMax", "extreme value, Gumbel"},
        {"ExtValueMin", "extreme value, Gumbel, smallest extreme value"},
        {"F", "Fisher, Snedecor"},
        {"Fatigue", "Birnbaum-Saunders, fatigue life"},
        {"GEV", "generalized extreme value, Frechet, Gumbel, Fisher-Tippett"},
        {"GLogistic", "generalized logistic"},
        {"GTU", "generalized trapezoidal uniform"},
        {"HypergeoD", "hypergeometric"},
        {"HypergeoM", "hypergeometric"},
        {"Hypergeo", "hypergeometric"},
        {"InvGauss", "inverse Gaussian, Wald"},
        {"InvHypergeo", "inverse hypergeometric, negative hypergeometric"},
        {"JohnsonB", "Johnson SB, bounded"},
        {"JohnsonU", "Johnson SU, unbounded"},
        {"Laplace", "double exponential"},
        {"LogTriangle", "log-triangular"},
        {"Logarithmic", "log-series"},
        {"Maxwell", "Maxwell-Boltzmann"},
        {"NCChiSq", "noncentral chi-square, chi-squared"},
        {"NCF", "noncentral F"},
        {"NegBin", "negative binomial, Pascal"},
        {"Normal", "Gaussian"},
        {"NormalMix", "Gaussian mixture"},
        {"Pareto2", "Lomax"},
        {"Pearson5", "inverse gamma, inverted gamma"},
        {"Pearson6", "beta prime, inverted beta"},
        {"Polya", "negative binomial with real size"},
        {"Slash", "normal over uniform"},
        {"StepUniform", "discrete uniform"},
        {"Student3", "three-parameter t, location-scale t"},
        {"Triangle", "triangular"},
        {"TriangleAlt", "triangular"},
        {"Uniform", "rectangular"},
    };
    const auto found = names.find(family.name);
    return found == names.end() ? std::string_view{} : found->second;
}

std::string parameter_names(const Family& family) {
    return joined(family.parameters, ", ",
                  [](const Parameter& p) { return p.name + (p.is_table ? "[]" : ""); });
}

FamilyCall make_call(const FamilyOptions& options) {
    const Family& family = find_family(options.family);
    return {family, parse_arguments(family, options.parameters), parse_modifiers(options)};
}

}  // namespace cli
