#include "classic/catalogue.h"

#include <array>
#include <optional>

#include "classic/fit_forms.h"

namespace pral::classic {

namespace {

constexpr CatalogueRow kRows[] = {
    {"PralAggregateDePril", 4},
    {"PralAggregatePanjer", 0},
    {"PralAggregateFFT", 0},
    {"PralAggregateMultiFFT", 0},
    {"PralBernoulli", 1},
    {"PralBeta", 2},
    {"PralBeta4", 4},
    {"PralBetaBinomial", 3},
    {"PralBetaGeometric", 2},
    {"PralBetaNegBin", 3},
    {"PralBetaSubj", 4},
    {"PralBinomial", 2},
    {"PralBMA", 0},
    {"PralBurntFingerPoisson", 2},
    {"PralBradford", 3},
    {"PralBurr", 4},
    {"PralCauchy", 2},
    {"PralChi", 1},
    {"PralChiSq", 1},
    {"PralCombined", 0},
    {"PralCumulA", 4},
    {"PralCumulD", 4},
    {"PralDagum", 3},
    {"PralDeduct", 0},
    {"PralDelaporte", 3},
    {"PralDiscrete", 2},
    {"PralDUniform", 1},
    {"PralErf", 1},
    {"PralErlang", 2},
    {"PralError", 3},
    {"PralExpon", 1},
    {"PralExtValueMax", 2},
    {"PralExtValueMin", 2},
    {"PralF", 2},
    {"PralFatigue", 3},
    {"PralGamma", 2},
    {"PralGeometric", 1},
    {"PralGEV", 3},
    {"PralGLogistic", 3},
    {"PralGTU", 6},
    {"PralHistogram", 3},
    {"PralHS", 2},
    {"PralHypergeo", 3},
    {"PralHypergeoD", 3},
    {"PralHypergeoM", 4},
    {"PralInvGauss", 2},
    {"PralInvHypergeo", 3},
    {"PralJohnsonB", 4},
    {"PralJohnsonU", 4},
    {"PralKernelCU", 0},
    {"PralKumaraswamy", 2},
    {"PralKumaraswamy4", 4},
    {"PralLaplace", 2},
    {"PralLevy", 2},
    {"PralLifetime2", 2},
    {"PralLifetime3", 3},
    {"PralLifetimeExp", 2},
    {"PralLogarithmic", 1},
    {"PralLogGamma", 3},
    {"PralLogistic", 2},
    {"PralLogLaplace", 3},
    {"PralLogLogistic", 2},
    {"PralLogLogisticAlt", 5},
    {"PralLognormal", 2},
    {"PralLognormalAlt", 5},
    {"PralLognormalB", 3},
    {"PralLognormalE", 2},
    {"PralLogTriangle", 3},
    {"PralLogUniform", 2},
    {"PralMaxwell", 1},
    {"PralModPERT", 4},
    {"PralNCChiSq", 2},
    {"PralNCF", 3},
    {"PralNegBin", 2},
    {"PralNormal", 2},
    {"PralNormalAlt", 4},
    {"PralNormalMix", 3},
    {"PralOgive", 3},
    {"PralOgiveU", 3},
    {"PralPareto", 2},
    {"PralPareto2", 2},
    {"PralPearson5", 2},
    {"PralPearson6", 3},
    {"PralPERT", 3},
    {"PralPERTAlt", 5},
    {"PralPoisson", 1},
    {"PralPoissonUniform", 2},
    {"PralPolya", 2},
    {"PralRayleigh", 1},
    {"PralReciprocal", 2},
    {"PralRelative", 4},
    {"PralRiskEvent", 0},
    {"PralSkellam", 2},
    {"PralSkewNormal", 3},
    {"PralSlash", 2},
    {"PralSplice", 0},
    {"PralSplitTriangle", 6},
    {"PralStepUniform", 3},
    {"PralStudent", 1},
    {"PralStudent3", 3},
    {"PralTriangle", 3},
    {"PralTriangleAlt", 5},
    {"PralUniform", 2},
    {"PralWeibull", 2},
    {"PralWeibull3", 3},
    {"PralWeibullAlt", 5},
    {"PralZIBetaBinomial", 4},
    {"PralZTBetaBinomial", 3},
    {"PralZIBetaGeometric", 3},
    {"PralZTBetaGeometric", 2},
    {"PralZIBetaNegBin", 4},
    {"PralZTBetaNegBin", 3},
    {"PralZIBinomial", 3},
    {"PralZTBinomial", 2},
    {"PralZIDelaporte", 4},
    {"PralZTDelaporte", 3},
    {"PralZIGeometric", 2},
    {"PralZTGeometric", 1},
    {"PralZIHypergeo", 4},
    {"PralZTHypergeo", 3},
    {"PralZIInvHypergeo", 4},
    {"PralZTInvHypergeo", 3},
    {"PralZILogarithmic", 2},
    {"PralZINegBin", 3},
    {"PralZISkellam", 3},
    {"PralZTNegBin", 2},
    {"PralZIPoisson", 2},
    {"PralZTPoisson", 1},
    {"PralZIPolya", 3},
    {"PralZTPolya", 2},
    {"PralInvMultiHypergeo", 2},
    {"PralInvMultiHypergeo2", 2},
    {"PralMultiHypergeo", 2},
    {"PralMultinomial", 2},
    {"PralMultiNormal", 2},
    {"PralNegMultinomial", 2},
    {"PralNegMultinomial2", 2},
};
static_assert(std::size(kRows) == 137);

using Families = std::array<std::optional<fitting::FittedFamily>, std::size(kRows)>;

/// The families by code, found by their names.
Families families_by_code() {
    constexpr std::size_t kPrefix = std::string_view("Pral").size();
    Families families = {};
    for (std::size_t code = 0; code < families.size(); ++code) {
        if (const auto* family = fitting::fitted_family(std::string_view(kRows[code].name).substr(kPrefix)))
            families[code] = in_classic_form(*family);
    }
    return families;
}

}  // namespace

std::span<const CatalogueRow> catalogue() { return kRows; }

int code_of(std::string_view name) {
    for (std::size_t code = 0; code < std::size(kRows); ++code) {
        if (kRows[code].name == name) return static_cast<int>(code);
    }
    return -1;
}

const fitting::FittedFamily* fitted_family(int code) {
    static const Families families = families_by_code();
    if (code < 0 || static_cast<std::size_t>(code) >= families.size()) return nullptr;
    const auto& family = families[static_cast<std::size_t>(code)];
    return family ? &*family : nullptr;
}

}  // namespace pral::classic
