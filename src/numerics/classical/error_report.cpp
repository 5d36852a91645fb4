#include "numerics/classical/error_report.h"

#include <cstdio>

namespace pral::numerics {

namespace {

constexpr const char* kWords[] = {
    "unknown",
    "domain",
    "singularity",
    "overflow",
    "underflow",
    "total loss of precision",
    "partial loss of precision",
};

int last_code = 0;

}  // namespace

void math_error_report(const char* name, MathError code) {
    last_code = static_cast<int>(code);
    std::printf("\n%s ", name);
    std::printf("%s error\n", kWords[last_code]);
}

int last_math_error() { return last_code; }

}  // namespace pral::numerics
