/* pral_core: the numerical core of a spreadsheet risk-simulation add-in.
 *
 * This header is the manual of the library and the list of everything it exports. It reads as C11 and as C++.
 *
 * Calling convention
 *   Every function is a plain C function. Those whose name ends in _Core return a flag: true, the outputs are
 *   valid; false, the call failed and PralCoreError() tells why. Optional inputs are pointers, null meaning "not
 *   given". The caller owns every buffer. An element count below 0 counts as 0. The library keeps its error text
 *   and its random stream per process and takes no locks: calls must not overlap.
 *
 * Infinity
 *   The largest finite double, DBL_MAX, stands for +infinity and -DBL_MAX for -infinity, in arguments and results;
 *   -DBL_MAX is also the logarithm of probability 0.
 */
#ifndef PRAL_CORE_API_H
#define PRAL_CORE_API_H

#include <stddef.h>
#include <stdint.h>
#ifndef __cplusplus
#include <stdbool.h>
#endif

#ifdef __cplusplus
#define PRAL_EXTERN_C extern "C"
#else
#define PRAL_EXTERN_C extern
#endif
#if defined(_WIN32) && defined(PRAL_CORE_BUILD)
#define PRAL_API PRAL_EXTERN_C __declspec(dllexport)
#elif defined(_WIN32)
#define PRAL_API PRAL_EXTERN_C __declspec(dllimport)
#elif defined(PRAL_CORE_BUILD)
#define PRAL_API PRAL_EXTERN_C __attribute__((visibility("default")))
#else
#define PRAL_API PRAL_EXTERN_C
#endif

/* An automation array and an automation string, as OLE Automation defines them. automation.h brings their layout
 * and the functions that make and free them: Windows' own on Windows, equivalents elsewhere. */
typedef struct tagSAFEARRAY SAFEARRAY;
#ifdef _WIN32
typedef wchar_t* BSTR;
#else
typedef unsigned short* BSTR;
#endif

/* ------------------------------------------------------------------------------------------------ Error text
 *
 * One text per process: the message of the last call that failed, at most 1,023 characters, empty when none has.
 * It stays when later calls succeed. */

/* The library's own buffer, valid until the next failing call overwrites it. */
PRAL_API const char* PralCoreError(void);

/* The text as a new automation string; the caller frees it with SysFreeString. */
PRAL_API BSTR PralCoreErrorVB(void);

/* Replaces the text by a copy of `text`, cut after 1,023 characters; null counts as empty. */
PRAL_API void PralSetCoreError(const char* text);

/* ------------------------------------------------------------------------------ Version and random stream */

/* The version of the loaded library, "major.minor.patch". */
PRAL_API const char* PralVersion(void);

/* Restarts the one random stream of the process (MT19937, numbers in the open interval (0,1)) from `seed`. A
 * freshly loaded library stands where PralSetRandomSeed(5489) puts it; nothing else restarts it. */
PRAL_API void PralSetRandomSeed(unsigned int seed);

/* ------------------------------------------------------------------------------------------------- Matrices
 *
 * A matrix is a flat array by rows: element (i, j) of n x n elements stands at i n + j, counted from 0. A symmetric
 * matrix may be given by one triangle, the other being all 0; symmetric means to 15 significant digits of each element, or
 * to 1e-14 sqrt(|a(i,i) a(j,j)|). Positive semi-definite means that no eigenvalue is below -max(1e-15, n 2.3e-16 largest).
 * These functions write nothing to `out` when they fail, and change no input unless it says so. A matrix with NaN or
 * infinite elements fails with the message of the decomposition.
 */

/* The lower triangular L with a = L L', n x n. A constant matrix c >= 0 has sqrt(c) in its first column. A singular
 * matrix succeeds, its factorisation ending at the first pivot that is not positive.
 * "Error: Matrix a must be square", "Error: Matrix cannot be empty", "Error: matrix is not symmetric",
 * "Error: Matrix must be positive semi-definite" */
PRAL_API bool PralCholesky_Core(double* out, const double* a, int rows, int cols);

/* The n eigenvalues, ascending for a symmetric matrix; for others their real parts. Those within 1e-15 of 0 are 0.
 * "Error: Input Matrix must be square", "EigenValues calculation failed!" */
PRAL_API bool PralEigenValues_Core(double* out, const double* a, int rows, int cols);

/* The eigenvectors as columns of an n x n matrix, in the order of PralEigenValues_Core, orthonormal for a symmetric
 * matrix. A complex pair has its real and imaginary parts in two neighbouring columns.
 * "Error: Input Matrix must be square", "EigenVectors calculation failed!" */
PRAL_API bool PralEigenVectors_Core(double* out, const double* a, int rows, int cols);

/* The correlation matrix itself when it is positive semi-definite, otherwise a near one that is, with ones on the
 * diagonal (spectral decomposition, Rebonato and Jaeckel 1999). A lower triangle is completed in `a` itself.
 * "Error: Input Matrix must be square", "Error: matrix is not symmetric", "Error: Vectors FAIL!" */
PRAL_API bool PralValidCorrmat_Core(double* out, double* a, int rows, int cols);

/* The n x n correlation matrix of a covariance matrix: cov(i,j)/sqrt(cov(i,i) cov(j,j)), of the elements as given.
 * "Error: matrix not symmetric", "Error: matrix is not valid" (no eigenvalues), "Error: matrix not positive
 * semidefinite", "Error: diagonal elements must be >0" */
PRAL_API bool PralCovToCorr_Core(double* out, int ignored, const double* cov, int n);

/* The n x n covariance matrix corr(i,j) sd(i) sd(j) of n standard deviations `sd` > 0.
 * "Error: CorrMatrix not valid. Try applying PralValidCorrMat first.", "Error: VarArray not valid" (the sd) */
PRAL_API bool PralCorrToCov_Core(double* out, int ignored, const double* corr, const double* sd, int n);

/* The identity matrix. "Error: Output matrix must be square" */
PRAL_API bool PralIdentity_Core(double* out, int rows, int cols);

/* ----------------------------------------------------------------------------------------------- Statistics
 *
 * NaN and infinite data are not refused: they go through the sums, unless told otherwise.
 */

/* Moments of a sample x of n values, unbiased or corrected for bias, with s^2 = sum (x - mean)^2/(n - 1):
 *   Mean      sum x/n                                                        n >= 1
 *   Variance  s^2                                                            n >= 2
 *   StDev     s; with fewer than two values not a number, and no failure
 *   Skewness  n/((n-1)(n-2)) sum ((x - mean)/s)^3                            n >= 3
 *   Kurtosis  n(n+1)/((n-1)(n-2)(n-3)) sum ((x - mean)/s)^4 + 3 - 3(n-1)^2/((n-2)(n-3)), about 3 for a normal
 *             sample; not finite for n = 3                                   n >= 3
 * With too few values they return false without a message and leave the output as it was. */
PRAL_API bool PralMean_Core(double* out, const double* x, uint64_t n);
PRAL_API bool PralVariance_Core(double* out, const double* x, uint64_t n);
PRAL_API bool PralStDev_Core(double* out, const double* x, uint64_t n);
PRAL_API bool PralSkewness_Core(double* out, const double* x, uint64_t n);
PRAL_API bool PralKurtosis_Core(double* out, const double* x, uint64_t n);

/* Moments of n values as a whole population (divisor n; the kurtosis of a normal one is 3). */
PRAL_API bool PralMomentsFromValues(const double* x, int n, double* mean, double* variance, double* skewness,
                                    double* kurtosis);

/* Moments of the discrete distribution of n values x with probabilities p, which are used as they are: what is missing of
 * 1 (beyond 1e-15 for each of them) counts as the probability of the value 0. Summation stops at the first zero probability
 * whose index exceeds n/2. */
PRAL_API bool PralRawMoments_Core(const double* x, const double* p, int n, double* mean, double* variance,
                                  double* skewness, double* kurtosis);

/* The ranks 1 .. n of n values, from the smallest, or from the largest when `descending` is not 0. Equal values share
 * the mean of their ranks; NaNs come last, each with a rank of its own. */
PRAL_API bool PralRank_Core(double* out, int n, const double* x, int descending);
PRAL_API bool PralRankVB_Core(SAFEARRAY** out, const double* x, int descending);

/* Spearman's rank correlation of n pairs, in [-1,1]: Pearson's correlation of the ranks; 0 when x or y does not vary,
 * NaN when there is one among the data. SpearmanU: of one bootstrap replicate of the pairs (n of them, drawn with
 * replacement). "Error: length of the array must be >0" */
PRAL_API bool PralSpearman_Core(double* out, const double* x, const double* y, int n);
PRAL_API bool PralSpearmanU_Core(double* out, const double* x, const double* y, int n);

/* The matrix of Spearman's rank correlations of the variables in a range of rows x cols data, at least 2 x 2; its size
 * is the number of variables. They are the columns of the range, or its rows when `variablesInRows` is not 0. The U
 * forms give the matrix of one bootstrap replicate: as many observations, each with all its variables, drawn with
 * replacement. The automation array must have room for the matrix.
 * "Error: DataRange values must be in a two-dimentional array" */
PRAL_API bool PralCorrMatrix_Core(double* out, const double* data, int rows, int cols, int variablesInRows);
PRAL_API bool PralCorrMatrixVB_Core(SAFEARRAY** out, const double* data, int rows, int cols,
                                    int variablesInRows);
PRAL_API bool PralCorrMatrixU_Core(double* out, const double* data, int rows, int cols, int variablesInRows);
PRAL_API bool PralCorrMatrixUVB_Core(SAFEARRAY** out, const double* data, int rows, int cols,
                                     int variablesInRows);

/* Kendall's tau-a of n pairs, in [-1,1]: concordant less discordant pairs over all pairs. A tie counts as neither,
 * and so does a pair with a NaN. NaN for n < 2. */
PRAL_API bool PralKendallsTau_Core(double* out, const double* x, const double* y, int n);

/* n values drawn with replacement from the m values of `data`, by the 15-bit runtime generator and not by the random
 * stream: data[floor(r/32767 (m - 1) + 0.5)], so that the first and the last value come half as often as the others.
 * "Error: the {data} array is empty" */
PRAL_API bool PralSample_Core(double* out, int n, const double* data, int m);
PRAL_API bool PralSampleVB_Core(SAFEARRAY** out, const double* data, int m);

/* A random permutation of 0 .. n - 1. */
PRAL_API bool PralShuffle_Core(double* out, int n);
PRAL_API bool PralShuffleVB_Core(SAFEARRAY** out);

/* Theil's inequality coefficient of two series of equal length, in [0,1]: sqrt(sum (x - y)^2) /
 * (sqrt(sum x^2) + sqrt(sum y^2)). "Error: the number of elements in {x} and {y} must be equal" */
PRAL_API bool PralThielU_Core(double* out, const double* x, int nx, const double* y, int ny);

/* Stochastic dominance between two samples of finite values, larger values being preferred:
 *    1   x dominates y in the first order: its distribution function is nowhere above y's and somewhere below
 *    2   x dominates y in the second order only: the integral of F_y - F_x from the left is nowhere negative and
 *        somewhere positive, F being the empirical distribution functions (to 1e-12 of the area between them)
 *   -1, -2  y dominates x likewise;  0  neither, or equal distributions
 * "Error: length of the array must be >0", "Error: the elements of {x} and {y} must be finite" */
PRAL_API bool PralDominance_Core(double* out, const double* x, int nx, const double* y, int ny);

/* The polygon through the n points (xs, ys) at x. With `sortFirst` not 0 the points are sorted by xs first, in the
 * caller's arrays; otherwise they are taken as they stand, the first stretch that holds x deciding.
 * "Error: Value must lie within {independent} range", "Error: {independent} must contain unique values" */
PRAL_API bool PralInterpolate_Core(double* out, double x, double* xs, double* ys, int n, int sortFirst);

/* ------------------------------------------------------------------------------------------------- Bootstrap
 *
 * Each call draws one replicate of the data, n of n values with replacement by the random stream, and gives a statistic
 * of it (see Statistics): called over and over, its bootstrap distribution. With fewer values than the statistic
 * needs the output stays as it was, and the call succeeds.
 */

PRAL_API bool PralNBootMean_Core(double* out, const double* data, int n);
PRAL_API bool PralNBootStdev_Core(double* out, const double* data, int n);
PRAL_API bool PralNBootVar_Core(double* out, const double* data, int n);
PRAL_API bool PralNBootSkew_Core(double* out, const double* data, int n);
PRAL_API bool PralNBootKurt_Core(double* out, const double* data, int n);

/* The coefficient of variation: sample standard deviation over mean. */
PRAL_API bool PralNBootCofV_Core(double* out, const double* data, int n);

/* The percentile at p in [0,1], interpolated between order statistics at position (n - 1) p + 1; 0 for another p. */
PRAL_API bool PralNBootPercentile_Core(double* out, const double* data, int n, double p);

/* Four statistics of the same replicate; those that need more values are 0. "Error: the {data} array is empty" */
PRAL_API bool PralNBootMoments_Core(const double* data, int n, double* mean, double* variance,
                                    double* skewness, double* kurtosis);

/* A replicate itself. Series: `count` values drawn from the n data. Paired: count/2 pairs drawn from the n pairs
 * (x[i], y[i]), written one after another. A full replicate has count = n and count = 2n.
 * "Error: the {data} array is empty", "Error: the output must have two elements for each pair" */
PRAL_API bool PralNBootPaired_Core(double* out, int count, const double* x, const double* y, int n);
PRAL_API bool PralNBootPairedVB_Core(SAFEARRAY** out, const double* x, const double* y, int n);
PRAL_API bool PralNBootSeries_Core(double* out, int count, const double* data, int n);
PRAL_API bool PralNBootSeriesVB_Core(SAFEARRAY** out, const double* data, int n);

