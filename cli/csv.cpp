// Columns of numbers out of a CSV file.
#include "csv.h"

#include <fmt/format.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <utility>

#include "errors.h"
#include "text.h"

#ifdef _WIN32
#include <fcntl.h>
#include <io.h>
#endif

namespace cli {

namespace {

using Row = std::vector<std::string>;

bool is_digit(char c) { return c >= '0' && c <= '9'; }
bool is_line_end(char c) { return c == '\n' || c == '\r'; }
bool is_blank(const Row& row) {
    return std::ranges::all_of(row, [](const std::string& cell) { return cell.empty(); });
}

/// Whether a cell's digits are in groups of three: "1,234" is 1.234 or 1234, "1,234.5" and "1 234" are numbers in thousands.
enum class Grouping { none, possible, certain };

Grouping grouping_of(std::string_view cell) {
    if (cell.starts_with('-') || cell.starts_with('+')) cell.remove_prefix(1);
    const std::size_t head = cell.find_first_not_of("0123456789");
    if (head == cell.npos || head < 1 || head > 3 || cell[0] == '0') return Grouping::none;
    const char mark = cell[head];
    if (mark != ',' && mark != '.' && mark != '\'' && mark != ' ') return Grouping::none;
    const auto begins_with_group = [&] {
        return cell.size() >= 4 && cell[0] == mark && std::ranges::all_of(cell.substr(1, 3), is_digit) &&
               (cell.size() == 4 || !is_digit(cell[4]));
    };
    int groups = 0;
    for (cell.remove_prefix(head); begins_with_group(); cell.remove_prefix(4)) ++groups;
    if (groups == 0) return Grouping::none;
    if (cell.empty()) {
        const bool may_be_decimal = groups == 1 && (mark == ',' || mark == '.');
        return may_be_decimal ? Grouping::possible : Grouping::certain;
    }
    const bool decimals = (cell[0] == ',' || cell[0] == '.') && cell[0] != mark &&
                          std::ranges::all_of(cell.substr(1), is_digit);
    return decimals ? Grouping::certain : Grouping::none;
}

std::optional<double> marked_number(std::string cell, DecimalMark mark) {
    if (mark == DecimalMark::comma) {
        if (cell.find('.') != cell.npos) return std::nullopt;
        const auto comma = cell.find(',');
        if (comma != cell.npos) cell[comma] = '.';
    }
    const auto value = number(cell);
    return value && !std::isnan(*value) ? value : std::nullopt;
}

/// What programs write where a number is missing: R, pandas, databases, spreadsheets.
bool is_missing(const std::string& cell) {
    constexpr std::string_view marks[] = {"", "na", "n/a", "#n/a", "nan", "null"};
    return cell.size() <= 4 && std::ranges::find(marks, lower_case(cell)) != std::end(marks);
}

enum class Kind { missing, numeric, text };

Kind kind_of(const std::string& cell) {
    if (is_missing(cell)) return Kind::missing;
    const bool numeric = marked_number(cell, DecimalMark::point) || marked_number(cell, DecimalMark::comma) ||
                         grouping_of(cell) != Grouping::none;
    return numeric ? Kind::numeric : Kind::text;
}

/// The rows of a text, one after the other.
class Reader {
  public:
    Reader(std::string_view text, const std::string& file, char separator)
        : text_(text), file_(file), separator_(separator) {}

    /// The next row, a blank one too; false at the end.
    bool next(Row& row) {
        if (at_ == text_.size()) return false;
        line_ = next_line_;
        row.clear();
        row.push_back(next_field());
        while (at_ < text_.size() && text_[at_] == separator_) {
            ++at_;
            row.push_back(next_field());
        }
        end_line();
        return true;
    }

    /// The next row that is not blank.
    bool next_filled(Row& row) {
        while (next(row)) {
            if (!is_blank(row)) return true;
        }
        return false;
    }

    /// The line in which the row begins that was read last; the same with the file.
    std::size_t line() const { return line_; }
    std::string where() const { return fmt::format("{}:{}", shown(file_), line_); }

