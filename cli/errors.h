// The two ways in which a command fails, and their exit codes.
#pragma once

#include <pral_core/core_api.h>

#include <stdexcept>

namespace cli {

enum ExitCode { kSuccess = 0, kFailure = 1, kUsage = 2 };

/// The command line asks for something that cannot be understood, or names a file that cannot be read.
struct UsageError : std::runtime_error {
    using runtime_error::runtime_error;
};

/// Turns the failure flag of a classic call into an exception that holds its error text.
inline void require(bool success) {
    if (!success) throw std::runtime_error(PralCoreError());
}

}  // namespace cli
