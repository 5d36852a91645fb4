// The state in which GSL is called.
#pragma once

namespace pral::numerics {

/// While one lives, in any thread, an error inside GSL is a status that the function returns. GSL's own handler would end
/// the process, and that is the host. The handler that was there before the first comes back after the last.
class GslErrorsReturn {
  public:
    GslErrorsReturn();
    ~GslErrorsReturn();
    GslErrorsReturn(const GslErrorsReturn&) = delete;
    GslErrorsReturn& operator=(const GslErrorsReturn&) = delete;
};

}  // namespace pral::numerics
