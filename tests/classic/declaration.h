// The declarations of the public header at run time, and calls by them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <istream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace pral::fingerprint {

struct Parameter {
    std::string type, name;
};

struct Declaration {
    std::string returned, name;
    std::vector<Parameter> parameters;
    bool selected = true;

    bool is(const char* prefix) const { return name.starts_with(prefix); }
    bool says(const char* part) const { return name.find(part) != std::string::npos; }
    bool has(const char* parameter) const {
        return std::any_of(parameters.begin(), parameters.end(),
                           [=](const Parameter& p) { return p.name == parameter; });
    }
};

/// From lines "+returned<tab>name<tab>type name<tab>..."; '-' in place of '+' is not to be called.
inline std::vector<Declaration> read_declarations(std::istream& in) {
    std::vector<Declaration> all;
    for (std::string line; std::getline(in, line);) {
        Declaration declaration;
        declaration.selected = line.at(0) == '+';
        std::istringstream fields(line.substr(1));
        std::getline(fields, declaration.returned, '\t');
        std::getline(fields, declaration.name, '\t');
        for (std::string field; std::getline(fields, field, '\t');) {
            const std::size_t space = field.rfind(' ');
            if (space == std::string::npos)  // "...": the number of steps of a Markov chain
                declaration.parameters.push_back({"double", "t"});
            else
                declaration.parameters.push_back({field.substr(0, space), field.substr(space + 1)});
        }
        all.push_back(declaration);
    }
    return all;
}

/// A number or an address, as it is passed.
struct Word {
    bool is_double = false;
    std::uint64_t bits = 0;

    static Word of(double value) {
        Word word{true, 0};
        std::memcpy(&word.bits, &value, sizeof value);
        return word;
    }
    static Word of(const void* pointer) { return {false, reinterpret_cast<std::uintptr_t>(pointer)}; }
    static Word of_integer(std::int64_t value) { return {false, static_cast<std::uint64_t>(value)}; }
    double number() const {
        double value;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }
};

/// Calls any of the exports. By the calling convention of x86-64 (System V ABI 3.2.3) integers and pointers go, in
/// their order, to six registers, doubles to eight others, and what is left over to the stack, eight bytes each; a
/// function does not see what the registers and slots hold beyond its own arguments. So one type of call does for all.
inline std::uint64_t call(void* function, const std::vector<Word>& words) {
    std::uint64_t i[6] = {}, s[16] = {};
    double d[8] = {};
    std::size_t integers = 0, doubles = 0, slots = 0;
    for (const Word& word : words) {
        if (word.is_double && doubles < std::size(d))
            d[doubles++] = word.number();
        else if (!word.is_double && integers < std::size(i))
            i[integers++] = word.bits;
        else if (slots < std::size(s))
            s[slots++] = word.bits;
        else
            throw std::length_error("a function with more arguments than a call has slots");
    }
    using Any = std::uint64_t (*)(std::uint64_t, ...);
    return reinterpret_cast<Any>(function)(i[0], i[1], i[2], i[3], i[4], i[5], d[0], d[1], d[2], d[3], d[4],
                                           d[5], d[6], d[7], s[0], s[1], s[2], s[3], s[4], s[5], s[6], s[7],
                                           s[8], s[9], s[10], s[11], s[12], s[13], s[14], s[15]);
}

}  // namespace pral::fingerprint
