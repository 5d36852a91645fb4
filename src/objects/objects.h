/* pral_core for programs: distributions, streams of random numbers and samples as objects.
 *
 * This header is the manual of the second door. It reads as C99 and as C++; objects.hpp has the same for C++ with owners,
 * spans and exceptions. The first door, core_api.h, is for spreadsheets; the two share all mathematics and no state.
 *
 * Objects
 *   A distribution never changes once it is made: any number of threads may use one at the same time. A stream belongs
 *   to one thread at a time. Nothing here has process-wide state, takes locks or prints. Free what you have made.
 *
 * Failure
 *   Functions return a pral_status. A caller that passes a pral_error, with its `size` set, gets a text as well; null is
 *   fine. After a failure outputs are untouched, and an object is null.
 *
 * Numbers
 *   NaN in gives NaN out, element by element, and is no error; one such element does not stop an array. Infinities are
 *   infinities. An output array may be the input array. F(x) is P(X <= x) for every x. A moment that does not exist is
 *   NaN, one that diverges infinite.
 */
#ifndef PRAL_OBJECTS_H
#define PRAL_OBJECTS_H

#include <stddef.h>
#include <stdint.h>

#ifndef PRAL_API
#ifdef __cplusplus
#define PRAL_OBJECTS_EXTERN extern "C"
#else
#define PRAL_OBJECTS_EXTERN extern
#endif
#if defined(_WIN32) && defined(PRAL_CORE_BUILD)
#define PRAL_OBJECTS_API PRAL_OBJECTS_EXTERN __declspec(dllexport)
#elif defined(_WIN32)
#define PRAL_OBJECTS_API PRAL_OBJECTS_EXTERN __declspec(dllimport)
#elif defined(PRAL_CORE_BUILD)
#define PRAL_OBJECTS_API PRAL_OBJECTS_EXTERN __attribute__((visibility("default")))
#else
#define PRAL_OBJECTS_API PRAL_OBJECTS_EXTERN
#endif
#else
#define PRAL_OBJECTS_API PRAL_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---------------------------------------------------------------------------------------------------- Failure */

typedef int32_t pral_status;
enum {
    PRAL_OK = 0,
    PRAL_ERROR_ARGUMENT = 1,       /* a null pointer, an unknown option, a size that cannot be */
    PRAL_ERROR_FAMILY = 2,         /* there is no family of that name */
    PRAL_ERROR_PARAMETER = 3,      /* a parameter is out of its range */
    PRAL_ERROR_DATA = 4,           /* data that cannot be used */
    PRAL_ERROR_UNBOUNDED = 5,      /* a likelihood without a maximum */
    PRAL_ERROR_NO_CONVERGENCE = 6, /* a search that has not ended */
    PRAL_ERROR_TIMEOUT = 7,
    PRAL_ERROR_MEMORY = 8,
    PRAL_ERROR_INTERNAL = 9,
    PRAL_ERROR_STOPPED = 10 /* by the caller's progress function */
};

/* The caller's own. Set `size` to sizeof(pral_error): a struct of another size is left alone. */
typedef struct pral_error {
    size_t size;
    pral_status code;
    int64_t index;  /* of the offending element, parameter or character; -1 where there is none */
    char text[256]; /* one sentence, UTF-8, ends with 0 */
} pral_error;

/* --------------------------------------------------------------------------------------------------- Families */

enum { PRAL_CONTINUOUS = 0, PRAL_DISCRETE = 1, PRAL_TABLE = 2 };

typedef struct pral_family {
    size_t size; /* sizeof(pral_family), set by the caller */
    const char* name;
    int32_t kind;           /* PRAL_CONTINUOUS, PRAL_DISCRETE, or PRAL_TABLE: defined by tables of data */
    int32_t fittable;       /* 1: has a fit */
    size_t parameter_count; /* a table counts as one */
    const char* text;       /* parameters, support and definition */
} pral_family;

