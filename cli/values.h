// The numbers at which a distribution is evaluated, and where they come from.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "csv.h"

namespace cli {

struct ValueOptions {
    std::vector<std::string> given;  // each a number, a comma list, @FILE:COLUMN, or - for the standard input
    std::optional<std::string> file;  // of whose column they are
    CsvRequest csv = {.purpose = Purpose::values};
};

/// The values from one of three places: `behind` the distribution, the option whose name is `option`, or a file. When
/// there are none, they come from the standard input, unless that is a terminal.
std::vector<double> read_values(const ValueOptions& options, const std::vector<std::string>& behind,
                                std::string_view option);

}  // namespace cli
