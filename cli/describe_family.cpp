// pral describe of a family: its line in the public header, clause by clause, and its classic calls.
#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "classic_table.h"
#include "commands.h"
#include "text.h"

namespace cli {

namespace {

/// The text of a family, taken apart: clauses between semicolons about its parameters, then "support ...", then the
/// definition. Without a support it is a definition as a whole.
struct Clauses {
    std::string support, definition;
};

Clauses clauses_of(const Family& family) {
    constexpr std::string_view kSupport = "support ";
    std::vector<std::string> support, definition;
    for (const std::string_view clause : split(family.text, ';')) {
        const bool begins = clause.starts_with(kSupport);
        if (begins)
            support.emplace_back(clause.substr(kSupport.size()));
        else if (!support.empty())
            definition.emplace_back(clause);
    }
    if (support.empty()) return {"", std::string(family.text)};
    const auto text = [](const std::string& clause) { return clause; };
    return {joined(support, "; ", text), joined(definition, "; ", text)};
}

/// A parameter of a C declaration in Visual Basic. What is passed by pointer is a variable; optional modifiers, where a
/// null pointer means "not given", are As Any, so that ByVal 0^ can stand for them.
std::string visual_basic_parameter(std::string_view declaration, const Family& family) {
    const auto space = declaration.rfind(' ');
    const std::string_view type = declaration.substr(0, space);
    std::string name(declaration.substr(space + 1));
    const bool own =
        std::ranges::any_of(family.parameters, [&](const Parameter& p) { return p.name == name; });
    const bool pointer = type.ends_with('*');
    const bool optional = pointer && type.starts_with("const") && !own;
    if (name == "Step") name += '_';  // a word of the language
    return fmt::format("{} {} As {}", pointer ? "ByRef" : "ByVal", name,
                       optional                        ? "Any"
                       : type.find("int") != type.npos ? "Long"
                                                       : "Double");
}

/// The Declare line of the first member. A C function sets 8 bits of its flag: Byte, since Boolean reads 16.
std::string visual_basic(const Family& family, std::string_view prototype) {
    const auto open = prototype.find('('), close = prototype.rfind(')');
    const auto name = split(prototype.substr(0, open), ' ').back();
    const auto parameters = split(prototype.substr(open + 1, close - open - 1), ',');
    return fmt::format("Declare PtrSafe Function {} Lib \"pral_core.dll\" ({}) As Byte", name,
                       joined(parameters, ", ", [&](auto p) { return visual_basic_parameter(p, family); }));
}

nlohmann::ordered_json as_json(const Family& family, const ClassicFamily* classic) {
    const Clauses clauses = clauses_of(family);
    auto parameters = nlohmann::ordered_json::array();
    for (const auto& [name, is_table, text] : family.parameters)
        parameters.push_back({{"name", name}, {"type", is_table ? "table" : "number"}, {"text", text}});
    nlohmann::ordered_json json = {
        {"family", family.name},    {"kind", family.kind},        {"other_names", other_names(family)},
        {"parameters", parameters}, {"support", clauses.support}, {"definition", clauses.definition}};
    if (classic != nullptr) {
        json["prototypes"] = classic->prototypes;
        json["visual_basic"] = visual_basic(family, classic->prototypes.front());
    }
    return json;
}

std::string chapter(std::string_view title, std::string_view text) {
    return text.empty() ? "" : fmt::format("\n{}\n  {}\n", title, wrapped(text, kPageWidth, 2));
}

void write_page(const Family& family, const ClassicFamily* classic) {
    const Clauses clauses = clauses_of(family);
    std::string page =
        fmt::format("{}({}), {}\n\nParameters\n", family.name, parameter_names(family), family.kind);
    std::size_t width = 0;
    for (const auto& parameter : family.parameters) width = std::max(width, parameter.name.size());
    for (const auto& [name, is_table, text] : family.parameters)
        page += fmt::format("  {:<{}}  {}  {}\n", name, width, is_table ? "table " : "number",
                            wrapped(text, kPageWidth, width + 12));
    page += chapter("Other names", other_names(family)) + chapter("Support", clauses.support) +
            chapter("Definition", clauses.definition);
    if (classic != nullptr) {
        page += "\nC\n";
        for (const auto& prototype : classic->prototypes)
            page += fmt::format("  {}\n", wrapped(prototype, kPageWidth, 6, ", "));
        page +=
            fmt::format("\nVisual Basic (ByVal 0^ for a modifier that is not given; success <> 0)\n  {}\n",
                        wrapped(visual_basic(family, classic->prototypes.front()), kPageWidth, 6, " ", " _"));
    }
    write(page);
}

}  // namespace

void describe_family(const Family& family, Format format) {
    const ClassicFamily* const classic = find_classic(family.name);
    if (format == Format::table) return write_page(family, classic);
    write_fields(format, as_json(family, classic));
}

}  // namespace cli
