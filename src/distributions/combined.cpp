#include "distributions/combined.h"

#include <algorithm>
#include <cmath>
#include <ranges>
#include <utility>

#include "distributions/arrays.h"
#include "distributions/expectations.h"
#include "distributions/univariate_family.h"
#include "numerics/each.h"
#include "numerics/ordinals.h"

namespace pral {

namespace {

bool is_upper(Function function) {
    return function == Function::survival || function == Function::log_survival ||
           function == Function::upper_quantile;
}
bool is_logarithm(Function function) {
    return function == Function::log_cumulative || function == Function::log_survival;
}

/// The least x in [low, high] with F(x) >= p, or with S(x) <= p on the upper side, 0 < p < 1; `high` has it. Newton's steps
/// inside the bracket, halvings of the doubles in it where they do not help, to the first double (or integer) that reaches p.
double first_reaching(const Univariate& d, Side side, double p, double low, double high) {
    constexpr int kSteps = 200;
    const bool by_lower = side == Side::lower ? p <= 0.5 : p > 0.5;
    const double target = (side == Side::lower) == by_lower ? p : 1 - p;
    const auto tail = [&](double x) { return d(by_lower ? Function::cumulative : Function::survival, x); };
    const auto reaches = [&](double at) { return by_lower ? at >= target : at <= target; };
    if (!(low < high) || reaches(tail(low))) return low;
    const bool integers = d.values() == Values::integers, smooth = d.values() == Values::continuous;
    const auto middle = [&] {
        if (integers && high - low < 0x1p53) return std::floor(low / 2 + high / 2);
        const double between = numerics::middle_double(low, high);
        return integers ? std::floor(between) : between;
    };
    double x = middle();
    for (int step = 0; step < kSteps && x > low && x < high; ++step) {
        const double at = tail(x);
        (reaches(at) ? high : low) = x;
        double next = middle();
        if (smooth && step % 3 != 2) {
            const double density = std::exp(d(Function::log_density, x));
            const double newton = x + (by_lower ? target - at : at - target) / density;
            if (newton > low && newton < high) next = newton;
            if (std::fabs(newton - x) <= 0x1p-52 * std::fabs(x)) return x;
        }
        if (next == x) break;
        x = next;
    }
    return high;
}

// ------------------------------------------------------------------------------------------------- Truncation

class Truncation final : public Univariate {
  public:
    Truncation(Shared base, End lower, End upper) : base_(std::move(base)), ends_{lower, upper} {
        const Support all = base_->support();
        window_ = {below(lower), above(upper)};
        support_ = {std::max(all.lower, lower.is_percentile ? quantile_at(lower.number) : lower.number),
                    std::min(all.upper, upper.is_percentile ? quantile_at(upper.number) : upper.number)};
        if (base_->values() == Values::integers)
            support_ = {std::ceil(support_.lower), std::floor(support_.upper)};
        const bool by_percentile =
            base_->values() == Values::continuous && (lower.is_percentile || upper.is_percentile);
        log_mass_ = by_percentile ? window_.log_mass() : base_->log_within(support_.lower, support_.upper);
        resolved_ = by_percentile || window_.share() >= kResolved;
        invertible_ = by_percentile || window_.share() >= kInvertible;
    }
    bool empty() const { return !(log_mass_ > -HUGE_VAL) || !(support_.lower <= support_.upper); }

    Values values() const override { return base_->values(); }
    Support support() const override { return support_; }

    void evaluate(Function function, std::span<const double> in, std::span<double> out) const override {
        if (is_inverse(function))
            return invert(function == Function::quantile ? Side::lower : Side::upper, in, out);
        if (in.data() != out.data()) std::ranges::copy(in, out.begin());
        const auto by_blocks = [&](std::span<double> values) {
            for (; !values.empty(); values = values.subspan(std::min(kArrayBlock, values.size())))
                evaluate_block(function, values.first(std::min(kArrayBlock, values.size())));
        };
        if (values() == Values::integers)
            detail::each_once(out, by_blocks);
        else
            by_blocks(out);
    }

