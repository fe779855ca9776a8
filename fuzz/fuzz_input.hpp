#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace brindlewort::fuzz {

/// A fuzzer's bytes, taken one value after the other; zeros when they are used up.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : data_(data), left_(size) {}

  bool empty() const { return left_ == 0; }

  int byte() {
    if (left_ == 0) return 0;
    --left_;
    return *data_++;
  }

  /// Any double, those that are no numbers among them.
  double number() {
    double value = 0.0;
    const std::size_t taken = std::min(left_, sizeof value);
    std::memcpy(&value, data_, taken);
    skip(taken);
    return value;
  }

  /// At most so many characters.
  std::string_view text(std::size_t length) {
    const std::string_view text(reinterpret_cast<const char*>(data_), std::min(length, left_));
    skip(text.size());
    return text;
  }
  std::string_view rest() { return text(left_); }

 private:
  void skip(std::size_t bytes) {
    data_ += bytes;
    left_ -= bytes;
  }

  const std::uint8_t* data_;
  std::size_t left_;
};

}  // namespace brindlewort::fuzz
