#include "indicators/frame.hpp"

#include <array>

namespace brindlewort {

Count firstValueIndex(View series) {
  constexpr double kNothingYet = -1.0;
  double first = kNothingYet;
  bool any = false;
  Count nulls = 0;
  for (double x : series) {
    if (isNull(x)) {
      if (first == kNothingYet) ++nulls;
      continue;
    }
    if (x > 0.0) break;
    if (!any) first = x;
    any = true;
  }
  return nulls;
}

std::string_view maTypeName(Count type) {
  static constexpr std::array<std::string_view, 9> kNames = {
      "SIMPLE", "SIMPLE", "EXPONENTIAL", "TIME_SERIES", "VARIABLE", "TRIANGULAR", "WEIGHTED", "VIDYA", "WWS"};
  return type >= 1 && type <= 8 ? kNames[static_cast<std::size_t>(type)] : kNames[0];
}

}  // namespace brindlewort
