// How pral fit shows what it has found: a table for people, CSV and JSON for programs.
#include "fit_report.h"

#include <fmt/format.h>

#include <cmath>
#include <cstdio>
#include <map>
#include <nlohmann/json.hpp>

#include "text.h"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;

const char* kind_name(const pral::FitValues& values) {
    return values.kind == PRAL_FIT_REGULAR ? "regular" : values.kind == PRAL_FIT_EDGE ? "edge" : "cells";
}

/// "edge:Poisson", "cells:0.1".
std::string kind_text(const pral::FitValues& values) {
    std::string text = kind_name(values);
    if (values.kind == PRAL_FIT_EDGE && *values.limit != 0) text += fmt::format(":{}", values.limit);
    if (values.kind == PRAL_FIT_CELLS) text += fmt::format(":{:.6g}", values.cell);
    return text;
}

NamedNumbers named(const FitRow& row, const std::vector<double>& numbers) {
    NamedNumbers all;
    for (std::size_t i = 0; i < numbers.size(); ++i) all.emplace_back(row.names[i], numbers[i]);
    return all;
}

NamedNumbers ends_of(const FitRow& row, double pral::Interval::*end) {
    std::vector<double> ends;
    for (const pral::Interval& interval : row.intervals) ends.push_back(interval.*end);
    return named(row, ends);
}

/// What the words in the table mean, where they occur.
std::string legend_of(const FitReport& report) {
    bool edge = false, cells = false, failed = false, few = false;
    for (const FitRow& row : report.rows) {
        edge = edge || row.values.kind == PRAL_FIT_EDGE;
        cells = cells || row.values.kind == PRAL_FIT_CELLS;
        few = few || std::isinf(row.difference);
        failed = failed || (row.test && row.test->failed > 0);
    }
    std::string text;
    if (edge)
        text +=
            "edge: the likelihood levels off towards an edge of the parameters, where the\n"
            "  family becomes another: the one that is named, if any\n";
    if (cells)
        text +=
            "cells:h: the likelihood grows without bound; values count by the probability of\n"
            "  x +- h/2, which does not compare with the likelihoods of other rows\n";
    if (few) text += "inf: too few data for so many parameters\n";
    if (failed) {
        text += "refits that failed:";
        for (const FitRow& row : report.rows) {
            if (row.test && row.test->failed > 0)
                text +=
                    fmt::format(" {} {} of {}", row.values.family, row.test->failed, row.test->replicates);
        }
        text += '\n';
    }
    return text;
}

/// A row for each parameter, with its standard error and its interval.
void write_parameters(const FitReport& report, const FitOptions& options) {
    std::vector<std::string> columns = {"family", "parameter", "estimate"};
    if (options.errors) columns.push_back("error");
    if (options.interval) columns.insert(columns.end(), {"lower", "upper"});
    Rows rows(Format::table, columns);
    const auto rounded = [](double value) -> Cell { return Significant{value, 6}; };
    for (const FitRow& row : report.rows) {
        for (std::size_t i = 0; i < row.parameters.size(); ++i) {
            std::vector<Cell> cells = {std::string(row.values.family), row.names[i],
                                       rounded(row.parameters[i])};
            if (options.errors) cells.push_back(rounded(row.errors[i]));
            if (options.interval) {
                cells.push_back(rounded(row.intervals[i].lower));
                cells.push_back(rounded(row.intervals[i].upper));
            }
            rows.add(cells);
        }
    }
    rows.end();
}

void write_table(const FitReport& report, const FitData& data, const FitOptions& options) {
    write(summary_of(data, options));
    const std::string kIndent(std::string_view("rank  ").size(), ' ');
    const bool by_parameter = options.errors || options.interval;
    std::vector<std::string> columns = {
        "rank", "family", "maximum", std::string("d") + name_of(options.rank), "weight", "log_likelihood"};
    if (options.test) columns.insert(columns.end(), {name_of_test(*options.test) + "_p", "p_error"});
    if (!by_parameter) columns.push_back("parameters");
    Rows rows(Format::table, columns);
    double rank = 0;
    for (const FitRow& row : report.rows) {
        std::vector<Cell> cells = {++rank,
                                   std::string(row.values.family),
                                   kind_text(row.values),
                                   Rounded{row.difference, 2},
                                   Rounded{row.weight, 3},
                                   Rounded{row.values.log_likelihood, 2}};
        if (options.test)
            cells.insert(cells.end(), {Significant{row.test->p, 3}, Significant{row.test->p_error, 1}});
        if (!by_parameter) cells.push_back(named(row, row.parameters));
        rows.add(cells);
        if (!row.equal_to.empty())
            rows.note(kIndent + wrapped("also: " + row.equal_to, kPageWidth, kIndent.size(), ", "));
    }
    rows.end();
    if (by_parameter) {
        write("\n");
        write_parameters(report, options);
    }
    if (const std::string legend = legend_of(report); !legend.empty()) write("\n" + legend);
    if (options.plot) write(picture_of(report.rows.front(), data, options));
}

