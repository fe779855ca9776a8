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

/// An event that is ready to be told. What is called, and what it is told, are copies: a handler may change
/// both.
struct CAlert::Event {
  enum class Kind { kNone, kAlert, kError };
  Kind kind = Kind::kNone;
  decltype(CAlert::Alert) alert;
  decltype(CAlert::ScriptError) error;
  std::string symbol, alertName, description;
  double lastTradeDate = 0.0, lastTradePrice = 0.0;
};

CAlert::CAlert(platform::AlertCount& count)
    : seat_(count, kMostAlerts),
      alertsExceeded_(seat_.beyondLimit()),
      evaluationScript_(alertsExceeded_ ? "EXCEEDED" : ""),
      pool_(std::make_unique<SeriesPool>()),
      living_(std::make_unique<CScriptEngine>()),
      barUndo_(std::make_unique<BarUndo>()) {}
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
  const std::size_t before = bars_.size();
  change(
      [&] {
        bars_.makeRoom(bars.size());
        for (Bar bar : bars) {
          bar.Volume = volumeToInt32(bar.Volume);
          bar.dLastTradedPrice = bar.ClosePrice;
          bars_.AppendRecord(bar);
        }
        return evaluateOnChange();
      },
      [&] { bars_.dropFrom(before); });
}

bool CAlert::EditRecord(double JDate, double OpenPrice, double HighPrice, double LowPrice, double ClosePrice,
                        std::int32_t Volume, double dJDateOfLTT) {
  const std::ptrdiff_t found = bars_.findDate(JDate);
  if (found == BarStore::kNotFound) return false;
  const std::size_t row = static_cast<std::size_t>(found);
  const Bar before = bars_[row];
  change(
      [&] {
        bars_.replace(row, makeBar(JDate, OpenPrice, HighPrice, LowPrice, ClosePrice, Volume, dJDateOfLTT));
        return evaluateOnChange();
      },
      [&] { bars_.replace(row, before); });
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

CAlert::Event CAlert::errorEvent(std::string_view description) const {
  return {Event::Kind::kError, nullptr, ScriptError, symbol_, alertName_, std::string(description), 0.0, 0.0};
}

/// The event, if any, that a run's text calls for.
CAlert::Event CAlert::outcomeOf(const std::string& text, const BarStore& store) const {
  if (text.empty() || text == kNotEnoughData) return {};
  if (text != "ALERT") return errorEvent(text);
  const Bar last = store.empty() ? Bar{} : store.back();
  return {Event::Kind::kAlert, Alert, nullptr,          symbol_,
          alertName_,          {},    last.dJDateOfLTT, last.dLastTradedPrice};
}

/// True when the script fired. Nothing of a call is done behind its event, so that a handler may make the
/// next.
bool CAlert::tell(const Event& event) {
  const bool fired = event.kind == Event::Kind::kAlert;
  if (fired && event.alert) {
    event.alert(event.symbol, event.alertName, event.lastTradeDate, event.lastTradePrice);
  }
  if (event.kind == Event::Kind::kError && event.error) {
    event.error(event.symbol, event.alertName, event.description);
  }
  return fired;
}

/// Makes a change, which gives the event that it calls for. When memory runs out on the way it is taken back.
/// True when the script fired.
template <class Work, class TakeBack>
bool CAlert::change(Work work, TakeBack takeBack) {
  Event event;
  try {
    event = work();
  } catch (const std::bad_alloc&) {
    takeBack();
    tellOutOfMemory();
    throw;
  }
  return tell(event);
}

void CAlert::tellOutOfMemory() noexcept {
  try {
    tell(errorEvent(kOutOfMemory));
  } catch (...) {
    // The call's own failure tells it all the same.
  }
}

// ---- Runs
// ---------------------------------------------------------------------------------------------------

void CAlert::setAlertScript(std::string_view text) {
  withScript(text, [&] {
    if (alertScript_.size() < kShortestScript) return Event{};
    return useTransientStore_ ? evaluateLiving() : evaluateOnChange();
  });
}

bool CAlert::Evaluate(std::string_view EvaluateScript) {
  return withScript(EvaluateScript, [&] {
    if (evaluationScript_.size() < kShortestScript) return Event{};
    return outcomeOf(runOverAllBars(evaluationScript_, Fillers::kNone), bars_);
  });
}

/// Evaluates with a script that stays in force.
template <class Evaluation>
bool CAlert::withScript(std::string_view text, Evaluation evaluation) {
  std::string evaluationScript, alertScript;
  const auto exchange = [&] {
    evaluationScript_.swap(evaluationScript);
    alertScript_.swap(alertScript);
  };
  bool isSet = false;
  return change(
      [&] {
        evaluationScript = text;
        alertScript = text;
        exchange();
        isSet = true;
        return evaluation();
      },
      [&] {
        if (isSet) exchange();
      });
}

CAlert::Event CAlert::evaluateOnChange() {
  std::string script = alertScript_;
  Event event;
  if (script.size() >= kShortestScript) {
    event =
        alertsExceeded_ ? errorEvent(kBeyondLimit) : outcomeOf(runOverAllBars(script, Fillers::kTwo), bars_);
  }
  evaluationScript_.swap(script);
  return event;
}

/// A run on a fresh engine, which takes over the buffers of the engine before and is kept for the questions
/// that follow. The driver takes the first bar for no row of any series; with fillers that is the later one
/// of them, the other is row 0, and the host's first bar counts too.
std::string CAlert::runOverAllBars(std::string_view script, Fillers fillers) {
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
    text = engine_->RunScript(script, false, false);
    engine_->bars.clear();
    lastFunction_ = engine_->currentFunction;
    lastRun_ = engine_.get();
  } catch (const std::bad_alloc&) {
    engine_.reset();
    lastFunction_.clear();
    pool_->trim();
    throw;
  }
  pool_->trim();
  return text;
}

