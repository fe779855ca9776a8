#include "services/backtest/backtest.hpp"

#include <array>
#include <new>

#include "functions/script_engine.hpp"
#include "platform/clock.hpp"
#include "series/julian_date.hpp"
#include "series/make_bar.hpp"
#include "series/text.hpp"

namespace brindlewort {

CBacktest::CBacktest() : pool_(std::make_unique<SeriesPool>()) {}
CBacktest::~CBacktest() = default;
CBacktest::CBacktest(CBacktest&&) noexcept = default;
CBacktest& CBacktest::operator=(CBacktest&&) noexcept = default;

// ---- Records
// ------------------------------------------------------------------------------------------------

void CBacktest::AppendRecord(double JDate, double OpenPrice, double HighPrice, double LowPrice,
                             double ClosePrice, std::int32_t Volume) {
  bars_.AppendRecord(makeBar(JDate, OpenPrice, HighPrice, LowPrice, ClosePrice, Volume));
}

bool CBacktest::EditRecord(double JDate, double OpenPrice, double HighPrice, double LowPrice,
                           double ClosePrice, std::int32_t Volume) {
  return bars_.EditRecord(makeBar(JDate, OpenPrice, HighPrice, LowPrice, ClosePrice, Volume));
}

const Bar* CBacktest::GetRecordByJDate(double JDate) const {
  const std::ptrdiff_t row = bars_.findDate(JDate);
  return row == BarStore::kNotFound ? nullptr : &bars_[static_cast<std::size_t>(row)];
}

const Bar* CBacktest::GetRecordByIndex(std::int32_t Index) const {
  return bars_.byNumber(Index);
}

void CBacktest::ClearRecords() {
  bars_.ClearRecords();
}

std::int32_t CBacktest::RecordCount() const {
  return bars_.RecordCount();
}

// ---- Runs
// ---------------------------------------------------------------------------------------------------

/// Work on a fresh engine, which is kept for the questions that follow; it takes over the buffers of the
/// engine before.
template <class Work>
void CBacktest::guarded(Work work) {
  const platform::CancelSwitch::Call call(*cancel_);
  try {
    const SeriesPool::Scope scope(*pool_);
    engine_.reset();
    engine_ = std::make_unique<CScriptEngine>();
    engine_->cancelSwitch = cancel_.get();
    work(*engine_);
    engine_->bars.clear();
  } catch (const std::bad_alloc&) {
    engine_.reset();
    pool_->trim();
    tellOutOfMemory();
    throw;
  }
  pool_->trim();
}

void CBacktest::tellOutOfMemory() noexcept {
  try {
    if (ScriptError) ScriptError(std::string(kOutOfMemory));
  } catch (...) {
    // The call's own failure tells it all the same.
  }
}

/// The fillers of the way stand in front of the component's bars, which are not copied.
BacktestRun CBacktest::run(CScriptEngine& engine, const ScriptWay& way, const BacktestRequest& request) {
  constexpr std::array kFillerDates = {kFirstDummyDate, kSecondDummyDate};
  engine.bars.use(bars_.rows());
  for (std::size_t i = 0; i < static_cast<std::size_t>(way.fillers); ++i)
    engine.bars.insertFiller(kFillerDates[i]);
  return brindlewort::runBacktest(engine, way, request, fixedSeed.value_or(platform::secondsSince1970()));
}

/// True when a result is an error, which the host has now been told.
bool CBacktest::tellError(const std::string& result) {
  if (!contains(result, "Error:")) return false;
  if (ScriptError) ScriptError(result);
  return true;
}

std::optional<std::string> CBacktest::report(const ScriptWay& way, const BacktestRequest& request) {
  BacktestRun result;
  std::string text;
  guarded([&](CScriptEngine& engine) {
    result = run(engine, way, request);
    text = resultText(result);
  });
  // A report needs no look: no line of it holds the mark of an error.
  if (tellError(result.error)) return std::nullopt;
  return text;
}

std::optional<std::string> CBacktest::Backtest(std::string_view BuyScript, std::string_view SellScript,
                                               std::string_view ExitLongScript,
                                               std::string_view ExitShortScript, double SlipPct,
                                               std::string_view MaxOpenDays) {
  return report(kWholeHistoryWay,
                {BuyScript, SellScript, ExitLongScript, ExitShortScript, SlipPct, MaxOpenDays});
}

std::optional<std::string> CBacktest::Backtest_New(std::string_view BuyScript, std::string_view SellScript,
                                                   std::string_view ExitLongScript,
                                                   std::string_view ExitShortScript, double SlipPct,
                                                   std::string_view MaxOpenDays) {
  return report(kIncrementalWay,
                {BuyScript, SellScript, ExitLongScript, ExitShortScript, SlipPct, MaxOpenDays});
}

BacktestRun CBacktest::runBacktest(const BacktestRequest& request, const ScriptWay& way) {
  BacktestRun result;
  guarded([&](CScriptEngine& engine) { result = run(engine, way, request); });
  tellError(result.error);
  return result;
}

}  // namespace brindlewort
