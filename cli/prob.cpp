// pral prob: densities (masses of discrete families) and cumulative probabilities, one by one or joint.
#include <fmt/format.h>

#include "arguments.h"
#include "commands.h"
#include "errors.h"

namespace cli {

void probability(const ProbabilityOptions& options) {
    const FamilyCall call = make_call(options);
    const auto& function = options.log10 ? call.family.log10_probability : call.family.probability;
    const int cumulative = options.cumulative ? 1 : 0;
    std::vector<double> values;
    for (const std::string& text : options.values) {
        const auto more = parse_numbers(text, "-x");
        values.insert(values.end(), more.begin(), more.end());
    }
    const std::string column =
        fmt::format("{}{}{}", options.log10 ? "log10_" : "", options.joint ? "joint_" : "",
                    options.cumulative ? "cumulative" : "density");

    // The library takes the shift off the values in place: it gets copies.
    const auto evaluate = [&](std::vector<double> x) {
        double result = 0;
        require(function(&result, x.data(), static_cast<int>(x.size()), call.arguments, &cumulative,
                         call.modifiers));
        return result;
    };
    std::vector<std::vector<Cell>> answers;
    if (options.joint) {
        answers.push_back({static_cast<double>(values.size()), evaluate(values)});
    } else {
        for (const double x : values) answers.push_back({x, evaluate({x})});
    }
    Rows rows(options.format, {options.joint ? "count" : "x", column});
    for (const auto& answer : answers) rows.add(answer);
    rows.end();
}

}  // namespace cli