// ---- The incremental way
// ------------------------------------------------------------------------------------

// On this way the limit is told but stops nothing, save what the handler of the event itself calls.

void CAlert::InitialiseTransientStore(std::int32_t variablesSize) {
  change(
      [&] {
        Event event = alertsExceeded_ ? errorEvent(kBeyondLimit) : Event{};
        living_->InitialiseTransientStore(variablesSize);
        useTransientStore_ = true;
        transientReady_ = !alertsExceeded_;
        return event;
      },
      [] {});
  transientReady_ = true;
}

bool CAlert::ProcessScripData(std::string_view script) {
  const bool wasReady = transientReady_;
  if (alertsExceeded_) {
    change(
        [&] {
          Event event = errorEvent(kBeyondLimit);
          transientReady_ = false;
          return event;
        },
        [] {});
  }
  transientReady_ = true;
  bool prepared = false;
  change(
      [&] {
        std::string error;
        prepared = living_->ProcessScripData(script, error);
        return Event{};
      },
      [&] { transientReady_ = wasReady; });
  return prepared;
}

void CAlert::GetVariableValuesLog(std::string_view) {}

/// A change of a bar of both stores, which the engine takes or not; the evaluation follows where it does.
/// What `store` does with the bars needs no memory, and `unstore` takes it back.
template <class Store, class Unstore>
bool CAlert::changeLiving(const Bar& bar, std::int32_t mode, Store store, Unstore unstore) {
  bool stored = false;
  std::int32_t status = -1;
  change(
      [&] {
        bars_.makeRoom(1);
        livingBars_.makeRoom(1);
        status = living_->ApplyBarChange(bar, mode, barUndo_.get());
        store();
        stored = true;
        return status == 0 ? evaluateLiving() : Event{};
      },
      [&] {
        if (!stored) return;
        unstore();
        living_->takeBackBar(*barUndo_);
      });
  return status == 0;
}

bool CAlert::AppendRecord_Opt(double JDate, double OpenPrice, double HighPrice, double LowPrice,
                              double ClosePrice, std::int32_t Volume, double dJDateOfLTT) {
  const Bar bar = makeBar(JDate, OpenPrice, HighPrice, LowPrice, ClosePrice, Volume, dJDateOfLTT);
  const std::size_t row = bars_.size(), livingRow = livingBars_.size();
  return changeLiving(
      bar, CScriptEngine::kNewBar,
      [&] {
        bars_.AppendRecord(bar);
        livingBars_.AppendRecord(bar);
      },
      [&] {
        bars_.dropFrom(row);
        livingBars_.dropFrom(livingRow);
      });
}

std::optional<bool> CAlert::EditRecord_Opt(double JDate, double OpenPrice, double HighPrice, double LowPrice,
                                           double ClosePrice, std::int32_t Volume, double dJDateOfLTT) {
  const std::ptrdiff_t found = livingBars_.findDate(JDate);
  if (found == BarStore::kNotFound) return false;
  const std::size_t row = static_cast<std::size_t>(found);
  const Bar bar = makeBar(JDate, OpenPrice, HighPrice, LowPrice, ClosePrice, Volume, dJDateOfLTT);
  // The plain store holds every bar of the other, and maybe more.
  const Bar before = bars_[row], livingBefore = livingBars_[row];
  const auto replace = [&](const Bar& plain, const Bar& living) {
    bars_.replace(row, plain);
    livingBars_.replace(row, living);
  };
  const bool taken = changeLiving(
      bar, CScriptEngine::kChangedLastBar, [&] { replace(bar, bar); },
      [&] { replace(before, livingBefore); });
  return taken ? std::optional<bool>(true) : std::nullopt;
}

/// A run of the prepared script on the living engine; it has never been when memory runs out. The limit is
/// not looked at on this way.
CAlert::Event CAlert::evaluateLiving() {
  if (!transientReady_ || evaluationScript_.size() < kShortestScript) return {};
  const platform::CancelSwitch::Call call(*cancel_);
  living_->settleRun();
  living_->cancelSwitch = cancel_.get();
  try {
    living_->bars.use(livingBars_.rows());
    const std::string text = living_->RunFast(false, false);
    living_->wholeHistory = false;
    Event event = outcomeOf(text, livingBars_);
    lastFunction_ = living_->currentFunction;
    lastRun_ = living_.get();
    return event;
  } catch (const std::bad_alloc&) {
    living_->takeBackRun();
    lastRun_ = nullptr;
    lastFunction_.clear();
    throw;
  }
}

}  // namespace brindlewort
