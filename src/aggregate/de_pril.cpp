#include "aggregate/de_pril.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <numeric>

#include "numerics/elementary.h"

namespace pral {

namespace {

constexpr Message kTooLarge = "Error: the portfolio is too large";
constexpr Message kOverflow = "Error: the recursion leaves the range of numbers";

/// Ends of tables and of work, so that no portfolio takes more than a few seconds or some hundred megabytes.
constexpr std::size_t kMostAmounts = std::size_t{1} << 24;
constexpr double kMostWork = 4e9;

/// Numbers on their way to underflow count as 0: they have lost digits and are slow. A power of a ratio that small could
/// only matter to probabilities that are as small.
constexpr double kSmallest = 1e-300;
double flushed(double value) { return std::fabs(value) < kSmallest ? 0 : value; }

/// In eight interleaved parts: the additions do not wait for one another, and their order is the same everywhere.
double scalar_product(std::span<const double> a, std::span<const double> b) {
    constexpr std::size_t kParts = 8;
    double parts[kParts] = {};
    const std::size_t whole = a.size() / kParts * kParts;
    for (std::size_t i = 0; i < whole; i += kParts) {
        for (std::size_t k = 0; k < kParts; ++k) parts[k] += a[i + k] * b[i + k];
    }
    for (std::size_t i = whole; i < a.size(); ++i) parts[i - whole] += a[i] * b[i];
    return ((parts[0] + parts[4]) + (parts[2] + parts[6])) + ((parts[1] + parts[5]) + (parts[3] + parts[7]));
}

/// What matters of a portfolio once its certain and its impossible claims are set aside.
struct Risk {
    std::vector<double> q;
    std::vector<double> policies;  // by amount: policies[(j - 1) * q.size() + i]
    std::size_t amounts;
    std::size_t largest = 0;  // the largest claim that a policy can make
    double mean = 0, total = 0;

    std::span<const double> of_amount(std::size_t j) const {
        return std::span(policies).subspan((j - 1) * q.size(), q.size());
    }
    double count_of_amount(std::size_t j) const {
        double count = 0;
        for (const double n : of_amount(j)) count += n;
        return count;
    }
};

Risk without_certainties(const Portfolio& portfolio, double& certain) {
    std::vector<std::size_t> kept;
    for (std::size_t i = 0; i < portfolio.classes(); ++i) {
        if (portfolio.q[i] == 0) continue;
        if (portfolio.q[i] != 1) {
            kept.push_back(i);
            continue;
        }
        for (std::size_t j = 1; j <= portfolio.amounts; ++j)
            certain += static_cast<double>(j) * portfolio.count(i, j);
    }
    Risk risk{{}, {}, portfolio.amounts};
    risk.policies.reserve(kept.size() * portfolio.amounts);
    for (const std::size_t i : kept) risk.q.push_back(portfolio.q[i]);
    for (std::size_t j = 1; j <= portfolio.amounts; ++j) {
        for (const std::size_t i : kept) {
            const double n = portfolio.count(i, j);
            risk.policies.push_back(n);
            if (n == 0) continue;  // nothing, however large q is
            risk.mean += static_cast<double>(j) * portfolio.q[i] * n;
            risk.total += static_cast<double>(j) * n;
            risk.largest = j;
        }
    }
    return risk;
}

/// Which amounts some set of policies adds up to.
class Attainable {
  public:
    explicit Attainable(const Risk& risk) {
        if (gapless(risk)) return;
        const std::size_t limit = static_cast<std::size_t>(std::min<double>(risk.total, kMostAmounts));
        bits_.assign(limit / 64 + 1, 0);
        bits_[0] = 1;
        for (std::size_t j = 1; j <= risk.amounts; ++j) {
            // n policies as 1, 2, 4, ... and the rest: log n shifts.
            double left = std::min(risk.count_of_amount(j), static_cast<double>(limit / j));
            for (double step = 1; left > 0; left -= step, step *= 2)
                add_shifted(j * static_cast<std::size_t>(std::min(step, left)));
        }
    }

