// The classic calls of the families behind one signature: the samples that a seed gives, and the declarations in C.
#pragma once

#include <cfloat>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace cli {

/// One element per parameter: the number alone, or all of the table.
using Arguments = std::vector<std::vector<double>>;

/// What every member takes after the parameters; see the header's chapter on modifiers.
struct Modifiers {
    std::optional<int> bounds_mode;
    double bounds_min = -DBL_MAX, bounds_max = DBL_MAX;
    std::optional<double> shift;
};

struct ClassicFamily {
    std::string name;
    std::vector<std::string> prototypes;  // of the five members, in C
    std::function<bool(double* out, int count, const Arguments&, const Modifiers&)> array;
};

/// The classic calls of the family of that name; null when it has none.
const ClassicFamily* find_classic(std::string_view name);

/// What a number is to the classic calls: their infinities are DBL_MAX and -DBL_MAX.
double classic_number(double value);

/// The declarations of a family, as the header's macro makes them, one by one.
std::vector<std::string> split_prototypes(std::string_view declarations);

template <class T>
const T* pointer_to(const std::optional<T>& value) {
    return value ? &*value : nullptr;
}

inline auto modifier_tail(const Modifiers& m) {
    return std::tuple(pointer_to(m.bounds_mode), &m.bounds_min, &m.bounds_max, pointer_to(m.shift));
}

/// The argument in place I of a C function whose parameters of the family begin at First: an int is the count of the
/// table before it, all else comes from the next element of the arguments.
template <std::size_t First, std::size_t I, class... Types>
auto argument_at(const Arguments& arguments) {
    using All = std::tuple<Types...>;
    using Type = std::tuple_element_t<I, All>;
    constexpr std::size_t element = []<std::size_t... J>(std::index_sequence<J...>) {
        return (std::size_t{0} + ... +
                std::size_t{!std::is_same_v<std::tuple_element_t<First + J, All>, int>});
    }
    (std::make_index_sequence<I - First>());
    if constexpr (std::is_same_v<Type, int>) {
        static_assert(std::is_same_v<std::tuple_element_t<I - 1, All>, const double*>,
                      "an int counts a table");
        return static_cast<int>(arguments[element - 1].size());
    } else if constexpr (std::is_same_v<Type, const double*>) {
        return arguments[element].data();
    } else {
        static_assert(std::is_same_v<Type, double>, "parameters are numbers and tables of numbers");
        return arguments[element].front();
    }
}

/// Calls a C function with `lead`, the family's own parameters, and `tail`.
template <class... Types, class Lead, class Tail>
bool call(bool (*function)(Types...), const Lead& lead, const Arguments& arguments, const Tail& tail) {
    constexpr std::size_t first = std::tuple_size_v<Lead>;
    return [&]<std::size_t... I>(std::index_sequence<I...>) {
        const std::tuple own(argument_at<first, first + I, Types...>(arguments)...);
        return std::apply(function, std::tuple_cat(lead, own, tail));
    }
    (std::make_index_sequence<sizeof...(Types) - first - std::tuple_size_v<Tail>>());
}

template <class Array>
ClassicFamily make_classic(std::string_view name, std::string_view declarations, Array array) {
    const auto sample = [array](double* out, int count, const Arguments& arguments,
                                const Modifiers& modifiers) {
        const double* const drawn = nullptr;
        return call(array, std::tuple(out, count), arguments,
                    std::tuple_cat(std::tuple(drawn), modifier_tail(modifiers)));
    };
    return {std::string(name), split_prototypes(declarations), sample};
}

/// A PRAL_FAMILY that makes one element of a list of families. The prototypes are the header's own declarations as text.
#define PRAL_LITERAL(...) #__VA_ARGS__
#define PRAL_EXPANDED(...) PRAL_LITERAL(__VA_ARGS__)
#define PRAL_FAMILY_ELEMENT(X, KIND, KIN, PARAMETERS, TEXT)                                   \
    cli::make_classic(#X, PRAL_EXPANDED(PRAL_DECLARE_FAMILY(X, KIND, KIN, PARAMETERS, TEXT)), \
                      Pral##X##Array_Core),

}  // namespace cli
