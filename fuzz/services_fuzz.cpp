// Backtests and validations of any scripts: a text, or a defined result; never a crash, a hang or a leak.

#include <cstdint>
#include <string_view>

#include "fuzz_input.hpp"
#include "services/backtest/backtest.hpp"
#include "services/validate/validate.hpp"

/// The first byte chooses what is called, three more the bars and where the scripts part.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  brindlewort::fuzz::Input input(data, size);
  const int choice = input.byte() % 4;
  if (choice == 0) {
    brindlewort::CValidate validate;
    const int version = input.byte() - 1;
    const std::string_view script = input.rest();
    validate.Validate(script, version);
    validate.Constant(script.substr(0, 20));
    return 0;
  }
  const int bars = input.byte() % 70;
  const double odd = input.number();
  brindlewort::CBacktest backtest;
  backtest.fixedSeed = 1;
  for (int i = 0; i < bars; ++i) {
    const double close = i % 17 == 5 ? odd : 10.0 + (i * 7) % 11;
    backtest.AppendRecord(2444300.5 + i, close - 0.5, close + 1.0, close - 1.0, close, i * 100);
  }
  const double slip = choice == 3 ? odd : 0.1 * (choice - 1);
  const std::string_view rules = input.text(static_cast<std::size_t>(input.byte() % 40));
  const std::string_view buy = input.text(static_cast<std::size_t>(input.byte()));
  const std::string_view sell = input.text(static_cast<std::size_t>(input.byte()));
  const std::string_view exits = input.rest();
  if (choice == 1) {
    backtest.Backtest_New(buy, sell, exits, exits, slip, rules);
  } else {
    backtest.Backtest(buy, sell, exits, exits, slip, rules);
  }
  return 0;
}