    bool operator()(std::size_t s) const {
        return bits_.empty() || (s / 64 < bits_.size() && (bits_[s / 64] >> s % 64 & 1) != 0);
    }

  private:
    /// By ascending amounts, each closes up to what the smaller ones reach.
    static bool gapless(const Risk& risk) {
        double reach = 0;
        for (std::size_t j = 1; j <= risk.amounts; ++j) {
            const double count = risk.count_of_amount(j);
            if (count == 0) continue;
            if (static_cast<double>(j) > reach + 1) return false;
            reach += static_cast<double>(j) * count;
        }
        return true;
    }

    void add_shifted(std::size_t shift) {
        const std::size_t words = shift / 64, bits = shift % 64;
        for (std::size_t i = bits_.size(); i-- > words;) {
            std::uint64_t moved = bits_[i - words] << bits;
            if (bits > 0 && i > words) moved |= bits_[i - words - 1] >> (64 - bits);
            bits_[i] |= moved;
        }
    }

    std::vector<std::uint64_t> bits_;  // empty: all amounts up to the total
};

/// H(1), H(2), ..., grown as the recursion needs them and stored from the back, so that a step's scalar product runs
/// forwards through both of its factors.
class Coefficients {
  public:
    Coefficients(const Risk& risk, std::size_t order)
        : risk_(risk), order_(order == 0 ? kMostAmounts : std::min(order, kMostAmounts)) {
        for (const double q : risk.q) ratios_.push_back(-q / (1 - q));
        last_ = risk.amounts > kMostAmounts / order_ ? kMostAmounts : risk.amounts * order_;
    }

    /// How many terms the sum for g(s) has.
    std::size_t terms(std::size_t s) const { return std::min(s, last_); }

    /// The sum over t of H(t) g(s - t), `g` ending before g(s).
    double step(std::span<const double> g) {
        while (reversed_.size() < terms(g.size())) grow();
        const std::size_t count = terms(g.size());
        return scalar_product(std::span(reversed_).last(count), g.last(count));
    }

  private:
    void grow() {
        const std::size_t known = reversed_.size();
        const std::size_t size = std::min(std::max<std::size_t>(2 * known, 4 * risk_.amounts), last_);
        std::vector<double> added(size - known);  // H(known + 1) .. H(size)
        std::vector<double> powers(ratios_.size(), -1.0);
        for (std::size_t k = 1; k <= std::min(order_, size); ++k) {
            bool any = false;
            for (std::size_t i = 0; i < powers.size(); ++i)
                any |= (powers[i] = flushed(powers[i] * ratios_[i])) != 0;
            if (!any) {
                last_ = std::min(last_, std::max((k - 1) * risk_.amounts, known));
                break;
            }
            for (std::size_t j = known / k + 1; j <= std::min(risk_.amounts, size / k); ++j) {
                added[j * k - known - 1] +=
                    static_cast<double>(j) * scalar_product(risk_.of_amount(j), powers);
            }
        }
        added.resize(std::min(size, last_) - known);
        std::ranges::reverse(added);
        added.insert(added.end(), reversed_.begin(), reversed_.end());
        reversed_ = std::move(added);
    }

