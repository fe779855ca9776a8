#include "chart.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <set>
#include <string>
#include <vector>

namespace brindlewort::tool {
namespace {

constexpr double kFirstOfJanuary2024 = 2460310.5;

std::size_t count(const std::string& text, const std::string& piece) {
  std::size_t found = 0;
  for (std::size_t at = 0; (at = text.find(piece, at)) != std::string::npos; at += piece.size()) ++found;
  return found;
}

/// What stands between two pieces of a text, the first time they do.
std::string between(const std::string& text, const std::string& from, const std::string& to) {
  const std::size_t begin = text.find(from);
  if (begin == std::string::npos) return "nothing";
  const std::size_t end = text.find(to, begin + from.size());
  return text.substr(begin + from.size(), end - begin - from.size());
}

std::string pointsOf(const std::string& svg, const std::string& id) {
  return between(svg.substr(svg.find("<polyline id=\"" + id)), "points=\"", "\"");
}

std::string marksOf(const std::string& svg) {
  return between(svg, "<g id=\"marks\">", "</g>");
}

/// That each element is closed by its own end, as any reader of XML demands.
void expectWellFormed(const std::string& svg) {
  std::vector<std::string> open;
  for (std::size_t at = 0; (at = svg.find('<', at)) != std::string::npos; ++at) {
    const std::size_t end = svg.find('>', at);
    ASSERT_NE(end, std::string::npos);
    const std::string tag = svg.substr(at + 1, end - at - 1);
    ASSERT_EQ(tag.find('<'), std::string::npos) << tag;
    ASSERT_EQ(count(tag, "\"") % 2, 0u) << tag;
    const std::string name = tag.substr(0, tag.find_first_of(" /", 1));
    if (tag.starts_with('?') || tag.ends_with('/')) continue;
    if (tag.starts_with('/')) {
      ASSERT_FALSE(open.empty());
      ASSERT_EQ("/" + open.back(), tag);
      open.pop_back();
    } else {
      open.push_back(name);
    }
  }
  EXPECT_TRUE(open.empty());
}

struct Picture {
  explicit Picture(std::size_t bars) {
    for (std::size_t bar = 0; bar < bars; ++bar) {
      dates.push_back(kFirstOfJanuary2024 + static_cast<double>(bar));
      closes.push_back(100.0 + 10.0 * static_cast<double>(bar % 3));
    }
  }
  BacktestChart chart() const { return {"Title", dates, closes, marks, steps}; }
  std::string svg() const { return toSvg(chart()); }