/* --------------------------------------------------------------------------------------------- Markov chains
 *
 * P is the n x n matrix of a chain's transition probabilities, by rows: row i is the distribution of the next state
 * after state i. A P that is zero above the diagonal is completed by its lower triangle, in the caller's array.
 */

/* The transition matrix of t >= 0 steps, n x n; t is a double, passed as the variable argument. DBL_MAX asks for the
 * long-run limit. A t that is no whole number needs a P whose eigenvalues have no negative real part; it takes their
 * principal powers, negative elements of the result becoming 0 and its rows being divided by their sums. For t = 1 P is
 * returned as it is, with no look at the sums of its rows; otherwise they must be 1 to 1e-5. The automation array must
 * have room for the matrix.
 * "Error: T must be >=0", "Error: Input Matrix must be square", "Error: matrix elements must be >=0",
 * "Error: Matrix elements across rows must sum to 1", "Error: MarkovMatrix calculation failed!",
 * "Error: Matrix must be positive semi-definite" */
PRAL_API bool PralMarkovMatrix_Core(double* out, double* P, int rows, int cols, ...);
PRAL_API bool PralMarkovMatrixVB_Core(SAFEARRAY** out, double* P, int rows, int cols, ...);

/* The numbers of individuals per state after t steps, when population[i] of them start in each of the n `states` and
 * move independently: multinomial draws from the rows of the t-step matrix. They are whole numbers, 2^53 in all at
 * most. The checks and messages of PralMarkovMatrix_Core follow
 * "Error: The width of the Matrix must be equal to its height", "Error: the number of states must be equal to the size
 * of the Matrix", "Error: the numbers of individuals must be whole and >=0", "Error: there must be at most 2^53
 * individuals" */
PRAL_API bool PralMarkovSample_Core(double* out, int states, const double* population, double* P, int rows,
                                    int cols, double t);
PRAL_API bool PralMarkovSampleVB_Core(SAFEARRAY** out, const double* population, double* P, int rows,
                                      int cols, double t);

/* -------------------------------------------------------------------------------- Aggregate loss distributions
 *
 * The total claim amount of a portfolio in which every policy has at most one claim, of a whole number of monetary
 * units: q[i], i < m, is the claim probability of class i, in [0,1]; policies[i c + j] counts the policies of class i
 * whose claim amounts to j + 1 units, j < c; base > 0 is the unit. The probabilities g(0), g(1), ... of 0, 1, ... units
 * follow De Pril's recursion (1986), in which *K >= 1, when given and not 0, limits the order of the inner sum: faster
 * and less accurate. The table ends beyond the mean, where no larger amount can come: at the first of as many amounts
 * without probability in a row as the largest claim has units, or at the total. Policies with q = 1 are certain: their
 * claims are added to those of the others. The tables used last are kept from call to call: 4,096 of them, as many as
 * fit into 64 MB, and the latest one in any case. A call during another one fails with
 * "Error: another aggregate is being computed, and calls must not overlap".
 *
 * The amount is told as a continuous variable: base times a variable whose density is the polygon through (s, g(s)),
 * scaled to area 1 (Relative(0, S, {0, ..., S}, g)); the density is that per unit, not divided by base. A portfolio
 * without possible claims is a point mass.
 *
 * "Error: q must not be null", "Error: policies must not be null", "Error: q must not be empty", "Error: policies
 * must not be empty", "Error: {probabilities} values must be in [0..1]" (the smallest q is tested, and all for NaN),
 * "Error: {n} values must be an integer values >= 0 ", "Error: base must be >0", "Error: K must be >0 or ommited.",
 * "Error: the portfolio is too large", "Error: the recursion leaves the range of numbers", and that of Relative. */

/* One value: the quantile at percentile *U, or at a draw of the stream when U is null or *U is -1. */
PRAL_API bool PralAggregateDePril_Core(double* out, const double* q, const double* policies, int m, int c,
                                       double base, const int* K, const double* U);

/* The joint density of x[0 .. count-1]; their joint cumulative probability when *cumulative is neither 0 nor -1. */
PRAL_API bool PralAggregateDePrilProb_Core(double* out, double* x, int count, const double* q,
                                           const double* policies, int m, int c, double base, const int* K,
                                           const int* cumulative);

/* The base-10 logarithm of that. */
PRAL_API bool PralAggregateDePrilProb10_Core(double* out, double* x, int count, const double* q,
                                             const double* policies, int m, int c, double base, const int* K,
                                             const int* cumulative);

/* --------------------------------------------------------------------------------------------- Time series
 *
 * Each function simulates one path of a process, out[0 .. n-1], one element a step, by fresh draws of the random
 * stream. Normal(m, s) and the like stand for a bare call of that family's PralX_Core: a Normal takes two draws of the
 * stream, and one when its s is 0; the other families take one. The VB forms fill an automation array, n being its
 * element count.
 *
 * Models of prices live on log returns y_t, t = 0 .. n - 1. With LogReturn 0 the path is the price
 * S_t = S_(t-1) exp(y_t), S_(-1) being LastValue; otherwise it is y_t itself, and LastValue is not used. eps_t stands
 * for Normal(0, sigma) and z_t for Normal(0, 1). lastReturn is y_(-1), lastShock e_(-1), lastSigma sigma_(-1), the
 * state that was observed last. Shocks before the first step that are not arguments are drawn first, the earliest one
 * before the others.
 *
 * Arguments without a range may have any value; a NaN among them, and a variance that a recurrence makes negative, give
 * NaN. The messages stand in the order of checking, after "Error: out must not be null"; the path is 0 then. A draw
 * that its family refuses ends the call with that family's message, and the steps before it stay.
 */

/* Geometric Brownian motion: y_t ~ Normal(mu dt_t, sigma sqrt(dt_t)). mu and sigma > 0 are mean and standard deviation
 * of the log return per unit time: there is no correction by sigma^2/2. TimeStamps, when not null, are n ascending
 * times, after LastTime: dt_0 = TimeStamps[0] - LastTime, dt_t = TimeStamps[t] - TimeStamps[t-1]; otherwise dt = 1. A
 * first time before LastTime is refused by the Normal, "Error: sigma must be >= 0". LastValue may have any value.
 * "Error: sigma must be >0", "Error: {TimeStamps} array must be sorted by ascending order" */
PRAL_API bool PralTimeGBM_Core(double* out, int n, double mu, double sigma, double LastValue,
                               const double* TimeStamps, int LogReturn, double LastTime);
PRAL_API bool PralTimeGBMVB_Core(SAFEARRAY** out, double mu, double sigma, double LastValue,
                                 const double* TimeStamps, int LogReturn, double LastTime);

/* Geometric Brownian motion with jumps: first J_t ~ Bernoulli(1 - exp(-lambda)), then
 * y_t ~ Normal(mu + J_t muJ, sqrt(J_t sigmaJ^2 + sigma^2)). sigma > 0; 0 < lambda < 0.16 jumps per step, so that a
 * second one in a step may be left out; muJ and sigmaJ > 0 are mean and standard deviation of a jump. LastValue > 0.
 * "Error: sigma must be >0", "Error: lambda must be between (0, 0.16)", "Error: sigmaj must be >0",
 * "Error: LastValue must be >0" (LogReturn 0) */
PRAL_API bool PralTimeGBMJD_Core(double* out, int n, double mu, double sigma, double lambda, double muJ,
                                 double sigmaJ, int LogReturn, double LastValue);
PRAL_API bool PralTimeGBMJDVB_Core(SAFEARRAY** out, double mu, double sigma, double lambda, double muJ,
                                   double sigmaJ, int LogReturn, double LastValue);

/* Log returns that revert to their mean (Ornstein-Uhlenbeck): y_t ~ Normal(mu + (y_(t-1) - mu) exp(-alpha dt_t),
 * sigma sqrt((1 - exp(-2 alpha dt_t))/(2 alpha))). sigma > 0 per unit time; alpha, the speed of reversion per unit
 * time, may have any value (0: a random walk; the root is sqrt(dt) then). TimeStamps, when not null, are n ascending
 * times: dt_0 = TimeStamps[0], or 1 when that is not positive, dt_t = TimeStamps[t] - TimeStamps[t-1]; otherwise
 * dt = 1. LastValue > 0.
 * "Error: {TimeStamps} array must be sorted by ascending order", "Error: sigma must be >0",
 * "Error: If LogReturn=FALSE LastValue must be >0" */
PRAL_API bool PralTimeGBMMR_Core(double* out, int n, double mu, double sigma, double alpha, double lastReturn,
                                 double LastValue, const double* TimeStamps, int LogReturn);
PRAL_API bool PralTimeGBMMRVB_Core(SAFEARRAY** out, double mu, double sigma, double alpha, double lastReturn,
                                   double LastValue, const double* TimeStamps, int LogReturn);

/* Mean reversion with jumps, from y_(-1) = mu. R(y, s) = mu + (y - mu) exp(-alpha s) is the mean a time s after y, and
 * V(s) = sigma^2 (1 - exp(-2 alpha s))/(2 alpha) the variance. Each step draws J_t ~ Bernoulli(1 - exp(-lambda)), then
 *   without a jump   y_t ~ Normal(R(y_(t-1), 1), sqrt(V(1)))
 *   with a jump      y' ~ Normal(R(y_(t-1), tau) + muJ, sqrt(V(tau) + sigmaJ^2)),
 *                    y_t ~ Normal(R(y', 1 - tau), sqrt(V(1 - tau)))
 * tau = 1/lambda - 1/(exp(lambda) - 1) being the mean time of a single jump in the step. sigma > 0; alpha > 0, the
 * speed of reversion per step; lambda, muJ and sigmaJ as in GBMJD; LastValue > 0.
 * "Error: sigma must be >0", "Error: alpha must be >0", "Error: lambda must be between (0, 0.16)",
 * "Error: sigmaj must be >0", "Error: LastValue must be >0" (LogReturn 0) */
PRAL_API bool PralTimeGBMJDMR_Core(double* out, int n, double mu, double sigma, double alpha, double lambda,
                                   double muJ, double sigmaJ, int LogReturn, double LastValue);
PRAL_API bool PralTimeGBMJDMRVB_Core(SAFEARRAY** out, double mu, double sigma, double alpha, double lambda,
                                     double muJ, double sigmaJ, int LogReturn, double LastValue);

/* Geometric Brownian motion with two seasonal cycles: y_t ~ Normal(mu + s1[t mod p1] + s2[t mod p2], sigma). The
 * seasonal terms add to the log return of their step (a month and a weekday, say), so that exp(s) is a factor of its
 * growth. The periods p1, p2 >= 1 count steps; of the count_s1 and count_s2 terms given the first p1 and p2 are used.
 * sigma > 0; LastValue may have any value.
 * "Error: sigma must be >0", "Error: p1 must be >0", "Error: p2 must be >0", "Error: p1 must be <= count_s1",
 * "Error: p2 must be <= count_s2", "Error: s1 must not be null", "Error: s2 must not be null" */
PRAL_API bool PralTimeSeasonalGBM_Core(double* out, int n, double mu, double sigma, const double* s1,
                                       int count_s1, int p1, const double* s2, int count_s2, int p2,
                                       int LogReturn, double LastValue);
PRAL_API bool PralTimeSeasonalGBMVB_Core(SAFEARRAY** out, double mu, double sigma, const double* s1,
                                         int count_s1, int p1, const double* s2, int count_s2, int p2,
                                         int LogReturn, double LastValue);

/* Autoregressions about the mean mu, sigma >= 0 being the standard deviation of a shock (0: a deterministic path).
 * lastReturn is y_(-1), returnBefore y_(-2); LastValue may have any value.
 *   AR1   y_t = a y_(t-1) + (1 - a) mu + eps_t
 *   AR2   y_t = a1 y_(t-1) + a2 y_(t-2) + (1 - a1 - a2) mu + eps_t, n > 2
 * "Error: output array lemgth must be >2" (AR2), "sigma must be >=0" */
PRAL_API bool PralTimeAR1_Core(double* out, int n, double mu, double sigma, double a, double lastReturn,
                               int LogReturn, double LastValue);
PRAL_API bool PralTimeAR1VB_Core(SAFEARRAY** out, double mu, double sigma, double a, double lastReturn,
                                 int LogReturn, double LastValue);
PRAL_API bool PralTimeAR2_Core(double* out, int n, double mu, double sigma, double a1, double a2,
                               double lastReturn, double returnBefore, int LogReturn, double LastValue);
PRAL_API bool PralTimeAR2VB_Core(SAFEARRAY** out, double mu, double sigma, double a1, double a2,
                                 double lastReturn, double returnBefore, int LogReturn, double LastValue);

/* Moving averages of shocks, sigma >= 0; LastValue may have any value.
 *   MA1   y_t = mu + eps_t + b eps_(t-1)
 *   MA2   y_t = mu + eps_t + b1 eps_(t-1) + b2 eps_(t-2)
 * "sigma must be >=0" */
PRAL_API bool PralTimeMA1_Core(double* out, int n, double mu, double sigma, double b, int LogReturn,
                               double LastValue);
PRAL_API bool PralTimeMA1VB_Core(SAFEARRAY** out, double mu, double sigma, double b, int LogReturn,
                                 double LastValue);
PRAL_API bool PralTimeMA2_Core(double* out, int n, double mu, double sigma, double b1, double b2,
                               int LogReturn, double LastValue);
PRAL_API bool PralTimeMA2VB_Core(SAFEARRAY** out, double mu, double sigma, double b1, double b2,
                                 int LogReturn, double LastValue);

/* Both: y_t = a y_(t-1) + (1 - a) mu + eps_t + b eps_(t-1). n >= 2, sigma >= 0, LastValue > 0.
 * "Error: output array size must be >=1", "sigma must be >=0",
 * "if LogReturn is False then LastValue must be >0" (LogReturn 0) */
