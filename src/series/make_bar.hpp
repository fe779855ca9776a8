#pragma once

#include <cstdint>

#include "series/bar.hpp"

namespace brindlewort {

/// A bar as a host gives it; the fields of the last trade are 0.
inline Bar makeBar(double JDate, double Open, double High, double Low, double Close, std::int32_t Volume) {
  return {JDate, Open, High, Low, Close, static_cast<double>(Volume), 0.0, 0.0};
}

}  // namespace brindlewort
