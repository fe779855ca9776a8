// The run driver: takes the host's script text, strips and splits it, checks that there are enough bars, sets
// up the price series and drives the evaluator.

#include <algorithm>
#include <array>

#include "engine/expression.hpp"
#include "engine/program.hpp"
#include "functions/script_engine.hpp"
#include "platform/run_watch.hpp"
#include "series/text.hpp"

namespace brindlewort {

namespace {

constexpr std::size_t kLongestScript = 63'999;
constexpr std::string_view kLineBreak = "\r\n";
constexpr std::string_view kTimedOut =
    "Error: The script timed out. Please shorten your script and try again.";

std::string replaceTabsAndDoubleBlanks(std::string_view script) {
  return std::string(trim(replaceAll(replaceAll(script, "\t", " "), "  ", " ")));
}

/// Without comments: from "#" to the end of the line, the line break left in place.
std::string withoutComments(std::string_view script) {
  std::string out;
  out.reserve(script.size());
  for (;;) {
    const std::size_t hash = script.find('#');
    out.append(script.substr(0, hash));
    if (hash == std::string_view::npos) return out;
    const std::size_t end = script.find(kLineBreak, hash);
    if (end == std::string_view::npos) return out;
    script.remove_prefix(end);
  }
}

Bar barOfOnes() {
  Bar bar;
  bar.JDate = bar.OpenPrice = bar.HighPrice = bar.LowPrice = bar.ClosePrice = bar.Volume = 1.0;
  return bar;
}

}  // namespace

CScriptEngine::CScriptEngine() = default;
CScriptEngine::~CScriptEngine() = default;

/// Takes the statements SET EXCHANGE, SECTOR, INDUSTRY and SYMBOL off the head of the script: all up to the
/// line break behind the last of them is the source part, which never reaches the evaluator.
void CScriptEngine::readSourceStatements(std::string& script, Program& program) {
  static constexpr std::array<std::string_view, 4> kStatements = {"SET EXCHANGE", "SET SECTOR",
                                                                  "SET INDUSTRY", "SET SYMBOL"};
  std::size_t greatest = std::string::npos;
  for (std::string_view statement : kStatements) {
    const std::size_t at = script.find(statement);
    if (at != std::string::npos && (greatest == std::string::npos || at > greatest)) greatest = at;
  }
  if (greatest == std::string::npos) return;
  const std::size_t end = script.find(kLineBreak, greatest);
  if (end == std::string::npos) return;

  const std::string meta = withoutChar(replaceAll(script.substr(0, end), "SET", "|SET_"), ' ');
  struct Key {
    std::string_view text;
    std::string& value;
  };
  std::string endMark;
  for (const Key& key : {Key{"EXCHANGE=", program.exchange}, Key{"SECTOR=", program.sector},
                         Key{"INDUSTRY=", program.industry}, Key{"SYMBOL=", program.symbol}}) {
    const std::size_t at = meta.find(key.text);
    if (at == std::string::npos) continue;
    const std::size_t from = at + key.text.size();
    const std::size_t next = meta.find("|SET_", from);
    if (next != std::string::npos) {
      key.value = meta.substr(from, next - from);
    } else {
      key.value = trim(std::string_view(meta).substr(from));
      endMark = key.value;
    }
  }
  for (std::string* value : {&program.exchange, &program.sector, &program.industry, &program.symbol}) {
    *value = replaceAll(*value, kLineBreak, "");
  }
  if (endMark.empty()) return;
  if (const std::size_t at = script.find(endMark); at != std::string::npos) {
    const std::size_t cut = std::min(script.size(), at + endMark.size() + 2);
    script = trim(std::string_view(script).substr(cut));
  }
}

/// Reads a script up to the point where it is one list of statements and one expression. The answer is what
/// is wrong with it, or empty. As long as the letters "SET" stand anywhere in the rest, a further line is
/// taken off as a statement.
std::string CScriptEngine::readProgram(std::string_view hostScript, Way way, Program& program) const {
  std::string script = replaceTabsAndDoubleBlanks(upperCase(hostScript));
  if (script.empty()) return "Error: Missing script";
  if (script.size() > kLongestScript) return "Error: Script too large";
  program.isScript = true;
  program.lookback = way == Way::kWholeHistory ? EstimateLookback(script) : EstimateLookbackFast(script);
  script = replaceTabsAndDoubleBlanks(withoutComments(script));
  script = replaceAll(script, "\r\n\r\n", kLineBreak);
  if (script.empty()) return "Error: No script!";
  program.text = script;
  readSourceStatements(script, program);

  const std::size_t lastSet = script.rfind("SET");
  std::size_t at = 0;
  while (lastSet != std::string::npos && lastSet >= at) {
    const std::size_t end = script.find(kLineBreak, at);
    if (end == std::string::npos) break;
    program.sets.emplace_back(script.substr(at, end - at));
    at = end + kLineBreak.size();
  }
  program.main = NormalizeScript(trim(replaceAll(std::string_view(script).substr(at), kLineBreak, " ")));
  return {};
}

/// The engine's state becomes that before the first evaluation of the script.
void CScriptEngine::takeProgram(Program& program, Way way) noexcept {
  candlePattern = -1;
  patternKnown_ = false;
  if (!program.isScript) return;
  for (std::string* text : {&abortMark, &errorText, &currentFunction}) text->clear();
  exchange.swap(program.exchange);
  sector.swap(program.sector);
  industry.swap(program.industry);
  symbol.swap(program.symbol);
  if (!program.text.empty()) scriptText_.swap(program.text);
  windowLength = program.lookback;
  if (way == Way::kIncremental) return;
  variables.clear();
  wholeHistory = true;
}

std::string CScriptEngine::RunScript(std::string_view script, bool rowScan, bool dryRun_) {
  dryRun = dryRun_;
  aborted_ = false;
  rowsHeld_ = 0;
  Program program;
  const std::string error = readProgram(script, Way::kWholeHistory, program);
  takeProgram(program, Way::kWholeHistory);
  if (!error.empty()) return error;

  paddedData = false;
  if (static_cast<std::size_t>(windowLength) > bars.size()) {
    if (!dryRun) return std::string(kNotEnoughData);
    windowLength = std::max(windowLength, 250);
    madeUpBars_.clear();
    for (std::size_t i = 0; i < bars.size(); ++i) madeUpBars_.push_back(bars[i]);
    madeUpBars_.insert(madeUpBars_.end(), static_cast<std::size_t>(windowLength) * 3 + 1, barOfOnes());
    bars.use(madeUpBars_);
    paddedData = true;
  }
  std::string resultText;
  try {
    const platform::RunWatch watch(cancelSwitch);
    runProgram(program, rowScan, resultText);
  } catch (const platform::RunStopped& stop) {
    endRun(stop);
  }
  wholeHistory = false;
  if (aborted_) errorText = kTooComplex;
  return errorText.empty() ? resultText : errorText;
}

void CScriptEngine::runProgram(const Program& program, bool rowScan, std::string& resultText) {
  if (rowScan) {
    for (std::size_t row = static_cast<std::size_t>(windowLength); row < bars.size() && errorText.empty();
         ++row) {
      if (BuildPriceFields(row)) evaluateStatements(program.sets, program.main, resultText);
    }
  } else if (BuildPriceFields(bars.size() - 1) || paddedData) {
    evaluateStatements(program.sets, program.main, resultText);
  }
}

/// What the host is told of a run that was stopped on its way.
void CScriptEngine::endRun(const platform::RunStopped& stop) {
  const bool cancelled = stop.reason == platform::RunStopped::Reason::kCancelled;
  if (cancelled) takeCancel();
  errorText = cancelled ? kCancelled : kTimedOut;
  abortMark = cancelled ? "cancelled" : "timeout";
}

/// Evaluates the SET statements and the main expression; the first error ends it, so that `currentFunction`
/// still names the function that failed.
void CScriptEngine::evaluateStatements(const std::vector<std::string>& sets, const std::string& main,
                                       std::string& resultText) {
  for (const std::string& statement : sets) {
    EvaluateExpression(NormalizeScript(statement));
    if (!errorText.empty()) return;
  }
  result = EvaluateExpression(main);
  if (result.value != 0.0) resultText = "ALERT";
}

/// The columns of the bars, filled from the end: the last row takes the last bar. With the whole history
/// there is one bar more than rows, so the first bar never reaches a series.
std::array<Series, 6> CScriptEngine::priceColumns(std::size_t rows) const {
  static constexpr std::array<double Bar::*, 6> kMembers = {&Bar::JDate,    &Bar::OpenPrice,  &Bar::HighPrice,
                                                            &Bar::LowPrice, &Bar::ClosePrice, &Bar::Volume};
  std::array<Series, 6> columns;
  std::array<double*, 6> out;
  for (std::size_t f = 0; f < columns.size(); ++f) {
    columns[f] = Series::uninitialized(rows);
    out[f] = columns[f].edit().data();
  }
  const std::size_t blank = bars.size() < rows ? rows - bars.size() : 0;
  for (std::size_t i = 0; i < rows; ++i) {
    const Bar bar = i < blank ? Bar{} : bars[bars.size() - rows + i];
    for (std::size_t f = 0; f < kMembers.size(); ++f) out[f][i] = bar.*kMembers[f];
  }
  return columns;
}

bool CScriptEngine::BuildPriceFields(std::size_t row) {
  if (wholeHistory) windowLength = static_cast<std::int32_t>(bars.size()) - 1;
  const std::size_t rows = static_cast<std::size_t>(std::max(windowLength, 0));
  const std::size_t first = row - std::min(row, rows);
  const std::size_t copied = bars.size() - std::min(first, bars.size());
  if (copied == 0) return false;
  fields.clear();
  if (copied - 1 > rows) return false;
  ResetConstants();

  static constexpr std::array<std::string_view, 6> kNames = {"D", "O", "H", "L", "C", "V"};
  if (barsStand && columns_[0].size() != rows) columns_ = priceColumns(rows);
  std::array<Series, 6> columns = barsStand ? columns_ : priceColumns(rows);
  for (std::size_t f = 0; f < columns.size(); ++f) {
    fields.push_back({std::string(kNames[f]), std::move(columns[f])});
  }
  static constexpr std::array<std::string_view, 5> kVariables = {"OPEN", "HIGH", "LOW", "CLOSE", "VOLUME"};
  for (std::size_t v = 0; v < kVariables.size(); ++v) {
    const Series& values = fields[v + 1].values;
    const double last = values.empty() ? 0.0 : values.back();
    variables.append({std::string(kVariables[v]), last, values, -1, kComputedVariable});
  }
  return true;
}

Prices CScriptEngine::prices() const {
  return {fields[1].values.view(), fields[2].values.view(), fields[3].values.view(), fields[4].values.view(),
          fields[5].values.view()};
}

}  // namespace brindlewort
