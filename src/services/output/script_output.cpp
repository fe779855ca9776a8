#include "services/output/script_output.hpp"

#include <new>

#include "functions/script_engine.hpp"
#include "series/make_bar.hpp"
#include "series/text.hpp"
#include "services/output/output_worker.hpp"
#include "services/output/pointer_block.hpp"

namespace brindlewort {

namespace {

constexpr double kFillerDate = 2444239.5;

bool asksForCandles(std::string_view script) {
  return contains(upperCase(script), "CSP");
}

}  // namespace

std::optional<double> OutputTable::at(std::size_t column, std::size_t bar) const {
  const Series& values = columns[column].values;
  if (bar < valueOffset || bar - valueOffset >= values.size()) return std::nullopt;
  return values[bar - valueOffset];
}

CScriptOutput::CScriptOutput()
    : living_(std::make_unique<CScriptEngine>()),
      pointers_(std::make_unique<PointerBlock>()),
      pool_(std::make_unique<SeriesPool>()) {}
CScriptOutput::~CScriptOutput() = default;
CScriptOutput::CScriptOutput(CScriptOutput&&) noexcept = default;
CScriptOutput& CScriptOutput::operator=(CScriptOutput&&) noexcept = default;

// ---- Records
// ------------------------------------------------------------------------------------------------

void CScriptOutput::AppendRecord(double JDate, double OpenPrice, double HighPrice, double LowPrice,
                                 double ClosePrice, std::int32_t Volume) {
  bars_.AppendRecord(makeBar(JDate, OpenPrice, HighPrice, LowPrice, ClosePrice, Volume));
}

bool CScriptOutput::EditRecord(double JDate, double OpenPrice, double HighPrice, double LowPrice,
                               double ClosePrice, std::int32_t Volume) {
  return bars_.EditRecord(makeBar(JDate, OpenPrice, HighPrice, LowPrice, ClosePrice, Volume));
}

bool CScriptOutput::EditJDate(double OldJDate, double NewJDate) {
  return bars_.EditJDate(OldJDate, NewJDate);
}

void CScriptOutput::ClearRecords() {
  pointers_->freeze([&] {
    bars_.ClearRecords();
    livingBars_.ClearRecords();
    living_->ClearIncremental();
  });
}

const Bar* CScriptOutput::GetRecordByJDate(double JDate) const {
  const std::ptrdiff_t row = livingBars_.findDate(JDate);
  return row == BarStore::kNotFound ? nullptr : &livingBars_[static_cast<std::size_t>(row)];
}

const Bar* CScriptOutput::GetRecordByIndex(std::int32_t Index) const {
  return livingBars_.byNumber(Index);
}

std::int32_t CScriptOutput::RecordCount() const {
  return livingBars_.RecordCount();
}

double CScriptOutput::GetJDate(std::int32_t Index) const {
  // The number counts from 0 here, and 0 itself is refused: the first bar cannot be reached.
  const bool inside = Index > 0 && Index <= livingBars_.RecordCount() - 1;
  return inside ? livingBars_[static_cast<std::size_t>(Index)].JDate : 0.0;
}

std::optional<std::int32_t> CScriptOutput::GetRecordNumberByJDate(double JDate) const {
  const std::ptrdiff_t row = livingBars_.lastRowBefore(JDate);
  if (row < 0) return std::nullopt;
  return static_cast<std::int32_t>(row);
}

// ---- Runs
// ---------------------------------------------------------------------------------------------------

/// Work on a fresh engine, which is kept for the questions that follow; it takes over the buffers of the
/// engine before.
template <class Work>
auto CScriptOutput::guarded(Work work) -> decltype(work()) {
  const platform::CancelSwitch::Call call(*cancel_);
  try {
    const SeriesPool::Scope scope(*pool_);
    lastRun_ = nullptr;
    engine_.reset();
    engine_ = std::make_unique<CScriptEngine>();
    engine_->cancelSwitch = cancel_.get();
    lastRun_ = engine_.get();
    auto result = work();
    engine_->bars.clear();
    pool_->trim();
    return result;
  } catch (const std::bad_alloc&) {
    lastRun_ = nullptr;
    engine_.reset();
    pool_->trim();
    tellOutOfMemory();
    throw;
  }
}

void CScriptOutput::tellOutOfMemory() noexcept {
  try {
    if (ScriptError) ScriptError(std::string(kOutOfMemory));
  } catch (...) {
    // The call's own failure tells it all the same.
  }
}

/// Gives the fresh engine the component's bars. When all bars are asked for, two fillers stand in front: the
/// first bar never reaches a series, and lines begin with the third.
CScriptEngine& CScriptOutput::prepareRun(std::string_view script, std::int32_t mapCount) {
  CScriptEngine& engine = *engine_;
  engine.bars.use(bars_.rows());
  if (mapCount == 0) {
    engine.bars.insertFiller(kFillerDate);
    engine.bars.insertFiller(kFillerDate);
  }
  engine.candleOutputId = asksForCandles(script) ? 1 : 0;
  return engine;
}

/// What the host gets of a worker's text: nothing for too few bars, the event for an error, else the text.
std::optional<std::string> CScriptOutput::answer(std::string text) {
  if (text == kNotEnoughData) return std::nullopt;
  if (contains(text, "Error:")) {
    if (ScriptError) ScriptError(text);
    return std::nullopt;
  }
  return text;
}

std::optional<std::string> CScriptOutput::GetScriptOutput(std::string_view DefaultScript,
                                                          std::int32_t MapCount,
                                                          std::string_view OutputSets) {
  return answer(guarded([&] {
    CScriptEngine& engine = prepareRun(DefaultScript, MapCount);
    if (MapCount == -1) {
      engine.eventListMode = true;
      MapCount = 0;
    }
    std::string text = outputText(engine, DefaultScript, MapCount, OutputSets);
    engine.candleOutputId = 0;
    return text;
  }));
}

std::optional<OutputTable> CScriptOutput::computeOutput(std::string_view DefaultScript, std::int32_t MapCount,
                                                        std::string_view OutputSets) {
  OutputTable table;
  std::string text = guarded([&] {
    CScriptEngine& engine = prepareRun(DefaultScript, MapCount);
    std::string failure = runForOutput(engine, DefaultScript, OutputSets, table.columns);
    engine.candleOutputId = 0;
    table.bars = engine.bars;
    table.firstBar = firstOutputBar(MapCount);
    return failure;
  });
  if (text.empty()) return table;
  answer(std::move(text));
  return std::nullopt;
}

std::optional<std::string> CScriptOutput::GetCustomIndFromCondition(std::string_view DefaultScript) {
  return answer(guarded([&] {
    engine_->bars.use(bars_.rows());
    return headingText(*engine_, DefaultScript);
  }));
}

// ---- The incremental way
// ------------------------------------------------------------------------------------

void CScriptOutput::InitialiseTransientStore(std::int32_t variablesSize) {
  pointers_->freeze([&] { living_->InitialiseTransientStore(variablesSize); });
}

bool CScriptOutput::ProcessScripData(std::string_view script) {
  std::string error;
  bool prepared = false;
  pointers_->freeze([&] { prepared = living_->ProcessScripData(script, error); });
  return prepared;
}

void CScriptOutput::SetDataRetrieveMode(std::int32_t mode) {
  living_->SetDataRetrieveMode(mode);
}

void CScriptOutput::AddOrRemoveBasicVectorSeries(std::string_view name, std::int32_t size) {
  pointers_->freeze([&] { living_->AddOrRemoveBasicVectorSeries(name, size); });
}

void CScriptOutput::UpdateBasicVectorData(std::string_view name, double value, std::uint8_t AddorUpdate) {
  const PointerBlock::Follow follow(*pointers_);
  pointers_->beforeGrowth();
  living_->UpdateBasicVectorData(name, value, AddorUpdate);
}

void CScriptOutput::GetVariableValuesLog(std::string_view) {}

void CScriptOutput::AppendRecord_New(double JDate, double OpenPrice, double HighPrice, double LowPrice,
                                     double ClosePrice, std::int32_t Volume) {
  const Bar bar = makeBar(JDate, OpenPrice, HighPrice, LowPrice, ClosePrice, Volume);
  livingBars_.makeRoom(1);
  const PointerBlock::Follow follow(*pointers_);
  pointers_->beforeGrowth();
  living_->ApplyBarChange(bar, CScriptEngine::kNewBar);
  livingBars_.AppendRecord(bar);
}

std::optional<bool> CScriptOutput::EditRecord_New(double JDate, double OpenPrice, double HighPrice,
                                                  double LowPrice, double ClosePrice, std::int32_t Volume) {
  const std::ptrdiff_t row = livingBars_.findDate(JDate);
  if (row == BarStore::kNotFound) return false;
  const Bar bar = makeBar(JDate, OpenPrice, HighPrice, LowPrice, ClosePrice, Volume);
  const PointerBlock::Follow follow(*pointers_);
  const std::int32_t status = living_->ApplyBarChange(bar, CScriptEngine::kChangedLastBar);
  livingBars_.replace(static_cast<std::size_t>(row), bar);
  return status == 0 ? std::optional<bool>(true) : std::nullopt;
}

bool CScriptOutput::EditJDate_New(double OldJDate, double NewJDate) {
  return livingBars_.EditJDate(OldJDate, NewJDate);
}

/// Work on the living engine; the run has never been when memory runs out.
template <class Work>
auto CScriptOutput::livingRun(std::string_view script, std::int32_t mapCount, Work work) ->
    typename std::invoke_result<Work, CScriptEngine&>::type {
  const platform::CancelSwitch::Call call(*cancel_);
  CScriptEngine& engine = *living_;
  engine.settleRun();
  engine.cancelSwitch = cancel_.get();
  pointers_->endOfPromise();
  typename std::invoke_result<Work, CScriptEngine&>::type result{};
  try {
    engine.bars.use(livingBars_.rows());
    if (script != lastAsked_) {
      std::string asked(script);
      lastAsksForCandles_ = asksForCandles(script);
      lastAsked_.swap(asked);
    }
    engine.candleOutputId = lastAsksForCandles_ ? 1 : 0;
    engine.eventListMode = mapCount == -1;
    result = work(engine);
  } catch (const std::bad_alloc&) {
    takeBackRun();
    tellOutOfMemory();
    throw;
  }
  lastRun_ = &engine;
  engine.eventListMode = false;
  engine.candleOutputId = 0;
  return result;
}

void CScriptOutput::takeBackRun() noexcept {
  pointers_->endOfPromise();
  living_->takeBackRun();
  living_->eventListMode = false;
  living_->candleOutputId = 0;
  lastRun_ = nullptr;
}

std::optional<std::string> CScriptOutput::GetScriptOutput_New(std::string_view DefaultScript,
                                                              std::int32_t MapCount,
                                                              std::string_view OutputSets) {
  return answer(livingRun(DefaultScript, MapCount, [&](CScriptEngine& engine) {
    return preparedOutputText(engine, DefaultScript, MapCount, OutputSets);
  }));
}

std::optional<std::string> CScriptOutput::GetCustomIndFromCondition_NEW(std::string_view DefaultScript) {
  return answer(livingRun(DefaultScript, 0, [&](CScriptEngine& engine) {
    engine.candleOutputId = 0;
    return preparedHeadingText(engine, DefaultScript);
  }));
}

std::intptr_t CScriptOutput::GetScriptOutput_PTR(std::string_view DefaultScript, std::int32_t MapCount,
                                                 std::string_view OutputSets) {
  if (DefaultScript.empty()) return -1;
  const PointerBlock::List* list = livingRun(DefaultScript, MapCount, [&](CScriptEngine& engine) {
    engine.wholeHistory = true;
    return runPreparedForPointers(engine, OutputSets, listed_) ? &pointers_->show(listed_) : nullptr;
  });
  return list ? reinterpret_cast<std::intptr_t>(list) : -1;
}

std::string_view CScriptOutput::lastFunction() const {
  return lastRun_ ? std::string_view(lastRun_->currentFunction) : std::string_view();
}

const Series* CScriptOutput::findSeries(std::string_view name) const {
  if (!lastRun_) return nullptr;
  const std::string wanted = upperCase(name);
  const VariableStore& variables = lastRun_->variables;
  const ScriptVariable* entry = variables.get(wanted);
  const std::string bare = withoutChar(wanted, ' ');
  for (std::size_t i = 0; !entry && i < variables.size(); ++i) {
    if (withoutChar(variables[i].name, ' ') == bare) entry = &variables[i];
  }
  return entry ? &entry->values : nullptr;
}

}  // namespace brindlewort