PRAL_API bool PralTimeARMA_Core(double* out, int n, double mu, double sigma, double a, double b,
                                double lastReturn, int LogReturn, double LastValue);
PRAL_API bool PralTimeARMAVB_Core(SAFEARRAY** out, double mu, double sigma, double a, double b,
                                  double lastReturn, int LogReturn, double LastValue);

/* Log returns whose variance follows the shocks. mu is their mean (EGARCH, GARCH: their level), n >= 2, LastValue > 0.
 * The first message of all four is "Error: output array size must be >=1" (n < 2), the last one
 * "if LogReturn is False then LastValue must be >0" (LogReturn 0).
 *
 * ARCH: y_t = mu + e_t, e_t = sigma_t z_t, sigma_t^2 = omega + a e_(t-1)^2, e_(-1) = lastReturn - mu; omega > 0,
 * a >= 0.
 * "Error: omega must be >0", "Error: \"a\" must be >=0" */
PRAL_API bool PralTimeARCH_Core(double* out, int n, double mu, double omega, double a, double lastReturn,
                                int LogReturn, double LastValue);
PRAL_API bool PralTimeARCHVB_Core(SAFEARRAY** out, double mu, double omega, double a, double lastReturn,
                                  int LogReturn, double LastValue);

/* GARCH: y_t = mu + sqrt(h_t) z_t, h_t = omega + a e_(t-1)^2 + b h_(t-1), where e_t = y_t, mu included, and
 * h_(-1) = a e_(-1) + omega, with the last shock unsquared; omega > 0, a >= 0, b >= 0.
 * "Error: omega must be >0", "Error: a must be >=0", "Error: b must be >=0" */
PRAL_API bool PralTimeGARCH_Core(double* out, int n, double mu, double omega, double a, double b,
                                 double lastShock, int LogReturn, double LastValue);
PRAL_API bool PralTimeGARCHVB_Core(SAFEARRAY** out, double mu, double omega, double a, double b,
                                   double lastShock, int LogReturn, double LastValue);

/* EGARCH: y_t = mu + sigma_t z_t, ln sigma_t^2 = omega + alpha (|r| + gamma r - 2/pi) + beta ln sigma_(t-1)^2 with
 * r = e_(t-1)/sigma_(t-1), where e_t = y_t, mu included, and e_(-1) = sigma_(-1) z_(-1). lastSigma should be > 0. */
PRAL_API bool PralTimeEGARCH_Core(double* out, int n, double mu, double omega, double gamma, double alpha,
                                  double beta, double lastSigma, int LogReturn, double LastValue);
PRAL_API bool PralTimeEGARCHVB_Core(SAFEARRAY** out, double mu, double omega, double gamma, double alpha,
                                    double beta, double lastSigma, int LogReturn, double LastValue);

/* APARCH: y_t = mu + e_t, e_t = sigma_t z_t, sigma_t^delta = omega + alpha (|e_(t-1)| - gamma e_(t-1))^delta +
 * beta sigma_(t-1)^delta, e_(-1) = sigma_(-1) z_(-1); omega > 0, delta >= 0, -1 < gamma < 1, alpha >= 0, beta >= 0.
 * "Error: omega must be >0", "Error: delta must be >=0", "Error: omega must be between (-1,1)" (about gamma),
 * "Error: \"a\" must be >=0" (alpha), "Error: \"b\" must be >=0" (beta) */
PRAL_API bool PralTimeAPARCH_Core(double* out, int n, double mu, double omega, double delta, double gamma,
                                  double alpha, double beta, double lastSigma, int LogReturn,
                                  double LastValue);
PRAL_API bool PralTimeAPARCHVB_Core(SAFEARRAY** out, double mu, double omega, double delta, double gamma,
                                    double alpha, double beta, double lastSigma, int LogReturn,
                                    double LastValue);

/* Counts X_0, X_1, ... of a population of N0 >= 1 individuals, an integer, after times t, 2 t, ...; beta > 0 is the
 * rate of each individual per unit of time, t > 0 the length of a step; p = exp(-beta t). When `logarithm` is not 0 the
 * path is log10 X_i, and -DBL_MAX for 0.
 *   Yule    births:  X_i = X_(i-1) + NegBin(X_(i-1), p); at DBL_MAX the population stays
 *           "n should be an positive integer", "beta should be >0", "t should be >0"
 *   Death   deaths:  X_i ~ Binomial(X_(i-1), p)
 *           "n should be an integer", "n should be >=1", "beta should be >0", "t should be >0" */
PRAL_API bool PralTimeYule_Core(double* out, int n, double N0, double beta, double t, int logarithm);
PRAL_API bool PralTimeYuleVB_Core(SAFEARRAY** out, double N0, double beta, double t, int logarithm);
PRAL_API bool PralTimeDeath_Core(double* out, int n, double N0, double beta, double t, int logarithm);
PRAL_API bool PralTimeDeathVB_Core(SAFEARRAY** out, double N0, double beta, double t, int logarithm);

/* ----------------------------------------------------------------------------- Economic projections
 *
 * Linked annual series, out[0 .. n-1], of which out[0] is where they start. All stand on the logarithmic price
 * inflation
 *   I_0 = 0, I_t ~ Normal(QMU + QA (I_(t-1) - QMU), QSD)
 * which is simulated within the call. Each step draws its normals in the order in which its lines are listed; I_t is
 * drawn at the line that shows it. In the A forms the caller gives I_0, I_1, ... as `inflation`, of which there must be n at least. Draws,
 * the VB forms, and what a refused draw or NaN leads to are as in Time series.
 *
 * A ...MU is a mean, a ...SD a standard deviation >= 0, a ...W a weight; QA, WA, YA, CA, CAA, CAAA and BA are
 * autoregressions, DD and CD weights of smoothing, DB a share of a residual, all in [-1,1]; the others may have any
 * value.
 * "Error: X must be greater or equal to 0!" for a standard deviation X, "Error: X must be in [-1,1] interval!" for the
 * others, in the order of the arguments. The A forms begin with "Error: {inflation} array length must be >= output
 * array length" and "Error: inflation must not be null". "Error: Unknown error!" is for what has no text of its own. */

/* The price index: out[0] = 1, out[t] = out[t-1] exp(I_t). */
PRAL_API bool PralTimePriceInflation_Core(double* out, int n, double QMU, double QSD, double QA);
PRAL_API bool PralTimePriceInflationVB_Core(SAFEARRAY** out, double QMU, double QSD, double QA);

/* The wage index: out[0] = 100, out[t] = out[t-1] exp(WW1 I_t + WW2 I_(t-1) + N_t);
 *   N_t ~ Normal(WMU + WA (N_(t-1) - WMU), WSD), N_0 = 0
 *   I_t */
PRAL_API bool PralTimeWageInflation_Core(double* out, int n, double QMU, double QSD, double QA, double WMU,
                                         double WSD, double WA, double WW1, double WW2);
PRAL_API bool PralTimeWageInflationVB_Core(SAFEARRAY** out, double QMU, double QSD, double QA, double WMU,
                                           double WSD, double WA, double WW1, double WW2);
PRAL_API bool PralTimeWageInflationA_Core(double* out, int n, const double* inflation, int inflationN,
                                          double WMU, double WSD, double WA, double WW1, double WW2);
PRAL_API bool PralTimeWageInflationAVB_Core(SAFEARRAY** out, const double* inflation, int inflationN,
                                            double WMU, double WSD, double WA, double WW1, double WW2);

/* The logarithmic growth of dividends: out[0] = 0;
 *   E_t ~ Normal(0, 1), the residual of the share yield
 *   I_t, smoothed: DM_t = (1 - DD) DM_(t-1) + DD I_t, DM_0 = 1
 *   out[t] ~ Normal(DW DM_t + DX I_t + DMU + YSD DY E_t + DSD DB E_t, DSD) */
PRAL_API bool PralTimeDividends_Core(double* out, int n, double QMU, double QSD, double QA, double YSD,
                                     double DMU, double DSD, double DB, double DW, double DX, double DD,
                                     double DY);
PRAL_API bool PralTimeDividendsVB_Core(SAFEARRAY** out, double QMU, double QSD, double QA, double YSD,
                                       double DMU, double DSD, double DB, double DW, double DX, double DD,
                                       double DY);
PRAL_API bool PralTimeDividendsA_Core(double* out, int n, const double* inflation, int inflationN, double YSD,
                                      double DMU, double DSD, double DB, double DW, double DX, double DD,
                                      double DY);
PRAL_API bool PralTimeDividendsAVB_Core(SAFEARRAY** out, const double* inflation, int inflationN, double YSD,
                                        double DMU, double DSD, double DB, double DW, double DX, double DD,
                                        double DY);

/* The logarithm of the share yield: out[0] = 0, out[t] = YW I_t + YN_t;
 *   YN_t ~ Normal(ln YMU + YA (YN_(t-1) - ln YMU), YSD), YN_0 = ln YMU; ln 0 is -DBL_MAX
 *   I_t */
PRAL_API bool PralTimeShareYields_Core(double* out, int n, double QMU, double QSD, double QA, double YMU,
                                       double YSD, double YA, double YW);
PRAL_API bool PralTimeShareYieldsVB_Core(SAFEARRAY** out, double QMU, double QSD, double QA, double YMU,
                                         double YSD, double YA, double YW);
PRAL_API bool PralTimeShareYieldsA_Core(double* out, int n, const double* inflation, int inflationN,
                                        double YMU, double YSD, double YA, double YW);
PRAL_API bool PralTimeShareYieldsAVB_Core(SAFEARRAY** out, const double* inflation, int inflationN,
                                          double YMU, double YSD, double YA, double YW);

/* The long-term interest rate: out[t] = CW CM_t + CMU exp(CN_t);
 *   e_t ~ Normal(0, YSD), the shock of the share yield
 *   I_t, smoothed: CM_t = CD I_t + (1 - CD) CM_(t-1), CM_0 = QMU (A form: I_0)
 *   CN_t ~ Normal(CA CN_(t-1) + CAA CN_(t-2) + CAAA CN_(t-3) + CY e_t, CSD), CN_t = 0 for t <= 0 */
PRAL_API bool PralTimeLongTermInterestRate_Core(double* out, int n, double QMU, double QSD, double QA,
                                                double YSD, double CMU, double CSD, double CA, double CD,
                                                double CAA, double CAAA, double CW, double CY);
PRAL_API bool PralTimeLongTermInterestRateVB_Core(SAFEARRAY** out, double QMU, double QSD, double QA,
                                                  double YSD, double CMU, double CSD, double CA, double CD,
                                                  double CAA, double CAAA, double CW, double CY);
PRAL_API bool PralTimeLongTermInterestRateA_Core(double* out, int n, const double* inflation, int inflationN,
                                                 double YSD, double CMU, double CSD, double CA, double CD,
                                                 double CAA, double CAAA, double CW, double CY);
PRAL_API bool PralTimeLongTermInterestRateAVB_Core(SAFEARRAY** out, const double* inflation, int inflationN,
                                                   double YSD, double CMU, double CSD, double CA, double CD,
                                                   double CAA, double CAAA, double CW, double CY);

/* The short-term interest rate: out[t] = C_t exp(-B_t), where the whole path C of the long-term rate is drawn first,
 * and then
 *   B_t ~ Normal(BMU + BA (B_(t-1) - BMU), BSD), B_0 = BMU
 * In the A form the caller gives C_0, C_1, ... as `longTermRate`, n of them at least.
 * "Error: {longTermRate} array length must be >= output array length", "Error: longTermRate must not be null" */
PRAL_API bool PralTimeShortTermInterestRate_Core(double* out, int n, double QMU, double QSD, double QA,
                                                 double YSD, double CMU, double CSD, double CA, double CD,
                                                 double CAA, double CAAA, double CW, double CY, double BMU,
                                                 double BSD, double BA);
PRAL_API bool PralTimeShortTermInterestRateVB_Core(SAFEARRAY** out, double QMU, double QSD, double QA,
                                                   double YSD, double CMU, double CSD, double CA, double CD,
                                                   double CAA, double CAAA, double CW, double CY, double BMU,
                                                   double BSD, double BA);
PRAL_API bool PralTimeShortTermInterestRateA_Core(double* out, int n, const double* longTermRate, int rateN,
                                                  double BMU, double BSD, double BA);
PRAL_API bool PralTimeShortTermInterestRateAVB_Core(SAFEARRAY** out, const double* longTermRate, int rateN,
                                                    double BMU, double BSD, double BA);

/* ----------------------------------------------------------------------------- Multivariate distributions
 *
 * Samplers write one vector of k values, elements beyond which are not touched; a failed call leaves zeros. They are made
 * of bare calls of univariate distributions, in the order given. Probability functions give the joint
 * density or probability, Prob10 its base-10 logarithm. Counts are whole numbers in doubles. The VB forms take an
 * automation array in place of `out` and its count.
 */

/* Normal vectors with means mu and the k x k covariance matrix cov, covN elements: mu + L z with its Cholesky factor L and
 * k standard normals z (S sqrt(Lambda) of the eigen-decomposition in place of L where the matrix is singular). A matrix
 * that is zero above its diagonal is completed in `cov` itself, also when the call then fails. Without elements (covN < 1),
 * or with all of them 0, the result is mu, and nothing is drawn.
 * "Error: the number of elements in otput array too small", "Error: cov_matrix must have as many rows and columns as there
 * are means", "Error: matrix is not symmetric", "Error: cov_matrix must be positive semi-definite" */
PRAL_API bool PralMultiNormal_Core(double* out, int outN, const double* mu, int k, double* cov, int covN);
PRAL_API bool PralMultiNormalVB_Core(SAFEARRAY** out, const double* mu, int k, double* cov, int covN);