    Tails tails_below(double x) const override {
        if (std::isnan(x)) return {x, x};
        const Tails at = base_->tails_below(x);
        if (x <= support_.lower) return {0, 1};
        if (x > support_.upper) return {1, 0};
        if (values() == Values::integers) return tails(std::ceil(x) - 1);
        if (!resolved_ && values() == Values::continuous) return tails(x);
        const bool by_lower = at.lower <= 0.5;
        return {share(window_.by_upper ? window_.below.upper - at.upper : at.lower - window_.below.lower),
                share(by_lower ? window_.above.lower - at.lower : at.upper - window_.above.upper)};
    }
    double log_within(double lower, double upper) const override {
        return base_->log_within(std::max(lower, support_.lower), std::min(upper, support_.upper)) -
               log_mass_;
    }
    std::optional<double> mode() const override {
        const auto of_base = base_->mode();
        const bool inside = of_base && *of_base >= support_.lower && *of_base <= support_.upper;
        return inside ? of_base : std::nullopt;
    }
    double moment_limit(Side side) const override {
        const double end = side == Side::lower ? support_.lower : support_.upper;
        return std::isinf(end) ? base_->moment_limit(side) : HUGE_VAL;
    }
    std::string text() const override {
        const bool percentiles = ends_[0].is_percentile || ends_[1].is_percentile;
        const auto number = [&](const End& end, double open) {
            const bool is_open = !end.is_percentile && std::isinf(end.number);
            return shortest(percentiles && is_open ? open : end.number);
        };
        if (percentiles && !(ends_[0].is_percentile || std::isinf(ends_[0].number)))
            return std::string("(") + base_->text() + " within [" + shortest(ends_[0].number) +
                   ", inf]) within percentiles [" + shortest(0) + ", " + number(ends_[1], 1) + "]";
        return base_->text() + (percentiles ? " within percentiles [" : " within [") + number(ends_[0], 0) +
               ", " + number(ends_[1], 1) + "]";
    }

