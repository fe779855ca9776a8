#pragma once

#include <memory>

#include "indicators/frame.hpp"

namespace brindlewort {

/// term(j) for the rows j of [first, last), formed once where many windows add it.
class FormedRows {
 public:
  template <class Term>
  FormedRows(Count first, Count last, Term term)
      : first_(first),
        rows_(std::make_unique_for_overwrite<double[]>(
            static_cast<std::size_t>(std::max<Count>(last - first, 0)))) {
    for (Count j = first; j < last; ++j) rows_[j - first] = term(j);
  }
  /// Row j, as the series counts.
  double operator[](Count j) const { return rows_[j - first_]; }

 private:
  Count first_;
  std::unique_ptr<double[]> rows_;
};

}  // namespace brindlewort
