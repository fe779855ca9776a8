#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "functions/call_site.hpp"
#include "functions/transient_store.hpp"
#include "functions/undo.hpp"
#include "functions/variable_store.hpp"
#include "indicators/frame.hpp"
#include "platform/run_watch.hpp"
#include "series/bar.hpp"
#include "series/field.hpp"
#include "series/run_bars.hpp"

namespace brindlewort {

class ExpressionTable;
struct Term;

/// More rows than this in the store of variables (1.6 GB) end the run. Where series grow bar by bar, they end
/// the run that wants one more.
inline constexpr std::uint64_t kMaxRowsHeld = 200'000'000;

/// Evaluations inside one another, and how far down the stack they may go.
struct Nesting {
  int depth = 0;
  std::uintptr_t stackFloor = 0;
};

/// The interpreter: state and operations of one run of a script over one symbol's bars.
///
/// Declared here, in the lowest layer that implements part of it: a function may evaluate an expression,
/// and an expression may call a function. functions/ implements the dispatcher, the binding of arguments
/// and the reports; engine/ implements the run driver, the normaliser, the evaluator and the symbols.
///
/// Nothing throws for a script's sake: a piece that fails writes a text beginning "Error: " into
/// `errorText` and returns an empty value, and callers look at `errorText` at their next step.
class CScriptEngine {
 public:
  CScriptEngine();
  ~CScriptEngine();
  CScriptEngine(const CScriptEngine&) = delete;
  CScriptEngine& operator=(const CScriptEngine&) = delete;

  // ---- Run driver ----
  /// Runs a script over `bars`. Every result is a text: "" or "ALERT" (the main expression's value is not
  /// 0), the first error, or one of the driver's own messages, which leave `errorText` empty. `rowScan` runs
  /// the script anew for each row from the lookback on; `dryRun` makes bars up when there are too few.
  std::string RunScript(std::string_view script, bool rowScan, bool dryRun);
  /// Bars that a script asks for: twice the greatest number between brackets (9,999 at most, 5 at least),
  /// plus 2. Numbers that are no periods, as in IF or LOOP, do not count. 3,333 in a dry run.
  std::int32_t EstimateLookback(std::string_view script) const;
  /// Fills `fields` and the price variables from the bars up to `row`. False when there is none.
  bool BuildPriceFields(std::size_t row);
  void ResetConstants();
  /// Rewrites a statement so that brackets give the grouping; see normaliser.cpp.
  static std::string NormalizeScript(std::string_view text);

  // ---- Evaluator ----
  ScriptVariable EvaluateExpression(std::string_view text);
  /// The key that an expression's value (`extra` empty), or a call's (`extra` its name), is remembered by.
  std::string MakeKey(std::string_view text, std::string_view extra) const;
  ScriptVariable LookupVariable(std::string_view name);
  /// Stores a value under a name, over an entry of that name. The entry's number, or -1.
  std::int32_t RememberVariable(std::string_view name, const ScriptVariable& value);

  // ---- Functions ----
  /// Calls a function. The result is empty, and `errorText` set, when the call fails.
  ScriptVariable EvaluateFunction(std::string_view name, std::string_view argumentText,
                                  std::string_view innerText);

  // ---- The incremental way: the engine stays alive, a script is prepared once, and each new bar becomes one
  // new row of every series. ----
  // Each of these leaves the engine as it was when memory runs out; RunFast() with the help of takeBackRun().

  /// Sets the engine up, before its first bar: empties the stores, makes the price variables, and allows as
  /// many entries as asked for (250 when that is below 10).
  void InitialiseTransientStore(std::int32_t variablesSize);
  /// Takes a script apart for the runs that follow. False, with the text of what is wrong, for a script that
  /// the driver refuses. In the mode kReplaceScript what the script before has left is dropped first.
  bool ProcessScripData(std::string_view script, std::string& error);
  void SetDataRetrieveMode(std::int32_t mode) { retrieveMode = mode; }
  /// Adds a series that the host feeds; -1 when `size` is below 1 or no room is left. With the null value as
  /// size removes the series of data of this name instead (-1).
  std::int32_t AddOrRemoveBasicVectorSeries(std::string_view name, std::int32_t size);
  /// Adds a row to such a series (11) or changes its last row (22); other numbers do nothing.
  void UpdateBasicVectorData(std::string_view name, double value, std::uint8_t addOrUpdate);
  enum BarChange : std::int32_t { kNewBar = 1, kChangedLastBar = 2 };
  /// Takes a bar into the series. 0, or -1 when a series of the host has no row to change. With `undo` the
  /// bar can be taken back.
  std::int32_t ApplyBarChange(const Bar& bar, std::int32_t mode, BarUndo* undo = nullptr);
  /// Takes back what the last ApplyBarChange() has done that had this `undo`, and no other change since but
  /// runs that were taken back.
  void takeBackBar(BarUndo& undo) noexcept;
  /// Runs the prepared script over `bars`; the result is that of RunScript().
  std::string RunFast(bool rowScan, bool dryRun);
  /// The last run has never been: for when memory ran out in it, or in what was made of it. No other call may
  /// stand in between, and nothing is done behind settleRun().
  void takeBackRun() noexcept;
  void settleRun() noexcept { undo_.settle(); }
  /// Drops all data and the script; the engine must be set up anew.
  void ClearIncremental();
  /// Bars that a script asks for on this way: the estimate without doubling.
  static std::int32_t EstimateLookbackFast(std::string_view script);

