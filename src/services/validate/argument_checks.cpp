#include "services/validate/argument_checks.hpp"

#include <algorithm>

#include "series/text.hpp"
#include "services/validate/name_tables.hpp"
#include "services/validate/script_text.hpp"

namespace brindlewort::validation {

namespace {

/// In the order of looking.
constexpr std::string_view kWithoutInputs[] = {"HML", "PNBT", "PNBB", "WAD", "CSP", "MP", "TP", "WC", "TR"};

/// No call of this function has anything in its brackets. A bracket that nothing closes goes to the end.
bool callsHaveNoInput(std::string_view script, std::string_view name) {
  const std::string call = std::string(name) + "(";
  for (std::size_t at = script.find(call); at != std::string_view::npos;) {
    const std::size_t inner = at + call.size();
    if (at == 0 || isSeparator(script[at - 1])) {
      const std::size_t close = std::min(script.find(')', inner), script.size());
      if (!trimBlanks(script.substr(inner, close - inner)).empty()) return false;
    }
    at = script.find(call, inner);
  }
  return true;
}

}  // namespace

Fault CheckArguments(std::string_view script) {
  const std::size_t last = script.rfind(')');
  if (last == std::string_view::npos) return {};
  const std::string_view tail = trimBlanks(script.substr(last + 1));
  if (tail.empty() || contains(tail, "(")) return {};
  if (std::any_of(operators().begin(), operators().end(),
                  [&](std::string_view op) { return contains(tail, op); })) {
    return {};
  }
  return notValid(tail);
}

Fault CheckNoInputs(std::string_view script) {
  for (std::string_view name : kWithoutInputs) {
    if (!callsHaveNoInput(script, name)) {
      return "Inputs are not allowed for " + inQuotes(LongNameOf(name));
    }
  }
  return {};
}

}  // namespace brindlewort::validation
