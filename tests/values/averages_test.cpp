// Value cases of the moving averages.

#include "values/average_twins.hpp"
#include "values/value_case.hpp"

namespace brindlewort::testing {
namespace {

using B = const Bars&;

const Family kAverages{{
    {{"SMA", "SIMPLEMOVINGAVERAGE"},
     "HIGH, 4",
     [](B b) { return whole::sma(b.high, 4); },
     [](B b) { return living::sma(b.high, 4); }},
    {{"EMA", "EXPONENTIALMOVINGAVERAGE"},
     "LOW, 4",
     [](B b) { return whole::ema(b.low, 4); },
     [](B b) { return living::ema(b.low, 4); }},
    {{"TSMA", "TIMESERIESMOVINGAVERAGE"},
     "OPEN, 5",
     [](B b) { return whole::tsma(b.open, 5); },
     [](B b) { return living::tsma(b.open, 5); }},
    {{"VMA", "VARIABLEMOVINGAVERAGE"},
     "LOW, 4",
     [](B b) { return whole::vma(b.low, 4); },
     [](B b) { return living::vma(b.low, 4); }},
    {{"TMA", "TRIANGULARMOVINGAVERAGE"},
     "HIGH, 6",
     [](B b) { return whole::tma(b.high, 6); },
     [](B b) { return living::tma(b.high, 6); }},
    {{"WMA", "WEIGHTEDMOVINGAVERAGE"},
     "OPEN, 4",
     [](B b) { return whole::wma(b.open, 4); },
     [](B b) { return living::wma(b.open, 4); }},
    {{"WWS", "WELLESWILDERSMOOTHING"},
     "HIGH, 4",
     [](B b) { return whole::wws(b.high, 4); },
     [](B b) { return living::wws(b.high, 4); }},
    {{"VIDYA"},
     "LOW, 5, 0.4",
     [](B b) { return whole::vidya(b.low, 5, 0.4); },
     [](B b) { return living::vidya(b.low, 5, 0.4); }},
    {{"VIDYA"},
     "LOW, 5",
     [](B b) { return whole::vidya(b.low, 5, 0.65); },
     [](B b) { return living::vidya(b.low, 5, 0.65); }},
    {{"ZLEMA", "ZEROLAGEXPONENTIALMOVINGAVERAGE"},
     "OPEN, 6",
     [](B b) { return whole::zlema(b.open, 6); },
     [](B b) { return living::zlema(b.open, 6); }},
    {{"HA", "HULLAVERAGE"},
     "LOW, 9",
     [](B b) { return whole::ha(b.low, 9); },
     [](B b) { return living::ha(b.low, 9); }},
    {{"AMA", "ADAPTIVEMOVINGAVERAGE"},
     "HIGH, 5, 3, 20",
     [](B b) { return whole::ama(b.high, 5, 3, 20); },
     [](B b) { return living::ama(b.high, 5, 3, 20); }},
    {{"FA", "FACTORAVERAGE"},
     "OPEN, 0.3, 4",
     [](B b) { return whole::fa(b.open, 0.3, 4); },
     [](B b) { return living::fa(b.open, 0.3, 4); }},
    // An average that begins with nulls: the seed of the incremental way leaves rows out.
    {{"FA"},
     "SMA(OPEN, 3), 0.3, 4",
     [](B b) { return whole::fa(whole::sma(b.open, 3), 0.3, 4); },
     [](B b) { return living::fa(living::sma(b.open, 3), 0.3, 4); }},
    {{"VAA", "VOLUMEADJUSTEDAVERAGE"},
     "HIGH, 4",
     [](B b) { return whole::vaa(b.high, b.volume, 4); },
     [](B b) { return living::vaa(b.high, b.volume, 4); }},
    {{"CAVG", "CUMULATIVEAVERAGE"},
     "LOW",
     [](B b) { return whole::cavg(b.low); },
     [](B b) { return living::cavg(b.low); }},
    {{"CAVG"}, "", [](B b) { return whole::cavg(b.close); }, [](B b) { return living::cavg(b.close); }},
}};

}  // namespace
}  // namespace brindlewort::testing
