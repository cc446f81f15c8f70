#pragma once

#include "lib/image/point/gray.h"

namespace imgbasic {

/// The row functions of one form, by GrayMode.
using GrayRows = GrayRow* const[11];

extern GrayRows kGrayRowsScalar;
extern GrayRows kGrayRowsAvx2;

}  // namespace imgbasic
