#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>

#include "bars.hpp"
#include "player.hpp"
#include "scripts.hpp"
#include "transcript.hpp"

namespace brindlewort::fuzz {

struct BacktestCloser {
  void operator()(bw_backtest* h) const { bw_backtest_destroy(h); }
};
using BacktestHandle = std::unique_ptr<bw_backtest, BacktestCloser>;

/// Plays calls on a handle of bw_backtest; a backtest of a handle with a past equals that of a fresh one with
/// the same bars and seed.
class BacktestPlayer {
 public:
  explicit BacktestPlayer(const Scripts& scripts);
  BacktestPlayer(const BacktestPlayer&) = delete;
  BacktestPlayer& operator=(const BacktestPlayer&) = delete;

  static std::span<const Call<BacktestPlayer>> calls();
  void play(char letter, Line line);

 private:
  struct Listener {
    bw_backtest* handle;
    Transcript* transcript;
  };
  static void onError(void* user, const char* description);

  using Run = int32_t (*)(bw_backtest*, const char*, const char*, const char*, const char*, double,
                          const char*, char**);
  void run(Line& line, Run function);

  void append(Line& line);
  void appendMany(Line& line);
  void edit(Line& line);
  void clear(Line& line);
  void seed(Line& line);
  void wholeHistory(Line& line) { run(line, bw_backtest_backtest); }
  void incremental(Line& line) { run(line, bw_backtest_backtest_new); }
  void queries(Line& line);
  void dates(Line& line);
  void refusals(Line& line);

  const Scripts& scripts_;
  BacktestHandle handle_;
  Transcript transcript_;
  Listener listener_;
  Model bars_;
  bool hasPast_ = false;
  int64_t seed_ = 1;
};

}  // namespace brindlewort::fuzz
