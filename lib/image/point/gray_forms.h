#pragma once

#include "lib/image/point/gray.h"

namespace imgbasic {

/// The row functions of one form, by GrayMode.
struct GrayRows {
    GrayRow* of[static_cast<size_t>(GrayMode::Black) + 1];
};

extern const GrayRows kGrayRowsScalar;
extern const GrayRows kGrayRowsAvx2;
extern const GrayRows kGrayRowsAvx512;

}  // namespace imgbasic
