// The smallest host in C++: bars in, a script's series out.
//
//   g++ -std=c++17 -Iinclude examples/embed.cpp -Lbuild/release/lib -lbrindlewort
//   -Wl,-rpath,build/release/lib

#include <brindlewort/brindlewort.hpp>
#include <iostream>

int main() {
  brindlewort::CScriptOutput output;
  output.OnScriptError([](const std::string& description) { std::cerr << description << '\n'; });

  for (int day = 0; day < 12; ++day) {
    const double price = 100.0 + day;
    output.AppendRecord(output.ToJulianDate(2024, 1, 1 + day), price, price + 1.0, price - 1.0, price + 0.5,
                        1000);
  }

  const char script[] =
      "SET AVERAGE = SMA(CLOSE, 3)\r\n"
      "CLOSE > AVERAGE";
  const std::optional<std::string> text = output.GetScriptOutput(script, 0, "AVERAGE");
  if (!text) return 1;
  std::cout << *text;
}