  std::vector<double> dates, closes;
  std::vector<ChartMark> marks;
  std::vector<ChartStep> steps;
};

TEST(Chart, PricesFillTheirPanelFromLeftToRight) {
  // Three bars from 80 to 1180; 100 to 120 with a margin of 1 on both sides over 500 to 86.
  EXPECT_EQ(pointsOf(Picture(3).svg(), "price"), "80,481.2 630,293 1180,104.8");
}

TEST(Chart, TheProfitGoesInSteps) {
  Picture picture(5);
  picture.steps = {{1, 8.0}, {3, -2.0}};
  // -2 to 8 with a margin of 0.5 over 700 to 540: 0 is at 663.6, 8 at 547.3, -2 at 692.7.
  EXPECT_EQ(pointsOf(picture.svg(), "profit"), "80,663.6 355,663.6 355,547.3 905,547.3 905,692.7 1180,692.7");
}

TEST(Chart, MarksStandAtTheirBarAndPrice) {
  Picture picture(3);
  picture.marks = {{MarkKind::kLongEntry, 0, 100.0},
                   {MarkKind::kLongExit, 1, 110.0},
                   {MarkKind::kShortEntry, 1, 110.0},
                   {MarkKind::kShortExit, 2, 120.0}};
  EXPECT_EQ(marksOf(picture.svg()),
            "\n<use xlink:href=\"#long-entry\" x=\"80\" y=\"481.2\"/>\n"
            "<use xlink:href=\"#long-exit\" x=\"630\" y=\"293\"/>\n"
            "<use xlink:href=\"#short-entry\" x=\"630\" y=\"293\"/>\n"
            "<use xlink:href=\"#short-exit\" x=\"1180\" y=\"104.8\"/>\n");
}

TEST(Chart, KindsOfMarksDifferInShapeAsWellAsColour) {
  const std::string shapes = between(Picture(3).svg(), "<defs>", "</defs>");
  std::set<std::string> outlines, paints;
  for (const char* id : {"long-entry", "long-exit", "short-entry", "short-exit"}) {
    const std::string path = between(shapes, "<path id=\"" + std::string(id) + "\" ", "/>");
    outlines.insert(between(path, "d=\"", "\""));
    paints.insert(path.substr(path.find("fill=")));
  }
  EXPECT_EQ(outlines.size(), 4u);
  EXPECT_EQ(paints.size(), 4u);
}

TEST(Chart, TheLegendNamesEverythingThatIsDrawn) {
  const std::string legend = between(Picture(3).svg(), "<g id=\"legend\">", "</g>");
  for (const char* name :
       {"close", "long entry", "long exit", "short entry", "short exit", "running profit"}) {
    EXPECT_NE(legend.find('>' + std::string(name)), std::string::npos) << name;
  }
  for (const char* id : {"long-entry", "long-exit", "short-entry", "short-exit"}) {
    EXPECT_EQ(count(legend, '#' + std::string(id) + '"'), 1u) << id;
  }
}

TEST(Chart, AxesHaveDatesAndPrices) {
  const std::string svg = Picture(130).svg();
  for (const char* label : {">2024-02<", ">2024-03<", ">2024-04<", ">2024-05<", ">100<", ">110<", ">120<"}) {
    EXPECT_EQ(count(svg, label), 1u) << label;
  }
  EXPECT_EQ(count(svg, ">Price<"), 1u);
  EXPECT_EQ(count(svg, ">Running profit<"), 1u);
}

TEST(Chart, TheTitleMayHoldAnyCharacter) {
  Picture picture(3);
  BacktestChart chart = picture.chart();
  chart.title = "a<b> & \"c\"\n\x01";
  const std::string svg = toSvg(chart);
  expectWellFormed(svg);
  EXPECT_EQ(count(svg, ">a&lt;b&gt; &amp; &quot;c&quot;  <"), 2u);
}

TEST(Chart, ItsSizeDoesNotGrowWithTheBars) {
  Picture picture(1'000'000);
  for (std::size_t bar = 0; bar < picture.closes.size(); bar += 4) {
    picture.marks.push_back({MarkKind::kLongEntry, bar, 100.0});
    picture.marks.push_back({MarkKind::kLongExit, bar + 2, 120.0});
    picture.steps.push_back({bar + 2, static_cast<double>(bar)});
  }
  const std::string svg = picture.svg();
  expectWellFormed(svg);
  EXPECT_LE(count(pointsOf(svg, "price"), ","), 3000u);
  EXPECT_LE(count(pointsOf(svg, "profit"), ","), 1000u);
  EXPECT_EQ(count(svg, ">(500000 entries and exits, not all drawn)<"), 1u);
  EXPECT_LE(count(marksOf(svg), "long-entry"), 138u);  // 1100 / 8
  EXPECT_GE(count(marksOf(svg), "long-exit"), 130u);
  EXPECT_LT(svg.size(), 250'000u);
}

TEST(Chart, AllOfAFewHundredMarksAreDrawn) {
  Picture picture(1'000'000);
  for (std::size_t bar = 0; bar < 399; ++bar) picture.marks.push_back({MarkKind::kShortEntry, bar, 100.0});
  EXPECT_EQ(count(marksOf(picture.svg()), "short-entry"), 399u);
  EXPECT_EQ(count(picture.svg(), "not all drawn"), 0u);
}

TEST(Chart, AnyValuesGiveAPicture) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  for (const double odd : {kInfinity, -kInfinity, kNan, 1e308, -1e308, 0.0, 1e-310}) {
    Picture picture(4);
    picture.closes = {odd, odd, -odd, odd};
    picture.dates[2] = odd;
    picture.marks = {{MarkKind::kLongEntry, 1, odd}, {MarkKind::kLongExit, 2, odd}};
    picture.steps = {{2, odd}};
    const std::string svg = picture.svg();
    expectWellFormed(svg);
    EXPECT_EQ(count(svg, "nan"), 0u);
    EXPECT_EQ(count(svg, "inf"), 0u);
  }
  for (const std::size_t bars : {0u, 1u, 2u}) expectWellFormed(Picture(bars).svg());
}

}  // namespace
}  // namespace brindlewort::tool
