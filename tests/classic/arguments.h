// Sets of arguments for any export, drawn by the meaning of its parameters: their types, their names, and what other
// parameters stand beside them. A set depends on its number and on the declaration only, never on the library.
#pragma once

#include <deque>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "classic/automation.h"
#include "declaration.h"

namespace pral::fingerprint {

/// What no drawn number equals: elements that a call does not write keep it.
constexpr double kUntouched = -7.125e-77;

/// Every array has so many elements, more than any count that is drawn (or product of counts): no call can leave it.
constexpr std::size_t kRoom = 512;

/// One buffer of doubles; `used` elements hold drawn numbers, the rest kUntouched.
struct Buffer {
    std::vector<double> elements;
    std::size_t used = 0;
};

struct Arguments {
    std::vector<Word> words;  // one a parameter
    std::deque<Buffer> buffers;
    std::deque<int> integers;
    std::deque<std::string> texts;
    std::deque<SAFEARRAY*> vectors;

    Arguments() = default;
    Arguments(const Arguments&) = delete;
    Arguments& operator=(const Arguments&) = delete;
    ~Arguments();
    std::string description(const Declaration& declaration) const;
};

/// The declarations of the base calls by family: fits need to know its parameters.
class Families {
  public:
    explicit Families(const std::vector<Declaration>& declarations);
    const std::vector<std::string>& fitted() const { return fitted_; }
    /// The parameters of a family, without those of its call.
    std::vector<Parameter> parameters(const std::string& family) const;

  private:
    std::map<std::string, const Declaration*> calls_;
    std::vector<std::string> fitted_;
};

/// How many sets a function gets: fits and recursions are slow.
constexpr int kMostSets = 1200;
int sets_of(const Declaration& declaration);

/// Set number `index` of a function. Six of ten are ordinary, two of unusual magnitudes, two ordinary ones in which
/// numbers, counts and pointers have been replaced by hostile ones.
void draw(const Declaration& declaration, const Families& families, int index, Arguments& out);

}  // namespace pral::fingerprint
