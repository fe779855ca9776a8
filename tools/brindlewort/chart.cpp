#include "chart.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

#include "chart_scale.hpp"

namespace brindlewort::tool {
namespace {

// Places in the picture, in its own units (pixels at its natural size).
constexpr double kWidth = 1200.0;
constexpr double kHeight = 735.0;
constexpr double kLeft = 80.0;
constexpr double kRight = 1180.0;

struct Panel {
  double top;
  double bottom;
  std::string_view name;
};
constexpr Panel kPricePanel = {86.0, 500.0, "Price"};
constexpr Panel kProfitPanel = {540.0, 700.0, "Running profit"};
constexpr double kTitleLine = 30.0;
constexpr double kLegendLine = 58.0;
constexpr double kDateLine = 718.0;

constexpr int kPriceTicks = 8;
constexpr int kProfitTicks = 4;
constexpr std::size_t kMostDates = 12;
constexpr double kLetterWidth = 6.6;  // of the axes' letters, at most
constexpr std::size_t kPricePoints = 3000;
constexpr std::size_t kProfitPoints = 1000;
constexpr std::size_t kManyMarks = 400;  // from so many on, marks would hide the prices,
constexpr double kMarkDistance = 8.0;    // and those of one kind stand at least so far apart

/// How each kind is drawn: shape and colour tell the kinds apart, and each does it alone. The colours are
/// told apart by people who do not see all of them. Exits are larger, so that they are seen behind an entry
/// at the same place.
struct MarkStyle {
  std::string_view name;   ///< in the legend
  std::string_view id;     ///< of its shape in the picture
  std::string_view shape;  ///< around 0,0
  std::string_view paint;
};
constexpr std::array<MarkStyle, kMarkKinds> kMarkStyles = {{
    {"long entry", "long-entry", "M0,-6 L5.5,4.5 L-5.5,4.5 Z", "fill=\"#0072b2\" stroke=\"#ffffff\""},
    {"long exit", "long-exit", "M-6,-6 H6 V6 H-6 Z", "fill=\"none\" stroke=\"#0072b2\" stroke-width=\"2\""},
    {"short entry", "short-entry", "M0,6 L5.5,-4.5 L-5.5,-4.5 Z", "fill=\"#d55e00\" stroke=\"#ffffff\""},
    {"short exit", "short-exit", "M0,-8 L8,0 L0,8 L-8,0 Z",
     "fill=\"none\" stroke=\"#d55e00\" stroke-width=\"2\""},
}};

constexpr std::string_view kPriceColour = "#444444";
constexpr std::string_view kProfitColour = "#117733";
constexpr std::string_view kGrid = "stroke=\"#e6e6e6\"";
constexpr std::string_view kFrame = "fill=\"none\" stroke=\"#999999\"";
constexpr std::string_view kZero = "stroke=\"#999999\" stroke-dasharray=\"4 3\"";

std::string number(double value) {
  std::array<char, 400> buffer;
  const auto result =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::fixed, 1);
  std::string text(buffer.data(), result.ptr);
  if (text.ends_with(".0")) text.resize(text.size() - 2);
  return text == "-0" ? "0" : text;
}

std::string escaped(std::string_view text) {
  std::string result;
  for (const char c : text) {
    switch (c) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '"':
        result += "&quot;";
        break;
      default:
        result += static_cast<unsigned char>(c) < 0x20 ? ' ' : c;
    }
  }
  return result;
}

/// Where bars and values of one panel stand.
class Scale {
 public:
  Scale(std::size_t bars, Range range, const Panel& panel) : bars_(bars), range_(range), panel_(panel) {}

  double x(double bar) const {
    return bars_ < 2 ? (kLeft + kRight) / 2.0
                     : kLeft + bar / static_cast<double>(bars_ - 1) * (kRight - kLeft);
  }
  double y(double value) const {
    const double share = (value - range_.low) / (range_.high - range_.low);
    return panel_.bottom - share * (panel_.bottom - panel_.top);
  }
  const Range& range() const { return range_; }
  const Panel& panel() const { return panel_; }

 private:
  std::size_t bars_;
  Range range_;
  const Panel& panel_;
};

void appendText(std::string& svg, double x, double y, std::string_view attributes, std::string_view text) {
  svg += "<text x=\"" + number(x) + "\" y=\"" + number(y) + "\"";
  if (!attributes.empty()) svg.append(" ").append(attributes);
  svg += ">" + escaped(text) + "</text>\n";
}