  private:
    bool in_field() const {
        return at_ < text_.size() && text_[at_] != separator_ && !is_line_end(text_[at_]);
    }
    void skip_blanks() {
        while (in_field() && (text_[at_] == ' ' || text_[at_] == '\t')) ++at_;
    }

    std::string next_field() {
        skip_blanks();
        if (in_field() && text_[at_] == '"') return quoted_field();
        const std::size_t begin = at_;
        while (in_field()) ++at_;
        return std::string(trimmed(text_.substr(begin, at_ - begin)));
    }

    /// A doubled quote stands for one; line ends belong to the field.
    std::string quoted_field() {
        std::string field;
        for (++at_; at_ < text_.size(); ++at_) {
            if (text_[at_] == '"' && (++at_ == text_.size() || text_[at_] != '"')) {
                skip_blanks();
                if (in_field())
                    throw UsageError(fmt::format("{}: a field goes on behind its closing quote", where()));
                return std::string(trimmed(field));
            }
            if (text_[at_] == '\n') ++next_line_;
            field += text_[at_];
        }
        throw UsageError(fmt::format("{}: a quote is opened and never closed", where()));
    }

    /// Over "\n", "\r\n" or a "\r" by itself.
    void end_line() {
        if (at_ == text_.size()) return;
        ++next_line_;
        if (text_[at_++] == '\r' && at_ < text_.size() && text_[at_] == '\n') ++at_;
    }

