// Fits, what follows from them, and rankings.
#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

#include "inference/goodness.h"
#include "inference/intervals.h"
#include "inference/limits.h"
#include "inference/rank.h"
#include "objects/handles.h"
#include "objects/models.h"

namespace inference = pral::inference;
using namespace pral::objects;
using inference::Fit;

struct pral_fit {
    static constexpr std::uint64_t kMark = 0x7072616c66697473;
    std::uint64_t mark = kMark;
    std::shared_ptr<const Fit> fit;
    std::string limit;
};
struct pral_ranking {
    static constexpr std::uint64_t kMark = 0x7072616c72616e6b;
    struct Row {
        inference::Ranked ranked;
        std::string equal_to;
    };
    struct LeftOut {
        std::string family, why;
    };
    std::uint64_t mark = kMark;
    std::vector<Row> rows;
    std::vector<LeftOut> left_out;
};

namespace {

/// Runs `body`; what fits throw becomes a failure of the door.
template <class Body>
pral_status fitting_guarded(pral_error* error, Body body) noexcept {
    return guarded(error, [&] {
        try {
            body();
        } catch (const inference::BadData& bad) {
            refuse(PRAL_ERROR_DATA, bad.what(), bad.index);
        } catch (const pral::fitting::Failure& failure) {
            const std::string why = without_prefix(failure.what());
            refuse(PRAL_ERROR_DATA, why.empty() ? "these data cannot be fitted" : why);
        } catch (const pral::fitting::TimedOut&) {
            refuse(PRAL_ERROR_TIMEOUT, "the time limit was reached");
        } catch (const inference::Stopped&) {
            refuse(PRAL_ERROR_STOPPED, "stopped");
        }
    });
}

const Fit& checked_fit(const pral_fit* fit) { return *checked(fit, "fit").fit; }

std::shared_ptr<const inference::Observations> observed(const pral_observations* given,
                                                        const pral_fit_options& options) {
    const pral_observations& from = sized(given, "observations");
    required_array(from.left, from.n, "observations->left");
    const auto column = [&](const double* values) {
        return values == nullptr ? std::span<const double>() : std::span(values, from.n);
    };
    return std::make_shared<const inference::Observations>(
        inference::Columns{column(from.left),
                           column(from.right),
                           column(from.weights),
                           column(from.lower),
                           column(from.upper),
                           {options.lower, options.upper}});
}

constexpr pral_fit_options kDefaults = {sizeof(pral_fit_options), -HUGE_VAL, HUGE_VAL, nullptr, 0, 0,
                                        PRAL_MAXIMUM_LIKELIHOOD,  0,         60,       0};

pral_fit_options options_of(const pral_fit_options* given) {
    const pral_fit_options options = given == nullptr ? kDefaults : sized(given, "options");
    if (options.method != PRAL_MAXIMUM_LIKELIHOOD && options.method != PRAL_MAXIMUM_SPACINGS)
        refuse(PRAL_ERROR_ARGUMENT, "there is no such method");
    if (!(options.cell >= 0 && std::isfinite(options.cell)))
        refuse(PRAL_ERROR_ARGUMENT, "the cell must be finite and not negative");
    if (!(options.seconds > 0)) refuse(PRAL_ERROR_ARGUMENT, "the time limit must be positive");
    if (!(options.lower < options.upper))
        refuse(PRAL_ERROR_ARGUMENT,
               "the lower bound must be below the upper one: begin with pral_fit_defaults");
    required_array(options.held, options.held_count, "options->held");
    return options;
}

inference::Request request_of(const pral_fit_options& options) {
    inference::Request request;
    request.held.assign(options.held, options.held + options.held_count);
    request.shift = options.shift != 0;
    request.method = options.method == PRAL_MAXIMUM_SPACINGS ? inference::Criterion::spacings
                                                             : inference::Criterion::density;
    request.cell = options.cell;
    request.seconds = options.seconds;
    return request;
}

inference::Replication replication_of(const pral_replication* given) {
    const pral_replication& how = sized(given, "how");
    constexpr std::size_t kMost = 100'000'000;
    if (how.count == 0 || how.count > kMost)
        refuse(PRAL_ERROR_ARGUMENT, "there must be at least one replicate and at most 100 million");
    if (how.source != PRAL_REPLICATE_FIT && how.source != PRAL_REPLICATE_DATA)
        refuse(PRAL_ERROR_ARGUMENT, "there is no such source of replicates");
    inference::Replication replication;
    replication.source = how.source == PRAL_REPLICATE_FIT ? inference::Source::fit : inference::Source::data;
    replication.count = how.count;
    replication.stream = &checked(how.stream, "how->stream").stream;
    replication.threads = how.threads;
    if (how.progress != nullptr) {
        replication.progress = [call = how.progress, context = how.context](std::size_t done) {
            return call(done, context) != 0;
        };
    }
    return replication;
}

inference::Target target_of(const Fit& fit, int32_t target, double which) {
    if (target == PRAL_OF_PARAMETER) {
        if (!(which >= 0 && which < static_cast<double>(fit.parameter_count()) && which == std::floor(which)))
            refuse(PRAL_ERROR_ARGUMENT, "there is no parameter of that index");
        return {inference::Target::Kind::parameter, static_cast<std::size_t>(which), 0};
    }
    if (target != PRAL_OF_QUANTILE) refuse(PRAL_ERROR_ARGUMENT, "there is no such target");
    if (!(which > 0 && which < 1)) refuse(PRAL_ERROR_ARGUMENT, "the percentile must be between 0 and 1");
    return {inference::Target::Kind::quantile, 0, which};
}

pral_fit* handle_of(std::shared_ptr<const Fit> fit) {
    std::string limit(inference::limit_of(*fit, models()));
    return new pral_fit{.fit = std::move(fit), .limit = std::move(limit)};
}

std::vector<const inference::Model*> chosen(const char* const* families, std::size_t count,
                                            const inference::Observations& observations) {
    if (families == nullptr) return inference::suitable(models(), observations);
    std::vector<const inference::Model*> all;
    for (std::size_t i = 0; i < count; ++i) {
        const inference::Model* const named = &model(&required(families[i], "families"));
        if (std::ranges::find(all, named) == all.end()) all.push_back(named);
    }
    return all;
}

}  // namespace

