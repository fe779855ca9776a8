#include "series/field_list.hpp"

#include <algorithm>
#include <string>
#include <utility>

namespace brindlewort::CFeedkit {

Field* addField(std::vector<Field>& fields, std::string_view name, std::int32_t size) {
  const std::int64_t rows = std::max<std::int64_t>(0, std::int64_t{size} + 1);
  fields.push_back({std::string(name), Series(static_cast<std::size_t>(rows), 0.0)});
  return &fields.back();
}

const Field* findField(const std::vector<Field>& fields, std::string_view name) {
  const auto found =
      std::find_if(fields.begin(), fields.end(), [name](const Field& field) { return field.name == name; });
  return found == fields.end() ? nullptr : &*found;
}

Field* findField(std::vector<Field>& fields, std::string_view name) {
  return const_cast<Field*>(findField(std::as_const(fields), name));
}

std::size_t recordCount(const std::vector<Field>& fields) {
  const Field* close = findField(fields, kCloseField);
  return close ? close->values.size() : 0;
}

bool haveEqualLengths(const std::vector<Field>& fields) {
  for (std::size_t i = 1; i + 1 < fields.size(); ++i) {
    if (fields[i].values.size() != fields[0].values.size()) return false;
  }
  return true;
}

}  // namespace brindlewort::CFeedkit