    std::string_view text_;
    const std::string& file_;
    char separator_;
    std::size_t at_ = 0, line_ = 0, next_line_ = 1;
};

std::string_view checked_text(std::string_view text, const std::string& file) {
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);  // a spreadsheet's UTF-8 mark
    if (text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF") || text.find('\0') != text.npos)
        throw UsageError(
            fmt::format("{} is no text in UTF-8 or ASCII: save it as CSV in UTF-8", shown(file)));
    return text;
}

/// How many fields the first row has with this separator; 0 when all rows are looked at and do not agree. Quotes that are
/// wrong with one separator may be right with another.
std::size_t width_of(std::string_view text, const std::string& file, char separator, bool all_rows) {
    try {
        Reader reader(text, file, separator);
        Row row;
        if (!reader.next_filled(row)) return 0;
        const std::size_t width = row.size();
        while (all_rows && reader.next_filled(row)) {
            if (row.size() != width) return 0;
        }
        return width;
    } catch (const UsageError&) {
        return 0;
    }
}

/// Tabs and semicolons go before commas, which may be decimal. Where the first row holds several of them, the first with
/// which all rows have as many fields.
char find_separator(std::string_view text, const std::string& file, const CsvRequest& request) {
    std::string found;
    for (const char separator : {'\t', ';', ','}) {
        if (width_of(text, file, separator, false) > 1) found += separator;
    }
    if (found.empty()) return request.decimal == DecimalMark::comma ? ';' : ',';
    if (found.size() == 1) return found[0];
    for (const char separator : found) {
        if (width_of(text, file, separator, true) > 1) return separator;
    }
    throw UsageError(
        fmt::format("{}: the first row holds several separators (commas, semicolons, tabs), and with none of "
                    "them have all rows as many fields: put quotes around texts that hold one",
                    shown(file)));
}

bool first_row_has_names(const Row& first, const CsvRequest& request, const std::string& where) {
    if (request.names) return *request.names;
    const auto numbers = std::ranges::count(first, Kind::numeric, kind_of);
    if (numbers == static_cast<std::ptrdiff_t>(first.size())) return false;
    const bool texts = std::ranges::count(first, Kind::text, kind_of) > 0;
    if (texts && (numbers == 0 || std::ranges::find(first, request.column) != first.end())) return true;
    throw UsageError(
        fmt::format("{}: does the first row hold names or data? Not all of its cells are numbers, or none; "
                    "give the column "
                    "by its name, or use --header yes or no (not for tables @FILE)",
                    where));
}

/// The place of the column that was asked for, from 0 on.
std::size_t find_column(const Row& first, bool names, const std::string& column, const std::string& file) {
    std::vector<std::size_t> places;
    for (std::size_t i = 0; names && i < first.size(); ++i) {
        if (first[i] == column) places.push_back(i);
    }
    const auto place = number(column);
    if (place && *place >= 1 && *place <= static_cast<double>(first.size()) && *place == std::floor(*place)) {
        const auto by_number = static_cast<std::size_t>(*place) - 1;
        if (std::ranges::find(places, by_number) == places.end()) places.push_back(by_number);
    }
    if (places.empty()) {
        const std::string all =
            names ? joined(first, ", ", [](const std::string& name) { return name.empty() ? "\"\"" : name; })
                  : fmt::format("1 to {}, without names", first.size());
        throw UsageError(
            fmt::format("{} has no column {}; its columns are {}", shown(file), shown(column), shown(all)));
    }
    if (places.size() > 1)
        throw UsageError(fmt::format("{}: {} may be column {} or column {}", shown(file), shown(column),
                                     places[0] + 1, places[1] + 1));
    return places[0];
}

/// The first column whose first cell that is not missing is a number. A column without a name, where others have one, is
/// that of the row names (R, pandas) and passed over.
std::size_t first_numeric_column(Reader reader, bool names, const std::string& file) {
    Row row;
    reader.next_filled(row);
    if (!names && row.size() > 1)
        throw UsageError(fmt::format(
            "{} has {} columns without names (or decimal commas?): the number of the column is wanted",
            shown(file), row.size()));
    std::vector<Kind> kinds(row.size(), Kind::missing);
    for (std::size_t i = 0; i < row.size(); ++i) {
        if (!names) kinds[i] = kind_of(row[i]);
        if (names && row[i].empty()) kinds[i] = Kind::text;
    }
    while (std::ranges::find(kinds, Kind::missing) != kinds.end() && reader.next_filled(row)) {
        for (std::size_t i = 0; i < std::min(row.size(), kinds.size()); ++i) {
            if (kinds[i] == Kind::missing) kinds[i] = kind_of(row[i]);
        }
    }
    const auto found = std::ranges::find(kinds, Kind::numeric);
    if (found == kinds.end()) throw UsageError(fmt::format("{} holds no column of numbers", shown(file)));
    return static_cast<std::size_t>(found - kinds.begin());
}

/// A column as messages call it.
std::string shown_name(const CsvColumn& column) {
    return column.name.empty() ? fmt::format("{}", column.number) : shown(column.name);
}

/// Reads the cells of one column, and remembers what could have been meant otherwise.
class Cells {
  public:
    Cells(const CsvRequest& request, Purpose purpose, CsvColumn& column)
        : request_(request), purpose_(purpose), column_(column) {}

    /// None of a cell that is missing.
    std::optional<double> value_of(const std::string& cell, const std::string& where) {
        if (is_missing(cell)) return missing(cell, where);
        if (purpose_ == Purpose::table && !gap_.empty())
            throw UsageError(gap_ + "; only at its end may a table have empty cells");
        const bool comma_separates = column_.separator == ',';
        const bool has_comma = cell.find(',') != cell.npos;
        const DecimalMark mark = request_.decimal                ? *request_.decimal
                                 : has_comma && !comma_separates ? DecimalMark::comma
                                                                 : DecimalMark::point;
        const auto value = marked_number(cell, mark);
        if (!value) refuse(cell, where);
        if (purpose_ == Purpose::data && !(std::fabs(*value) < DBL_MAX))
            throw UsageError(fmt::format("{}: \"{}\" is not a finite number", where, shown(cell)));
        if (has_comma || cell.find('.') != cell.npos) marks_[has_comma ? 1 : 0].see(cell, where);
        return value;
    }

    Purpose purpose() const { return purpose_; }
    /// What is to be said of the first missing cell.
    const std::string& gap() const { return gap_; }