void write_csv(const FitReport& report, const FitOptions& options) {
    std::vector<std::string> columns = {"rank",   "family", "maximum", "cell", "limit", "difference",
                                        "weight", "AIC",    "AICc",    "BIC",  "free",  "log_likelihood"};
    if (options.test) columns.insert(columns.end(), {"statistic", "p", "p_error", "replicates", "failed"});
    columns.push_back("also");
    if (options.errors) columns.push_back("errors");
    if (options.interval) columns.insert(columns.end(), {"lower", "upper"});
    columns.push_back("parameters");
    Rows rows(Format::csv, columns);
    double rank = 0;
    for (const FitRow& row : report.rows) {
        const pral::FitValues& values = row.values;
        std::vector<Cell> cells = {++rank,
                                   std::string(values.family),
                                   std::string(kind_name(values)),
                                   values.cell,
                                   std::string(values.limit),
                                   row.difference,
                                   row.weight,
                                   values.aic,
                                   values.aicc,
                                   values.bic,
                                   static_cast<double>(values.free),
                                   values.log_likelihood};
        if (options.test) {
            const pral::TestValues& test = *row.test;
            cells.insert(cells.end(),
                         {test.statistic, test.p, test.p_error, static_cast<double>(test.replicates),
                          static_cast<double>(test.failed)});
        }
        cells.push_back(row.equal_to);
        if (options.errors) cells.push_back(named(row, row.errors));
        if (options.interval) {
            cells.push_back(ends_of(row, &pral::Interval::lower));
            cells.push_back(ends_of(row, &pral::Interval::upper));
        }
        cells.push_back(named(row, row.parameters));
        rows.add(cells);
    }
    rows.end();
}

Json json_numbers(const std::vector<double>& numbers) {
    Json array = Json::array();
    for (const double value : numbers) array.push_back(json_number(value));
    return array;
}

Json json_names(const std::string& list) {
    Json array = Json::array();
    for (const std::string_view name : split(list, ',')) {
        if (!name.empty()) array.push_back(name);
    }
    return array;
}

Json json_column(const CsvColumn& column) { return {{"number", column.number}, {"name", column.name}}; }

Json json_of(const FitData& data, const FitOptions& options) {
    Json json = {{"file", options.file},
                 {"column", json_column(data.columns.front())},
                 {"rows", data.left.size()},
                 {"missing", data.missing},
                 {"count", json_number(data.count())},
                 {"least", json_number(data.least)},
                 {"greatest", json_number(data.greatest)},
                 {"truncated",
                  {{"lower", json_number(options.min.value_or(-INFINITY))},
                   {"upper", json_number(options.max.value_or(INFINITY))}}}};
    if (!data.right.empty()) json["right"] = json_column(data.columns[1]);
    if (!data.weights.empty()) json["weights"] = json_column(data.columns.back());
    return json;
}

Json json_of(const FitRow& row, std::size_t rank) {
    const pral::FitValues& values = row.values;
    Json json = {{"rank", rank},
                 {"family", values.family},
                 {"maximum", kind_name(values)},
                 {"cell", json_number(values.cell)},
                 {"limit", values.limit},
                 {"difference", json_number(row.difference)},
                 {"weight", json_number(row.weight)},
                 {"AIC", json_number(values.aic)},
                 {"AICc", json_number(values.aicc)},
                 {"BIC", json_number(values.bic)},
                 {"free", values.free},
                 {"log_likelihood", json_number(values.log_likelihood)},
                 {"also", json_names(row.equal_to)}};
    const std::vector<double> covariance = row.fit.covariance();
    const std::size_t count = row.names.size();
    for (const char* name : {"parameters", "errors"}) json[name] = Json::object();
    json["covariance"] = Json::array();
    for (std::size_t i = 0; i < count; ++i) {
        json["parameters"][row.names[i]] = json_number(row.parameters[i]);
        json["errors"][row.names[i]] = json_number(row.errors[i]);
        const auto begin = covariance.begin() + static_cast<std::ptrdiff_t>(i * count);
        json["covariance"].push_back(json_numbers({begin, begin + static_cast<std::ptrdiff_t>(count)}));
        if (!row.intervals.empty())
            json["intervals"][row.names[i]] = json_numbers({row.intervals[i].lower, row.intervals[i].upper});
    }
    if (row.test) {
        json["test"] = {{"statistic", json_number(row.test->statistic)},
                        {"p", json_number(row.test->p)},
                        {"p_error", json_number(row.test->p_error)},
                        {"replicates", row.test->replicates},
                        {"failed", row.test->failed}};
    }
    return json;
}

