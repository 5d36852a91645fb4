// pral sample: random values, drawn and written block by block.
#include <algorithm>
#include <cmath>
#include <random>

#include "classic/core_api.h"
#include "commands.h"
#include "errors.h"

namespace cli {

namespace {

/// The most values per call: 8 MB, however many are asked for. The stream goes on from block to block, so that the
/// values are those of one call.
constexpr double kBlock = 1 << 20;

unsigned int whole_seed(double seed) {
    if (!(seed >= 0 && seed <= 4294967295.0 && seed == std::floor(seed))) {
        throw UsageError("--seed: a whole number from 0 to 4294967295 is wanted");
    }
    return static_cast<unsigned int>(seed);
}

}  // namespace

void sample(const SampleOptions& options) {
    constexpr double kLargestCount = 9007199254740992.0;
    if (!(options.count >= 0 && options.count <= kLargestCount &&
          options.count == std::floor(options.count))) {
        throw UsageError("-n: a whole number of values, 0 or more, is wanted");
    }
    const auto [family, arguments, modifiers] = make_call(options);
    PralSetRandomSeed(options.seed ? whole_seed(*options.seed) : std::random_device()());

    std::vector<double> block(static_cast<std::size_t>(std::min(options.count, kBlock)));
    std::optional<Rows> rows;  // begun when the first call has succeeded
    double left = options.count;
    do {
        const int size = static_cast<int>(std::min(left, kBlock));
        require(family.array(block.data(), size, arguments, modifiers));
        if (!rows) rows.emplace(options.format, std::vector<std::string>{"value"});
        for (int i = 0; i < size; ++i) rows->add({block[static_cast<std::size_t>(i)]});
        left -= size;
    } while (left > 0);
    rows->end();
}

}  // namespace cli
