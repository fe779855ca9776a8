#pragma once

#include "functions/function_table.hpp"
#include "functions/series_operations.hpp"

/// Functions that no row of slots describes. Each binds its own arguments and reports in its own order.
namespace brindlewort::handlers {

// condition_functions.cpp
bool ifThenElse(CScriptEngine& engine, FunctionCall& call, ScriptVariable& result);
bool countIf(CScriptEngine& engine, FunctionCall& call, ScriptVariable& result);
bool sumIf(CScriptEngine& engine, FunctionCall& call, ScriptVariable& result);
bool runCount(CScriptEngine& engine, FunctionCall& call, ScriptVariable& result);
bool crossOver(CScriptEngine& engine, FunctionCall& call, ScriptVariable& result);
bool reference(CScriptEngine& engine, FunctionCall& call, ScriptVariable& result);
bool loopSeries(CScriptEngine& engine, FunctionCall& call, ScriptVariable& result);

// arithmetic_functions.cpp; the output says which of the family
bool mathFunction(CScriptEngine& engine, FunctionCall& call, ScriptVariable& result);
bool roundSeries(CScriptEngine& engine, FunctionCall& call, ScriptVariable& result);
bool windowFunction(CScriptEngine& engine, FunctionCall& call, ScriptVariable& result);
bool extremeOfSeries(CScriptEngine& engine, FunctionCall& call, ScriptVariable& result);

// date_functions.cpp
bool datePart(CScriptEngine& engine, FunctionCall& call, ScriptVariable& result);
bool dateDiff(CScriptEngine& engine, FunctionCall& call, ScriptVariable& result);

// study_functions.cpp
bool swingLevel(CScriptEngine& engine, FunctionCall& call, ScriptVariable& result);
bool candlestickPattern(CScriptEngine& engine, FunctionCall& call, ScriptVariable& result);

// Outputs of the families.
enum MathOutput { kAbs, kSin, kCos, kTan, kAtn, kExp, kLog, kLog10, kRnd };
enum RoundOutput { kRound, kRoundUp, kRoundDown, kMRound, kMRoundUp, kMRoundDown };
enum WindowOutput { kSum, kAverage, kMax, kMin };
enum ExtremeOutput { kMaxOf, kMinOf };
enum RunCountOutput { kLastIf, kRepeatIf };

/// The number of a date part or unit, 1 to `greatest`, from its digits or its word; else the report.
bool bindDatePart(CScriptEngine& engine, std::string_view text, int greatest, int& part);

/// The function of a row that a MathOutput other than RND names.
RowFunction mathFunctionOf(int output);
/// How the function of a RoundOutput rounds.
Rounding roundingOf(int output, std::int32_t digits, double multiple);

}  // namespace brindlewort::handlers
