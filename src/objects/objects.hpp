// pral_core for C++20: owners, spans and exceptions over objects.h, in this header alone.
//
//   pral::Distribution claim = pral::Distribution("Lognormal", {1000, 2500}).truncated(0, 50'000);
//   pral::Stream stream(42);
//   std::vector<double> losses = claim.sample(stream, 10'000);
//   double worst = claim.upper_tail_mean(0.99);
//
//   pral::Ranking ranking({losses});
//   pral::Fit best = ranking[0].fit;
#ifndef PRAL_OBJECTS_HPP
#define PRAL_OBJECTS_HPP

#include <pral_core/objects.h>

#include <cmath>
#include <cstdint>
#include <exception>
#include <functional>
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
    void operator()(pral_fit* object) const { pral_fit_free(object); }
    void operator()(pral_ranking* object) const { pral_ranking_free(object); }
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

/// The end of a truncation that is the quantile of this probability.
struct Percentile {
    double probability;
};

/// A distribution of one variable; see objects.h for what its functions mean. Arrays go in and out as spans of one size.
class Distribution {
  public:
    /// An end of a truncation: a value or a percentile.
    struct End {
        double number;
        bool is_percentile;
        End(double value) : number(value), is_percentile(false) {}
        End(Percentile percentile) : number(percentile.probability), is_percentile(true) {}
    };

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