    const Risk& risk_;
    std::size_t order_, last_;
    std::vector<double> ratios_, reversed_;
};

/// How far the recursion may multiply rounding errors, as a logarithm.
double log_amplification(const Risk& risk) {
    double sum = 0;
    for (std::size_t i = 0; i < risk.q.size(); ++i) {
        const double q = risk.q[i], r = q / (1 - q);
        double count = 0;
        for (std::size_t j = 1; j <= risk.amounts; ++j) count += risk.of_amount(j)[i];
        if (count > 0) sum += q < 0.5 ? -count * numerics::log1p_fn(-r * r) : HUGE_VAL;
    }
    return sum;
}

/// The recursion starts from a large number with the sign of g(0), since only proportions matter: neither do portfolios
/// whose g(0) underflows lose their table, nor do products of small numbers, which take their time, occur all along.
constexpr double kStart = 0x1p600, kTooHigh = 0x1p900, kLowered = 0x1p-300;

double sign_of_first(const Risk& risk) {
    bool negative = false;
    for (std::size_t j = 1; j <= risk.amounts; ++j) {
        const auto counts = risk.of_amount(j);
        for (std::size_t i = 0; i < counts.size(); ++i)
            negative ^= risk.q[i] > 1 && std::fmod(counts[i], 2) != 0;
    }
    return negative ? -1 : 1;
}

void recursion(const Risk& risk, std::size_t order, AggregateClaims& claims) {
    const bool exact = order == 0;
    const double table = std::min(risk.mean, static_cast<double>(kMostAmounts));
    Coefficients coefficients(risk, order);
    if (risk.mean >= static_cast<double>(kMostAmounts) ||
        table * static_cast<double>(coefficients.terms(static_cast<std::size_t>(table))) / 2 > kMostWork) {
        claims.objection = kTooLarge;
        return;
    }
    const Attainable attainable = exact ? Attainable(risk) : Attainable({{}, {}, 0});
    auto& g = claims.probabilities;
    g = {kStart * sign_of_first(risk)};
    double largest = std::fabs(g[0]), work = 0;
    std::size_t first = 0;  // before it all values are 0
    for (std::size_t s = 1, row = 0;; ++s) {
        const bool possible = !exact || (static_cast<double>(s) <= risk.total && attainable(s));
        double next = possible ? coefficients.step(g) / static_cast<double>(s) : 0;
        if (!(std::fabs(next) <= 1e300)) break;
        const bool negligible = std::fabs(next) < kSmallest * largest;
        if (negligible || (next < 0 && next > -1e-10 * largest)) next = 0;
        // Beyond the mean a row of amounts without probability ends the table once no claim reaches over it.
        const bool beyond_mean = static_cast<double>(s) > risk.mean;
        if (beyond_mean) next = std::max(next, 0.0);
        g.push_back(next);
        row = beyond_mean && next == 0 ? row + 1 : 0;
        if (row == risk.largest || (row > 0 && exact && static_cast<double>(s) > risk.total)) {
            g.resize(s + 2 - row);
            return;
        }
        largest = std::max(largest, std::fabs(next));
        if (largest > kTooHigh) {
            // What earlier times have lowered to 0 is passed over: a long table is lowered often.
            while (g[first] == 0) ++first;
            for (double& probability : std::span(g).subspan(first))
                probability = flushed(probability * kLowered);
            largest *= kLowered;
            work += static_cast<double>(g.size() - first);
        }
        work += static_cast<double>(coefficients.terms(s));
        if (s >= kMostAmounts || work > kMostWork) {
            claims.objection = kTooLarge;
            return;
        }
    }
    claims.objection = kOverflow;
}

/// The probabilities of first, first + 1, ...; those before and after are below what a double can tell.
struct Masses {
    std::size_t first = 0;
    std::vector<double> p = {1};
};

/// Takes off what is on its way to underflow, and slow.
void trim(Masses& masses) {
    const auto counts = [](double mass) { return mass > kSmallest; };
    auto& p = masses.p;
    const auto begin = std::ranges::find_if(p, counts);
    masses.first += static_cast<std::size_t>(begin - p.begin());
    p.erase(p.begin(), begin);
    while (!counts(p.back())) p.pop_back();
}

/// The number of claims among n policies, from the mode outwards, so that nothing underflows that matters.
Masses binomial(double n, double q) {
    const double ratio = q / (1 - q), mode = std::min(std::floor((n + 1) * q), n);
    std::vector<double> below, above = {1};
    for (double k = mode; k > 0 && (below.empty() || below.back() > kSmallest); --k)
        below.push_back((below.empty() ? 1 : below.back()) * k / ((n - k + 1) * ratio));
    for (double k = mode; k < n && above.back() > kSmallest; ++k)
        above.push_back(above.back() * (n - k) * ratio / (k + 1));
    Masses masses{static_cast<std::size_t>(mode) - below.size(), {below.rbegin(), below.rend()}};
    masses.p.insert(masses.p.end(), above.begin(), above.end());
    double sum = 0;
    for (const double mass : masses.p) sum += mass;
    for (double& mass : masses.p) mass /= sum;
    trim(masses);
    return masses;
}

double size_of_sum(const Masses& a, const Masses& b, std::size_t amount) {
    return static_cast<double>(a.first + a.p.size()) +
           static_cast<double>(amount) * static_cast<double>(b.first + b.p.size());
}

/// Adds multiples of the same masses, each `amount` further on than the one before. Products below what counts in the end
/// are left out: they are many, and underflow takes its time. Every sum takes its terms in the order of the multiples; where
/// all multiples of a call have a term, it is loaded and stored once for all of them.
class Multiples {
  public:
    /// `count` multiples are to come; few do not repay a table of where the masses end.
    Multiples(std::span<const double> masses, std::size_t amount, std::size_t count)
        : masses_(masses), amount_(amount) {
        if (count < kAtOnce) return;
        largest_before_.resize(masses.size());
        largest_from_.resize(masses.size());
        std::inclusive_scan(masses.begin(), masses.end(), largest_before_.begin(), larger);
        std::inclusive_scan(masses.rbegin(), masses.rend(), largest_from_.rbegin(), larger);
    }

