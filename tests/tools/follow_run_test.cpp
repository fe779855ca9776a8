// Runs the built tool with --follow over pipes, as a feed does: a bar in, its answer out, then the next bar.

#include <fcntl.h>
#include <poll.h>
#include <sched.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tool_fixture.hpp"

namespace brindlewort::tool {
namespace {

struct Pipe {
  Pipe() { EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0); }
  ~Pipe() {
    closeEnd(0);
    closeEnd(1);
  }
  void closeEnd(int i) {
    if (ends[i] >= 0) close(ends[i]);
    ends[i] = -1;
  }
  int ends[2] = {-1, -1};
};

/// A running tool with a pipe to each of its streams.
class Session {
 public:
  explicit Session(const std::vector<std::string>& arguments) {
    std::vector<std::string> words = {BRINDLEWORT_TOOL, "output", "--follow"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (std::string& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
    child_ = fork();
    if (child_ == 0) {
      dup2(in_.ends[0], STDIN_FILENO);
      dup2(out_.ends[1], STDOUT_FILENO);
      dup2(err_.ends[1], STDERR_FILENO);
      signal(SIGINT, SIG_DFL);
      signal(SIGPIPE, SIG_DFL);
      execv(argv[0], argv.data());
      _exit(127);
    }
    in_.closeEnd(0);
    out_.closeEnd(1);
    err_.closeEnd(1);
  }
  ~Session() {
    if (child_ <= 0) return;
    kill(child_, SIGKILL);
    waitpid(child_, nullptr, 0);
  }
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  void send(const std::string& text) {
    EXPECT_EQ(::write(in_.ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
  }
  /// The next line of the answer, without its end. Lines come in their order, so that one that should not
  /// have come stands in the place of the one that is expected.
  std::string line() {
    while (received_.find('\n') == std::string::npos) {
      char buffer[4096];
      const ssize_t size = ::read(out_.ends[0], buffer, sizeof buffer);
      if (size <= 0) return "the end";
      received_.append(buffer, static_cast<std::size_t>(size));
    }
    const std::size_t end = received_.find('\n');
    const std::string result = received_.substr(0, end);
    received_.erase(0, end + 1);
    return result;
  }
  void endInput() { in_.closeEnd(1); }
  void endOutput() { out_.closeEnd(0); }
  void interrupt() { kill(child_, SIGINT); }
  /// Waits until answers that nobody reads have filled most of the pipe, or until the tool has ended.
  void waitForAFullPipe() {
    const int enough = fcntl(out_.ends[0], F_GETPIPE_SZ) / 4 * 3;
    for (int held = 0; ioctl(out_.ends[0], FIONREAD, &held) == 0 && held < enough; sched_yield()) {
      pollfd state = {out_.ends[0], 0, 0};
      if (poll(&state, 1, 0) != 0) return;  // the other end is closed
    }
  }
  /// The exit code; -1 for an end by a signal.
  int wait() {
    int status = 0;
    EXPECT_EQ(waitpid(child_, &status, 0), child_);
    child_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  /// What it said on standard error; call it when the tool has ended.
  std::string errors() {
    std::string text;
    char buffer[4096];
    for (ssize_t size; (size = ::read(err_.ends[0], buffer, sizeof buffer)) > 0;) {
      text.append(buffer, static_cast<std::size_t>(size));
    }
    return text;
  }

 private:
  Pipe in_, out_, err_;
  pid_t child_ = -1;
  std::string received_;
};

std::string bar(int day, int price) {
  const std::string text = std::to_string(price);
  return (day < 10 ? "2024-01-0" : "2024-01-") + std::to_string(day) + ',' + text + ',' + text + ',' + text +
         ',' + text + ",100\n";
}

const char kHeader[] = "Date,Open,High,Low,Close,Volume\n";
const std::vector<std::string> kMeanOfThree = {"--script", "SET A = SMA(CLOSE, 3)\nCLOSE > A", "--sets", "A"};
const std::vector<std::string> kNextPrice = {"--script", "SET A = CLOSE + 1\nA > 1", "--sets", "A"};

/// One bar less than a script without longer periods asks for.
void sendSixBars(Session& session) {
  session.send(kHeader);
  for (int day = 1; day <= 6; ++day) session.send(bar(day, 10 * day));
}

TEST(Follow, EachBarIsAnsweredBeforeTheNextOneComes) {
  Session session(kMeanOfThree);
  sendSixBars(session);
  session.send(bar(7, 70));
  EXPECT_EQ(session.line(), "Date,\"A\"");
  EXPECT_EQ(session.line(), "2024-01-07 00:00:00,60.0000");  // (50 + 60 + 70) / 3
  session.send(bar(8, 80));
  EXPECT_EQ(session.line(), "2024-01-08 00:00:00,70.0000");
  session.send(bar(9, 120));
  EXPECT_EQ(session.line(), "2024-01-09 00:00:00,90.0000");  // (70 + 80 + 120) / 3
  session.endInput();
  EXPECT_EQ(session.line(), "the end");
  EXPECT_EQ(session.wait(), 0);
  EXPECT_EQ(session.errors(), "");
}

TEST(Follow, ALineWithTheDateOfTheLastBarEditsIt) {
  Session session(kMeanOfThree);
  sendSixBars(session);
  session.send(bar(7, 70));
  session.line();
  EXPECT_EQ(session.line(), "2024-01-07 00:00:00,60.0000");
  session.send(bar(7, 100));
  EXPECT_EQ(session.line(), "2024-01-07 00:00:00,70.0000");  // (50 + 60 + 100) / 3
  session.send(bar(7, 40));
  EXPECT_EQ(session.line(), "2024-01-07 00:00:00,50.0000");  // (50 + 60 + 40) / 3
  session.send(bar(8, 80));
  EXPECT_EQ(session.line(), "2024-01-08 00:00:00,60.0000");  // (60 + 40 + 80) / 3
  session.endInput();
  EXPECT_EQ(session.wait(), 0);
}

TEST(Follow, NoRowComesWhileThereAreTooFewBars) {
  Session session(kMeanOfThree);
  sendSixBars(session);
  session.send(bar(6, 30));  // an edit is no further bar
  session.send(bar(7, 90));
  EXPECT_EQ(session.line(), "Date,\"A\"");
  EXPECT_EQ(session.line(), "2024-01-07 00:00:00,56.6666");  // (50 + 30 + 90) / 3
}

TEST(Follow, BarsOfAPieceAreAnsweredInTurnAndAPartOfALineWaits) {
  Session session(kMeanOfThree);
  sendSixBars(session);
  const std::string half = bar(9, 90);
  session.send(bar(7, 70) + bar(8, 80) + half.substr(0, 20));
  session.line();
  EXPECT_EQ(session.line(), "2024-01-07 00:00:00,60.0000");
  EXPECT_EQ(session.line(), "2024-01-08 00:00:00,70.0000");
  session.send(half.substr(20));
  EXPECT_EQ(session.line(), "2024-01-09 00:00:00,80.0000");
}

TEST(Follow, ALastLineWithoutAnEndIsABar) {
  Session session(kMeanOfThree);
  sendSixBars(session);
  std::string last = bar(7, 70);
  last.pop_back();
  session.send(last);
  session.endInput();
  session.line();
  EXPECT_EQ(session.line(), "2024-01-07 00:00:00,60.0000");
  EXPECT_EQ(session.wait(), 0);
}

TEST(Follow, AnInterruptEndsItWithExitCode0) {
  for (const bool withinALine : {false, true}) {
    Session session(kMeanOfThree);
    sendSixBars(session);
    session.send(bar(7, 70));
    session.line();
    EXPECT_EQ(session.line(), "2024-01-07 00:00:00,60.0000");
    if (withinALine) session.send("2024-01-08,8");
    session.interrupt();
    EXPECT_EQ(session.line(), "the end");
    EXPECT_EQ(session.wait(), 0);
    EXPECT_EQ(session.errors(), "");
  }
}

TEST(Follow, AnInterruptEndsItWhileNobodyReadsTheAnswers) {
  Session session(kMeanOfThree);
  session.send("Date,Open,High,Low,Close\n");
  // Far more answers than a pipe holds, of short lines.
  std::string bars;
  for (int i = 0; i < 4000; ++i) bars += std::to_string(2451544 + i) + ".5,1,1,1,1\n";
  session.send(bars.substr(0, 60'000));
  EXPECT_EQ(session.line(), "Date,\"A\"");
  session.waitForAFullPipe();
  session.interrupt();
  EXPECT_EQ(session.wait(), 0);
  EXPECT_EQ(session.errors(), "");
}

TEST(Follow, ItEndsWhenNobodyWillReadTheAnswers) {
  Session session(kNextPrice);
  sendSixBars(session);
  session.send(bar(7, 70));
  session.line();
  EXPECT_EQ(session.line(), "2024-01-07 00:00:00,71.0000");
  session.endOutput();
  session.send(bar(8, 80));
  EXPECT_EQ(session.wait(), -1);  // by the signal of a broken pipe, as any tool
  EXPECT_EQ(session.errors(), "");
}

TEST(Follow, JsonIsAnObjectALine) {
  Session session({"--script", "SET A = SMA(CLOSE, 3) / 7\nSET B = SMA(CLOSE, 5)\nA > B", "--sets", "A,B",
                   "--format", "json"});
  sendSixBars(session);
  session.send(bar(7, 70));
  EXPECT_EQ(
      nlohmann::json::parse(session.line()),
      (nlohmann::json{{"Date", "2024-01-07 00:00:00"}, {"JDate", 2460316.5}, {"A", 60.0 / 7}, {"B", 50.0}}));
  session.send(bar(7, 100));
  EXPECT_EQ(nlohmann::json::parse(session.line())["A"], 10.0);
}

TEST(Follow, FromHidesTheRowsBeforeIt) {
  Session session({"--script", "SET A = CLOSE + 1\nA > 1", "--sets", "A", "--from", "9"});
  sendSixBars(session);
  for (int day = 7; day <= 9; ++day) session.send(bar(day, 10 * day));
  EXPECT_EQ(session.line(), "Date,\"A\"");
  EXPECT_EQ(session.line(), "2024-01-09 00:00:00,91.0000");
}

TEST(Follow, AScriptAtFaultIsToldBeforeAnyBarComes) {
  for (const char* script : {"CLOSE > NOSUCHNAME", "SET A = SMA(CLOSE, 200)\nA > SMA(CLOSE)", "# nothing"}) {
    Session session({"--script", script});
    EXPECT_EQ(session.wait(), 2) << script;
    EXPECT_EQ(session.line(), "the end");
    const std::string errors = session.errors();
    EXPECT_EQ(errors.substr(0, 7), "Error: ");
    EXPECT_NE(errors.find("brindlewort help NAME"), std::string::npos) << errors;
  }
}

TEST(Follow, ABadLineIsToldAndTheNextBarAnswered) {
  Session session(kNextPrice);
  sendSixBars(session);
  session.send(bar(7, 70) + "2024-01-08,1,2,x,4,5\n");
  session.line();
  EXPECT_EQ(session.line(), "2024-01-07 00:00:00,71.0000");
  session.send(bar(8, 80));
  EXPECT_EQ(session.line(), "2024-01-08 00:00:00,81.0000");
  session.interrupt();
  EXPECT_EQ(session.line(), "the end");
  EXPECT_EQ(session.wait(), 3);
  EXPECT_EQ(session.errors(),
            "standard input:9: column 4 (Low): expected a number such as 101.25, found \"x\"; the line is "
            "skipped.\n1 line was skipped.\n");
}

}  // namespace
}  // namespace brindlewort::tool
