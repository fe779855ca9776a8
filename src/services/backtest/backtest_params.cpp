#include "services/backtest/backtest_params.hpp"

#include <string>
#include <vector>

#include "series/numbers.hpp"

namespace brindlewort {

namespace {

/// The number of an item "name=value". The name is taken away wherever it stands with its sign behind it; an
/// item without a sign is all value. The name holds no sign, so it can only end a piece between two signs:
/// one pass, however long the name.
double itemValue(std::string_view item) {
  const std::string_view name = item.substr(0, item.find('='));
  std::string rest;
  std::size_t at = 0;
  for (std::size_t sign; (sign = item.find('=', at)) != std::string_view::npos; at = sign + 1) {
    std::string_view piece = item.substr(at, sign + 1 - at);
    if (piece.substr(0, piece.size() - 1).ends_with(name)) piece.remove_suffix(name.size() + 1);
    rest.append(piece);
  }
  return parseDouble(rest.append(item.substr(at)));
}

std::vector<double> itemValues(std::string_view text) {
  std::vector<double> values;
  for (std::size_t end; (end = text.find(';')) != std::string_view::npos; text.remove_prefix(end + 1)) {
    values.push_back(itemValue(text.substr(0, end)));
  }
  return values;
}

}  // namespace

BacktestParams ParseBacktestParams(std::string_view text) {
  const std::vector<double> values = itemValues(text);
  if (values.size() != 4) return {};
  return {values[0], values[1], values[2], values[3]};
}

}  // namespace brindlewort