  /// A text made ready for evaluation, once for each text.
  Expression& expressionOf(std::string_view text);
  /// Evaluates it into its entry in `variables` and brings the rows up to date that can have changed. The
  /// answer is the entry (a constant's for a constant's name), valid until entries are removed.
  const StoreEntry& EvaluateFast(Expression& expression);
  /// The next run makes all rows of all expressions anew, and an expression each time that it stands in the
  /// script. Functions resume all the same. For tests.
  void forgetRows();
  /// Calls a function; null, and `errorText` set, when the call fails. The argument values of the site are
  /// those of this run.
  StoreEntry* EvaluateFunctionFast(CallSite& site);
  /// The entry that an argument text names. Null when there is none, with an error unless the text is empty.
  StoreEntry* GetVectorRef(std::string_view text);
  /// A new entry: a constant when its name is a number text, else `windowLength` rows of 0.0. Null, and the
  /// run ended, when no room is left.
  StoreEntry* AddStoreEntry(std::string_view name);
  /// The work series of the call that is running.
  WorkStore& workSeries() { return workSeries_; }
  /// The rows and the price variables of this run, as resumable indicators take them.
  PriceSources priceSources();
  /// Says that rows of an entry have changed, from this one on.
  void noteChange(StoreEntry& entry, std::size_t fromRow) { entry.changes.note(++moment_, fromRow); }
  std::uint64_t moment() const { return moment_; }
  /// Adds an entry to the outputs of this run, once.
  void listOutput(StoreEntry& entry);

  // Binding of arguments. Texts are trimmed pieces of the argument text.
  /// Splits at commas outside brackets, into at most nine pieces; too few for `required` sets the error.
  void SplitArguments(std::string_view text, int required, std::span<std::string_view> slots);
  std::string_view NthArgument(std::string_view text, int position, int required);
  /// A series from an argument: a number gives a series of it, a name its variable. False without rows.
  bool GetVector(std::string_view text, ScriptVariable& out);
  /// A number from an argument. With `barsCheck` a number above `windowLength`, with `typeCheck` one that is
  /// not strictly between 0 and 9, is reported. False, without a report, for a text that is no number.
  bool GetNumber(std::string_view function, std::string_view text, double& out, bool barsCheck,
                 bool typeCheck);

  // Reports keep the first error and return false, the answer of a failed call.
  bool ReportRequired(std::string_view function, std::string_view label);
  bool ReportInvalid(std::string_view function, std::string_view label);
  bool ReportRaw(std::string_view text);
  bool ReportFunction(std::string_view function, std::string_view text);

  /// The price fields as the batch indicators take them.
  Prices prices() const;
  /// The last value of the field "D" and its rows.
  const Series& dates() const { return fields.front().values; }
  /// A series of `windowLength` zeros; all share one buffer.
  const Series& zeros();

  /// True once when another thread has cancelled the call that this engine works for.
  bool takeCancel() { return cancelSwitch && cancelSwitch->takeCancel(); }
  /// Ends the run for good: too deep or too large to go on.
  void abortRun();

  // ---- State. Names are those that messages and other components speak of. ----
  bool dryRun = false;
  bool wholeHistory = false;    ///< true during a run: series cover all bars
  VariableStore variables;      ///< price variables, SET variables, every remembered expression and call
  VariableStore constants;      ///< named constants
  std::string errorText;        ///< first error of the run; non-empty stops the evaluator
  std::string currentFunction;  ///< the function last called; used in messages
  std::string exchange, sector, industry, symbol;  ///< values of the SET statements of these names
  std::int32_t windowLength = 0;                   ///< first the lookback, then the rows of all series
  std::vector<Field> fields;                       ///< "D", "O", "H", "L", "C", "V" of the run
  RunBars bars;
  bool barsStand = false;     ///< no bar changes from run to run, so the price series are made but once
  /// Lets another thread end a run; null for an engine whose runs nobody cancels.
  platform::CancelSwitch* cancelSwitch = nullptr;
  std::vector<std::string> outputNames;  ///< names of the series to be printed, in order of making
  bool paddedData = false;               ///< the run uses made-up bars
  std::string abortMark;  ///< function that caused the error, "timeout" after a fatal limit, or "cancelled"
  std::int32_t candleOutputId = 0;  ///< set while an output is asked of a script with CSP
  std::int32_t candlePattern = -1;  ///< the pattern named in "CSP() = ...", -1 for none
  bool eventListMode = false;       ///< the output is the list of event rows
  ScriptVariable result;            ///< of the last main expression
  std::uint64_t mostRowsHeld = kMaxRowsHeld;