    void end() {
        const auto& [point, comma] = marks_;
        column_.decimal = request_.decimal.value_or(comma.seen ? DecimalMark::comma : DecimalMark::point);
        if (request_.decimal || column_.separator == ',') return;
        if (comma.seen && point.seen)
            throw UsageError(
                fmt::format("{}, {}: both commas and points, of which one must be the decimal mark",
                            comma.example, point.example));
        if (comma.seen && !comma.certain) refuse_doubt(comma);
        // Where semicolons separate, commas are decimal as a rule, and points the mark of thousands.
        if (point.seen && !point.certain && column_.separator == ';') refuse_doubt(point);
    }

  private:
    struct Mark {
        bool seen = false, certain = false;
        std::string example;

        void see(const std::string& cell, const std::string& where) {
            if (!seen) example = fmt::format("{}: \"{}\"", where, shown(cell));
            seen = true;
            certain = certain || grouping_of(cell) != Grouping::possible;
        }
    };

    std::optional<double> missing(const std::string& cell, const std::string& where) {
        if (purpose_ == Purpose::ends) return NAN;
        if (gap_.empty())
            gap_ = fmt::format("{}: the cell of column {} is {}", where, shown_name(column_),
                               cell.empty() ? "empty" : cell);
        if (purpose_ == Purpose::table && !cell.empty()) throw UsageError(gap_);
        ++column_.missing;
        return std::nullopt;
    }

    [[noreturn]] static void refuse(const std::string& cell, const std::string& where) {
        std::string advice;
        if (grouping_of(cell) != Grouping::none) advice = "; thousands separators are not read";
        if (marked_number(cell, DecimalMark::comma))
            advice += "; --decimal comma reads decimal commas (not in tables @FILE)";
        throw UsageError(fmt::format("{}: \"{}\" is not a number, or beyond the range of numbers{}", where,
                                     shown(cell), advice));
    }

    [[noreturn]] static void refuse_doubt(const Mark& mark) {
        throw UsageError(fmt::format(
            "{} and its like may be decimals or thousands; --decimal comma or point reads decimals",
            mark.example));
    }

    const CsvRequest& request_;
    const Purpose purpose_;
    CsvColumn& column_;
    std::string gap_;
    Mark marks_[2];  // the point, the comma
};

/// Reads the cells of one row after the other into the columns.
class Table {
  public:
    Table(const CsvRequest& request, const std::vector<CsvPart>& parts, std::vector<std::size_t> places,
          CsvTable& table)
        : request_(request), places_(std::move(places)), values_(parts.size()), table_(table) {
        for (std::size_t i = 0; i < parts.size(); ++i)
            cells_.emplace_back(request, parts[i].purpose, table.columns[i]);
    }

    void add(const Row& row, const Reader& reader) {
        bool whole = true, tells = false;
        for (std::size_t i = 0; i < cells_.size(); ++i) {
            const auto value =
                cells_[i].value_of(places_[i] < row.size() ? row[places_[i]] : "", reader.where());
            whole = whole && value;
            values_[i] = value.value_or(NAN);
            // A weight beside two open ends tells nothing.
            tells = tells || (!std::isnan(values_[i]) && (i == 0 || cells_[i].purpose() == Purpose::ends));
        }
        if (!whole || !tells) return add_missing(reader);
        for (std::size_t i = 0; i < cells_.size(); ++i) table_.columns[i].values.push_back(values_[i]);
        table_.lines.push_back(reader.line());
    }

    void end(const std::string& file) {
        const CsvColumn& first = table_.columns.front();
        const std::size_t read = first.values.size();
        if (request_.purpose != Purpose::table && table_.missing > 0 && !request_.skip_missing)
            throw UsageError(fmt::format("{}; {} of {} {} are missing (--skip-missing leaves them out)",
                                         gap(), table_.missing, table_.missing + read,
                                         cells_.size() == 1 ? "cells" : "rows"));
        if (read == 0)
            throw UsageError(fmt::format("{} holds no numbers in column {}", shown(file), shown_name(first)));
        for (Cells& cells : cells_) cells.end();
    }

