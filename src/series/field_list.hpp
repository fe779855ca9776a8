#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "series/field.hpp"

namespace brindlewort {

/// The names by which indicators find their inputs.
inline constexpr std::string_view kDateField = "D";
inline constexpr std::string_view kOpenField = "O";
inline constexpr std::string_view kHighField = "H";
inline constexpr std::string_view kLowField = "L";
inline constexpr std::string_view kCloseField = "C";
inline constexpr std::string_view kVolumeField = "V";

/// Lists of fields as the indicators take and give them; the caller owns the list.
namespace CFeedkit {

/// Adds a field of size + 1 rows, all 0.0 (none for a size of -1 or below), at the end of the list. Nothing
/// looks for an equal name: the first of two wins every search. The pointer is valid until the next field is
/// added.
Field* addField(std::vector<Field>& fields, std::string_view name, std::int32_t size);

/// The first field of exactly this name, or null.
Field* findField(std::vector<Field>& fields, std::string_view name);
const Field* findField(const std::vector<Field>& fields, std::string_view name);

/// Rows of the field of closes; 0 when there is none.
std::size_t recordCount(const std::vector<Field>& fields);

/// True when the fields have the length of the first. The last field is not compared.
bool haveEqualLengths(const std::vector<Field>& fields);

}  // namespace CFeedkit

}  // namespace brindlewort
