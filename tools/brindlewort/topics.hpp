#pragma once

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

}  // namespace brindlewort::tool
