#pragma once

#include <functional>
#include <string>
#include <vector>

#include "support/series_checks.hpp"
#include "values/twin_frame.hpp"

/// Value cases: a call as a script writes it, and the rows that it must give in each way. Each family of
/// functions lists its own in a file of its own; values_test.cpp runs them all and holds the list against the
/// vocabulary.
namespace brindlewort::testing {

/// The bars of a run as columns, in the rows of the way that reads them: over the whole history row 0 is a
/// filler bar, whose prices are 0, and row i the host's bar i; on the incremental way row i is bar i + 1.
struct Bars {
  Rows date, open, high, low, close, volume;
  int count() const { return countOf(close); }
};

using Expected = std::function<Rows(const Bars&)>;

struct ValueCase {
  std::vector<std::string> names;  ///< all spellings: the case holds for each
  std::string arguments;           ///< what stands in the brackets
  Expected whole;                  ///< none: the names are unknown over the whole history
  Expected living;                 ///< none: the names are unknown on the incremental way
  bool streams = true;             ///< bars fed one by one give the rows of one call over all
  bool bearsFlatBars = true;       ///< a bar without a range gives a number
  std::string behind = {};         ///< the call is the main expression, with this behind it
};

/// All cases, family by family.
std::vector<ValueCase>& valueCases();

/// A family, which adds its cases to the list.
struct Family {
  explicit Family(std::vector<ValueCase> cases) {
    for (ValueCase& c : cases) valueCases().push_back(std::move(c));
  }
};

inline const Expected kUnknown = nullptr;

/// Names of the vocabulary that no script can call in a way: a shorter name within the name is written short,
/// or the scanner finds an operator in it. A call ends in an error.
struct Uncallable {
  std::string name;
  bool whole, living;
};
inline const std::vector<Uncallable> kUncallable = {
    {"ZEROLAGEXPONENTIALMOVINGAVERAGE", true, false},
    {"COMPARATIVERELATIVESTRENGTHINDEX", true, false},
    {"HISTORICVOLATILITYINDEX", true, false},
    {"ACCUMULATIVESWINGINDEX", true, false},
    {"MOMENTUMOSCILLATOR", false, true},
    {"CHANDEMOMENTUMOSCILLATOR", false, true},
    {"PRICEOSCILLATOR", false, true},
    {"DETRENDEDPRICEOSCILLATOR", false, true},
    {"FRACTALCHAOSOSCILLATOR", false, true},
    {"PRIMENUMBEROSCILLATOR", false, true},
    {"RAINBOWOSCILLATOR", false, true},
    {"VOLUMEOSCILLATOR", false, true},
    {"PRIMENUMBERBANDSTOP", false, true},
    {"PRIMENUMBERBANDSBOTTOM", false, true},
    {"AVERAGETRUERANGE", false, true},
    {"ULTIMATEOSCILLATOR", false, true},
};

}  // namespace brindlewort::testing
