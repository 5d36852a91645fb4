// Rows of named columns, written as an aligned table, as CSV or as JSON.
#include "output.h"

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "text.h"

namespace cli {

namespace {

constexpr std::size_t kRowsToAlign = 1000;
constexpr std::size_t kBufferSize = 1 << 16;

bool is_finite(double value) { return std::fabs(value) < DBL_MAX; }

std::string csv_text(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == text.npos) return text;
    std::string quoted = "\"";
    for (const char c : text) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    return quoted + "\"";
}

struct PlainText {
    bool for_people = false;  // with the digits that tell people something, no more

    std::string operator()(double value) const { return number_text(value); }
    std::string operator()(const std::string& text) const { return text; }
    std::string operator()(const Rounded& number) const {
        const bool rounded = for_people && is_finite(number.value);
        return rounded ? fmt::format("{:.{}f}", number.value, number.digits) : number_text(number.value);
    }
    std::string operator()(const Significant& number) const {
        const bool rounded = for_people && is_finite(number.value);
        return rounded ? fmt::format("{:.{}g}", number.value, number.digits) : number_text(number.value);
    }
    std::string operator()(const NamedNumbers& numbers) const {
        return joined(numbers, " ", [&](const auto& number) {
            const bool rounded = for_people && is_finite(number.second);
            return number.first + '=' +
                   (rounded ? fmt::format("{:.6g}", number.second) : number_text(number.second));
        });
    }
};

struct JsonText {
    std::string operator()(double value) const {
        return is_finite(value) ? number_text(value) : json_text(number_text(value));
    }
    std::string operator()(const std::string& text) const { return json_text(text); }
    std::string operator()(const Rounded& number) const { return (*this)(number.value); }
    std::string operator()(const Significant& number) const { return (*this)(number.value); }
    std::string operator()(const NamedNumbers& numbers) const {
        const auto member = [&](const auto& number) {
            return json_text(number.first) + ": " + (*this)(number.second);
        };
        return '{' + joined(numbers, ", ", member) + '}';
    }
};

}  // namespace

std::string number_text(double value) {
    if (std::isnan(value)) return "nan";
    if (!is_finite(value)) return value > 0 ? "inf" : "-inf";
    return fmt::format("{}", value);
}

nlohmann::ordered_json json_number(double value) {
    using Json = nlohmann::ordered_json;
    return std::isfinite(value) ? Json(value) : Json(number_text(value));
}

std::string json_text(const std::string& text) {
    return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

void write(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
        throw std::runtime_error("cannot write the output");
    }
}

Rows::Rows(Format format, std::vector<std::string> columns, std::size_t line_width)
    : format_(format), columns_(std::move(columns)), line_width_(line_width) {
    if (format_ == Format::csv) add_csv({columns_.begin(), columns_.end()});
    for (const auto& column : columns_) widths_.push_back(column.size());
}

void Rows::add(const std::vector<Cell>& row) {
    if (format_ == Format::csv) {
        add_csv(row);
    } else if (format_ == Format::json) {
        add_json(row);
    } else {
        if (!any_) {
            for (const Cell& cell : row)
                is_number_.push_back(!std::holds_alternative<std::string>(cell) &&
                                     !std::holds_alternative<NamedNumbers>(cell));
        }
        std::vector<std::string> texts;
        for (const Cell& cell : row) texts.push_back(std::visit(PlainText{true}, cell));
        if (settled_) {
            add_table(texts);
        } else {
            waiting_.push_back(std::move(texts));
            notes_.emplace_back();
            if (waiting_.size() == kRowsToAlign) flush_table();
        }
    }
    any_ = true;
    if (buffer_.size() > kBufferSize) write_buffer();
}

void Rows::note(std::string lines) {
    if (format_ != Format::table) return;
    lines += '\n';
    if (settled_)
        buffer_.append(lines);
    else
        notes_.back() += lines;
}

void Rows::end() {
    if (format_ == Format::json) buffer_.append(std::string_view(any_ ? "\n]\n" : "[]\n"));
    if (format_ == Format::table && !settled_) flush_table();
    write_buffer();
}

void Rows::add_csv(const std::vector<Cell>& row) {
    for (std::size_t i = 0; i < row.size(); ++i) {
        fmt::format_to(std::back_inserter(buffer_), "{}{}", i > 0 ? "," : "",
                       csv_text(std::visit(PlainText{}, row[i])));
    }
    buffer_.push_back('\n');
}

void Rows::add_json(const std::vector<Cell>& row) {
    buffer_.append(std::string_view(any_ ? ",\n  {" : "[\n  {"));
    for (std::size_t i = 0; i < row.size(); ++i) {
        fmt::format_to(std::back_inserter(buffer_), "{}{}: {}", i > 0 ? ", " : "", json_text(columns_[i]),
                       std::visit(JsonText{}, row[i]));
    }
    buffer_.push_back('}');
}

void Rows::add_table(const std::vector<std::string>& row) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i) {
        if (i > 0) line += "  ";
        const bool right = i < is_number_.size() && is_number_[i];
        line += right ? fmt::format("{:>{}}", row[i], widths_[i]) : fmt::format("{:<{}}", row[i], widths_[i]);
    }
    constexpr std::string_view kCut = "...";
    if (line_width_ > kCut.size() && line.size() > line_width_)
        line = line.substr(0, line_width_ - kCut.size()).append(kCut);
    line.erase(line.find_last_not_of(' ') + 1);
    line += '\n';
    buffer_.append(line);
}

void Rows::flush_table() {
    for (const auto& row : waiting_) {
        for (std::size_t i = 0; i < row.size(); ++i) widths_[i] = std::max(widths_[i], row[i].size());
    }
    add_table(columns_);
    for (std::size_t i = 0; i < waiting_.size(); ++i) {
        add_table(waiting_[i]);
        buffer_.append(notes_[i]);
    }
    waiting_.clear();
    notes_.clear();
    settled_ = true;
}

void Rows::write_buffer() {
    write({buffer_.data(), buffer_.size()});
    buffer_.clear();
}

void write_fields(Format format, const nlohmann::ordered_json& object) {
    if (format == Format::json) return write(object.dump(2) + "\n");
    Rows rows(format, {"field", "value"});
    const auto flat = object.flatten();
    for (const auto& [path, value] : flat.items())
        rows.add(
            {path.substr(1), value.is_number() ? Cell(value.get<double>()) : Cell(value.get<std::string>())});
    rows.end();
}

}  // namespace cli
