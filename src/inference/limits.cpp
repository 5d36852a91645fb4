#include "inference/limits.h"

#include <algorithm>

namespace pral::inference {

namespace {

struct Containment {
    std::string_view family;
    std::vector<std::string_view> contained;  // the smallest first
};

/// Families with two letters before a name hold what the base holds, with the same letters.
const std::vector<Containment>& table() {
    static const std::vector<Containment> all = {
        {"NegBin", {"Poisson", "Geometric"}},
        {"Polya", {"Poisson", "Geometric"}},
        {"Delaporte", {"Poisson", "Geometric", "Polya"}},
        {"Binomial", {"Poisson"}},
        {"BetaBinomial", {"Poisson", "Binomial", "Polya"}},
        {"BetaGeometric", {"Geometric"}},
        {"BetaNegBin", {"Poisson", "Geometric", "NegBin", "Polya"}},
        {"Skellam", {"Poisson"}},
        {"PoissonUniform", {"Poisson"}},
        {"BurntFingerPoisson", {"Poisson"}},
        {"Gamma", {"Expon"}},
        {"Weibull", {"Expon", "Rayleigh"}},
        {"Student3", {"Normal"}},
        {"Error", {"Normal", "Laplace"}},
        {"NormalMix", {"Normal"}},
        {"SkewNormal", {"Normal"}},
        {"GEV", {"ExtValueMax"}},
        {"GLogistic", {"Logistic", "ExtValueMax"}},
        {"JohnsonU", {"Normal", "LognormalE"}},
        {"JohnsonB", {"Normal", "LognormalE"}},
        {"Weibull3", {"Expon", "Weibull"}},
        {"Fatigue", {"Normal"}},
        {"LogLaplace", {"Pareto"}},
        {"Pareto2", {"Expon"}},
        {"Pearson6", {"Expon", "Gamma", "Pearson5", "Pareto2"}},
        {"Dagum", {"LogLogistic"}},
        {"Burr", {"LogLogistic", "ExtValueMax", "Dagum", "GEV"}},
        {"NCChiSq", {"ChiSq"}},
        {"NCF", {"F"}},
        {"Lifetime2", {"Expon", "Rayleigh"}},
        {"Lifetime3", {"Expon"}},
        {"LifetimeExp", {"Expon"}},
        {"Bradford", {"Uniform", "LogUniform"}},
        {"Beta4", {"Uniform", "Expon", "Normal", "Gamma", "Beta"}},
        {"BetaSubj", {"Uniform", "Normal", "Gamma", "Beta", "Beta4"}},
        {"Kumaraswamy4", {"Uniform", "Expon", "Weibull", "Weibull3", "Kumaraswamy"}},
    };
    return all;
}

bool begins_with(std::string_view name, std::string_view letters) {
    return name.size() > letters.size() && name.substr(0, letters.size()) == letters;
}

}  // namespace

std::vector<std::string_view> contained_in(std::string_view family) {
    const auto listed = [](std::string_view name) {
        const auto found = std::ranges::find(table(), name, &Containment::family);
        return found == table().end() ? std::vector<std::string_view>() : found->contained;
    };
    const bool inflated = begins_with(family, "ZI"), cut = begins_with(family, "ZT");
    if (!inflated && !cut) return listed(family);
    const std::string_view base = family.substr(2);
    std::vector<std::string_view> all;
    if (inflated) {
        for (const std::string_view name : listed(base)) all.push_back(name);
        all.push_back(base);
    }
    static const std::vector<std::string_view> variants = {
        "ZIPoisson", "ZIGeometric", "ZIPolya", "ZINegBin", "ZIBinomial",
        "ZTPoisson", "ZTGeometric", "ZTPolya", "ZTNegBin", "ZTBinomial"};
    for (const std::string_view name : listed(base)) {
        for (const std::string_view variant : variants) {
            if (variant.substr(0, 2) == family.substr(0, 2) && variant.substr(2) == name)
                all.push_back(variant);
        }
    }
    if (family == "ZTPolya" || family == "ZTNegBin") all.push_back("Logarithmic");
    return all;
}

std::string_view limit_of(const Fit& fit, std::span<const Model> models) {
    constexpr double kSame = 1e-4;
    if (fit.estimate().kind != Kind::edge) return {};
    for (const std::string_view name : contained_in(fit.model().name())) {
        const auto model = std::ranges::find(models, name, &Model::name);
        if (model == models.end()) continue;
        Request request = fit.request();
        request.held.clear();
        try {
            const Estimate smaller = estimate(*model, fit.observations(), request);
            const bool proper = smaller.kind == Kind::regular || smaller.kind == Kind::edge;
            if (proper && smaller.log_likelihood > fit.estimate().log_likelihood - kSame)
                return model->name();
        } catch (const fitting::Failure&) {  // not of these data
        }
    }
    return {};
}

}  // namespace pral::inference
