// pral_core for C++20: owners, spans and exceptions over objects.h, in this header alone.
//
//   pral::Distribution claim = pral::Distribution("Lognormal", {1000, 2500}).truncated(0, 50'000);
//   pral::Stream stream(42);
//   std::vector<double> losses = claim.sample(stream, 10'000);
//   double worst = claim.upper_tail_mean(0.99);
#ifndef PRAL_OBJECTS_HPP
#define PRAL_OBJECTS_HPP

#include <pral_core/objects.h>

#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace pral {

/// A call that has failed; what() says what to do.
class Error : public std::runtime_error {
  public:
    Error(pral_status code, std::int64_t index, const char* text)
        : std::runtime_error(text), code_(code), index_(index) {}
    pral_status code() const { return code_; }
    /// Of the offending element, parameter or character; -1 where there is none.
    std::int64_t index() const { return index_; }

  private:
    pral_status code_;
    std::int64_t index_;
};

namespace door {

/// Calls function(arguments..., &error) and throws what it reports.
template <class Function, class... Arguments>
void call(Function function, Arguments... arguments) {
    pral_error error = {};
    error.size = sizeof error;
    if (const pral_status status = function(arguments..., &error); status != PRAL_OK)
        throw Error(status, error.index, error.text);
}

struct Free {
    void operator()(pral_distribution* object) const { pral_distribution_free(object); }
    void operator()(pral_stream* object) const { pral_stream_free(object); }
};
template <class Handle>
using Owner = std::unique_ptr<Handle, Free>;

/// The object that function(arguments..., &object, &error) makes.
template <class Handle, class Function, class... Arguments>
Owner<Handle> made(Function function, Arguments... arguments) {
    Handle* object = nullptr;
    call(function, arguments..., &object);
    return Owner<Handle>(object);
}

}  // namespace door

/// A stream of random numbers. It may be moved, not copied by accident: copy() makes another that stands at the same place.
class Stream {
  public:
    explicit Stream(std::uint64_t seed) : Stream(std::span<const std::uint64_t>(&seed, 1)) {}
    explicit Stream(std::span<const std::uint64_t> words)
        : stream_(door::made<pral_stream>(pral_stream_make, words.data(), words.size())) {}

    Stream child(std::uint64_t id) const {
        return Stream(door::made<pral_stream>(pral_stream_child, get(), id));
    }
    Stream child(const std::string& name) const {
        return Stream(door::made<pral_stream>(pral_stream_child_named, get(), name.c_str()));
    }
    Stream copy() const { return Stream(door::made<pral_stream>(pral_stream_copy, get())); }

    std::vector<std::uint64_t> state() const {
        std::size_t needed = 0;
        door::call(pral_stream_state, get(), nullptr, std::size_t{0}, &needed);
        std::vector<std::uint64_t> words(needed);
        door::call(pral_stream_state, get(), words.data(), words.size(), nullptr);
        return words;
    }
    static Stream restored(std::span<const std::uint64_t> words) {
        return Stream(door::made<pral_stream>(pral_stream_restore, words.data(), words.size()));
    }

    void fill(std::span<double> out) { door::call(pral_uniforms, get(), out.data(), out.size()); }

    pral_stream* get() const { return stream_.get(); }

  private:
    explicit Stream(door::Owner<pral_stream> stream) : stream_(std::move(stream)) {}
    door::Owner<pral_stream> stream_;
};

using Moments = pral_moment_values;
struct Interval {
    double lower, upper;
};

/// A distribution of one variable; see objects.h for what its functions mean. Arrays go in and out as spans of one size.
class Distribution {
  public:
    Distribution(const std::string& family, std::initializer_list<double> parameters)
        : Distribution(family, std::span<const double>(parameters.begin(), parameters.size())) {}
    Distribution(const std::string& family, std::span<const double> parameters)
        : distribution_(door::made<pral_distribution>(pral_distribution_make, family.c_str(),
                                                      parameters.data(), nullptr, parameters.size())) {}
    /// With tables: each parameter an array, a number one of one element.
    Distribution(const std::string& family, const std::vector<std::vector<double>>& parameters) {
        std::vector<double> numbers;
        std::vector<std::size_t> lengths;
        for (const std::vector<double>& parameter : parameters) {
            numbers.insert(numbers.end(), parameter.begin(), parameter.end());
            lengths.push_back(parameter.size());
        }
        distribution_ = door::made<pral_distribution>(pral_distribution_make, family.c_str(), numbers.data(),
                                                      lengths.data(), lengths.size());
    }
    static Distribution parse(const std::string& text) {
        return Distribution(door::made<pral_distribution>(pral_distribution_parse, text.c_str()));
    }
    static Distribution mixture(std::span<const Distribution> components, std::span<const double> weights) {
        if (components.size() != weights.size())
            throw Error(PRAL_ERROR_ARGUMENT, -1, "a mixture needs a weight for each component");
        std::vector<const pral_distribution*> handles;
        for (const Distribution& component : components) handles.push_back(component.get());
        return Distribution(
            door::made<pral_distribution>(pral_mixture, handles.data(), weights.data(), handles.size()));
    }