typedef struct pral_parameter {
    size_t size; /* sizeof(pral_parameter), set by the caller */
    const char* name;
    int32_t is_table; /* 1: an array of numbers */
    const char* text; /* what it is and, after the last comma, its range: "standard deviation, >= 0" */
} pral_parameter;

/* How many families there are, and their names; null beyond the last. */
PRAL_OBJECTS_API size_t pral_family_count(void);
PRAL_OBJECTS_API const char* pral_family_name(size_t index);

/* A family by its name, in any case of letters. The texts belong to the library and stay. */
PRAL_OBJECTS_API pral_status pral_family_info(const char* family, pral_family* out, pral_error* error);

/* Parameter number `index`, counted from 0. */
PRAL_OBJECTS_API pral_status pral_family_parameter(const char* family, size_t index, pral_parameter* out,
                                                   pral_error* error);

/* ------------------------------------------------------------------------------------------------------- Make */

typedef struct pral_distribution pral_distribution;

/* A distribution of that family with `count` parameters in their order. Parameter i has lengths[i] of the numbers in
 * `parameters`, one after another; without lengths each is one number. Integer parameters may be real where the
 * mathematics lets them (degrees of freedom, numbers of successes). */
PRAL_OBJECTS_API pral_status pral_distribution_make(const char* family, const double* parameters,
                                                    const size_t* lengths, size_t count,
                                                    pral_distribution** out, pral_error* error);

/* From text. In order of strength:
 *   Gamma(2, 3)   Gamma(alpha = 2, beta = 3)   Discrete({1, 2, 3}, {0.2, 0.5, 0.3})   Mixture(0.3: Normal(0, 1), 0.7: Expon(2))
 *   ... within [1, 9]   ... within percentiles [0.01, 0.99]      -inf and inf leave a side open
 *   2 * ...   -1 * ...
 *   ... + 10   ... - 10
 * and round brackets. Decimal points, whatever the locale. error->index is the place of what cannot be read. */
PRAL_OBJECTS_API pral_status pral_distribution_parse(const char* text, pral_distribution** out,
                                                     pral_error* error);

/* The text that pral_distribution_parse reads back, all digits included. Writes at most `capacity` bytes with the final 0;
 * *needed, unless null, receives how many bytes the whole takes. A buffer that is too small is an error; a null one with
 * capacity 0 only asks. */
PRAL_OBJECTS_API pral_status pral_distribution_describe(const pral_distribution* distribution, char* buffer,
                                                        size_t capacity, size_t* needed, pral_error* error);

/* Another handle of the same distribution, to be freed by itself. */
PRAL_OBJECTS_API pral_status pral_distribution_copy(const pral_distribution* distribution,
                                                    pral_distribution** out, pral_error* error);
/* Null is fine. */
PRAL_OBJECTS_API void pral_distribution_free(pral_distribution* distribution);

enum { PRAL_LOWER_IS_PERCENTILE = 1, PRAL_UPPER_IS_PERCENTILE = 2 };

/* Given that it lies within [lower, upper], ends included, also for counts. -INFINITY and INFINITY leave a side open.
 * `flags`: which of the ends are percentiles; where a value has a probability of its own, the whole of it is kept.
 * Refused where no probability lies between the ends; one below the range of doubles counts by its logarithm. */
PRAL_OBJECTS_API pral_status pral_truncated(const pral_distribution* distribution, double lower, double upper,
                                            int32_t flags, pral_distribution** out, pral_error* error);
/* X + shift. */
PRAL_OBJECTS_API pral_status pral_shifted(const pral_distribution* distribution, double shift,
                                          pral_distribution** out, pral_error* error);
/* factor X, the factor not 0. */
PRAL_OBJECTS_API pral_status pral_scaled(const pral_distribution* distribution, double factor,
                                         pral_distribution** out, pral_error* error);
/* With probability weights[i] (divided by their sum) a value of components[i]. */
PRAL_OBJECTS_API pral_status pral_mixture(const pral_distribution* const* components, const double* weights,
                                          size_t count, pral_distribution** out, pral_error* error);

