// Included by the files of families/, one a kin, each with the headers of its families and one line
//
//   #define PRAL_KIN_gamma PRAL_THIS_KIN
//
// before: defines the rows of the families of that kin, so that the kins compile side by side.
#pragma once

#include <cstddef>
#include <cstdint>
#include <tuple>
#include <type_traits>
#include <utility>

#include "objects/family_row.h"

namespace pral::objects {

/// The argument in place I of a family's constructor: a number, or a table and the count that follows it.
template <std::size_t I, class... T>
auto argument_at(const FamilyArguments& arguments) {
    using All = std::tuple<T...>;
    using Type = std::tuple_element_t<I, All>;
    constexpr std::size_t place = []<std::size_t... J>(std::index_sequence<J...>) {
        return (std::size_t{0} + ... + std::size_t{!std::is_same_v<std::tuple_element_t<J, All>, int>});
    }
    (std::make_index_sequence<I>());
    if constexpr (std::is_same_v<Type, int>)
        return static_cast<int>(arguments[place - 1].size());
    else if constexpr (std::is_same_v<Type, const double*>)
        return arguments[place].data();
    else
        return arguments[place].front();
}

/// D from arguments, by the types of its parameters in C.
template <class D, class... T>
struct Maker {
    static constexpr std::uint64_t tables() {
        std::uint64_t tables = 0, bit = 1;
        ((std::is_same_v<T, int> ? void()
                                 : void((tables |= std::is_same_v<T, const double*> ? bit : 0, bit <<= 1))),
         ...);
        return tables;
    }
    static D family(const FamilyArguments& arguments) {
        return [&]<std::size_t... I>(std::index_sequence<I...>) {
            return D{argument_at<I, T...>(arguments)...};
        }
        (std::index_sequence_for<T...>());
    }
    static Shared object(const char* name, FamilyArguments arguments, std::string& objection) {
        auto made =
            std::make_shared<UnivariateFamily<D>>(FamilyOrigin{name, tables(), std::move(arguments)}, family);
        const Message message = made->check();
        if (message == nullptr) return made;
        objection = message;
        return nullptr;
    }
};
template <class D, class... T>
Maker<D, T...> maker_of(void (*)(T...));

}  // namespace pral::objects

#define PRAL_THIS_KIN ~,
#define PRAL_SECOND(FIRST, SECOND, ...) SECOND
#define PRAL_CHOICE(KIN, CHOSEN, OTHERWISE) PRAL_SECOND(KIN CHOSEN, OTHERWISE, )

#define PRAL_NO_ROW(X, KIND, PARAMETERS, TEXT)
#ifndef PRAL_MAKE_OBJECT
#define PRAL_MAKE_OBJECT(X, PARAMETERS) \
    decltype(maker_of<pral::X>(static_cast<void(*) PARAMETERS>(nullptr)))::object
#endif
#define PRAL_ROW(X, KIND, PARAMETERS, TEXT)                                                            \
    extern const FamilyRow row_of_##X;                                                                 \
    const FamilyRow row_of_##X = {#X, FamilyKind::KIND, #PARAMETERS, TEXT,                             \
                                  [](FamilyArguments arguments, std::string& objection) -> Shared {    \
                                      return PRAL_MAKE_OBJECT(X, PARAMETERS)(#X, std::move(arguments), \
                                                                             objection);               \
                                  }};

#include "classic/core_api.h"
namespace pral::objects {
#define PRAL_FAMILY(X, KIND, KIN, PARAMETERS, TEXT) \
    PRAL_CHOICE(PRAL_KIN_##KIN, PRAL_ROW, PRAL_NO_ROW)(X, KIND, PARAMETERS, TEXT)
#include "classic/core_api.h"
#define PRAL_FAMILY(X, KIND, KIN, PARAMETERS, TEXT) \
    PRAL_CHOICE(PRAL_KIN_##KIN, PRAL_ROW, PRAL_NO_ROW)(X, KIND, PARAMETERS, TEXT)
#include "objects/own_families.h"
}  // namespace pral::objects