  private:
    double quantile_at(double p) const { return (*base_)(Function::quantile, p); }
    /// The tails of what is left out below, and of all but what is left out above. A percentile cuts an atom in two
    /// nowhere: the whole of it is kept.
    Tails below(End end) const {
        if (!end.is_percentile) return base_->tails_below(end.number);
        if (base_->values() != Values::continuous) return base_->tails_below(quantile_at(end.number));
        return {end.number, 1 - end.number};
    }
    Tails above(End end) const {
        if (!end.is_percentile) return base_->tails(end.number);
        if (base_->values() != Values::continuous) return base_->tails(quantile_at(end.number));
        return {end.number, 1 - end.number};
    }
    /// The function of x, in place.
    void evaluate_block(Function function, std::span<double> values) const {
        if (!resolved_ && function != Function::log_density) {
            for (double& x : values) x = unresolved_tail(function, x);
            return;
        }
        double places[kArrayBlock];
        std::ranges::copy(values, places);
        const std::span<const double> x = {places, values.size()};
        switch (function) {
            case Function::log_density:
                base_->evaluate(function, x, values);
                for (std::size_t i = 0; i < x.size(); ++i)
                    values[i] =
                        x[i] < support_.lower || x[i] > support_.upper ? -HUGE_VAL : values[i] - log_mass_;
                return;
            case Function::cumulative:
                return parts_below(x, values);
            case Function::survival:
                return parts_above(x, values);
            default:
                return log_parts(function, x, values);
        }
    }
    /// The share of what is kept that lies up to x, from the tails of the whole on the side that has the digits.
    void parts_below(std::span<const double> x, std::span<double> parts) const {
        base_->evaluate(window_.by_upper ? Function::survival : Function::cumulative, x, parts);
        for (std::size_t i = 0; i < x.size(); ++i) {
            const double part =
                share(window_.by_upper ? window_.below.upper - parts[i] : parts[i] - window_.below.lower);
            parts[i] = x[i] < support_.lower ? 0 : x[i] >= support_.upper ? 1 : part;
        }
    }
    /// The share beyond x: by the cumulative of the whole as long as its complement has the digits.
    void parts_above(std::span<const double> x, std::span<double> parts) const {
        constexpr double kComplement = 0.75;
        const bool by_upper = window_.by_upper, mixed = !by_upper && window_.above.lower > kComplement;
        base_->evaluate(by_upper ? Function::survival : Function::cumulative, x, parts);
        double upper[kArrayBlock];
        std::size_t count = 0;
        for (std::size_t i = 0; mixed && i < x.size(); ++i) {
            upper[count] = x[i];
            count += parts[i] > kComplement;
        }
        if (count > 0) base_->evaluate(Function::survival, {upper, count}, {upper, count});
        const double* next = upper;
        for (std::size_t i = 0; i < x.size(); ++i) {
            const double tail = parts[i];
            const double above = by_upper                      ? tail - window_.above.upper
                                 : mixed && tail > kComplement ? *next++ - window_.above.upper
                                                               : window_.above.lower - tail;
            parts[i] = x[i] < support_.lower ? 1 : x[i] >= support_.upper ? 0 : share(above);
        }
    }
    double share(double mass) const {
        const double part = mass / window_.mass;
        return part < 0 ? 0 : part > 1 ? 1 : part;  // NaN stays NaN
    }
    /// Of a share next to 1 by the other one. Where nothing is left out on this side, the logarithm of the whole has what the
    /// share itself loses.
    void log_parts(Function function, std::span<const double> x, std::span<double> logs) const {
        constexpr double kComplement = 0.75;
        const bool upper = is_upper(function);
        const auto parts = [&](bool of_upper, std::span<const double> from, std::span<double> to) {
            of_upper ? parts_above(from, to) : parts_below(from, to);
        };
        parts(upper, x, logs);
        double others[kArrayBlock], complements[kArrayBlock];
        std::size_t count = 0;
        for (std::size_t i = 0; i < x.size(); ++i) {
            complements[i] = logs[i] > kComplement ? 1 : 0;
            others[count] = x[i];
            count += logs[i] > kComplement;
        }
        double asked[kArrayBlock];
        std::copy_n(others, count, asked);
        parts(!upper, {asked, count}, {others, count});
        const bool open = (upper ? window_.above.upper : window_.below.lower) == 0;
        const double* next = others;
        std::uint64_t tiny = 0;
        for (std::size_t i = 0; i < x.size(); ++i) {
            if (complements[i] > 0) logs[i] = *next++;
            tiny |= complements[i] == 0 && logs[i] < kFewDigits;
        }
        numerics::log_tail_each(logs, {complements, x.size()});
        for (double& log : logs) log = log > 0 ? 0 : log + 0.0;  // no -0.0
        if (!open || tiny == 0) return;
        for (std::size_t i = 0; i < x.size(); ++i)
            if (logs[i] < kLogFewDigits && x[i] >= support_.lower && x[i] < support_.upper)
                logs[i] = std::min((*base_)(function, x[i]) - log_mass_, 0.0);
    }
    static constexpr double kLogFewDigits = -667.7;  // ln(kFewDigits)
    static constexpr double kFewDigits = 1e-290;
    /// The tails of the whole differ too little: from the probability between an end and x.
    double unresolved_tail(Function function, double x) const {
        if (std::isnan(x)) return x;
        const bool upper = is_upper(function), logarithm = is_logarithm(function);
        if (x < support_.lower) return logarithm ? (upper ? 0 : -HUGE_VAL) : upper;
        if (x >= support_.upper) return logarithm ? (upper ? -HUGE_VAL : 0) : !upper;
        const bool integers = values() == Values::integers;
        const double below = integers ? std::floor(x) : x, above = integers ? below + 1 : x;
        const auto log_of = [&](bool of_upper) {
            return std::min(of_upper ? log_within(above, support_.upper) : log_within(support_.lower, below),
                            0.0);
        };
        const double log = log_of(upper);
        if (!logarithm) return std::exp(log);
        return log < -numerics::kLn2 ? log : numerics::log1p_fn(-std::exp(log_of(!upper)));
    }

