#include "session.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <optional>
#include <set>
#include <sstream>

namespace brindlewort::session {

namespace {

/// How many of the last rows of a series a transcript shows.
constexpr std::size_t kShownRows = 5;

/// The list of series as hosts get it.
struct SeriesView {
  const double* values;
  std::size_t count;
};
struct ListView {
  std::size_t count;
  const SeriesView* items;
};

char unescaped(char letter) {
  return letter == 'r' ? '\r' : letter == 'n' ? '\n' : letter;
}

/// The words of a line; nothing when a quotation does not end.
std::optional<std::vector<std::string>> wordsOf(const std::string& line) {
  std::vector<std::string> words;
  std::size_t i = 0;
  while (true) {
    i = line.find_first_not_of(" \r", i);
    if (i == std::string::npos || line[i] == '#') return words;
    std::string word;
    if (line[i] == '"') {
      for (++i; i < line.size() && line[i] != '"'; ++i) {
        if (line[i] == '\\' && i + 1 < line.size()) {
          word += unescaped(line[++i]);
        } else {
          word += line[i];
        }
      }
      if (i == line.size()) return std::nullopt;
      ++i;
    } else {
      const std::size_t end = std::min(line.find(' ', i), line.size());
      word = line.substr(i, end - i);
      i = end;
    }
    words.push_back(word);
  }
}

/// Julian day number of the start of a day of the Gregorian calendar.
double julianDay(int year, int month, int day) {
  const int shifted = (month + 9) % 12;  // months since March
  const int years = year - (month <= 2 ? 1 : 0);
  const int days = years * 365 + years / 4 - years / 100 + years / 400 + (shifted * 306 + 5) / 10 + day - 1;
  return days + 1721119.5;
}

/// The bars of a file: Date,Open,High,Low,Close,Volume.
std::vector<std::vector<std::string>> barsOf(std::istream& file) {
  std::vector<std::vector<std::string>> bars;
  for (std::string line; std::getline(file, line);) {
    int year = 0, month = 0, day = 0;
    if (std::sscanf(line.c_str(), "%d-%d-%d,", &year, &month, &day) != 3) continue;
    std::vector<std::string> bar{formatted(julianDay(year, month, day))};
    std::istringstream fields(line.substr(line.find(',') + 1));
    for (std::string field; std::getline(fields, field, ',');) bar.push_back(field);
    bars.push_back(bar);
  }
  return bars;
}

class Player {
 public:
  Player(const Face& face, std::vector<std::vector<std::string>> bars, Transcript& transcript)
      : face_(face), bars_(std::move(bars)), transcript_(transcript) {}

  /// The members that no line has called.
  std::vector<std::string> uncalled() const {
    std::vector<std::string> names;
    for (const auto& [name, call] : face_.members) {
      if (!called_.contains(name)) names.push_back(name);
    }
    return names;
  }

  bool make(const std::string& line) {
    auto words = wordsOf(line);
    if (!words) return wrong(line);
    if (words->empty()) return true;
    transcript_.line(line);
    const std::string verb = words->front();
    words->erase(words->begin());
    const bool known = verb == "new" ? construct(*words) : verb == "bars" ? feed(*words) : call(verb, *words);
    return known || wrong(line);
  }

 private:
  bool wrong(const std::string& line) {
    transcript_.line("NOT UNDERSTOOD: " + line);
    return false;
  }

  bool construct(const std::vector<std::string>& words) {
    const auto found = words.size() == 1 ? face_.constructors.find(words[0]) : face_.constructors.end();
    if (found == face_.constructors.end()) return false;
    found->second();
    return true;
  }

  bool call(const std::string& member, const std::vector<std::string>& words) {
    const auto found = face_.members.find(member);
    if (found == face_.members.end()) return false;
    called_.insert(member);
    Arguments arguments(words);
    found->second(arguments, transcript_);
    return arguments.areRight();
  }

  bool feed(const std::vector<std::string>& words) {
    if (words.size() != 3) return false;
    const auto first = static_cast<std::size_t>(std::atoi(words[1].c_str()));
    const auto count = static_cast<std::size_t>(std::atoi(words[2].c_str()));
    if (first + count > bars_.size()) return false;
    for (std::size_t i = first; i < first + count; ++i) {
      std::vector<std::string> bar = bars_[i];
      if (words[0].starts_with("Alert.")) bar.push_back(bar[0]);  // the date of the last trade
      if (!call(words[0], bar)) return false;
    }
    return true;
  }

  const Face& face_;
  const std::vector<std::vector<std::string>> bars_;
  Transcript& transcript_;
  std::set<std::string> called_;
};

}  // namespace

std::string formatted(double value) {
  char text[400];
  std::snprintf(text, sizeof text, "%.4f", value);
  return text;
}

std::string quoted(const std::string& text) {
  std::string result = "\"";
  for (const char c : text) {
    if (c == '\r') {
      result += "\\r";
    } else if (c == '\n') {
      result += "\\n\n    ";
    } else {
      result += c;
    }
  }
  return result + '"';
}

std::string Arguments::text() {
  if (next_ == words_.size()) {
    right_ = false;
    return std::string();
  }
  return words_[next_++];
}

double Arguments::number() {
  const std::string word = text();
  char* end = nullptr;
  const double value = std::strtod(word.c_str(), &end);
  if (word.empty() || *end != '\0') right_ = false;
  return value;
}

void Transcript::line(const std::string& text) {
  out_ << text << '\n';
}
void Transcript::status(long status) {
  line("  status " + std::to_string(status));
}
void Transcript::number(double value) {
  line("  " + formatted(value));
}
void Transcript::integer(long long value) {
  line("  " + std::to_string(value));
}
void Transcript::text(const char* value) {
  line(value ? "  " + quoted(value) : "  no text");
}

void Transcript::list(const void* series) {
  const auto* const list = static_cast<const ListView*>(series);
  line(list ? "  list of " + std::to_string(list->count) : "  no list");
  for (std::size_t i = 0; list && i < list->count; ++i) {
    const SeriesView& item = list->items[i];
    std::string rows = "    " + std::to_string(item.count) + " rows, the last:";
    for (std::size_t row = item.count - std::min(item.count, kShownRows); row < item.count; ++row) {
      rows += ' ' + formatted(item.values[row]);
    }
    line(rows);
  }
}

bool play(std::istream& session, std::istream& bars, const Face& face, Transcript& transcript) {
  Player player(face, barsOf(bars), transcript);
  for (std::string line; std::getline(session, line);) {
    if (!player.make(line)) return false;
  }
  const auto uncalled = player.uncalled();
  for (const std::string& name : uncalled) transcript.line("NOT CALLED: " + name);
  return uncalled.empty();
}

int playFiles(int argc, char** argv, const std::function<Face(Transcript&)>& makeFace) {
  if (argc != 4) {
    std::cerr << "usage: " << argv[0] << " SESSION BARS TRANSCRIPT\n";
    return 2;
  }
  std::ifstream session(argv[1], std::ios::binary);
  std::ifstream bars(argv[2], std::ios::binary);
  std::ofstream out(argv[3], std::ios::binary);
  if (!session || !bars || !out) {
    std::cerr << "a file cannot be opened: " << argv[1] << ", " << argv[2] << ", " << argv[3] << '\n';
    return 2;
  }
  Transcript transcript(out);
  const bool understood = play(session, bars, makeFace(transcript), transcript);
  out.close();
  if (!understood)
    std::cerr << "the session is not understood, or not complete; the end of " << argv[3] << " tells\n";
  return understood && out ? 0 : 1;
}

}  // namespace brindlewort::session
