#pragma once

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

#include "functions/undo.hpp"
#include "functions/variable_store.hpp"
#include "indicators/frame.hpp"

namespace brindlewort {

/// Brings the blanks of a key to one form, in place: none, however many there were, beside brackets, commas
/// and equal signs. A number in brackets becomes the bare number, so that "(14)" and "14" are one key. A key
/// in this form stays as it is.
void NormalizeKey(std::string& text);

/// Where a caller found its work series, in the order in which it asks for them: saves making the texts of
/// their keys again. Holds good as long as no entry of the variables is removed.
class FieldMemo {
 public:
  void clear() { known_.clear(); }
  /// The series are computed in full the next time that they are asked for.
  void restart();

 private:
  friend class TransientStore;
  struct Known {
    std::string name;
    std::vector<KeyPart> parts;
    std::deque<std::string> texts;  ///< what the parts' texts point to
    StoreEntry* entry;
  };
  StoreEntry* recall(std::string_view name, std::initializer_list<KeyPart> parts);
  void remember(std::string_view name, std::initializer_list<KeyPart> parts, StoreEntry* entry);

  std::deque<Known> known_;
  std::size_t next_ = 0;
};

/// The work series of resumable indicators. They live among the engine's variables, each under the text of a
/// call with its parameters, so that every distinct list of parameters has a series of its own and resumes
/// where it stopped. When the variables are full, a spare series is handed out, which lives no longer than
/// this object, and exhausted() tells.
class TransientStore : public WorkStore {
 public:
  /// Over the variables of an engine whose series have `rows` rows. What is written over is kept in `undo`.
  explicit TransientStore(VariableStore& variables, std::size_t rows = 0, RunUndo* undo = nullptr)
      : variables_(variables), rows_(rows), undo_(undo) {}
  TransientStore(const TransientStore&) = delete;

  /// The number of the entry in the variables, made when it is absent with `size` null rows (0: as many as
  /// the run has) and slot -1. With `appendParameters` the key is the call text of name and parameters, else
  /// the name alone, as for "HIGH" or "VOLUME". -1 when it is absent and no room is left.
  std::int32_t getTransientField(std::string_view name, std::string_view parameterText, bool appendParameters,
                                 std::size_t size);

  WorkField field(std::string_view name, std::initializer_list<KeyPart> parts) override;

  void setRows(std::size_t rows) { rows_ = rows; }
  /// From now on fields are asked for by the owner of this memo, from its first one.
  void askFor(FieldMemo& memo) {
    memo_ = &memo;
    memo.next_ = 0;
  }
  /// A field was wanted for which no room was left.
  bool exhausted() const { return !spare_.empty(); }
  /// Forgets the spare series and where fields were found; to be called when entries of the variables were
  /// dropped.
  void forget();

 private:
  VariableStore& variables_;
  std::size_t rows_;
  RunUndo* undo_;
  FieldMemo own_;
  FieldMemo* memo_ = &own_;
  std::deque<StoreEntry> spare_;
};

/// The parts of a key as a text: joined with ",", numbers with 20 decimals, moving average types by their
/// words.
std::string parameterText(std::initializer_list<KeyPart> parts);

}  // namespace brindlewort