/* exp(-q/2)/sqrt(2 pi det cov), q = (x - mu)' cov^-1 (x - mu). The constant has 2 pi once, whatever k is: the usual density
 * for k = 1 only.
 * "Error: Data and Means arrays must contain same number of cells", those of the sampler, "Error: cov_matrix is singular"
 * (also one in which variables determine another to rounding) */
PRAL_API bool PralMultiNormalProb_Core(double* result, const double* x, int nx, const double* mu, int nmu,
                                       double* cov, int covN);
PRAL_API bool PralMultiNormalProb10_Core(double* result, const double* x, int nx, const double* mu, int nmu,
                                         double* cov, int covN);

/* How n >= 0 items fall into k categories with probabilities p, which sum to 1 within k 1e-15. Conditional binomials.
 * "Error: the number of elements in otput array must be equal w" (fewer than k), "Error: n must be a positive integer",
 * "Error: p must be between [0,1]", "Error: p must sum up to 1" */
PRAL_API bool PralMultinomial_Core(double* out, int outN, double n, const double* p, int k);
PRAL_API bool PralMultinomialVB_Core(SAFEARRAY** out, double n, const double* p, int k);

/* n!/prod s_i! prod p_i^s_i of the counts s, n = sum s.
 * "Error: s and p arrays must contain same number of cells", "Error: p values must all be on [0,1]",
 * "Error: s values must not be negative", "Error: Sum(s) must >0", "Error: Sum(p) must =1" (within k 1e-15),
 * "Error: s values must be integers" */
PRAL_API bool PralMultinomialProb_Core(double* result, const double* s, int ns, const double* p, int np);
PRAL_API bool PralMultinomialProb10_Core(double* result, const double* s, int ns, const double* p, int np);

/* k proportions that sum to 1: Gamma(alpha_i + 1, 1) over their sum. The shapes are alpha + 1, so that these are samples
 * of the Dirichlet distribution with parameters alpha + 1, alpha > -1.
 * "Error: return array size must be >= {alpha} size ", those of Gamma, "Error: alpha values must be > -1" (all -1) */
PRAL_API bool PralDirichlet_Core(double* out, int outN, const double* alpha, int k);
PRAL_API bool PralDirichletVB_Core(SAFEARRAY** out, const double* alpha, int k);

/* Gamma(sum alpha)/prod Gamma(alpha_i) prod x_i^(alpha_i - 1).
 * "Error: {x} and {alpha} must contain same number of elemens", "Error: alpha values must be >0",
 * "Error: x values must all be on (0,1)", "Error: Sum(x) must =1" (within k 1e-15) */
PRAL_API bool PralDirichletProb_Core(double* result, const double* x, int nx, const double* alpha,
                                     int nalpha);
PRAL_API bool PralDirichletProb10_Core(double* result, const double* x, int nx, const double* alpha,
                                       int nalpha);

/* How n items drawn without replacement fall into k groups of sizes D >= 0. Conditional hypergeometrics. outN is not
 * looked at: `out` must hold k elements (an automation array is refused when it does not).
 * "Error: D values must be integers", "Error: D values must all be >0" (negative), "Error: n must be less than Sum({D})"
 * (greater), those of Hypergeo */
PRAL_API bool PralMultiHypergeo_Core(double* out, int outN, double n, const double* D, int k);
PRAL_API bool PralMultiHypergeoVB_Core(SAFEARRAY** out, double n, const double* D, int k);

/* prod C(D_i, s_i)/C(sum D, sum s).
 * "Error: s and D arrays must contain same number of cells", "Error: s values must be integers",
 * "Error: s values must be >=0", "Error: D values must be integers", "Error: D values must all be >0" (negative),
 * "Error: s[i] must be <= D(i)", "Error: Sum(s) must >0" */
PRAL_API bool PralMultiHypergeoProb_Core(double* result, const double* s, int ns, const double* D, int nD);
PRAL_API bool PralMultiHypergeoProb10_Core(double* result, const double* s, int ns, const double* D, int nD);

/* Waiting times: items are drawn until every group i has at least s[i] of them, InvMultiHypergeo without replacement from
 * groups of D[i] >= s[i] items, NegMultinomial in independent trials with probabilities p, which sum to 1 within 1e-15.
 * The first forms give the total number of draws; the forms 2 a vector, the items of each group beyond its quota s[i].
 *
 * The groups are taken in order. A group that still needs m items draws how many items of other groups precede its m-th
 * (InvHypergeo, NegBin; the first group also when its quota is 0), and these are shared among all other groups, those
 * that have their quota included, in order by conditional hypergeometrics or binomials of what is left. A draw beyond
 * NegBin's cut-off (0.9999999) makes the result DBL_MAX.
 * Urn: "Error: the number of elements in {s} and {d} must be equal", "Error: {s} values must be integers",
 * "Error: {s} values must be >=0", "Error: {d} values must be integers", "Error: {d} values must all be >0" (negative),
 * "Error: each s(i) must less than d(i)" (greater; form 2: "Error: each s(i) must be <= D(i)"), form 2:
 * "Error: the number of elements in otput array must be equal w" (fewer)
 * Trials: "Error: sizes of input arrays must be equal", "Error: all p must be between [0,1]", "Error: all s must be
 * positive" (negative), "Error: all s must be integer", "Error: sum(p) must equal to 1", form 2:
 * "Error: the number of elements in otput array too small" */
PRAL_API bool PralInvMultiHypergeo_Core(double* out, const double* s, int ns, const double* D, int nD);
PRAL_API bool PralInvMultiHypergeo2_Core(double* out, int outN, const double* s, int ns, const double* D,
                                         int nD);
PRAL_API bool PralInvMultiHypergeo2VB_Core(SAFEARRAY** out, const double* s, int ns, const double* D, int nD);
PRAL_API bool PralNegMultinomial_Core(double* out, const double* s, int ns, const double* p, int np);
PRAL_API bool PralNegMultinomial2_Core(double* out, int outN, const double* s, int ns, const double* p,
                                       int np);
PRAL_API bool PralNegMultinomial2VB_Core(SAFEARRAY** out, const double* s, int ns, const double* p, int np);

/* ---------------------------------------------------------------------------------------------------- Copulas
 *
 * Vectors of percentiles in [0,1] with a given dependence, for the U of univariate distributions. A pair is two
 * outputs (n = 2); many samples of d coordinates stand one after another: sample s at out[s d] .. out[s d + d - 1].
 * A failed call leaves zeros in the output; elements beyond the last sample are not touched. The VB forms take an
 * automation array in place of `out` and its count.
 */

/* Archimedean copulas, sampled by a frailty V common to the coordinates (Marshall and Olkin 1988), which is drawn
 * before them:
 *   Clayton  U = (1 - ln(u)/V)^(-1/alpha), V Gamma(1/alpha, 1); tau = alpha/(alpha + 2)
 *   Gumbel   U = exp(-(-ln(u)/V)^(1/theta)), V positive stable of index 1/theta (two draws; Chambers, Mallows and
 *            Stuck 1976); tau = 1 - 1/theta; theta = 1 is independence
 *   Frank    U = -ln(1 - u^(1/V) (1 - e^-theta))/theta, V Logarithmic(1 - e^-theta);
 *            tau = 1 - 4/theta (1 - D1(theta)), D1 being the first Debye function
 * The parameter 0 is independence. A negative one, for pairs only, gives the vectors of its absolute value with the
 * second coordinate mirrored. `direction` then turns the pair: 1 as it is (the dependence of Clayton is closest near
 * (0,0), that of Gumbel near (1,1)), 2 mirrors the first coordinate, 3 the second, 4 both.
 * "Error: output array size must be =2",
 * "Error: Direction must be integer value in [1..4]" (Frank: "Error: Direction must be integer value in [1..2]"),
 * "Error:  alpha must be between [-35:36] for bivariate case",
 * "Error:  theta must be between [-35:-1] or [1:36] for bivariate case" (Gumbel),
 * "Error:  theta must be between [-35:35] for bivariate case" (Frank) */
PRAL_API bool PralCopulaBiClayton_Core(double* out, int n, double alpha, int direction);
PRAL_API bool PralCopulaBiClaytonVB_Core(SAFEARRAY** out, double alpha, int direction);
PRAL_API bool PralCopulaBiGumbel_Core(double* out, int n, double theta, int direction);
PRAL_API bool PralCopulaBiGumbelVB_Core(SAFEARRAY** out, double theta, int direction);
PRAL_API bool PralCopulaBiFrank_Core(double* out, int n, double theta, int direction);
PRAL_API bool PralCopulaBiFrankVB_Core(SAFEARRAY** out, double theta, int direction);

/* `nSamples` samples of d = outN/nSamples coordinates, cut to an integer. Pairs (d = 2) have the ranges and messages of
 * the functions above, but "[-35:-1] or [1,36]" in Gumbel's; more coordinates take no negative parameter.
 * "Error: output array size is not valid" (d < 2), "Error:  alpha must be between [0:36] for multivariate case",
 * "Error:  theta must be between [1:36] for multivariate case" (Gumbel), "... [0:35] ..." (Frank) */
PRAL_API bool PralCopulaMultiClayton_Core(double* out, int outN, double alpha, int nSamples);
PRAL_API bool PralCopulaMultiClaytonVB_Core(SAFEARRAY** out, double alpha, int nSamples);
PRAL_API bool PralCopulaMultiGumbel_Core(double* out, int outN, double theta, int nSamples);
PRAL_API bool PralCopulaMultiGumbelVB_Core(SAFEARRAY** out, double theta, int nSamples);
PRAL_API bool PralCopulaMultiFrank_Core(double* out, int outN, double theta, int nSamples);
PRAL_API bool PralCopulaMultiFrankVB_Core(SAFEARRAY** out, double theta, int nSamples);

/* The normal copula: the percentiles of correlated standard normals (two draws each). A correlation rho of 1 or -1 takes
 * one uniform. "Error: output array size must be =2",
 * "Error: cov_matrix must be positive semi-definite" (rho beyond [-1,1]) */
PRAL_API bool PralCopulaBiNormal_Core(double* out, int n, double rho);
PRAL_API bool PralCopulaBiNormalVB_Core(SAFEARRAY** out, double rho);

/* Student's t copula with nu degrees of freedom, an integer > 0: the percentiles of correlated normals times
 * sqrt(nu/W), W ChiSq(nu), which is drawn first. Messages as the normal copula's, then those of ChiSq. */
PRAL_API bool PralCopulaBiT_Core(double* out, int n, double nu, double rho);
PRAL_API bool PralCopulaBiTVB_Core(SAFEARRAY** out, double nu, double rho);

/* The same with a d x d correlation matrix, of which the lower triangle is enough: it is completed in `corr` itself.
 * outN = d nSamples; or d = 1 and outN = 2 nSamples, `corr` being the one correlation of pairs. Where all elements of the
 * matrix are equal and >= 0, all outputs of the call are one and the same uniform. A covariance matrix stands for its
 * correlations. The normals of T are by inversion, one draw each.
 * "Error: nu must be a positive integer" (T, not a whole number), "Error: number of elements in the output must equal to
 * the size of the matrix", "Error: matrix is not symmetric", "Error: cov_matrix must be positive semi-definite", "Error:
 * diagonal elements must be >0", those of ChiSq */
PRAL_API bool PralCopulaMultiNormal_Core(double* out, int outN, double* corr, int d, int nSamples);
PRAL_API bool PralCopulaMultiNormalVB_Core(SAFEARRAY** out, double* corr, int d, int nSamples);
PRAL_API bool PralCopulaMultiT_Core(double* out, int outN, double nu, double* corr, int d, int nSamples);
PRAL_API bool PralCopulaMultiTVB_Core(SAFEARRAY** out, double nu, double* corr, int d, int nSamples);

/* The empirical copula of a rows x cols matrix of data, with a variable in each column, or in each row when
 * `dataInRows` is not 0. A sample draws an observation, then each coordinate uniformly within the cell of its rank: the
 * k-th smallest of m values has [(k - 1)/m, k/m], equal values share the union of their cells. outN/d samples, cut to an
 * integer. Series: only the first observation is drawn, and the samples follow the order of the data from there, the
 * first observation coming after the last.
 * "Error: {data} array length must be >=2" (observations), "Error: output array size is not valid" (no sample) */
PRAL_API bool PralCopulaData_Core(double* out, int outN, const double* data, int rows, int cols,
                                  int dataInRows);
PRAL_API bool PralCopulaDataVB_Core(SAFEARRAY** out, const double* data, int rows, int cols, int dataInRows);
PRAL_API bool PralCopulaDataSeries_Core(double* out, int outN, const double* data, int rows, int cols,
                                        int dataInRows);
PRAL_API bool PralCopulaDataSeriesVB_Core(SAFEARRAY** out, const double* data, int rows, int cols,
                                          int dataInRows);

/* ------------------------------------------------------------------------------------------ Fits of copulas
 *
 * By inversion of Kendall's tau (tau-a, of the ranks) of the data: a rows x cols matrix of at least 2 observations of at
 * least 2 variables, with a variable in each column, or in each row when `dataInRows` is not 0; or nPairs >= 2 pairs
 * x0, y0, x1, y1, ... With `uncertainty` not 0 the result is the fit to a synthetic data set of the same shape, drawn
 * from the fitted copula: one replicate of the parametric bootstrap. FitP functions give the parameters; Fit functions
 * one sample of the fitted copula (d values; two of a pair). An automation array must have room for the result, and is
 * looked at after the counts ("Error: source array is not valid").
 * "if Data_In_Rows=false, number of {data} rows must be >=2", "if Data_In_Rows=true number of {data} columns must be
 * >=2" (fewer than 2 variables), "Error: {data} array length must be >=2" (observations), "Error: The number of copula
 * pairs must be > 2" (fewer than 2), "Error: the data must be numbers" (NaN) */

