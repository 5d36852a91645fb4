// pral fit: candidate families fitted to a column of numbers, the best first.
#include <fmt/format.h>
#include <pral_core/core_api.h>

#include <algorithm>
#include <array>
#include <cfloat>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <limits>
#include <map>

#include "arguments.h"
#include "classic_table.h"
#include "commands.h"
#include "errors.h"
#include "fit_table.h"
#include "progress.h"
#include "text.h"

namespace cli {

namespace {

using Candidates = std::vector<const Family*>;

struct Result {
    const Family* family;
    Fitted fitted;
    std::array<double, 3> criteria;  // at the place of each Criterion
    double milliseconds;
};

/// What was fitted, and what was not: the reasons, each with its families.
struct Results {
    std::vector<Result> fitted;
    std::map<std::string, Candidates> refused;
};

bool is_whole(double value) { return value == std::floor(value); }

/// LognormalB is LognormalE in another base: it stands back unless it is asked for.
Candidates suitable(const std::string& kind) {
    Candidates candidates;
    for (const Family& family : families()) {
        if (family.kind == kind && can_be_fitted(family) && family.name != "LognormalB")
            candidates.push_back(&family);
    }
    return candidates;
}

Candidates named(const std::vector<std::string>& names) {
    Candidates candidates;
    for (const std::string& name : names) {
        const Family& family = find_family(name);
        if (!can_be_fitted(family)) throw UsageError(fmt::format("{} cannot be fitted", family.name));
        if (std::ranges::find(candidates, &family) == candidates.end()) candidates.push_back(&family);
    }
    return candidates;
}

Candidates choose_candidates(const FitOptions& options, const std::vector<double>& values) {
    if (!options.families.empty() && !options.kind.empty())
        throw UsageError("--dist and --kind: only one of them can be given");
    if (!options.families.empty()) return named(options.families);
    const bool whole = std::ranges::all_of(values, is_whole);
    if (options.kind == "discrete" && !whole)
        throw UsageError(fmt::format("--kind discrete: {} is not a whole number",
                                     number_text(*std::ranges::find_if_not(values, is_whole))));
    if (!options.kind.empty() && options.kind != "discrete" && options.kind != "continuous")
        throw UsageError(fmt::format("--kind: continuous or discrete is wanted, not {}", options.kind));
    return suitable(!options.kind.empty() ? options.kind : whole ? "discrete" : "continuous");
}

/// Akaike's criterion, the same corrected for small samples (Hurvich and Tsai 1989), and Schwarz's.
std::array<double, 3> criteria_of(double log_likelihood, int parameters, std::size_t count) {
    const double k = parameters, n = static_cast<double>(count);
    const double aic = 2 * k - 2 * log_likelihood;
    const double aicc = n - k - 1 > 0 ? aic + 2 * k * (k + 1) / (n - k - 1) : DBL_MAX;
    return {aic, aicc, k * std::log(n) - 2 * log_likelihood};
}

Result fit_one(const Family& family, const FitData& data) {
    const auto start = std::chrono::steady_clock::now();
    const Fitted fitted = fit(family, data);
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    if (!(std::fabs(fitted.log_likelihood) < DBL_MAX))
        throw std::runtime_error("the parameters found have no finite likelihood");
    const int parameters = free_parameters(family) + (fitted.shift ? 1 : 0);
    return {&family, fitted, criteria_of(fitted.log_likelihood, parameters, data.values.size()),
            std::round(time.count() * 1000) / 1000};
}

Results fit_all(const Candidates& candidates, const FitData& data) {
    Results results;
    Progress progress(candidates.size());
    for (const Family* family : candidates) {
        progress.step(family->name);
        try {
            results.fitted.push_back(fit_one(*family, data));
        } catch (const std::exception& error) {
            results.refused[error.what()].push_back(family);
        }
    }
    return results;
}

std::string told(const std::map<std::string, Candidates>& refused) {
    std::string lines;
    for (const auto& [reason, families] : refused) {
        lines += fmt::format("\n  {} ({}): {}", reason, families.size(),
                             joined(families, ", ", [](const Family* family) { return family->name; }));
    }
    return lines;
}

NamedNumbers named_parameters(const Result& result) {
    NamedNumbers numbers;
    for (std::size_t i = 0; i < result.fitted.parameters.size(); ++i)
        numbers.emplace_back(result.family->parameters[i].name, result.fitted.parameters[i]);
    if (result.fitted.shift) numbers.emplace_back("shift", *result.fitted.shift);
    return numbers;
}

/// What was read, before all else that is told of it.
std::string told(const CsvColumn& column, const std::string& file) {
    const auto [least, greatest] = std::ranges::minmax(column.values);
    std::string line =
        fmt::format("{}, column {}", file == "-" ? "standard input" : shown(file), column.number);
    if (!column.name.empty()) line += fmt::format(" ({})", shown(column.name));
    line += fmt::format(" of {}: {} value{} from {} to {}, ", column.width, column.values.size(),
                        column.values.size() == 1 ? "" : "s", number_text(least), number_text(greatest));
    line += column.missing > 0 ? fmt::format("{} missing and left out", column.missing) : "none missing";
    if (column.decimal == DecimalMark::comma) line += "; decimal commas";
    if (!column.has_names) line += "; no row of names";
    return line + '\n';
}

void write_ranking(const std::vector<Result>& results, const FitOptions& options) {
    Rows rows(options.format, {"rank", "family", "AIC", "AICc", "BIC", "log_likelihood", "ms", "parameters"});
    double rank = 0;
    for (const Result& result : results) {
        if (++rank > options.top.value_or(DBL_MAX)) break;
        const auto [aic, aicc, bic] = result.criteria;
        rows.add({rank, result.family->name, Rounded{aic, 2}, Rounded{aicc, 2}, Rounded{bic, 2},
                  Rounded{result.fitted.log_likelihood, 2}, Rounded{result.milliseconds, 1},
                  named_parameters(result)});
    }
    rows.end();
}

}  // namespace

void fit(const FitOptions& options) {
    if (options.top && !(*options.top >= 1 && is_whole(*options.top)))
        throw UsageError("--top: a whole number, 1 or more, is wanted");
    const CsvColumn column = read_csv_column(read_file(options.file), options.file, options.csv);
    if (column.values.size() > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        throw UsageError(fmt::format("{}: more values than a fit can take", shown(options.file)));
    const FitData data = {column.values, options.min, options.max, options.shift};
    const Candidates candidates = choose_candidates(options, data.values);
    const auto discrete = [](const Family* family) { return family->kind == "discrete"; };
    if (options.shift && std::ranges::any_of(candidates, discrete))
        throw UsageError("--shift: only continuous families are shifted (--kind continuous chooses them)");
    const auto [least, greatest] = std::ranges::minmax(data.values);
    if (least == greatest && !std::ranges::all_of(candidates, discrete))
        throw UsageError(fmt::format("{}: all values are {}, too few for a continuous family",
                                     shown(options.file), number_text(least)));
    if (options.timeout) PralSetFitTimeout(classic_number(*options.timeout));

    Results results = fit_all(candidates, data);
    const auto& refused = results.refused;
    if (results.fitted.empty()) {
        throw std::runtime_error(refused.size() == 1 ? refused.begin()->first
                                                     : "No candidate could be fitted" + told(refused));
    }
    // Beside a table; what programs read holds the table alone.
    const std::string what = told(column, options.file);
    if (options.format == Format::table)
        write(what);
    else
        std::fputs(what.c_str(), stderr);
    if (options.verbose) {
        std::fprintf(stderr, "%zu %s families\n", candidates.size(),
                     options.families.empty() ? candidates.front()->kind.c_str() : "named");
    }
    if (!refused.empty() && (options.verbose || !options.families.empty())) {
        std::fprintf(stderr, "%zu of %zu left out%s\n", candidates.size() - results.fitted.size(),
                     candidates.size(), told(refused).c_str());
    }
    std::ranges::stable_sort(results.fitted, {}, [&](const Result& result) {
        return result.criteria[static_cast<std::size_t>(options.rank)];
    });
    write_ranking(results.fitted, options);
}

}  // namespace cli
