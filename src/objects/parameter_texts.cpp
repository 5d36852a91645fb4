#include "objects/parameter_texts.h"

#include <algorithm>

namespace pral::objects {

namespace {

struct Texts {
    std::string_view family, parameters;
};

/* clang-format off */
constexpr Texts kTexts[] = {
    {"Normal", "mean, any number; standard deviation, >= 0"},
    {"Uniform", "smallest value, <= max; largest value, >= min"},
    {"Expon", "mean, >= 0"},
    {"Gamma", "shape, >= 0; scale, >= 0"},
    {"Erlang", "shape, >= 0; scale, >= 0"},
    {"ChiSq", "degrees of freedom, > 0"},
    {"Chi", "degrees of freedom, >= 1"},
    {"Maxwell", "scale, > 0"},
    {"Pearson5", "shape, > 0; scale, > 0"},
    {"LogGamma", "shape, > 0; scale, >= 0; origin, any number"},
    {"Beta", "first shape, > 0; second shape, > 0"},
    {"Beta4", "first shape, > 0; second shape, > 0; smallest value, < max; largest value, > min"},
    {"BetaSubj", "smallest value, < mode and < mean; mode, > min and < max; mean, > min and < max; largest value, > mode and > mean"},
    {"PERT", "smallest value, <= mode; mode, >= min and <= max; largest value, >= mode"},
    {"ModPERT", "smallest value, <= mode; mode, >= min and <= max; largest value, >= mode; weight of the mode, > 0"},
    {"PERTAlt", "lower percentile, < Mode; mode, > Low and < High; upper percentile, > Mode; probability below Low, in (0,0.5); probability below High, in (0.5,1)"},
    {"Pearson6", "first shape, > 0; second shape, > 0; scale, > 0"},
    {"F", "degrees of freedom of the numerator, > 0; degrees of freedom of the denominator, > 0"},
    {"Student", "degrees of freedom, > 0"},
    {"Student3", "location, any number; scale, >= 0; degrees of freedom, >= 3"},
    {"NCChiSq", "degrees of freedom, > 0; noncentrality, >= 0"},
    {"NCF", "degrees of freedom of the numerator, > 0; degrees of freedom of the denominator, > 0; noncentrality, >= 0"},
    {"Lognormal", "mean, > 0; standard deviation, >= 0"},
    {"LognormalE", "mean of the natural logarithm, any number; standard deviation of the natural logarithm, >= 0"},
    {"Cauchy", "location, any number; scale, >= 0"},
    {"NormalAlt", "first percentile, < Value2; probability below Value1, >= 0 and < Prob2; second percentile, > Value1; probability below Value2, > Prob1 and <= 1"},
    {"Erf", "precision, > 0"},
    {"NormalMix", "mean, any number; standard deviation, >= 0; excess kurtosis, in [0,3)"},
    {"SkewNormal", "location, any number; scale, >= 0; shape, in [-100,100]"},
    {"Slash", "location, any number; scale, >= 0"},
    {"LognormalB", "mean of the logarithm, any number; standard deviation of the logarithm, >= 0; base of the logarithm, > 1"},
    {"LognormalAlt", "first percentile, > minimum and < value2; probability below value1, in (0,1); second percentile, > value1; probability below value2, in (0,1); smallest value, < value1"},
    {"Logistic", "location, any number; scale, >= 0"},
    {"GLogistic", "location, any number; scale, >= 0; shape, > 0"},
    {"LogLogistic", "shape, > 0; scale, >= 0"},
    {"LogLogisticAlt", "first percentile, > minimum and < value2; probability below value1, in (0,1); second percentile, > value1; probability below value2, in (0,1); smallest value, < value1"},
    {"HS", "mean, any number; standard deviation, >= 0"},
    {"Laplace", "mean, any number; standard deviation, >= 0"},
    {"LogLaplace", "tail exponent above Delta, > 0; tail exponent below Delta, > 0; scale, >= 0"},
    {"Error", "mean, any number; standard deviation, >= 0; shape, > 0"},
    {"JohnsonB", "first shape, any number; second shape, > 0; smallest value, < max; largest value, > min"},
    {"JohnsonU", "first shape, any number; second shape, > 0; scale, >= 0; location, any number"},
    {"Fatigue", "location, any number; scale, >= 0; shape, > 0"},
    {"InvGauss", "mean, > 0; shape, > 0"},
    {"Levy", "scale, >= 0; location, any number"},
    {"ExtValueMax", "location, any number; scale, >= 0"},
    {"ExtValueMin", "location, any number; scale, >= 0"},
    {"GEV", "location, any number; scale, > 0; shape, in [-18,18]"},
    {"Weibull", "shape, > 0; scale, >= 0"},
    {"Weibull3", "shape, > 0; scale, >= 0; smallest value, >= 0"},
    {"WeibullAlt", "first percentile, > minimum and < value2; probability below value1, in (0,1); second percentile, > value1; probability below value2, in (0,1); smallest value, < value1"},
    {"Rayleigh", "scale, >= 0"},
    {"Pareto", "shape, > 0; smallest value, >= 0"},
    {"Pareto2", "scale, >= 0; shape, > 0"},
    {"Dagum", "first shape, > 0; scale, >= 0; second shape, > 0"},
    {"Burr", "location, any number; scale, >= 0; first shape, > 0; second shape, > 0"},
    {"Bradford", "shape, > 0; smallest value, < max; largest value, > min"},
    {"Kumaraswamy", "first shape, > 0; second shape, > 0"},
    {"Kumaraswamy4", "first shape, > 0; second shape, > 0; smallest value, <= max; largest value, >= min"},
    {"Triangle", "smallest value, <= mode; mode, >= min and <= max; largest value, >= mode"},
    {"TriangleAlt", "lower percentile, < Mode; mode, > Low and < High; upper percentile, > Mode; probability below Low, in (0,0.5); probability below High, in (0.5,1)"},
    {"LogTriangle", "smallest value, > 0 and <= Mode; mode, >= Min and <= Max; largest value, >= Mode"},
    {"SplitTriangle", "lower percentile, < Medium; middle percentile, > Low and < High; upper percentile, > Medium; probability below Low, >= 0 and < MediumP; probability below Medium, > LowP and < HighP; probability below High, > MediumP and < 1"},
    {"GTU", "smallest value, <= leftmode; first of the modes, >= min and <= rightmode; last of the modes, >= leftmode and <= max; largest value, >= rightmode; power of the rise, >= 1; power of the fall, >= 1"},
    {"LogUniform", "smallest value, > 0 and < Max; largest value, > Min"},
    {"Reciprocal", "smallest value, > 0 and <= b; largest value, >= a"},
    {"Lifetime2", "hazard rate at 0, >= 0; its growth, >= 0"},
    {"Lifetime3", "hazard rate at 0, > 0; its linear growth (B^2 < 4 A C where below 0), any number; its quadratic growth, > 0"},
    {"LifetimeExp", "logarithm of the hazard rate at 0, any number; its growth, > 0"},
    {"Discrete", "values, an array; their weights, an array"},
    {"DUniform", "values, an array"},
    {"CumulA", "smallest value, < max; largest value, > min; values, an array; probabilities of at most these, an array"},
    {"CumulD", "smallest value, < max; largest value, > min; values, an array; probabilities of more than these, an array"},
    {"Histogram", "smallest value, < max; largest value, > min; heights of bars of equal width, an array"},
    {"Relative", "smallest value, < max; largest value, > min; values, an array; their densities up to a factor, an array"},
    {"StepUniform", "smallest value, <= max; largest value, >= min; step which divides max - min, > 0"},
    {"Ogive", "smallest value, < max; largest value, > min; data, an array"},
    {"OgiveU", "smallest value, < max; largest value, > min; data, an array"},
    {"Poisson", "rate, >= 0"},
    {"Binomial", "number of trials, >= 0; probability of success, in [0,1]"},
    {"Bernoulli", "probability of 1, in [0,1]"},
    {"NegBin", "number of successes, >= 0; probability of success, in (0,1]"},
    {"Geometric", "probability of success, in (0,1]"},
    {"Polya", "shape of the rate, > 0; scale of the rate, > 0"},
    {"BetaBinomial", "number of trials, >= 0; first shape of the probability, > 0; second shape of the probability, > 0"},
    {"BetaGeometric", "first shape of the probability, > 0; second shape of the probability, > 0"},
    {"BetaNegBin", "number of successes, > 0; first shape of the probability, > 0; second shape of the probability, > 0"},
    {"Logarithmic", "ratio of the series, in (0,1)"},
    {"Hypergeo", "number of items drawn, whole >= 0 and <= M; number of marked items, whole >= 0 and <= M; number of items, whole >= n and >= D"},
    {"InvHypergeo", "number of marked items wanted, whole >= 0 and <= D; number of marked items, whole >= s and <= M; number of items, whole >= D"},
    {"HypergeoD", "number of marked items in the sample, whole >= 0 and <= n; size of the sample, whole >= s and <= M; number of items, whole >= n"},
    {"HypergeoM", "number of marked items in the sample, whole >= 1 and <= n and <= D; size of the sample, whole >= s; number of marked items, whole >= s; largest number of items, whole >= D+n-s"},
    {"Skellam", "rate of the first count, > 0; rate of the second count, > 0"},
    {"BurntFingerPoisson", "rate until the first event, >= Lambda2; rate after it, > 0 and <= Lambda1"},
    {"PoissonUniform", "smallest rate, >= 0 and < Max; largest rate, > Min"},
    {"Delaporte", "shape of the rate, >= 0; scale of the rate, >= 0; constant part of the rate, >= 0"},
    {"HalfNormal", "scale, >= 0"},
    {"Gompertz", "hazard rate at 0, > 0; its growth, > 0"},
    {"GPD", "scale, >= 0; shape, any number"},
};
/* clang-format on */

constexpr std::string_view kWeight = "probability of a value of the family without extra zeros, in [0,1]";

}  // namespace

std::vector<std::string> parameter_texts(std::string_view family) {
    const bool inflated = family.starts_with("ZI"), truncated = family.starts_with("ZT");
    if (inflated || truncated) family.remove_prefix(2);
    const auto found = std::ranges::find(kTexts, family, &Texts::family);
    std::vector<std::string> texts;
    if (found == std::end(kTexts)) return texts;
    constexpr std::string_view kBetween = "; ";
    for (std::string_view rest = found->parameters; !rest.empty();) {
        const std::size_t end = std::min(rest.find(kBetween), rest.size());
        texts.emplace_back(rest.substr(0, end));
        rest.remove_prefix(std::min(end + kBetween.size(), rest.size()));
    }
    if (inflated) texts.emplace_back(kWeight);
    return texts;
}

}  // namespace pral::objects