/* From the mean of tau over all ordered pairs of variables (a, b), a not being the last variable:
 *   Clayton  2 tau/(1 - tau), within [0,36]
 *   Gumbel   1/(1 - tau), at most 36, and 1.0000000001 where it is below 1
 *   Frank    by a table of tau at theta = 0, 0.36, ..., 34.92 (the formula, to nine decimals: 0.039948274 at 0.36),
 *            linearly; 0 for tau < 0, 35 beyond the table. The synthetic data come from the Clayton copula with
 *            Frank's theta. */
PRAL_API bool PralCopulaMultiClaytonFitP_Core(double* alpha, const double* data, int rows, int cols,
                                              int dataInRows, int uncertainty);
PRAL_API bool PralCopulaMultiGumbelFitP_Core(double* theta, const double* data, int rows, int cols,
                                             int dataInRows, int uncertainty);
PRAL_API bool PralCopulaMultiFrankFitP_Core(double* theta, const double* data, int rows, int cols,
                                            int dataInRows, int uncertainty);
PRAL_API bool PralCopulaMultiClaytonFit_Core(double* out, const double* data, int rows, int cols,
                                             int dataInRows, int uncertainty);
PRAL_API bool PralCopulaMultiClaytonFitVB_Core(SAFEARRAY** out, const double* data, int rows, int cols,
                                               int dataInRows, int uncertainty);
PRAL_API bool PralCopulaMultiGumbelFit_Core(double* out, const double* data, int rows, int cols,
                                            int dataInRows, int uncertainty);
PRAL_API bool PralCopulaMultiGumbelFitVB_Core(SAFEARRAY** out, const double* data, int rows, int cols,
                                              int dataInRows, int uncertainty);
PRAL_API bool PralCopulaMultiFrankFit_Core(double* out, const double* data, int rows, int cols,
                                           int dataInRows, int uncertainty);
PRAL_API bool PralCopulaMultiFrankFitVB_Core(SAFEARRAY** out, const double* data, int rows, int cols,
                                             int dataInRows, int uncertainty);

/* Of pairs, without the limits 0 and 36. *direction 1 to 4 (Frank: 1 or 2) is used as given: the pairs are turned back
 * by it, so that 2 and 3 change the sign of tau; where tau is negative then, the parameter is minus that of |tau|, with
 * which the sampler of pairs has the tau of the data in this direction. 0, or a null pointer, asks for the direction
 * that the data show: 1 or 4 for tau >= 0, 2 or 3 for tau < 0, whichever puts the closest dependence into the copula's
 * own corner (by the sign of the sum of (r + s)^3 over the centred ranks), 1 or 2 for Frank; it is written to
 * *direction.
 * "Error: Direction must be integer value in [1..4]" or "... [1..2]"; with `uncertainty`, and for a sample, the copula's
 * own message when the fitted parameter is out of its range. */
PRAL_API bool PralCopulaBiClaytonFitP_Core(double* alpha, int* direction, const double* pairs, int nPairs,
                                           int uncertainty);
PRAL_API bool PralCopulaBiGumbelFitP_Core(double* theta, int* direction, const double* pairs, int nPairs,
                                          int uncertainty);
PRAL_API bool PralCopulaBiFrankFitP_Core(double* theta, int* direction, const double* pairs, int nPairs,
                                         int uncertainty);
PRAL_API bool PralCopulaBiClaytonFit_Core(double* out, int* direction, const double* pairs, int nPairs,
                                          int uncertainty);
PRAL_API bool PralCopulaBiGumbelFit_Core(double* out, int* direction, const double* pairs, int nPairs,
                                         int uncertainty);
PRAL_API bool PralCopulaBiFrankFit_Core(double* out, int* direction, const double* pairs, int nPairs,
                                        int uncertainty);

/* The elliptical copulas: correlations sin(pi tau/2), of more than two variables made positive semi-definite as by
 * PralValidCorrmat_Core; degrees of freedom nu the whole number in [1,256] with the largest likelihood of the t copula
 * with these correlations at the ranks/(observations + 1). */
PRAL_API bool PralCopulaBiNormalFitP_Core(double* rho, const double* pairs, int nPairs, int uncertainty);
PRAL_API bool PralCopulaBiTFitP_Core(double* nu, double* rho, const double* pairs, int nPairs,
                                     int uncertainty);
PRAL_API bool PralCopulaMultiNormalFitP_Core(double* corr, const double* data, int rows, int cols,
                                             int dataInRows, int uncertainty);
PRAL_API bool PralCopulaMultiNormalFitPVB_Core(SAFEARRAY** corr, const double* data, int rows, int cols,
                                               int dataInRows, int uncertainty);
PRAL_API bool PralCopulaMultiTFitP_Core(double* nu, double* corr, const double* data, int rows, int cols,
                                        int dataInRows, int uncertainty);
PRAL_API bool PralCopulaMultiTFitPVB_Core(double* nu, SAFEARRAY** corr, const double* data, int rows,
                                          int cols, int dataInRows, int uncertainty);

/* ----------------------------------------------------------------------------------------------------- Fits
 *
 * Maximum-likelihood fits of a distribution X to n observations `data`. The families that can be fitted are listed
 * below; each has four functions:
 *
 *   bool PralXFit_Core(double* out, const double* data, int n, int* uncertainty, double TruncMin, double TruncMax,
 *                      double U, int count, const char* key, bool reserved)
 *       Fits, then writes `count` values of the fitted distribution: its value at percentile U, or draws.
 *
 *   bool PralXFitP_Core(double* out, int outLen, const double* data, int n, int* uncertainty, double TruncMin,
 *                       double TruncMax, double* shift, int reserved1, int reserved2, const char* key, bool reserved)
 *       The fitted parameters in the order of PralX_Core, outLen of them. If shift is given it is fitted too,
 *       starting at *shift (with TruncMin: where the distribution begins just below TruncMin), and *shift receives it.
 *
 *   bool PralXFitVB_Core(SAFEARRAY** out, const double* data, int n, int uncertainty, double TruncMin,
 *                        double TruncMax, double U)
 *       One value, in the first element of an automation array of doubles, whatever its length.
 *
 *   bool PralXFitPVB_Core(SAFEARRAY** out, const double* data, int n, int uncertainty, double TruncMin,
 *                         double TruncMax)
 *       The parameters, into an automation array of as many doubles.
 *
 *   TruncMin, TruncMax   the data are a sample truncated there; 1e100 means not given. Values are truncated likewise.
 *                        Like the bounds of PralX_Core they hold before a shift is added.
 *   U                    a percentile in [0,1]; 1e100 means draws of the stream
 *   uncertainty          other than 0: a replicate of the parameters in place of the fit, refitted to n draws from
 *                        the fitted distribution (parametric bootstrap); null counts as 0
 *   key                  null, or the name under which the result is cached (X by default)
 *   reserved             0
 *
 * A fit begins with an estimate from the data's moments or quantiles, which Newton's method takes to the maximum of the
 * likelihood in coordinates of the family's own; then Nelder and Mead's simplex searches over the parameters (GSL's
 * nmsimplex, steps 0.1, until its size is below 1e-5, 1,000 iterations are done or the likelihood around is level). The Normal without bounds is the
 * mean and standard deviation of the sample (divisor n - 1). Integer parameters are real numbers during the search;
 * those of BetaBinomial, Binomial, Chi, ChiSq, Erlang (truncated), NCChiSq, NegBin, Student, Student3, ZIBetaBinomial
 * and ZTBetaBinomial are rounded after it. The base of LognormalB is 10 to begin with: the likelihood does not depend on it.
 * The results of the 64 fits used last, with data and names of 32 MB (4,000,000 data) at most, are kept and found again
 * by equal requests. Fits with a shift and replicates are not kept.
 *
 * A fit, with its replicate, ends after PralSetFitTimeout's seconds; one that has not been finished then has failed.
 *
 * Errors
 *   "Error: source array is not valid"                                     n <= 0 or no data
 *   "Error: Output array is not valid"                                     the automation array
 *   "Error: Output array length(%d) must equal to number of distribution parameters(%d)"   FitP; `out` is untouched
 *   "Error: TruncData minimum must be <= min(data)", "Error: TruncData maximum must be >= max(data)"   FitP; no
 *                                                                          message from Fit
 *   "Error: 0 - in input data", "Error: Unable to perform the fit, data have lower 0 values",
 *   "Error: Unable to perform the fit"                                     data that the family cannot have
 *   "Error: Unable to perform a fit because can't estimate (%d) start parameter",
 *   "Error: Can't estimate {%s} start parameter"                           by number or by name
 *   "Fit not possible as variance < mean"                                  PoissonUniform
 *   "Error: Unable to perform a fit from selected data"                    no likelihood, even at the start
 *   "Error: Unable to fit from selected data array"                        time-out
 *   "Error: another fit is running, and calls must not overlap"            in another thread
 * JohnsonU and Kumaraswamy4 put their names in the place of "Error" and have "Unable to perform the fit" for all else.
 * After a failed FitP all elements are -DBL_MAX, and *shift is as it was.
 */
/* clang-format off */
#define PRAL_FITTED_FAMILIES(FIT)                                                                                 \
    FIT(Bernoulli) FIT(Beta) FIT(Beta4) FIT(BetaBinomial) FIT(BetaGeometric) FIT(BetaNegBin) FIT(BetaSubj)        \
    FIT(Binomial) FIT(BurntFingerPoisson) FIT(Bradford) FIT(Burr) FIT(Cauchy) FIT(Chi) FIT(ChiSq) FIT(Dagum)      \
    FIT(Delaporte) FIT(Erf) FIT(Erlang) FIT(Error) FIT(Expon) FIT(ExtValueMax) FIT(ExtValueMin) FIT(F)            \
    FIT(Fatigue) FIT(Gamma) FIT(Geometric) FIT(GEV) FIT(GLogistic) FIT(HS) FIT(InvGauss) FIT(JohnsonB)            \
    FIT(JohnsonU) FIT(Kumaraswamy) FIT(Kumaraswamy4) FIT(Laplace) FIT(Levy) FIT(Lifetime2) FIT(Lifetime3)         \
    FIT(LifetimeExp) FIT(Logarithmic) FIT(LogGamma) FIT(Logistic) FIT(LogLaplace) FIT(LogLogistic)                \
    FIT(Lognormal) FIT(LognormalB) FIT(LognormalE) FIT(LogTriangle) FIT(LogUniform) FIT(Maxwell) FIT(NCChiSq)     \
    FIT(NCF) FIT(NegBin) FIT(Normal) FIT(NormalMix) FIT(Pareto) FIT(Pareto2) FIT(Pearson5) FIT(Pearson6)          \
    FIT(Poisson) FIT(PoissonUniform) FIT(Polya) FIT(Rayleigh) FIT(Reciprocal) FIT(Skellam) FIT(SkewNormal)        \
    FIT(Slash) FIT(Student) FIT(Triangle) FIT(Weibull) FIT(Weibull3) FIT(ZIBetaBinomial) FIT(ZTBetaBinomial)      \
    FIT(ZIBetaGeometric) FIT(ZTBetaGeometric) FIT(ZIBetaNegBin) FIT(ZTBetaNegBin) FIT(ZIBinomial)                 \
    FIT(ZTBinomial) FIT(ZIDelaporte) FIT(ZTDelaporte) FIT(ZIGeometric) FIT(ZTGeometric) FIT(ZILogarithmic)        \
    FIT(ZINegBin) FIT(ZISkellam) FIT(ZTNegBin) FIT(ZIPoisson) FIT(ZTPoisson) FIT(ZIPolya) FIT(ZTPolya)
/* clang-format on */
#define PRAL_DECLARE_FIT_VALUES(X)                                                                          \
    PRAL_API bool Pral##X##Fit_Core(double* out, const double* data, int n, int* uncertainty,               \
                                    double TruncMin, double TruncMax, double U, int count, const char* key, \
                                    bool reserved);                                                         \
    PRAL_API bool Pral##X##FitVB_Core(SAFEARRAY** out, const double* data, int n, int uncertainty,          \
                                      double TruncMin, double TruncMax, double U);
#define PRAL_DECLARE_FIT_PARAMETERS(X)                                                                     \
    PRAL_API bool Pral##X##FitP_Core(double* out, int outLen, const double* data, int n, int* uncertainty, \
                                     double TruncMin, double TruncMax, double* shift, int reserved1,       \
                                     int reserved2, const char* key, bool reserved);
#define PRAL_DECLARE_FIT_PARAMETERS_VB(X)                                                           \
    PRAL_API bool Pral##X##FitPVB_Core(SAFEARRAY** out, const double* data, int n, int uncertainty, \
                                       double TruncMin, double TruncMax);
#define PRAL_DECLARE_FIT(X)        \
    PRAL_DECLARE_FIT_VALUES(X)     \
    PRAL_DECLARE_FIT_PARAMETERS(X) \
    PRAL_DECLARE_FIT_PARAMETERS_VB(X)
PRAL_FITTED_FAMILIES(PRAL_DECLARE_FIT)
/* Uniform has no PralUniformFitPVB_Core, Student3 no PralStudent3FitP_Core. */
PRAL_DECLARE_FIT_VALUES(Uniform)
PRAL_DECLARE_FIT_PARAMETERS(Uniform)
PRAL_DECLARE_FIT_VALUES(Student3)
PRAL_DECLARE_FIT_PARAMETERS_VB(Student3)
#undef PRAL_DECLARE_FIT
#undef PRAL_DECLARE_FIT_PARAMETERS_VB
#undef PRAL_DECLARE_FIT_PARAMETERS
#undef PRAL_DECLARE_FIT_VALUES

/* The natural log-likelihood of n data under the distribution of that name, "Normal" for instance, with its `count`
 * parameters, which may be real numbers where the distribution has integers; bounds and shift as above (a null shift
 * counts as 0). -DBL_MAX where the data are impossible or the parameters refused.
 * "Error: there is no fit of %s", "Error: Output array length(%d) must equal to number of distribution parameters(%d)" for
 * the parameters, "Error: source array is not valid" */
