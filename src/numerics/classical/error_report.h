// The report that the classical special functions make of a domain or range error.
#pragma once

namespace pral::numerics {

enum class MathError { unknown, domain, singularity, overflow, underflow, total_loss, partial_loss };

/// Prints "\n<name> <word> error\n" on standard output and keeps the code. It never touches the library's
/// error text.
void math_error_report(const char* name, MathError code);

/// The code of the last report; 0 when there was none.
int last_math_error();

}  // namespace pral::numerics