  // Of the incremental way.
  static constexpr std::int32_t kKeepScripts = 101;  ///< a further preparation adds its statements
  static constexpr std::int32_t kReplaceScript =
      102;  ///< a preparation drops what was before; outputs have no dates
  std::int32_t retrieveMode = kKeepScripts;
  std::vector<std::string> fastSeries;      ///< the prepared SET statements, normalised
  std::string preparedScript;               ///< the prepared main expression, normalised
  std::vector<StoreEntry*> outputEntries;   ///< what `outputNames` is on the whole-history way
  const StoreEntry* resultEntry = nullptr;  ///< of the last main expression

 private:
  ScriptVariable EvaluateTerm(std::string_view text, std::size_t& position);
  ScriptVariable scan(std::string_view text);
  ScriptVariable evaluateGroup(std::string_view inner);
  ScriptVariable evaluateCall(std::string_view name, std::string_view inner);
  std::string evaluateArguments(std::string_view inner);
  ScriptVariable FindSeries(std::string_view name, std::string_view extra) const;
  void resolvePattern();
  void evaluateStatements(const std::vector<std::string>& sets, const std::string& main,
                          std::string& resultText);
  struct Program;
  static void readSourceStatements(std::string& script, Program& program);
  std::array<Series, 6> priceColumns(std::size_t rows) const;
  enum class Way { kWholeHistory, kIncremental };
  std::string readProgram(std::string_view script, Way way, Program& program) const;
  void takeProgram(Program& program, Way way) noexcept;
  void runProgram(const Program& program, bool rowScan, std::string& resultText);

  friend class Fold;
  bool bindCall(CallSite& site);
  bool runCall(CallSite& site, StoreEntry& result);
  StoreEntry* resultOf(CallSite& site);
  StoreEntry* entryOf(Expression& expression);
  StoreEntry* lookupFast(std::string_view name);
  const StoreEntry* variableOf(Term& term);
  bool onlyRepeats(const Expression& expression) const;
  void noteEvaluation(Expression& expression, std::uint64_t effects, std::uint64_t calls);
  void noteCall(std::string_view name);
  bool isItsOwnName(Expression& expression);
  StoreEntry* dateEntry();
  void rememberFast(Expression& statement, const StoreEntry& value);
  void copyToVariable(const Expression& statement, const StoreEntry& value, StoreEntry& variable);
  void forgetExpressions() noexcept;
  void makeRowsReady(const Bar& bar, std::int32_t mode, BarUndo* undo);
  void addRows(const Bar& bar);
  std::int32_t changeLastRow(const Bar& bar);
  Series* fieldBeside(std::size_t variable);
  void takeLevel(StoreEntry& entry, double value);
  void evaluateArgumentsFast(CallSite& site);
  std::string runStatements();
  void endRun(const platform::RunStopped& stop);

  std::string scriptText_;         ///< the script as handed to the driver: upper-cased, without comments
  std::vector<Bar> madeUpBars_;    ///< of a dry run with too few bars
  std::array<Series, 6> columns_;  ///< of the bars, while they stand
  Series zeros_;
  Nesting nesting_;
  std::uint64_t rowsHeld_ = 0;  ///< rows of all results that this run has made
  bool aborted_ = false;

  std::unique_ptr<ExpressionTable> expressions_;
  RunUndo undo_;
  TransientStore workSeries_{variables, 0, &undo_};
  struct RunStart {
    std::int32_t windowLength = 0;
    std::int32_t candlePattern = -1;
    bool patternKnown = false;
    std::string currentFunction;
  };
  RunStart runStart_;         ///< what the last run found
  std::uint64_t moment_ = 0;  ///< of the last change of an entry's rows
  std::uint64_t runNumber_ = 0;
  /// The name in front of the bracket that the run has read last; empty for a group, none before any.
  std::optional<std::string_view> lastCall_;
  std::uint64_t callsNoted_ = 0;
  std::uint64_t effects_ = 0;   ///< events after which an evaluation may give something else than before
  bool repeatsAll_ = false;     ///< this run evaluates what would only repeat itself
  int deepest_ = 0;             ///< greatest `nesting_.depth` within the evaluation that is under way
  std::size_t datesTaken_ = 0;  ///< rows of the entry "DATE" that are filled
  std::array<const StoreEntry*, 5> priceEntries_{};
  std::uint64_t priceShape_ = 0;
  std::vector<Expression*> prepared_;  ///< the statements and the main expression
  std::size_t reservedEntries_ = 0;
  bool patternKnown_ = false;  ///< `candlePattern` is that of the script
};

/// More evaluations inside one another end the run; on a thread with a small stack fewer do.
inline constexpr int kMaxDepth = 1000;
/// More entries than this in the store of variables refuse a further one.
inline constexpr std::size_t kMaxVariables = 500;
/// Room that is reserved at once for a series of the host.
inline constexpr std::size_t kMostReservedRows = std::size_t{1} << 20;

inline constexpr std::string_view kTooComplex = "Error: Script too complex.";
inline constexpr std::string_view kCancelled = "Error: The script was cancelled.";
inline constexpr std::string_view kOutOfMemory = "Error: Out of memory.";
inline constexpr std::string_view kNotEnoughData = "Error: Not enough data available to run script";

}  // namespace brindlewort
