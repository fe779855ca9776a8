#include "series/run_bars.hpp"

namespace brindlewort {

void RunBars::insertFiller(double date) {
  if (fillers_ == front_.size()) return;
  if (fillers_ == 1) front_[1] = front_[0];
  front_[0] = Bar{};
  front_[0].JDate = date;
  ++fillers_;
}

}  // namespace brindlewort
