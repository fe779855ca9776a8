#pragma once

#include "functions/function_table.hpp"

/// The handlers of the incremental way. `bind` keeps in the call what its argument texts say; `run` brings
/// the result up to date, tests what depends on the values of a run, and says in `changedFrom` where it
/// differs from the rows since the last computed one.
namespace brindlewort::incremental {

// incremental_conditions.cpp
extern const IncrementalHandler ifThenElse;
extern const IncrementalHandler countIf;
extern const IncrementalHandler sumIf;
extern const IncrementalHandler runCount;
extern const IncrementalHandler crossOver;
extern const IncrementalHandler reference;
extern const IncrementalHandler loopSeries;

// incremental_arithmetic.cpp
extern const IncrementalHandler mathFunction;
extern const IncrementalHandler roundSeries;
extern const IncrementalHandler windowFunction;
extern const IncrementalHandler extremeOfSeries;

// incremental_dates.cpp
extern const IncrementalHandler datePart;
extern const IncrementalHandler dateDiff;

// incremental_studies.cpp
extern const IncrementalHandler swingLevel;
extern const IncrementalHandler candlestickPattern;
/// Binds alone; the operation of the row runs.
bool bindPointFigure(CScriptEngine& engine, CallSite& site);

}  // namespace brindlewort::incremental
