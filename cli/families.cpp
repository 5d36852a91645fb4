// The families, as the library lists them.
#include "families.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <pral_core/objects.hpp>

#include "errors.h"
#include "text.h"

namespace cli {

namespace {

pral_family family_info(const std::string& name) {
    pral_family info = {};
    info.size = sizeof info;
    pral::door::call(pral_family_info, name.c_str(), &info);
    return info;
}

Parameter parameter_of(const char* family, std::size_t index) {
    pral_parameter info = {};
    info.size = sizeof info;
    pral::door::call(pral_family_parameter, family, index, &info);
    return {info.name, info.is_table != 0, info.text};
}

Family family_of(const char* name) {
    const pral_family info = family_info(name);
    Family family = {info.name, "", info.text, {}};
    family.kind = info.kind == PRAL_CONTINUOUS ? "continuous"
                  : info.kind == PRAL_DISCRETE ? "discrete"
                                               : "data";
    for (std::size_t i = 0; i < info.parameter_count; ++i) family.parameters.push_back(parameter_of(name, i));
    return family;
}

}  // namespace

const std::vector<Family>& families() {
    static const std::vector<Family> list = [] {
        std::vector<Family> all;
        for (std::size_t i = 0; i < pral_family_count(); ++i) all.push_back(family_of(pral_family_name(i)));
        return all;
    }();
    return list;
}

const Family& find_family(const std::string& name) {
    try {
        return *std::ranges::find(families(), family_info(shown(name)).name, &Family::name);
    } catch (const pral::Error& error) {
        throw UsageError(fmt::format("{} (pral list shows all)", error.what()));
    }
}

std::string_view other_names(const Family& family) {
    static const std::map<std::string_view, std::string_view> names = {
        {"BetaBinomial", "beta-binomial, Polya-Eggenberger"},
        {"BetaGeometric", "beta-geometric, Waring"},
        {"BetaNegBin", "beta-negative binomial, generalized Waring"},
        {"BetaSubj", "subjective beta"},
        {"Burr", "Burr type III"},
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

}  // namespace cli
