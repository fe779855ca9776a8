// A host that streams: any order of preparing scripts, adding and changing bars, feeding series and running;
// never a crash, a hang or a leak.

#include <cstdint>
#include <string_view>

#include "fuzz_input.hpp"
#include "services/alert/alert.hpp"
#include "services/output/script_output.hpp"

namespace {

using brindlewort::fuzz::Input;

/// Enough to come past every warm-up of a short script, few enough for many runs a second.
constexpr int kMostCalls = 60;

double price(Input& input) {
  const int choice = input.byte();
  return choice < 240 ? 10.0 + choice % 23 : input.number();
}

void streamOutput(Input& input, std::string_view script) {
  brindlewort::CScriptOutput output;
  int bars = 0;
  output.InitialiseTransientStore(input.byte());
  output.ProcessScripData(script);
  for (int call = 0; call < kMostCalls && !input.empty(); ++call) {
    const double close = price(input);
    switch (input.byte() % 12) {
      case 0:
        output.ProcessScripData(script);
        break;
      case 1:
        output.SetDataRetrieveMode(101 + input.byte() % 3);
        break;
      case 2:
        output.AddOrRemoveBasicVectorSeries("FED", input.byte() % 2 ? -987654321 : 100);
        break;
      case 3:
        output.UpdateBasicVectorData("FED", close, input.byte() % 2 ? 11 : 22);
        break;
      case 4:
        output.EditRecord_New(bars, close, close + 1, close - 1, close, 100);
        break;
      case 5:
        output.EditJDate_New(bars, input.byte());
        break;
      case 6:
        output.GetScriptOutput_New(script, input.byte() - 2, "");
        break;
      case 7:
        output.GetScriptOutput_PTR(script, 0, "A");
        break;
      case 8:
        output.GetCustomIndFromCondition_NEW(script);
        break;
      case 9:
        if (input.byte() == 0) output.ClearRecords();
        break;
      case 10:
        if (input.byte() == 0) output.InitialiseTransientStore(input.byte());
        break;
      default:
        output.AppendRecord_New(++bars, close, close + 1, close - 1, close, 100);
        break;
    }
  }
}

void streamAlert(Input& input, std::string_view script) {
  brindlewort::platform::AlertCount count("/brindlewort-fuzz");
  brindlewort::CAlert alert(count);
  int bars = 0;
  if (input.byte() % 4) alert.InitialiseTransientStore(input.byte());
  alert.ProcessScripData(script);
  alert.setAlertScript(script);
  for (int call = 0; call < kMostCalls && !input.empty(); ++call) {
    const double close = price(input);
    switch (input.byte() % 8) {
      case 0:
        alert.EditRecord_Opt(bars, close, close + 1, close - 1, close, 100, bars);
        break;
      case 1:
        alert.EditRecord(bars, close, close + 1, close - 1, close, 100, bars);
        break;
      case 2:
        ++bars;
        alert.AppendRecord(bars, close, close + 1, close - 1, close, 100, bars);
        break;
      case 3:
        alert.Evaluate(script);
        break;
      case 4:
        if (input.byte() == 0) alert.ClearRecords();
        break;
      default:
        ++bars;
        alert.AppendRecord_Opt(bars, close, close + 1, close - 1, close, 100, bars);
        break;
    }
  }
}

}  // namespace

/// The first byte is the length of the script, which follows; the rest are the host's calls.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  const std::string_view script = input.text(static_cast<std::size_t>(input.byte()));
  if (input.byte() % 2) {
    streamOutput(input, script);
  } else {
    streamAlert(input, script);
  }
  return 0;
}
