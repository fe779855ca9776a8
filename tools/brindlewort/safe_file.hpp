#pragma once

#include <cstdio>
#include <string>
#include <string_view>

/// Files that the tool makes.
namespace brindlewort::tool {

/// Makes a file of a text, or replaces one: at any failure, and at any end of the tool, the path holds either
/// all of the new text or what it held before. The text is written under another name in the same folder
/// first, which then takes the path. A link stays a link: the file that it leads to is replaced. What is no
/// plain file, as a pipe, is written straight. Throws a ToolError.
void replaceFile(const std::string& path, std::string_view text);

/// True when both paths lead to one file that is there, by whatever names and links.
bool isSameFile(const std::string& path, const std::string& other);
/// True when the path leads to the file that `stream` reads or writes.
bool isSameFile(const std::string& path, std::FILE* stream);

}  // namespace brindlewort::tool
