// Distributions on the values of a table: with a weight each (Discrete) or all alike (DUniform).
#pragma once

#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>

#include "distributions/family.h"

namespace pral {

namespace data {

/// The values of a table in ascending order. The caller's table itself where it ascends already, which must then outlive
/// this; otherwise a sorted copy. NaN stands above all numbers, an outcome that no x equals or reaches.
class SortedValues {
  public:
    SortedValues() = default;
    /// `weights`, when not empty, has as many entries as `values`: they move along, and equal values become one with the
    /// sum of their weights.
    SortedValues(std::span<const double> values, std::span<const double> weights);
    SortedValues(const SortedValues&) = delete;  // the views may be of its own vectors
    SortedValues& operator=(const SortedValues&) = delete;
    SortedValues(SortedValues&&) = default;
    SortedValues& operator=(SortedValues&&) = default;

    std::span<const double> values() const { return values_; }
    std::span<const double> weights() const { return weights_; }
    std::size_t size() const { return values_.size(); }
    void scale_weights(double factor);
    Support support() const;
    std::optional<double> point_mass() const;

    /// How many values are at or below x.
    std::size_t count_up_to(double x) const;
    /// How many are below x.
    std::size_t count_below(double x) const;

  private:
    void sort_weighted();

    std::vector<double> own_values_, own_weights_;
    std::span<const double> values_, weights_;
};

}  // namespace data

/// Values with weights >= 0, not all 0, in any order; equal values add their weights. The quantile is the first value
/// whose running sum of weights, divided by their sum, reaches p. The support's ends are the smallest and the largest
/// value of the table, whatever their weights. A table of one value is a point mass. An infinite value or weight counts
/// as the largest double.
class Discrete {
  public:
    static constexpr bool kDiscrete = true;
    static constexpr Message kUnequalLengths =
        "Error: Values and Probabilities arrays must be of same length";
    Discrete(const double* values, int n, const double* probabilities, int m);

    Message check() const { return objection_; }
    /// Of tables that are not null and without negative weights: all weights are 0; the two are of unequal lengths.
    bool has_no_weight() const { return no_weight_; }
    bool has_unequal_lengths() const { return unequal_lengths_; }
    Support support() const { return table_.support(); }
    std::optional<double> point_mass() const { return table_.point_mass(); }

    double cumulative(double x) const;
    double survival(double x) const;
    double log_density(double x) const;
    /// Makes what survival() needs and would else make when first asked: threads may share the distribution afterwards.
    void complete() const;

    double quantile(double p) const;
    void quantiles(std::span<double> p) const;
    Moments moments() const {
        return point_moments([this](auto visit) {
            for (std::size_t i = 0; i < table_.size(); ++i)
                visit(table_.weights()[i] / total(), table_.values()[i]);
        });
    }
    double mode() const {
        return table_.values()[static_cast<std::size_t>(std::ranges::max_element(table_.weights()) -
                                                        table_.weights().begin())];
    }

  private:
    double total() const { return sums_.back(); }

    Message objection_;
    bool no_weight_, unequal_lengths_;
    data::SortedValues table_;
    std::vector<double> sums_;
    mutable std::vector<double> sums_from_above_;  // by complete(): sampling has no use for them
};

/// The values of a table, all equally likely; a value that stands there k times counts k times.
class DUniform {
  public:
    static constexpr bool kDiscrete = true;
    DUniform(const double* values, int n);

    Message check() const { return objection_; }
    Support support() const { return table_.support(); }
    std::optional<double> point_mass() const { return table_.point_mass(); }

    double cumulative(double x) const;
    double survival(double x) const;
    double log_density(double x) const;
    double quantile(double p) const;
    Moments moments() const {
        return point_moments([this](auto visit) {
            for (const double value : table_.values()) visit(share(1), value);
        });
    }
    double mode() const {
        const auto values = table_.values();
        double best = values.front();
        std::size_t most = 0;
        for (std::size_t begin = 0, end; begin < values.size(); begin = end) {
            for (end = begin + 1; end < values.size() && values[end] == values[begin];) ++end;
            if (end - begin > most) most = end - begin, best = values[begin];
        }
        return best;
    }

  private:
    double share(std::size_t count) const {
        return static_cast<double>(count) / static_cast<double>(table_.size());
    }

    Message objection_;
    data::SortedValues table_;
};

}  // namespace pral
