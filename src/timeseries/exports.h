// The line that makes a path public: PRAL_EXPORT_PATH(MA1, (double mu, ...), (mu, ...), price_path(out, n, ...)) defines
// PralTimeMA1_Core(out, n, mu, ...) as that call, and PralTimeMA1VB_Core over it.
#pragma once

#include "boundary/core_api.h"
#include "timeseries/path.h"

#define PRAL_EXPORT_PATH(X, PARAMETERS, ARGUMENTS, ...)                                                     \
    bool PralTime##X##_Core(double* out, int n, PRAL_REMOVE_PARENTHESES PARAMETERS) { return __VA_ARGS__; } \
    bool PralTime##X##VB_Core(SAFEARRAY** out, PRAL_REMOVE_PARENTHESES PARAMETERS) {                        \
        return pral::with_locked_array(out, [&](double* locked, int elements) {                             \
            return PralTime##X##_Core(locked, elements, PRAL_REMOVE_PARENTHESES ARGUMENTS);                 \
        });                                                                                                 \
    }
