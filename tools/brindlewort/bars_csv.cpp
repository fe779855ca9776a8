#include "bars_csv.hpp"

#include <csv.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <new>
#include <utility>
#include <vector>

#include "bar_date.hpp"
#include "series/text.hpp"

namespace brindlewort::tool {
namespace {

enum class Role : std::uint8_t { kIgnored, kDate, kOpen, kHigh, kLow, kClose, kVolume };
constexpr std::size_t kRoles = 7;

struct ColumnWord {
  std::string_view word;
  Role role;
};
constexpr ColumnWord kColumnWords[] = {
    {"DATE", Role::kDate},      {"DATETIME", Role::kDate}, {"TIME", Role::kDate},
    {"TIMESTAMP", Role::kDate}, {"OPEN", Role::kOpen},     {"HIGH", Role::kHigh},
    {"LOW", Role::kLow},        {"CLOSE", Role::kClose},   {"VOLUME", Role::kVolume},
};

struct RequiredColumn {
  Role role;
  std::string_view name;
};
constexpr RequiredColumn kRequiredColumns[] = {{Role::kDate, "Date"},
                                               {Role::kOpen, "Open"},
                                               {Role::kHigh, "High"},
                                               {Role::kLow, "Low"},
                                               {Role::kClose, "Close"}};

constexpr std::string_view kHeaderExpected =
    "a header line with Date, Open, High, Low, Close and optionally Volume, separated by commas";
constexpr std::string_view kPriceExpected = "a number such as 101.25";
constexpr std::string_view kVolumeExpected =
    "a volume from -2147483648 to 2147483647 (scale the column down if it holds larger ones)";
constexpr std::string_view kLineExpected =
    "a line of at most 1048576 bytes (a text without line ends is no CSV)";
constexpr std::string_view kColumnsExpected =
    "at most 1000 columns (keep those of the bars, as by cut -d, -f1-6, and leave the others out)";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t kLongestQuote = 40;  // characters of the input shown in a message

Role roleOf(std::string_view name) {
  const std::string upper = upperCase(name);
  for (const ColumnWord& entry : kColumnWords) {
    if (entry.word == upper) return entry.role;
  }
  return Role::kIgnored;
}

/// A piece of the input for a message: quoted, shortened, control characters shown as '?'.
std::string quoted(std::string_view text) {
  if (text.empty()) return "nothing";
  std::string shown(text.substr(0, kLongestQuote));
  for (char& c : shown) {
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) c = '?';
  }
  return '"' + shown + (text.size() > kLongestQuote ? "...\"" : "\"");
}

std::string countOf(std::size_t count, std::string_view noun) {
  return std::to_string(count) + ' ' + std::string(noun) + (count == 1 ? "" : "s");
}

std::optional<double> parseNumber(std::string_view field) {
  double number = 0.0;
  const char* const last = field.data() + field.size();
  const auto [end, error] = std::from_chars(field.data(), last, number);
  if (error != std::errc() || end != last || !std::isfinite(number)) return std::nullopt;
  return number;
}

std::optional<double> parseVolume(std::string_view field) {
  if (field.empty()) return 0.0;
  const std::optional<double> number = parseNumber(field);
  if (!number || *number <= -2147483649.0 || *number >= 2147483648.0) return std::nullopt;
  return std::trunc(*number);
}

/// Cuts a text into lines.
class LineCutter {
 public:
  explicit LineCutter(std::string_view text) : rest_(text), toLineFeed_(text.find('\n')) {}

  bool atEnd() const { return rest_.empty(); }
  /// The next line with its end, which is LF, CR LF or CR; at the end of the text the beginning of one.
  std::string_view next() {
    const std::size_t carriageReturn = rest_.substr(0, toLineFeed_).find('\r');
    const bool endsAtLineFeed = carriageReturn == std::string_view::npos || carriageReturn + 1 == toLineFeed_;
    const std::size_t last = endsAtLineFeed ? toLineFeed_ : carriageReturn;
    const std::string_view line = rest_.substr(0, last == std::string_view::npos ? last : last + 1);
    rest_.remove_prefix(line.size());
    if (toLineFeed_ == std::string_view::npos) return line;
    toLineFeed_ = endsAtLineFeed ? rest_.find('\n') : toLineFeed_ - line.size();
    return line;
  }

 private:
  std::string_view rest_;
  std::size_t toLineFeed_;  ///< in the rest; searched for once a line feed, since there may be none
};

bool endsLine(std::string_view line) {
  return line.ends_with('\n') || line.ends_with('\r');
}

}  // namespace

std::string BarsCsvProblem::message(std::string_view source) const {
  if (foreign) return std::string(source) + ": this is " + std::string(foreign->name) + '.';
  std::string text = std::string(source) + ':' + std::to_string(line) + ": ";
  if (column != 0) {
    text += "column " + std::to_string(column) + " (" + (columnName.empty() ? "no name" : columnName) + "): ";
  }
  return text + "expected " + expected + ", found " + found;
}

