#include "distributions/data/discrete_table.h"

#include <algorithm>
#include <cmath>

#include "distributions/data/tables.h"

namespace pral {

namespace data {

SortedValues::SortedValues(std::span<const double> values, std::span<const double> weights)
    : values_(values), weights_(weights) {
    if (values.empty()) return;
    const bool finite =
        std::fabs(values.front()) <= numerics::kInfinity && std::fabs(values.back()) <= numerics::kInfinity;
    const bool as_it_is =
        finite && (weights.empty() ? all_pairs(values, kNotDescending) : all_pairs(values, kAscending));
    if (as_it_is) return;
    if (!weights.empty()) {
        sort_weighted();
        return;
    }
    own_values_.assign(values.begin(), values.end());
    for (double& value : own_values_) value = numerics::finite_or_limit(value);
    std::ranges::sort(own_values_, nan_last);
    values_ = own_values_;
}

void SortedValues::sort_weighted() {
    struct Row {
        double value, weight;
    };
    std::vector<Row> rows(values_.size());
    for (std::size_t i = 0; i < rows.size(); ++i)
        rows[i] = {numerics::finite_or_limit(values_[i]), weights_[i]};
    const auto ascending = [](const Row& a, const Row& b) { return nan_last(a.value, b.value); };
    if (!std::ranges::is_sorted(rows, ascending)) std::ranges::sort(rows, ascending);
    for (const Row& row : rows) {
        if (!own_values_.empty() && own_values_.back() == row.value) {
            own_weights_.back() += row.weight;
        } else {
            own_values_.push_back(row.value);
            own_weights_.push_back(row.weight);
        }
    }
    values_ = own_values_;
    weights_ = own_weights_;
}

void SortedValues::scale_weights(double factor) {
    own_weights_ = scaled_copy(weights_, factor);
    weights_ = own_weights_;
}

Support SortedValues::support() const {
    return values_.empty() ? kReals : Support{values_.front(), values_.back()};
}

std::optional<double> SortedValues::point_mass() const {
    if (values_.empty() || values_.front() < values_.back()) return std::nullopt;
    if (values_.size() > 1 && !(values_.front() == values_.back())) return std::nullopt;  // NaN among them
    return values_.front();
}

std::size_t SortedValues::count_up_to(double x) const {
    return static_cast<std::size_t>(std::ranges::upper_bound(values_, x, nan_last) - values_.begin());
}

std::size_t SortedValues::count_below(double x) const {
    return static_cast<std::size_t>(std::ranges::lower_bound(values_, x, nan_last) - values_.begin());
}

}  // namespace data

Discrete::Discrete(const double* values, int n, const double* probabilities, int m) {
    const auto weights = data::view(probabilities, m);
    const auto given = data::view(values, n);
    const Message null = data::missing(values, n)          ? data::kNullValues
                         : data::missing(probabilities, m) ? data::kNullProbabilities
                                                           : nullptr;
    constexpr Message kNegative = "Error: Probability weights must be >=0";
    const bool negative = !data::all(weights, data::kNotNegative);
    constexpr Message kNone = "Error: at least one probability weight must be > 0";
    no_weight_ = null == nullptr && data::all(weights, [](double weight) { return weight == 0; });
    unequal_lengths_ = given.size() != weights.size();
    objection_ = null != nullptr    ? null
                 : negative         ? kNegative
                 : no_weight_       ? kNone
                 : unequal_lengths_ ? kUnequalLengths
                                    : nullptr;
    if (objection_ != nullptr) return;

    table_ = data::SortedValues(given, weights);
    sums_.resize(table_.size());
    data::running_sums(table_.weights(), sums_);
    if (!(total() <= numerics::kInfinity)) {
        table_.scale_weights(0x1p-64);
        data::running_sums(table_.weights(), sums_);
    }
}

double Discrete::cumulative(double x) const {
    if (std::isnan(x)) return x;
    const std::size_t count = table_.count_up_to(x);
    return count == 0 ? 0 : sums_[count - 1] / total();
}

double Discrete::survival(double x) const {
    if (std::isnan(x)) return x;
    complete();
    const std::size_t count = table_.count_up_to(x);
    return count == table_.size() ? 0 : std::min(sums_from_above_[count] / total(), 1.0);
}

void Discrete::complete() const {
    if (sums_from_above_.empty()) sums_from_above_ = data::running_sums_from_above(table_.weights());
}

double Discrete::log_density(double x) const {
    if (std::isnan(x)) return x;
    const std::size_t place = table_.count_below(x);
    const bool listed = place < table_.size() && table_.values()[place] == x;
    return listed ? std::log(table_.weights()[place] / total()) : -HUGE_VAL;
}

/// The sums are divided where they are compared: a single value needs the quotients of a few places only.
double Discrete::quantile(double p) const {
    const auto falls_short = [&](double sum) { return sum / total() < p; };
    const auto place = std::ranges::partition_point(sums_, falls_short);
    return table_.values()[static_cast<std::size_t>(place - sums_.begin())];
}

void Discrete::quantiles(std::span<double> p) const {
    std::vector<double> shares(sums_.size());
    for (std::size_t i = 0; i < sums_.size(); ++i) shares[i] = sums_[i] / total();
    const auto values = table_.values();
    data::invert_all(p, shares, [=](std::size_t place, double) { return values[place]; });
}

DUniform::DUniform(const double* values, int n) {
    const auto given = data::view(values, n);
    objection_ = data::missing(values, n) ? data::kNullValues : given.empty() ? data::kNoValues : nullptr;
    if (objection_ == nullptr) table_ = data::SortedValues(given, {});
}

double DUniform::cumulative(double x) const { return std::isnan(x) ? x : share(table_.count_up_to(x)); }

double DUniform::survival(double x) const {
    return std::isnan(x) ? x : share(table_.size() - table_.count_up_to(x));
}

double DUniform::log_density(double x) const {
    return std::isnan(x) ? x : std::log(share(table_.count_up_to(x) - table_.count_below(x)));
}

/// The first k with (k + 1)/size >= p: guessed, then moved by what rounding did to the guess.
double DUniform::quantile(double p) const {
    const std::size_t last = table_.size() - 1;
    std::size_t k = std::min(static_cast<std::size_t>(p * static_cast<double>(table_.size())), last);
    while (k > 0 && share(k) >= p) --k;
    while (k < last && share(k + 1) < p) ++k;
    return table_.values()[k];
}

}  // namespace pral
