// Every parametric family of the public header as data, so that one suite can put its questions to all of them.
#pragma once

#include <array>
#include <functional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "classic/core_api.h"

namespace pral::test {

/// The optional inputs of a call.
struct Given {
    const double* U = nullptr;
    const int* mode = nullptr;
    const double* min = nullptr;
    const double* max = nullptr;
    const double* shift = nullptr;
};

using Parameters = std::vector<double>;

struct ExportedFamily {
    std::string name, kind;
    std::size_t parameters;
    std::function<bool(double* out, const Parameters&, const Given&)> value;
    std::function<bool(std::span<double> out, const Parameters&, const Given&)> array;
    /// prob[0]: the probability, prob[1]: its base-10 logarithm.
    std::array<std::function<bool(double* out, std::span<double> x, const Parameters&, const int* cumulative,
                                  const Given&)>,
               2>
        prob;
};

template <class>
using Double = double;

template <std::size_t... I>
ExportedFamily exported(const char* name, const char* kind,
                        bool (*value)(double*, Double<std::index_sequence<I>>..., const double*, const int*,
                                      const double*, const double*, const double*),
                        bool (*array)(double*, int, Double<std::index_sequence<I>>..., const double*,
                                      const int*, const double*, const double*, const double*),
                        bool (*prob)(double*, double*, int, Double<std::index_sequence<I>>..., const int*,
                                     const int*, const double*, const double*, const double*),
                        decltype(prob) prob10, std::index_sequence<I...>) {
    const auto probability = [](auto function) {
        return [=](double* out, std::span<double> x, const Parameters& p, const int* cumulative,
                   const Given& g) {
            return function(out, x.data(), static_cast<int>(x.size()), p[I]..., cumulative, g.mode, g.min,
                            g.max, g.shift);
        };
    };
    return {name,
            kind,
            sizeof...(I),
            [=](double* out, const Parameters& p, const Given& g) {
                return value(out, p[I]..., g.U, g.mode, g.min, g.max, g.shift);
            },
            [=](std::span<double> out, const Parameters& p, const Given& g) {
                return array(out.data(), static_cast<int>(out.size()), p[I]..., g.U, g.mode, g.min, g.max,
                             g.shift);
            },
            {probability(prob), probability(prob10)}};
}

/// Adds a family whose parameters are all doubles; the data-defined ones have a suite of their own.
template <class... T>
void add(std::vector<ExportedFamily>& list, const char* name, const char* kind, bool (*value)(double*, T...),
         auto array, auto prob, auto prob10) {
    if constexpr ((std::is_same_v<T, int> || ...)) {
        return;
    } else if (std::string(kind) != "data") {
        list.push_back(
            exported(name, kind, value, array, prob, prob10, std::make_index_sequence<sizeof...(T) - 5>()));
    }
}

inline std::vector<ExportedFamily> exported_families() {
    std::vector<ExportedFamily> list;
#define PRAL_FAMILY(X, KIND, KIN, PARAMETERS, TEXT) \
    add(list, #X, #KIND, Pral##X##_Core, Pral##X##Array_Core, Pral##X##Prob_Core, Pral##X##Prob10_Core);
#include "classic/core_api.h"
    return list;
}

}  // namespace pral::test
