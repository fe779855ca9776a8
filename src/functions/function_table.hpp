#pragma once

#include <array>
#include <cstdint>
#include <limits>
#include <span>
#include <string_view>
#include <vector>

#include "indicators/frame.hpp"
#include "series/field.hpp"

namespace brindlewort {

class CScriptEngine;
struct CallSite;

/// The vocabulary of the language as one table: a row per handler. A row says which names reach it, what each
/// argument slot may hold, in which order the slots are checked, how each failure is reported, and which
/// operation computes the result. The dispatcher is a walk over a row.

// ---- Reports
// ------------------------------------------------------------------------------------------------

/// Which sentence a report is put into.
enum class ReportKind : std::uint8_t {
  kNone,      ///< no report: the slot's default is taken, or the case cannot occur
  kRequired,  ///< "Error: '<text>' argument of '<function>' not optional."
  kInvalid,   ///< "Error: '<text>' argument of '<function>' is invalid."
  kFunction,  ///< "Error: '<function>' <text>"
};

struct Report {
  ReportKind kind = ReportKind::kNone;
  std::string_view text;
};

// ---- Slots
// --------------------------------------------------------------------------------------------------

enum class SlotKind : std::uint8_t {
  kSeries,      ///< a series, or a number as a series of it
  kWhole,       ///< an integer text; digits behind the point are refused
  kInteger,     ///< an integer text; digits behind the point are cut
  kNumber,      ///< a number
  kBarsNumber,  ///< a number not above the number of bars
  kMaType,      ///< a moving average type
  kLiteral,     ///< a number text, read as far as it is one
  kIgnored,     ///< accepted and not looked at
};

/// As upper limit of a range: the number of bars.
inline constexpr double kBars = std::numeric_limits<double>::infinity();
inline constexpr double kNoLimit = std::numeric_limits<double>::max();

struct Slot {
  SlotKind kind = SlotKind::kIgnored;
  std::string_view name;           ///< as messages and the reference page write it
  double low = -kNoLimit;          ///< lower limit, included
  double high = kNoLimit;          ///< upper limit, included
  bool exclusive = false;          ///< the limits themselves are refused
  bool optional = false;           ///< may be empty without a report; the number is then `fallback`
  bool readAsDouble = false;       ///< kWhole: an exponent counts, so that 1E1 is 10
  bool mayBeNegative = false;      ///< no test for a negative literal
  bool numberOnly = false;         ///< kMaType: the word VIDYA is not read as a type
  Report whenEmpty;                ///< tested before any other slot check
  Report whenOutside;              ///< of the range
  Report whenUnusable;             ///< no series, or no number
  std::string_view defaultSeries;  ///< kSeries: taken when the argument is no series
  double fallback = 0.0;           ///< number taken when the argument is none and nothing is reported
};

/// The order of the checks of a row. Within a step the slots are looked at from the first to the last.
enum class Check : std::uint8_t { kSurplus, kEmpty, kNegative, kWhole, kBind };
using CheckOrder = std::array<Check, 5>;
inline constexpr CheckOrder kUsualOrder = {Check::kSurplus, Check::kEmpty, Check::kNegative, Check::kWhole,
                                           Check::kBind};

// ---- Operations
// ---------------------------------------------------------------------------------------------

inline constexpr std::size_t kMaxSlots = 9;

/// The bound arguments of one call, by slot.
struct Arguments {
  Prices prices;
  std::array<Series, kMaxSlots> series;
  std::array<double, kMaxSlots> numbers{};
  int output = 0;  ///< which of the operation's outputs the name asks for
  bool dryRun = false;

  View view(std::size_t slot) const { return series[slot].view(); }
  double number(std::size_t slot) const { return numbers[slot]; }
  Count period(std::size_t slot) const { return toInt64(numbers[slot]); }
};

/// Fills `out`, which starts all null. False: the operation has no such output, and the result no rows.
using BatchOperation = bool (*)(const Arguments& arguments, Out out);
/// A figure for the whole of the series.
using ScalarOperation = double (*)(const Arguments& arguments);

/// The bound arguments of one call of the incremental way. Series are entries of the engine's store.
struct IncrementalArguments {
  WorkStore& store;
  const CallSite& site;
  const PriceSources& prices;
  int output;                 ///< which of the operation's outputs the name asks for
  std::string_view callText;  ///< the key of the call: its name and arguments

  /// A series with the name of its entry; without rows when the argument is a number.
  Source source(std::size_t slot) const;
  double number(std::size_t slot) const;
  Count period(std::size_t slot) const { return toInt64(number(slot)); }
};

/// Brings an output up to date that lives across calls.
using IncrementalOperation = Status (*)(const IncrementalArguments& arguments, Target out);

/// Which rows in front of the last computed one an incremental operation may write again.
enum class Rewrites : std::uint8_t {
  kNone,
  kPeriods,  ///< as many as its greatest number, and two more
  kAll,
};

/// One call on its way through the dispatcher.
struct FunctionCall {
  std::string_view name;
  std::string_view argumentText;
  int output = 0;
  bool sized = true;  ///< the dispatcher gives the result its rows; cleared by a result that has none
};

/// A handler of its own, for a function that no row of slots describes. False when it has reported.
using Handler = bool (*)(CScriptEngine& engine, FunctionCall& call, ScriptVariable& result);

/// The same for the incremental way, in two halves: what follows from the argument texts alone, and what
/// every run does. Both are false when they have reported.
struct IncrementalHandler {
  bool (*bind)(CScriptEngine& engine, CallSite& site) = nullptr;
  bool (*run)(CScriptEngine& engine, CallSite& site, ScriptVariable& result) = nullptr;
};

// ---- Rows
// ---------------------------------------------------------------------------------------------------

enum class Path : std::uint8_t { kBoth, kWholeHistory, kIncremental };

struct FunctionName {
  std::string_view name;
  int output = 0;
};

struct FunctionRow {
  std::vector<FunctionName> names = {};  ///< all spellings, the short ones first
  std::vector<Slot> slots = {};
  std::string_view operation = {};  ///< name of the kernel that computes it
  BatchOperation batch = nullptr;
  ScalarOperation scalar = nullptr;
  IncrementalOperation incremental = nullptr;
  Handler handler = nullptr;
  IncrementalHandler incrementalHandler = {};
  Rewrites rewrites = Rewrites::kNone;
  bool settles = true;  ///< from the second call on over the same rows, a resumed call changes nothing more
  Path path = Path::kBoth;
  int required = 1;  ///< arguments below this count are reported while splitting
  Report surplus = {ReportKind::kInvalid, "Number of"};  ///< its kind is that of a decimal's report too
  CheckOrder order = kUsualOrder;
  bool noArguments = false;                 ///< anything in the brackets is reported
  bool argumentsIgnored = false;            ///< what stands in the brackets is not looked at
  std::vector<Slot> incrementalSlots = {};  ///< where the incremental way's slots differ
};

/// All rows, in the order of the reference page.
std::span<const FunctionRow> functionTable();

/// The row and output of a name on a path; null when the path has no such function.
struct FoundFunction {
  const FunctionRow* row = nullptr;
  int output = 0;
};
FoundFunction findFunction(std::string_view name, Path path);

}  // namespace brindlewort
