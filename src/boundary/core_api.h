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
 *   const int* boundsMode   truncation, when given and >= 0. Bit value 2 set: *boundsMin is a percentile; clear: a
 *                           value. Bit value 1: likewise *boundsMax. A value of -DBL_MAX (boundsMin) or DBL_MAX
 *                           (boundsMax) leaves that side open; a null pointer reads as 0.
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
#define PRAL_DECLARE_FAMILY(X, KIND, PARAMETERS, TEXT)                                                             \
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

#endif /* PRAL_CORE_API_H */

/* The list of the families, outside the guard so that it can be read again. */
#ifdef PRAL_FAMILY

PRAL_FAMILY(Normal, continuous, (double mu, double sigma),
    "mean mu; standard deviation sigma >= 0, 0 being a point mass at mu; support all reals")

PRAL_FAMILY(Uniform, continuous, (double min, double max),
    "min <= max, equal being a point mass; support [min, max]; F = (x - min)/(max - min)")

PRAL_FAMILY(Expon, continuous, (double beta),
    "mean beta >= 0, 0 being a point mass at 0; support [0, inf); F = 1 - exp(-x/beta)")

PRAL_FAMILY(Gamma, continuous, (double alpha, double beta),
    "shape alpha >= 0, scale beta >= 0, a zero being a point mass at 0; support [0, inf); F = P(alpha, x/beta)")

PRAL_FAMILY(Erlang, continuous, (double m, double beta),
    "shape m >= 0, an integer, scale beta >= 0, a zero being a point mass at 0; support [0, inf); Gamma(m, beta)")

PRAL_FAMILY(Lognormal, continuous, (double mu, double sigma),
    "mean mu > 0 and standard deviation sigma >= 0 of the variable itself, sigma = 0 being a point mass at mu; "
    "support [0, inf); exp(Normal)")

PRAL_FAMILY(LognormalE, continuous, (double mu, double sigma),
    "mean mu and standard deviation sigma >= 0 of the logarithm, sigma = 0 being a point mass at exp(mu); "
    "support [0, inf); exp(Normal(mu, sigma))")

PRAL_FAMILY(Cauchy, continuous, (double a, double b),
    "location a, scale b >= 0, 0 being a point mass at a; support all reals; F = 1/2 + atan((x - a)/b)/pi")

/* clang-format on */

#undef PRAL_FAMILY
#endif
