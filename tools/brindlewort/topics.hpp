#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace brindlewort::tool {

/// What is known about a name of the script language, as text: its manual page, or the section of the
/// reference page for a function without one, for a word or a sign. Empty for an unknown name.
std::string topicText(std::string_view name);

/// All names that topicText() knows, by the alphabet.
std::vector<std::string_view> topicNames();

/// The names that have a manual page of their own, by the alphabet.
std::vector<std::string_view> pageNames();

/// The words and signs of the language that are no functions, subject by subject.
std::vector<std::string_view> wordNames();

/// The names that somebody who typed `wanted` may have meant: the nearest first, at most `most`. Case makes
/// no difference. A name is near when few slips lie between the two (a letter more, less, wrong, or two that
/// have changed places), or when one is part of the other.
std::vector<std::string_view> nearNames(std::span<const std::string_view> names, std::string_view wanted,
                                        std::size_t most);

/// How many slips lie between two texts.
std::size_t slipsBetween(std::string_view a, std::string_view b);

/// The names with ", " between, in lines of at most `width` characters, each behind `indent`.
std::string inLines(std::span<const std::string_view> names, std::string_view indent, std::size_t width);

}  // namespace brindlewort::tool