/* --------------------------------------------------------------------------------------------------- Evaluate
 *
 * out[i] of in[i], i < n. pdf: density, or probability where a value has one. cdf: P(X <= x). sf: P(X > x), with its own
 * digits. quantile: the least x with P(X <= x) >= p; upper_quantile: the least x with P(X > x) <= q, for q far below
 * 1e-16 as well; NaN for a percentile outside of [0,1]. log_quantile and log_upper_quantile take ln p and ln q. */
PRAL_OBJECTS_API pral_status pral_pdf(const pral_distribution* distribution, const double* in, double* out,
                                      size_t n, pral_error* error);
PRAL_OBJECTS_API pral_status pral_logpdf(const pral_distribution* distribution, const double* in, double* out,
                                         size_t n, pral_error* error);
PRAL_OBJECTS_API pral_status pral_cdf(const pral_distribution* distribution, const double* in, double* out,
                                      size_t n, pral_error* error);
PRAL_OBJECTS_API pral_status pral_logcdf(const pral_distribution* distribution, const double* in, double* out,
                                         size_t n, pral_error* error);
PRAL_OBJECTS_API pral_status pral_sf(const pral_distribution* distribution, const double* in, double* out,
                                     size_t n, pral_error* error);
PRAL_OBJECTS_API pral_status pral_logsf(const pral_distribution* distribution, const double* in, double* out,
                                        size_t n, pral_error* error);
PRAL_OBJECTS_API pral_status pral_quantile(const pral_distribution* distribution, const double* in,
                                           double* out, size_t n, pral_error* error);
PRAL_OBJECTS_API pral_status pral_upper_quantile(const pral_distribution* distribution, const double* in,
                                                 double* out, size_t n, pral_error* error);
PRAL_OBJECTS_API pral_status pral_log_quantile(const pral_distribution* distribution, const double* in,
                                               double* out, size_t n, pral_error* error);
PRAL_OBJECTS_API pral_status pral_log_upper_quantile(const pral_distribution* distribution, const double* in,
                                                     double* out, size_t n, pral_error* error);

/* -------------------------------------------------------------------------------------------------- Summarise */

typedef struct pral_moment_values {
    size_t size; /* sizeof(pral_moment_values), set by the caller */
    double mean, variance, skewness, excess_kurtosis;
} pral_moment_values;

PRAL_OBJECTS_API pral_status pral_moments(const pral_distribution* distribution, pral_moment_values* out,
                                          pral_error* error);
/* A value of the highest density or probability, the least of several. */
PRAL_OBJECTS_API pral_status pral_mode(const pral_distribution* distribution, double* out, pral_error* error);
/* The ends of the support, infinite where it has none. */
PRAL_OBJECTS_API pral_status pral_support(const pral_distribution* distribution, double* lower, double* upper,
                                          pral_error* error);
/* Expected shortfall: the mean of the values above percentile in[i], or below it; an atom there counts in part. NaN for a
 * percentile outside of [0,1]. */
PRAL_OBJECTS_API pral_status pral_upper_tail_mean(const pral_distribution* distribution, const double* in,
                                                  double* out, size_t n, pral_error* error);
PRAL_OBJECTS_API pral_status pral_lower_tail_mean(const pral_distribution* distribution, const double* in,
                                                  double* out, size_t n, pral_error* error);
/* E min(X, in[i]); a layer from a to b costs the difference of two. */
PRAL_OBJECTS_API pral_status pral_limited_mean(const pral_distribution* distribution, const double* in,
                                               double* out, size_t n, pral_error* error);

/* ----------------------------------------------------------------------------------------------------- Streams
 *
 * Philox 4x64-10, a generator whose numbers are a function of a key and a counter. The key comes from the words that name
 * the stream, by the scheme of NumPy's SeedSequence: numpy.random.Philox(SeedSequence(words, spawn_key=children)) gives
 * the same words. A child depends on its name alone, never on what has been drawn: workers need no coordinator. Derive
 * children from one stream; never add a worker's number to a seed. */