void appendLine(std::string& svg, double x1, double y1, double x2, double y2, std::string_view attributes) {
  svg += "<line x1=\"" + number(x1) + "\" y1=\"" + number(y1) + "\" x2=\"" + number(x2) + "\" y2=\"" +
         number(y2) + "\" ";
  svg.append(attributes).append("/>\n");
}

void appendPolyline(std::string& svg, std::string_view id, std::span<const Point> points,
                    std::string_view colour) {
  svg.append("<polyline id=\"").append(id).append("\" fill=\"none\" stroke=\"").append(colour);
  svg += "\" stroke-width=\"1.5\" stroke-linejoin=\"round\" points=\"";
  for (const Point& point : points) {
    if (&point != &points.front()) svg += ' ';
    svg += number(point.x) + ',' + number(point.y);
  }
  svg += "\"/>\n";
}

void appendValueAxis(std::string& svg, const Scale& scale, int ticks) {
  const Panel& panel = scale.panel();
  for (const Tick& tick : valueTicks(scale.range(), ticks)) {
    const double y = scale.y(tick.at);
    appendLine(svg, kLeft, y, kRight, y, kGrid);
    appendText(svg, kLeft - 8.0, y + 4.0, "text-anchor=\"end\"", tick.label);
  }
  svg += "<rect x=\"" + number(kLeft) + "\" y=\"" + number(panel.top) + "\" width=\"" +
         number(kRight - kLeft) + "\" height=\"" + number(panel.bottom - panel.top) + "\" ";
  svg.append(kFrame).append("/>\n");
  const double middle = (panel.top + panel.bottom) / 2.0;
  appendText(svg, 20.0, middle,
             "font-size=\"13\" text-anchor=\"middle\" transform=\"rotate(-90 20 " + number(middle) + ")\"",
             panel.name);
}

/// A line through both panels at each date, with the date below where there is room for it.
void appendDateAxis(std::string& svg, const Scale& scale, std::span<const double> dates) {
  double free = kLeft;  // to the right of it no date stands yet
  for (const Tick& tick : dateTicks(dates, kMostDates)) {
    const double x = scale.x(tick.at);
    for (const Panel& panel : {kPricePanel, kProfitPanel}) {
      appendLine(svg, x, panel.top, x, panel.bottom, kGrid);
    }
    const double half = static_cast<double>(tick.label.size()) * kLetterWidth / 2.0;
    const double middle = std::clamp(x, kLeft, kRight + 14.0 - half);
    if (middle - half < free - 40.0) continue;
    appendText(svg, middle, kDateLine, "text-anchor=\"middle\"", tick.label);
    free = middle + half + 50.0;
  }
}

std::vector<Point> pricePoints(const BacktestChart& chart, const Scale& scale) {
  std::vector<Point> points;
  points.reserve(chart.closes.size());
  for (std::size_t bar = 0; bar < chart.closes.size(); ++bar) {
    if (!hasPlace(chart.closes[bar])) continue;
    points.push_back({scale.x(static_cast<double>(bar)), scale.y(chart.closes[bar])});
  }
  return thinnedOut(points, kPricePoints);
}

/// The profit stays as it is until the bar of the next step.
std::vector<Point> profitPoints(const BacktestChart& chart, const Scale& scale) {
  std::vector<Point> points = {{scale.x(0.0), scale.y(0.0)}};
  for (const ChartStep& step : chart.steps) {
    if (!hasPlace(step.total)) continue;
    const double x = scale.x(static_cast<double>(step.bar));
    points.push_back({x, points.back().y});
    points.push_back({x, scale.y(step.total)});
  }
  const std::size_t bars = chart.closes.size();
  if (bars > 1) points.push_back({scale.x(static_cast<double>(bars - 1)), points.back().y});
  return thinnedOut(points, kProfitPoints);
}

bool thinsMarks(const BacktestChart& chart) {
  return chart.marks.size() >= kManyMarks;
}

