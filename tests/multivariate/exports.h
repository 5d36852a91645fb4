// The exported multivariate distributions, copulas and fits of copulas by their names.
#pragma once

#include "support/exported_vectors.h"

namespace pral::test {

#define FILLING(X) \
    { #X, filling(Pral##X##_Core, Pral##X##VB_Core) }
#define SIZED(X) \
    { #X, sized(Pral##X##_Core) }
#define SIZED_ARRAY(X) \
    { #X, sized(Pral##X##_Core, Pral##X##VB_Core) }

/* clang-format off */
inline const Functions kDistributions = {
    FILLING(MultiNormal), FILLING(Multinomial), FILLING(Dirichlet), FILLING(MultiHypergeo), SIZED(InvMultiHypergeo),
    FILLING(InvMultiHypergeo2), SIZED(NegMultinomial), FILLING(NegMultinomial2), SIZED(MultiNormalProb),
    SIZED(MultiNormalProb10), SIZED(MultinomialProb), SIZED(MultinomialProb10), SIZED(DirichletProb),
    SIZED(DirichletProb10), SIZED(MultiHypergeoProb), SIZED(MultiHypergeoProb10)};

inline const Functions kCopulas = {
    FILLING(CopulaBiClayton), FILLING(CopulaBiGumbel), FILLING(CopulaBiFrank), FILLING(CopulaBiNormal),
    FILLING(CopulaBiT), FILLING(CopulaMultiClayton), FILLING(CopulaMultiGumbel), FILLING(CopulaMultiFrank),
    FILLING(CopulaMultiNormal), FILLING(CopulaMultiT), FILLING(CopulaData), FILLING(CopulaDataSeries)};

inline const Functions kFits = {
    SIZED(CopulaBiClaytonFitP), SIZED(CopulaBiGumbelFitP), SIZED(CopulaBiFrankFitP), SIZED(CopulaBiNormalFitP),
    SIZED(CopulaBiTFitP), SIZED(CopulaBiClaytonFit), SIZED(CopulaBiGumbelFit), SIZED(CopulaBiFrankFit),
    SIZED(CopulaMultiClaytonFitP), SIZED(CopulaMultiGumbelFitP), SIZED(CopulaMultiFrankFitP),
    SIZED_ARRAY(CopulaMultiClaytonFit), SIZED_ARRAY(CopulaMultiGumbelFit), SIZED_ARRAY(CopulaMultiFrankFit),
    SIZED_ARRAY(CopulaMultiNormalFitP), SIZED(CopulaMultiTFitP)};
/* clang-format on */

#undef FILLING
#undef SIZED
#undef SIZED_ARRAY

/// All of them.
inline const Functions kVectorFunctions = [] {
    Functions all = kDistributions;
    all.insert(kCopulas.begin(), kCopulas.end());
    all.insert(kFits.begin(), kFits.end());
    return all;
}();

}  // namespace pral::test
