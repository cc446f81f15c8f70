#include "lib/image/pixels/store.h"

#include <limits>
#include <utility>

#include "lib/image/pixels/rgba16.h"

namespace imgbasic {
namespace {

/// Results of this many pixels and more are streamed: 4 MiB, about what a core can call its own of
/// the caches. The size of the last-level cache would be no better guide: cores share it, on rented
/// machines with strangers, and a large one may still write results back slower than past it.
size_t& SmallestStreamed() {
    static size_t pixels = (size_t{4} << 20) / sizeof(RGBA16);
    return pixels;
}

}  // namespace

Store StoreFor(size_t pixels) {
    return pixels >= SmallestStreamed() ? Store::Streaming : Store::Cached;
}

ScopedStore::ScopedStore(Store store)
    : previous_(std::exchange(SmallestStreamed(),
                              store == Store::Streaming ? 0 : std::numeric_limits<size_t>::max())) {
}

ScopedStore::~ScopedStore() {
    SmallestStreamed() = previous_;
}

}  // namespace imgbasic
