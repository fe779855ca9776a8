#pragma once

#include "indicators/frame.hpp"

namespace brindlewort {

/// Which Aroon line is wanted.
enum class AroonLine { kUp, kDown, kOscillator };

namespace CFeedkit {
/// How recent the highest high (up) and the lowest low (down) of a window are: 100 on the present row, 0 when
/// p rows back. The oscillator is up less down.
/// formula: up = (p - (i - row of the highest high)) / p * 100;
///   down = (p - (i - row of the lowest low)) / p * 100
/// batch: 1 <= p <= n; rows from p + 1; the window is the present row and the p rows before it; of equal
///   extremes the present row wins, then the oldest.
/// resumable: 1 <= p <= n; rows from p - 1, whatever the lead; the window is the present row and the p - 1
///   rows before it; of equal extremes the newest wins.
void AROON(const Prices& prices, Count p, AroonLine line, Out out);
}  // namespace CFeedkit

namespace CTechnicalFunctions {
Status AROON(WorkStore& store, const PriceSources& prices, Count p, AroonLine line, Target out);

/// The Aroon oscillator: how much more recent the highest high of a window is than its lowest low.
/// formula: up - down of AROON
/// resumable: 1 <= p <= n; rows from lead + p - 1, the lead being the higher one of high and low.
Status AROSC(WorkStore& store, const PriceSources& prices, Count p, Target out);
}  // namespace CTechnicalFunctions

}  // namespace brindlewort
