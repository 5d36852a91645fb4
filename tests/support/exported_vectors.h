// Exported functions by their names, called with arguments out of tables: those that fill an array, (out, n, ...),
// those with a result of a size of its own, (out, ...), and their automation forms.
#pragma once

#include <gtest/gtest.h>

#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "classic/automation.h"
#include "classic/core_api.h"
#include "support/table.h"

namespace pral::test {

using Values = std::vector<double>;

/// An argument after the output: a number, an array, or null. An int* gets the address of the number.
struct Argument {
    Argument() = default;
    explicit Argument(double value) : number(value) {
        if (value >= INT_MIN && value <= INT_MAX) integer = static_cast<int>(value);
    }
    double number = 0;
    mutable int integer = 0;
    double* array = nullptr;
    bool null = false;

    template <class T>
    T as() const {
        if constexpr (std::is_same_v<T, int*> || std::is_same_v<T, const int*>)
            return null ? nullptr : &integer;
        else if constexpr (std::is_pointer_v<T>)
            return array;
        else if constexpr (std::is_same_v<T, int> || std::is_same_v<T, uint64_t>)
            return static_cast<T>(integer);
        else
            return number;
    }
};
using Arguments = std::vector<Argument>;

/// Arguments written as in the tables: numbers, "null", "[1,2.5,3]".
struct Written {
    explicit Written(const std::string& text) {
        std::istringstream words(text);
        for (std::string word; words >> word;) {
            if (word[0] == '[') {
                for (char& c : word) c = c == '[' || c == ']' || c == ',' ? ' ' : c;
                arrays.push_back(numbers(word));
                arguments.emplace_back().array = arrays.back().data();
            } else if (word == "null") {
                arguments.emplace_back().null = true;
            } else {
                arguments.emplace_back(std::strtod(word.c_str(), nullptr));
            }
        }
    }
    std::vector<Values> arrays;  // whose elements stay where they are when the outer vector grows
    Arguments arguments;
};

/// A function by its two forms, and what each of its arguments is.
struct Function {
    std::function<bool(double*, int, const Arguments&)> plain;
    std::function<bool(SAFEARRAY**, const Arguments&)> automation;  // may be empty
    std::string kinds;                                              // d, i, p: double, int, pointer
};
using Functions = std::map<std::string, Function>;

template <class... P, class F, class... Outputs>
bool call(F function, const Arguments& a, Outputs... outputs) {
    return [&]<std::size_t... i>(std::index_sequence<i...>) {
        return function(outputs..., a.at(i).template as<P>()...);
    }
    (std::index_sequence_for<P...>());
}

template <class... P>
std::string kinds_of() {
    return {(std::is_pointer_v<P>                                    ? 'p'
             : std::is_same_v<P, int> || std::is_same_v<P, uint64_t> ? 'i'
                                                                     : 'd')...};
}

template <class... P>
Function filling(bool (*plain)(double*, int, P...), bool (*automation)(SAFEARRAY**, P...)) {
    return {[=](double* out, int n, const Arguments& a) { return call<P...>(plain, a, out, n); },
            [=](SAFEARRAY** out, const Arguments& a) { return call<P...>(automation, a, out); },
            kinds_of<P...>()};
}

template <class... P>
Function sized(bool (*plain)(double*, P...)) {
    return {[=](double* out, int, const Arguments& a) { return call<P...>(plain, a, out); },
            {},
            kinds_of<P...>()};
}

template <class... P>
Function sized(bool (*plain)(double*, P...), bool (*automation)(SAFEARRAY**, P...)) {
    Function function = sized(plain);
    function.automation = [=](SAFEARRAY** out, const Arguments& a) { return call<P...>(automation, a, out); };
    return function;
}

/// The result by both forms, from the same place of the stream, equal in every bit; elements not written are 7.
inline bool simulate(const Functions& functions, const std::string& name, unsigned seed,
                     const Arguments& arguments, Values& out) {
    const Function& function = functions.at(name);
    SAFEARRAY* array = SafeArrayCreateVector(VT_R8, 0, static_cast<uint32_t>(out.size()));
    const Values sevens(out.size(), 7.0);
    std::copy(sevens.begin(), sevens.end(), static_cast<double*>(array->pvData));
    PralSetRandomSeed(seed);
    const bool by_array = function.automation && function.automation(&array, arguments);
    const std::string message = PralCoreError();
    PralSetRandomSeed(seed);
    out = sevens;
    const bool done = function.plain(out.data(), static_cast<int>(out.size()), arguments);
    if (function.automation) {
        EXPECT_EQ(by_array, done) << name;
        EXPECT_TRUE(done || message == PralCoreError()) << name;
        EXPECT_TRUE(out.empty() || std::memcmp(out.data(), array->pvData, out.size() * sizeof(double)) == 0)
            << name;
    }
    EXPECT_EQ(SafeArrayDestroy(array), S_OK) << name;  // unlocked
    return done;
}

/// Arrays that are no arrays of doubles in one dimension are refused by every automation form.
inline void expect_refused_arrays(const Functions& functions) {
    SAFEARRAYBOUND bounds[] = {{3, 0}, {2, 0}};
    SAFEARRAY* flat = SafeArrayCreate(VT_R8, 2, bounds);
    for (const auto& [name, function] : functions) {
        if (!function.automation) continue;
        const Arguments ones(function.kinds.size(), Argument(1));
        for (SAFEARRAY** out : {static_cast<SAFEARRAY**>(nullptr), &flat}) {
            PralSetCoreError("");
            EXPECT_FALSE(function.automation(out, ones)) << name;
            EXPECT_STREQ(PralCoreError(), "Error: Output array is not valid") << name;
        }
    }
    SafeArrayDestroy(flat);
}

/// Calls each function in `rounds` rounds with arguments of all sorts: extreme numbers, counts up to kMost, arrays of
/// kMost^2 elements and null. Outputs have as many elements; what stands there must be within the limits, or NaN
/// where they are those of all numbers. Some calls succeed.
inline void expect_survival(const Functions& functions, int rounds, double least = -DBL_MAX,
                            double most = DBL_MAX) {
    constexpr int kMost = 24;
    const Values hostile = {0,      1,     -1,       0.5,       2,   -0.5, DBL_MAX, -DBL_MAX, 1e300, -1e300,
                            5e-324, -1e-9, HUGE_VAL, -HUGE_VAL, NAN, 1e9,  0.1,     3,        700,   36};
    std::mt19937 words(3);
    const auto pick = [&](const auto& values) { return values[words() % values.size()]; };
    Values ascending(kMost * kMost), wild(ascending.size()), ones(ascending.size(), 1.0),
        halves(ascending.size(), 0.5), out(wild.size());
    const Values counts = {INT_MIN, -1, 0, 1, 2, 2, 2, 3, kMost}, sizes = {2, 3, kMost, kMost};
    const std::vector<double*> arrays = {nullptr, ascending.data(), wild.data(), ones.data(), halves.data()};
    PralSetRandomSeed(4);
    for (const auto& [name, function] : functions) {
        int done = 0;
        for (int round = 0; round < rounds; ++round) {
            for (std::size_t i = 0; i < wild.size(); ++i) {
                ascending[i] = static_cast<double>(i * i) - 5;  // functions may complete matrices in place
                wild[i] = pick(hostile);
            }
            Arguments arguments;
            for (const char kind : function.kinds) {
                // Half the rounds ask for little: numbers that pass the checks.
                const bool wildly = round % 2 == 0 || (round % 4 == 1 && words() % 3 == 0);
                arguments.emplace_back(kind == 'i' ? pick(counts) : wildly ? pick(hostile) : 1);
                arguments.back().array = pick(arrays);
                arguments.back().null = words() % 4 == 0;
            }
            done += function.plain(out.data(), static_cast<int>(pick(sizes)), arguments);
            for (const double value : out) {
                ASSERT_TRUE((value >= least && value <= most) || (std::isnan(value) && most >= DBL_MAX))
                    << name << ' ' << value;
            }
        }
        EXPECT_GT(done, 0) << name;
    }
}

}  // namespace pral::test
