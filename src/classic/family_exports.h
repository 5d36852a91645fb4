// The five functions of every family that core_api.h declares, over the classic form of the type pral::X of the same name.
//
// The files of families/, one a kin, define them from the list in core_api.h: each includes the headers of its families,
// defines PRAL_KIN_gamma (say) as PRAL_THIS_KIN and includes family_list.h. Families with tables among their parameters
// have lines of their own, PRAL_EXPORT_FAMILY(DUniform, (const double* values, int n), (values, n)).
#pragma once

#include "classic/core_api.h"
#include "classic/members.h"

namespace pral {

/// A parameter as families get it: -0.0 is 0.0.
inline double plain_zero(double parameter) { return parameter + 0.0; }
template <class T>
T plain_zero(T parameter) {
    return parameter;
}

/// A family of these parameters.
template <class D, class... Parameters>
D made(Parameters... parameters) {
    return D{plain_zero(parameters)...};
}

}  // namespace pral

#define PRAL_EXPORT_FAMILY(X, PARAMETERS, ARGUMENTS)                                                       \
    bool Pral##X##_Core(double* out, PRAL_REMOVE_PARENTHESES PARAMETERS, const double* U,                  \
                        const int* boundsMode, const double* boundsMin, const double* boundsMax,           \
                        const double* shift) {                                                             \
        return pral::guarded(out, 1, [&](int) {                                                            \
            return pral::value_member(out, pral::made<pral::classic::Form<pral::X>> ARGUMENTS,             \
                                      {U, boundsMode, boundsMin, boundsMax, shift});                       \
        });                                                                                                \
    }                                                                                                      \
    bool Pral##X##Array_Core(double* out, int count, PRAL_REMOVE_PARENTHESES PARAMETERS, const double* U,  \
                             const int* boundsMode, const double* boundsMin, const double* boundsMax,      \
                             const double* shift) {                                                        \
        return pral::guarded(out, count, [&](int size) {                                                   \
            return pral::array_member({out, static_cast<std::size_t>(size)},                               \
                                      pral::made<pral::classic::Form<pral::X>> ARGUMENTS,                  \
                                      {U, boundsMode, boundsMin, boundsMax, shift});                       \
        });                                                                                                \
    }                                                                                                      \
    bool Pral##X##ArrayVB_Core(SAFEARRAY** out, PRAL_REMOVE_PARENTHESES PARAMETERS, const double* U,       \
                               const int* boundsMode, const double* boundsMin, const double* boundsMax,    \
                               const double* shift) {                                                      \
        return pral::with_locked_array(out, [&](double* locked, int elements) {                            \
            return Pral##X##Array_Core(locked, elements, PRAL_REMOVE_PARENTHESES ARGUMENTS, U, boundsMode, \
                                       boundsMin, boundsMax, shift);                                       \
        });                                                                                                \
    }                                                                                                      \
    bool Pral##X##Prob_Core(double* out, double* x, int count, PRAL_REMOVE_PARENTHESES PARAMETERS,         \
                            const int* cumulative, const int* boundsMode, const double* boundsMin,         \
                            const double* boundsMax, const double* shift) {                                \
        return pral::guarded(out, 1, [&](int) {                                                            \
            return pral::probability_member(                                                               \
                out, x, count, pral::made<pral::classic::Form<pral::X>> ARGUMENTS, cumulative,             \
                {nullptr, boundsMode, boundsMin, boundsMax, shift}, pral::Scale::plain);                   \
        });                                                                                                \
    }                                                                                                      \
    bool Pral##X##Prob10_Core(double* out, double* x, int count, PRAL_REMOVE_PARENTHESES PARAMETERS,       \
                              const int* cumulative, const int* boundsMode, const double* boundsMin,       \
                              const double* boundsMax, const double* shift) {                              \
        return pral::guarded(out, 1, [&](int) {                                                            \
            return pral::probability_member(                                                               \
                out, x, count, pral::made<pral::classic::Form<pral::X>> ARGUMENTS, cumulative,             \
                {nullptr, boundsMode, boundsMin, boundsMax, shift}, pral::Scale::natural_log);             \
        });                                                                                                \
    }                                                                                                      \
    static_assert(pral::Family<pral::classic::Form<pral::X>>)
