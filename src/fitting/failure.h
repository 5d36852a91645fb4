// How fits fail.
#pragma once

#include <exception>
#include <string>
#include <utility>

#include "base/message.h"

namespace pral::fitting {

/// There is no fit, or no value of it: what() says why, and is empty where there is nothing to say.
class Failure : public std::exception {
  public:
    explicit Failure(std::string why) : why_(std::move(why)) {}
    const char* what() const noexcept override { return why_.c_str(); }

  private:
    std::string why_;
};

/// The lower bound is above the upper one: both as values, or both as percentiles.
class Contradiction : public Failure {
  public:
    Contradiction(double lower_, double upper_, bool as_values_)
        : Failure("Error: the lower bound must not be above the upper one"),
          lower(lower_),
          upper(upper_),
          as_values(as_values_) {}

    const double lower, upper;
    const bool as_values;
};

inline constexpr Message kPercentileOutside = "Error: U must be between [0,1]";

}  // namespace pral::fitting
