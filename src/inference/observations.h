// What is known of the values that a family is fitted to: values, intervals that hold one each, weights, and truncations outside
// of which nothing would have been seen.
#pragma once

#include <cmath>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "distributions/sample.h"
#include "fitting/failure.h"

namespace pral::inference {

/// Data that cannot be used; `index` tells the first such element, -1 where it is none in particular.
class BadData : public fitting::Failure {
  public:
    explicit BadData(std::string why, std::int64_t index_ = -1)
        : fitting::Failure(std::move(why)), index(index_) {}
    const std::int64_t index;
};

/// From one value to another, both included.
struct Truncation {
    double lower = -HUGE_VAL, upper = HUGE_VAL;

    bool bounded() const { return lower > -HUGE_VAL || upper < HUGE_VAL; }
    bool operator==(const Truncation&) const = default;
};

/// Observations as a caller has them, in arrays of one size. Those that are empty stand for the usual: right ends equal to
/// the left ones, weights of 1, the common truncation.
struct Columns {
    std::span<const double> left, right, weights, lower, upper;
    Truncation truncation;
};

/// Observations in order. An observation of weight w counts as w of them.
class Observations {
  public:
    /// A value, or an interval that holds one, both ends included.
    struct Row {
        double left, right;
        double weight;
        Truncation truncation;

        bool exact() const { return left == right; }
    };
    /// How much weight has been seen through a truncation.
    struct Share {
        Truncation truncation;
        double weight;
    };

    /// Throws BadData.
    explicit Observations(const Columns& columns);
    explicit Observations(std::vector<Row> rows);

    std::span<const Row> rows() const { return rows_; }
    /// The sum of the weights.
    double count() const { return count_; }

    /// The exact values in ascending order; and each of them once, with the sum of its weights.
    std::span<const double> values() const { return values_; }
    std::span<const double> distinct() const { return distinct_; }
    std::span<const double> distinct_weights() const { return distinct_weights_; }
    /// The others.
    std::span<const Row> intervals() const { return intervals_; }
    /// The bounded truncations, each once.
    std::span<const Share> truncations() const { return truncations_; }

    /// Nothing but values of weight 1, all seen through one truncation or none.
    bool plain() const { return plain_; }
    Truncation common_truncation() const {
        return truncations_.empty() ? Truncation{} : truncations_.front().truncation;
    }
    /// All exact values are integers, and all ends of intervals.
    bool whole() const;

    /// The largest number that no value can lie below, and the smallest that none can lie above: what limits an unknown end
    /// of a support. Infinite where no observation limits it.
    double smallest() const { return smallest_; }
    double largest() const { return largest_; }

    /// A sample that stands for the observations where start values are looked for: the values themselves where the
    /// observations are plain.
    std::vector<double> representatives() const;

    /// About so many of them, at equal distances in their order, with the first and the last; all where they are no more.
    Observations part(std::size_t size) const;

    /// In which the exact values have been written down.
    double recording_unit() const;

  private:
    void arrange();

    std::vector<Row> rows_, intervals_;
    std::vector<double> values_, distinct_, distinct_weights_;
    std::vector<Share> truncations_;
    double count_ = 0, smallest_ = HUGE_VAL, largest_ = -HUGE_VAL;
    bool plain_ = true;
};

}  // namespace pral::inference
