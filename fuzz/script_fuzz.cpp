// Any script over any bars: a text, or a defined result; never a crash, a hang or a leak.

#include <cstdint>
#include <cstring>
#include <string_view>

#include "services/output/script_output.hpp"

/// The first bytes choose the bars, the last bars may hold any double, and the rest is the script.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 26) return 0;
  const int bars = data[0] % 70;
  const std::int32_t mapCount = static_cast<std::int32_t>(data[1] % 6) - 1;
  double odd[3];
  std::memcpy(odd, data + 2, sizeof odd);

  brindlewort::CScriptOutput output;
  for (int i = 0; i < bars; ++i) {
    const double close = i % 17 == 5 ? odd[i % 3] : 10.0 + (i * 7) % 11;
    output.AppendRecord(2444300.5 + i, close - 0.5, close + 1.0, close - 1.0, close, i * 100);
  }
  output.GetScriptOutput(std::string_view(reinterpret_cast<const char*>(data) + 26, size - 26), mapCount, "");
  return 0;
}
