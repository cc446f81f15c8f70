#pragma once

#include <wincodec.h>
#include <wrl/client.h>

#include <stdexcept>

namespace imgbasic::host {

using Microsoft::WRL::ComPtr;

/// A call of the system's that failed; the message is its number.
class ComError : public std::runtime_error {
  public:
    explicit ComError(HRESULT result);
};

/// Throws ComError unless the call succeeded.
void Check(HRESULT result);

/// The system's imaging component. COM must be started on the thread. Throws ComError.
ComPtr<IWICImagingFactory> ImagingFactory();

}  // namespace imgbasic::host