    /// Given that it lies between two ends, which are kept: truncated(0, 50), truncated(0, Percentile{0.99}).
    Distribution truncated(End lower, End upper) const {
        const std::int32_t flags = (lower.is_percentile ? PRAL_LOWER_IS_PERCENTILE : 0) |
                                   (upper.is_percentile ? PRAL_UPPER_IS_PERCENTILE : 0);
        return Distribution(
            door::made<pral_distribution>(pral_truncated, get(), lower.number, upper.number, flags));
    }
    Distribution truncated_to_percentiles(double lower, double upper) const {
        return truncated(Percentile{lower}, Percentile{upper});
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
    friend class Fit;
    explicit Distribution(door::Owner<pral_distribution> distribution)
        : distribution_(std::move(distribution)) {}
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

/// What is known of the data, in columns; see pral_observations. Nothing of it is needed once a fit is made.
struct Observations {
    std::span<const double> left;
    /// Where they are empty: all are exact, count once, and are seen through the bounds of the options.
    std::span<const double> right = {}, weights = {}, lower = {}, upper = {};
};

namespace door {

/// They cannot fail.
inline pral_fit_options fit_defaults() noexcept {
    pral_fit_options options = {};
    pral_fit_defaults(&options, nullptr);
    return options;
}

inline const double* column_of(const Observations& observations, std::span<const double> column) {
    if (!column.empty() && column.size() != observations.left.size())
        throw Error(PRAL_ERROR_ARGUMENT, -1, "the columns of observations differ in size");
    return column.empty() ? nullptr : column.data();
}

inline pral_observations taken(const Observations& from) {
    return {sizeof(pral_observations),
            from.left.size(),
            from.left.data(),
            column_of(from, from.right),
            column_of(from, from.weights),
            column_of(from, from.lower),
            column_of(from, from.upper)};
}

/// A caller's progress function behind the door, which no exception may pass: it is kept and thrown on this side.
template <class... Counts>
class Watch {
  public:
    explicit Watch(const std::function<bool(Counts...)>& watcher) : watcher_(watcher) {}

    using Function = std::int32_t (*)(Counts..., void*);
    Function function() const { return watcher_ ? &step : nullptr; }
    void* context() { return this; }

    /// Runs `body`; what the progress function has thrown goes before the failure that it caused.
    template <class Body>
    void guard(Body body) {
        try {
            body();
        } catch (const Error&) {
            if (thrown_) std::rethrow_exception(thrown_);
            throw;
        }
    }

  private:
    static std::int32_t step(Counts... counts, void* context) {
        Watch& watch = *static_cast<Watch*>(context);
        try {
            return watch.watcher_(counts...) ? 1 : 0;
        } catch (...) {
            watch.thrown_ = std::current_exception();
            return 0;
        }
    }
    const std::function<bool(Counts...)>& watcher_;
    std::exception_ptr thrown_;
};

}  // namespace door

/// How to fit; see pral_fit_options.
struct FitOptions {
    double lower = -HUGE_VAL, upper = HUGE_VAL;
    std::vector<double> held = {};  ///< a value for each parameter, NaN where it is free; empty: all are
    bool shift = false;
    std::int32_t method = PRAL_MAXIMUM_LIKELIHOOD;
    double cell = 0;
    double seconds = 60;
    std::int32_t threads = 0;

    pral_fit_options taken() const {
        return {sizeof(pral_fit_options),
                lower,
                upper,
                held.empty() ? nullptr : held.data(),
                held.size(),
                shift,
                method,
                cell,
                seconds,
                threads};
    }
};

/// Samples like that of a fit; see pral_replication. `progress` returns whether to go on.
struct Replication {
    const Stream& stream;
    std::size_t count = 999;
    std::int32_t source = PRAL_REPLICATE_FIT;
    std::int32_t threads = 0;
    std::function<bool(std::size_t done)> progress = {};
};

using FitValues = pral_fit_values;
using TestValues = pral_test_values;

struct Bootstrap {
    std::vector<double> parameters;  ///< a row for each replicate, NaN where its fit has failed
    std::size_t failed;
};

/// A family fitted to observations; see objects.h for what its functions mean.
class Fit {
  public:
    Fit(const std::string& family, const Observations& observations, const FitOptions& options = {}) {
        const pral_observations data = door::taken(observations);
        const pral_fit_options how = options.taken();
        fit_ = door::made<pral_fit>(pral_fit_make, family.c_str(), &data, &how);
    }

    /// Its texts stay as long as the fit.
    FitValues values() const {
        FitValues values = {};
        values.size = sizeof values;
        door::call(pral_fit_get, get(), &values);
        return values;
    }
    std::vector<double> parameters() const {
        std::vector<double> out(values().parameter_count);
        door::call(pral_fit_parameters, get(), out.data(), nullptr, nullptr, out.size());
        return out;
    }
    std::vector<double> standard_errors() const {
        std::vector<double> out(values().parameter_count);
        door::call(pral_fit_parameters, get(), nullptr, out.data(), nullptr, out.size());
        return out;
    }
    /// By rows.
    std::vector<double> covariance() const {
        const std::size_t count = values().parameter_count;
        std::vector<double> out(count * count);
        door::call(pral_fit_parameters, get(), nullptr, nullptr, out.data(), count);
        return out;
    }
    Distribution distribution() const {
        return Distribution(door::made<pral_distribution>(pral_fit_distribution, get()));
    }

    /// By PRAL_WALD or PRAL_PROFILE.
    Interval parameter_interval(std::size_t index, double level, std::int32_t method = PRAL_PROFILE) const {
        return interval(PRAL_OF_PARAMETER, static_cast<double>(index), method, level, nullptr);
    }
    Interval quantile_interval(double percentile, double level, std::int32_t method = PRAL_PROFILE) const {
        return interval(PRAL_OF_QUANTILE, percentile, method, level, nullptr);
    }
    /// By the bootstrap.
    Interval parameter_interval(std::size_t index, double level, const Replication& how) const {
        return interval(PRAL_OF_PARAMETER, static_cast<double>(index), PRAL_BOOTSTRAP, level, &how);
    }
    Interval quantile_interval(double percentile, double level, const Replication& how) const {
        return interval(PRAL_OF_QUANTILE, percentile, PRAL_BOOTSTRAP, level, &how);
    }
    Bootstrap bootstrap(const Replication& how) const {
        Bootstrap out = {std::vector<double>(how.count * values().parameter_count), 0};
        replicated(how, [&](const pral_replication* taken) {
            door::call(pral_fit_bootstrap, get(), taken, out.parameters.data(), &out.failed);
        });
        return out;
    }
    TestValues test(std::int32_t statistic, const Replication& how) const {
        TestValues out = {};
        out.size = sizeof out;
        replicated(how, [&](const pral_replication* taken) {
            door::call(pral_fit_test, get(), statistic, taken, &out);
        });
        return out;
    }

    const pral_fit* get() const { return fit_.get(); }

  private:
    friend class Ranking;
    explicit Fit(door::Owner<pral_fit> fit) : fit_(std::move(fit)) {}

    template <class Body>
    static void replicated(const Replication& how, Body body) {
        door::Watch<std::size_t> watch(how.progress);
        const pral_replication taken = {
            sizeof(pral_replication), how.stream.get(), how.count, how.source, how.threads,
            watch.function(),         watch.context()};
        watch.guard([&] { body(&taken); });
    }
    Interval interval(std::int32_t target, double which, std::int32_t method, double level,
                      const Replication* how) const {
        Interval ends = {};
        const auto find = [&](const pral_replication* taken) {
            door::call(pral_fit_interval, get(), target, which, method, level, taken, &ends.lower,
                       &ends.upper);
        };
        if (how == nullptr)
            find(nullptr);
        else
            replicated(*how, find);
        return ends;
    }
    door::Owner<pral_fit> fit_;
};

struct Ranked {
    Fit fit;
    double difference, weight;
    std::string equal_to;
};

/// The fits of several families, the best first; see pral_rank.
class Ranking {
  public:
    struct LeftOut {
        std::string family, why;
    };

    /// `progress` is called with how many fits are done, of how many, and returns whether to go on. Without families: all
    /// that suit the observations.
    explicit Ranking(const Observations& observations, const FitOptions& options = {},
                     std::span<const std::string> families = {},
                     const std::function<bool(std::size_t done, std::size_t of)>& progress = {}) {
        std::vector<const char*> names;
        for (const std::string& family : families) names.push_back(family.c_str());
        const pral_observations data = door::taken(observations);
        const pral_fit_options how = options.taken();
        door::Watch<std::size_t, std::size_t> watch(progress);
        watch.guard([&] {
            ranking_ = door::made<pral_ranking>(pral_rank, names.empty() ? nullptr : names.data(),
                                                names.size(), &data, &how, watch.function(), watch.context());
        });
    }

    std::size_t size() const { return pral_ranking_count(ranking_.get()); }
    Ranked operator[](std::size_t index) const {
        pral_ranked row = {};
        row.size = sizeof row;
        pral_fit* fit = nullptr;
        door::call(pral_ranking_row, get(), index, &row, &fit);
        return {Fit(door::Owner<pral_fit>(fit)), row.difference, row.weight, row.equal_to};
    }
    std::vector<LeftOut> left_out() const {
        std::vector<LeftOut> all;
        const char* why = nullptr;
        while (const char* family = pral_ranking_left_out(get(), all.size(), &why))
            all.push_back({family, why});
        return all;
    }

    const pral_ranking* get() const { return ranking_.get(); }

  private:
    door::Owner<pral_ranking> ranking_;
};

}  // namespace pral

#endif  // PRAL_OBJECTS_HPP
