// The members of every parametric family with hostile parameters, percentiles, bounds and values: each must come back, at
// once, and never with an infinity.
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "input.h"
#include "support/exported_families.h"

namespace {

using namespace pral::test;

void check(const ExportedFamily& family, const Parameters& parameters, bool succeeded, double result) {
    if (!succeeded || !std::isinf(result)) return;
    std::fprintf(stderr, "infinite result of %s(", family.name.c_str());
    for (const double parameter : parameters) std::fprintf(stderr, " %.17g", parameter);
    std::fprintf(stderr, " )\n");
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const auto families = exported_families();
    pral::fuzz::Input input(data, size);
    const ExportedFamily& family = families[input.byte() % families.size()];
    Parameters parameters(family.parameters);
    for (double& parameter : parameters) parameter = input.number();
    const unsigned modifiers = input.byte();
    const int mode = static_cast<int>(input.byte() % 5) - 1,
              cumulative = static_cast<int>(input.byte() % 3) - 1;
    const double u = (modifiers & 32) != 0 ? input.number() : input.byte() / 255.0;
    const double min = input.number(), max = input.number(), shift = input.number();
    const Given given = {(modifiers & 1) != 0 ? &u : nullptr, (modifiers & 2) != 0 ? &mode : nullptr,
                         (modifiers & 4) != 0 ? &min : nullptr, (modifiers & 8) != 0 ? &max : nullptr,
                         (modifiers & 16) != 0 ? &shift : nullptr};

    double result;
    check(family, parameters, family.value(&result, parameters, given), result);
    static double values[400];
    const std::size_t count = input.byte() < 250 ? 3 : 400;  // 400: enough for a table of many values
    check(family, parameters, family.array({values, count}, parameters, given), values[0]);
    for (const auto& probability : family.prob) {
        double x[] = {input.number(), input.number(), values[0]};
        check(family, parameters,
              probability(&result, x, parameters, (modifiers & 64) != 0 ? &cumulative : nullptr, given),
              result);
    }
    return 0;
}
