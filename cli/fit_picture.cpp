// Data beside a fit, drawn with characters.
#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <functional>

#include "fit_report.h"

namespace cli {

namespace {

/// Bars of '#' for the data, a '|' where the fit ends.
class Bars {
  public:
    void add(std::string label, double seen, double expected) {
        rows_.push_back({std::move(label), seen, expected});
    }
    std::string text() const {
        constexpr double kWidth = 40;
        double most = 0;
        std::size_t labels = 0;
        for (const Row& row : rows_) {
            most = std::max({most, row.seen, row.expected});
            labels = std::max(labels, row.label.size());
        }
        std::string text = fmt::format("{:>{}} {:8} {:>8}\n", "",
                                       labels + static_cast<std::size_t>(kWidth) + 2, "    seen", "expected");
        for (const Row& row : rows_) {
            const auto end = [&](double count) {
                return static_cast<std::size_t>(std::lround(kWidth * count / most));
            };
            std::string bar(static_cast<std::size_t>(kWidth) + 1, ' ');
            if (std::isfinite(row.seen / most)) std::fill_n(bar.begin(), end(row.seen), '#');
            if (std::isfinite(row.expected / most)) bar[end(row.expected)] = '|';
            text +=
                fmt::format("{:>{}} {} {:8.6g} {:8.5g}\n", row.label, labels, bar, row.seen, row.expected);
        }
        return text;
    }

  private:
    struct Row {
        std::string label;
        double seen, expected;
    };
    std::vector<Row> rows_;
};

std::string histogram_text(const pral::Distribution& fitted, const FitData& data) {
    const Histogram histogram = histogram_of(data);
    const auto& edges = histogram.edges;
    const bool whole = data.whole();
    const double n = data.count();
    std::vector<double> below(edges.size()), above(edges.size());
    fitted.cdf(edges, below);
    fitted.sf(edges, above);
    const auto label = [whole](double low, double high) {
        if (!whole) return fmt::format("{:.6g} - {:.6g}", low, high);
        low = std::ceil(low) + 0.0;  // -0.0 becomes 0.0
        high = std::floor(high) + 0.0;
        return low == high ? fmt::format("{:.6g}", low) : fmt::format("{:.6g} - {:.6g}", low, high);
    };
    Bars bars;
    // What the fit has beyond the cells is told where it is worth a bar.
    constexpr double kWorth = 0.5;
    if (histogram.below > 0 || n * below.front() > kWorth)
        bars.add(fmt::format("< {:.6g}", whole ? std::ceil(edges.front()) : edges.front()),
                 n * histogram.below, n * below.front());
    for (std::size_t i = 0; i + 1 < edges.size(); ++i)
        bars.add(label(edges[i], edges[i + 1]), n * histogram.shares[i], n * (below[i + 1] - below[i]));
    if (histogram.above > 0 || n * above.back() > kWorth)
        bars.add(fmt::format("> {:.6g}", whole ? std::floor(edges.back()) : edges.back()),
                 n * histogram.above, n * above.back());
    return bars.text();
}

/// A field of characters over which points are set.
class Field {
  public:
    static constexpr std::size_t kWidth = 60, kHeight = 20;

    Field(double low, double high, bool logarithms)
        : low_(scaled(low, logarithms)), high_(scaled(high, logarithms)), logarithms_(logarithms) {
        for (std::string& line : lines_) line.assign(kWidth, ' ');
        for (std::size_t i = 0; i < kWidth; ++i) lines_[i * kHeight / kWidth][i] = '.';
    }
    void set(double x, double y) { lines_[place(y, kHeight)][place(x, kWidth)] = 'o'; }
    std::string text() const {
        std::string text;
        for (std::size_t i = kHeight; i-- > 0;) {
            const bool told = i == 0 || i == kHeight - 1 || i == kHeight / 2;
            const std::string label = told ? value_at(i) : "";
            text += fmt::format("{:>10} |{}", label, lines_[i]);
            text.erase(text.find_last_not_of(' ') + 1);
            text += '\n';
        }
        text += fmt::format("{:>10} +{}\n", "", std::string(kWidth, '-'));
        text += fmt::format("{:>12}{:<{}}{:>{}}\n", "", value_at(0), kWidth / 2, value_at(kHeight - 1),
                            kWidth / 2);
        return text;
    }

  private:
    static double scaled(double x, bool logarithms) { return logarithms ? std::log(x) : x; }
    std::size_t place(double x, std::size_t size) const {
        const double share = (scaled(x, logarithms_) - low_) / (high_ - low_);
        return static_cast<std::size_t>(std::clamp(share, 0.0, 1.0) * static_cast<double>(size - 1) + 0.5);
    }
    std::string value_at(std::size_t line) const {
        const double x = low_ + (high_ - low_) * static_cast<double>(line) / (kHeight - 1);
        return fmt::format("{:.4g}", logarithms_ ? std::exp(x) : x);
    }
    double low_, high_;
    bool logarithms_;
    std::string lines_[kHeight];
};

std::string quantiles_text(const pral::Distribution& fitted, const FitData& data) {
    constexpr double kWide = 50;
    const Quantiles quantiles = quantiles_of(data);
    std::vector<double> of_fit = quantiles.percentiles;
    fitted.quantile(of_fit, of_fit);
    const double low = quantiles.values.front(), high = quantiles.values.back();
    const bool logarithms = low > 0 && high / low > kWide;
    if (!(high > low) || !std::isfinite(high - low)) return "";
    Field field(low, high, logarithms);
    for (std::size_t i = 0; i < of_fit.size(); ++i) {
        if (!std::isnan(of_fit[i])) field.set(of_fit[i], quantiles.values[i]);
    }
    return fmt::format("\nQuantiles: those of the data upwards, of the fit to the right{}\n",
                       logarithms ? " (logarithmic)" : "") +
           field.text();
}

}  // namespace

std::string picture_of(const FitRow& row, const FitData& data, const FitOptions& options) {
    if (!data.exact()) return "\nNo picture: intervals have no quantiles.\n";
    try {
        const pral::Distribution fitted = seen_distribution(row, options);
        return fmt::format("\nValues seen (#) and expected by {} (|)\n", row.values.family) +
               histogram_text(fitted, data) + quantiles_text(fitted, data);
    } catch (const pral::Error& error) {
        return fmt::format("\nNo picture: {}\n", error.what());
    }
}

}  // namespace cli
