// Streams of random numbers, and samples drawn from them.
#include <algorithm>
#include <cstring>
#include <limits>
#include <vector>

#include "objects/handles.h"

using namespace pral::objects;
using pral::PhiloxStream;
using pral::SeedSequence;

namespace {

/// A saved stream: this mark, the lengths of origin and path, their words, counter and place in the block.
constexpr std::uint64_t kStateMark = 0x70726c2d73743031;
constexpr std::size_t kHead = 3, kTail = 5, kMostWords = 1 << 16;

template <class Make>
pral_status made_stream(pral_stream** out, pral_error* error, Make make) noexcept {
    if (out != nullptr) *out = nullptr;
    return guarded(error, [&] {
        required(out, "out");
        *out = new pral_stream{.stream = make()};
    });
}
PhiloxStream& checked_stream(pral_stream* stream) { return checked(stream, "stream").stream; }
const PhiloxStream& checked_stream(const pral_stream* stream) { return checked(stream, "stream").stream; }

std::vector<std::uint64_t> saved(const PhiloxStream& stream) {
    const auto origin = stream.name().origin(), path = stream.name().path();
    std::vector<std::uint64_t> words = {kStateMark, origin.size(), path.size()};
    words.insert(words.end(), origin.begin(), origin.end());
    words.insert(words.end(), path.begin(), path.end());
    const auto [counter, next] = stream.position();
    words.insert(words.end(), counter.begin(), counter.end());
    words.push_back(next);
    return words;
}

PhiloxStream restored(const std::uint64_t* words, std::size_t count) {
    const auto refuse_words = [] { refuse(PRAL_ERROR_DATA, "these are not the words of a saved stream"); };
    if (count < kHead + kTail || words[0] != kStateMark || words[1] > kMostWords || words[2] > kMostWords ||
        count != kHead + words[1] + words[2] + kTail)
        refuse_words();
    const std::uint64_t* const names = words + kHead;
    const std::size_t both = static_cast<std::size_t>(words[1] + words[2]);
    if (std::any_of(names, names + both, [](std::uint64_t word) { return word >> 32 != 0; })) refuse_words();
    std::vector<std::uint32_t> origin(names, names + words[1]), path(names + words[1], names + both);
    PhiloxStream stream(SeedSequence(std::move(origin), std::move(path)));
    const std::uint64_t* const place = names + both;
    if (place[4] > 4) refuse_words();
    stream.move_to({{place[0], place[1], place[2], place[3]}, place[4]});
    return stream;
}

}  // namespace

pral_status pral_stream_make(const uint64_t* words, size_t count, pral_stream** out, pral_error* error) {
    return made_stream(out, error, [&] {
        required_array(words, count, "words");
        if (count > kMostWords / 2) refuse(PRAL_ERROR_ARGUMENT, "a stream has at most 32768 words");
        return PhiloxStream(SeedSequence({words, count}));
    });
}

pral_status pral_stream_child(const pral_stream* parent, uint64_t id, pral_stream** out, pral_error* error) {
    return made_stream(out, error, [&] {
        if (id >= SeedSequence::kNameFollows)
            refuse(PRAL_ERROR_ARGUMENT, "the number of a child must be below 4294967295");
        return PhiloxStream(checked_stream(parent).name().child(static_cast<std::uint32_t>(id)));
    });
}

pral_status pral_stream_child_named(const pral_stream* parent, const char* name, pral_stream** out,
                                    pral_error* error) {
    return made_stream(out, error, [&] {
        const std::string_view text = &required(name, "name");
        if (text.size() > kMostWords) refuse(PRAL_ERROR_ARGUMENT, "the name is too long");
        return PhiloxStream(checked_stream(parent).name().child(text));
    });
}

pral_status pral_stream_copy(const pral_stream* stream, pral_stream** out, pral_error* error) {
    return made_stream(out, error, [&] { return checked_stream(stream); });
}

void pral_stream_free(pral_stream* stream) {
    if (stream == nullptr || stream->mark != pral_stream::kMark) return;
    stream->mark = 0;
    delete stream;
}

pral_status pral_stream_state(const pral_stream* stream, uint64_t* words, size_t capacity, size_t* needed,
                              pral_error* error) {
    return guarded(error, [&] {
        const std::vector<std::uint64_t> state = saved(checked_stream(stream));
        if (needed != nullptr) *needed = state.size();
        if (words == nullptr && capacity == 0) return;
        required(words, "words");
        if (capacity < state.size()) refuse(PRAL_ERROR_ARGUMENT, "the buffer is too small");
        std::ranges::copy(state, words);
    });
}

pral_status pral_stream_restore(const uint64_t* words, size_t count, pral_stream** out, pral_error* error) {
    return made_stream(out, error, [&] {
        required_array(words, count, "words");
        return restored(words, count);
    });
}

pral_status pral_uniforms(pral_stream* stream, double* out, size_t n, pral_error* error) {
    return guarded(error, [&] {
        PhiloxStream& from = checked_stream(stream);
        required_array(out, n, "out");
        from.fill({out, n});
    });
}

pral_status pral_sample(const pral_distribution* distribution, pral_stream* stream, double* out, size_t n,
                        pral_error* error) {
    return guarded(error, [&] {
        const pral::Univariate& d = checked(distribution);
        PhiloxStream& from = checked_stream(stream);
        required_array(out, n, "out");
        from.fill({out, n});
        d.evaluate(pral::Function::quantile, {out, n}, {out, n});
    });
}
