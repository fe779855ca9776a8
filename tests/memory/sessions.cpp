#include "memory/sessions.hpp"

#include <cmath>

#include "support/function_calls.hpp"

namespace brindlewort::testing {

namespace {

// ---- What the components have in common

constexpr double kFirstDay = 2451544.5;

/// Bar i of a market that goes up and down.
struct TestBar {
  explicit TestBar(int i)
      : date(kFirstDay + i),
        close(100.0 + 0.25 * (i * 37 % 41) - 0.5 * (i % 7)),
        open(close + 0.125 * (i * 11 % 13 - 6)),
        high(std::fmax(open, close) + 0.25 * (i % 5)),
        low(std::fmin(open, close) - 0.25 * (i % 3)),
        volume(1000 + i * 53 % 400) {}
  double date, close, open, high, low;
  std::int32_t volume;
};

template <class Handle>
void listen(Handle* h, Transcript* transcript, std::int32_t (*on)(Handle*, bw_script_error_fn, void*)) {
  on(
      h,
      [](void* user, const char* text) {
        const AllocationScope own(false);
        *static_cast<Transcript*>(user) << "told: " + std::string(text);
      },
      transcript);
}

/// A step whose text the host hears.
template <class Handle, class Call>
Step<Handle> textStep(std::string name, Call call) {
  return {std::move(name), [call](Handle* h, Transcript& heard) {
            char* text = nullptr;
            const std::int32_t status = watched([&] { return call(h, &text); });
            heard.take(text);
            return status;
          }};
}
/// A step that says a number beside its status.
template <class Handle, class Call>
Step<Handle> resultStep(std::string name, Call call) {
  return {std::move(name), [call](Handle* h, Transcript& heard) {
            std::int32_t result = 0;
            const std::int32_t status = watched([&] { return call(h, &result); });
            heard << result;
            return status;
          }};
}
template <class Handle, class Call>
Step<Handle> plainStep(std::string name, Call call) {
  return {std::move(name), [call](Handle* h, Transcript&) { return watched([&] { return call(h); }); }};
}

template <class Handle>
Step<Handle> asksForLastRun(Step<Handle> step) {
  step.asksForLastRun = true;
  return step;
}

template <class Handle>
using AppendRows = std::int32_t (*)(Handle*, const double*, std::size_t);

/// Bars `from` to `end` in one call, `columns` numbers each.
template <class Handle>
Step<Handle> appendRows(AppendRows<Handle> append, int from, int end, int columns) {
  return {"append_records", [=](Handle* h, Transcript&) {
            std::vector<double> rows;
            for (int i = from; i < end; ++i) {
              const TestBar bar(i);
              rows.insert(rows.end(), {bar.date, bar.open, bar.high, bar.low, bar.close,
                                       static_cast<double>(bar.volume)});
              if (columns == 7) rows.push_back(bar.date + 0.5);
            }
            return watched([&] { return append(h, rows.data(), static_cast<std::size_t>(end - from)); });
          }};
}

// ---- Script output

using Output = bw_script_output;
using OutputSteps = std::vector<Step<Output>>;

Step<Output> appendNew(int i) {
  return plainStep<Output>("append_record_new", [bar = TestBar(i)](Output* h) {
    return bw_script_output_append_record_new(h, bar.date, bar.open, bar.high, bar.low, bar.close,
                                              bar.volume);
  });
}
Step<Output> editNew(int i, double close) {
  return resultStep<Output>("edit_record_new", [=, bar = TestBar(i)](Output* h, std::int32_t* found) {
    return bw_script_output_edit_record_new(h, bar.date, bar.open, bar.high + 9.0, bar.low, close, bar.volume,
                                            found);
  });
}
Step<Output> prepare(std::string script) {
  return resultStep<Output>("process_scrip_data", [script](Output* h, std::int32_t* prepared) {
    return bw_script_output_process_scrip_data(h, script.c_str(), prepared);
  });
}
Step<Output> outputNew(std::string script, std::int32_t mapCount = 0, std::string sets = "") {
  return textStep<Output>("get_script_output_new", [=](Output* h, char** text) {
    return bw_script_output_get_script_output_new(h, script.c_str(), mapCount, sets.c_str(), text);
  });
}
Step<Output> output(std::string script, std::int32_t mapCount = 0, std::string sets = "") {
  return textStep<Output>("get_script_output", [=](Output* h, char** text) {
    return bw_script_output_get_script_output(h, script.c_str(), mapCount, sets.c_str(), text);
  });
}
Step<Output> pointers(std::string script) {
  return {"get_script_output_ptr", [=](Output* h, Transcript& heard) {
            std::intptr_t address = -1;
            const std::int32_t status = watched(
                [&] { return bw_script_output_get_script_output_ptr(h, script.c_str(), 0, "", &address); });
            if (address == -1) return status;
            const auto& list = *reinterpret_cast<const bw_series_list*>(address);
            for (std::size_t i = 0; i < list.count; ++i) heard << list.items[i];
            return status;
          }};
}
Step<Output> seriesOf(std::string name) {
  return {"get_series",
          [=](Output* h, Transcript& heard) {
            bw_series rows{};
            const std::int32_t status = watched(
                [&] { return bw_script_output_get_series(h, name.c_str(), &rows.values, &rows.count); });
            if (status == 0) heard << rows;
            return status;
          },
          true};
}
Step<Output> initialise() {
  return plainStep<Output>("initialise_transient_store",
                           [](Output* h) { return bw_script_output_initialise_transient_store(h, 0); });
}
Step<Output> mode(std::int32_t mode) {
  return plainStep<Output>("set_data_retrieve_mode",
                           [mode](Output* h) { return bw_script_output_set_data_retrieve_mode(h, mode); });
}
Step<Output> hostSeries(std::string name, std::int32_t size) {
  return plainStep<Output>("add_or_remove_basic_vector_series", [=](Output* h) {
    return bw_script_output_add_or_remove_basic_vector_series(h, name.c_str(), size);
  });
}
Step<Output> feed(std::string name, double value, std::uint8_t kind) {
  return plainStep<Output>("update_basic_vector_data", [=](Output* h) {
    return bw_script_output_update_basic_vector_data(h, name.c_str(), value, kind);
  });
}
Step<Output> helpOfOutput() {
  return asksForLastRun(textStep<Output>("get_script_help", bw_script_output_get_script_help));
}
Step<Output> indicatorNew(std::string script) {
  return textStep<Output>("get_custom_ind_from_condition_new", [=](Output* h, char** text) {
    return bw_script_output_get_custom_ind_from_condition_new(h, script.c_str(), text);
  });
}
Step<Output> clear() {
  return plainStep<Output>("clear_records", bw_script_output_clear_records);
}
Step<Output> count() {
  return resultStep<Output>("get_record_count", bw_script_output_get_record_count);
}
Step<Output> barAt(std::int32_t index) {
  return {"get_record_by_index", [=](Output* h, Transcript& heard) {
            double numbers[5] = {};
            std::int32_t volume = 0, found = 0;
            const std::int32_t status = watched([&] {
              return bw_script_output_get_record_by_index(h, index, &numbers[0], &numbers[1], &numbers[2],
                                                          &numbers[3], &numbers[4], &volume, &found);
            });
            for (double number : numbers) heard << number;
            heard << volume << found;
            return status;
          }};
}

void add(OutputSteps& steps, OutputSteps more) {
  for (Step<Output>& step : more) steps.push_back(std::move(step));
}

Session<Output> outputSession(std::string name, OutputSteps steps) {
  return {std::move(name), bw_script_output_create, bw_script_output_destroy,
          [](Output* h, Transcript* transcript) { listen(h, transcript, bw_script_output_on_script_error); },
          std::move(steps)};
}

constexpr int kFewBars = 12;
constexpr int kManyBars = 44;

Session<Output> smallest() {
  const std::string script = "SET A = SMA(CLOSE, 3)\r\nA > 1";
  OutputSteps steps = {initialise(), prepare(script)};
  for (int i = 0; i < 9; ++i) steps.push_back(appendNew(i));
  add(steps, {outputNew(script), pointers(script), appendNew(9), outputNew(script), seriesOf("A"), count(),
              barAt(3)});
  return outputSession("smallest", std::move(steps));
}

/// Preparations that add and that replace, edits, runs of every kind, an error and its repair.
Session<Output> livingCalls() {
  const std::string first =
      "SET A = RBO(CLOSE, 3, EXPONENTIAL) + 1\r\nSET LONGERNAMEOFASERIES = (A * 2 - SMA(A, 4))\r\nA > 100";
  const std::string second =
      "SET B = IF(CLOSE > OPEN, REF(HIGH, 2), LOW)\r\nSET CLOSE = CLOSE + 1\r\nB > 100 AND A > 1";
  const std::string broken = "SET C = SMA(NOTHING, 3)\r\nC > 1";
  OutputSteps steps = {initialise(), prepare(first)};
  for (int i = 0; i < kFewBars; ++i) steps.push_back(appendNew(i));
  add(steps, {pointers(first),
              appendNew(kFewBars),
              pointers(first),
              outputNew(first, 3, "A"),
              editNew(kFewBars, 101.5),
              pointers(first),
              prepare(second),
              outputNew(second),
              appendNew(kFewBars + 1),
              outputNew(second),
              pointers(second),
              editNew(2, 99.0),
              pointers(second),
              indicatorNew(second),
              outputNew(second, -1),
              helpOfOutput(),
              seriesOf("longernameofaseries"),
              mode(102),
              prepare(broken),
              outputNew(broken),
              helpOfOutput(),
              prepare(first),
              outputNew(first),
              appendNew(kFewBars + 2),
              pointers(first),
              clear(),
              count(),
              initialise(),
              prepare(second),
              appendNew(0),
              pointers(first),
              count(),
              barAt(1)});
  return outputSession("living calls", std::move(steps));
}

/// A series that the host feeds, takes away and gives again.
Session<Output> hostFedCalls() {
  const std::string script = "SET A = HOST * 2\r\nSET B = SUM(HOST, 3)\r\nA > B";
  OutputSteps steps = {initialise(), hostSeries("HOST", 3), prepare(script)};
  for (int i = 0; i < kFewBars; ++i) {
    steps.push_back(appendNew(i));
    if (i > 2) steps.push_back(feed("HOST", i == 5 ? -987654321.0 : 10.0 + i, 22));
  }
  add(steps,
      {pointers(script), hostSeries("SECONDHOSTSERIESOFTHISSCRIPT", 3),
       feed("SECONDHOSTSERIESOFTHISSCRIPT", 0.0, 11), appendNew(kFewBars), feed("HOST", 3.0, 22),
       feed("SECONDHOSTSERIESOFTHISSCRIPT", 4.0, 22), outputNew(script), hostSeries("HOST", -987654321),
       outputNew(script), seriesOf("SECONDHOSTSERIESOFTHISSCRIPT"), hostSeries("HOST", 20)});
  for (int i = 0; i < 18; ++i) steps.push_back(feed("HOST", 5.0 + i, 11));
  add(steps, {pointers(script), feed("HOST", 1.0, 11), outputNew(script), editNew(kFewBars, 98.0),
              pointers(script)});
  return outputSession("host-fed series", std::move(steps));
}

/// Candles, dates, a full store, and words that only this way knows.
Session<Output> livingOddities() {
  const std::string candles = "SET A = CSP()\r\n(CSP() = DOJI) OR A > 1";
  const std::string dates =
      "SET D1 = DATEPART(1, 4)\r\nSET D2 = DATE + 1\r\nSET M = MAXOF(100.5, CLOSE)\r\nM > 1 || D1 > 1";
  std::string full;
  for (int i = 2; i < 9; ++i)
    full += "SET V" + std::to_string(i) + " = SMA(CLOSE, " + std::to_string(i) + ") + 1\r\n";
  full += "V2 > 1";
  OutputSteps steps = {plainStep<Output>("initialise_transient_store", [](Output* h) {
    return bw_script_output_initialise_transient_store(h, 24);
  })};
  for (int i = 0; i < kFewBars; ++i) steps.push_back(appendNew(i));
  add(steps, {prepare(candles), outputNew(candles), appendNew(kFewBars), pointers(candles), mode(102),
              prepare(dates), pointers(dates), appendNew(kFewBars + 1), pointers(dates), prepare(full),
              outputNew(full), appendNew(kFewBars + 2), outputNew(full), prepare(dates), pointers(dates)});
  return outputSession("living oddities", std::move(steps));
}

/// The way over all bars at once.
Session<Output> wholeHistoryCalls() {
  const std::string script =
      "SET A = SMA(CLOSE, 3)\r\nSET LONGERNAMEOFASERIES = (A * 2 - SMA(A, 4))\r\nA > 100 AND CLOSE > OPEN";
  OutputSteps steps = {
      appendRows<Output>(bw_script_output_append_records, 0, 20, 6),
      output(script),
      plainStep<Output>("append_record",
                        [bar = TestBar(20)](Output* h) {
                          return bw_script_output_append_record(h, bar.date, bar.open, bar.high, bar.low,
                                                                bar.close, bar.volume);
                        }),
      output(script, 3, "A"),
      output(script, -1),
      seriesOf("longernameofaseries"),
      helpOfOutput(),
      resultStep<Output>("edit_record",
                         [bar = TestBar(4)](Output* h, std::int32_t* found) {
                           return bw_script_output_edit_record(h, bar.date, 1, 2, 3, 4, 5, found);
                         }),
      resultStep<Output>("edit_jdate",
                         [bar = TestBar(4)](Output* h, std::int32_t* found) {
                           return bw_script_output_edit_jdate(h, bar.date, bar.date + 0.5, found);
                         }),
      textStep<Output>("get_custom_ind_from_condition",
                       [script](Output* h, char** text) {
                         return bw_script_output_get_custom_ind_from_condition(h, script.c_str(), text);
                       }),
      output("SET C = SMA(NOTHING, 3)\r\nC > 1"),
      helpOfOutput(),
      textStep<Output>(
          "from_julian_date",
          [](Output* h, char** text) { return bw_script_output_from_julian_date(h, kFirstDay, text); }),
      output("SET EXCHANGE = SOMEWHERE\r\nSET SYMBOL = ANY\r\nSET A = CSP()\r\n(CSP() = DOJI)"),
      clear(),
      output(script)};
  return outputSession("whole-history calls", std::move(steps));
}

// ---- Every function

/// Names whose results a session cannot foretell.
bool beginsWithTheClock(std::string_view name) {
  return name == "RND";
}

struct CallList {
  std::string way;
  std::vector<std::string> calls;
};

CallList callsOf(Path path, std::string way) {
  CallList list{std::move(way), {}};
  for (const FunctionRow& row : functionTable()) {
    if (row.path != Path::kBoth && row.path != path) continue;
    for (const FunctionName& name : row.names) {
      // Spellings of one output are one call.
      const bool isFirst = &name == &row.names.front() || (&name)[-1].output != name.output;
      if (isFirst && !beginsWithTheClock(name.name)) list.calls.push_back(sampleCall(row, name.name, path));
    }
  }
  return list;
}

/// Scripts of a few of the calls each.
std::vector<std::string> scriptsOf(const CallList& list) {
  constexpr std::size_t kCallsAScript = 6;
  std::vector<std::string> scripts;
  for (std::size_t from = 0; from < list.calls.size(); from += kCallsAScript) {
    std::string script;
    for (std::size_t i = from; i < std::min(from + kCallsAScript, list.calls.size()); ++i) {
      script += "SET V" + std::to_string(i) + " = " + list.calls[i] + "\r\n";
    }
    scripts.push_back(script + "V" + std::to_string(from) + " > 1");
  }
  return scripts;
}

}  // namespace

std::vector<Session<bw_script_output>> outputSessions() {
  return {smallest(), livingCalls(), hostFedCalls(), livingOddities(), wholeHistoryCalls()};
}

std::vector<Session<bw_script_output>> functionSessions() {
  std::vector<Session<Output>> sessions;
  for (const std::string& script : scriptsOf(callsOf(Path::kIncremental, "streamed"))) {
    OutputSteps steps = {initialise()};
    for (int i = 0; i < kManyBars; ++i) steps.push_back(appendNew(i));
    add(steps, {prepare(script), pointers(script), appendNew(kManyBars), pointers(script),
                editNew(kManyBars, 104.0), outputNew(script), appendNew(kManyBars + 1), pointers(script)});
    sessions.push_back(outputSession("streamed: " + script, std::move(steps)));
  }
  for (const std::string& script : scriptsOf(callsOf(Path::kWholeHistory, "at once"))) {
    sessions.push_back(outputSession("at once: " + script,
                                     {appendRows<Output>(bw_script_output_append_records, 0, kManyBars, 6),
                                      output(script), output(script, 3)}));
  }
  return sessions;
}

// ---- Alert

namespace {

using Alert = bw_alert;

Step<Alert> appendOpt(int i) {
  return plainStep<Alert>("append_record_opt", [bar = TestBar(i)](Alert* h) {
    return bw_alert_append_record_opt(h, bar.date, bar.open, bar.high, bar.low, bar.close, bar.volume,
                                      bar.date + 0.5);
  });
}
Step<Alert> appendAlert(int i) {
  return plainStep<Alert>("append_record", [bar = TestBar(i)](Alert* h) {
    return bw_alert_append_record(h, bar.date, bar.open, bar.high, bar.low, bar.close, bar.volume,
                                  bar.date + 0.5);
  });
}
Step<Alert> editOpt(int i, double close) {
  return resultStep<Alert>("edit_record_opt", [=, bar = TestBar(i)](Alert* h, std::int32_t* found) {
    return bw_alert_edit_record_opt(h, bar.date, bar.open, bar.high + 9.0, bar.low, close, bar.volume,
                                    bar.date + 0.5, found);
  });
}
Step<Alert> editAlert(int i, double close) {
  return resultStep<Alert>("edit_record", [=, bar = TestBar(i)](Alert* h, std::int32_t* found) {
    return bw_alert_edit_record(h, bar.date, bar.open, bar.high + 9.0, bar.low, close, bar.volume,
                                bar.date + 0.5, found);
  });
}
Step<Alert> setText(std::string name, std::int32_t (*set)(Alert*, const char*), std::string text) {
  return plainStep<Alert>(std::move(name), [=](Alert* h) { return set(h, text.c_str()); });
}
Step<Alert> prepareAlert(std::string script) {
  return resultStep<Alert>("process_scrip_data", [script](Alert* h, std::int32_t* prepared) {
    return bw_alert_process_scrip_data(h, script.c_str(), prepared);
  });
}
Step<Alert> alertCount() {
  return resultStep<Alert>("get_record_count", bw_alert_get_record_count);
}
Step<Alert> alertHelp() {
  return asksForLastRun(textStep<Alert>("get_script_help", bw_alert_get_script_help));
}
Step<Alert> lastBar(std::int32_t index) {
  return {"get_record_by_index", [=](Alert* h, Transcript& heard) {
            double numbers[5] = {};
            std::int32_t volume = 0, found = 0;
            const std::int32_t status = watched([&] {
              return bw_alert_get_record_by_index(h, index, &numbers[0], &numbers[1], &numbers[2],
                                                  &numbers[3], &numbers[4], &volume, &found);
            });
            for (double number : numbers) heard << number;
            heard << volume << found;
            return status;
          }};
}

void listenToAlert(Alert* h, Transcript* transcript) {
  bw_alert_on_alert(
      h,
      [](void* user, const char* symbol, const char* name, double date, double price) {
        const AllocationScope own(false);
        *static_cast<Transcript*>(user) << "fired: " + std::string(symbol) + " " + name << date << price;
      },
      transcript);
  bw_alert_on_script_error(
      h,
      [](void* user, const char* symbol, const char* name, const char* text) {
        const AllocationScope own(false);
        *static_cast<Transcript*>(user) << "told: " + std::string(symbol) + " " + name + " " + text;
      },
      transcript);
}

Session<Alert> alertSession(std::string name, std::vector<Step<Alert>> steps) {
  return {std::move(name), bw_alert_create, bw_alert_destroy, listenToAlert, std::move(steps)};
}

const char* const kSymbol = "A SYMBOL OF MORE LETTERS THAN A TICKER HAS";
const char* const kAlertName = "A name that takes memory of its own too";

Session<Alert> plainAlert() {
  const std::string script = "SET A = SMA(CLOSE, 3)\r\nCLOSE > A";
  std::vector<Step<Alert>> steps = {setText("set_symbol", bw_alert_set_symbol, kSymbol),
                                    setText("set_alert_name", bw_alert_set_alert_name, kAlertName),
                                    appendRows<Alert>(bw_alert_append_records, 0, 12, 7),
                                    setText("set_alert_script", bw_alert_set_alert_script, script)};
  for (int i = 12; i < 18; ++i) steps.push_back(appendAlert(i));
  std::vector<Step<Alert>> rest = {
      appendRows<Alert>(bw_alert_append_records, 18, 40, 7),
      editAlert(39, 120.0),
      editAlert(77, 120.0),
      alertCount(),
      lastBar(40),
      resultStep<Alert>("evaluate",
                        [](Alert* h, std::int32_t* fired) {
                          return bw_alert_evaluate(h, "SET B = EMA(CLOSE, 4)\r\nB > 1", fired);
                        }),
      textStep<Alert>("get_alert_script", bw_alert_get_alert_script),
      appendAlert(40),
      alertHelp(),
      setText("set_alert_script", bw_alert_set_alert_script, "SET C = SMA(NOTHING, 3)\r\nC > 1"),
      alertHelp(),
      textStep<Alert>("get_symbol", bw_alert_get_symbol),
      plainStep<Alert>("clear_records", bw_alert_clear_records),
      setText("set_alert_script", bw_alert_set_alert_script, script),
      alertCount()};
  for (Step<Alert>& step : rest) steps.push_back(std::move(step));
  return alertSession("plain alert", std::move(steps));
}

Session<Alert> livingAlert() {
  const std::string script =
      "SET A = RBO(CLOSE, 3, EXPONENTIAL)\r\nSET B = SMA(CLOSE, 4) + 1\r\nCLOSE > B OR A > 0";
  std::vector<Step<Alert>> steps = {
      setText("set_symbol", bw_alert_set_symbol, kSymbol),
      setText("set_alert_name", bw_alert_set_alert_name, kAlertName),
      plainStep<Alert>("initialise_transient_store",
                       [](Alert* h) { return bw_alert_initialise_transient_store(h, 0); }),
      prepareAlert(script),
      appendOpt(0),
      setText("set_alert_script", bw_alert_set_alert_script, script)};
  for (int i = 1; i < 16; ++i) steps.push_back(appendOpt(i));
  std::vector<Step<Alert>> rest = {editOpt(15, 120.0),
                                   appendOpt(16),
                                   editOpt(3, 80.0),
                                   editOpt(77, 80.0),
                                   alertCount(),
                                   lastBar(17),
                                   alertHelp(),
                                   prepareAlert("SET C = EMA(CLOSE, 3)\r\nC > B"),
                                   appendOpt(17),
                                   appendOpt(18),
                                   prepareAlert("SET C = SMA(NOTHING, 3)\r\nC > 1"),
                                   appendOpt(19),
                                   alertHelp(),
                                   plainStep<Alert>("clear_records", bw_alert_clear_records),
                                   alertCount()};
  for (Step<Alert>& step : rest) steps.push_back(std::move(step));
  return alertSession("living alert", std::move(steps));
}

/// Prices of 0 at first: the series take their level from the first price above.
Session<Alert> alertThatTakesLevels() {
  const std::string script = "SET A = CLOSE * 2 + SMA(CLOSE, 3)\r\nA > 1";
  std::vector<Step<Alert>> steps = {
      plainStep<Alert>("initialise_transient_store",
                       [](Alert* h) { return bw_alert_initialise_transient_store(h, 0); }),
      prepareAlert(script), setText("set_alert_script", bw_alert_set_alert_script, script)};
  for (int i = 0; i < 18; ++i) {
    steps.push_back(plainStep<Alert>("append_record_opt", [i](Alert* h) {
      const double close = i < 9 ? 0.0 : i;
      return bw_alert_append_record_opt(h, kFirstDay + i, close, close, close, i < 11 ? 0.0 : close, 0,
                                        kFirstDay);
    }));
    if (i == 10) steps.push_back(editOpt(10, 7.0));
    if (i > 8) steps.push_back(alertCount());
  }
  return alertSession("alert that takes levels", std::move(steps));
}

}  // namespace

std::vector<Session<bw_alert>> alertSessions() {
  return {plainAlert(), livingAlert(), alertThatTakesLevels()};
}

// ---- Backtest and validation

namespace {

template <class Run>
Step<bw_backtest> backtest(std::string name, Run run, std::string exitLong) {
  return textStep<bw_backtest>(std::move(name), [=](bw_backtest* h, char** text) {
    return run(h, "SET A = SMA(CLOSE, 3)\r\nCROSSOVER(CLOSE, A) = TRUE",
               "CROSSOVER(SMA(CLOSE, 3), CLOSE) = TRUE", exitLong.c_str(), "", 0.5,
               "STOP=5;TRAIL=1;TARGET=4;BARS=6;", text);
  });
}
Step<bw_validate> validate(std::string script, std::int32_t version) {
  return textStep<bw_validate>("validate", [=](bw_validate* h, char** text) {
    return bw_validate_validate(h, script.c_str(), version, text);
  });
}
Step<bw_validate> constant(std::string name) {
  return textStep<bw_validate>("get_constant", [=](bw_validate* h, char** text) {
    return bw_validate_get_constant(h, name.c_str(), text);
  });
}

}  // namespace

std::vector<Session<bw_backtest>> backtestSessions() {
  const auto help = [] {
    return asksForLastRun(textStep<bw_backtest>("get_script_help", bw_backtest_get_script_help));
  };
  const std::string exit = "CLOSE < REF(CLOSE, 3)";
  std::vector<Step<bw_backtest>> steps = {
      plainStep<bw_backtest>("set_random_seed",
                             [](bw_backtest* h) { return bw_backtest_set_random_seed(h, 7); }),
      appendRows<bw_backtest>(bw_backtest_append_records, 0, 60, 6),
      plainStep<bw_backtest>("append_record",
                             [bar = TestBar(60)](bw_backtest* h) {
                               return bw_backtest_append_record(h, bar.date, bar.open, bar.high, bar.low,
                                                                bar.close, bar.volume);
                             }),
      backtest("backtest", bw_backtest_backtest, exit),
      help(),
      backtest("backtest_new", bw_backtest_backtest_new, exit),
      help(),
      backtest("backtest", bw_backtest_backtest, "SMA(NOTHING, 3) > 1"),
      backtest("backtest_new", bw_backtest_backtest_new, "SMA(NOTHING, 3) > 1"),
      help(),
      resultStep<bw_backtest>("get_record_count", bw_backtest_get_record_count),
      plainStep<bw_backtest>("clear_records", bw_backtest_clear_records),
      backtest("backtest", bw_backtest_backtest, exit)};
  return {{"backtests", bw_backtest_create, bw_backtest_destroy,
           [](bw_backtest* h, Transcript* transcript) { listen(h, transcript, bw_backtest_on_script_error); },
           std::move(steps)}};
}

std::vector<Session<bw_validate>> validateSessions() {
  const auto help = [] { return textStep<bw_validate>("get_script_help", bw_validate_get_script_help); };
  return {{"validations",
           bw_validate_create,
           bw_validate_destroy,
           [](bw_validate*, Transcript*) {},
           {validate("SET EXCHANGE = A PLACE WITH A LONG NAME\r\nSET SYMBOL = ANY\r\nSET A = SMA(CLOSE, "
                     "3)\r\nCLOSE > A",
                     0),
            constant("exchange"), constant("SYMBOL"), help(), validate("CLOSE > SMA(CLOSE, 0)", -1), help(),
            constant("EXCHANGE"), validate("CLOSE >", -1),
            validate(
                "SET SECTOR = SOMETHING\r\nSET B = EMA(CLOSE, 14) + SMA(CLOSE, 2)\r\nB > 1 AND CLOSE > 2", 0),
            constant("SECTOR"), help()}}};
}

}  // namespace brindlewort::testing