    Distribution truncated(double lower, double upper) const { return kept(lower, upper, 0); }
    Distribution truncated_to_percentiles(double lower, double upper) const {
        return kept(lower, upper, PRAL_LOWER_IS_PERCENTILE | PRAL_UPPER_IS_PERCENTILE);
    }
    Distribution shifted(double shift) const {
        return Distribution(door::made<pral_distribution>(pral_shifted, get(), shift));
    }
    Distribution scaled(double factor) const {
        return Distribution(door::made<pral_distribution>(pral_scaled, get(), factor));
    }
    Distribution copy() const {
        return Distribution(door::made<pral_distribution>(pral_distribution_copy, get()));
    }

    std::string text() const {
        std::size_t needed = 0;
        door::call(pral_distribution_describe, get(), nullptr, std::size_t{0}, &needed);
        std::string text(needed, '\0');
        door::call(pral_distribution_describe, get(), text.data(), text.size(), nullptr);
        text.pop_back();
        return text;
    }

#define PRAL_EVALUATE(NAME)                                                                             \
    double NAME(double x) const {                                                                       \
        door::call(pral_##NAME, get(), &x, &x, std::size_t{1});                                         \
        return x;                                                                                       \
    }                                                                                                   \
    void NAME(std::span<const double> in, std::span<double> out) const {                                \
        if (in.size() != out.size()) throw Error(PRAL_ERROR_ARGUMENT, -1, "in and out differ in size"); \
        door::call(pral_##NAME, get(), in.data(), out.data(), in.size());                               \
    }
    PRAL_EVALUATE(pdf)
    PRAL_EVALUATE(logpdf)
    PRAL_EVALUATE(cdf)
    PRAL_EVALUATE(logcdf)
    PRAL_EVALUATE(sf)
    PRAL_EVALUATE(logsf)
    PRAL_EVALUATE(quantile)
    PRAL_EVALUATE(upper_quantile)
    PRAL_EVALUATE(log_quantile)
    PRAL_EVALUATE(log_upper_quantile)
    PRAL_EVALUATE(upper_tail_mean)
    PRAL_EVALUATE(lower_tail_mean)
    PRAL_EVALUATE(limited_mean)
#undef PRAL_EVALUATE

    Moments moments() const {
        Moments moments = {};
        moments.size = sizeof moments;
        door::call(pral_moments, get(), &moments);
        return moments;
    }
    double mode() const {
        double mode = 0;
        door::call(pral_mode, get(), &mode);
        return mode;
    }
    Interval support() const {
        Interval ends = {};
        door::call(pral_support, get(), &ends.lower, &ends.upper);
        return ends;
    }

    void sample(Stream& stream, std::span<double> out) const {
        door::call(pral_sample, get(), stream.get(), out.data(), out.size());
    }
    std::vector<double> sample(Stream& stream, std::size_t n) const {
        std::vector<double> values(n);
        sample(stream, values);
        return values;
    }

    const pral_distribution* get() const { return distribution_.get(); }

  private:
    explicit Distribution(door::Owner<pral_distribution> distribution)
        : distribution_(std::move(distribution)) {}
    Distribution kept(double lower, double upper, std::int32_t flags) const {
        return Distribution(door::made<pral_distribution>(pral_truncated, get(), lower, upper, flags));
    }
    door::Owner<pral_distribution> distribution_;
};

/// `count` points of the unit cube by rows. The stream may be null for Sobol's and Halton's sequences.
inline std::vector<double> points(std::int32_t design, Stream* stream, std::size_t count,
                                  std::size_t dimensions) {
    std::vector<double> out(count * dimensions);
    door::call(pral_points, design, stream == nullptr ? nullptr : stream->get(), out.data(), count,
               dimensions);
    return out;
}

}  // namespace pral

#endif  // PRAL_OBJECTS_HPP
