// Exports that have no suite of hostile calls of their own: matrices, statistics, bootstrap, Markov chains and aggregate
// losses, with counts, numbers and arrays of all sorts. They come back; the sanitizers watch where they read and write.
#include "support/exported_vectors.h"

namespace {

using namespace pral::test;

#define SIZED(X) \
    { #X, sized(Pral##X##_Core) }
#define FILLING(X) \
    { #X, filling(Pral##X##_Core, Pral##X##VB_Core) }

/// The number of steps is a variable argument.
bool markov_matrix(double* out, double* P, int rows, int cols, double t) {
    return PralMarkovMatrix_Core(out, P, rows, cols, t);
}

/* clang-format off */
const Functions kMatrices = {
    SIZED(Cholesky), SIZED(EigenValues), SIZED(EigenVectors), SIZED(ValidCorrmat), SIZED(CovToCorr), SIZED(CorrToCov),
    SIZED(Identity), {"MarkovMatrix", sized(markov_matrix)}, FILLING(MarkovSample)};

const Functions kStatistics = {
    SIZED(Mean), SIZED(Variance), SIZED(StDev), SIZED(Skewness), SIZED(Kurtosis), FILLING(Rank), SIZED(Spearman),
    SIZED(SpearmanU), SIZED(CorrMatrix), SIZED(CorrMatrixU), SIZED(KendallsTau), FILLING(Sample), FILLING(Shuffle),
    SIZED(ThielU), SIZED(Dominance), SIZED(Interpolate), SIZED(NBootMean), SIZED(NBootStdev), SIZED(NBootVar),
    SIZED(NBootSkew), SIZED(NBootKurt), SIZED(NBootCofV), SIZED(NBootPercentile), FILLING(NBootPaired),
    FILLING(NBootSeries)};

const Functions kAggregates = {
    SIZED(AggregateDePril), SIZED(AggregateDePrilProb), SIZED(AggregateDePrilProb10), SIZED(DiscreteFitProb),
    SIZED(DiscreteFitProb10), SIZED(BinomialP), SIZED(PoissonLambda)};
/* clang-format on */

TEST(Survival, OfMatrices) { expect_survival(kMatrices, 2000, -HUGE_VAL, HUGE_VAL); }

TEST(Survival, OfStatistics) { expect_survival(kStatistics, 1000, -HUGE_VAL, HUGE_VAL); }

TEST(Survival, OfAggregateLosses) { expect_survival(kAggregates, 1000); }

}  // namespace
