#pragma once

// A session is a list of calls of the components, in a file; a driver for each face of the library makes them
// and writes down what came of each. A face's own table names its members; how arguments are read and results
// are told comes from the members' types.

#include <cstdint>
#include <functional>
#include <iosfwd>
#include <map>
#include <string>
#include <tuple>
#include <vector>

namespace brindlewort::session {

/// The arguments of a call, as words of the session's line.
class Arguments {
 public:
  explicit Arguments(std::vector<std::string> words) : words_(std::move(words)) {}

  /// The next word. A missing one, and one that is left over at the end, makes `areRight` false.
  std::string text();
  double number();
  std::int32_t integer() { return static_cast<std::int32_t>(number()); }
  bool areRight() const { return right_ && next_ == words_.size(); }

 private:
  std::vector<std::string> words_;
  std::size_t next_ = 0;
  bool right_ = true;
};

/// What came of the calls. All numbers are written with four decimals.
class Transcript {
 public:
  explicit Transcript(std::ostream& out) : out_(out) {}

  void line(const std::string& text);
  void status(long status);
  void number(double value);
  void integer(long long value);
  /// Null is a call that gives no text. Line ends are written as `\r` and `\n`.
  void text(const char* value);
  /// A list of series as hosts get it: each with its length and its last rows; null is no list.
  void list(const void* series);

 private:
  std::ostream& out_;
};

std::string formatted(double value);
std::string quoted(const std::string& text);

/// Where an out-parameter begins: a call that does not write it leaves this.
inline constexpr int kUnwritten = -7;

/// A parameter of a member: takes its value from the words of the session, or tells it after the call.
template <class Type>
struct Parameter;

template <>
struct Parameter<double> {
  explicit Parameter(Arguments& words) : value(words.number()) {}
  double pass() { return value; }
  void tell(Transcript&) {}
  double value;
};

template <>
struct Parameter<double*> {
  explicit Parameter(Arguments&) {}
  double* pass() { return &value; }
  void tell(Transcript& transcript) { transcript.number(value); }
  double value = kUnwritten;
};

template <class Integer>
struct IntegerParameter {
  explicit IntegerParameter(Arguments& words) : value(static_cast<Integer>(words.integer())) {}
  Integer pass() { return value; }
  void tell(Transcript&) {}
  Integer value;
};

template <class Integer>
struct IntegerResult {
  explicit IntegerResult(Arguments&) {}
  Integer* pass() { return &value; }
  void tell(Transcript& transcript) { transcript.integer(value); }
  Integer value = kUnwritten;
};

/// Calls a member with parameters from the words, and tells its status and then its results in their order.
template <class... Types, class Member>
void callMember(Member member, Arguments& words, Transcript& transcript) {
  std::tuple<Parameter<Types>...> parameters{Parameter<Types>(words)...};
  if (!words.areRight()) return;
  std::apply(
      [&](auto&... each) {
        transcript.status(member(each.pass()...));
        (each.tell(transcript), ...);
      },
      parameters);
}

using Call = std::function<void(Arguments&, Transcript&)>;

/// A face of the library.
struct Face {
  std::map<std::string, Call> members;  ///< "Class.Member"; "Class.Member=" sets a property
  std::map<std::string, std::function<void()>>
      constructors;  ///< a class, and what makes a new component of it
};

/// Makes the calls of a session: lines of
///
///   new CLASS                        a new component in place of the one before
///   bars CLASS.MEMBER FIRST COUNT    calls the member for each of so many bars of the file
///   CLASS.MEMBER WORD...             a call; "quoted words" have \r, \n, \" and \\ in them
///
/// and of comments after `#`. Whether the face can follow, and each of its members is called; if not,
/// the transcript says so.
bool play(std::istream& session, std::istream& bars, const Face& face, Transcript& transcript);

/// The main program of a driver: `driver SESSION BARS TRANSCRIPT`.
int playFiles(int argc, char** argv, const std::function<Face(Transcript&)>& makeFace);

}  // namespace brindlewort::session