PRAL_API bool PralFitLogLikelihood_Core(double* out, const char* distribution, const double* parameters,
                                        int count, const double* data, int n, double TruncMin,
                                        double TruncMax, const double* shift);

/* A fit ends after so many seconds of processor time (60 in a freshly loaded library) with "Error: Unable to fit from
 * selected data array". Not a number and negative values count as 0. */
PRAL_API void PralSetFitTimeout(double seconds);

/* The distribution of the data themselves: each of n observations equally likely (Discrete with equal weights), or, with
 * *uncertainty other than 0, with weights drawn once for the call, the spacings of n - 1 sorted uniforms (Rubin's
 * Bayesian bootstrap 1981). Bounds, U, count, key and reserved as in PralXFit_Core; the probability members' other
 * arguments as in PralDiscreteProb_Core. "Error: source array is not valid" */
PRAL_API bool PralDiscreteFit_Core(double* out, const double* data, int n, int* uncertainty, double TruncMin,
                                   double TruncMax, double U, int count, const char* key, bool reserved);
PRAL_API bool PralDiscreteFitProb_Core(double* out, double* x, int count, const double* data, int n,
                                       const int* uncertainty, const int* cumulative, const int* boundsMode,
                                       const double* boundsMin, const double* boundsMax, const double* shift);
PRAL_API bool PralDiscreteFitProb10_Core(double* out, double* x, int count, const double* data, int n,
                                         const int* uncertainty, const int* cumulative, const int* boundsMode,
                                         const double* boundsMin, const double* boundsMax,
                                         const double* shift);

/* -------------------------------------------------------------------------------- Univariate distributions
 *
 * Every distribution X has five members. Its parameters, told in the list below, stand in the place of PARAMETERS;
 * the optional modifiers follow:
 *
 *   bool PralX_Core(double* out, PARAMETERS, U, boundsMode, boundsMin, boundsMax, shift)
 *       One value: the quantile at percentile *U, or a random sample when U is null or *U is -1. *U = 0 and *U = 1
 *       give the ends of the (truncated) support. A random sample is the quantile at one draw of the stream, unless
 *       the family has a generator of its own for a bare call, one with neither U nor bounds (the Normal:
 *       Box-Muller, two draws).
 *
 *   bool PralXArray_Core(double* out, int count, PARAMETERS, U, boundsMode, boundsMin, boundsMax, shift)
 *       `count` values: the quantiles at as many draws of the stream; with a percentile, copies of its quantile.
 *
 *   bool PralXArrayVB_Core(SAFEARRAY** out, PARAMETERS, U, boundsMode, boundsMin, boundsMax, shift)
 *       The same into a one-dimensional automation array of doubles.
 *
 *   bool PralXProb_Core(double* out, double* x, int count, PARAMETERS, cumulative, boundsMode, boundsMin,
 *                       boundsMax, shift)
 *       The joint density (or probability mass) of x[0 .. count-1]; their joint cumulative probability when
 *       *cumulative is neither 0 nor -1. A value outside the support has probability 0; that is no error.
 *
 *   bool PralXProb10_Core(double* out, the same)
 *       The base-10 logarithm of that.
 *
 * Modifiers
 *   const double* U         percentile in [0,1]; -1 counts as not given
 *   const int* boundsMode   truncation, when given and >= 0. Bit value 2 set: *boundsMin is a percentile; clear: a value.
 *                           Bit value 1: likewise *boundsMax. -DBL_MAX (boundsMin) and DBL_MAX (boundsMax) leave a side open;
 *                           null reads as 0. To families on integers a value between two counts as the one next to 0.
 *   const double* shift     added to every sampled value; subtracted from every x, in the caller's array itself
 *   const int* cumulative   see PralXProb_Core
 *
 * Errors, in the order of checking; the outputs are 0 then
 *   "Error: out must not be null", "Error: x must not be null"
 *   "PralXBounds error: MinX(%s) must be <= MaxX(%s)"   contradicting bounds, both given as values
 *   "PralPBounds error: MinP(%s) must be <= MaxP(%s)"   contradicting bounds, otherwise
 *   "Error: U must be between [0,1]"                    for a bound's percentile as well
 *   the family's own, about its parameters
 *   "Error: Output array is not valid"                  ArrayVB: not a one-dimensional array of 8-byte elements
 *
 * PRAL_FAMILY(X, KIND, PARAMETERS, TEXT) stands for the five declarations. KIND is continuous, discrete or data;
 * TEXT tells the parameters, the support and the definition. Whoever wants the list itself (names, kinds,
 * parameters, texts, functions) includes this header once more with a PRAL_FAMILY of their own.
 */
#define PRAL_REMOVE_PARENTHESES(...) __VA_ARGS__
/* clang-format off */
#define PRAL_DECLARE_FAMILY(X, KIND, KIN, PARAMETERS, TEXT)                                                        \
    PRAL_API bool Pral##X##_Core(double* out, PRAL_REMOVE_PARENTHESES PARAMETERS, const double* U,                 \
                                 const int* boundsMode, const double* boundsMin, const double* boundsMax,          \
                                 const double* shift);                                                             \
    PRAL_API bool Pral##X##Array_Core(double* out, int count, PRAL_REMOVE_PARENTHESES PARAMETERS, const double* U, \
                                      const int* boundsMode, const double* boundsMin, const double* boundsMax,     \
                                      const double* shift);                                                        \
    PRAL_API bool Pral##X##ArrayVB_Core(SAFEARRAY** out, PRAL_REMOVE_PARENTHESES PARAMETERS, const double* U,      \
                                        const int* boundsMode, const double* boundsMin, const double* boundsMax,   \
                                        const double* shift);                                                      \
    PRAL_API bool Pral##X##Prob_Core(double* out, double* x, int count, PRAL_REMOVE_PARENTHESES PARAMETERS,        \
                                     const int* cumulative, const int* boundsMode, const double* boundsMin,        \
                                     const double* boundsMax, const double* shift);                                \
    PRAL_API bool Pral##X##Prob10_Core(double* out, double* x, int count, PRAL_REMOVE_PARENTHESES PARAMETERS,      \
                                       const int* cumulative, const int* boundsMode, const double* boundsMin,      \
                                       const double* boundsMax, const double* shift);
#define PRAL_FAMILY PRAL_DECLARE_FAMILY

/* Members of zero-inflated and zero-truncated families with a real n or s, between whose values a fit searches. All else
 * is as in the members without "_for_fit". */
#define PRAL_DECLARE_FOR_FIT(X, PARAMETERS)                                                                          \
    PRAL_API bool Pral##X##_Core_for_fit(double* out, PRAL_REMOVE_PARENTHESES PARAMETERS, const double* U,           \
                                         const int* boundsMode, const double* boundsMin, const double* boundsMax,    \
                                         const double* shift);                                                       \
    PRAL_API bool Pral##X##Prob_Core_for_fit(double* out, double* x, int count, PRAL_REMOVE_PARENTHESES PARAMETERS,  \
                                             const int* cumulative, const int* boundsMode, const double* boundsMin,  \
                                             const double* boundsMax, const double* shift);                          \
    PRAL_API bool Pral##X##Prob10_Core_for_fit(double* out, double* x, int count, PRAL_REMOVE_PARENTHESES PARAMETERS, \
                                               const int* cumulative, const int* boundsMode,                         \
                                               const double* boundsMin, const double* boundsMax,                     \
                                               const double* shift);
PRAL_DECLARE_FOR_FIT(ZIBetaBinomial, (double n, double alpha, double beta, double pi))
PRAL_DECLARE_FOR_FIT(ZTBetaBinomial, (double n, double alpha, double beta))
PRAL_DECLARE_FOR_FIT(ZIBinomial, (double n, double p, double pi))
PRAL_DECLARE_FOR_FIT(ZTBinomial, (double n, double p))
PRAL_DECLARE_FOR_FIT(ZINegBin, (double s, double p, double pi))
PRAL_DECLARE_FOR_FIT(ZTNegBin, (double s, double p))
#undef PRAL_DECLARE_FOR_FIT

/* The Prob10 members of base families, likewise. */
#define PRAL_DECLARE_LIKELIHOOD(X, PARAMETERS)                                                                       \
    PRAL_API bool Pral##X##Prob10_Core_for_fit(double* out, double* x, int count, PRAL_REMOVE_PARENTHESES PARAMETERS, \
                                               const int* cumulative, const int* boundsMode,                         \
                                               const double* boundsMin, const double* boundsMax,                     \
                                               const double* shift);
PRAL_DECLARE_LIKELIHOOD(Erlang, (double m, double beta))
PRAL_DECLARE_LIKELIHOOD(ChiSq, (double nu))
PRAL_DECLARE_LIKELIHOOD(Chi, (double nu))
PRAL_DECLARE_LIKELIHOOD(Student, (double nu))
PRAL_DECLARE_LIKELIHOOD(Student3, (double mu, double sigma, double nu))
PRAL_DECLARE_LIKELIHOOD(NCF, (double nu1, double nu2, double ncp))
PRAL_DECLARE_LIKELIHOOD(Binomial, (double n, double p))
PRAL_DECLARE_LIKELIHOOD(NegBin, (double s, double p))
PRAL_DECLARE_LIKELIHOOD(BetaBinomial, (double n, double alpha, double beta))
#undef PRAL_DECLARE_LIKELIHOOD

/* Uncertainty about a parameter after data: one value at percentile *U, or at a draw of the stream when U is null or *U
 * is -1. `processExists` not 0: the process is known to exist. Otherwise, after no event, a second draw, after
 * that of the percentile, decides with probability 1/2 whether the process exists. */

/* The success probability after 0 <= successes <= trials, trials > 0: Beta(successes + 1, trials - successes + 1); 0
 * for no process.
 * "Error: if process_exists=TRUE then Successes must be >=0", "Error: Trials must be > 0",
 * "Error: if process_exists=False then Successes must be 0", "Error: Trials must be >= successes",
 * "Error: U must be between [0,1]" */
PRAL_API bool PralBinomialP_Core(double* out, double successes, double trials, int processExists, const double* U);

/* The rate after alpha >= 0 events in a time T > 0: Gamma(alpha + 1, 1/T); 0 for no process.
 * "Error: alpha must be >= 0", "Error: if alpha > 0 then process_exists must be True", "Error: T must be > 0",
 * "Error: U must be between [0,1]" */
PRAL_API bool PralPoissonLambda_Core(double* out, double alpha, double T, int processExists, const double* U);

#endif /* PRAL_CORE_API_H */

/* The list of the families, outside the guard so that it can be read again. */
#ifdef PRAL_FAMILY

PRAL_FAMILY(Normal, continuous, normal, (double mu, double sigma),
    "mean mu; standard deviation sigma >= 0, 0 being a point mass at mu; support all reals")

PRAL_FAMILY(Uniform, continuous, bounded, (double min, double max),
    "min <= max, equal being a point mass; support [min, max]; F = (x - min)/(max - min)")

PRAL_FAMILY(Expon, continuous, extreme, (double beta),
    "mean beta >= 0, 0 being a point mass at 0; support [0, inf); F = 1 - exp(-x/beta)")

PRAL_FAMILY(Gamma, continuous, gamma, (double alpha, double beta),
    "shape alpha >= 0, scale beta >= 0, a zero being a point mass at 0; support [0, inf); F = P(alpha, x/beta)")

PRAL_FAMILY(Erlang, continuous, gamma, (double m, double beta),
    "shape m >= 0, an integer, scale beta >= 0, a zero being a point mass at 0; support [0, inf); Gamma(m, beta)")

PRAL_FAMILY(ChiSq, continuous, gamma, (double nu),
    "degrees of freedom nu >= 1, an integer; support [0, inf); Gamma(nu/2, 2)")

PRAL_FAMILY(Chi, continuous, gamma, (double nu),
    "degrees of freedom nu >= 1, an integer; support [0, inf); the square root of ChiSq(nu)")

PRAL_FAMILY(Maxwell, continuous, gamma, (double A),
    "scale A > 0; support [0, inf); A Chi(3)")

PRAL_FAMILY(Pearson5, continuous, gamma, (double alpha, double beta),
    "shape alpha > 0, scale beta > 0; support [0, inf); 1/X is Gamma(alpha, 1/beta): F = Q(alpha, beta/x)")

PRAL_FAMILY(LogGamma, continuous, gamma, (double alpha, double beta, double gamma),
    "shape alpha > 0, scale beta >= 0, 0 being a point mass at the origin gamma; support [gamma, inf); "
    "ln(X - gamma + 1) is Gamma(alpha, beta)")

PRAL_FAMILY(Beta, continuous, beta, (double alpha, double beta),
    "shapes alpha > 0, beta > 0; support [0, 1]; F = I_x(alpha, beta)")

PRAL_FAMILY(Beta4, continuous, beta, (double alpha, double beta, double min, double max),
    "shapes alpha > 0, beta > 0, min < max; support [min, max]; min + (max - min) Beta(alpha, beta)")

PRAL_FAMILY(BetaSubj, continuous, beta, (double min, double mode, double mean, double max),
    "min < mode < max, min < mean < max; support [min, max]; Beta4 with that mean and that mode: shapes a1 = "
    "2 (mean - min)(mid - mode)/((mean - mode)(max - min)) and a2 = a1 (max - mean)/(mean - min), mid = (min + max)/2; "
    "3 and 3 for mean = mode = mid; refused where they are not positive and finite")

PRAL_FAMILY(PERT, continuous, beta, (double min, double mode, double max),
    "min <= mode <= max, all equal being a point mass; support [min, max]; ModPERT with gamma = 4")

