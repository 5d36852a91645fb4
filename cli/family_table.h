// The families as data: what the public header's list says of each, and its functions behind one signature, so that the
// commands can call any of them with what stands on the command line.
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

/// A parameter of a family: a number, or a table (a pointer and a count in C).
struct Parameter {
    std::string name;
    bool is_table;
};

/// One element per parameter: the number alone, or all of the table.
using Arguments = std::vector<std::vector<double>>;

/// What every member takes after the parameters; see the header's chapter on modifiers.
struct Modifiers {
    std::optional<int> bounds_mode;
    double bounds_min = -DBL_MAX, bounds_max = DBL_MAX;
    std::optional<double> shift;
};

struct Family {
    std::string name, kind, text;
    std::vector<Parameter> parameters;
    std::vector<std::string> prototypes;  // of the five members, in C
    std::function<bool(double* out, const Arguments&, const double* U, const Modifiers&)> value;
    std::function<bool(double* out, int count, const Arguments&, const Modifiers&)> array;
    using Probability = std::function<bool(double* out, double* x, int count, const Arguments&,
                                           const int* cumulative, const Modifiers&)>;
    Probability probability, log10_probability;
};

/// "(double Min, const double* values, int n)" -> Min, and the table values.
std::vector<Parameter> parse_parameters(std::string_view list);

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

template <class Value, class Array, class Probability>
Family make_family(std::string_view name, std::string_view kind, std::string_view text,
                   std::string_view parameters, std::string_view declarations, Value value, Array array,
                   Probability probability, Probability log10_probability) {
    const auto probability_caller = [](Probability function) {
        return [function](double* out, double* x, int count, const Arguments& arguments,
                          const int* cumulative, const Modifiers& modifiers) {
            return call(function, std::tuple(out, x, count), arguments,
                        std::tuple_cat(std::tuple(cumulative), modifier_tail(modifiers)));
        };
    };
    Family family;
    family.name = name;
    family.kind = kind;
    family.text = text;
    family.parameters = parse_parameters(parameters);
    family.prototypes = split_prototypes(declarations);
    family.value = [value](double* out, const Arguments& arguments, const double* U,
                           const Modifiers& modifiers) {
        return call(value, std::tuple(out), arguments,
                    std::tuple_cat(std::tuple(U), modifier_tail(modifiers)));
    };
    family.array = [array](double* out, int count, const Arguments& arguments, const Modifiers& modifiers) {
        const double* const drawn = nullptr;
        return call(array, std::tuple(out, count), arguments,
                    std::tuple_cat(std::tuple(drawn), modifier_tail(modifiers)));
    };
    family.probability = probability_caller(probability);
    family.log10_probability = probability_caller(log10_probability);
    return family;
}

/// A PRAL_FAMILY that makes one element of a list of families. The prototypes are the header's own declarations as text.
#define PRAL_LITERAL(...) #__VA_ARGS__
#define PRAL_EXPANDED(...) PRAL_LITERAL(__VA_ARGS__)
#define PRAL_FAMILY_ELEMENT(X, KIND, KIN, PARAMETERS, TEXT)                                              \
    cli::make_family(#X, #KIND, TEXT, #PARAMETERS,                                                       \
                     PRAL_EXPANDED(PRAL_DECLARE_FAMILY(X, KIND, KIN, PARAMETERS, TEXT)), Pral##X##_Core, \
                     Pral##X##Array_Core, Pral##X##Prob_Core, Pral##X##Prob10_Core),

}  // namespace cli
