#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// What somebody is told who asked for a name that is not there.
namespace brindlewort::tool {

/// The names that somebody who typed `wanted` may have meant: the nearest first, at most `most`. Case makes
/// no difference. A name is near when few slips lie between the two (a letter more, less, wrong, or two that
/// have changed places), or when one is part of the other.
std::vector<std::string_view> nearNames(std::span<const std::string_view> names, std::string_view wanted,
                                        std::size_t most);

/// How many slips lie between two texts.
std::size_t slipsBetween(std::string_view a, std::string_view b);

/// "There is no <kind> <wanted>." and the names near it, in lines. `all` is a sentence that tells where all
/// of them are listed. Without a line end.
std::string unknownName(std::string_view kind, std::string_view wanted,
                        std::span<const std::string_view> names, std::string_view all);

/// The names with ", " between, in lines of at most `width` characters, each behind `indent`.
std::string inLines(std::span<const std::string_view> names, std::string_view indent, std::size_t width);

/// The width of what the tool tells in lines.
inline constexpr std::size_t kLineWidth = 100;

}  // namespace brindlewort::tool
