// Whether someone watches.
#pragma once

#include <cstddef>
#include <cstdio>

namespace cli {

bool is_terminal(std::FILE* stream);

/// How many characters a line of the standard output has on the screen; 0 when it goes elsewhere.
std::size_t screen_width();

}  // namespace cli