    static constexpr std::size_t kAtOnce = 8;

    template <std::size_t kCount>
    void add(const double (&factors)[kCount], double* sum) const {
        Part parts[kCount], common = {0, SIZE_MAX};
        for (std::size_t k = 0; k < kCount; ++k) {
            parts[k] = part(1e-3 * kSmallest / factors[k], k * amount_);
            common = {std::max(common.begin, parts[k].begin), std::min(common.end, parts[k].end)};
        }
        common.end = std::max(common.begin, common.end);
        const auto add_one = [&](std::size_t k, std::size_t begin, std::size_t end) {
            for (std::size_t s = begin; s < end; ++s) sum[s] += factors[k] * masses_[s - k * amount_];
        };
        for (std::size_t k = 0; k < kCount; ++k)
            add_one(k, parts[k].begin, std::min(parts[k].end, common.begin));
        for (std::size_t s = common.begin; s < common.end; ++s) {
            double total = sum[s];
            for (std::size_t k = 0; k < kCount; ++k) total += factors[k] * masses_[s - k * amount_];
            sum[s] = total;
        }
        for (std::size_t k = 0; k < kCount; ++k)
            add_one(k, std::max(parts[k].begin, common.end), parts[k].end);
    }

  private:
    struct Part {
        std::size_t begin, end;
    };
    static double larger(double a, double b) { return std::max(a, b); }

    /// From the first mass that is not below `least` to the last one, moved up.
    Part part(double least, std::size_t moved) const {
        std::size_t begin = 0, end = masses_.size();
        if (!largest_before_.empty()) {
            const auto first = std::ranges::lower_bound(largest_before_, least);
            const auto last = std::ranges::upper_bound(largest_from_, least, std::greater<>());
            begin = static_cast<std::size_t>(first - largest_before_.begin());
            end = std::max(begin, static_cast<std::size_t>(last - largest_from_.begin()));
        }
        while (begin < end && masses_[begin] < least) ++begin;
        while (begin < end && masses_[end - 1] < least) --end;
        return {begin + moved, end + moved};
    }

