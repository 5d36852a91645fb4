#include "classic/fit_forms.h"

#include <algorithm>

#include "classic/members.h"
#include "classic/variants.h"

namespace pral::classic {

namespace {

using fitting::FittedFamily;
using fitting::detail::Member;

/// Values within the bounds, as FittedFamily has them.
template <class D, int N>
void values(std::span<double> out, const double* parameters, const Limits& limits, const double* u,
            RandomStream& stream) {
    const Form<D> d = Member<Form<D>, N>::of(parameters);
    const Message objection = sampling_objection(d);
    const Kept<Form<D>> kept(d, objection == nullptr, limits);
    fitting::detail::check_bounds(limits, kept.ordered(), kept.min(), kept.max());
    if (u != nullptr && !(*u >= 0 && *u <= 1)) fitting::detail::fail(fitting::kPercentileOutside);
    if (objection != nullptr) fitting::detail::fail(objection);
    if (u != nullptr)
        std::ranges::fill(out, value_apart(*u, kept, nullptr));
    else
        draw_each(out, kept, stream);
}

/// The likelihood, refused where the classic form objects.
template <class D, int N>
double log_likelihood(const double* parameters, const Sample& x, const Limits& limits) {
    const Form<D> d = Member<Form<D>, N>::of(parameters);
    if (sampling_objection(d) != nullptr) return -HUGE_VAL;
    return Member<Form<D>, N>::log_likelihood(parameters, x, limits);
}

struct FitForm {
    std::string_view name;
    decltype(FittedFamily::values) values;
    decltype(FittedFamily::log_likelihood) log_likelihood = nullptr;
};

// clang-format off
constexpr FitForm kForms[] = {
    {"Bernoulli", values<Bernoulli, 1>},
    {"Poisson", values<Poisson, 1>},
    {"BurntFingerPoisson", values<BurntFingerPoisson, 2>},
    {"Geometric", values<Geometric, 1>},
    {"Binomial", values<RealCounts<Binomial>, 2>},
    {"NegBin", values<RealCounts<NegBin>, 2>},
    {"ZIPoisson", values<ZIPoisson, 2>},
    {"ZIGeometric", values<ZIGeometric, 2>},
    {"ZILogarithmic", values<ZILogarithmic, 2>},
    {"ZIBinomial", values<ZeroInflated<RealCounts<Binomial>>, 3>},
    {"ZINegBin", values<ZeroInflated<RealCounts<NegBin>>, 3>},
    {"ZIPolya", values<ZIPolya, 3>},
    {"ZIDelaporte", values<ZIDelaporte, 4>},
    {"ZISkellam", values<ZISkellam, 3>, log_likelihood<ZISkellam, 3>},
    {"ZIBetaBinomial", values<ZeroInflated<RealCounts<BetaBinomial>>, 4>},
    {"ZIBetaGeometric", values<ZIBetaGeometric, 3>, log_likelihood<ZIBetaGeometric, 3>},
    {"ZIBetaNegBin", values<ZeroInflated<RealCounts<BetaNegBin>>, 4>},
    {"ZTPoisson", values<ZTPoisson, 1>},
    {"ZTGeometric", values<ZTGeometric, 1>},
    {"ZTBinomial", values<ZeroTruncated<RealCounts<Binomial>>, 2>},
    {"ZTNegBin", values<ZeroTruncated<RealCounts<NegBin>>, 2>},
    {"ZTBetaGeometric", nullptr, log_likelihood<ZTBetaGeometric, 2>},
};
// clang-format on

}  // namespace

FittedFamily in_classic_form(const FittedFamily& family) {
    FittedFamily changed = family;
    const auto* const form = std::ranges::find(kForms, family.name, &FitForm::name);
    if (form == std::end(kForms)) return changed;
    if (form->values != nullptr) changed.values = form->values;
    if (form->log_likelihood != nullptr) changed.log_likelihood = form->log_likelihood;
    if (family.name == "ZIBetaGeometric" || family.name == "ZTBetaGeometric")
        changed.ranges[1] = fitting::above(2);  // as its checks have it
    return changed;
}

}  // namespace pral::classic
