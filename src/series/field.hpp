#pragma once

#include <cstdint>
#include <string>

#include "series/series.hpp"

namespace brindlewort {

/// A named series. The price fields of a run are "D", "O", "H", "L", "C" and "V".
struct Field {
  std::string name;
  Series values;
};

/// Who feeds a variable: the data (price variables, the host's own series) or the engine.
enum VariableKind : std::int32_t { kDataVariable = 1001, kComputedVariable = 1002 };

/// The value type of the script language and one entry of the engine's stores: a scalar, or a series
/// whose last row is also the scalar.
struct ScriptVariable {
  std::string name;
  double value = 0.0;
  Series values;                          ///< empty for a pure scalar
  std::int32_t slot = -1;                 ///< rows already computed (incremental way); -1 when none
  std::int32_t kind = kComputedVariable;  ///< a VariableKind
};

}  // namespace brindlewort
