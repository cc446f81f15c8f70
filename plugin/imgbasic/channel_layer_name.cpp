#include "plugin/imgbasic/channel_layer_name.h"

#include <algorithm>

#include "plugin/imgbasic/process.h"

namespace imgbasic {

std::string_view ReadLayerName(const char* buffer) {
    if (buffer == nullptr) {
        return {};
    }
    return {buffer, std::find(buffer, buffer + kLayerNameSize, '\0')};
}

void WriteLayerName(char* buffer, std::string_view name) {
    if (buffer != nullptr) {
        buffer[name.copy(buffer, kLayerNameSize - 1)] = '\0';
    }
}

}  // namespace imgbasic