  private:
    void add_missing(const Reader& reader) {
        ++table_.missing;
        if (open_.empty()) open_ = reader.where() + ": both ends are open";
    }
    std::string gap() const {
        for (const Cells& cells : cells_) {
            if (!cells.gap().empty()) return cells.gap();
        }
        return open_;
    }

    const CsvRequest& request_;
    const std::vector<std::size_t> places_;
    std::vector<Cells> cells_;
    std::vector<double> values_;
    CsvTable& table_;
    std::string open_;
};

void check_width(const Row& row, std::size_t width, const std::string& where) {
    if (row.size() <= width) return;
    const auto is_text = [](const std::string& cell) { return !cell.empty(); };
    if (std::none_of(row.begin() + static_cast<std::ptrdiff_t>(width), row.end(), is_text)) return;
    throw UsageError(
        fmt::format("{}: {} fields, but the first row has {} (decimal commas or thousands "
                    "separators without quotes, or row names without a name of their column?)",
                    where, row.size(), width));
}

}  // namespace

std::string read_file(const std::string& file) {
    std::ifstream opened;
    if (file == "-") {
#ifdef _WIN32
        _setmode(_fileno(stdin), _O_BINARY);
#endif
    } else {
        opened.open(file, std::ios::binary);
    }
    std::istream& in = file == "-" ? std::cin : opened;
    std::string text;
    constexpr std::size_t kLargest = std::size_t{1} << 30;
    std::vector<char> block(1 << 16);
    while (in && in.read(block.data(), static_cast<std::streamsize>(block.size())).gcount() > 0) {
        text.append(block.data(), static_cast<std::size_t>(in.gcount()));
        if (text.size() > kLargest) throw UsageError(fmt::format("{} is larger than 1 GB", shown(file)));
    }
    if (!in.eof() || in.bad()) throw UsageError(fmt::format("cannot read the file {}", shown(file)));
    return text;
}

CsvColumn read_csv_column(std::string_view text, const std::string& file, const CsvRequest& request) {
    CsvTable table = read_csv_columns(text, file, request, {});
    return std::move(table.columns.front());
}

CsvTable read_csv_columns(std::string_view text, const std::string& file, const CsvRequest& request,
                          const std::vector<CsvPart>& more) {
    text = checked_text(text, file);
    const char separator = find_separator(text, file, request);
    Reader reader(text, file, separator);
    Row row;
    if (!reader.next_filled(row)) throw UsageError(fmt::format("{} holds no numbers", shown(file)));
    const std::size_t width = row.size();
    const bool has_names = first_row_has_names(row, request, reader.where());
    if (!has_names && separator == ',' && request.decimal == DecimalMark::comma)
        throw UsageError(
            fmt::format("{}: commas cannot both separate columns without names and be decimal", shown(file)));

    std::vector<CsvPart> parts = {{request.column, request.purpose}};
    parts.insert(parts.end(), more.begin(), more.end());
    std::vector<std::size_t> places;
    CsvTable table;
    for (const CsvPart& part : parts) {
        const std::size_t place = part.column.empty()
                                      ? first_numeric_column(Reader(text, file, separator), has_names, file)
                                      : find_column(row, has_names, part.column, file);
        places.push_back(place);
        CsvColumn& column = table.columns.emplace_back();
        column.number = place + 1;
        column.width = width;
        column.separator = separator;
        column.has_names = has_names;
        if (has_names) column.name = row[place];
    }

    Table rows(request, parts, places, table);
    if (!has_names) rows.add(row, reader);
    // Empty lines in a text of one column are empty cells if something follows.
    std::size_t empty_lines = 0;
    std::optional<Reader> first_empty_line;
    while (reader.next(row)) {
        check_width(row, width, reader.where());
        if (is_blank(row)) {
            if (width == 1 && empty_lines++ == 0) first_empty_line.emplace(reader);
            continue;
        }
        for (; empty_lines > 0; --empty_lines) rows.add({}, *first_empty_line);
        rows.add(row, reader);
    }
    rows.end(file);
    return table;
}

}  // namespace cli
