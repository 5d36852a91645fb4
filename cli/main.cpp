// pral, the command-line companion of pral_core: the exit codes.
#include <cstdio>
#include <new>

#include "command_line.h"
#include "errors.h"
#include "text.h"

int main(int argc, char** argv) {
    try {
        return cli::run(argc, argv);
    } catch (const cli::UsageError& error) {
        std::fprintf(stderr, "pral: %s\n", error.what());
        return cli::kUsage;
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "There is not enough memory\n");
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
    }
    return cli::kFailure;
}
