#include "distributions/zeros.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <utility>
#include <vector>

#include "distributions/expectations.h"
#include "distributions/univariate_family.h"

namespace pral {

namespace {

bool is_point(const Univariate& d) { return d.support().lower == d.support().upper; }

Moments with_divergences_of(const Univariate& d, const Moments& moments) {
    const auto limit = [&](Side side) {
        return std::isinf(side == Side::lower ? d.support().lower : d.support().upper) ? d.moment_limit(side)
                                                                                       : HUGE_VAL;
    };
    return with_divergences(moments, limit(Side::lower), limit(Side::upper));
}

/// A number that is computed when it is first asked for. Threads that ask at once compute the same.
class Later {
  public:
    template <class Compute>
    double operator()(Compute compute) const {
        double value = value_.load(std::memory_order_relaxed);
        if (!std::isnan(value)) return value;
        value = compute();
        value_.store(value, std::memory_order_relaxed);
        return value;
    }

  private:
    mutable std::atomic<double> value_{numerics::kNaN};
};

/// What both variants of a count do alike.
class CountVariant : public Univariate {
  public:
    Values values() const override { return Values::integers; }
    Support support() const override { return support_; }
    double moment_limit(Side side) const override { return base_->moment_limit(side); }
    std::string text() const override { return prefix() + base_->text(); }
    Tails tails_below(double x) const override { return tails(std::ceil(x) - 1); }
    std::optional<Moments> moments() const override {
        if (is_point(*this)) return Moments{support_.lower, 0, numerics::kNaN, numerics::kNaN};
        const auto all = own_moments();
        return all ? std::optional(with_divergences_of(*this, *all)) : std::nullopt;
    }

    void evaluate(Function function, std::span<const double> in, std::span<double> out) const override {
        if (is_point(*this)) return detail::evaluate_point(support_.lower, function, in, out);
        if (function == Function::quantile) return invert(Side::lower, in, out);
        if (function == Function::upper_quantile) return invert(Side::upper, in, out);
        std::ranges::copy(in, out.begin());
        detail::each_once(out, [&](std::span<double> values) { evaluate_few(function, values); });
    }

  protected:
    /// A tail from the end of the support on.
    static double beyond(Function function) {
        return function == Function::cumulative ? 1 : function == Function::log_survival ? -HUGE_VAL : 0;
    }
    explicit CountVariant(Shared base) : base_(std::move(base)) {}
    double of_base(Function function, double x) const { return (*base_)(function, x); }

    /// In place, by blocks.
    void evaluate_few(Function function, std::span<double> values) const {
        constexpr std::size_t kBlock = 128;
        double x[kBlock];
        for (; !values.empty(); values = values.subspan(std::min(kBlock, values.size()))) {
            const std::span<double> block = values.first(std::min(kBlock, values.size()));
            std::ranges::copy(block, x);
            evaluate_block(function, {x, block.size()}, block);
            if (function == Function::log_density) continue;
            for (std::size_t i = 0; i < block.size(); ++i)
                if (x[i] >= support_.upper) block[i] = beyond(function);
        }
    }

    virtual std::string prefix() const = 0;
    virtual std::optional<Moments> own_moments() const = 0;
    /// Of arrays that do not overlap.
    virtual void evaluate_block(Function, std::span<const double> x, std::span<double> out) const = 0;
    /// The tail of the base that belongs to a tail inside (0,1); none where the value is 0.
    virtual std::optional<Tail> tail_of_base(Side side, double tail) const = 0;

    void invert(Side side, std::span<const double> in, std::span<double> out) const {
        detail::evaluate_inside(
            in, out,
            [&](double p, double& end) { return detail::is_inner_percentile(p, side, support_, end); },
            [&](std::span<double> tails) { invert_all(side, tails); });
    }
    void invert_all(Side side, std::span<double> tails) const {
        std::vector<double> sided[2];
        std::vector<std::size_t> places[2];
        for (std::size_t i = 0; i < tails.size(); ++i) {
            const auto tail = tail_of_base(side, tails[i]);
            tails[i] = 0;
            if (!tail) continue;
            sided[tail->side == Side::upper].push_back(tail->probability);
            places[tail->side == Side::upper].push_back(i);
        }
        for (const bool upper : {false, true}) {
            const std::span<double> x = sided[upper];
            base_->evaluate(upper ? Function::upper_quantile : Function::quantile, x, x);
            for (std::size_t j = 0; j < x.size(); ++j) tails[places[upper][j]] = x[j];
        }
        for (double& x : tails) x = std::clamp(x, support_.lower, support_.upper);
    }

    Shared base_;
    Support support_ = {};
};

// ------------------------------------------------------------------------------------------- With more zeros

class ZeroInflatedCount final : public CountVariant {
  public:
    ZeroInflatedCount(Shared base, double pi) : CountVariant(std::move(base)), pi_(pi) {
        const auto [lower, upper] = base_->support();
        support_ = pi == 0 ? Support{0, 0} : Support{std::min(lower, 0.0), std::max(upper, 0.0)};
    }