    /// The percentiles of what is kept as tails of the whole, each the smaller one.
    void invert(Side side, std::span<const double> in, std::span<double> out) const {
        if (!invertible_) {
            for (std::size_t i = 0; i < in.size(); ++i) out[i] = searched(side, in[i]);
            return;
        }
        detail::evaluate_inside(
            in, out,
            [&](double p, double& end) { return detail::is_inner_percentile(p, side, support_, end); },
            [&](std::span<double> tails) { invert_all(side, tails); });
    }
    /// The lower tails of the whole from the front of an array, the upper ones from its back.
    void invert_all(Side side, std::span<double> tails) const {
        double few[kArrayBlock];
        std::vector<double> many(tails.size() > kArrayBlock ? tails.size() : 0);
        const std::span<double> sorted = many.empty() ? std::span(few, tails.size()) : std::span(many);
        std::size_t lower = 0, upper = sorted.size();
        for (const double t : tails) {
            const auto [of, tail] = base_tail(side, t);
            const bool is_lower = of == Side::lower;
            upper -= !is_lower;
            sorted[is_lower ? lower : upper] = tail;
            lower += is_lower;
        }
        const std::span<double> lowers = sorted.first(lower), uppers = sorted.subspan(lower);
        if (!lowers.empty()) base_->evaluate(Function::quantile, lowers, lowers);
        if (!uppers.empty()) base_->evaluate(Function::upper_quantile, uppers, uppers);
        lower = 0, upper = sorted.size();
        for (double& t : tails) {
            const bool is_lower = base_tail(side, t).side == Side::lower;
            upper -= !is_lower;
            const double x = sorted[is_lower ? lower : upper];
            lower += is_lower;
            t = x < support_.lower ? support_.lower : x > support_.upper ? support_.upper : x;
        }
    }
    Tail base_tail(Side side, double t) const {
        const double u = side == Side::lower ? t : 1 - t, v = side == Side::lower ? 1 - t : t;
        const double p = window_.below.lower + u * window_.mass, q = window_.above.upper + v * window_.mass;
        return p <= 0.5 ? Tail{Side::lower, p} : Tail{Side::upper, q};
    }
    /// Between ends whose tails hardly differ, or are beyond doubles.
    double searched(Side side, double t) const {
        if (!(t >= 0 && t <= 1)) return numerics::kNaN;
        if (t == 0 || t == 1) return (t == 0) == (side == Side::lower) ? support_.lower : support_.upper;
        const double low = std::max(support_.lower, -numerics::kInfinity),
                     high = std::min(support_.upper, numerics::kInfinity);
        return first_reaching(*this, side, t, low, high);
    }
    /// With less of the tail between the ends, its percentiles are too few.
    static constexpr double kInvertible = 1e-9;

    Shared base_;
    End ends_[2];
    Difference window_ = {};
    Support support_;
    double log_mass_;
    bool resolved_, invertible_;  ///< the tails of the whole have the digits; its percentiles are enough
};

// ---------------------------------------------------------------------------------------------- Affine mapping

class Affine final : public Univariate {
  public:
    Affine(Shared base, double factor, double shift)
        : base_(std::move(base)), factor_(factor), shift_(shift) {}

    const Shared& base() const { return base_; }
    double factor() const { return factor_; }
    double shift() const { return shift_; }

    Values values() const override {
        const Values of_base = base_->values();
        if (of_base != Values::integers) return of_base;
        const bool stays = std::fabs(factor_) == 1 && shift_ == std::floor(shift_);
        return stays ? Values::integers : Values::countable;
    }
    Support support() const override {
        const auto [lower, upper] = base_->support();
        return factor_ > 0 ? Support{placed(lower), placed(upper)} : Support{placed(upper), placed(lower)};
    }

