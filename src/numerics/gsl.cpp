#include "numerics/gsl.h"

#include <gsl/gsl_errno.h>

#include <mutex>

namespace pral::numerics {

namespace {

/// The handler belongs to the process, so all threads count together.
std::mutex lock;
int alive = 0;
gsl_error_handler_t* before = nullptr;

}  // namespace

GslErrorsReturn::GslErrorsReturn() {
    const std::lock_guard guard(lock);
    if (alive++ == 0) before = gsl_set_error_handler_off();
}

GslErrorsReturn::~GslErrorsReturn() {
    const std::lock_guard guard(lock);
    if (--alive == 0) gsl_set_error_handler(before);
}

}  // namespace pral::numerics
