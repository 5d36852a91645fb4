// pral describe of a family: its line in the public header, clause by clause, and its classic calls.
#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <nlohmann/json.hpp>

#include "classic_table.h"
#include "commands.h"
#include "text.h"

namespace cli {

namespace {

/// Where `word` stands in `text` by itself, not as a part of another word; npos when it does not.
std::size_t find_word(std::string_view text, std::string_view word) {
    const auto is_letter = [&](std::size_t i) {
        return i < text.size() && (std::isalnum(static_cast<unsigned char>(text[i])) || text[i] == '_');
    };
    auto at = text.find(word);
    while (at != text.npos && ((at > 0 && is_letter(at - 1)) || is_letter(at + word.size()))) {
        at = text.find(word, at + 1);
    }
    return at;
}

/// The text of a family, taken apart: its clauses, between semicolons, tell the parameters, then "support ...", then
/// the definition. A clause belongs to the parameter that it mentions first ("sigma >= 0, 0 being a point mass at mu");
/// a parameter that has none gets those that mention it at all ("min <= max").
struct Clauses {
    std::vector<std::string> parameters;  // for each, its clauses
    std::string support, definition;
};

void add_clause(std::string& to, std::string_view clause) {
    if (!to.empty()) to += "; ";
    to += clause;
}

Clauses clauses_of(const Family& family) {
    constexpr std::string_view support = "support ";
    const std::size_t count = family.parameters.size();
    Clauses clauses;
    std::vector<std::string> own(count), any(count);
    for (const std::string_view clause : split(family.text, ';')) {
        if (clause.starts_with(support)) {
            add_clause(clauses.support, clause.substr(support.size()));
            continue;
        }
        std::size_t first = count, first_place = clause.npos;
        for (std::size_t i = 0; i < count && clauses.support.empty(); ++i) {
            const auto place = find_word(clause, family.parameters[i].name);
            if (place != clause.npos) add_clause(any[i], clause);
            if (place < first_place) {
                first = i;
                first_place = place;
            }
        }
        add_clause(first < count ? own[first] : clauses.definition, clause);
    }
    for (std::size_t i = 0; i < count; ++i) {
        const std::string& text = family.parameters[i].text;
        clauses.parameters.push_back(!text.empty() ? text : own[i].empty() ? any[i] : own[i]);
    }
    return clauses;
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
    for (std::size_t i = 0; i < family.parameters.size(); ++i) {
        const auto& [name, is_table, text] = family.parameters[i];
        parameters.push_back(
            {{"name", name}, {"type", is_table ? "table" : "number"}, {"text", clauses.parameters[i]}});
    }
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
    for (std::size_t i = 0; i < family.parameters.size(); ++i) {
        const auto& [name, is_table, text] = family.parameters[i];
        page += fmt::format("  {:<{}}  {}  {}\n", name, width, is_table ? "table " : "number",
                            wrapped(clauses.parameters[i], kPageWidth, width + 12));
    }
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
