#pragma once

#include <span>
#include <string>
#include <string_view>

namespace brindlewort {

/// A long name of a function and the short name that it becomes: one in scripts that give output, one in
/// those that are validated. Empty where the long name stays.
struct LongName {
  std::string_view name;
  std::string_view inOutput;
  std::string_view inValidation;
};

/// In the order of replacement. Rows repeat and overlap, and an earlier one may take a piece out of a later
/// name.
std::span<const LongName> longNames();

/// Replaces the long names in an upper-cased text by those of a column, anywhere in the text: one pass for
/// each row, in their order. "NEGATIVEVOLUMEINDEX" becomes "PVI" for output,
/// "COMPARATIVERELATIVESTRENGTHINDEX" "COMPARATIVERSI" for both.
std::string withShortNames(std::string_view text, std::string_view LongName::*column);

}  // namespace brindlewort