    std::span<const double> masses_;
    std::size_t amount_;
    std::vector<double> largest_before_, largest_from_;  // of the masses up to each, and from each on
};

/// The sum of `a` and of `amount` times `b`.
Masses sum_of(const Masses& a, const Masses& b, std::size_t amount) {
    Masses sum{a.first + amount * b.first, std::vector<double>(a.p.size() + amount * (b.p.size() - 1))};
    const Multiples multiples(a.p, amount, b.p.size());
    constexpr std::size_t kAtOnce = Multiples::kAtOnce;
    std::size_t k = 0;
    for (; k + kAtOnce <= b.p.size(); k += kAtOnce) {
        double factors[kAtOnce];
        std::copy_n(b.p.data() + k, kAtOnce, factors);
        multiples.add(factors, sum.p.data() + k * amount);
    }
    for (; k < b.p.size(); ++k) multiples.add({b.p[k]}, sum.p.data() + k * amount);
    trim(sum);
    return sum;
}

/// What a sum of binomials is like, to tell beforehand how many masses it will have.
struct Spread {
    double mean = 0, variance = 0, most = 0;

    void add(const Spread& more, double amount) {
        mean += amount * more.mean;
        variance += amount * amount * more.variance;
        most += amount * more.most;
    }
    /// Its masses above kSmallest, at least about so many: a normal distribution reaches 37 deviations on each side.
    double width() const {
        const double reach = 30 * std::sqrt(variance);
        return std::min(mean, reach) + std::min(most - mean, reach);
    }
};

/// The products that the convolution takes, at least about.
double expected_products(const Risk& risk) {
    double products = 0;
    Spread total;
    for (std::size_t j = 1; j <= risk.amounts; ++j) {
        Spread number;
        for (std::size_t i = 0; i < risk.q.size(); ++i) {
            const double n = risk.of_amount(j)[i], q = risk.q[i];
            const Spread one = {n * q, n * q * (1 - q), n};
            products += number.width() * one.width();
            number.add(one, 1);
        }
        products += total.width() * number.width();
        total.add(number, static_cast<double>(j));
    }
    return products;
}

/// The same distribution as the recursion's without a limit, for q < 1: the numbers of claims of each amount, then the
/// amounts themselves.
void convolution(const Risk& risk, AggregateClaims& claims) {
    if (expected_products(risk) > kMostWork) {
        claims.objection = kTooLarge;
        return;
    }
    Masses total;
    double work = 0;
    const auto add = [&](Masses& to, const Masses& more, std::size_t amount) {
        work += static_cast<double>(to.p.size()) * static_cast<double>(more.p.size());
        if (work > kMostWork || size_of_sum(to, more, amount) > 2.0 * kMostAmounts) return false;
        to = sum_of(to, more, amount);
        return true;
    };
    for (std::size_t j = 1; j <= risk.amounts; ++j) {
        Masses number;
        for (std::size_t i = 0; i < risk.q.size(); ++i) {
            const double n = risk.of_amount(j)[i];
            if (n == 0) continue;
            if (n > kMostAmounts || !add(number, binomial(n, risk.q[i]), 1)) {
                claims.objection = kTooLarge;
                return;
            }
        }
        const bool none = number.first == 0 && number.p.size() == 1;
        if (!none && !add(total, number, j)) {
            claims.objection = kTooLarge;
            return;
        }
    }
    auto& g = claims.probabilities;
    g.assign(total.first, 0.0);
    g.insert(g.end(), total.p.begin(), total.p.end());
    g.push_back(0);
}

}  // namespace

AggregateClaims aggregate_claims(const Portfolio& portfolio, std::size_t order) {
    AggregateClaims claims;
    const Risk risk = without_certainties(portfolio, claims.certain);
    if (risk.total == 0) return claims;
    if (static_cast<double>(order) >= risk.total) order = 0;  // no amount takes more orders than that
    const bool convolved =
        order == 0 && log_amplification(risk) > std::log(1000.0) && *std::ranges::max_element(risk.q) < 1;
    if (convolved)
        convolution(risk, claims);
    else
        recursion(risk, order, claims);
    return claims;
}

}  // namespace pral
