// pral describe of a distribution: parameters, moments, quantiles of note, risk measures.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "arguments.h"
#include "commands.h"
#include "text.h"

namespace cli {

namespace {

using Json = nlohmann::ordered_json;
using NamedText = std::pair<std::string, std::string>;

/// A level in the names of both tails: the values above it, or below its complement.
struct Risk {
    const char* tail;
    double level, percentile, value_at_risk, expected_shortfall;
};

struct Summary {
    std::string text;
    pral::Interval support;
    pral::Moments moments;
    double mode, median;
    std::vector<Risk> risks;
    std::vector<std::pair<double, double>> limited_means;
};

Risk lower_risk(const pral::Distribution& distribution, double level, double percentile) {
    return {"lower", level, percentile, distribution.quantile(percentile),
            distribution.lower_tail_mean(percentile)};
}
Risk upper_risk(const pral::Distribution& distribution, double level) {
    return {"upper", level, level, distribution.quantile(level), distribution.upper_tail_mean(level)};
}

Summary summary_of(const DescribeOptions& options, const DistributionParts& parts) {
    const auto distribution = make_distribution(options, parts);
    Summary summary = {distribution.text(),
                       distribution.support(),
                       distribution.moments(),
                       distribution.mode(),
                       distribution.quantile(0.5),
                       {},
                       {}};
    summary.risks = {lower_risk(distribution, 0.99, 0.01), lower_risk(distribution, 0.95, 0.05),
                     upper_risk(distribution, 0.95), upper_risk(distribution, 0.99)};
    for (const std::string& text : options.limits) {
        for (const double limit : parse_numbers(text, "--limit"))
            summary.limited_means.emplace_back(limit, distribution.limited_mean(limit));
    }
    return summary;
}

Json as_json(const Summary& summary, const DistributionParts& parts) {
    Json json = {{"distribution", summary.text}};
    if (parts.family != nullptr) {
        json["family"] = parts.family->name;
        json["kind"] = parts.family->kind;
        Json& parameters = json["parameters"] = Json::object();
        for (std::size_t i = 0; i < parts.parameters.size(); ++i) {
            const auto& [name, is_table, text] = parts.family->parameters[i];
            Json table = Json::array();
            for (const double value : parts.parameters[i]) table.push_back(json_number(value));
            parameters[name] = is_table ? table : table.front();
        }
    }
    const pral::Moments& moments = summary.moments;
    json["support"] = {{"lower", json_number(summary.support.lower)},
                       {"upper", json_number(summary.support.upper)}};
    json["mode"] = json_number(summary.mode);
    json["median"] = json_number(summary.median);
    json["mean"] = json_number(moments.mean);
    json["variance"] = json_number(moments.variance);
    json["standard_deviation"] = json_number(std::sqrt(moments.variance));
    json["skewness"] = json_number(moments.skewness);
    json["excess_kurtosis"] = json_number(moments.excess_kurtosis);
    for (const Risk& risk : summary.risks)
        json["risk"].push_back({{"tail", risk.tail},
                                {"level", risk.level},
                                {"percentile", risk.percentile},
                                {"value_at_risk", json_number(risk.value_at_risk)},
                                {"expected_shortfall", json_number(risk.expected_shortfall)}});
    for (const auto& [limit, mean] : summary.limited_means)
        json["limited_means"].push_back({{"limit", json_number(limit)}, {"mean", json_number(mean)}});
    return json;
}

/// A number for people: ten digits, and a word for what is none.
std::string page_text(double value) {
    if (std::isnan(value)) return "undefined";
    if (std::isinf(value)) return value > 0 ? "infinite" : "minus infinite";
    return fmt::format("{:.10g}", value);
}

std::string interval_text(const pral::Interval& interval) {
    const auto end = [](double value) { return std::isinf(value) ? number_text(value) : page_text(value); };
    return fmt::format("{}{}, {}{}", std::isinf(interval.lower) ? '(' : '[', end(interval.lower),
                       end(interval.upper), std::isinf(interval.upper) ? ')' : ']');
}

std::string chapter(const std::string& title, const std::vector<NamedText>& lines) {
    std::size_t width = 0;
    for (const auto& [name, text] : lines) width = std::max(width, name.size());
    std::string all = fmt::format("\n{}\n", title);
    for (const auto& [name, text] : lines) all += fmt::format("  {:<{}}  {}\n", name, width, text);
    return all;
}

std::string risk_table(const std::vector<Risk>& risks) {
    std::string all =
        fmt::format("\nRisk\n  {:<12}{:>16}{:>22}\n", "tail", "value at risk", "expected shortfall");
    for (const Risk& risk : risks)
        all += fmt::format("  {:<12}{:>16}{:>22}\n", fmt::format("{} {:.0f} %", risk.tail, 100 * risk.level),
                           page_text(risk.value_at_risk), page_text(risk.expected_shortfall));
    return all;
}

std::vector<NamedText> named_parameters(const DistributionParts& parts) {
    std::vector<NamedText> named;
    for (std::size_t i = 0; i < parts.parameters.size(); ++i) {
        const auto& [name, is_table, text] = parts.family->parameters[i];
        const auto& values = parts.parameters[i];
        named.emplace_back(name,
                           is_table ? fmt::format("{} numbers", values.size()) : number_text(values[0]));
    }
    return named;
}

void write_page(const Summary& summary, const DistributionParts& parts) {
    std::string page = wrapped(summary.text, kPageWidth, 2);
    if (parts.family != nullptr) page += fmt::format(", {}", parts.family->kind);
    page += '\n';
    if (parts.family != nullptr) page += chapter("Parameters", named_parameters(parts));
    const pral::Moments& moments = summary.moments;
    page += chapter("Moments", {{"mean", page_text(moments.mean)},
                                {"variance", page_text(moments.variance)},
                                {"standard deviation", page_text(std::sqrt(moments.variance))},
                                {"skewness", page_text(moments.skewness)},
                                {"excess kurtosis", page_text(moments.excess_kurtosis)}});
    page += chapter("Values", {{"support", interval_text(summary.support)},
                               {"mode", page_text(summary.mode)},
                               {"median", page_text(summary.median)}});
    page += risk_table(summary.risks);
    std::vector<NamedText> limited;
    for (const auto& [limit, mean] : summary.limited_means)
        limited.emplace_back(fmt::format("min(X, {})", number_text(limit)), page_text(mean));
    if (!limited.empty()) page += chapter("Limited means", limited);
    write(page);
}

}  // namespace

void describe_distribution(const DescribeOptions& options) {
    const DistributionParts parts = parts_of(options, false);
    const Summary summary = summary_of(options, parts);
    if (options.format == Format::table) return write_page(summary, parts);
    write_fields(options.format, as_json(summary, parts));
}

}  // namespace cli
