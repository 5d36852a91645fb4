// The families that can be fitted, as fits know them.
#pragma once

#include <span>
#include <string>

#include "inference/likelihood.h"

namespace pral::objects {

/// In the order of the list. Made when first needed.
std::span<const inference::Model> models();
/// The one of that name, in any case of letters. Throws Failure where there is none.
const inference::Model& model(const std::string& family);

}  // namespace pral::objects
