#pragma once

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

#include "line.hpp"

namespace brindlewort::fuzz {

/// The scripts of a play, by number.
class Scripts {
 public:
  static constexpr std::size_t kCount = 4;

  /// Line ends within a line of the input are single carriage returns; scripts have them with a line feed.
  void set(std::size_t i, std::string_view text) {
    std::string script;
    for (char c : text) {
      if (c == '\v') c = '\n';
      script.push_back(c);
      if (c == '\r') script.push_back('\n');
    }
    scripts_[i % kCount] = std::move(script);
  }
  const std::string& of(Line& line) const { return scripts_[line.choice(kCount)]; }

 private:
  std::array<std::string, kCount> scripts_ = {"CLOSE > OPEN", "SET A = SMA(CLOSE, 3)\r\nA > 1"};
};

/// Random numbers of scripts begin with the clock's second: two runs need not agree.
inline bool dependsOnClock(std::string_view script) {
  std::string upper(script);
  std::transform(upper.begin(), upper.end(), upper.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return upper.find("RND") != std::string::npos;
}

}  // namespace brindlewort::fuzz
