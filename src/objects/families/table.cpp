// Families given by tables.
#include <type_traits>

#include "distributions/data/cumulative.h"
#include "distributions/data/density.h"
#include "distributions/data/discrete_table.h"
#include "distributions/data/step_uniform.h"

namespace pral::objects {

template <class D, class... T>
struct Maker;

/// The cumulative probabilities of an OgiveU are drawn for each call of the classic ones. The mean of the distributions that
/// may come out is what its values have before: that of Ogive.
template <class D, class... T>
Maker<std::conditional_t<std::is_same_v<D, OgiveU>, Ogive, D>, T...> table_maker(void (*)(T...));

}  // namespace pral::objects

#define PRAL_KIN_table PRAL_THIS_KIN
#define PRAL_MAKE_OBJECT(X, PARAMETERS) \
    decltype(table_maker<pral::X>(static_cast<void(*) PARAMETERS>(nullptr)))::object
#include "objects/family_rows.h"
