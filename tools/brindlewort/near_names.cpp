#include "near_names.hpp"

#include <algorithm>

#include "series/text.hpp"

namespace brindlewort::tool {
namespace {

constexpr std::size_t kFewestShared = 3;  ///< characters that a part must have to say something
constexpr std::size_t kLongestName = 64;  ///< what is longer is no slip of a name
constexpr std::size_t kMostNear = 8;

/// None in a letter, one in a short word, three in a long one.
std::size_t slipsAllowed(std::size_t size) {
  return size <= 1 ? 0 : size <= 3 ? 1 : size <= 7 ? 2 : 3;
}

bool oneIsPartOfTheOther(std::string_view a, std::string_view b) {
  return std::min(a.size(), b.size()) >= kFewestShared && (contains(a, b) || contains(b, a));
}

}  // namespace

std::size_t slipsBetween(std::string_view a, std::string_view b) {
  // Rows of the table of distances between the beginnings of both: the one at hand and the two before it.
  std::vector<std::size_t> row(b.size() + 1), before(b.size() + 1), beforeThat(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    beforeThat.swap(before);
    before.swap(row);
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t wrong = a[i - 1] == b[j - 1] ? 0 : 1;
      row[j] = std::min({before[j] + 1, row[j - 1] + 1, before[j - 1] + wrong});
      const bool changedPlaces = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (changedPlaces) row[j] = std::min(row[j], beforeThat[j - 2] + 1);
    }
  }
  return row[b.size()];
}

std::vector<std::string_view> nearNames(std::span<const std::string_view> names, std::string_view wanted,
                                        std::size_t most) {
  struct Near {
    std::size_t slips;
    std::string_view name;
  };
  const std::string upper = upperCase(trim(wanted));
  if (upper.empty() || upper.size() > kLongestName) return {};
  const std::size_t allowed = slipsAllowed(upper.size());
  std::vector<Near> found;
  for (const std::string_view name : names) {
    const std::size_t slips = slipsBetween(upperCase(name), upper);
    if (slips <= allowed || oneIsPartOfTheOther(upperCase(name), upper)) found.push_back({slips, name});
  }
  std::ranges::stable_sort(found, {}, &Near::slips);
  found.resize(std::min(found.size(), most));
  std::vector<std::string_view> result;
  for (const Near& near : found) result.push_back(near.name);
  return result;
}

std::string unknownName(std::string_view kind, std::string_view wanted,
                        std::span<const std::string_view> names, std::string_view all) {
  std::string text = "There is no ";
  text.append(kind).append(" ").append(wanted).append(".");
  const std::vector<std::string_view> near = nearNames(names, wanted, kMostNear);
  text += near.empty() ? " " : " Near it are:\n" + inLines(near, "  ", kLineWidth);
  return text.append(all);
}

std::string inLines(std::span<const std::string_view> names, std::string_view indent, std::size_t width) {
  std::string text;
  std::size_t used = 0;
  for (std::size_t i = 0; i < names.size(); ++i) {
    const std::string_view name = names[i];
    const bool last = i + 1 == names.size();
    const std::size_t size = name.size() + (last ? 0 : 1);  // with its comma
    if (used != 0 && used + 1 + size > width) {
      text += '\n';
      used = 0;
    }
    text += used == 0 ? indent : " ";
    used += (used == 0 ? indent.size() : 1) + size;
    text += name;
    text += last ? "\n" : ",";
  }
  return text;
}

}  // namespace brindlewort::tool