    void evaluate(Function function, std::span<const double> in, std::span<double> out) const override {
        if (is_inverse(function)) {
            base_->evaluate(of_base(function), in, out);
            for (double& x : out) x = placed(x);
            return;
        }
        const bool atoms = values() != Values::continuous;
        if (atoms && factor_ < 0 && function != Function::log_density)
            return mirrored_atoms(function, in, out);
        for (std::size_t i = 0; i < in.size(); ++i) out[i] = inverse(in[i]);
        base_->evaluate(of_base(function), out, out);
        if (function == Function::log_density && !atoms) {
            const double log_factor = std::log(std::fabs(factor_));
            for (double& log : out) log -= log_factor;
        }
    }
    Tails tails_below(double x) const override {
        const double base_x = inverse(x);
        if (factor_ > 0) return base_->tails_below(base_x);
        const Tails at = base_->tails(base_x);
        return {at.upper, at.lower};
    }
    double log_within(double lower, double upper) const override {
        const double a = inverse(lower), b = inverse(upper);
        return factor_ > 0 ? base_->log_within(a, b) : base_->log_within(b, a);
    }
    std::optional<Moments> moments() const override {
        const auto of_base = base_->moments();
        if (!of_base) return std::nullopt;
        return linear(*of_base, factor_, shift_);
    }
    double integrated_tail(Side side, double from, double to) const override {
        const double a = inverse(from), b = inverse(to), size = std::fabs(factor_);
        if (factor_ > 0) return size * base_->integrated_tail(side, a, b);
        return size * base_->integrated_tail(side == Side::lower ? Side::upper : Side::lower, b, a);
    }
    std::optional<double> mode() const override {
        const auto of_base = base_->mode();
        return of_base ? std::optional(placed(*of_base)) : std::nullopt;
    }
    double moment_limit(Side side) const override {
        const Side of_base = factor_ > 0 ? side : side == Side::lower ? Side::upper : Side::lower;
        return base_->moment_limit(of_base);
    }
    std::string text() const override {
        std::string text = factor_ == 1 ? base_->text() : shortest(factor_) + " * (" + base_->text() + ")";
        if (shift_ != 0) text += (shift_ < 0 ? " - " : " + ") + shortest(std::fabs(shift_));
        return text;
    }

  private:
    double placed(double x) const { return std::isinf(x) ? (factor_ > 0 ? x : -x) : factor_ * x + shift_; }
    /// The value of the base that is placed at x; for values that are countable the one whose place rounds to x.
    double inverse(double x) const {
        const double base_x = std::isinf(x) ? (factor_ > 0 ? x : -x) : (x - shift_) / factor_;
        if (base_->values() != Values::integers) return base_x;
        const double nearest = std::round(base_x);
        return std::fabs(base_x - nearest) <= 1e-8 && placed(nearest) == x ? nearest : base_x;
    }
    Function of_base(Function function) const { return factor_ > 0 ? function : mirrored(function); }
    /// P(-X <= x) is P(X >= -x), which counts an atom at -x.
    void mirrored_atoms(Function function, std::span<const double> in, std::span<double> out) const {
        for (std::size_t i = 0; i < in.size(); ++i) {
            if (std::isnan(in[i])) {
                out[i] = in[i];
                continue;
            }
            const Tails at = base_->tails_below(inverse(in[i]));
            const double here = is_upper(function) ? at.lower : at.upper;
            const double other = is_upper(function) ? at.upper : at.lower;
            out[i] = !is_logarithm(function) ? here
                     : here < 0.5            ? std::log(here)
                                             : numerics::log1p_fn(-other);
        }
    }

    Shared base_;
    double factor_, shift_;
};

// ---------------------------------------------------------------------------------------------------- Mixture

class Mixture final : public Univariate {
  public:
    Mixture(std::vector<Shared> components, std::vector<double> weights)
        : components_(std::move(components)), weights_(std::move(weights)) {
        const double largest = *std::ranges::max_element(weights_);
        double sum = 0;
        for (double& weight : weights_) sum += weight /= largest;
        for (double& weight : weights_) weight /= sum;
    }

