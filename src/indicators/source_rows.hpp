#pragma once

#include <initializer_list>

#include "indicators/frame.hpp"

/// Row counts and leads of operations that read several series.
namespace brindlewort {

/// The rows that all of these series have.
inline Count commonRows(View first, std::initializer_list<View> others) {
  Count n = rowsOf(first);
  for (View series : others) n = std::min(n, rowsOf(series));
  return n;
}

/// The higher lead of two series: the first row in which both have begun.
inline Count higherLead(View a, View b) {
  return std::max(firstValueIndex(a), firstValueIndex(b));
}

}  // namespace brindlewort
