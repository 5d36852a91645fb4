// How commands and options are spelt.
#pragma once

namespace cli {

/// Carries out what stands on the command line. The exit code, where no exception tells of a failure.
int run(int argc, char** argv);

}  // namespace cli