    Values values() const override {
        bool continuous = true, integers = true, countable = true;
        for (const Shared& component : components_) {
            const Values of = component->values();
            continuous &= of == Values::continuous;
            integers &= of == Values::integers;
            countable &= of == Values::integers || of == Values::countable;
        }
        if (continuous) return Values::continuous;
        return integers ? Values::integers : countable ? Values::countable : Values::mixed;
    }
    Support support() const override {
        Support all = {HUGE_VAL, -HUGE_VAL};
        for (std::size_t i = 0; i < components_.size(); ++i) {
            if (weights_[i] == 0) continue;
            const auto [lower, upper] = components_[i]->support();
            all = {std::min(all.lower, lower), std::max(all.upper, upper)};
        }
        return all;
    }

    void evaluate(Function function, std::span<const double> in, std::span<double> out) const override {
        if (is_inverse(function)) {
            for (std::size_t i = 0; i < in.size(); ++i)
                out[i] = inverted(function == Function::quantile ? Side::lower : Side::upper, in[i]);
            return;
        }
        if (function == Function::log_density) return log_densities(in, out);
        if (is_logarithm(function)) return log_tails(function, in, out);
        const std::vector<double> x(in.begin(), in.end());
        std::vector<double> of_component(in.size());
        std::ranges::fill(out, 0.0);
        for (std::size_t i = 0; i < components_.size(); ++i) {
            components_[i]->evaluate(function, x, of_component);
            for (std::size_t j = 0; j < out.size(); ++j) out[j] += weights_[i] * of_component[j];
        }
        for (double& p : out) p = std::min(p, 1.0);
    }
    Tails tails_below(double x) const override {
        Tails sum = {0, 0};
        for (std::size_t i = 0; i < components_.size(); ++i) {
            const Tails of = components_[i]->tails_below(x);
            sum = {sum.lower + weights_[i] * of.lower, sum.upper + weights_[i] * of.upper};
        }
        return {std::min(sum.lower, 1.0), std::min(sum.upper, 1.0)};
    }
    double log_within(double lower, double upper) const override {
        return log_sum([&](std::size_t i) { return components_[i]->log_within(lower, upper); });
    }
    std::optional<Moments> moments() const override;
    double integrated_tail(Side side, double from, double to) const override {
        double sum = 0;
        for (std::size_t i = 0; i < components_.size(); ++i)
            if (weights_[i] > 0) sum += weights_[i] * components_[i]->integrated_tail(side, from, to);
        return sum;
    }
    double moment_limit(Side side) const override {
        double limit = HUGE_VAL;
        for (std::size_t i = 0; i < components_.size(); ++i)
            if (weights_[i] > 0) limit = std::min(limit, components_[i]->moment_limit(side));
        return limit;
    }
    std::string text() const override {
        std::string text = "Mixture(";
        for (std::size_t i = 0; i < components_.size(); ++i) {
            if (i > 0) text += ", ";
            text += shortest(weights_[i]) + ": " + components_[i]->text();
        }
        return text + ")";
    }

