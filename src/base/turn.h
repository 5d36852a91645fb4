// One call at a time through code that keeps its state between calls.
#pragma once

#include <atomic>

namespace pral {

/// A place in which one call at a time may be.
class Turnstile {
  public:
    /// A call's way through. It does not wait: a call that finds another one inside is to be refused.
    class Turn {
      public:
        explicit Turn(Turnstile& at) : at_(at), mine_(!at.taken_.test_and_set(std::memory_order_acquire)) {}
        ~Turn() {
            if (mine_) at_.taken_.clear(std::memory_order_release);
        }
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;
        explicit operator bool() const { return mine_; }

      private:
        Turnstile& at_;
        const bool mine_;
    };

  private:
    std::atomic_flag taken_;
};

}  // namespace pral
