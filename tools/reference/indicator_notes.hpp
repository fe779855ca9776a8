#pragma once

#include <span>

#include "functions/function_notes.hpp"

namespace brindlewort::reference {

/// What the headers of src/indicators say of each operation, read from them while building.
std::span<const OperationNotes> indicatorNotes();

}  // namespace brindlewort::reference
