// The reference of the script language: what it tells of each function, and that docs/functions.md is up to
// date.

#include "reference_page.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <set>
#include <sstream>
#include <string>

#include "functions/script_engine.hpp"
#include "indicator_notes.hpp"

namespace brindlewort::reference {
namespace {

bool isFirstName(std::string_view name) {
  const auto rows = functionTable();
  return std::any_of(rows.begin(), rows.end(),
                     [&](const FunctionRow& row) { return row.names.front().name == name; });
}

/// The words of a text, a blank between them, without backticks.
std::string wordsOf(std::string_view text) {
  std::string bare(text);
  bare.erase(std::remove(bare.begin(), bare.end(), '`'), bare.end());
  std::istringstream stream(bare);
  std::string words, word;
  while (stream >> word) words += word + ' ';
  return words;
}

std::string committedPage() {
  std::ifstream file(BRINDLEWORT_SOURCE_DIR "/docs/functions.md", std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// The first line in which two texts differ.
std::string firstDifference(const std::string& committed, const std::string& written) {
  std::istringstream a(committed), b(written);
  std::string one, two;
  for (int line = 1;; ++line) {
    const bool hasOne = static_cast<bool>(std::getline(a, one)),
               hasTwo = static_cast<bool>(std::getline(b, two));
    if (!hasOne && !hasTwo) return "in their line ends";
    if (hasOne != hasTwo || one != two) {
      return "line " + std::to_string(line) + "\n  committed: " + (hasOne ? one : "(end)") +
             "\n  written:   " + (hasTwo ? two : "(end)");
    }
  }
}

TEST(ReferencePage, TheCommittedPageIsUpToDate) {
  const std::string committed = committedPage(), written = referencePage();
  EXPECT_TRUE(committed == written) << "docs/functions.md differs: " << firstDifference(committed, written)
                                    << "\nRenew it with: cmake --build <build> --target reference";
}

TEST(ReferencePage, EveryRowIsDescribedOnEachWayItHas) {
  for (const FunctionRow& row : functionTable()) {
    const std::string name(row.names.front().name);
    for (const Path path : {Path::kWholeHistory, Path::kIncremental}) {
      const OperationNotes* const notes = notesOf(row, path);
      if (!hasPath(row, path)) {
        EXPECT_EQ(notes, nullptr) << name;
        continue;
      }
      ASSERT_NE(notes, nullptr) << name << ": no notes of " << row.operation;
      EXPECT_NE(notes->description, "") << name;
      EXPECT_NE(notes->formula, "") << name;
      EXPECT_NE(path == Path::kWholeHistory ? notes->batch : notes->resumable, "") << name;
    }
  }
}

/// Names that a way takes apart before it looks for them, although their row has a function for it.
struct OutOfReach {
  std::string_view name;
  Ways ways;  ///< those that are left
};
constexpr OutOfReach kOutOfReach[] = {
    // A name that ends in OR is read as the operator where a blank is put in front of its bracket.
    {"MOMENTUMOSCILLATOR", {true, false}},
    {"CHANDEMOMENTUMOSCILLATOR", {true, false}},
    {"PRICEOSCILLATOR", {true, false}},
    {"DETRENDEDPRICEOSCILLATOR", {true, false}},
    {"FRACTALCHAOSOSCILLATOR", {true, false}},
    {"PRIMENUMBEROSCILLATOR", {true, false}},
    {"RAINBOWOSCILLATOR", {true, false}},
    {"VOLUMEOSCILLATOR", {true, false}},
    {"ULTIMATEOSCILLATOR", {false, false}},
    // A name that may stand without brackets gets them wherever it occurs, in longer names too.
    {"PRIMENUMBERBANDSTOP", {true, false}},
    {"PRIMENUMBERBANDSBOTTOM", {true, false}},
    {"AVERAGETRUERANGE", {true, false}},
    // The short name of one function takes the place of its long one within the longer name of another.
    {"ZEROLAGEXPONENTIALMOVINGAVERAGE", {false, true}},
    {"COMPARATIVERELATIVESTRENGTHINDEX", {false, true}},
    {"HISTORICVOLATILITYINDEX", {false, true}},
    {"ACCUMULATIVESWINGINDEX", {false, true}},
};

TEST(ReferencePage, TheWaysOfANameAreThoseThatAScriptCanCallItOn) {
  std::size_t seen = 0;
  for (const FunctionRow& row : functionTable()) {
    for (const FunctionName& name : row.names) {
      const auto known = std::ranges::find(kOutOfReach, name.name, &OutOfReach::name);
      const bool outOfReach = known != std::end(kOutOfReach);
      const Ways expected = outOfReach
                                ? known->ways
                                : Ways{hasPath(row, Path::kWholeHistory), hasPath(row, Path::kIncremental)};
      EXPECT_EQ(waysOf(row, name.name), expected) << name.name;
      seen += outOfReach ? 1 : 0;
    }
  }
  EXPECT_EQ(seen, std::size(kOutOfReach));
}

TEST(ReferencePage, ANameOfFewerWaysIsToldWithItsFunction) {
  const auto sectionWith = [](std::string_view name) {
    for (const FunctionRow& row : functionTable()) {
      if (row.names.front().name == name) return sectionOf(row);
    }
    return FunctionSection{};
  };
  EXPECT_EQ(sectionWith("SMA").ways, "");
  EXPECT_EQ(sectionWith("MACDH").ways, "Known to the incremental way only.");
  EXPECT_EQ(sectionWith("MO").ways,
            "Known to both ways. Known to the whole-history way only: MOMENTUMOSCILLATOR.");
  EXPECT_EQ(sectionWith("ULTOSC").ways,
            "Known to the incremental way only. Known to neither way: ULTIMATEOSCILLATOR.");
  const std::string page = referencePage();
  EXPECT_NE(page.find(" | both; MOMENTUMOSCILLATOR: whole history only |"), std::string::npos);
  EXPECT_NE(
      page.find("neither way knows, since it takes the name apart before it looks: `ULTIMATEOSCILLATOR`.\n"),
      std::string::npos);
}

TEST(ReferencePage, EveryNoteIsOfARow) {
  std::set<std::string_view> used;
  for (const FunctionRow& row : functionTable()) {
    for (const Path path : {Path::kWholeHistory, Path::kIncremental}) {
      if (const OperationNotes* const notes = notesOf(row, path)) used.insert(notes->operation);
    }
  }
  for (const OperationNotes& notes : handlerNotes()) {
    EXPECT_EQ(used.count(notes.operation), 1u) << notes.operation << " is no operation of the function table";
    for (const OperationNotes& indicator : indicatorNotes()) EXPECT_NE(notes.operation, indicator.operation);
  }
  for (const CallNote& note : callNotes()) EXPECT_TRUE(isFirstName(note.function)) << note.function;
  for (const FunctionGroup& group : functionGroups())
    EXPECT_TRUE(isFirstName(group.firstFunction)) << group.title;
  EXPECT_EQ(functionGroups().front().firstFunction, functionTable().front().names.front().name);
}

TEST(ReferencePage, ArgumentsOfHandlersAreDescribedByHand) {
  std::set<std::string_view> described;
  for (const ArgumentNotes& notes : argumentNotes()) {
    described.insert(notes.function);
    bool found = false;
    for (const FunctionRow& row : functionTable()) {
      if (row.names.front().name != notes.function) continue;
      found = true;
      EXPECT_EQ(row.slots.size(), notes.arguments.size()) << notes.function;
    }
    EXPECT_TRUE(found) << notes.function;
  }
  for (const FunctionRow& row : functionTable()) {
    if (row.handler == nullptr || row.slots.empty()) continue;
    EXPECT_EQ(described.count(row.names.front().name), 1u) << row.names.front().name;
  }
}

TEST(ReferencePage, ConstantsAreThoseOfTheLanguage) {
  CScriptEngine engine;
  engine.ResetConstants();
  std::size_t count = 0;
  for (const ConstantGroup& group : constantGroups()) {
    for (const ConstantNotes& constant : group.constants) {
      ++count;
      const ScriptVariable variable = engine.LookupVariable(constant.word);
      EXPECT_EQ(engine.errorText, "") << constant.word;
      EXPECT_EQ(variable.value, constant.number) << constant.word;
      EXPECT_NE(constant.text, "") << constant.word;
    }
  }
  EXPECT_EQ(count, engine.constants.size());
}

TEST(ReferencePage, LinksLeadToHeadings) {
  std::istringstream page(referencePage());
  std::set<std::string> headings, links;
  std::string line;
  while (std::getline(page, line)) {
    if (line.starts_with("#")) {
      EXPECT_TRUE(headings.insert(anchorOf(line.substr(line.find(' ') + 1))).second) << "twice: " << line;
    }
    for (std::size_t at = line.find("](#"); at != std::string::npos; at = line.find("](#", at + 1)) {
      links.insert(line.substr(at + 3, line.find(')', at) - at - 3));
    }
  }
  EXPECT_EQ(links.size(), functionTable().size());
  for (const std::string& link : links) EXPECT_EQ(headings.count(link), 1u) << link;
}

TEST(ReferencePage, PlainTextTellsWhatThePageTells) {
  for (const FunctionRow& row : functionTable()) {
    const FunctionSection section = sectionOf(row);
    const std::string text = wordsOf(plainText(section));
    const auto expectTold = [&](std::string_view part) {
      EXPECT_NE(text.find(wordsOf(part)), std::string::npos) << section.title << ": " << part;
    };
    expectTold(section.ways);
    expectTold(section.remark);
    for (const LabelledText& argument : section.arguments) expectTold(argument.label + ' ' + argument.text);
    for (const Account& account : section.accounts) {
      expectTold(account.description);
      for (const std::string& clause : account.formula) expectTold(clause);
      for (const LabelledText& way : account.ways) expectTold(way.label + ' ' + way.text);
    }
  }
}

TEST(ReferencePage, ASectionHasBothForms) {
  FunctionSection section;
  section.title = "MN";
  section.spellings = {{"MN(source, periods)", {"MN", "MEANOF"}}};
  section.arguments = {{"source", "series"}, {"periods", "a|b"}};
  section.accounts = {
      {"", "Mean of `p` rows.", {"a*b", "c"}, {{"Whole history", "row 1"}, {"Incremental", "row 0"}}}};
  section.remark = "p is the periods.";
  EXPECT_EQ(
      markdown(section),
      "### MN\n\n- `MN(source, periods)`, also `MEANOF`\n\n"
      "| Argument | Takes |\n|---|---|\n| source | series |\n| periods | a\\|b |\n\n"
      "Mean of `p` rows.\n\n```text\na*b\nc\n```\n\n- **Whole history:** row 1\n- **Incremental:** row 0\n\n"
      "p is the periods.\n");
  EXPECT_EQ(plainText(section),
            "MN(source, periods)  also MEANOF\n\nArguments\n  source   series\n  periods  a|b\n\n"
            "Mean of p rows.\n\nFormula\n  a*b\n  c\n\nWhole history\n  row 1\n\nIncremental\n  row 0\n\n"
            "p is the periods.\n");
}

TEST(ReferencePage, FormulasHaveAClauseALine) {
  FunctionRow row;
  row.names = {{"SUM"}};
  row.operation = "SumSeries";
  ASSERT_EQ(sectionOf(row).accounts.size(), 1u);
  EXPECT_EQ(sectionOf(row).accounts[0].formula,
            std::vector<std::string>{"out[i] = source[i - periods + 1] + ... + source[i]"});
  row.names = {{"EMA"}};
  row.operation = "ExponentialMovingAverage";
  EXPECT_EQ(sectionOf(row).accounts[0].formula,
            (std::vector<std::string>{"k = 2 / (p + 1)", "out[i] = out[i - 1] * (1 - k) + in[i] * k"}));
}

TEST(ReferencePage, TextsAreWrappedAndEscaped) {
  EXPECT_EQ(wrapped("one two three", 7), "one two\nthree");
  EXPECT_EQ(wrapped("one two three", 9, 2), "  one two\n  three");
  EXPECT_EQ(wrapped("", 9, 2), "  ");
  EXPECT_EQ(escaped("2*p a * b <p x < y `a*b`"), "2\\*p a * b \\<p x < y `a*b`");
  EXPECT_EQ(anchorOf("%SWING, %SWINGD"), "swing-swingd");
}

}  // namespace
}  // namespace brindlewort::reference
