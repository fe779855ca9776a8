#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "functions/variable_store.hpp"
#include "series/field.hpp"

/// What a run or a bar writes over on the incremental way, kept so that either can be taken back when memory
/// runs out: the series are then as if it had never been. Room is kept from run to run.
namespace brindlewort {

/// What a run writes over and a further run would not make the same again: results that a call goes on from,
/// and series of the data that a script sets. All else is made anew from these.
class RunUndo {
 public:
  /// A run begins over these entries.
  void begin(const VariableStore& variables);
  /// The rows of a call's result are about to be written, from this one on.
  void keepRows(StoreEntry& result, std::size_t from);
  /// A series is about to be written that no later run makes anew; all its rows are kept, once a run.
  void keepSeries(StoreEntry& entry);
  /// Everything is as it was when the run began; its new entries are gone. False, and nothing done, behind
  /// settle().
  bool takeBack(VariableStore& variables) noexcept;
  /// The run stands.
  void settle() noexcept;

 private:
  struct Result {
    StoreEntry* entry;
    std::int32_t slot;
    double value;
    std::size_t from;
    std::size_t kept;  ///< where its rows stand in `rows_`
    std::size_t count;
  };
  void restore(const Result& result) const noexcept;

  bool running_ = false;
  std::size_t entries_ = 0;
  std::vector<Result> results_;
  std::vector<double> rows_;
  std::vector<std::pair<StoreEntry*, ScriptVariable>> series_;
};

/// The first row that an operation may make anew which found `slot` rows computed: the last of them, and two
/// more, for a restart may begin a little earlier than the slot says.
inline std::size_t firstRecomputed(std::int32_t slot) {
  return slot > 3 ? static_cast<std::size_t>(slot) - 3 : 0;
}

/// What a bar writes over.
class BarUndo {
 public:
  /// A bar is about to change the last row of all, or to add one.
  void begin(const VariableStore& variables, const std::vector<Field>& fields);
  /// All rows of an entry are about to change.
  void keepSeries(std::size_t entry, const Series& rows);
  /// Everything is as it was; no entry has been added or removed since.
  void takeBack(VariableStore& variables, std::vector<Field>& fields) noexcept;

 private:
  struct End {
    std::size_t rows;
    double last;
    double value;
  };
  static End endOf(const Series& rows, double value);
  static void restore(Series& rows, const End& end) noexcept;

  std::vector<End> entries_, fields_;
  std::vector<std::pair<std::size_t, Series>> series_;
};

}  // namespace brindlewort
