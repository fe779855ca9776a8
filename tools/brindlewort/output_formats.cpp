#include "output_formats.hpp"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <optional>
#include <string_view>
#include <vector>

#include "series/julian_date.hpp"
#include "series/null_value.hpp"
#include "series/numbers.hpp"

namespace brindlewort::tool {
namespace {

using Json = nlohmann::json;

constexpr std::string_view kMidnight = " 00:00:00";
constexpr std::string_view kBetweenColumns = "  ";
constexpr int kDecimals = 4;

/// Nothing for a missing value, an infinity or a non-number.
std::optional<double> shown(std::optional<double> value) {
  return value && !isNull(*value) && IsFiniteDouble(*value) ? value : std::nullopt;
}

std::optional<double> shownValue(const OutputTable& table, std::size_t column, std::size_t bar) {
  return shown(table.at(column, bar));
}

std::string dateText(const OutputTable& table, std::size_t bar) {
  return DateTimeText(table.bars[bar].JDate);
}

// ---- JSON ----

std::string dump(const Json& json) {
  return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

Json jsonNumber(std::optional<double> value) {
  return value ? Json(*value) : Json(nullptr);
}

template <typename Cell>
Json columnJson(const OutputTable& table, Cell cell) {
  Json::array_t rows;
  for (std::size_t bar = table.firstBar; bar < table.bars.size(); ++bar) rows.push_back(cell(bar));
  return rows;
}

// ---- table ----

struct TableColumn {
  std::string name;
  std::size_t width;
};

void appendRightAligned(std::string& line, std::string_view text, std::size_t width) {
  line.append(width > text.size() ? width - text.size() : 0, ' ').append(text);
}

void appendLine(std::string& text, std::string& line) {
  line.erase(line.find_last_not_of(' ') + 1);
  text += line;
  text += '\n';
  line.clear();
}

std::string numberText(std::optional<double> value) {
  if (!value) return {};
  return *value == 0.0 ? "0.0000" : FormatTruncated(*value, kDecimals);
}

bool allAtMidnight(const OutputTable& table) {
  for (std::size_t bar = table.firstBar; bar < table.bars.size(); ++bar) {
    if (!dateText(table, bar).ends_with(kMidnight)) return false;
  }
  return true;
}

std::size_t columnWidth(const OutputTable& table, std::size_t column) {
  std::size_t width = table.columns[column].name.size();
  for (std::size_t bar = table.firstBar; bar < table.bars.size(); ++bar) {
    width = std::max(width, numberText(shownValue(table, column, bar)).size());
  }
  return width;
}

}  // namespace

std::string withUnixLineEnds(std::string text) {
  std::erase(text, '\r');
  return text;
}

std::string toJson(const OutputTable& table) {
  std::string text = "{\"Date\":";
  text += dump(columnJson(table, [&](std::size_t bar) { return Json(dateText(table, bar)); }));
  text += ",\n\"JDate\":";
  text += dump(columnJson(table, [&](std::size_t bar) { return Json(table.bars[bar].JDate); }));
  for (std::size_t column = 0; column < table.columns.size(); ++column) {
    text += ",\n" + dump(Json(table.columns[column].name)) + ':';
    text +=
        dump(columnJson(table, [&](std::size_t bar) { return jsonNumber(shownValue(table, column, bar)); }));
  }
  return text + "}\n";
}

std::string toJsonLine(double jDate, std::span<const NamedValue> values) {
  std::string text = "{\"Date\":" + dump(Json(DateTimeText(jDate))) + ",\"JDate\":" + dump(Json(jDate));
  for (const NamedValue& entry : values) {
    text += ',' + dump(Json(entry.name)) + ':' + dump(jsonNumber(shown(entry.value)));
  }
  return text + "}\n";
}

std::string toAlignedTable(const OutputTable& table) {
  const std::size_t timeSize = allAtMidnight(table) ? kMidnight.size() : 0;
  const auto dateCell = [&](std::size_t bar) {
    std::string date = dateText(table, bar);
    date.resize(date.size() - timeSize);
    return date;
  };

  std::size_t dateWidth = std::string_view("Date").size();
  for (std::size_t bar = table.firstBar; bar < table.bars.size(); ++bar) {
    dateWidth = std::max(dateWidth, dateCell(bar).size());
  }
  std::vector<TableColumn> columns;
  for (std::size_t column = 0; column < table.columns.size(); ++column) {
    columns.push_back({table.columns[column].name, columnWidth(table, column)});
  }

  std::string text;
  std::string line = "Date";
  line.append(dateWidth - line.size(), ' ');
  std::string rule(dateWidth, '-');
  for (const TableColumn& column : columns) {
    appendRightAligned(line.append(kBetweenColumns), column.name, column.width);
    rule.append(kBetweenColumns).append(column.width, '-');
  }
  appendLine(text, line);
  appendLine(text, rule);
  for (std::size_t bar = table.firstBar; bar < table.bars.size(); ++bar) {
    const std::string date = dateCell(bar);
    line.append(date).append(dateWidth - date.size(), ' ');
    for (std::size_t column = 0; column < columns.size(); ++column) {
      appendRightAligned(line.append(kBetweenColumns), numberText(shownValue(table, column, bar)),
                         columns[column].width);
    }
    appendLine(text, line);
  }
  return text;
}

}  // namespace brindlewort::tool
