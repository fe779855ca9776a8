#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "bars.hpp"
#include "journal.hpp"
#include "player.hpp"
#include "scripts.hpp"

namespace brindlewort::fuzz {

struct OutputCloser {
  void operator()(bw_script_output* h) const { bw_script_output_destroy(h); }
};
using OutputHandle = std::unique_ptr<bw_script_output, OutputCloser>;

/// Plays calls on a handle of bw_script_output and compares it with fresh ones: on the whole-history way with
/// one that has the same bars, on the incremental way with one that was told the same.
class OutputPlayer {
 public:
  explicit OutputPlayer(const Scripts& scripts);
  OutputPlayer(const OutputPlayer&) = delete;
  OutputPlayer& operator=(const OutputPlayer&) = delete;

  static std::span<const Call<OutputPlayer>> calls();
  void play(char letter, Line line);
  /// The incremental way is what a fresh handle makes of the same calls.
  void compare();

 private:
  using Calls = Journal<bw_script_output>;

  /// Who hears the events of a handle: what they say goes to the transcript, with what the handle then knows.
  struct Listener {
    bw_script_output* handle;
    Transcript* transcript;
  };
  static void onError(void* user, const char* description);

  void living(Calls::Call call);
  void livingRun(Calls::Call call);
  void wholeHistory(const Calls::Call& call, bool clock);
  void readPromised();

  void append(Line& line);
  void appendMany(Line& line);
  void edit(Line& line);
  void editDate(Line& line);
  void clear(Line& line);
  void run(Line& line);
  void heading(Line& line);
  void initialise(Line& line);
  void prepare(Line& line);
  void setMode(Line& line);
  void addSeries(Line& line);
  void feed(Line& line);
  void appendLiving(Line& line);
  void editLiving(Line& line);
  void editLivingDate(Line& line);
  void runLiving(Line& line);
  void headingLiving(Line& line);
  void runPointers(Line& line);
  void queries(Line& line);
  void dates(Line& line);
  void refusals(Line& line);
  void compareNow(Line&) { compare(); }

  const Scripts& scripts_;
  OutputHandle handle_;
  Transcript transcript_;
  Listener listener_;

  Model bars_;            ///< of the whole-history way
  Model livingBars_;      ///< of the incremental way
  bool hasPast_ = false;  ///< something happened that a fresh handle with the same bars has not seen
  Calls journal_;
  std::int32_t mode_ = 101;
  bool prepared_ = false;
  /// Bars that are cleared take the set-up with them, but not how many bars the last script asked for: until
  /// the handle is set up anew and has taken a script, it need not answer as a fresh one does.
  bool setUp_ = true, scriptTaken_ = true;
  bool clockInside_ = false;  ///< a prepared script need not give the same twice
  const bw_series_list* list_ = nullptr;
  std::vector<bw_series> promised_;  ///< rows that stay readable
};

}  // namespace brindlewort::fuzz