PRAL_FAMILY(ModPERT, continuous, beta, (double min, double mode, double max, double gamma),
    "min <= mode <= max, all equal being a point mass; weight gamma > 0; support [min, max]; Beta4 with shapes "
    "1 + gamma (mode - min)/(max - min) and 1 + gamma (max - mode)/(max - min)")

PRAL_FAMILY(PERTAlt, continuous, beta, (double Low, double Mode, double High, double LowP, double HighP),
    "Low < Mode < High, 0 < LowP < 0.5 < HighP < 1; the PERT with that mode whose cumulative is LowP at Low and HighP "
    "at High; support from its min to its max, which are computed")

PRAL_FAMILY(Pearson6, continuous, beta, (double alpha1, double alpha2, double beta),
    "shapes alpha1 > 0, alpha2 > 0, scale beta > 0; support [0, inf); X/(X + beta) is Beta(alpha1, alpha2)")

PRAL_FAMILY(F, continuous, beta, (double nu1, double nu2),
    "degrees of freedom nu1 > 0, nu2 > 0, any real numbers; support [0, inf); (ChiSq(nu1)/nu1)/(ChiSq(nu2)/nu2)")

PRAL_FAMILY(Student, continuous, beta, (double nu),
    "degrees of freedom nu >= 1, an integer; support all reals; Student's t")

PRAL_FAMILY(Student3, continuous, beta, (double mu, double sigma, double nu),
    "location mu, scale sigma >= 0, 0 being a point mass at mu; degrees of freedom nu >= 3, an integer; support all "
    "reals; mu + sigma Student(nu)")

PRAL_FAMILY(NCChiSq, continuous, gamma, (double nu, double pnonc),
    "degrees of freedom nu >= 1, an integer, noncentrality pnonc >= 0; support [0, inf); the sum of the squares of nu "
    "normal variables of variance 1 whose squared means have the sum pnonc")

PRAL_FAMILY(NCF, continuous, gamma, (double nu1, double nu2, double ncp),
    "degrees of freedom nu1 > 0, nu2 > 0, any real numbers, noncentrality ncp >= 0; support [0, inf); "
    "(NCChiSq(nu1, ncp)/nu1)/(ChiSq(nu2)/nu2)")

PRAL_FAMILY(Lognormal, continuous, normal, (double mu, double sigma),
    "mean mu > 0 and standard deviation sigma >= 0 of the variable itself, sigma = 0 being a point mass at mu; "
    "support [0, inf); exp(Normal)")

PRAL_FAMILY(LognormalE, continuous, normal, (double mu, double sigma),
    "mean mu and standard deviation sigma >= 0 of the logarithm, sigma = 0 being a point mass at exp(mu); "
    "support [0, inf); exp(Normal(mu, sigma))")

PRAL_FAMILY(Cauchy, continuous, symmetric, (double a, double b),
    "location a, scale b >= 0, 0 being a point mass at a; support all reals; F = 1/2 + atan((x - a)/b)/pi")

PRAL_FAMILY(NormalAlt, continuous, normal, (double Value1, double Prob1, double Value2, double Prob2),
    "two different points (value, probability) in the same order, 0 <= probability <= 1; support all reals; the Normal "
    "whose cumulative passes through both")

PRAL_FAMILY(Erf, continuous, normal, (double h),
    "precision h > 0; support all reals; Normal(0, 1/(h sqrt(2))): F = (1 + erf(h x))/2")

PRAL_FAMILY(NormalMix, continuous, normal, (double mu, double sigma, double excessKurt),
    "mean mu, standard deviation sigma >= 0, 0 being a point mass at mu, excess kurtosis 0 <= excessKurt < 3; support "
    "all reals; equal mixture of Normal(mu, sigma sqrt(1 + k)) and Normal(mu, sigma sqrt(1 - k)), "
    "k = sqrt(excessKurt/3)")

PRAL_FAMILY(SkewNormal, continuous, normal, (double mu, double sigma, double alpha),
    "location mu, scale sigma >= 0, 0 being a point mass at mu, shape -100 <= alpha <= 100; support all reals; "
    "f = (2/sigma) phi(z) Phi(alpha z), z = (x - mu)/sigma")

PRAL_FAMILY(Slash, continuous, normal, (double mu, double scale),
    "location mu, scale >= 0, 0 being a point mass at mu; support all reals; mu + scale N/V, N standard normal, "
    "V uniform: F = Phi(z) - (phi(0) - phi(z))/z, z = (x - mu)/scale")

PRAL_FAMILY(LognormalB, continuous, normal, (double mu, double sigma, double base),
    "mean mu and standard deviation sigma >= 0 of the logarithm to base > 1, sigma = 0 being a point mass at base^mu; "
    "support [0, inf); base^Normal(mu, sigma)")

PRAL_FAMILY(LognormalAlt, continuous, normal,
    (double value1, double probability1, double value2, double probability2, double minimum),
    "two different points (value, probability) in the same order, minimum < value, 0 < probability < 1; support "
    "[minimum, inf); minimum + the lognormal whose cumulative passes through both points")

PRAL_FAMILY(Logistic, continuous, symmetric, (double alpha, double beta),
    "location alpha, scale beta >= 0, 0 being a point mass at alpha; support all reals; "
    "F = 1/(1 + exp(-(x - alpha)/beta))")

PRAL_FAMILY(GLogistic, continuous, symmetric, (double alpha, double beta, double gamma),
    "location alpha, scale beta >= 0, 0 being a point mass at alpha, shape gamma > 0; support all reals; "
    "F = (1 + exp(-(x - alpha)/beta))^-gamma")

PRAL_FAMILY(LogLogistic, continuous, symmetric, (double alpha, double beta),
    "shape alpha > 0, scale beta >= 0, 0 being a point mass at 0; support [0, inf); F = 1/(1 + (x/beta)^-alpha)")

PRAL_FAMILY(LogLogisticAlt, continuous, symmetric,
    (double value1, double probability1, double value2, double probability2, double minimum),
    "two different points (value, probability) in the same order, minimum < value, 0 < probability < 1; support "
    "[minimum, inf); minimum + the log-logistic whose cumulative passes through both points")

PRAL_FAMILY(HS, continuous, symmetric, (double mu, double sigma),
    "hyperbolic secant: mean mu, standard deviation sigma >= 0, 0 being a point mass at mu; support all reals; "
    "F = (2/pi) atan(exp(pi (x - mu)/(2 sigma)))")

PRAL_FAMILY(Laplace, continuous, symmetric, (double mu, double sigma),
    "mean mu, standard deviation sigma >= 0, 0 being a point mass at mu; support all reals; "
    "f = exp(-sqrt(2) |x - mu|/sigma)/(sqrt(2) sigma)")

PRAL_FAMILY(LogLaplace, continuous, symmetric, (double alpha, double beta, double Delta),
    "tail exponents alpha > 0 above and beta > 0 below the scale Delta >= 0, 0 being a point mass at 0; support "
    "[0, inf); f = C (x/Delta)^(beta - 1) below Delta, C (Delta/x)^(alpha + 1) above, "
    "C = alpha beta/(Delta (alpha + beta))")

PRAL_FAMILY(Error, continuous, symmetric, (double mu, double sigma, double nu),
    "exponential power: mean mu, standard deviation sigma >= 0, 0 being a point mass at mu, shape nu > 0 (1 Laplace, "
    "2 Normal); support all reals; f proportional to exp(-(|x - mu|/(c sigma))^nu), "
    "c = sqrt(Gamma(1/nu)/Gamma(3/nu))")

PRAL_FAMILY(JohnsonB, continuous, normal, (double alpha1, double alpha2, double min, double max),
    "shapes alpha1 and alpha2 > 0; min < max; support [min, max]; alpha1 + alpha2 ln((x - min)/(max - x)) is standard "
    "normal")

PRAL_FAMILY(JohnsonU, continuous, normal, (double alpha1, double alpha2, double beta, double gamma),
    "shapes alpha1 and alpha2 > 0, scale beta >= 0, 0 being a point mass at gamma, location gamma; support all reals; "
    "alpha1 + alpha2 asinh((x - gamma)/beta) is standard normal")

PRAL_FAMILY(Fatigue, continuous, normal, (double alpha, double beta, double gamma),
    "location alpha, scale beta >= 0, 0 being a point mass at alpha, shape gamma > 0; support [alpha, inf); "
    "F = Phi((sqrt(z) - 1/sqrt(z))/gamma), z = (x - alpha)/beta")

PRAL_FAMILY(InvGauss, continuous, normal, (double mu, double lambda),
    "mean mu > 0, shape lambda > 0; support [0, inf); f = sqrt(lambda/(2 pi x^3)) exp(-lambda (x - mu)^2/(2 mu^2 x))")

PRAL_FAMILY(Levy, continuous, normal, (double c, double a),
    "scale c >= 0, 0 being a point mass at a, location a; support [a, inf); F = erfc(sqrt(c/(2 (x - a))))")

PRAL_FAMILY(ExtValueMax, continuous, extreme, (double a, double b),
    "location a, scale b >= 0, 0 being a point mass at a; support all reals; F = exp(-exp(-(x - a)/b))")

PRAL_FAMILY(ExtValueMin, continuous, extreme, (double a, double b),
    "location a, scale b >= 0, 0 being a point mass at a; support all reals; F = 1 - exp(-exp((x - a)/b))")

PRAL_FAMILY(GEV, continuous, extreme, (double a, double b, double c),
    "location a, scale b > 0, shape -18 <= c <= 18; support from a - b/c on for c > 0, up to a - b/c for c < 0, all reals "
    "for c = 0; F = exp(-(1 + c z)^(-1/c)), z = (x - a)/b, c = 0 being ExtValueMax")

PRAL_FAMILY(Weibull, continuous, extreme, (double alpha, double beta),
    "shape alpha > 0, scale beta >= 0, 0 being a point mass at 0; support [0, inf); F = 1 - exp(-(x/beta)^alpha)")

PRAL_FAMILY(Weibull3, continuous, extreme, (double Alpha, double Beta, double Theta),
    "Theta >= 0; Theta + Weibull(Alpha, Beta), Beta = 0 being a point mass at Theta; support [Theta, inf)")

PRAL_FAMILY(WeibullAlt, continuous, extreme,
    (double value1, double probability1, double value2, double probability2, double minimum),
    "two different points (value, probability) in the same order, minimum < value, 0 < probability < 1; support "
    "[minimum, inf); minimum + the Weibull whose cumulative passes through both points")

PRAL_FAMILY(Rayleigh, continuous, extreme, (double b),
    "scale b >= 0, 0 being a point mass at 0; support [0, inf); F = 1 - exp(-x^2/(2 b^2))")

PRAL_FAMILY(Pareto, continuous, extreme, (double theta, double a),
    "shape theta > 0, smallest value a >= 0, 0 being a point mass at 0; support [a, inf); F = 1 - (a/x)^theta")

PRAL_FAMILY(Pareto2, continuous, extreme, (double b, double q),
    "scale b >= 0, 0 being a point mass at 0, shape q > 0; support [0, inf); F = 1 - (b/(x + b))^q")

PRAL_FAMILY(Dagum, continuous, extreme, (double a, double b, double p),
    "shapes a > 0, p > 0, scale b >= 0, 0 being a point mass at 0; support [0, inf); F = (1 + (x/b)^-a)^-p")

PRAL_FAMILY(Burr, continuous, extreme, (double a, double b, double c, double d),
    "location a, scale b >= 0, 0 being a point mass at a, shapes c > 0, d > 0; support [a, inf); F = (1 + z^-c)^-d, "
    "z = (x - a)/b")

PRAL_FAMILY(Bradford, continuous, bounded, (double theta, double min, double max),
    "shape theta > 0, min < max; support [min, max]; F = ln(1 + theta y)/ln(1 + theta), y = (x - min)/(max - min)")

PRAL_FAMILY(Kumaraswamy, continuous, bounded, (double alpha, double beta),
    "shapes alpha > 0, beta > 0; support [0, 1]; F = 1 - (1 - x^alpha)^beta")

PRAL_FAMILY(Kumaraswamy4, continuous, bounded, (double alpha, double beta, double min, double max),
    "shapes alpha > 0, beta > 0, min <= max, equal being a point mass; support [min, max]; "
    "min + (max - min) Kumaraswamy(alpha, beta)")

PRAL_FAMILY(Triangle, continuous, bounded, (double min, double mode, double max),
    "min <= mode <= max, all equal being a point mass; support [min, max]; the density rises linearly to the mode and "
    "falls linearly")

PRAL_FAMILY(TriangleAlt, continuous, bounded, (double Low, double Mode, double High, double LowP, double HighP),
    "Low < Mode < High, 0 < LowP < 0.5 < HighP < 1; support [min, max]; the Triangle with that mode whose cumulative is "
    "LowP at Low and HighP at High")

PRAL_FAMILY(LogTriangle, continuous, bounded, (double Min, double Mode, double Max),
    "0 < Min <= Mode <= Max, all equal being a point mass; support [Min, Max]; exp(Triangle(ln Min, ln Mode, ln Max))")

PRAL_FAMILY(SplitTriangle, continuous, bounded,
    (double Low, double Medium, double High, double LowP, double MediumP, double HighP),
    "Low < Medium < High, 0 <= LowP < MediumP < HighP < 1; support [min, max]; two triangles that meet at Medium: F = "
    "MediumP ((x - min)/(Medium - min))^2 below, 1 - F = (1 - MediumP) ((max - x)/(max - Medium))^2 above, min and max "
    "from F(Low) = LowP and F(High) = HighP")

PRAL_FAMILY(GTU, continuous, bounded, (double min, double leftmode, double rightmode, double max, double m, double n),
    "min <= leftmode <= rightmode <= max, min = max being a point mass; powers m >= 1, n >= 1; support [min, max]; the "
    "density rises as ((x - min)/(leftmode - min))^(m - 1), is level between the modes and falls as "
    "((max - x)/(max - rightmode))^(n - 1)")

