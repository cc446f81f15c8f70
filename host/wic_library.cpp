#include "host/wic_library.h"

#include <cstdio>
#include <string>

namespace imgbasic::host {
namespace {

std::string NumberText(HRESULT result) {
    char text[24];
    std::snprintf(text, sizeof text, "error 0x%08lX", static_cast<unsigned long>(result));
    return text;
}

}  // namespace

ComError::ComError(HRESULT result) : std::runtime_error(NumberText(result)) {
}

void Check(HRESULT result) {
    if (result == E_OUTOFMEMORY) {
        throw std::bad_alloc();
    }
    if (FAILED(result)) {
        throw ComError(result);
    }
}

ComPtr<IWICImagingFactory> ImagingFactory() {
    ComPtr<IWICImagingFactory> factory;
    Check(CoCreateInstance(CLSID_WICImagingFactory, nullptr, CLSCTX_INPROC_SERVER,
                           IID_PPV_ARGS(factory.GetAddressOf())));
    return factory;
}

}  // namespace imgbasic::host