typedef struct pral_stream pral_stream;

/* The stream of these words, most often one: a seed. */
PRAL_OBJECTS_API pral_status pral_stream_make(const uint64_t* words, size_t count, pral_stream** out,
                                              pral_error* error);
/* The child of that number, below 4294967295, or of that name. */
PRAL_OBJECTS_API pral_status pral_stream_child(const pral_stream* parent, uint64_t id, pral_stream** out,
                                               pral_error* error);
PRAL_OBJECTS_API pral_status pral_stream_child_named(const pral_stream* parent, const char* name,
                                                     pral_stream** out, pral_error* error);
/* A stream of the same name that stands at the same place. */
PRAL_OBJECTS_API pral_status pral_stream_copy(const pral_stream* stream, pral_stream** out,
                                              pral_error* error);
PRAL_OBJECTS_API void pral_stream_free(pral_stream* stream);
/* Name and place as words, for a file: writes at most `capacity` of them; *needed, unless null, receives their number. */
PRAL_OBJECTS_API pral_status pral_stream_state(const pral_stream* stream, uint64_t* words, size_t capacity,
                                               size_t* needed, pral_error* error);
/* The stream of such words. */
PRAL_OBJECTS_API pral_status pral_stream_restore(const uint64_t* words, size_t count, pral_stream** out,
                                                 pral_error* error);
/* Numbers ((r >> 12) + 0.5) 2^-52 of words r: uniform, never 0, never 1. */
PRAL_OBJECTS_API pral_status pral_uniforms(pral_stream* stream, double* out, size_t n, pral_error* error);
/* Values of the distribution, one uniform each, by inversion. */
PRAL_OBJECTS_API pral_status pral_sample(const pral_distribution* distribution, pral_stream* stream,
                                         double* out, size_t n, pral_error* error);

enum { PRAL_LATIN_HYPERCUBE = 0, PRAL_SOBOL = 1, PRAL_HALTON = 2, PRAL_STRATIFIED = 3 };

/* `count` points of the unit cube, out[i dimensions + j], inside (0,1): percentiles that fill it more evenly than random
 * ones.
 *   PRAL_LATIN_HYPERCUBE   each of `count` equal slices of each axis holds one point, anywhere in it
 *   PRAL_STRATIFIED        each of `count` = k^dimensions equal cells holds one
 *   PRAL_SOBOL             at most 40 dimensions; 2^m points, the first among them, fill the cube best
 *   PRAL_HALTON            at most 1229 dimensions
 * With a stream the last two are moved by random digits (Sobol) or a random shift (Halton), so that every point is uniform
 * and replicates tell the error; without one they stand where they are, half a slice inside. */
PRAL_OBJECTS_API pral_status pral_points(int32_t design, pral_stream* stream, double* out, size_t count,
                                         size_t dimensions, pral_error* error);

/* ---------------------------------------------------------------------------------------------------------- Fits
 *
 * A fit never changes once it is made, like a distribution. Families that pral_family_info calls fittable can be fitted.
 *
 * A likelihood may have no maximum: it grows for ever where an end of the support moves onto a datum and the density is
 * infinite there, or where a scale shrinks about values that tie. A fit is then the highest local maximum inside; where there
 * is none, values count by the probability of the cells x +- h/2 in which they have been recorded, and the fit says so. */

typedef struct pral_fit pral_fit;

/* Set `size`, `n` and `left`; what else is null has its usual meaning. Observation i lies between left[i] and right[i], both
 * included: equal ends are an exact value, an infinite end is none. It counts weights[i] times, and could have been seen only
 * between lower[i] and upper[i], both included. Nothing of it is needed after the call. */