PRAL_FAMILY(LogUniform, continuous, bounded, (double Min, double Max),
    "0 < Min < Max; support [Min, Max]; F = ln(x/Min)/ln(Max/Min)")

PRAL_FAMILY(Reciprocal, continuous, bounded, (double a, double b),
    "0 < a <= b, equal being a point mass; support [a, b]; F = ln(x/a)/ln(b/a)")

PRAL_FAMILY(Lifetime2, continuous, extreme, (double A, double B),
    "A >= 0, B >= 0, not both 0; support [0, inf); hazard rate A + B t: F = 1 - exp(-(A t + B t^2/2))")

PRAL_FAMILY(Lifetime3, continuous, extreme, (double A, double B, double C),
    "A > 0, C > 0, A - B^2/(4 C) > 0; support [0, inf); hazard rate A + B t + C t^2: "
    "F = 1 - exp(-(A t + B t^2/2 + C t^3/3))")

PRAL_FAMILY(LifetimeExp, continuous, extreme, (double A, double B),
    "B > 0; support [0, inf); hazard rate exp(A + B t): F = 1 - exp(-(exp(A + B t) - exp(A))/B)")

/* Families given by tables, each a pointer and its count; "Error: <table> must not be null", "... must not be empty".
 * Tables are never changed, and need not be sorted where the order is not asked for. */

PRAL_FAMILY(Discrete, data, table, (const double* values, int n, const double* probabilities, int m),
    "values in any order with weights >= 0, not all 0, m = n; equal values add their weights; support the values, "
    "whatever their weights; quantile: the first value whose running sum of weights / sum of weights is >= U")

PRAL_FAMILY(DUniform, data, table, (const double* values, int n),
    "values in any order, all equally likely; support the values; quantile as Discrete")

PRAL_FAMILY(CumulA, data, table, (double min, double max, const double* values, int n, const double* probabilities, int m),
    "min < max; values strictly ascending within [min, max] and their cumulative probabilities strictly ascending "
    "within (0,1), m = n; support [min, max]; F is the polygon through (min, 0), the points and (max, 1); a value at "
    "min or max is a jump there")

PRAL_FAMILY(CumulD, data, table, (double min, double max, const double* values, int n, const double* probabilities, int m),
    "CumulA with the probabilities of exceeding the values, strictly descending")

PRAL_FAMILY(Histogram, data, table, (double min, double max, const double* f, int n),
    "min < max; n bars of equal width with heights proportional to f, each >= 0, not all 0; support [min, max]; the "
    "density at an edge is that of the bar above")

PRAL_FAMILY(Relative, data, table, (double min, double max, const double* values, int n, const double* weights, int m),
    "min < max; weights >= 0, not all 0, at values within [min, max] that do not descend, m = n; support [min, max]; "
    "the density is proportional to the polygon through (min, 0), the points and (max, 0)")

PRAL_FAMILY(StepUniform, data, table, (double min, double max, double step),
    "min <= max; (max - min)/step is a whole number k exactly; the points min, min + step, ..., max are equally "
    "likely; quantile: point number floor((k + 1) U); min = max is a point mass")

PRAL_FAMILY(Ogive, data, table, (double min, double max, const double* data, int n),
    "min < max; at least 2 data within [min, max], in any order; support [min, max]; F is the polygon through "
    "(min, 0), (i-th smallest, i/(n + 1)) and (max, 1)")

PRAL_FAMILY(OgiveU, data, table, (double min, double max, const double* data, int n),
    "Ogive with n sorted uniforms in place of the i/(n + 1), drawn from the stream in each call that finds the table "
    "in order, before the percentile is drawn; bounds, values and probabilities of a call share them")

PRAL_FAMILY(Poisson, discrete, poisson, (double lambda),
    "rate lambda >= 0, 0 being a point mass at 0; support 0, 1, ...; f(x) = exp(-lambda) lambda^x/x!; "
    "with lambda > 5000 samples are those of a normal square root")

PRAL_FAMILY(Binomial, discrete, binomial, (double n, double p),
    "trials n >= 0, an integer; probability p in [0,1]; support 0, ..., n; f(x) = C(n, x) p^x (1-p)^(n-x); "
    "with n p (1-p) > 100,000 samples are those of a rounded normal")

PRAL_FAMILY(Bernoulli, discrete, binomial, (double p),
    "probability p of 1, in [0,1], 0 and 1 being point masses; support 0, 1")

PRAL_FAMILY(NegBin, discrete, binomial, (double s, double p),
    "failures before success number s >= 0, an integer, each trial succeeding with probability p in (0,1]; s = 0 and p = 1 "
    "are point masses at 0; support 0, 1, ...; f(x) = C(x + s - 1, x) p^s (1-p)^x; percentiles above 0.9999999 give "
    "infinity; with p < 0.01 samples are those of a rounded gamma, with s (1-p)/p^2 > 100,000 of a rounded normal of the "
    "same mean and variance")

PRAL_FAMILY(Geometric, discrete, binomial, (double p),
    "failures before the first success, p in (0,1]: NegBin(1, p), its percentiles included; f(x) = p (1-p)^x")

PRAL_FAMILY(Polya, discrete, binomial, (double alpha, double beta),
    "alpha > 0, beta > 0; Poisson with a Gamma(alpha, beta) rate; support 0, 1, ...; "
    "f(x) = Gamma(x + alpha)/(Gamma(alpha) x!) p^alpha (1-p)^x, p = 1/(1 + beta)")

PRAL_FAMILY(BetaBinomial, discrete, binomial, (double n, double alpha, double beta),
    "trials n >= 0, an integer, 0 being a point mass at 0; alpha > 0, beta > 0; Binomial(n, p) with p from "
    "Beta(alpha, beta); support 0, ..., n; f(x) = C(n, x) B(x + alpha, n - x + beta)/B(alpha, beta)")

PRAL_FAMILY(BetaGeometric, discrete, binomial, (double alpha, double beta),
    "alpha > 0, beta > 0; Geometric(p) with p from Beta(alpha, beta); support 0, 1, ...; "
    "f(x) = B(alpha + 1, beta + x)/B(alpha, beta)")

PRAL_FAMILY(BetaNegBin, discrete, binomial, (double s, double a, double b),
    "s > 0, an integer; a > 0, b > 0; NegBin(s, p) with p from Beta(a, b); support 0, 1, ...; "
    "f(x) = Gamma(s + x)/(Gamma(s) x!) B(a + s, b + x)/B(a, b)")

PRAL_FAMILY(Logarithmic, discrete, binomial, (double theta),
    "theta in (0,1); support 1, 2, ...; f(x) = -theta^x/(x ln(1 - theta))")

PRAL_FAMILY(Hypergeo, discrete, urn, (double n, double D, double M),
    "marked items among n drawn without replacement from M of which D are marked; integers 0 <= n, D <= M; support "
    "max(0, n + D - M), ..., min(n, D); f(x) = C(D, x) C(M-D, n-x)/C(M, n)")

PRAL_FAMILY(InvHypergeo, discrete, urn, (double s, double D, double M),
    "unmarked items drawn before the s-th marked one, without replacement from M of which D are marked; integers "
    "0 <= s <= D <= M; support 0, ..., M-D; f(x) = C(s+x-1, x) C(M-s-x, D-s)/C(M, D); s = 0 is a point mass at 0")

PRAL_FAMILY(HypergeoD, discrete, urn, (double s, double n, double M),
    "marked items among M of which a sample of n held s marked ones, all numbers of them equally likely before; integers "
    "0 <= s <= n <= M; support s, ..., M-n+s; f(x) = C(x, s) C(M-x, n-s)/C(M+1, n+1)")

PRAL_FAMILY(HypergeoM, discrete, urn, (double s, double n, double D, double Max),
    "size of a population with D marked items of which a sample of n held s marked ones, all sizes up to Max equally "
    "likely before; integers 1 <= s <= n, D; Max >= D+n-s; support D+n-s, ..., Max; f(x) ~ C(x-D, n-s)/C(x, n)")

PRAL_FAMILY(Skellam, discrete, poisson, (double Lambda1, double Lambda2),
    "difference of two Poisson counts with rates Lambda1, Lambda2 > 0; support all integers; f(x) = exp(-Lambda1-Lambda2) "
    "(Lambda1/Lambda2)^(x/2) I_|x|(2 sqrt(Lambda1 Lambda2)); a bare call takes one unused draw and two Poisson samples, "
    "each of a draw of its own")

PRAL_FAMILY(BurntFingerPoisson, discrete, poisson, (double Lambda1, double Lambda2),
    "events within unit time, at rate Lambda1 until the first and Lambda2 afterwards; Lambda1 >= Lambda2 > 0, equal ones "
    "being Poisson; support 0, 1, ...; percentiles from 0.99999999999999 on give DBL_MAX; a bare call takes one unused "
    "draw, one for the time of the first event, and another for the later events if it is below 1")

PRAL_FAMILY(PoissonUniform, discrete, poisson, (double Min, double Max),
    "Poisson with a rate uniform on [Min, Max], 0 <= Min < Max; support 0, 1, ...; f(x) = (P(x+1, Max) - P(x+1, Min))/"
    "(Max - Min), P the incomplete gamma ratio; a bare call takes one unused draw, one for the rate and one for the value")

PRAL_FAMILY(Delaporte, discrete, poisson, (double alpha, double beta, double lambda),
    "Polya(alpha, beta) + Poisson(lambda), all >= 0: a Poisson rate with a gamma part and a constant one; support 0, 1, ...; "
    "alpha or beta 0 leaves the Poisson, lambda 0 the Polya, both a point mass at 0")

/* Variants of the counts. ZI: with probability pi a value of the family, else 0; pi in (0,1), "Error: pi should be on
 * (0,1)". A bare call draws whether, then a value. A percentile up to 1 - pi is 0; bounds rescale only those above, so
 * that the extra zeros keep their weight. ZT: the family given a value of 1 or more. Where a variant's checks let pass
 * what the family refuses (theta = 1, p = 0), the family's message follows. */

PRAL_FAMILY(ZIBetaBinomial, discrete, inflated, (double n, double alpha, double beta, double pi),
    "zero-inflated BetaBinomial")

PRAL_FAMILY(ZIBetaGeometric, discrete, inflated, (double alpha, double beta, double pi),
    "zero-inflated BetaGeometric; beta > 2")

PRAL_FAMILY(ZIBetaNegBin, discrete, inflated, (double s, double alpha, double beta, double pi),
    "zero-inflated BetaNegBin of (s, alpha, beta)")

PRAL_FAMILY(ZIBinomial, discrete, inflated, (double n, double p, double pi),
    "zero-inflated Binomial")

PRAL_FAMILY(ZIDelaporte, discrete, inflated, (double alpha, double beta, double lambda, double pi),
    "zero-inflated Delaporte")

PRAL_FAMILY(ZIGeometric, discrete, inflated, (double p, double pi),
    "zero-inflated Geometric")

PRAL_FAMILY(ZIHypergeo, discrete, inflated, (double n, double D, double M, double pi),
    "zero-inflated Hypergeo; n >= 0, D > 0, M > 0")

PRAL_FAMILY(ZIInvHypergeo, discrete, inflated, (double s, double D, double M, double pi),
    "zero-inflated InvHypergeo; D > 0, M > 0")

PRAL_FAMILY(ZILogarithmic, discrete, inflated, (double theta, double pi),
    "zero-inflated Logarithmic; 0 is added to the support")

PRAL_FAMILY(ZINegBin, discrete, inflated, (double s, double p, double pi),
    "zero-inflated NegBin")

PRAL_FAMILY(ZIPoisson, discrete, inflated, (double lambda, double pi),
    "zero-inflated Poisson")

PRAL_FAMILY(ZIPolya, discrete, inflated, (double alpha, double beta, double pi),
    "zero-inflated Polya")

PRAL_FAMILY(ZISkellam, discrete, inflated, (double Lambda1, double Lambda2, double P),
    "zero-inflated Skellam with weight P in [0,1]; percentiles up to 1 - P are 0, those above the Skellam's from its lowest")

PRAL_FAMILY(ZTBetaBinomial, discrete, truncated, (double n, double alpha, double beta),
    "zero-truncated BetaBinomial")

PRAL_FAMILY(ZTBetaGeometric, discrete, truncated, (double alpha, double beta),
    "zero-truncated BetaGeometric; beta > 2")

PRAL_FAMILY(ZTBetaNegBin, discrete, truncated, (double s, double alpha, double beta),
    "zero-truncated BetaNegBin of (s, alpha, beta)")

PRAL_FAMILY(ZTBinomial, discrete, truncated, (double n, double p),
    "zero-truncated Binomial")

PRAL_FAMILY(ZTDelaporte, discrete, truncated, (double alpha, double beta, double lambda),
    "zero-truncated Delaporte")

PRAL_FAMILY(ZTGeometric, discrete, truncated, (double p),
    "zero-truncated Geometric")

PRAL_FAMILY(ZTHypergeo, discrete, truncated, (double n, double D, double M),
    "zero-truncated Hypergeo; n >= 0, D > 0, M > 0")

PRAL_FAMILY(ZTInvHypergeo, discrete, truncated, (double s, double D, double M),
    "zero-truncated InvHypergeo; D > 0, M > 0")

PRAL_FAMILY(ZTNegBin, discrete, truncated, (double s, double p),
    "zero-truncated NegBin")

PRAL_FAMILY(ZTPoisson, discrete, truncated, (double lambda),
    "zero-truncated Poisson")

PRAL_FAMILY(ZTPolya, discrete, truncated, (double alpha, double beta),
    "zero-truncated Polya")

/* clang-format on */

#undef PRAL_FAMILY
#endif
