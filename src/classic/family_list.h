// Defines the exports of the families of one kin: see family_exports.h.
#include "classic/family_exports.h"

// "(double alpha, double beta)" -> (alpha, beta): the type, a single word, is pasted to the name of an empty macro.
#define PRAL_NAME_double
#define PRAL_NAMES_1(P) PRAL_NAME_##P
#define PRAL_NAMES_2(P, ...) PRAL_NAME_##P, PRAL_NAMES_1(__VA_ARGS__)
#define PRAL_NAMES_3(P, ...) PRAL_NAME_##P, PRAL_NAMES_2(__VA_ARGS__)
#define PRAL_NAMES_4(P, ...) PRAL_NAME_##P, PRAL_NAMES_3(__VA_ARGS__)
#define PRAL_NAMES_5(P, ...) PRAL_NAME_##P, PRAL_NAMES_4(__VA_ARGS__)
#define PRAL_NAMES_6(P, ...) PRAL_NAME_##P, PRAL_NAMES_5(__VA_ARGS__)
#define PRAL_SEVENTH(A, B, C, D, E, F, NAME, ...) NAME
#define PRAL_NAMES(...)                                                                              \
    (PRAL_SEVENTH(__VA_ARGS__, PRAL_NAMES_6, PRAL_NAMES_5, PRAL_NAMES_4, PRAL_NAMES_3, PRAL_NAMES_2, \
                  PRAL_NAMES_1, )(__VA_ARGS__))

#define PRAL_THIS_KIN ~,
#define PRAL_SECOND(FIRST, SECOND, ...) SECOND
#define PRAL_CHOICE(KIN, CHOSEN, OTHERWISE) PRAL_SECOND(KIN CHOSEN, OTHERWISE, )
#define PRAL_EXPORT_LISTED(X, PARAMETERS) PRAL_EXPORT_FAMILY(X, PARAMETERS, PRAL_NAMES PARAMETERS);
#define PRAL_NOT_LISTED(X, PARAMETERS)

#define PRAL_FAMILY(X, KIND, KIN, PARAMETERS, TEXT) \
    PRAL_CHOICE(PRAL_KIN_##KIN, PRAL_EXPORT_LISTED, PRAL_NOT_LISTED)(X, PARAMETERS)
#include "classic/core_api.h"