typedef struct pral_observations {
    size_t size; /* sizeof(pral_observations) */
    size_t n;
    const double* left;
    const double* right;   /* null: all are exact */
    const double* weights; /* null: 1 each */
    const double* lower;   /* null: the bounds of the options hold for all */
    const double* upper;
} pral_observations;

enum { PRAL_MAXIMUM_LIKELIHOOD = 0, PRAL_MAXIMUM_SPACINGS = 1 };

/* Fill it by pral_fit_defaults and change what you like. */
typedef struct pral_fit_options {
    size_t size;
    double lower, upper; /* the data are a sample of what lies between; infinite: not truncated */
    const double* held;  /* a value for each parameter, NaN where it is to be fitted; null: all are */
    size_t held_count;
    int32_t shift;   /* 1: fit a shift as well, which becomes the last parameter */
    int32_t method;  /* by maximum likelihood, or by the maximum product of spacings */
    double cell;     /* h, the unit in which values have been recorded; 0: as the data show it */
    double seconds;  /* of processor time a fit may take */
    int32_t threads; /* of pral_rank; 0: as many as there are processors */
} pral_fit_options;

PRAL_OBJECTS_API pral_status pral_fit_defaults(pral_fit_options* options, pral_error* error);

/* Null options are the defaults. */
PRAL_OBJECTS_API pral_status pral_fit_make(const char* family, const pral_observations* observations,
                                           const pral_fit_options* options, pral_fit** out,
                                           pral_error* error);
PRAL_OBJECTS_API void pral_fit_free(pral_fit* fit);

enum {
    PRAL_FIT_REGULAR =
        0, /* the gradient vanishes and the Hessian is negative definite; or the data determine all */
    PRAL_FIT_EDGE = 1, /* the likelihood levels off towards an edge of the parameters: see `limit` */
    PRAL_FIT_CELLS = 2 /* the likelihood grows without bound: values count by their cells */
};

typedef struct pral_fit_values {
    size_t size; /* sizeof(pral_fit_values), set by the caller */
    const char* family;
    int32_t kind;
    int32_t free; /* how many parameters were fitted; an end of the support that is a datum counts as two */
    size_t parameter_count; /* a fitted shift is the last */
    double n;               /* the sum of the weights */
    double
        log_likelihood; /* natural; of densities, or of probabilities divided by `cell` where values count by cells */
    double aic, aicc, bic;
    double cell;       /* h where values count by cells, otherwise 0 */
    const char* limit; /* at an edge: the family that it has become, or "" */
} pral_fit_values;

PRAL_OBJECTS_API pral_status pral_fit_get(const pral_fit* fit, pral_fit_values* out, pral_error* error);

/* The parameters; their standard errors and covariance (count x count) from the observed information. Null arrays are left
 * out. `count` must be parameter_count. Held parameters have an error of 0; those that are whole numbers, or ends of the
 * support at a datum, and those of a likelihood that is level have NaN. */
PRAL_OBJECTS_API pral_status pral_fit_parameters(const pral_fit* fit, double* parameters,
                                                 double* standard_errors, double* covariance, size_t count,
                                                 pral_error* error);

/* With the shift, not truncated as the data were. */
PRAL_OBJECTS_API pral_status pral_fit_distribution(const pral_fit* fit, pral_distribution** out,
                                                   pral_error* error);

enum { PRAL_REPLICATE_FIT = 0, PRAL_REPLICATE_DATA = 1 };

/* Samples like that of the fit, each fitted again: drawn from the fitted distribution, or from the data with replacement.
 * Replicate i uses child i of the stream, which itself does not move: the same numbers whatever the number of threads.
 * `progress`, unless null, is called after each with how many are done, by one thread at a time; 0 ends the work. */
typedef struct pral_replication {
    size_t size; /* sizeof(pral_replication) */
    const pral_stream* stream;
    size_t count;    /* 999 are enough for most purposes */
    int32_t source;  /* tests draw from the fit */
    int32_t threads; /* 0: as many as there are processors */
    int32_t (*progress)(size_t done, void* context);
    void* context;
} pral_replication;

