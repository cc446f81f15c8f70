#pragma once

namespace imgbasic {

/// While it lives, no more than `allocations` further ones by operator new succeed.
class ScopedAllocationLimit {
  public:
    explicit ScopedAllocationLimit(int allocations);
    ~ScopedAllocationLimit();
    ScopedAllocationLimit(const ScopedAllocationLimit&) = delete;
    ScopedAllocationLimit& operator=(const ScopedAllocationLimit&) = delete;
};

}  // namespace imgbasic
