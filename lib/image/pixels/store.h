#pragma once

#include <cstddef>

namespace imgbasic {

/// How a kernel writes its result: through the caches, or past them, which saves reading the
/// destination first when the result is too large to stay cached anyway.
enum class Store { Cached, Streaming };

/// The better way for a result of `pixels` pixels.
Store StoreFor(size_t pixels);

/// Forces one way while it lives, so that tests and benchmarks can compare them.
class ScopedStore {
  public:
    explicit ScopedStore(Store store);
    ~ScopedStore();
    ScopedStore(const ScopedStore&) = delete;
    ScopedStore& operator=(const ScopedStore&) = delete;

  private:
    size_t previous_;
};

}  // namespace imgbasic
