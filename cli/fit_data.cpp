// What pral fit reads, and how it looks beside a distribution.
#include "fit_data.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

#include "errors.h"
#include "text.h"

namespace cli {

namespace {

/// Values in order, with the weight up to each of them.
struct Ordered {
    std::vector<double> values, weights, up_to;

    explicit Ordered(const FitData& data) {
        std::vector<std::size_t> order(data.left.size());
        std::iota(order.begin(), order.end(), std::size_t{0});
        std::ranges::sort(order, {}, [&](std::size_t i) { return data.left[i]; });
        double sum = 0;
        for (const std::size_t i : order) {
            const double weight = data.weights.empty() ? 1 : data.weights[i];
            values.push_back(data.left[i]);
            weights.push_back(weight);
            up_to.push_back(sum += weight);
        }
    }
    double total() const { return up_to.back(); }
    double quantile(double p) const {
        const auto place = std::ranges::lower_bound(up_to, p * total()) - up_to.begin();
        return values[std::min(static_cast<std::size_t>(place), values.size() - 1)];
    }
};

/// The least of 1, 2 and 5 times a power of ten that is not below `width`.
double round_width(double width) {
    const double power = std::pow(10, std::floor(std::log10(width)));
    for (const double factor : {1, 2, 5}) {
        if (factor * power >= width) return factor * power;
    }
    return 10 * power;
}

/// Twenty cells at most by Freedman and Diaconis's rule, over what is not far out: three times the distance of the quartiles.
std::vector<double> edges_of(const Ordered& data, bool whole) {
    constexpr double kMost = 20, kFarOut = 3;
    const double low = data.quantile(0.25), high = data.quantile(0.75), spread = high - low;
    double from = data.values.front(), to = data.values.back();
    if (spread > 0) {
        from = std::max(from, low - kFarOut * spread);
        to = std::min(to, high + kFarOut * spread);
    }
    double width = std::max(2 * spread / std::cbrt(data.total()), (to - from) / kMost);
    if (whole) width = std::max(width, 1.0);
    const double start = whole ? std::floor(from) - 0.5 : from;
    if (!(width > 0) || !std::isfinite(width)) return {start, to + (whole ? 0.5 : 0)};
    width = round_width(width);
    const double first = whole ? start : std::floor(from / width) * width;
    std::vector<double> edges = {first};
    for (int i = 1; edges.back() < to && i <= 2 * kMost; ++i) edges.push_back(first + i * width);
    return edges;
}

}  // namespace

bool FitData::whole() const {
    const auto is_whole = [](double value) { return value == std::floor(value); };
    return exact() && std::ranges::all_of(left, is_whole);
}

double FitData::count() const {
    return weights.empty() ? static_cast<double>(left.size())
                           : std::accumulate(weights.begin(), weights.end(), 0.0);
}

FitData read_fit_data(const FitOptions& options) {
    CsvRequest request = options.csv;
    std::vector<CsvPart> more;
    if (!options.right.empty()) {
        request.purpose = Purpose::ends;
        more.push_back({options.right, Purpose::ends});
    }
    if (!options.weights.empty()) more.push_back({options.weights, Purpose::data});
    CsvTable table = read_csv_columns(read_file(options.file), options.file, request, more);
    FitData data = {std::move(table.columns), {}, {}, {}, std::move(table.lines), table.missing, 0, 0};
    data.left = std::move(data.columns[0].values);
    if (!options.right.empty()) data.right = std::move(data.columns[1].values);
    if (!options.weights.empty()) data.weights = std::move(data.columns.back().values);
    if (!options.right.empty()) {
        for (double& end : data.left) end = std::isnan(end) ? -INFINITY : end;
        for (double& end : data.right) end = std::isnan(end) ? INFINITY : end;
    }
    data.least = INFINITY;
    data.greatest = -INFINITY;
    for (const std::vector<double>* ends : {&data.left, &data.right}) {
        for (const double end : *ends) {
            if (!std::isfinite(end)) continue;
            data.least = std::min(data.least, end);
            data.greatest = std::max(data.greatest, end);
        }
    }
    return data;
}

std::string summary_of(const FitData& data, const FitOptions& options) {
    const auto named = [](const CsvColumn& column) {
        return column.name.empty() ? fmt::format("{}", column.number)
                                   : fmt::format("{} ({})", column.number, shown(column.name));
    };
    const CsvColumn& column = data.columns.front();
    std::string line = fmt::format(
        "{}, column {}", options.file == "-" ? "standard input" : shown(options.file), named(column));
    if (!data.right.empty()) line += fmt::format(" to {}", named(data.columns[1]));
    line += fmt::format(" of {}: {} {}{}", column.width, data.left.size(),
                        data.right.empty() ? "value" : "observation", data.left.size() == 1 ? "" : "s");
    if (!data.right.empty()) {
        std::size_t exact = 0;
        for (std::size_t i = 0; i < data.left.size(); ++i) exact += data.left[i] == data.right[i];
        line += fmt::format(" ({} exact)", exact);
    }
    if (!data.weights.empty())
        line +=
            fmt::format(" of weight {} (column {})", number_text(data.count()), named(data.columns.back()));
    line += fmt::format(" from {} to {}, ", number_text(data.least), number_text(data.greatest));
    line += data.missing > 0 ? fmt::format("{} missing and left out", data.missing) : "none missing";
    if (column.decimal == DecimalMark::comma) line += "; decimal commas";
    if (!column.has_names) line += "; no row of names";
    return line + '\n';
}

Histogram histogram_of(const FitData& data) {
    const Ordered ordered(data);
    Histogram histogram = {edges_of(ordered, data.whole()), {}};
    const auto& edges = histogram.edges;
    histogram.shares.assign(edges.size() - 1, 0);
    for (std::size_t i = 0; i < ordered.values.size(); ++i) {
        const double x = ordered.values[i], share = ordered.weights[i] / ordered.total();
        const auto end = std::ranges::lower_bound(edges, x);
        if (x < edges.front())
            histogram.below += share;
        else if (end == edges.end())
            histogram.above += share;
        else
            histogram.shares[std::max<std::size_t>(static_cast<std::size_t>(end - edges.begin()), 1) - 1] +=
                share;
    }
    return histogram;
}

Quantiles quantiles_of(const FitData& data) {
    constexpr std::size_t kMost = 200;
    const Ordered ordered(data);
    const std::size_t n = ordered.values.size(), count = std::min(n, kMost);
    Quantiles quantiles;
    for (std::size_t j = 0; j < count; ++j) {
        // Both extremes, and what lies evenly between them.
        const std::size_t i = count == n ? j : j * (n - 1) / (count - 1);
        quantiles.percentiles.push_back((ordered.up_to[i] - ordered.weights[i] / 2) / ordered.total());
        quantiles.values.push_back(ordered.values[i]);
    }
    return quantiles;
}

}  // namespace cli