/* The parameters of the replicates, a row each, NaN where a refit has failed; *failed, unless null, receives how many. */
PRAL_OBJECTS_API pral_status pral_fit_bootstrap(const pral_fit* fit, const pral_replication* how, double* out,
                                                size_t* failed, pral_error* error);

enum { PRAL_OF_PARAMETER = 0, PRAL_OF_QUANTILE = 1 };
enum { PRAL_WALD = 0, PRAL_PROFILE = 1, PRAL_BOOTSTRAP = 2 };

/* An interval that holds the parameter of that index, or the quantile at percentile `which`, with probability `level`.
 *   PRAL_WALD       the estimate -+ a multiple of its standard error; NaN of a quantile of counts, which has none
 *   PRAL_PROFILE    what a likelihood ratio does not object to; NaN at an end that the likelihood does not tell
 *   PRAL_BOOTSTRAP  quantiles of replicates; `how` is needed by this method only */
PRAL_OBJECTS_API pral_status pral_fit_interval(const pral_fit* fit, int32_t target, double which,
                                               int32_t method, double level, const pral_replication* how,
                                               double* lower, double* upper, pral_error* error);

enum {
    PRAL_KOLMOGOROV_SMIRNOV = 0,
    PRAL_CRAMER_VON_MISES = 1,
    PRAL_ANDERSON_DARLING = 2,
    PRAL_CHI_SQUARE = 3
};

typedef struct pral_test_values {
    size_t size; /* sizeof(pral_test_values), set by the caller */
    double statistic;
    double p,
        p_error; /* (1 + replicates at least as far away)/(1 + replicates), and its standard error by simulation */
    size_t replicates, failed;
} pral_test_values;

/* Whether the data look like draws from the fit. p is right although the parameters come from the same data, because those
 * of each replicate come from its own. Of counts the distances are between step functions. */
PRAL_OBJECTS_API pral_status pral_fit_test(const pral_fit* fit, int32_t statistic,
                                           const pral_replication* how, pral_test_values* out,
                                           pral_error* error);

typedef struct pral_ranking pral_ranking;

/* Fits of several families, the best first: regular maxima before edges, those before cells; within these by AICc, to which
 * families other than Normal, Lognormal, LognormalE, Expon, Gamma, Weibull, Uniform, Poisson, Binomial, NegBin and Geometric
 * have 4 added: of so many families one always fits a little better by chance. Without names all that suit the data. Of
 * families whose fits are the same distribution the one with the fewest parameters stays. */
PRAL_OBJECTS_API pral_status pral_rank(const char* const* families, size_t count,
                                       const pral_observations* observations, const pral_fit_options* options,
                                       int32_t (*progress)(size_t done, size_t of, void* context),
                                       void* context, pral_ranking** out, pral_error* error);
PRAL_OBJECTS_API void pral_ranking_free(pral_ranking* ranking);

typedef struct pral_ranked {
    size_t size;          /* sizeof(pral_ranked), set by the caller */
    double difference;    /* AICc less the least */
    double weight;        /* Akaike's, among regular fits and edges; 0 for others */
    const char* equal_to; /* families whose fits are this distribution: "LognormalE, ..." */
} pral_ranked;

/* How many fits there are, and fit number `index`: a handle of its own, to be freed, unless `fit` is null. Texts stay as long as
 * the ranking. */
PRAL_OBJECTS_API size_t pral_ranking_count(const pral_ranking* ranking);
PRAL_OBJECTS_API pral_status pral_ranking_row(const pral_ranking* ranking, size_t index, pral_ranked* out,
                                              pral_fit** fit, pral_error* error);
/* What was left out, and why; null beyond the last. */
PRAL_OBJECTS_API const char* pral_ranking_left_out(const pral_ranking* ranking, size_t index,
                                                   const char** why);

#ifdef __cplusplus
}
#endif

#endif /* PRAL_OBJECTS_H */
