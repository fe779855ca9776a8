#pragma once

#include <functional>
#include <set>
#include <string>
#include <string_view>

#include "services/validate/name_tables.hpp"

namespace brindlewort::validation {

/// The words that one script may use: the known names and those that its SET statements make.
class ScriptNames {
 public:
  void addSetName(std::string_view name) { setNames_.emplace(name); }
  bool knows(std::string_view word) const { return isKnownName(word) || setNames_.contains(word); }

 private:
  std::set<std::string, std::less<>> setNames_;
};

}  // namespace brindlewort::validation
