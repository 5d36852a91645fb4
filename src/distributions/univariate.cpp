#include "distributions/univariate.h"

#include <charconv>

#include "distributions/univariate_family.h"

namespace pral {

std::string shortest(double value) {
    if (std::isnan(value)) return "nan";
    if (std::isinf(value)) return value > 0 ? "inf" : "-inf";
    char text[32];
    return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

std::string family_text(const char* name, const FamilyArguments& arguments,
                        const std::vector<bool>& is_table) {
    std::string text = std::string(name) + "(";
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (i > 0) text += ", ";
        if (is_table[i]) text += "{";
        for (std::size_t j = 0; j < arguments[i].size(); ++j) {
            if (j > 0) text += ", ";
            text += shortest(arguments[i][j]);
        }
        if (is_table[i]) text += "}";
    }
    return text + ")";
}

void detail::evaluate_point(double point, Function function, std::span<const double> in,
                            std::span<double> out) {
    const double no =
        function == Function::log_cumulative || function == Function::log_survival ? -HUGE_VAL : 0;
    const double yes = no == 0 ? 1 : 0;
    for_each(in, out, [&](double x) {
        if (std::isnan(x)) return x;
        switch (function) {
            case Function::log_density:
                return x == point ? 0 : -HUGE_VAL;
            case Function::cumulative:
            case Function::log_cumulative:
                return x >= point ? yes : no;
            case Function::survival:
            case Function::log_survival:
                return x >= point ? no : yes;
            default:
                return x >= 0 && x <= 1 ? point : numerics::kNaN;
        }
    });
}

}  // namespace pral
