// What is objected to.
#pragma once

namespace pral {

/// A fixed message, or null when there is nothing to object to.
using Message = const char*;

}  // namespace pral
