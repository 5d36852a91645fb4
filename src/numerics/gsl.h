// The state in which GSL is called.
#pragma once

#include <gsl/gsl_errno.h>

namespace pral::numerics {

/// While it lives, an error inside GSL is a status that the function returns. GSL's own handler would end the process, and
/// that is the host. The handler that was there before comes back at the end.
///
/// The handler belongs to the process: no call that may run in several threads at once can depend on this.
class GslErrorsReturn {
  public:
    GslErrorsReturn() : before_(gsl_set_error_handler_off()) {}
    ~GslErrorsReturn() { gsl_set_error_handler(before_); }
    GslErrorsReturn(const GslErrorsReturn&) = delete;
    GslErrorsReturn& operator=(const GslErrorsReturn&) = delete;

  private:
    gsl_error_handler_t* before_;
};

}  // namespace pral::numerics