    double log_within(double lower, double upper) const override {
        if (!(lower <= upper)) return -HUGE_VAL;
        const double log = base_->log_within(lower, upper);
        return lower <= 0 && upper >= 0 ? log_beside_zeros(log) : log + std::log(pi_);
    }
    std::optional<double> mode() const override {
        if (is_point(*this)) return 0;
        const auto of = base_->mode();
        if (!of) return of;
        return (*this)(Function::log_density, *of) > (*this)(Function::log_density, 0) ? *of : 0;
    }
    std::string text() const override {
        std::string text = CountVariant::text();
        text.pop_back();
        return text + ", " + shortest(pi_) + ")";
    }

  private:
    std::string prefix() const override { return "ZI"; }
    std::optional<Moments> own_moments() const override {
        const Moments zero = {0, 0, 0, 0};
        const auto of = is_point(*base_) ? Moments{base_->support().lower, 0, 0, 0} : base_->moments();
        if (!of) return std::nullopt;
        return mixed(std::array{*of, zero}, std::array{pi_, 1 - pi_});
    }

    /// x below 0 has the extra zeros above it, another x below it.
    void evaluate_block(Function function, std::span<const double> x, std::span<double> out) const override {
        const bool log_tail = function == Function::log_cumulative || function == Function::log_survival;
        const bool upper = function == Function::survival || function == Function::log_survival;
        const double log_pi = std::log(pi_);
        base_->evaluate(function, x, out);
        for (std::size_t i = 0; i < x.size(); ++i) {
            double& value = out[i];
            const bool beside_zeros = upper == (x[i] < 0);
            if (function == Function::log_density)
                value = x[i] == 0 ? log_beside_zeros(value) : value + log_pi;
            else if (log_tail)
                value = beside_zeros ? log_beside_zeros(value) : value + log_pi;
            else
                value = std::min(beside_zeros ? pi_ * value + (1 - pi_) : pi_ * value, 1.0);
        }
    }
    /// ln(pi p + 1 - pi) of ln p.
    double log_beside_zeros(double log) const {
        if (pi_ == 1) return log;
        const double sum = pi_ * std::exp(log) + (1 - pi_);
        return sum < 0.5 ? std::log(sum) : numerics::log1p_fn(pi_ * numerics::expm1_fn(log));
    }

    double negative() const {
        return negative_([this] { return pi_ * of_base(Function::cumulative, -1); });
    }
    double positive() const {
        return positive_([this] { return pi_ * of_base(Function::survival, 0); });
    }
    double not_positive() const {
        return not_positive_([this] { return pi_ * of_base(Function::cumulative, 0) + (1 - pi_); });
    }

    /// From below the values under 0, then all zeros, then the others.
    std::optional<Tail> tail_of_base(Side side, double tail) const override {
        const bool lower = side == Side::lower;
        const auto share = [&](double part) { return std::min(part / pi_, 1 - 0x1p-53); };
        const double below = lower ? tail : 1 - tail, above = lower ? 1 - tail : tail;
        if (below <= negative()) return Tail{Side::lower, share(below)};
        const bool beyond = lower ? below > not_positive() : above < positive();
        return beyond ? std::optional(Tail{Side::upper, share(above)}) : std::nullopt;
    }

    double pi_;
    Later negative_, positive_, not_positive_;
};

// ------------------------------------------------------------------------------------------------- Without zeros

class ZeroTruncatedCount final : public CountVariant {
  public:
    double log_within(double lower, double upper) const override {
        if (is_point(*this)) return lower <= support_.lower && upper >= support_.lower ? 0 : -HUGE_VAL;
        return std::min(base_->log_within(std::max(lower, 1.0), upper) - log_not_zero(), 0.0);
    }
    explicit ZeroTruncatedCount(Shared base) : CountVariant(std::move(base)) {
        const auto [lower, upper] = base_->support();
        support_ = {std::max(lower, 1.0), std::max(upper, 1.0)};
    }

    std::optional<double> mode() const override {
        const auto of = base_->mode();
        if (!of) return of;
        const double least = std::max(*of, support_.lower), last = support_.upper;
        const bool rises = std::isfinite(last) &&
                           of_base(Function::log_density, last) > of_base(Function::log_density, least);
        return rises ? last : least;
    }

  private:
    std::string prefix() const override { return "ZT"; }

    /// The powers about the mean t of what is left are those of the base but for the zeros, (-t)^k each. With little left
    /// that cancels.
    std::optional<Moments> own_moments() const override {
        const bool heavy = moment_limit(Side::upper) < HUGE_VAL;
        if (not_zero() < (heavy ? kDeep : 0.05)) return std::nullopt;
        const std::optional<Moments> of = base_->moments();
        if (!of || zero() == 0) return of;
        const double t = of->mean / not_zero(), d = of->mean - t, v = of->variance;
        const double m3 = of->skewness * v * std::sqrt(v), m4 = (of->kurtosis + 3) * v * v;
        const double second = (v + d * d - zero() * t * t) / not_zero();
        const double third = (m3 + 3 * d * v + d * d * d + zero() * t * t * t) / not_zero();
        const double fourth =
            (m4 + 4 * d * m3 + 6 * d * d * v + d * d * d * d - zero() * t * t * t * t) / not_zero();
        return Moments{t, second, third / (second * std::sqrt(second)), fourth / (second * second) - 3};
    }