void appendMarks(std::string& svg, const BacktestChart& chart, const Scale& scale) {
  const double distance = thinsMarks(chart) ? kMarkDistance : 0.0;
  std::array<double, kMarkKinds> last;
  last.fill(-kWidth);
  for (const ChartMark& mark : chart.marks) {
    const std::size_t kind = static_cast<std::size_t>(mark.kind);
    const double x = scale.x(static_cast<double>(mark.bar));
    if (x - last[kind] < distance || !hasPlace(mark.price)) continue;
    last[kind] = x;
    svg.append("<use xlink:href=\"#").append(kMarkStyles[kind].id).append("\" x=\"");
    svg += number(x) + "\" y=\"" + number(scale.y(mark.price)) + "\"/>\n";
  }
}

void appendShapes(std::string& svg) {
  svg += "<defs>\n";
  for (const MarkStyle& style : kMarkStyles) {
    svg.append("<path id=\"").append(style.id).append("\" d=\"").append(style.shape).append("\" ");
    svg.append(style.paint).append("/>\n");
  }
  svg += "</defs>\n";
}

void appendLegend(std::string& svg, const BacktestChart& chart) {
  double x = kLeft;
  const auto entry = [&](std::string_view name) {
    appendText(svg, x + 22.0, kLegendLine + 4.0, "", name);
    x += 22.0 + static_cast<double>(name.size()) * kLetterWidth + 26.0;
  };
  const auto line = [&](std::string_view name, std::string_view colour) {
    appendLine(svg, x - 2.0, kLegendLine, x + 16.0, kLegendLine,
               "stroke=\"" + std::string(colour) + "\" stroke-width=\"2\"");
    entry(name);
  };
  svg += "<g id=\"legend\">\n";
  line("close", kPriceColour);
  for (const MarkStyle& style : kMarkStyles) {
    svg.append("<use xlink:href=\"#").append(style.id).append("\" x=\"");
    svg += number(x + 7.0) + "\" y=\"" + number(kLegendLine) + "\"/>\n";
    entry(style.name);
  }
  line("running profit of closed trades", kProfitColour);
  if (thinsMarks(chart)) {
    appendText(svg, x, kLegendLine + 4.0, "",
               "(" + std::to_string(chart.marks.size()) + " entries and exits, not all drawn)");
  }
  svg += "</g>\n";
}

Range priceRange(const BacktestChart& chart) {
  std::vector<double> values(chart.closes.begin(), chart.closes.end());
  for (const ChartMark& mark : chart.marks) values.push_back(mark.price);
  return rangeOf(values);
}

Range profitRange(const BacktestChart& chart) {
  std::vector<double> values = {0.0};
  for (const ChartStep& step : chart.steps) values.push_back(step.total);
  return rangeOf(values);
}

void appendHead(std::string& svg, const std::string& title) {
  const std::string size = number(kWidth) + ' ' + number(kHeight);
  svg += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  svg +=
      "<svg xmlns=\"http://www.w3.org/2000/svg\" xmlns:xlink=\"http://www.w3.org/1999/xlink\" "
      "version=\"1.1\" "
      "viewBox=\"0 0 " +
      size + "\" width=\"" + number(kWidth) + "\" height=\"" + number(kHeight) +
      "\" font-family=\"sans-serif\" font-size=\"12\" fill=\"#333333\">\n";
  svg += "<title>" + escaped(title) + "</title>\n";
  svg += "<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n";
}

}  // namespace

std::string toSvg(const BacktestChart& chart) {
  const std::size_t bars = chart.closes.size();
  const Scale price(bars, priceRange(chart), kPricePanel);
  const Scale profit(bars, profitRange(chart), kProfitPanel);

  std::string svg;
  appendHead(svg, chart.title);
  appendShapes(svg);
  appendText(svg, kLeft, kTitleLine, "font-size=\"18\" font-weight=\"bold\"", chart.title);
  appendLegend(svg, chart);
  appendDateAxis(svg, price, chart.dates);
  appendValueAxis(svg, price, kPriceTicks);
  appendValueAxis(svg, profit, kProfitTicks);
  appendLine(svg, kLeft, profit.y(0.0), kRight, profit.y(0.0), kZero);
  appendPolyline(svg, "price", pricePoints(chart, price), kPriceColour);
  appendPolyline(svg, "profit", profitPoints(chart, profit), kProfitColour);
  svg += "<g id=\"marks\">\n";
  appendMarks(svg, chart, price);
  svg += "</g>\n</svg>\n";
  return svg;
}

}  // namespace brindlewort::tool
