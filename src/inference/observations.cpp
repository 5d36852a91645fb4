#include "inference/observations.h"

#include <algorithm>
#include <numeric>

#include "inference/recording_unit.h"

namespace pral::inference {

namespace {

/// The element of a column, or what it stands for where it is empty.
double element(std::span<const double> column, std::size_t i, double otherwise) {
    return column.empty() ? otherwise : column[i] + 0.0;  // -0.0 becomes 0.0
}

void check(const Observations::Row& row, std::size_t i) {
    const auto refuse = [&](const char* why) { throw BadData(why, static_cast<std::int64_t>(i)); };
    const auto& [left, right, weight, truncation] = row;
    if (std::isnan(left) || std::isnan(right)) refuse("the data must be numbers: leave missing ones out");
    if (left > right) refuse("the left end of an interval must not be above its right end");
    if (left == right && std::isinf(left)) refuse("an exact value must be finite");
    if (!(weight >= 0 && std::isfinite(weight))) refuse("weights must be finite and not negative");
    if (std::isnan(truncation.lower) || std::isnan(truncation.upper) ||
        !(truncation.lower <= truncation.upper))
        refuse("the lower bound of a truncation must not be above the upper one");
    const bool seen = row.exact() ? truncation.lower <= left && left <= truncation.upper
                                  : left <= truncation.upper && right >= truncation.lower;
    if (!seen) refuse("an observation lies outside of the bounds of its truncation");
}

std::vector<Observations::Row> rows_of(const Columns& columns) {
    const std::size_t n = columns.left.size();
    std::vector<Observations::Row> rows;
    rows.reserve(n);
    for (std::size_t i = 0; i < n; ++i) {
        const double left = columns.left[i] + 0.0;
        const Observations::Row row = {left,
                                       element(columns.right, i, left),
                                       element(columns.weights, i, 1),
                                       {element(columns.lower, i, columns.truncation.lower),
                                        element(columns.upper, i, columns.truncation.upper)}};
        check(row, i);
        if (row.weight > 0) rows.push_back(row);
    }
    return rows;
}

/// Equal values become one, with the sum of their weights.
void merge(std::vector<double>& values, std::vector<double>& weights) {
    std::size_t last = 0;
    for (std::size_t i = 1; i < values.size(); ++i) {
        if (values[i] == values[last]) {
            weights[last] += weights[i];
        } else {
            values[++last] = values[i];
            weights[last] = weights[i];
        }
    }
    values.resize(last + 1);
    weights.resize(last + 1);
}

/// The same for truncations.
void merge(std::vector<Observations::Share>& truncations) {
    std::ranges::sort(
        truncations,
        [](const Truncation& a, const Truncation& b) {
            return a.lower < b.lower || (a.lower == b.lower && a.upper < b.upper);
        },
        &Observations::Share::truncation);
    std::size_t count = 0;
    for (const Observations::Share& share : truncations) {
        if (count > 0 && truncations[count - 1].truncation == share.truncation)
            truncations[count - 1].weight += share.weight;
        else
            truncations[count++] = share;
    }
    truncations.resize(count);
}

}  // namespace

Observations::Observations(const Columns& columns) : rows_(rows_of(columns)) { arrange(); }
Observations::Observations(std::vector<Row> rows) : rows_(std::move(rows)) { arrange(); }

void Observations::arrange() {
    if (rows_.empty()) throw BadData("there are no data");
    std::ranges::sort(rows_, {}, &Row::left);
    bool unit_weights = true;
    for (const Row& row : rows_) {
        count_ += row.weight;
        unit_weights = unit_weights && row.weight == 1;
        smallest_ = std::min(smallest_, row.right);
        largest_ = std::max(largest_, row.left);
        if (row.exact()) {
            values_.push_back(row.left);
            distinct_weights_.push_back(row.weight);
        } else {
            intervals_.push_back(row);
        }
        if (row.truncation.bounded()) truncations_.push_back({row.truncation, row.weight});
    }
    merge(truncations_);
    const bool one_truncation =
        truncations_.empty() || (truncations_.size() == 1 && truncations_.front().weight == count_);
    plain_ = unit_weights && intervals_.empty() && one_truncation;
    distinct_ = values_;
    if (!values_.empty()) merge(distinct_, distinct_weights_);
}

bool Observations::whole() const {
    const auto is_whole = [](double x) { return x == std::floor(x); };  // infinite ends too
    return std::ranges::all_of(values_, is_whole) && std::ranges::all_of(intervals_, is_whole, &Row::left) &&
           std::ranges::all_of(intervals_, is_whole, &Row::right);
}

std::vector<double> Observations::representatives() const {
    if (plain_) return values_;
    constexpr double kMost = 1000;
    // An interval without an end is the other end; one with both its middle.
    const auto middle = [](const Row& row) {
        if (std::isinf(row.left)) return row.right;
        return std::isinf(row.right) ? row.left : row.left + 0.5 * (row.right - row.left);
    };
    std::vector<std::pair<double, double>> points;  // and their weights
    for (const Row& row : rows_) {
        if (std::isfinite(middle(row))) points.emplace_back(middle(row), row.weight);
    }
    if (points.empty()) throw BadData("the observations tell nothing: all are intervals without ends");
    std::ranges::sort(points);
    const double total = std::accumulate(points.begin(), points.end(), 0.0,
                                         [](double sum, const auto& point) { return sum + point.second; });
    const double size =
        std::clamp(std::round(total), static_cast<double>(std::min(points.size(), std::size_t{20})), kMost);
    std::vector<double> sample = {points.front().first};
    double below = 0;
    auto point = points.begin();
    for (double i = 0; i < size; ++i) {
        const double place = (i + 0.5) / size * total;
        while (below + point->second < place && point + 1 != points.end()) below += (point++)->second;
        sample.push_back(point->first);
    }
    sample.push_back(points.back().first);
    return sample;
}

Observations Observations::part(std::size_t size) const {
    if (rows_.size() <= size) return *this;
    std::vector<Row> rows;
    const double step = static_cast<double>(rows_.size() - 1) / static_cast<double>(size - 1);
    for (std::size_t i = 0; i < size; ++i)
        rows.push_back(
            rows_[std::min(static_cast<std::size_t>(static_cast<double>(i) * step + 0.5), rows_.size() - 1)]);
    return Observations(std::move(rows));
}

double Observations::recording_unit() const { return inference::recording_unit(values_); }

}  // namespace pral::inference