    void evaluate_block(Function function, std::span<const double> x, std::span<double> out) const override {
        const double not_zero = this->not_zero(), log_not_zero = this->log_not_zero();
        const bool below_range = not_zero < kDeep;
        const bool log_upper =
            function == Function::log_survival || (function == Function::survival && below_range);
        const bool lower = function == Function::cumulative || function == Function::log_cumulative;
        base_->evaluate(function == Function::log_density ? function
                        : log_upper                       ? Function::log_survival
                        : lower                           ? Function::cumulative
                                                          : Function::survival,
                        x, out);
        for (std::size_t i = 0; i < x.size(); ++i) {
            double& value = out[i];
            if (std::isnan(x[i])) continue;
            if (function == Function::log_density)
                value = x[i] < 1 ? -HUGE_VAL : value - log_not_zero;
            else if (x[i] < 1)
                value = function == Function::survival         ? 1
                        : function == Function::log_cumulative ? -HUGE_VAL
                                                               : 0;
            else if (function == Function::log_survival)
                value = std::min(log_survival(std::floor(x[i]), value), 0.0);
            else if (log_upper)
                value = std::min(std::exp(value - log_not_zero), 1.0);
            else if (function == Function::survival)
                value = std::min(value / not_zero, 1.0);
            else if (function == Function::cumulative)
                value = std::clamp(cumulative(std::floor(x[i]), value), 0.0, 1.0);
            else
                value = std::min(log_cumulative(std::floor(x[i]), value), 0.0);
        }
    }
    /// The share of [1, x] in what is left, x >= 1: a difference from the side on which little cancels, or else a sum.
    double cumulative(double x, double of_base_there) const {
        const double difference = of_base_there - zero();
        if (difference >= 0.25 * of_base_there && not_zero() >= kDeep) return difference / not_zero();
        const double above = std::exp(of_base(Function::log_survival, x) - log_not_zero());
        return above <= 0.75 || x > kFew ? 1 - above : std::exp(log_sum_to(x));
    }
    double log_cumulative(double x, double of_base_there) const {
        if (of_base_there >= kDeep) {
            const double share = cumulative(x, of_base_there);
            return share < 0.5
                       ? std::log(share)
                       : numerics::log1p_fn(-std::exp(of_base(Function::log_survival, x) - log_not_zero()));
        }
        if (x <= kFew) return log_sum_to(x);
        const double log = of_base(Function::log_cumulative, x), zero = of_base(Function::log_cumulative, 0);
        return log + numerics::log1m_exp(log - zero) - log_not_zero();
    }
    double log_survival(double x, double log_of_base) const {
        const double log = log_of_base - log_not_zero();
        constexpr double kNearOne = -0.1;  // the logarithms cancel
        return log < kNearOne ? log : numerics::log1p_fn(-(*this)(Function::cumulative, x));
    }
    /// ln of the sum of the masses of 1, ..., x.
    double log_sum_to(double x) const {
        std::array<double, kFew> masses;
        const auto n = static_cast<std::size_t>(std::min<double>(x, kFew));
        for (std::size_t k = 0; k < n; ++k) masses[k] = static_cast<double>(k + 1);
        const std::span<double> logs(masses.data(), n);
        base_->evaluate(Function::log_density, logs, logs);
        const double largest = *std::ranges::max_element(logs);
        if (largest == -HUGE_VAL) return largest;
        double sum = 0;
        for (const double log : logs) sum += std::exp(log - largest);
        return largest + std::log(sum) - log_not_zero();
    }

    std::optional<Tail> tail_of_base(Side side, double tail) const override {
        const double below = side == Side::lower ? tail : 1 - tail,
                     above = side == Side::lower ? 1 - tail : tail;
        const double lower = zero() + not_zero() * below;
        if (lower <= 0.5) return Tail{Side::lower, lower};
        return Tail{Side::upper, not_zero() * above};
    }

    static constexpr std::size_t kFew = 32;
    static constexpr double kDeep = 1e-290;  // tails below lose digits, or are none

    double zero() const {
        return zero_([this] { return of_base(Function::cumulative, 0); });
    }
    double not_zero() const {
        return not_zero_([this] { return of_base(Function::survival, 0); });
    }
    double log_not_zero() const {
        return log_not_zero_([this] { return of_base(Function::log_survival, 0); });
    }

    Later zero_, not_zero_, log_not_zero_;
};

}  // namespace

Shared zero_inflated(Shared base, double pi) {
    return std::make_shared<const ZeroInflatedCount>(std::move(base), pi);
}

Shared zero_truncated(Shared base) { return std::make_shared<const ZeroTruncatedCount>(std::move(base)); }

}  // namespace pral
