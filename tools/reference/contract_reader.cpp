#include "contract_reader.hpp"

#include <array>
#include <cctype>
#include <set>
#include <stdexcept>

namespace brindlewort::reference {
namespace {

struct Tag {
  std::string_view word;
  std::string Contract::*text;
};
constexpr std::array<Tag, 3> kTags = {
    {{"formula:", &Contract::formula}, {"batch:", &Contract::batch}, {"resumable:", &Contract::resumable}}};

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(" \t\r");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

/// The word in front of the first bracket of a declaration; empty when there is none.
std::string declaredName(std::string_view line) {
  const std::size_t bracket = line.find('(');
  if (bracket == std::string_view::npos) return {};
  std::size_t start = bracket;
  const auto isWord = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; };
  while (start > 0 && isWord(line[start - 1])) --start;
  return std::string(line.substr(start, bracket - start));
}

/// Collects the lines of one comment, and tells at its end what it was.
class CommentReader {
 public:
  void add(std::string_view line, std::size_t number) {
    if (first_ == 0) first_ = number;
    if (line.empty()) ended_ = true;
    if (ended_) return;
    for (const Tag& tag : kTags) {
      if (!line.starts_with(tag.word)) continue;
      tagged_ = true;
      field_ = tag.text;
      if (!(contract_.*field_).empty()) fail("has a tag twice");
      line = trimmed(line.substr(tag.word.size()));
      break;
    }
    std::string& text = contract_.*field_;
    if (!text.empty() && !line.empty()) text += ' ';
    text += line;
  }

  /// The contract, when the comment above `declaration` is one.
  bool finish(std::string_view declaration, Contract& contract) const {
    checkTags();
    if (!tagged_) return false;
    contract = contract_;
    contract.operation = declaredName(declaration);
    if (contract.operation.empty()) fail("stands above no declaration");
    if (contract.description.empty() || contract.formula.empty()) fail("lacks its description or formula");
    if (contract.batch.empty() && contract.resumable.empty()) fail("tells nothing of either form");
    return true;
  }

 private:
  void checkTags() const {
    for (const std::string* text :
         {&contract_.description, &contract_.formula, &contract_.batch, &contract_.resumable}) {
      for (const Tag& tag : kTags) {
        if (text->find(tag.word) != std::string::npos) fail("has a tag that does not begin its line");
      }
    }
  }
  [[noreturn]] void fail(const char* what) const {
    throw std::runtime_error("the comment of line " + std::to_string(first_) + ' ' + what);
  }

  Contract contract_;
  std::string Contract::*field_ = &Contract::description;
  std::size_t first_ = 0;
  bool tagged_ = false;
  bool ended_ = false;
};

std::string quoted(std::string_view text) {
  std::string literal = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') literal += '\\';
    literal += c;
  }
  return literal + '"';
}

}  // namespace

std::vector<Contract> readContracts(std::string_view header) {
  constexpr std::string_view kMark = "///";
  std::vector<Contract> contracts;
  CommentReader comment;
  bool inComment = false;
  std::size_t number = 0;
  while (!header.empty()) {
    const std::size_t end = header.find('\n');
    const std::string_view line = trimmed(header.substr(0, end));
    header.remove_prefix(end == std::string_view::npos ? header.size() : end + 1);
    ++number;
    if (line.starts_with(kMark) && !line.starts_with("///<")) {
      if (!inComment) comment = {};
      inComment = true;
      comment.add(trimmed(line.substr(kMark.size())), number);
    } else if (inComment) {
      inComment = false;
      Contract contract;
      if (comment.finish(line, contract)) contracts.push_back(std::move(contract));
    }
  }
  return contracts;
}

std::string notesSource(const std::vector<Contract>& contracts) {
  std::string source =
      "// Made from the comments of the indicators' headers; not to be edited.\n"
      "#include \"indicator_notes.hpp\"\n\n"
      "namespace brindlewort::reference {\n\n"
      "std::span<const OperationNotes> indicatorNotes() {\n"
      "  static constexpr OperationNotes kNotes[] = {\n";
  std::set<std::string> seen;
  for (const Contract& contract : contracts) {
    if (!seen.insert(contract.operation).second) {
      throw std::runtime_error("two comments describe " + contract.operation);
    }
    source += "      {" + quoted(contract.operation);
    for (const std::string* text :
         {&contract.description, &contract.formula, &contract.batch, &contract.resumable}) {
      source += ",\n       " + quoted(*text);
    }
    source += "},\n";
  }
  return source + "  };\n  return kNotes;\n}\n\n}  // namespace brindlewort::reference\n";
}

}  // namespace brindlewort::reference
