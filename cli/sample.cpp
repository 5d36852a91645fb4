// pral sample: random values, drawn and written block by block.
#include <fmt/format.h>
#include <pral_core/core_api.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>

#include "arguments.h"
#include "classic_table.h"
#include "commands.h"
#include "errors.h"
#include "text.h"

namespace cli {

namespace {

/// "42/7/claims": the stream of seed 42, its child 7, and the child of that by the name of claims.
pral::Stream stream_of(const std::string& text) {
    const auto ids = split(text, '/');
    const auto seed = whole_number(ids.front());
    if (!seed)
        throw UsageError(
            fmt::format("--stream: a seed, 0 to 18446744073709551615, and its children are wanted, "
                        "such as 42 or 42/7/claims, not {}",
                        shown(text)));
    pral::Stream stream(*seed);
    constexpr std::uint64_t kNoChild = 4294967295;
    for (std::size_t i = 1; i < ids.size(); ++i) {
        const std::string name(ids[i]);
        const auto id = whole_number(name);
        if (name.empty() || (id && *id >= kNoChild) || (!id && number(name)))
            throw UsageError(fmt::format("--stream: a child is a whole number below {} or a word, not \"{}\"",
                                         kNoChild, shown(name)));
        stream = id ? stream.child(*id) : stream.child(name);
    }
    return stream;
}

pral::Stream random_stream() {
    std::random_device device;
    std::array<std::uint64_t, 4> words;
    for (std::uint64_t& word : words) word = device();
    return pral::Stream(words);
}

Arguments classic_arguments(Arguments arguments) {
    for (auto& argument : arguments) std::ranges::transform(argument, argument.begin(), classic_number);
    return arguments;
}

Modifiers classic_modifiers(const DistributionOptions& options) {
    constexpr int max_is_percentile = 1, min_is_percentile = 2;
    Modifiers modifiers;
    if (options.shift) modifiers.shift = classic_number(*options.shift);
    const auto& [min, max, min_p, max_p] =
        std::tie(options.min, options.max, options.min_percentile, options.max_percentile);
    if (!min && !max && !min_p && !max_p) return modifiers;
    modifiers.bounds_mode = (min_p ? min_is_percentile : 0) + (max_p ? max_is_percentile : 0);
    modifiers.bounds_min = classic_number(min_p ? *min_p : min.value_or(-DBL_MAX));
    modifiers.bounds_max = classic_number(max_p ? *max_p : max.value_or(DBL_MAX));
    return modifiers;
}

unsigned int whole_seed(double seed) {
    if (!(seed >= 0 && seed <= 4294967295.0 && seed == std::floor(seed)))
        throw UsageError("--seed: a whole number from 0 to 4294967295 is wanted");
    return static_cast<unsigned int>(seed);
}

/// Writes `count` values as `fill` makes them for one block after the other, 8 MB at most.
template <class Fill>
void write_blocks(double count, Format format, Fill fill) {
    constexpr double kBlock = 1 << 20;
    std::vector<double> block(static_cast<std::size_t>(std::min(count, kBlock)));
    std::optional<Rows> rows;  // begun when the first block is there
    double left = count;
    do {
        const std::span<double> part(block.data(), static_cast<std::size_t>(std::min(left, kBlock)));
        fill(part);
        if (!rows) rows.emplace(format, std::vector<std::string>{"value"});
        for (const double value : part) rows->add({value});
        left -= static_cast<double>(part.size());
    } while (left > 0);
    rows->end();
}

/// From the classic calls, whose stream a seed starts anew. It goes on from block to block.
void sample_classic(const SampleOptions& options, const DistributionParts& parts) {
    const unsigned int seed = whole_seed(*options.seed);
    const ClassicFamily* const family = parts.family ? find_classic(parts.family->name) : nullptr;
    if (family == nullptr)
        throw UsageError(
            "--seed goes with a family's name and parameters; --stream draws from any distribution");
    const Arguments arguments = classic_arguments(parts.parameters);
    const Modifiers modifiers = classic_modifiers(options);
    PralSetRandomSeed(seed);
    write_blocks(options.count, options.format, [&](std::span<double> out) {
        require(family->array(out.data(), static_cast<int>(out.size()), arguments, modifiers));
    });
}

/// The values of a Latin hypercube are drawn together: each of as many equal slices of [0,1] holds the percentile of one.
void sample_latin_hypercube(const SampleOptions& options, const pral::Distribution& distribution,
                            pral::Stream& stream) {
    constexpr double kMost = 1e8;
    if (options.count > kMost)
        throw UsageError(fmt::format(
            "-n: {:.0f} values are the most for --latin-hypercube, which draws all at once", kMost));
    std::vector<double> values =
        pral::points(PRAL_LATIN_HYPERCUBE, &stream, static_cast<std::size_t>(options.count), 1);
    distribution.quantile(values, values);
    auto next = values.begin();
    write_blocks(options.count, options.format, [&](std::span<double> out) {
        std::copy_n(next, out.size(), out.begin());
        next += static_cast<std::ptrdiff_t>(out.size());
    });
}

}  // namespace

void sample(const SampleOptions& options) {
    constexpr double kLargestCount = 9007199254740992.0;
    if (!(options.count >= 0 && options.count <= kLargestCount && options.count == std::floor(options.count)))
        throw UsageError("-n: a whole number of values, 0 or more, is wanted");
    if (options.seed && (options.stream || options.latin_hypercube))
        throw UsageError(fmt::format("--seed and {}: only one of them can be given",
                                     options.stream ? "--stream" : "--latin-hypercube"));
    const DistributionParts parts = parts_of(options, false);
    if (options.seed) return sample_classic(options, parts);
    const auto distribution = make_distribution(options, parts);
    pral::Stream stream = options.stream ? stream_of(*options.stream) : random_stream();
    if (options.latin_hypercube) return sample_latin_hypercube(options, distribution, stream);
    write_blocks(options.count, options.format,
                 [&](std::span<double> out) { distribution.sample(stream, out); });
}

}  // namespace cli