/// The fitted side of what is drawn: quantiles at the data's percentiles, and the mean density in each cell of their
/// histogram.
void add_fitted(Json& json, const pral::Distribution& fitted, const Histogram& histogram,
                const Quantiles& quantiles) {
    std::vector<double> at = quantiles.percentiles;
    fitted.quantile(at, at);
    json["quantiles"] = json_numbers(at);
    std::vector<double> below(histogram.edges.size()), densities;
    fitted.cdf(histogram.edges, below);
    for (std::size_t i = 0; i + 1 < below.size(); ++i)
        densities.push_back((below[i + 1] - below[i]) / (histogram.edges[i + 1] - histogram.edges[i]));
    json["densities"] = json_numbers(densities);
}

std::string line_of(const Json& json) { return json.dump(-1, ' ', false, Json::error_handler_t::replace); }

/// A line for each member, and for each element of a list: as long as they are, each is one thing.
void write_lines(const Json& json) {
    std::string text = "{";
    for (const auto& [name, member] : json.items()) {
        text += fmt::format("{}\n{}: ", text.size() > 1 ? "," : "", json_text(name));
        text += member.is_array() ? "[\n " + joined(member, ",\n ", line_of) + "\n]" : line_of(member);
    }
    write(text + "\n}\n");
}

void write_json(const FitReport& report, const FitData& data, const FitOptions& options) {
    Json json = {{"data", json_of(data, options)}, {"criterion", name_of(options.rank)}};
    if (options.test) json["test"] = name_of_test(*options.test);
    if (options.interval) json["level"] = *options.interval;
    const bool drawn = data.exact();
    Histogram histogram;
    Quantiles quantiles;
    if (drawn) {
        histogram = histogram_of(data);
        quantiles = quantiles_of(data);
        std::vector<double> densities;
        for (std::size_t i = 0; i < histogram.shares.size(); ++i)
            densities.push_back(histogram.shares[i] / (histogram.edges[i + 1] - histogram.edges[i]));
        json["data"]["histogram"] = {{"edges", json_numbers(histogram.edges)},
                                     {"densities", json_numbers(densities)},
                                     {"share_below", histogram.below},
                                     {"share_above", histogram.above}};
        json["data"]["percentiles"] = json_numbers(quantiles.percentiles);
        json["data"]["quantiles"] = json_numbers(quantiles.values);
    }
    json["fits"] = Json::array();
    std::size_t rank = 0;
    for (const FitRow& row : report.rows) {
        Json fit = json_of(row, ++rank);
        try {
            fit["distribution"] = row.fit.distribution().text();
            if (drawn) add_fitted(fit, seen_distribution(row, options), histogram, quantiles);
        } catch (const pral::Error& error) {
            fit["distribution"] = nullptr;  // an edge that is no distribution
        }
        json["fits"].push_back(std::move(fit));
    }
    json["left_out"] = Json::array();
    for (const auto& [family, why] : report.left_out)
        json["left_out"].push_back({{"family", family}, {"why", why}});
    write_lines(json);
}

}  // namespace

std::string name_of(Criterion criterion) {
    return criterion == Criterion::aic ? "AIC" : criterion == Criterion::aicc ? "AICc" : "BIC";
}

std::string name_of_test(int test) {
    constexpr const char* names[] = {"ks", "cvm", "ad", "chisq"};
    return names[test];
}

pral::Distribution seen_distribution(const FitRow& row, const FitOptions& options) {
    pral::Distribution fitted = row.fit.distribution();
    if (!options.min && !options.max) return fitted;
    return fitted.truncated(options.min.value_or(-INFINITY), options.max.value_or(INFINITY));
}

void write_report(const FitReport& report, const FitData& data, const FitOptions& options) {
    if (options.format == Format::table) return write_table(report, data, options);
    // Beside what programs read.
    std::fputs(summary_of(data, options).c_str(), stderr);
    if (options.format == Format::csv)
        write_csv(report, options);
    else
        write_json(report, data, options);
}

}  // namespace cli
