// Runs a fuzz target on random inputs where no fuzzer drives it: ROUNDS inputs from SEED. An input that takes more than 20
// seconds of the processor fails.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <random>

#include "input.h"

int main(int count, char** arguments) {
    const long rounds = count > 1 ? std::atol(arguments[1]) : 20000;
    std::mt19937 random(count > 2 ? std::atoi(arguments[2]) : 1);
    std::uint8_t input[96];
    double slowest = 0;
    for (long round = 0; round < rounds; ++round) {
        for (auto& byte : input) byte = static_cast<std::uint8_t>(random());
        const std::clock_t start = std::clock();
        LLVMFuzzerTestOneInput(input, sizeof input);
        const double taken = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
        if (taken > slowest) slowest = taken;
        if (slowest > 20) {
            std::fprintf(stderr, "round %ld took %.1f s\n", round, slowest);
            return 1;
        }
    }
    std::fprintf(stderr, "%ld inputs, the slowest took %.1f ms\n", rounds, 1000 * slowest);
    return 0;
}
