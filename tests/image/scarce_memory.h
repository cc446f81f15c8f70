#pragma once

namespace imgbasic {

/// While it lives, no more than `allocations` further ones by operator new succeed.
class ScopedAllocationLimit {
  public:
    explicit ScopedAllocationLimit(int allocations);
    ~ScopedAllocationLimit();
    ScopedAllocationLimit(const ScopedAllocationLimit&) = delete;
    ScopedAllocationLimit& operator=(const ScopedAllocationLimit&) = delete;

    /// Whether one was refused.
    bool IsPassed() const;
};

/// What operator new gave out and has not got back.
long LiveAllocations();

}  // namespace imgbasic