class BarsCsvReader::Impl {
 public:
  Impl(std::function<void(const Bar&)> onBar, std::function<void(const BarsCsvProblem&)> onBadLine)
      : onBar_(std::move(onBar)), onBadLine_(std::move(onBadLine)) {
    startParser();
  }
  ~Impl() { csv_free(&parser_); }
  Impl(const Impl&) = delete;
  Impl& operator=(const Impl&) = delete;

  bool feed(std::string_view piece) {
    if (haveStart_) {
      feedText(piece);
    } else if (!problem_) {
      start_.append(piece);
      if (start_.size() >= kTellingBytes || contains(start_, "\n")) feedStart();
    }
    return !stopped();
  }

  bool finish() {
    if (!haveStart_) feedStart();
    if (problem_) return false;
    if (isLost_) {
      skipLine();
    } else if (csv_fini(&parser_, onField, onRow, this) != 0) {
      line_ = lastRowLine_ + 1;
      fail(0, "a closing quotation mark", "the end of the input");
      if (maySkip()) skipLine();
    } else if (!problem_ && !haveHeader_) {
      fail(0, kHeaderExpected, "the end of the input");
    }
    return !stopped();
  }

  const std::optional<BarsCsvProblem>& problem() const { return problem_; }
  std::size_t line() const { return line_; }
  std::size_t bars() const { return bars_; }

 private:
  void startParser() {
    if (csv_init(&parser_, CSV_STRICT | CSV_STRICT_FINI) != 0) throw std::bad_alloc();
    betweenRows_ = parser_.pstate;
  }

  /// The first bytes tell whether this is text at all.
  void feedStart() {
    haveStart_ = true;
    if (const ForeignFile* const kind = foreignFile(start_)) {
      problem_ = BarsCsvProblem{1, 0, {}, {}, {}, kind};
    } else {
      feedText(std::exchange(start_, {}));
    }
  }

  void feedText(std::string_view piece) {
    skipByteOrderMark(piece);
    if (piece.empty()) return;
    if (endedByReturn_ && piece.front() == '\n') piece.remove_prefix(1);
    endedByReturn_ = piece.ends_with('\r');
    LineCutter lines(piece);
    while (!lines.atEnd() && !stopped()) feedPartOfLine(lines.next());
  }

  void skipByteOrderMark(std::string_view& piece) {
    while (byteOrderMark_ < kByteOrderMark.size() && !piece.empty()) {
      if (piece.front() != kByteOrderMark[byteOrderMark_]) {
        byteOrderMark_ = kByteOrderMark.size();
        return;
      }
      piece.remove_prefix(1);
      ++byteOrderMark_;
    }
  }

  void feedPartOfLine(std::string_view part) {
    if (atLineStart_) inComment_ = !haveHeader_ && part.front() == '#';
    if (!inComment_ && !isLost_) parsePartOfLine(part);
    atLineStart_ = endsLine(part);
    if (!atLineStart_ || stopped()) return;
    if (isLost_) skipLine();
    if (isBetweenRows()) {
      rowSize_ = 0;
    } else if (maySkip()) {
      fail(0, "a closing quotation mark", "the end of the line");
      skipLine();
    }
    ++line_;
  }

  void parsePartOfLine(std::string_view part) {
    rowSize_ += part.size();
    if (rowSize_ > kLongestLine) return lose(kLineExpected, "a longer one");
    const std::size_t taken = csv_parse(&parser_, part.data(), part.size(), onField, onRow, this);
    if (taken == part.size()) return;
    if (csv_error(&parser_) != CSV_EPARSE) throw std::bad_alloc();
    lose("quotation marks only around a whole field",
         quoted(trim(part.substr(0, part.find_first_of("\r\n")))));
  }

  bool isBetweenRows() const { return parser_.pstate == betweenRows_; }
  bool maySkip() const { return onBadLine_ && haveHeader_; }
  bool stopped() const { return problem_ && !maySkip(); }

  /// The rest of the line cannot be taken apart.
  void lose(std::string_view expected, std::string found) {
    fail(0, expected, std::move(found));
    isLost_ = true;
  }

  /// Tells what is wrong with the row at hand and goes on behind it.
  void skipRow() {
    onBadLine_(*problem_);
    problem_.reset();
    column_ = 0;
  }

  /// The same where the parser is within the row.
  void skipLine() {
    skipRow();
    isLost_ = false;
    csv_free(&parser_);
    startParser();
  }

  static void onField(void* text, std::size_t size, void* self) {
    static_cast<Impl*>(self)->field(trim({static_cast<const char*>(text), size}));
  }
  static void onRow(int /*terminator*/, void* self) { static_cast<Impl*>(self)->row(); }

  void field(std::string_view text) {
    if (problem_) return;
    ++column_;
    if (!haveHeader_) {
      names_.emplace_back(text);
      if (column_ > kMostColumns) fail(0, kColumnsExpected, "more");
    } else if (column_ <= roles_.size()) {
      readField(roles_[column_ - 1], text);
    } else if (!text.empty()) {
      fail(0, countOf(roles_.size(), "column") + " as in the header", "more, beginning with " + quoted(text));
    }
  }