  private:
    /// The logarithm of the weighted sum of exp(logs), by the largest of them.
    template <class Log>
    double log_sum(Log log) const {
        double largest = -HUGE_VAL;
        for (std::size_t i = 0; i < components_.size(); ++i)
            if (weights_[i] > 0) largest = std::max(largest, log(i));
        if (!std::isfinite(largest)) return largest;
        double sum = 0;
        for (std::size_t i = 0; i < components_.size(); ++i)
            if (weights_[i] > 0) sum += weights_[i] * std::exp(log(i) - largest);
        return largest + std::log(sum);
    }
    /// Where some components have a density and others probabilities, the atoms count at their places.
    void log_densities(std::span<const double> in, std::span<double> out) const {
        const bool mixed = values() == Values::mixed;
        for (std::size_t j = 0; j < in.size(); ++j) {
            const double x = in[j];
            const auto log = [&](std::size_t i) { return (*components_[i])(Function::log_density, x); };
            if (std::isnan(x)) {
                out[j] = x;
                continue;
            }
            const bool atom =
                mixed &&
                std::ranges::any_of(std::views::iota(std::size_t{0}, components_.size()), [&](std::size_t i) {
                    return components_[i]->values() != Values::continuous && weights_[i] > 0 &&
                           log(i) > -HUGE_VAL;
                });
            out[j] = log_sum([&](std::size_t i) {
                const bool counts = !mixed || atom == (components_[i]->values() != Values::continuous);
                return counts ? log(i) : -HUGE_VAL;
            });
        }
    }
    void log_tails(Function function, std::span<const double> in, std::span<double> out) const {
        const Function plain =
            function == Function::log_cumulative ? Function::cumulative : Function::survival;
        const Function other =
            function == Function::log_cumulative ? Function::survival : Function::cumulative;
        for (std::size_t j = 0; j < in.size(); ++j) {
            const double x = in[j];
            if (std::isnan(x))
                out[j] = x;
            else if ((*this)(plain, x) > 0.5)
                out[j] = numerics::log1p_fn(-(*this)(other, x));
            else
                out[j] = log_sum([&](std::size_t i) { return (*components_[i])(function, x); });
        }
    }

    /// The least x whose tail reaches the percentile lies between those of the components.
    double inverted(Side side, double p) const {
        const Function inverse = side == Side::lower ? Function::quantile : Function::upper_quantile;
        if (!(p >= 0 && p <= 1)) return numerics::kNaN;
        if (p == 0 || p == 1) return (p == 0) == (side == Side::lower) ? support().lower : support().upper;
        double low = HUGE_VAL, high = -HUGE_VAL;
        for (std::size_t i = 0; i < components_.size(); ++i) {
            if (weights_[i] == 0) continue;
            const double x = (*components_[i])(inverse, p);
            low = std::min(low, x);
            high = std::max(high, x);
        }
        return first_reaching(*this, side, p, low, high);
    }

    std::vector<Shared> components_;
    std::vector<double> weights_;
};

std::optional<Moments> Mixture::moments() const {
    std::vector<Moments> of;
    for (const Shared& component : components_) of.push_back(pral::moments(*component));
    return with_divergences(mixed(of, weights_), moment_limit(Side::lower), moment_limit(Side::upper));
}

}  // namespace

Shared truncated(Shared base, End lower, End upper, std::string& objection) {
    for (const End& end : {lower, upper}) {
        if (std::isnan(end.number))
            objection = "a bound must be a number";
        else if (end.is_percentile && !(end.number >= 0 && end.number <= 1))
            objection = "a percentile must be between 0 and 1";
        if (!objection.empty()) return nullptr;
    }
    auto made = std::make_shared<const Truncation>(std::move(base), lower, upper);
    if (!made->empty()) return made;
    objection = "no probability lies between the bounds";
    return nullptr;
}

Shared affine(Shared base, double factor, double shift, std::string& objection) {
    if (!std::isfinite(factor) || factor == 0)
        objection = "the factor must be a finite number other than 0";
    else if (!std::isfinite(shift))
        objection = "the shift must be a finite number";
    if (!objection.empty()) return nullptr;
    return std::make_shared<const Affine>(std::move(base), factor, shift);
}

Shared mixture(std::vector<Shared> components, std::vector<double> weights, std::string& objection) {
    const auto valid = [](double weight) { return weight >= 0 && std::isfinite(weight); };
    if (components.empty() || components.size() != weights.size())
        objection = "a mixture needs a weight for each component";
    else if (!std::ranges::all_of(weights, valid))
        objection = "weights must be finite and >= 0";
    else if (std::ranges::all_of(weights, [](double weight) { return weight == 0; }))
        objection = "a weight must be > 0";
    if (!objection.empty()) return nullptr;
    return std::make_shared<const Mixture>(std::move(components), std::move(weights));
}

}  // namespace pral
