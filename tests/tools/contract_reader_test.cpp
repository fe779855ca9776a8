#include "contract_reader.hpp"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

namespace brindlewort::reference {
namespace {

std::string problemOf(std::string_view header) {
  try {
    readContracts(header);
  } catch (const std::runtime_error& problem) {
    return problem.what();
  }
  return {};
}

TEST(ContractReader, ReadsTheTagsAboveADeclaration) {
  const auto contracts = readContracts(
      "/// About the whole file.\n"
      "namespace x {\n"
      "/// The mean of two \"rows\".\n"
      "/// Of any two.\n"
      "/// formula: (a + b)\n"
      "///   / 2\n"
      "/// batch: from row 1;\n"
      "/// wrapped without a margin\n"
      "/// resumable: from row 0\n"
      "///\n"
      "/// For readers of the header.\n"
      "void Mean(View a, View b, Out out);\n"
      "\n"
      "  /// The first row.\n"
      "  /// formula: a[0]\n"
      "  /// resumable: row 0\n"
      "  double First(View a);\n"
      "enum E { kOne,  ///< formula: none\n"
      "};\n");
  ASSERT_EQ(contracts.size(), 2u);
  EXPECT_EQ(contracts[0].operation, "Mean");
  EXPECT_EQ(contracts[0].description, "The mean of two \"rows\". Of any two.");
  EXPECT_EQ(contracts[0].formula, "(a + b) / 2");
  EXPECT_EQ(contracts[0].batch, "from row 1; wrapped without a margin");
  EXPECT_EQ(contracts[0].resumable, "from row 0");
  EXPECT_EQ(contracts[1].operation, "First");
  EXPECT_EQ(contracts[1].batch, "");
  EXPECT_EQ(contracts[1].resumable, "row 0");
}

TEST(ContractReader, RefusesAContractThatIsNotWhole) {
  EXPECT_EQ(problemOf("/// A. formula: b\nvoid F();\n"),
            "the comment of line 1 has a tag that does not begin its line");
  EXPECT_EQ(problemOf("\n/// A.\n/// formula: b resumable: c\nvoid F();\n"),
            "the comment of line 2 has a tag that does not begin its line");
  EXPECT_EQ(problemOf("/// A.\n/// formula: b\nvoid F();\n"),
            "the comment of line 1 tells nothing of either form");
  EXPECT_EQ(problemOf("/// A.\n/// batch: b\nvoid F();\n"),
            "the comment of line 1 lacks its description or formula");
  EXPECT_EQ(problemOf("/// formula: a\n/// batch: b\nvoid F();\n"),
            "the comment of line 1 lacks its description or formula");
  EXPECT_EQ(problemOf("/// A.\n/// batch: b\n/// batch: c\n/// formula: d\nvoid F();\n"),
            "the comment of line 1 has a tag twice");
  EXPECT_EQ(problemOf("/// A.\n/// formula: a\n/// batch: b\n\nvoid F();\n"),
            "the comment of line 1 stands above no declaration");
}

TEST(ContractReader, WritesATableThatCppReads) {
  const std::string source = notesSource({{"Mean", "The \"mean\".", "a \\ b", "", "row 0"}});
  EXPECT_NE(source.find("{\"Mean\",\n       \"The \\\"mean\\\".\",\n       \"a \\\\ b\",\n       \"\",\n     "
                        "  \"row 0\"},\n"),
            std::string::npos)
      << source;
  EXPECT_THROW(notesSource({{"Mean", "", "", "", ""}, {"Mean", "", "", "", ""}}), std::runtime_error);
}

}  // namespace
}  // namespace brindlewort::reference
