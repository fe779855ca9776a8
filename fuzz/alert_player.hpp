#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "bars.hpp"
#include "journal.hpp"
#include "player.hpp"
#include "scripts.hpp"

namespace brindlewort::fuzz {

struct AlertCloser {
  void operator()(bw_alert* h) const { bw_alert_destroy(h); }
};
using AlertHandle = std::unique_ptr<bw_alert, AlertCloser>;

/// Plays calls on a handle of bw_alert and compares its events with those of fresh ones.
class AlertPlayer {
 public:
  explicit AlertPlayer(const Scripts& scripts);
  AlertPlayer(const AlertPlayer&) = delete;
  AlertPlayer& operator=(const AlertPlayer&) = delete;

  static std::span<const Call<AlertPlayer>> calls();
  void play(char letter, Line line);
  /// The incremental way is what a fresh handle makes of the same calls.
  void compare();

 private:
  using Calls = Journal<bw_alert>;

  struct Listener {
    bw_alert* handle;
    Transcript* transcript;
    void listen();
  };
  static void onAlert(void* user, const char* symbol, const char* name, double date, double price);
  static void onError(void* user, const char* symbol, const char* name, const char* description);
  static void wildEvent(void* user, const char* symbol, const char* name, double date, double price);

  void living(Calls::Call call, Calls::Results results = Calls::Results::kCount);
  void tell(bw_alert* h) const;
  void compareEvaluation(const Calls::Call& call);

  void append(Line& line);
  void appendMany(Line& line);
  void edit(Line& line);
  void editDate(Line& line);
  void clear(Line& line);
  void setScript(Line& line);
  void setSymbol(Line& line);
  void setName(Line& line);
  void evaluate(Line& line);
  void initialise(Line& line);
  void prepare(Line& line);
  void appendLiving(Line& line);
  void editLiving(Line& line);
  void queries(Line& line);
  void dates(Line& line);
  void callFromEvent(Line& line);
  void refusals(Line& line);
  void compareNow(Line&) { compare(); }

  const Scripts& scripts_;
  AlertHandle handle_;
  Transcript transcript_;
  Listener listener_;

  Model bars_;        ///< of both ways
  Model livingBars_;  ///< of the incremental way
  bool hasPast_ = false;
  Calls journal_;
  std::string symbol_, name_, script_;
  bool initialised_ = false;
  bool prepared_ = false;
  bool clockInside_ = false;
  /// Until a handle whose bars were cleared is set up anew and has taken a script, it need not answer as a
  /// fresh one does.
  bool setUp_ = true, scriptTaken_ = true;
};

}  // namespace brindlewort::fuzz
