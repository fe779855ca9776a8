#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "indicators/frame.hpp"
#include "series/field.hpp"
#include "support/series_checks.hpp"

/// A stand-in for the engine's store of living series, to run resumable operations over bars that arrive
/// one by one.
namespace brindlewort::testing {

class TestStore : public WorkStore {
 public:
  explicit TestStore(std::size_t rows = 0) : rows_(rows) {}

  WorkField field(std::string_view name, std::initializer_list<KeyPart> parts) override {
    std::string key(name);
    key += '(';
    for (const KeyPart& part : parts) {
      key += part.kind == KeyPart::kText     ? std::string(part.text)
             : part.kind == KeyPart::kMaType ? std::string(maTypeName(static_cast<Count>(part.number)))
                                             : std::to_string(part.number);
      key += ',';
    }
    key += ')';
    for (ScriptVariable& entry : entries_) {
      if (entry.name == key) return asField(entry);
    }
    entries_.push_back({key, 0.0, Series(rows_, NULL_VALUE), -1, kComputedVariable});
    return asField(entries_.back());
  }

  /// A bar has come: every series gets a null row.
  void appendRow() {
    ++rows_;
    for (ScriptVariable& entry : entries_) entry.values.push_back(NULL_VALUE);
  }
  /// The last bar has changed: the last row of every series is null again.
  void editRow() {
    for (ScriptVariable& entry : entries_) entry.values.set(rows_ - 1, NULL_VALUE);
  }
  std::size_t rows() const { return rows_; }

 private:
  static WorkField asField(ScriptVariable& entry) { return {entry.values.edit(), &entry.slot, entry.name}; }
  std::size_t rows_;
  std::deque<ScriptVariable> entries_;
};

/// Runs a resumable operation as the incremental engine does. `Operation` gets the store, the price series
/// up to the present bar and the target. A series operation reads `prices.close`.
using Operation = std::function<Status(WorkStore&, const PriceSources&, Target)>;

inline PriceSources sourcesOf(const PriceRows& p, std::size_t rows) {
  return {{View(p.open).first(rows), "OPEN"},
          {View(p.high).first(rows), "HIGH"},
          {View(p.low).first(rows), "LOW"},
          {View(p.close).first(rows), "CLOSE"},
          {View(p.volume).first(rows), "VOLUME"}};
}

struct RunResult {
  Rows rows;
  std::int32_t slot = -1;
  Status status = kNothingDone;  ///< of the last call
};

/// One call over all bars.
inline RunResult runAtOnce(const PriceRows& prices, const Operation& operation) {
  const std::size_t n = prices.close.size();
  TestStore store(n);
  RunResult result{Rows(n, NULL_VALUE)};
  result.status = operation(store, sourcesOf(prices, n), {result.rows, &result.slot});
  return result;
}

/// Bars one by one with a call after each; with `edits`, each bar first arrives with other prices and is
/// evaluated, then changed to its final prices and evaluated again.
inline RunResult runStreamed(const PriceRows& prices, const Operation& operation, bool edits) {
  const std::size_t n = prices.close.size();
  TestStore store;
  RunResult result;
  PriceRows live = prices;
  for (std::size_t i = 0; i < n; ++i) {
    store.appendRow();
    result.rows.push_back(NULL_VALUE);
    if (edits) {
      for (Rows* rows : {&live.open, &live.high, &live.low, &live.close}) {
        if (!isNull((*rows)[i])) (*rows)[i] = IsFiniteDouble((*rows)[i]) ? (*rows)[i] * 1.01 + 0.5 : 1.0;
      }
      if (result.slot == -1) std::fill(result.rows.begin(), result.rows.end(), NULL_VALUE);
      operation(store, sourcesOf(live, i + 1), {result.rows, &result.slot});
      live.open[i] = prices.open[i];
      live.high[i] = prices.high[i];
      live.low[i] = prices.low[i];
      live.close[i] = prices.close[i];
      store.editRow();
      result.rows[i] = NULL_VALUE;
    }
    if (result.slot == -1) std::fill(result.rows.begin(), result.rows.end(), NULL_VALUE);
    result.status = operation(store, sourcesOf(live, i + 1), {result.rows, &result.slot});
  }
  return result;
}

/// Bars fed one by one, plainly and with edits of the last bar, give the series of one call over all.
inline void expectStreamsLikeOneCall(const PriceRows& prices, const Operation& operation) {
  const RunResult once = runAtOnce(prices, operation);
  EXPECT_TRUE(sameRows(once.rows, runStreamed(prices, operation, false).rows, nearlySame)) << "bar by bar";
  EXPECT_TRUE(sameRows(once.rows, runStreamed(prices, operation, true).rows, nearlySame)) << "with edits";
}

}  // namespace brindlewort::testing
