#pragma once

#include <string>

namespace brindlewort::tool {

/// What the validate command prints about a script with this fault, or with none: one line, as JSON when
/// wanted.
std::string validationAnswer(const std::string& fault, bool asJson);

}  // namespace brindlewort::tool
