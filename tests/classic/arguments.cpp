#include "arguments.h"

#include <algorithm>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdio>
#include <set>

namespace pral::fingerprint {

namespace {

using Names = std::set<std::string>;

std::string lower(std::string text) {
    for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

std::uint64_t hash_of(const std::string& text) {
    std::uint64_t hash = 14695981039346656037u;  // FNV-1a
    for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211u;
    return hash;
}

/// Draws by whole numbers, sums, products and powers of two only, which are the same on every machine.
class Draw {
  public:
    Draw(const std::string& name, int index)
        : random_(hash_of(name) + static_cast<unsigned>(index)), wide_(index % 10 == 6 || index % 10 == 7) {
        random_.discard(4);
    }

    /// 0 .. n - 1
    int below(int n) { return static_cast<int>((random_() >> 33) % static_cast<unsigned>(n)); }
    int from(int least, int most) { return least + below(most - least + 1); }
    bool chance(int percent) { return below(100) < percent; }
    /// Within (0,1), and every third time a fraction with few binary digits.
    double unit() {
        if (below(3) == 0) return from(1, 15) / 16.0;
        return (static_cast<double>(random_() >> 12) + 0.5) * 0x1p-52;
    }
    double within(double low, double high) { return low + (high - low) * unit(); }
    double positive() {
        if (wide_) return within(1, 2) * std::ldexp(1.0, from(-30, 30));
        return chance(50) ? from(1, 40) / 4.0 : within(0.05, 10);
    }
    double real() { return chance(35) ? -positive() : positive(); }
    double whole(int most) { return wide_ ? std::floor(std::ldexp(unit(), from(3, 24))) : below(most + 1); }
    bool wide() const { return wide_; }

    double hostile() {
        constexpr double kNumbers[] = {NAN,    INFINITY, -INFINITY, DBL_MAX,     -DBL_MAX, -0.0,   0.0,
                                       5e-324, -5e-324,  1e-310,    1e300,       -1e300,   1e-300, 0x1p53,
                                       -1e8,   -1,       1,         1 - 0x1p-53, 0x1p-60,  0.5,    2,
                                       5001.5, 1e100,    1e-17,     1e17,        -1e17};
        return kNumbers[below(std::size(kNumbers))];
    }
    /// For searches, whose time must stay small.
    double hostile_datum() {
        constexpr double kNumbers[] = {NAN, INFINITY, -INFINITY, -0.0, 0.0,     5e-324,
                                       -1,  1,        0.5,       1000, -DBL_MAX};
        return kNumbers[below(std::size(kNumbers))];
    }

  private:
    std::mt19937_64 random_;
    bool wide_;
};

/// Parameters that must ascend, in this order; `low` and `value1` are points of one axis, `lowp` and `prob1` of another.
const std::vector<std::string> kPlaces = {"minimum", "min",    "low",       "leftmode", "value1", "mode",
                                          "mean",    "medium", "rightmode", "value2",   "high",   "max"};
const std::vector<std::string> kLevels = {"lowp",  "prob1", "probability1", "mediump",
                                          "highp", "prob2", "probability2"};

/// Ascending numbers for those parameters of the list that a family has.
void assign_ascending(std::map<std::string, double>& values, const std::vector<Parameter>& parameters,
                      const std::vector<std::string>& order, std::vector<double> numbers) {
    std::sort(numbers.begin(), numbers.end());
    std::size_t next = 0;
    for (const std::string& name : order)
        for (const Parameter& parameter : parameters)
            if (lower(parameter.name) == name && next < numbers.size())
                values[parameter.name] = numbers[next++];
}

int count_of(const std::vector<Parameter>& parameters, const std::vector<std::string>& names) {
    return static_cast<int>(std::count_if(parameters.begin(), parameters.end(), [&](const Parameter& p) {
        return p.type == "double" && std::find(names.begin(), names.end(), lower(p.name)) != names.end();
    }));
}

/// The parameters of a family by their names.
std::map<std::string, double> family_values(Draw& draw, const std::vector<Parameter>& parameters) {
    static const Names probabilities = {"p", "pi"}, wholes = {"n", "s", "d", "m", "nu"};
    std::map<std::string, double> values;
    const auto named = [&](const char* name) {
        return std::any_of(parameters.begin(), parameters.end(),
                           [=](const Parameter& p) { return p.name == name; });
    };
    const bool urn = named("D");
    double sum = 0;
    for (const Parameter& parameter : parameters) {
        if (parameter.type != "double") continue;
        const std::string name = lower(parameter.name);
        double& value = values[parameter.name];
        if (urn && parameter.name != "pi") {  // s <= n <= D <= M, and room for all
            value = parameter.name == "Max" ? sum + draw.whole(20) : std::max(sum, 0.0) + draw.whole(8);
            sum = parameter.name == "M" || parameter.name == "Max" ? sum : value;
            if (parameter.name == "n" || parameter.name == "D") sum = value;
        } else if (probabilities.count(name)) {
            value = draw.unit();
        } else if (wholes.count(name)) {
            value = draw.whole(12) + (draw.chance(90) ? 1 : 0);
            if (named("M")) value = sum += draw.whole(8);
        } else if (name == "theta") {
            value = draw.chance(60) ? draw.unit() : draw.positive();
        } else if (name == "excesskurt") {
            value = draw.within(0, 3);
        } else if (name == "mu" || name == "a" || name == "gamma" || name == "c") {
            value = draw.chance(20) ? -draw.positive() : draw.positive();
        } else if (name == "base") {
            value = 1 + draw.positive();
        } else if (name == "lambda2") {
            value = sum;  // at most the first in three of four sets
            value = draw.chance(75) ? sum * draw.unit() : draw.positive();
        } else {
            value = draw.positive();
        }
        if (name == "lambda1") sum = value;
    }
    if (named("M") && !urn) values["M"] = sum + draw.whole(10);
    // Places on a lattice of quarters, so that steps divide them, starting below 0 at times.
    const double start = draw.chance(25) ? -draw.positive() : draw.from(1, 4);
    std::vector<double> places;
    double place = std::floor(4 * start) / 4;
    for (int i = count_of(parameters, kPlaces); i > 0; --i) {
        places.push_back(place);
        place += draw.wide() ? draw.positive() : draw.from(1, 12) / 4.0;
    }
    if (urn) places.clear();
    assign_ascending(values, parameters, kPlaces, places);
    std::vector<double> levels;
    for (int i = count_of(parameters, kLevels); i > 0; --i) levels.push_back(draw.unit());
    if (levels.size() >= 2) {
        std::sort(levels.begin(), levels.end());
        levels.front() /= 2;
        levels.back() = 0.5 + levels.back() / 2;
    }
    assign_ascending(values, parameters, kLevels, levels);
    if (named("step")) values["step"] = (values["max"] - values["min"]) / draw.from(1, 8);
    return values;
}

/// Draws one set, parameter by parameter.
class Set {
  public:
    Set(const Declaration& declaration, const Families& families, int index, Arguments& out)
        : declaration_(declaration),
          families_(families),
          index_(index),
          out_(out),
          draw_(declaration.name, index) {}

    void make() {
        choose_sizes();
        for (const Parameter& parameter : declaration_.parameters) out_.words.push_back(word(parameter));
        if (index_ % 10 >= 8) spoil(index_ % 10 == 8 ? 1 : 4);
    }

  private:
    bool is_family() const { return declaration_.has("boundsMode") && !declaration_.is("PralDiscreteFit"); }
    bool is_series() const { return declaration_.is("PralTime"); }
    bool is_copula() const { return declaration_.is("PralCopula"); }
    bool is_fit() const { return declaration_.has("TruncMin"); }
    bool is_matrix_call() const {
        return (declaration_.has("a") && declaration_.has("rows")) || declaration_.has("P") ||
               declaration_.has("cov") || (declaration_.has("corr") && !declaration_.has("data")) ||
               declaration_.is("PralIdentity");
    }

    void choose_sizes() {
        if (is_family()) {
            parameters_ = family_parameters();
            values_ = family_values(draw_, parameters_);
        } else if (is_fit()) {
            family_ = declaration_.name.substr(4, declaration_.name.find("Fit") - 4);
            if (declaration_.has("distribution"))
                family_ = families_.fitted()[draw_.below(static_cast<int>(families_.fitted().size()))];
            parameters_ = families_.parameters(family_);
        }
        length_ = draw_.from(1, 12);
        if (is_matrix_call()) length_ = draw_.from(1, 4);
        if (is_fit()) length_ = draw_.from(8, 25);
        if (declaration_.is("PralMulti") || declaration_.is("PralDirichlet")) length_ = draw_.from(1, 5);
        rows_ = draw_.from(3, 12);
        columns_ = draw_.from(2, 4);
        if (flag_ = draw_.chance(40); flag_) std::swap(rows_, columns_);
        samples_ = draw_.from(1, 5);
        dimensions_ = draw_.from(2, 4);
        count_ = draw_.chance(80) ? draw_.from(1, 5) : draw_.from(30, 50);
        if (declaration_.says("Array") && draw_.chance(5)) count_ = 400;  // enough for a table of many values
        if (is_fit() || declaration_.is("PralDiscreteFit")) count_ = draw_.from(1, 4);
        if (declaration_.is("PralNBootPaired")) count_ = 2 * length_;
        if (declaration_.is("PralNBootSeries")) count_ = length_;
    }

    /// The parameters between the outputs and the modifiers.
    std::vector<Parameter> family_parameters() const {
        std::vector<Parameter> result;
        for (const Parameter& p : declaration_.parameters) {
            if (p.name == "U" || p.name == "cumulative") break;
            if (p.name != "out" && p.name != "x" && p.name != "count") result.push_back(p);
        }
        return result;
    }

    Word word(const Parameter& p) {
        if (p.type == "double") return Word::of(number(p.name));
        if (p.type == "int" || p.type == "uint64_t" || p.type == "unsigned int")
            return Word::of_integer(integer(p.name));
        if (p.type == "bool") return Word::of_integer(0);
        if (p.type == "const char*") return text(p.name);
        if (p.type == "SAFEARRAY**") return vector();
        if (p.type == "int*" || p.type == "const int*") return integer_pointer(p.name);
        return doubles(p);
    }

    // ---------------------------------------------------------------------------------------------- integers

    int integer(const std::string& name) {
        static const Names flags = {"LogReturn",  "logarithm", "descending",  "variablesInRows",
                                    "dataInRows", "ignored",   "uncertainty", "processExists",
                                    "sortFirst",  "reserved1", "reserved2"};
        static const Names vector_sizes = {"outN", "n"};
        if (name == "dataInRows" || name == "variablesInRows") return flag_;
        if (flags.count(name)) return draw_.below(2);
        if (name == "count" && declaration_.has("distribution")) return static_cast<int>(parameters_.size());
        if (name == "count") return count_;
        if (name == "outLen") return static_cast<int>(parameters_.size());
        if (name == "seed") return draw_.below(1 << 30);
        if (name == "rows") return is_matrix_call() ? length_ : rows_;
        if (name == "cols") return is_matrix_call() ? length_ : columns_;
        if (name == "direction") return draw_.from(1, draw_.chance(70) ? 2 : 4);
        if (name == "nSamples") return samples_;
        if (name == "p1" || name == "p2") return draw_.from(1, length_);
        if (name == "covN") return length_ * length_;
        if (name == "outN" && is_copula()) return output_size();
        if (name == "n" && declaration_.is("PralCopulaBi")) return 2;
        if (name == "c" && declaration_.has("policies")) return dimensions_;
        return length_;  // vectors of one call have one length
    }

    /// Elements that a call writes into its output, for those that have a free choice.
    int output_size() const {
        if (declaration_.is("PralCopulaBi")) return 2;
        if (declaration_.is("PralCopulaData")) return (flag_ ? rows_ : columns_) * samples_;
        if (is_copula() && declaration_.has("data"))  // fits: a sample or a matrix
            return declaration_.says("FitP") ? (flag_ ? rows_ * rows_ : columns_ * columns_)
                                             : (flag_ ? rows_ : columns_);
        if (is_copula()) return (declaration_.has("corr") ? length_ : dimensions_) * samples_;
        if (declaration_.has("variablesInRows")) return flag_ ? rows_ * rows_ : columns_ * columns_;
        if (declaration_.is("PralMarkovMatrix")) return length_ * length_;
        if (declaration_.is("PralNBootPaired")) return 2 * length_;
        if (declaration_.says("FitPVB")) return static_cast<int>(parameters_.size());
        return is_family() ? count_ : length_;
    }

    Word integer_pointer(const std::string& name) {
        const bool given = draw_.chance(name == "uncertainty" ? 40 : name == "direction" ? 90 : 50);
        int value = 1;
        if (name == "cumulative") value = draw_.chance(80) ? 1 : draw_.from(-1, 3);
        if (name == "boundsMode") bounds_ = given ? value = draw_.from(-1, 3) : -1;
        if (name == "K") value = draw_.from(0, 4);
        if (name == "uncertainty") value = draw_.below(2);
        if (name == "direction") value = draw_.from(0, draw_.chance(70) ? 2 : 4);
        if (!given) return Word::of(nullptr);
        out_.integers.push_back(value);
        return Word::of(&out_.integers.back());
    }

    // ----------------------------------------------------------------------------------------------- numbers

    double number(const std::string& name) {
        if (is_family()) return values_.at(name);
        if (name == "TruncMin") return draw_.chance(75) ? 1e100 : data_low() - draw_.below(3);
        if (name == "TruncMax") return draw_.chance(75) ? 1e100 : data_high() + draw_.below(3);
        if (name == "U") return draw_.chance(50) ? 1e100 : draw_.unit();
        if (is_series()) return series_number(name);
        if (name == "rho") return draw_.within(-1, 1);
        if (is_copula() && name == "nu") return draw_.from(1, 30);
        if (is_copula()) return draw_.within(1, 34) * (draw_.chance(25) ? -1 : 1);
        if (name == "t")
            return draw_.chance(20) ? draw_.unit() : draw_.chance(10) ? DBL_MAX : draw_.below(20);
        if (name == "p") return draw_.unit();
        if (name == "n" || name == "alpha" || name == "successes") return draw_.whole(8);
        if (name == "trials") return 8 + draw_.whole(10);
        if (name == "x") return draw_.within(0, length_ > 1 ? length_ - 1 : 1);
        return draw_.positive();
    }

    /// Small numbers suit almost everything in a series: volatilities, weights, rates of jumps.
    double series_number(const std::string& name) {
        if (name == "N0") return 1 + draw_.whole(40);
        if (name == "LastValue") return draw_.positive();
        if (name == "LastTime") return -draw_.unit();
        if (draw_.wide()) return draw_.real();
        return draw_.chance(20) ? draw_.within(-1, 1) : draw_.within(0, 0.16);
    }

    // ------------------------------------------------------------------------------------------------ arrays

    Word doubles(const Parameter& p) {
        static const Names optional = {"U", "boundsMin", "boundsMax", "shift"};
        const bool constant = p.type == "const double*";
        static const Names filled = {"x", "xs", "ys", "P", "cov", "corr", "a"};
        if (p.name == "TimeStamps" && draw_.chance(40)) return Word::of(nullptr);
        if (optional.count(p.name)) return modifier(p.name);
        Buffer& buffer = out_.buffers.emplace_back();
        buffer.elements.assign(kRoom, kUntouched);
        if (!constant && !filled.count(p.name)) return Word::of(buffer.elements.data());
        const std::vector<double> content = array(p.name);
        buffer.used = std::min(content.size(), kRoom);
        std::copy_n(content.begin(), buffer.used, buffer.elements.begin());
        return Word::of(buffer.elements.data());
    }

    Word modifier(const std::string& name) {
        if (draw_.chance(name == "U" ? 35 : name == "shift" ? 75 : bounds_ < 0 ? 70 : 15))
            return Word::of(nullptr);
        double value = 0;
        if (name == "U") {
            constexpr double kEnds[] = {0, 1, -1, 0.5, 1e-12, 1 - 1e-12, 1e-300};
            value = draw_.chance(30) ? kEnds[draw_.below(std::size(kEnds))] : draw_.unit();
        } else if (name == "shift") {
            value = draw_.real();
        } else {
            const bool low = name == "boundsMin";
            if (bounds_ >= 0 && (bounds_ & (low ? 2 : 1)) != 0)
                value = low ? draw_.unit() / 2 : 0.5 + draw_.unit() / 2;
            else
                value = low                ? draw_.chance(20) ? -DBL_MAX : lower_bound()
                                       : draw_.chance(20) ? DBL_MAX
                                           : upper_bound();
            if (low) last_bound_ = value;
        }
        Buffer& buffer = out_.buffers.emplace_back();
        buffer.elements.assign(1, value);
        buffer.used = 1;
        return Word::of(buffer.elements.data());
    }

    double lower_bound() { return draw_.chance(70) ? family_x() / 2 : family_x(); }
    double upper_bound() {
        const double x = family_x();
        return draw_.chance(90) && x < last_bound_ ? last_bound_ + draw_.positive() : x;
    }

    /// A value that a family may take: near its parameters, between its ends, a small count, a fraction.
    double family_x() {
        if (values_.count("min") && values_.count("max") && draw_.chance(80))
            return draw_.within(values_["min"], values_["max"]);
        if (values_.count("Min") && values_.count("Max") && draw_.chance(60))
            return draw_.within(values_["Min"], values_["Max"]);
        switch (draw_.below(4)) {
            case 0:
                return draw_.below(12);
            case 1:
                return draw_.unit();
            case 2:
                return draw_.real();
            default:
                if (values_.empty()) return draw_.real();
                return std::next(values_.begin(), draw_.below(static_cast<int>(values_.size())))->second *
                       draw_.from(1, 8) / 4;
        }
    }

    template <class Element>
    std::vector<double> filled(int count, Element element) {
        std::vector<double> result;
        for (int i = 0; i < count; ++i) result.push_back(element());
        return result;
    }

    std::vector<double> ascending(int count, double low, double high) {
        auto result = filled(count, [&] { return draw_.within(low, high); });
        std::sort(result.begin(), result.end());
        return result;
    }

    /// Fractions of 64 that sum to 1 exactly.
    std::vector<double> sum_to_one(int count) {
        std::vector<double> result(static_cast<std::size_t>(std::max(count, 1)), 0.0);
        const int least = draw_.chance(80) ? 1 : 0;
        int left = 64;
        for (std::size_t i = 0; i + 1 < result.size(); ++i) {
            const int share = draw_.from(least, std::max(least, left / 2 - 1));
            result[i] = share / 64.0;
            left -= share;
        }
        result.back() = left / 64.0;
        return result;
    }

    std::vector<double> array(const std::string& name) {
        if (is_family()) return family_array(name);
        const auto small = [&] { return draw_.real() / 32; };
        const auto real = [&] { return draw_.chance(20) ? draw_.below(4) : draw_.real(); };
        if (name == "P") return transitions();
        if (name == "corr" || name == "cov" || name == "a") return matrix(name);
        if (name == "data") return data();
        if (name == "parameters") {
            std::vector<double> result;
            auto values = family_values(draw_, parameters_);
            for (const Parameter& p : parameters_) result.push_back(values[p.name]);
            return result;
        }
        if (name == "pairs") return filled(2 * length_, real);
        if (name == "p" || (name == "x" && declaration_.has("alpha"))) return sum_to_one(length_);
        if (name == "q") return filled(length_, [&] { return draw_.unit() / 4; });
        if (name == "policies") return filled(length_ * dimensions_, [&] { return draw_.below(5); });
        if (name == "population") return filled(length_, [&] { return draw_.whole(20); });
        if (name == "s") return filled(length_, [&] { return draw_.below(5); });
        if (name == "D") return filled(length_, [&] { return draw_.from(4, 20); });
        if (name == "sd" || name == "alpha") return filled(length_, [&] { return draw_.positive(); });
        if (name == "TimeStamps" || name == "xs") {
            double at = 0;
            return filled(length_, [&] { return at += draw_.chance(70) ? 1 : draw_.unit(); });
        }
        if (is_series()) return filled(length_, small);
        return filled(std::max(length_, count_), real);
    }

    std::vector<double> family_array(const std::string& name) {
        if (name == "x") return filled(count_, [&] { return family_x(); });
        if (!values_.count("min")) {
            const bool weights = name == "probabilities";
            return filled(length_,
                          [&] { return weights ? draw_.below(5) : std::floor(8 * draw_.real()) / 4; });
        }
        if (name == "probabilities") {
            auto levels = ascending(length_, 0, 1);
            if (draw_.chance(50)) std::reverse(levels.begin(), levels.end());
            return levels;
        }
        if (name == "f" || name == "weights") return filled(length_, [&] { return draw_.below(5); });
        return ascending(length_, values_["min"], values_["max"]);
    }

    /// A correlation or covariance matrix L L', at times as a triangle, rarely one that is none.
    std::vector<double> matrix(const std::string& name) {
        const int n = std::min(length_, 8);
        std::vector<double> l(static_cast<std::size_t>(n) * n), result(l.size());
        const auto at = [n](std::vector<double>& m, int i, int j) -> double& {
            return m[static_cast<std::size_t>(i * n + j)];
        };
        for (int i = 0; i < n; ++i)
            for (int j = 0; j <= i; ++j) at(l, i, j) = i == j ? 1 + draw_.unit() : draw_.within(-1, 1);
        for (int i = 0; i < n; ++i)
            for (int j = 0; j < n; ++j)
                for (int k = 0; k < n; ++k) at(result, i, j) += at(l, i, k) * at(l, j, k);
        if (name == "corr" || (name == "a" && draw_.chance(40))) {
            auto sizes = result;
            for (int i = 0; i < n; ++i)
                for (int j = 0; j < n; ++j)
                    at(result, i, j) =
                        i == j ? 1.0 : at(sizes, i, j) / std::sqrt(at(sizes, i, i) * at(sizes, j, j));
            if (draw_.chance(10))
                for (int i = 1; i < n; ++i) at(result, i, i - 1) = at(result, i - 1, i) = draw_.within(-1, 1);
        }
        if (draw_.chance(25))
            for (int i = 0; i < n; ++i)
                for (int j = i + 1; j < n; ++j) at(result, i, j) = 0;
        if (name == "a" && draw_.chance(25))
            for (double& element : result) element = draw_.real();
        return result;
    }

    std::vector<double> transitions() {
        const int n = std::min(length_, 8);
        std::vector<double> result;
        const bool lazy = draw_.chance(60);
        for (int i = 0; i < n; ++i) {
            auto row = sum_to_one(n);
            if (lazy)
                for (int j = 0; j < n; ++j)
                    row[static_cast<std::size_t>(j)] =
                        (row[static_cast<std::size_t>(j)] + (i == j ? 3 : 0)) / 4;
            result.insert(result.end(), row.begin(), row.end());
        }
        return result;
    }

    /// Observations. For fits they are in turn such as families of all kinds can have.
    std::vector<double> data() {
        if (declaration_.has("rows"))
            return filled(rows_ * columns_, [&] { return draw_.chance(10) ? draw_.below(4) : draw_.real(); });
        if (!is_fit())
            return filled(length_, [&] { return draw_.chance(20) ? draw_.below(4) : draw_.real(); });
        const int kind = index_ % 6;
        return filled(length_, [&]() -> double {
            const double u = draw_.unit(), v = draw_.unit(), sum = u + v + draw_.unit() + draw_.unit();
            switch (kind) {
                case 0:
                    return 0.5 + sum * sum;  // positive, long to the right
                case 1:
                    return std::floor(6 * u * v + 8 * u * u * v);  // counts, many zeros
                case 2:
                    return (u + v) / 2;  // fractions
                case 3:
                    return 10 * (sum - 2);  // of both signs
                case 4:
                    return 1 + std::floor(7 * u * v / (1.2 - v));  // counts from 1 on
                default:
                    return draw_.below(2);
            }
        });
    }
    double data_low() const { return index_ % 6 == 3 ? -25 : 0; }
    double data_high() const { return 60; }

    // ------------------------------------------------------------------------------------- texts and vectors

    Word text(const std::string& name) {
        if (name == "distribution") return own(family_);
        if (name == "text")
            return draw_.chance(10) ? Word::of(nullptr) : own(std::string(draw_.below(1500), 'x'));
        return draw_.chance(80) ? Word::of(nullptr) : own("key " + std::to_string(draw_.below(3)));
    }

    Word own(const std::string& text) {
        out_.texts.push_back(text);
        return Word::of(out_.texts.back().c_str());
    }

    Word vector() {
        const int kind = draw_.below(40);
        if (kind == 0) return Word::of(nullptr);
        const auto count = static_cast<std::uint32_t>(output_size());
        SAFEARRAYBOUND bounds[] = {{count, 0}, {2, 1}};
        SAFEARRAY* made = nullptr;
        if (kind == 2)
            made = SafeArrayCreate(VT_R8, 2, bounds);
        else if (kind > 3)
            made = SafeArrayCreateVector(VT_R8, draw_.below(2), count);
        else if (kind == 3)
            made = SafeArrayCreateVector(VT_R4, 0, count);
        out_.vectors.push_back(made);
        return Word::of(&out_.vectors.back());
    }

    // ------------------------------------------------------------------------------------------ hostile sets

    /// Replaces so many of the numbers, counts and pointers.
    void spoil(int times) {
        for (; times > 0; --times) {
            if (out_.words.empty()) return;
            const std::size_t i = static_cast<std::size_t>(draw_.below(static_cast<int>(out_.words.size())));
            const Parameter& parameter = declaration_.parameters[i];
            Word& word = out_.words[i];
            const bool pointer = parameter.type.find('*') != std::string::npos;
            if (word.is_double) {
                word = Word::of(is_fit() ? draw_.hostile_datum() : draw_.hostile());
            } else if (pointer && draw_.chance(15)) {
                word = Word::of(nullptr);
            } else if (pointer) {
                spoil_target(word);
            } else if (parameter.type == "int") {
                constexpr int kNumbers[] = {0, -1, INT_MIN, 1, 2};
                const int choice = draw_.below(8), value = static_cast<int>(word.bits);
                const int next = std::clamp(value, -1, static_cast<int>(kRoom) - 8) + (choice == 5 ? -1 : 1);
                word = Word::of_integer(choice < 5 ? kNumbers[choice] : next);
            } else if (parameter.type == "uint64_t") {
                word = Word::of_integer(draw_.below(3));
            }
        }
    }

    void spoil_target(const Word& word) {
        for (Buffer& buffer : out_.buffers)
            if (Word::of(buffer.elements.data()).bits == word.bits && buffer.used > 0)
                buffer.elements[static_cast<std::size_t>(draw_.below(static_cast<int>(buffer.used)))] =
                    is_fit() ? draw_.hostile_datum() : draw_.hostile();
        for (int& integer : out_.integers)
            if (Word::of(&integer).bits == word.bits)
                integer = draw_.chance(30) ? INT_MIN : draw_.from(-3, 9);
    }

    const Declaration& declaration_;
    const Families& families_;
    const int index_;
    Arguments& out_;
    Draw draw_;
    std::string family_;
    std::vector<Parameter> parameters_;
    std::map<std::string, double> values_;
    int length_ = 0, rows_ = 0, columns_ = 0, samples_ = 0, dimensions_ = 0, count_ = 0, bounds_ = -1;
    bool flag_ = false;
    double last_bound_ = -DBL_MAX;
};

void append(std::string& text, double value) {
    char digits[32];
    std::snprintf(digits, sizeof digits, "%.17g", value);
    text += digits;
}

}  // namespace

Arguments::~Arguments() {
    for (SAFEARRAY* vector : vectors)
        if (vector != nullptr) SafeArrayDestroy(vector);
}

std::string Arguments::description(const Declaration& declaration) const {
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const Parameter& parameter = declaration.parameters[i];
        const Word& word = words[i];
        text += "    " + parameter.name + " = ";
        if (word.is_double) {
            append(text, word.number());
        } else if (parameter.type.find('*') == std::string::npos) {
            text += std::to_string(static_cast<int>(word.bits));
        } else if (word.bits == 0) {
            text += "null";
        } else {
            for (const Buffer& buffer : buffers) {
                if (Word::of(buffer.elements.data()).bits != word.bits) continue;
                text += "{";
                for (std::size_t k = 0; k < buffer.elements.size(); ++k) {
                    if (k >= buffer.used && Word::of(buffer.elements[k]).bits == Word::of(kUntouched).bits)
                        break;
                    text += k > 0 ? ", " : "";
                    append(text, buffer.elements[k]);
                }
                text += "}";
            }
            for (const int& integer : integers)
                if (Word::of(&integer).bits == word.bits) text.append("&").append(std::to_string(integer));
            for (const std::string& string : texts)
                if (Word::of(string.c_str()).bits == word.bits)
                    text.append(1, '"').append(string).append(1, '"');
            for (SAFEARRAY* const& vector : vectors) {
                if (Word::of(&vector).bits != word.bits) continue;
                text += "array";
                if (vector == nullptr || vector->cDims != 1 || vector->cbElements != 8) continue;
                for (std::uint32_t k = 0; k < vector->rgsabound[0].cElements; ++k) {
                    text += k > 0 ? ", " : " {";
                    append(text, static_cast<const double*>(vector->pvData)[k]);
                }
                text += "}";
            }
        }
        text += "\n";
    }
    return text;
}

Families::Families(const std::vector<Declaration>& declarations) {
    for (const Declaration& declaration : declarations) {
        const std::string& name = declaration.name;
        const auto ends = [&](const std::string& end) { return name.ends_with(end); };
        if (ends("_Core") && declaration.has("boundsMode"))
            calls_[name.substr(4, name.size() - 9)] = &declaration;
        if (ends("Fit_Core") && declaration.has("TruncMin"))
            fitted_.push_back(name.substr(4, name.size() - 12));
    }
}

std::vector<Parameter> Families::parameters(const std::string& family) const {
    std::vector<Parameter> result;
    const auto found = calls_.find(family);
    if (found == calls_.end()) return result;
    for (const Parameter& parameter : found->second->parameters)
        if (parameter.type == "double") result.push_back(parameter);
    return result;
}

int sets_of(const Declaration& declaration) {
    if (declaration.parameters.empty()) return 3;
    if (declaration.has("distribution")) return kMostSets;  // all families in one function
    if (declaration.has("TruncMin")) return declaration.is("PralDiscrete") ? 120 : 18;
    if (declaration.says("FitP") || declaration.says("DePril")) return 100;
    return 300;
}

void draw(const Declaration& declaration, const Families& families, int index, Arguments& out) {
    Set(declaration, families, index, out).make();
}

}  // namespace pral::fingerprint
