#include "services/output/script_output.hpp"

#include <new>

#include "functions/script_engine.hpp"
#include "series/text.hpp"
#include "services/output/output_worker.hpp"

namespace brindlewort {

namespace {

constexpr double kFillerDate = 2444239.5;
constexpr std::string_view kOutOfMemory = "Error: Out of memory.";

bool asksForCandles(std::string_view script) {
  return contains(upperCase(script), "CSP");
}

Bar makeBar(double JDate, double Open, double High, double Low, double Close, std::int32_t Volume) {
  Bar bar;
  bar.JDate = JDate;
  bar.OpenPrice = Open;
  bar.HighPrice = High;
  bar.LowPrice = Low;
  bar.ClosePrice = Close;
  bar.Volume = Volume;
  return bar;
}

}  // namespace

std::optional<double> OutputTable::at(std::size_t column, std::size_t bar) const {
  const Series& values = columns[column].values;
  if (bar < valueOffset || bar - valueOffset >= values.size()) return std::nullopt;
  return values[bar - valueOffset];
}

CScriptOutput::CScriptOutput() : pool_(std::make_unique<SeriesPool>()) {}
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
  bars_.ClearRecords();
  livingBars_.ClearRecords();
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
  std::optional<std::int32_t> number;
  for (std::size_t row = 0; row < livingBars_.size() && JDate > livingBars_[row].JDate; ++row) {
    number = static_cast<std::int32_t>(row);
  }
  return number;
}

// ---- Runs
// ---------------------------------------------------------------------------------------------------

/// Work on a fresh engine, which is kept for the questions that follow; it takes over the buffers of the
/// engine before. A lack of memory becomes the event.
template <class Work>
auto CScriptOutput::guarded(Work work) -> decltype(work()) {
  try {
    const SeriesPool::Scope scope(*pool_);
    engine_.reset();
    engine_ = std::make_unique<CScriptEngine>();
    auto result = work();
    engine_->bars.clear();
    pool_->trim();
    return result;
  } catch (const std::bad_alloc&) {
    engine_.reset();
    pool_->trim();
    if (ScriptError) ScriptError(std::string(kOutOfMemory));
    return {};
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
  return guarded([&] {
    CScriptEngine& engine = prepareRun(DefaultScript, MapCount);
    if (MapCount == -1) {
      engine.eventListMode = true;
      MapCount = 0;
    }
    std::string text = outputText(engine, DefaultScript, MapCount, OutputSets);
    engine.candleOutputId = 0;
    return answer(std::move(text));
  });
}

std::optional<OutputTable> CScriptOutput::computeOutput(std::string_view DefaultScript, std::int32_t MapCount,
                                                        std::string_view OutputSets) {
  return guarded([&]() -> std::optional<OutputTable> {
    CScriptEngine& engine = prepareRun(DefaultScript, MapCount);
    OutputTable table;
    const std::string text = runForOutput(engine, DefaultScript, OutputSets, table.columns);
    engine.candleOutputId = 0;
    if (!text.empty()) {
      answer(text);
      return std::nullopt;
    }
    table.bars = engine.bars;
    table.firstBar = firstOutputBar(MapCount);
    return table;
  });
}

std::optional<std::string> CScriptOutput::GetCustomIndFromCondition(std::string_view DefaultScript) {
  return guarded([&] {
    engine_->bars.use(bars_.rows());
    return answer(headingText(*engine_, DefaultScript));
  });
}

const Series* CScriptOutput::findSeries(std::string_view name) const {
  if (!engine_) return nullptr;
  const std::string wanted = upperCase(name);
  const ScriptVariable* entry = engine_->variables.get(wanted);
  const std::string bare = withoutChar(wanted, ' ');
  for (std::size_t i = 0; !entry && i < engine_->variables.size(); ++i) {
    if (withoutChar(engine_->variables[i].name, ' ') == bare) entry = &engine_->variables[i];
  }
  return entry ? &entry->values : nullptr;
}

}  // namespace brindlewort
