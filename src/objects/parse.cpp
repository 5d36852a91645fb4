// Distributions from text: "2 * Gamma(alpha = 2, beta = 3) within [1, 9] + 10".
#include <cctype>
#include <charconv>
#include <cmath>
#include <string_view>

#include "distributions/combined.h"
#include "objects/family_row.h"
#include "objects/handles.h"

namespace pral::objects {

namespace {

/// A parser by recursive descent. From weak to strong: sum, product, bounded, primary.
class Parser {
  public:
    explicit Parser(std::string_view text) : text_(text) {}

    Shared whole() {
        Shared distribution = sum();
        skip_space();
        if (place_ != text_.size()) fail("there is more than a distribution");
        return distribution;
    }

  private:
    static constexpr int kDeepest = 64;

    [[noreturn]] void fail(const std::string& what) const {
        std::string text = what + " at character " + std::to_string(place_ + 1);
        if (place_ < text_.size()) text += ": \"" + std::string(text_.substr(place_, 24)) + "\"";
        refuse(PRAL_ERROR_ARGUMENT, text, static_cast<std::int64_t>(place_));
    }
    void skip_space() {
        while (place_ < text_.size() && std::isspace(static_cast<unsigned char>(text_[place_]))) ++place_;
    }
    bool next_is(char c) {
        skip_space();
        return place_ < text_.size() && text_[place_] == c;
    }
    bool take(char c) {
        const bool found = next_is(c);
        place_ += found;
        return found;
    }
    void expect(char c) {
        if (!take(c)) fail(std::string("expected '") + c + "'");
    }
    std::string_view peek_word() {
        skip_space();
        std::size_t end = place_;
        const auto part_of_word = [&](std::size_t i) {
            return i < text_.size() &&
                   (std::isalnum(static_cast<unsigned char>(text_[i])) || text_[i] == '_');
        };
        if (part_of_word(end) && !std::isdigit(static_cast<unsigned char>(text_[end])))
            while (part_of_word(end)) ++end;
        return text_.substr(place_, end - place_);
    }
    bool take_word(std::string_view word) {
        const bool found = peek_word() == word;
        if (found) place_ += word.size();
        return found;
    }
    /// Whether a number begins here: a digit, a point, a sign, inf or nan.
    bool at_number() {
        skip_space();
        if (place_ >= text_.size()) return false;
        const char c = text_[place_];
        const std::string_view word = peek_word();
        return std::isdigit(static_cast<unsigned char>(c)) || c == '.' || c == '-' || c == '+' ||
               word == "inf" || word == "nan";
    }
    double number() {
        skip_space();
        if (place_ < text_.size() && text_[place_] == '+') ++place_;
        double value;
        const char* const begin = text_.data() + place_;
        const auto [end, problem] = std::from_chars(begin, text_.data() + text_.size(), value);
        if (problem == std::errc::result_out_of_range) fail("the number is beyond the range of a double");
        if (problem != std::errc()) fail("expected a number");
        place_ += static_cast<std::size_t>(end - begin);
        return value;
    }

    Shared sum() {
        if (++depth_ > kDeepest) fail("too many brackets");
        Shared distribution = product();
        while (next_is('+') || next_is('-')) {
            const double sign = take('+') ? 1 : (expect('-'), -1);
            const std::size_t start = place_;
            distribution = moved(std::move(distribution), 1, sign * number(), start);
        }
        --depth_;
        return distribution;
    }
    Shared product() {
        if (at_number()) {
            const std::size_t start = place_;
            const double factor = number();
            expect('*');
            return moved(bounded(), factor, 0, start);
        }
        Shared distribution = bounded();
        while (take('*')) {
            const std::size_t start = place_;
            distribution = moved(std::move(distribution), number(), 0, start);
        }
        return distribution;
    }
    Shared bounded() {
        Shared distribution = primary();
        while (take_word("within")) {
            const std::size_t start = place_;
            const bool percentiles = take_word("percentiles");
            expect('[');
            const double lower = number();
            expect(',');
            const double upper = number();
            expect(']');
            std::string objection;
            distribution =
                truncated(std::move(distribution), {lower, percentiles}, {upper, percentiles}, objection);
            if (distribution == nullptr) refused(objection, start);
        }
        return distribution;
    }
    Shared primary() {
        if (take('(')) {
            Shared distribution = sum();
            expect(')');
            return distribution;
        }
        const std::string name(peek_word());
        if (name.empty()) fail("expected the name of a family");
        place_ += name.size();
        expect('(');
        return name == "Mixture" ? mixed() : family(name);
    }
    Shared mixed() {
        const std::size_t start = place_;
        std::vector<Shared> components;
        std::vector<double> weights;
        do {
            weights.push_back(number());
            expect(':');
            components.push_back(sum());
        } while (take(','));
        expect(')');
        std::string objection;
        Shared distribution = mixture(std::move(components), std::move(weights), objection);
        if (distribution == nullptr) refused(objection, start);
        return distribution;
    }
    Shared family(const std::string& name) {
        const ListedFamily* const listed = find_family(name);
        const std::vector<ParameterRow> none;
        const std::vector<ParameterRow>& named = listed == nullptr ? none : listed->parameters;
        FamilyArguments arguments;
        std::vector<bool> given;
        if (!take(')')) {
            do {
                std::size_t place = arguments.size();
                if (!next_is('{') && !at_number()) place = named_place(name, named);
                if (place >= arguments.size()) arguments.resize(place + 1);
                given.resize(arguments.size());
                if (given[place]) fail("the parameter is given twice");
                given[place] = true;
                arguments[place] = argument();
            } while (take(','));
            expect(')');
        }
        for (std::size_t i = 0; i < given.size(); ++i)
            if (!given[i] && i < named.size()) fail(named[i].name + " is missing");
        return made_of(name, std::move(arguments));
    }
    std::size_t named_place(const std::string& family, const std::vector<ParameterRow>& named) {
        const std::string_view word = peek_word();
        for (std::size_t i = 0; i < named.size(); ++i) {
            if (named[i].name != word) continue;
            place_ += word.size();
            expect('=');
            return i;
        }
        if (named.empty()) made_of(family, {});  // says that there is no such family
        std::string names;
        for (const ParameterRow& parameter : named) names += (names.empty() ? "" : ", ") + parameter.name;
        fail("expected a number or one of " + names);
    }
    std::vector<double> argument() {
        if (!take('{')) return {number()};
        std::vector<double> table;
        if (take('}')) return table;
        do table.push_back(number());
        while (take(','));
        expect('}');
        return table;
    }

    [[noreturn]] void refused(const std::string& objection, std::size_t start) const {
        refuse(PRAL_ERROR_PARAMETER, objection, static_cast<std::int64_t>(start));
    }
    Shared moved(Shared distribution, double factor, double shift, std::size_t start) const {
        std::string objection;
        distribution = affine(std::move(distribution), factor, shift, objection);
        if (distribution == nullptr) refused(objection, start);
        return distribution;
    }

    std::string_view text_;
    std::size_t place_ = 0;
    int depth_ = 0;
};

}  // namespace

Shared parsed(const std::string& text) { return Parser(text).whole(); }

}  // namespace pral::objects