pral_status pral_fit_defaults(pral_fit_options* options, pral_error* error) {
    return guarded(error, [&] { required(options, "options") = kDefaults; });
}

pral_status pral_fit_make(const char* family, const pral_observations* observations,
                          const pral_fit_options* options, pral_fit** out, pral_error* error) {
    if (out != nullptr) *out = nullptr;
    return fitting_guarded(error, [&] {
        required(out, "out");
        const inference::Model& of = model(&required(family, "family"));
        const pral_fit_options how = options_of(options);
        auto fit = std::make_shared<const Fit>(of, observed(observations, how), request_of(how));
        if (fit->estimate().kind == inference::Kind::unfinished)
            refuse(PRAL_ERROR_NO_CONVERGENCE, "no maximum of the likelihood was found");
        *out = handle_of(std::move(fit));
    });
}

void pral_fit_free(pral_fit* fit) {
    if (fit == nullptr || fit->mark != pral_fit::kMark) return;
    fit->mark = 0;
    delete fit;
}

pral_status pral_fit_get(const pral_fit* fit, pral_fit_values* out, pral_error* error) {
    return guarded(error, [&] {
        const Fit& of = checked_fit(fit);
        const inference::Estimate& estimate = of.estimate();
        sized(out, "out") = {sizeof(pral_fit_values),
                             of.model().family->name.data(),
                             static_cast<int32_t>(estimate.kind),
                             estimate.free,
                             of.parameter_count(),
                             of.observations().count(),
                             estimate.log_likelihood,
                             of.aic(),
                             of.aicc(),
                             of.bic(),
                             estimate.cell,
                             fit->limit.c_str()};
    });
}

pral_status pral_fit_parameters(const pral_fit* fit, double* parameters, double* standard_errors,
                                double* covariance, size_t count, pral_error* error) {
    return guarded(error, [&] {
        const Fit& of = checked_fit(fit);
        if (count != of.parameter_count())
            refuse(PRAL_ERROR_ARGUMENT, "count must be that of the parameters");
        for (std::size_t i = 0; i < count; ++i) {
            if (parameters != nullptr) parameters[i] = of.estimate().parameters[i];
            if (standard_errors != nullptr) standard_errors[i] = std::sqrt(of.covariance()(i, i));
            for (std::size_t j = 0; covariance != nullptr && j < count; ++j)
                covariance[i * count + j] = of.covariance()(i, j);
        }
    });
}

pral_status pral_fit_distribution(const pral_fit* fit, pral_distribution** out, pral_error* error) {
    return made(out, error, [&] {
        const pral::Shared distribution = checked_fit(fit).distribution();
        if (distribution == nullptr)
            refuse(PRAL_ERROR_PARAMETER, "the parameters are at an edge that is no distribution");
        return distribution;
    });
}

pral_status pral_fit_bootstrap(const pral_fit* fit, const pral_replication* how, double* out, size_t* failed,
                               pral_error* error) {
    return fitting_guarded(error, [&] {
        const Fit& of = checked_fit(fit);
        const inference::Replication replication = replication_of(how);
        required(out, "out");
        const std::size_t width = of.parameter_count();
        std::vector<double> rows(replication.count * width, pral::numerics::kNaN);
        inference::replicate(of, replication, [&](std::size_t i, const inference::Replicate* made) {
            if (made != nullptr)
                std::copy_n(made->estimate.parameters.begin(), width,
                            rows.begin() + static_cast<std::ptrdiff_t>(i * width));
        });
        std::ranges::copy(rows, out);
        std::size_t missing = 0;
        for (std::size_t i = 0; i < replication.count; ++i) missing += std::isnan(rows[i * width]);
        if (failed != nullptr) *failed = missing;
    });
}

