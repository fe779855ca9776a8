#include "services/alert/alert.hpp"

#include <new>

#include "functions/script_engine.hpp"

namespace brindlewort {

namespace {

constexpr double kFirstFillerDate = 2444239.5;
constexpr double kSecondFillerDate = 2444240.5;
/// A shorter script is none, so that a component without a script stays quiet.
constexpr std::size_t kShortestScript = 5;
constexpr std::string_view kBeyondLimit = "Error: You have exceeded the maximum number of alerts!";
constexpr std::string_view kOutOfMemory = "Error: Out of memory.";

Bar makeBar(double JDate, double Open, double High, double Low, double Close, std::int32_t Volume,
            double dJDateOfLTT) {
  Bar bar;
  bar.JDate = JDate;
  bar.OpenPrice = Open;
  bar.HighPrice = High;
  bar.LowPrice = Low;
  bar.ClosePrice = Close;
  bar.Volume = Volume;
  bar.dJDateOfLTT = dJDateOfLTT;
  bar.dLastTradedPrice = Close;
  return bar;
}

}  // namespace

CAlert::CAlert(platform::AlertCount& count)
    : seat_(count, kMostAlerts),
      alertsExceeded_(seat_.beyondLimit()),
      evaluationScript_(alertsExceeded_ ? "EXCEEDED" : ""),
      pool_(std::make_unique<SeriesPool>()),
      living_(std::make_unique<CScriptEngine>()) {}
CAlert::~CAlert() = default;
CAlert::CAlert(CAlert&&) noexcept = default;
CAlert& CAlert::operator=(CAlert&&) noexcept = default;

// ---- Records
// ------------------------------------------------------------------------------------------------

void CAlert::AppendRecord(double JDate, double OpenPrice, double HighPrice, double LowPrice,
                          double ClosePrice, std::int32_t Volume, double dJDateOfLTT) {
  const Bar bar = makeBar(JDate, OpenPrice, HighPrice, LowPrice, ClosePrice, Volume, dJDateOfLTT);
  AppendRecords({&bar, 1});
}

void CAlert::AppendRecords(std::span<const Bar> bars) {
  if (bars.empty()) return;
  try {
    bars_.makeRoom(bars.size());
  } catch (const std::bad_alloc&) {
    return fireError(kOutOfMemory);
  }
  for (Bar bar : bars) {
    bar.Volume = volumeToInt32(bar.Volume);
    bar.dLastTradedPrice = bar.ClosePrice;
    bars_.AppendRecord(bar);
  }
  evaluateOnChange();
}

bool CAlert::EditRecord(double JDate, double OpenPrice, double HighPrice, double LowPrice, double ClosePrice,
                        std::int32_t Volume, double dJDateOfLTT) {
  if (!bars_.EditRecord(makeBar(JDate, OpenPrice, HighPrice, LowPrice, ClosePrice, Volume, dJDateOfLTT))) {
    return false;
  }
  evaluateOnChange();
  return true;
}

const Bar* CAlert::GetRecordByJDate(double JDate) const {
  const std::ptrdiff_t row = bars_.findDate(JDate);
  return row == BarStore::kNotFound ? nullptr : &bars_[static_cast<std::size_t>(row)];
}

const Bar* CAlert::GetRecordByIndex(std::int32_t Index) const {
  return bars_.byNumber(Index);
}

void CAlert::ClearRecords() {
  bars_.ClearRecords();
  livingBars_.ClearRecords();
  living_->ClearIncremental();
}

std::int32_t CAlert::RecordCount() const {
  return bars_.RecordCount();
}

double CAlert::GetJDate(std::int32_t Index) const {
  const Bar* bar = bars_.byNumber(Index);
  return bar ? bar->JDate : 0.0;
}

bool CAlert::EditJDate(double OldJDate, double NewJDate) {
  return bars_.EditJDate(OldJDate, NewJDate);
}

// ---- Events
// -------------------------------------------------------------------------------------------------

// What is called, and what it is told, is a copy: a handler may change both. Nothing of a run is touched
// behind its event, so that a handler may start the next.

void CAlert::fireAlert(double lastTradeDate, double lastTradePrice) {
  if (!Alert) return;
  const auto handler = Alert;
  const std::string symbol = symbol_, name = alertName_;
  handler(symbol, name, lastTradeDate, lastTradePrice);
}

void CAlert::fireError(std::string_view description) {
  if (!ScriptError) return;
  const auto handler = ScriptError;
  const std::string symbol = symbol_, name = alertName_;
  handler(symbol, name, std::string(description));
}

/// The event, if any, that a run's text calls for. True when the script fired.
bool CAlert::tellOutcome(const std::string& text, const BarStore& store) {
  if (text.empty() || text == kNotEnoughData) return false;
  if (text != "ALERT") {
    fireError(text);
    return false;
  }
  const Bar last = store.empty() ? Bar{} : store.back();
  fireAlert(last.dJDateOfLTT, last.dLastTradedPrice);
  return true;
}

// ---- Runs
// ---------------------------------------------------------------------------------------------------

void CAlert::setAlertScript(std::string_view text) {
  evaluationScript_ = text;
  alertScript_ = evaluationScript_;
  if (alertScript_.size() < kShortestScript) return;
  if (useTransientStore_) {
    evaluateLiving();
  } else {
    evaluateOnChange();
  }
}

void CAlert::evaluateOnChange() {
  evaluationScript_ = alertScript_;
  if (evaluationScript_.size() < kShortestScript) return;
  if (alertsExceeded_) return fireError(kBeyondLimit);
  tellOutcome(runOverAllBars(Fillers::kTwo), bars_);
}

bool CAlert::Evaluate(std::string_view EvaluateScript) {
  evaluationScript_ = EvaluateScript;
  alertScript_ = evaluationScript_;
  if (evaluationScript_.size() < kShortestScript) return false;
  return tellOutcome(runOverAllBars(Fillers::kNone), bars_);
}

/// A run on a fresh engine, which takes over the buffers of the engine before and is kept for the questions
/// that follow. The driver takes the first bar for no row of any series; with fillers that is the later one
/// of them, the other is row 0, and the host's first bar counts too.
std::string CAlert::runOverAllBars(Fillers fillers) {
  const platform::CancelSwitch::Call call(*cancel_);
  std::string text;
  try {
    const SeriesPool::Scope scope(*pool_);
    lastRun_ = nullptr;
    engine_.reset();
    engine_ = std::make_unique<CScriptEngine>();
    engine_->cancelSwitch = cancel_.get();
    engine_->bars.use(bars_.rows());
    if (fillers == Fillers::kTwo) {
      engine_->bars.insertFiller(kFirstFillerDate);
      engine_->bars.insertFiller(kSecondFillerDate);
    }
    text = engine_->RunScript(evaluationScript_, false, false);
    engine_->bars.clear();
    lastFunction_ = engine_->currentFunction;
    lastRun_ = engine_.get();
  } catch (const std::bad_alloc&) {
    engine_.reset();
    lastFunction_.clear();
    text = kOutOfMemory;
  }
  pool_->trim();
  return text;
}

// ---- The incremental way
// ------------------------------------------------------------------------------------

void CAlert::InitialiseTransientStore(std::int32_t variablesSize) {
  useTransientStore_ = true;
  try {
    living_->InitialiseTransientStore(variablesSize);
  } catch (const std::bad_alloc&) {
    fireError(kOutOfMemory);
  }
  makeReady();
}

bool CAlert::ProcessScripData(std::string_view script) {
  makeReady();
  try {
    std::string error;
    return living_->ProcessScripData(script, error);
  } catch (const std::bad_alloc&) {
    fireError(kOutOfMemory);
    return false;
  }
}

/// On this way the limit is told but stops nothing, save what the handler of the event itself calls.
void CAlert::makeReady() {
  if (alertsExceeded_) {
    transientReady_ = false;
    fireError(kBeyondLimit);
  }
  transientReady_ = true;
}

void CAlert::GetVariableValuesLog(std::string_view) {}

bool CAlert::AppendRecord_Opt(double JDate, double OpenPrice, double HighPrice, double LowPrice,
                              double ClosePrice, std::int32_t Volume, double dJDateOfLTT) {
  const Bar bar = makeBar(JDate, OpenPrice, HighPrice, LowPrice, ClosePrice, Volume, dJDateOfLTT);
  std::int32_t status = -1;
  try {
    bars_.makeRoom(1);
    livingBars_.makeRoom(1);
    status = living_->ApplyBarChange(bar, CScriptEngine::kNewBar);
  } catch (const std::bad_alloc&) {
    fireError(kOutOfMemory);
    return false;
  }
  bars_.AppendRecord(bar);
  livingBars_.AppendRecord(bar);
  if (status != 0) return false;
  evaluateLiving();
  return true;
}

std::optional<bool> CAlert::EditRecord_Opt(double JDate, double OpenPrice, double HighPrice, double LowPrice,
                                           double ClosePrice, std::int32_t Volume, double dJDateOfLTT) {
  const std::ptrdiff_t found = livingBars_.findDate(JDate);
  if (found == BarStore::kNotFound) return false;
  const std::size_t row = static_cast<std::size_t>(found);
  const Bar bar = makeBar(JDate, OpenPrice, HighPrice, LowPrice, ClosePrice, Volume, dJDateOfLTT);
  // The plain store holds every bar of the other, and maybe more.
  bars_.replace(row, bar);
  livingBars_.replace(row, bar);
  if (living_->ApplyBarChange(bar, CScriptEngine::kChangedLastBar) != 0) return std::nullopt;
  evaluateLiving();
  return true;
}

/// The limit is not looked at on this way.
void CAlert::evaluateLiving() {
  if (!transientReady_ || evaluationScript_.size() < kShortestScript) return;
  tellOutcome(runLiving(), livingBars_);
}

/// A run of the prepared script on the living engine, which keeps its series when memory runs out.
std::string CAlert::runLiving() {
  const platform::CancelSwitch::Call call(*cancel_);
  std::string text;
  lastRun_ = living_.get();
  living_->cancelSwitch = cancel_.get();
  try {
    living_->bars.use(livingBars_.rows());
    text = living_->RunFast(false, false);
  } catch (const std::bad_alloc&) {
    text = kOutOfMemory;
  }
  living_->wholeHistory = false;
  lastFunction_ = living_->currentFunction;
  return text;
}

}  // namespace brindlewort
