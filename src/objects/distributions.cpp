// Distributions made, combined, described and freed.
#include <cstring>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "distributions/combined.h"
#include "objects/handles.h"

using namespace pral::objects;

namespace {

/// The result of a combination, or the failure that it objects with.
pral::Shared accepted(pral::Shared distribution, const std::string& objection) {
    if (distribution == nullptr) refuse(PRAL_ERROR_PARAMETER, objection);
    return distribution;
}
pral::Shared shared(const pral_distribution* distribution) {
    return checked(distribution, "distribution").distribution;
}

}  // namespace

pral_status pral_distribution_make(const char* family, const double* parameters, const size_t* lengths,
                                   size_t count, pral_distribution** out, pral_error* error) {
    return made(out, error, [&] {
        constexpr std::size_t kMostParameters = 64;
        const std::string name = &required(family, "family");
        required_array(parameters, count, "parameters");
        if (count > kMostParameters) refuse(PRAL_ERROR_PARAMETER, "no family has so many parameters");
        pral::FamilyArguments arguments(count);
        const double* next = parameters;
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t length = lengths == nullptr ? 1 : lengths[i];
            if (length > static_cast<std::size_t>(std::numeric_limits<int>::max()))
                refuse(PRAL_ERROR_ARGUMENT, "a table has too many elements", static_cast<std::int64_t>(i));
            arguments[i].assign(next, next + length);
            next += length;
        }
        return made_of(name, std::move(arguments));
    });
}

pral_status pral_distribution_parse(const char* text, pral_distribution** out, pral_error* error) {
    return made(out, error, [&] { return parsed(&required(text, "text")); });
}

pral_status pral_distribution_describe(const pral_distribution* distribution, char* buffer, size_t capacity,
                                       size_t* needed, pral_error* error) {
    return guarded(error, [&] {
        const std::string text = checked(distribution).text();
        if (needed != nullptr) *needed = text.size() + 1;
        if (buffer == nullptr && capacity == 0) return;
        required(buffer, "buffer");
        if (capacity <= text.size()) refuse(PRAL_ERROR_ARGUMENT, "the buffer is too small");
        std::memcpy(buffer, text.c_str(), text.size() + 1);
    });
}

pral_status pral_distribution_copy(const pral_distribution* distribution, pral_distribution** out,
                                   pral_error* error) {
    return made(out, error, [&] { return shared(distribution); });
}

void pral_distribution_free(pral_distribution* distribution) {
    if (distribution == nullptr || distribution->mark != pral_distribution::kMark) return;
    distribution->mark = 0;
    delete distribution;
}

pral_status pral_truncated(const pral_distribution* distribution, double lower, double upper, int32_t flags,
                           pral_distribution** out, pral_error* error) {
    return made(out, error, [&] {
        if ((flags & ~(PRAL_LOWER_IS_PERCENTILE | PRAL_UPPER_IS_PERCENTILE)) != 0)
            refuse(PRAL_ERROR_ARGUMENT, "there are no such flags");
        const pral::End from = {lower, (flags & PRAL_LOWER_IS_PERCENTILE) != 0};
        const pral::End to = {upper, (flags & PRAL_UPPER_IS_PERCENTILE) != 0};
        std::string objection;
        return accepted(truncated(shared(distribution), from, to, objection), objection);
    });
}

pral_status pral_shifted(const pral_distribution* distribution, double shift, pral_distribution** out,
                         pral_error* error) {
    return made(out, error, [&] {
        std::string objection;
        return accepted(pral::affine(shared(distribution), 1, shift, objection), objection);
    });
}

pral_status pral_scaled(const pral_distribution* distribution, double factor, pral_distribution** out,
                        pral_error* error) {
    return made(out, error, [&] {
        std::string objection;
        return accepted(pral::affine(shared(distribution), factor, 0, objection), objection);
    });
}

pral_status pral_mixture(const pral_distribution* const* components, const double* weights, size_t count,
                         pral_distribution** out, pral_error* error) {
    return made(out, error, [&] {
        required_array(components, count, "components");
        required_array(weights, count, "weights");
        std::vector<pral::Shared> parts;
        for (std::size_t i = 0; i < count; ++i) parts.push_back(shared(components[i]));
        std::string objection;
        return accepted(pral::mixture(std::move(parts), {weights, weights + count}, objection), objection);
    });
}