  void row() {
    lastRowLine_ = line_;
    if (!problem_ && !haveHeader_) {
      readHeader();
    } else if (!problem_ && column_ < neededColumns_) {
      fail(0, countOf(roles_.size(), "column") + " as in the header", countOf(column_, "column"));
    } else if (!problem_) {
      onBar_(bar_);
      ++bars_;
    }
    if (problem_ && maySkip()) skipRow();
    column_ = 0;
  }

  void readHeader() {
    std::array<std::size_t, kRoles> columnOf{};  // 0 while a role has none
    for (std::size_t i = 0; i < names_.size(); ++i) {
      const Role role = roleOf(names_[i]);
      roles_.push_back(role);
      if (role == Role::kIgnored) continue;
      std::size_t& column = columnOf[static_cast<std::size_t>(role)];
      if (column != 0) {
        fail(i + 1, "a name that no column before it has",
             (role == Role::kDate ? "a second date column beside column " : "the same as column ") +
                 std::to_string(column) + "; rename or remove one of them");
        return;
      }
      column = i + 1;
    }
    std::size_t& dateColumn = columnOf[static_cast<std::size_t>(Role::kDate)];
    if (dateColumn == 0 && names_.front().empty()) {
      roles_.front() = Role::kDate;
      dateColumn = 1;
    }
    for (const RequiredColumn& required : kRequiredColumns) {
      if (columnOf[static_cast<std::size_t>(required.role)] == 0) {
        fail(0, kHeaderExpected, "no " + std::string(required.name) + " in " + quoted(headerText()));
        return;
      }
    }
    neededColumns_ = *std::max_element(columnOf.begin(), columnOf.end());
    haveHeader_ = true;
  }

  std::string headerText() const {
    std::string text;
    for (const std::string& name : names_) {
      if (&name != &names_.front()) text += ',';
      text += name;
    }
    return text;
  }

  void readField(Role role, std::string_view text) {
    switch (role) {
      case Role::kIgnored:
        return;
      case Role::kDate:
        return assign(bar_.JDate, parseBarDate(text), kBarDateExpected, text);
      case Role::kOpen:
        return assign(bar_.OpenPrice, parseNumber(text), kPriceExpected, text);
      case Role::kHigh:
        return assign(bar_.HighPrice, parseNumber(text), kPriceExpected, text);
      case Role::kLow:
        return assign(bar_.LowPrice, parseNumber(text), kPriceExpected, text);
      case Role::kClose:
        return assign(bar_.ClosePrice, parseNumber(text), kPriceExpected, text);
      case Role::kVolume:
        return assign(bar_.Volume, parseVolume(text), kVolumeExpected, text);
    }
  }

  void assign(double& target, std::optional<double> value, std::string_view expected, std::string_view text) {
    if (value) {
      target = *value;
    } else {
      fail(column_, expected, quoted(text));
    }
  }

  void fail(std::size_t column, std::string_view expected, std::string found) {
    if (problem_) return;  // the first of a row is told
    problem_ = BarsCsvProblem{line_,
                              column,
                              column == 0 ? std::string() : names_[column - 1],
                              std::string(expected),
                              std::move(found),
                              nullptr};
  }

  std::function<void(const Bar&)> onBar_;
  std::function<void(const BarsCsvProblem&)> onBadLine_;
  csv_parser parser_{};
  int betweenRows_ = 0;  // the parser's state there
  std::optional<BarsCsvProblem> problem_;

  std::string start_;  // of the text, until its kind is known
  bool haveStart_ = false;
  std::size_t byteOrderMark_ = 0;  // bytes of it seen at the very start
  std::size_t line_ = 1;
  std::size_t lastRowLine_ = 0;
  bool atLineStart_ = true;
  bool endedByReturn_ = false;  // by a CR, behind which a LF is no further line end
  bool inComment_ = false;
  bool isLost_ = false;      // up to the end of the line
  std::size_t rowSize_ = 0;  // bytes of the row at hand so far

  bool haveHeader_ = false;
  std::vector<std::string> names_;
  std::vector<Role> roles_;
  std::size_t neededColumns_ = 0;

  std::size_t column_ = 0;  // of the field at hand, from 1
  Bar bar_;                 // the row at hand
  std::size_t bars_ = 0;
};

BarsCsvReader::BarsCsvReader(std::function<void(const Bar&)> onBar,
                             std::function<void(const BarsCsvProblem&)> onBadLine)
    : impl_(std::make_unique<Impl>(std::move(onBar), std::move(onBadLine))) {}
BarsCsvReader::~BarsCsvReader() = default;

bool BarsCsvReader::feed(std::string_view piece) {
  return impl_->feed(piece);
}
bool BarsCsvReader::finish() {
  return impl_->finish();
}
const std::optional<BarsCsvProblem>& BarsCsvReader::problem() const {
  return impl_->problem();
}
std::size_t BarsCsvReader::line() const {
  return impl_->line();
}
std::size_t BarsCsvReader::bars() const {
  return impl_->bars();
}

}  // namespace brindlewort::tool
