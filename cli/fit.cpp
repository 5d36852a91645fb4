// pral fit: families fitted to columns of numbers, the best first.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>

#include "arguments.h"
#include "errors.h"
#include "fit_data.h"
#include "fit_report.h"
#include "progress.h"
#include "text.h"

namespace cli {

namespace {

bool can_be_fitted(const Family& family) {
    pral_family info = {};
    info.size = sizeof info;
    pral::door::call(pral_family_info, family.name.c_str(), &info);
    return info.fittable != 0;
}

/// LognormalB is LognormalE in another base: it stands back unless it is asked for.
std::vector<std::string> all_of_kind(const std::string& kind) {
    std::vector<std::string> names;
    for (const Family& family : families()) {
        if (family.kind == kind && can_be_fitted(family) && family.name != "LognormalB")
            names.push_back(family.name);
    }
    return names;
}

/// The names that the options choose; none where the library is to choose.
std::vector<std::string> chosen(const FitOptions& options, const FitData& data) {
    if (!options.families.empty() && !options.kind.empty())
        throw UsageError("--dist and --kind: only one of them can be given");
    std::vector<std::string> names;
    for (const std::string& name : options.families) {
        const Family& family = find_family(name);
        if (!can_be_fitted(family)) throw UsageError(fmt::format("{} cannot be fitted", family.name));
        names.push_back(family.name);
    }
    const std::string& kind = options.kind;
    if (kind.empty()) return names;
    if (kind != "discrete" && kind != "continuous")
        throw UsageError(fmt::format("--kind: continuous or discrete is wanted, not {}", kind));
    if (kind == "discrete" && data.exact() && !data.whole()) {
        const auto fraction = [](double value) { return value != std::floor(value); };
        throw UsageError(fmt::format("--kind discrete: {} is not a whole number",
                                     number_text(*std::ranges::find_if(data.left, fraction))));
    }
    return all_of_kind(kind);
}

bool is_discrete(const std::string& name) { return find_family(name).kind == "discrete"; }

/// A value for each parameter, NaN where it is free.
std::vector<double> held(const FitOptions& options, const std::vector<std::string>& names) {
    if (options.held.empty()) return {};
    if (names.size() != 1) throw UsageError("--hold goes with one --dist, whose parameter it holds");
    const Family& family = find_family(names.front());
    std::vector<double> values(family.parameters.size(), NAN);
    for (const std::string& text : options.held) {
        const auto parts = split(text, '=');
        const auto found = std::ranges::find_if(family.parameters, [&](const Parameter& parameter) {
            return lower_case(parameter.name) == lower_case(parts[0]);
        });
        if (parts.size() != 2 || found == family.parameters.end())
            throw UsageError(
                fmt::format("--hold: \"NAME=NUMBER\" is wanted, with a parameter of {} ({}), not {}",
                            family.name, parameter_names(family), shown(text)));
        values[static_cast<std::size_t>(found - family.parameters.begin())] =
            parse_real(parts[1], "--hold " + found->name);
    }
    return values;
}

double positive(const std::optional<double>& value, double otherwise, const char* option) {
    if (value && !(*value > 0)) throw UsageError(fmt::format("{}: a positive number is wanted", option));
    return value.value_or(otherwise);
}

std::size_t count_of(const std::optional<double>& value, std::size_t otherwise, double most,
                     const char* option) {
    if (!value) return otherwise;
    if (!(*value >= 1 && *value <= most && *value == std::floor(*value)))
        throw UsageError(fmt::format("{}: a whole number, 1 or more, is wanted", option));
    constexpr double kLargest = 1e15;
    return static_cast<std::size_t>(std::min(*value, kLargest));
}

pral::FitOptions library_options(const FitOptions& options) {
    pral::FitOptions how;
    how.lower = options.min.value_or(how.lower);
    how.upper = options.max.value_or(how.upper);
    if (!(how.lower < how.upper)) throw UsageError("--min must be below --max");
    how.shift = options.shift;
    how.method = options.method;
    how.cell = positive(options.cell, how.cell, "--cell");
    how.seconds = positive(options.timeout, how.seconds, "--timeout");
    how.threads = static_cast<std::int32_t>(count_of(options.threads, 0, 1024, "--threads"));
    return how;
}

double value_of(const pral::FitValues& values, Criterion criterion) {
    return criterion == Criterion::aic ? values.aic : criterion == Criterion::aicc ? values.aicc : values.bic;
}

FitRow row_of(pral::Fit fit, std::string equal_to, Criterion criterion) {
    const pral::FitValues values = fit.values();
    std::vector<double> parameters = fit.parameters(), errors = fit.standard_errors();
    std::vector<std::string> names;
    for (const Parameter& parameter : find_family(values.family).parameters) names.push_back(parameter.name);
    if (names.size() < parameters.size()) names.emplace_back("shift");
    return {.fit = std::move(fit),
            .values = values,
            .equal_to = std::move(equal_to),
            .criterion = value_of(values, criterion),
            .names = std::move(names),
            .parameters = std::move(parameters),
            .errors = std::move(errors)};
}

bool compares(const FitRow& row) { return row.values.kind != PRAL_FIT_CELLS; }

/// The library's order of kinds, by the criterion within them; differences from the least, and what it is worth.
void rank_by_criterion(std::vector<FitRow>& rows) {
    std::ranges::stable_sort(rows, [](const FitRow& a, const FitRow& b) {
        return a.values.kind != b.values.kind ? a.values.kind < b.values.kind : a.criterion < b.criterion;
    });
    const bool any = std::ranges::any_of(rows, compares);
    double least = INFINITY, sum = 0;
    for (const FitRow& row : rows) {
        if (compares(row) || !any) least = std::min(least, row.criterion);
    }
    for (FitRow& row : rows) {
        // Infinite where there are too few data for the criterion.
        row.difference = std::isfinite(row.criterion) ? row.criterion - least : INFINITY;
        row.weight = compares(row) ? std::exp(-0.5 * row.difference) : 0;
        sum += row.weight;
    }
    for (FitRow& row : rows) row.weight = sum > 0 ? row.weight / sum : 0;
}

/// Runs `body`; where the library refuses a row of the file, the message says which.
template <class Body>
void with_lines(const FitData& data, const FitOptions& options, Body body) {
    try {
        body();
    } catch (const pral::Error& error) {
        if (error.code() != PRAL_ERROR_DATA || error.index() < 0) throw;
        throw UsageError(fmt::format("{}:{}: {}", shown(options.file),
                                     data.lines[static_cast<std::size_t>(error.index())], error.what()));
    }
}

FitReport fitted(const FitData& data, const FitOptions& options) {
    const std::vector<std::string> names = chosen(options, data);
    pral::FitOptions how = library_options(options);
    how.held = held(options, names);
    if (options.shift && (names.empty() ? data.whole() : std::ranges::any_of(names, is_discrete)))
        throw UsageError("--shift: only continuous families are shifted (--kind continuous chooses them)");
    const bool counts = names.empty() ? data.whole() : std::ranges::all_of(names, is_discrete);
    if (data.exact() && data.least == data.greatest && !counts)
        throw UsageError(fmt::format("{}: all values are {}, too few for a continuous family",
                                     shown(options.file), number_text(data.least)));
    FitReport report;
    with_lines(data, options, [&] {
        if (names.size() == 1) {
            report.tried = 1;
            report.rows.push_back(
                row_of(pral::Fit(names.front(), data.observations(), how), "", options.rank));
            return;
        }
        Progress progress("families");
        const pral::Ranking ranking(data.observations(), how, names, [&](std::size_t done, std::size_t of) {
            report.tried = of;
            progress.at(done, of);
            return true;
        });
        for (std::size_t i = 0; i < ranking.size(); ++i) {
            pral::Ranked ranked = ranking[i];
            report.rows.push_back(row_of(std::move(ranked.fit), ranked.equal_to, options.rank));
        }
        report.left_out = ranking.left_out();
        for (auto& [family, why] : report.left_out) {
            if (why.starts_with(family + ": ")) why.erase(0, family.size() + 2);
        }
    });
    rank_by_criterion(report.rows);
    return report;
}

/// Replicates, with a bar that counts them.
template <class Body>
void replicated(const FitRow& row, const FitOptions& options, std::int32_t source, Body body) {
    Progress progress(fmt::format("refits of {}", row.values.family));
    const std::size_t count = count_of(options.replicates, 999, 1e8, "--replicates");
    // Rows have streams of their own: what one of them shows does not depend on the others.
    const pral::Stream stream =
        pral::Stream(static_cast<std::uint64_t>(options.seed.value_or(1))).child(row.values.family);
    body(pral::Replication{.stream = stream,
                           .count = count,
                           .source = source,
                           .threads = static_cast<std::int32_t>(options.threads.value_or(0)),
                           .progress = [&](std::size_t done) {
                               progress.at(done, count);
                               return true;
                           }});
}

/// The ends between which the middle `level` of the replicates lie, of each parameter.
std::vector<pral::Interval> bootstrap_intervals(const FitRow& row, const FitData& data,
                                                const FitOptions& options) {
    std::vector<pral::Interval> intervals;
    const bool censored = !data.exact();
    replicated(row, options, censored ? PRAL_REPLICATE_DATA : PRAL_REPLICATE_FIT,
               [&](const pral::Replication& how) {
                   for (std::size_t i = 0; i < row.names.size(); ++i)
                       intervals.push_back(row.fit.parameter_interval(i, *options.interval, how));
               });
    return intervals;
}

/// Runs `body`, which leaves NaN where a fit has no such thing, one at an edge for example.
template <class Body>
void if_possible(Body body) {
    try {
        body();
    } catch (const pral::Error& error) {
        if (error.code() != PRAL_ERROR_DATA && error.code() != PRAL_ERROR_PARAMETER) throw;
    }
}

void add_intervals(FitRow& row, const FitData& data, const FitOptions& options) {
    row.intervals.assign(row.names.size(), {NAN, NAN});
    if (options.interval_method == PRAL_BOOTSTRAP)
        return if_possible([&] { row.intervals = bootstrap_intervals(row, data, options); });
    for (std::size_t i = 0; i < row.names.size(); ++i) {
        if_possible([&] {
            row.intervals[i] = row.fit.parameter_interval(i, *options.interval, options.interval_method);
        });
    }
}

void add_test(FitRow& row, const FitOptions& options) {
    row.test = pral::TestValues{sizeof(pral::TestValues), NAN, NAN, NAN, 0, 0};
    if_possible([&] {
        replicated(row, options, PRAL_REPLICATE_FIT,
                   [&](const pral::Replication& how) { row.test = row.fit.test(*options.test, how); });
    });
}

/// What takes its time is done for the rows that are shown.
void add_what_is_wanted(std::vector<FitRow>& rows, const FitData& data, const FitOptions& options) {
    for (FitRow& row : rows) {
        if (options.test) add_test(row, options);
        if (options.interval) add_intervals(row, data, options);
    }
}

std::string told(const std::vector<pral::Ranking::LeftOut>& left_out) {
    std::map<std::string, std::vector<std::string>> reasons;
    for (const auto& [family, why] : left_out) reasons[why].push_back(family);
    std::string lines;
    for (const auto& [reason, names] : reasons)
        lines += fmt::format("\n  {} ({}): {}", reason, names.size(),
                             joined(names, ", ", [](const std::string& name) { return name; }));
    return lines;
}

void check(const FitOptions& options) {
    if (options.interval && !(*options.interval > 0 && *options.interval < 1))
        throw UsageError("--interval: a probability between 0 and 1 is wanted, such as 0.9");
    constexpr double kSeeds = 9007199254740992.0;
    if (options.seed &&
        !(*options.seed >= 0 && *options.seed <= kSeeds && *options.seed == std::floor(*options.seed)))
        throw UsageError("--seed: a whole number, 0 or more, is wanted");
    if (options.plot && options.format != Format::table)
        throw UsageError("--plot draws below a table; json has what a program needs to draw it");
}

/// How many rows are shown: where each of them takes its time, the first few unless more are asked for.
std::size_t rows_shown(const FitOptions& options, std::size_t all) {
    constexpr std::size_t kFew = 5;
    const bool slow = (options.test || options.interval) && options.families.empty();
    return std::min(all, count_of(options.top, slow ? kFew : all, INFINITY, "--top"));
}

}  // namespace

void fit(const FitOptions& options) {
    check(options);
    rows_shown(options, 1);
    const FitData data = read_fit_data(options);
    if (options.test && (!data.exact() || !data.weights.empty()))
        throw UsageError("--test takes exact values without weights");
    FitReport report = fitted(data, options);
    if (report.rows.empty()) throw std::runtime_error("No family could be fitted" + told(report.left_out));
    report.rows.erase(
        report.rows.begin() + static_cast<std::ptrdiff_t>(rows_shown(options, report.rows.size())),
        report.rows.end());
    add_what_is_wanted(report.rows, data, options);
    if (options.verbose) std::fprintf(stderr, "%zu families\n", report.tried);
    if (!report.left_out.empty() && (options.verbose || !options.families.empty()))
        std::fprintf(stderr, "%zu of %zu left out%s\n", report.left_out.size(), report.tried,
                     told(report.left_out).c_str());
    write_report(report, data, options);
}

}  // namespace cli