pral_status pral_fit_interval(const pral_fit* fit, int32_t target, double which, int32_t method, double level,
                              const pral_replication* how, double* lower, double* upper, pral_error* error) {
    return fitting_guarded(error, [&] {
        const Fit& of = checked_fit(fit);
        const inference::Target wanted = target_of(of, target, which);
        if (!(level > 0 && level < 1)) refuse(PRAL_ERROR_ARGUMENT, "the level must be between 0 and 1");
        required(lower, "lower");
        required(upper, "upper");
        inference::Range range = {};
        std::size_t failed = 0;
        if (method == PRAL_WALD)
            range = inference::wald_interval(of, wanted, level);
        else if (method == PRAL_PROFILE)
            range = inference::profile_interval(of, wanted, level);
        else if (method == PRAL_BOOTSTRAP)
            range = inference::bootstrap_interval(of, wanted, level, replication_of(how), failed);
        else
            refuse(PRAL_ERROR_ARGUMENT, "there is no such method");
        *lower = range.lower;
        *upper = range.upper;
    });
}

pral_status pral_fit_test(const pral_fit* fit, int32_t statistic, const pral_replication* how,
                          pral_test_values* out, pral_error* error) {
    return fitting_guarded(error, [&] {
        const Fit& of = checked_fit(fit);
        if (statistic < PRAL_KOLMOGOROV_SMIRNOV || statistic > PRAL_CHI_SQUARE)
            refuse(PRAL_ERROR_ARGUMENT, "there is no such statistic");
        pral_test_values& result = sized(out, "out");
        const inference::TestResult found =
            inference::test(of, static_cast<inference::Statistic>(statistic), replication_of(how));
        result = {sizeof(pral_test_values), found.statistic, found.p, found.p_error,
                  found.replicates,         found.failed};
    });
}

pral_status pral_rank(const char* const* families, size_t count, const pral_observations* observations,
                      const pral_fit_options* options, int32_t (*progress)(size_t, size_t, void*),
                      void* context, pral_ranking** out, pral_error* error) {
    if (out != nullptr) *out = nullptr;
    return fitting_guarded(error, [&] {
        required(out, "out");
        const pral_fit_options how = options_of(options);
        if (how.held_count > 0)
            refuse(PRAL_ERROR_ARGUMENT, "parameters are held in the fit of one family only");
        const auto data = observed(observations, how);
        const std::vector<const inference::Model*> all = chosen(families, count, *data);
        std::function<bool(std::size_t)> step;
        if (progress != nullptr)
            step = [&](std::size_t done) { return progress(done, all.size(), context) != 0; };
        inference::Ranking found = inference::rank(all, data, request_of(how), how.threads, step);
        auto ranking = std::make_unique<pral_ranking>();
        for (inference::Ranked& ranked : found.fits) {
            std::string equal_to;
            for (const std::string_view name : ranked.equal)
                equal_to += (equal_to.empty() ? "" : ", ") + std::string(name);
            ranking->rows.push_back({std::move(ranked), std::move(equal_to)});
        }
        for (const auto& [family, why] : found.left_out)
            ranking->left_out.push_back({std::string(family), without_prefix(why)});
        *out = ranking.release();
    });
}

void pral_ranking_free(pral_ranking* ranking) {
    if (ranking == nullptr || ranking->mark != pral_ranking::kMark) return;
    ranking->mark = 0;
    delete ranking;
}

size_t pral_ranking_count(const pral_ranking* ranking) {
    return ranking != nullptr && ranking->mark == pral_ranking::kMark ? ranking->rows.size() : 0;
}

pral_status pral_ranking_row(const pral_ranking* ranking, size_t index, pral_ranked* out, pral_fit** fit,
                             pral_error* error) {
    if (fit != nullptr) *fit = nullptr;
    return fitting_guarded(error, [&] {
        const pral_ranking& of = checked(ranking, "ranking");
        if (index >= of.rows.size()) refuse(PRAL_ERROR_ARGUMENT, "the ranking has no such row");
        const pral_ranking::Row& row = of.rows[index];
        sized(out, "out") = {sizeof(pral_ranked), row.ranked.difference, row.ranked.weight,
                             row.equal_to.c_str()};
        if (fit != nullptr) *fit = handle_of(row.ranked.fit);
    });
}

const char* pral_ranking_left_out(const pral_ranking* ranking, size_t index, const char** why) {
    if (ranking == nullptr || ranking->mark != pral_ranking::kMark || index >= ranking->left_out.size())
        return nullptr;
    if (why != nullptr) *why = ranking->left_out[index].why.c_str();
    return ranking->left_out[index].family.c_str();
}
