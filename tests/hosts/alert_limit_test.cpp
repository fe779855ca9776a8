// The limit on live alerts, which all processes of the machine share. No other program may have alerts
// meanwhile.

#include <memory>
#include <vector>

#include "bars.hpp"
#include "sink.hpp"

namespace brindlewort::hosts {
namespace {

const std::wstring kTooMany = L"2: 'Error: You have exceeded the maximum number of alerts!' 'name' 'SYM'";
const std::wstring kFired = L"1: 'name' 'SYM' R8 2451549 R8 1";

/// A process that holds alerts until the end of this object.
class Holder {
 public:
  explicit Holder(int alerts) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    HANDLE childInput, childOutput;
    EXPECT_TRUE(CreatePipe(&childInput, &input_, &inherited, 0));
    EXPECT_TRUE(CreatePipe(&output_, &childOutput, &inherited, 0));
    SetHandleInformation(input_, HANDLE_FLAG_INHERIT, 0);
    SetHandleInformation(output_, HANDLE_FLAG_INHERIT, 0);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = childInput;
    start.hStdOutput = childOutput;
    start.hStdError = childOutput;
    std::wstring line = L"\"" + besideProgram(L"alert_holder.exe") + L"\" " + std::to_wstring(alerts);
    EXPECT_TRUE(
        CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start, &process_));
    CloseHandle(childInput);
    CloseHandle(childOutput);
    char told[8] = {};  // comes when it has all of them
    DWORD size = 0;
    EXPECT_TRUE(ReadFile(output_, told, 7, &size, nullptr));
    EXPECT_STREQ(told, "holding");
  }
  ~Holder() {
    CloseHandle(input_);
    EXPECT_EQ(WaitForSingleObject(process_.hProcess, 30'000), WAIT_OBJECT_0);
    DWORD code = 1;
    EXPECT_TRUE(GetExitCodeProcess(process_.hProcess, &code));
    EXPECT_EQ(code, 0u);
    CloseHandle(process_.hThread);
    CloseHandle(process_.hProcess);
    CloseHandle(output_);
  }
  Holder(const Holder&) = delete;
  Holder& operator=(const Holder&) = delete;

 private:
  HANDLE input_ = nullptr, output_ = nullptr;
  PROCESS_INFORMATION process_{};
};

class AlertLimit : public HostTest {
 protected:
  /// An alert that fires at its fifth bar.
  ComPtr<IAlert> make() {
    const ComPtr<IAlert> alert = library.make<IAlert>();
    call(alert, &IAlert::put_Symbol, L"SYM");
    call(alert, &IAlert::put_AlertName, L"name");
    call(alert, &IAlert::put_AlertScript, L"CLOSE > 0");
    return alert;
  }
  /// Whether an alert that is made now evaluates.
  bool evaluates() {
    const ComPtr<IAlert> alert = make();
    const ComPtr<Sink> sink = connect(alert);
    appendAll(alert, {1, 1, 1, 1, 1});
    const Lines lines = sink->take();
    EXPECT_TRUE(lines == Lines{kFired} || lines == Lines(5, kTooMany));
    return lines == Lines{kFired};
  }
};

TEST_F(AlertLimit, TheThousandthAlertEvaluatesAndTheNextDoesNot) {
  std::vector<ComPtr<IAlert>> others;
  for (int i = 0; i < 999; ++i) others.push_back(library.make<IAlert>());
  EXPECT_TRUE(evaluates());
  others.push_back(library.make<IAlert>());
  EXPECT_FALSE(evaluates());
  others.pop_back();
  EXPECT_TRUE(evaluates());
}

TEST_F(AlertLimit, TheNextOneTellsOfTheLimitAtEachBarAndKeepsItsScript) {
  std::vector<ComPtr<IAlert>> others;
  for (int i = 0; i < 1'000; ++i) others.push_back(library.make<IAlert>());
  const ComPtr<IAlert> beyond = library.make<IAlert>();
  const ComPtr<Sink> sink = connect(beyond);
  call(beyond, &IAlert::put_Symbol, L"SYM");
  call(beyond, &IAlert::put_AlertName, L"name");
  EXPECT_EQ(call(beyond, &IAlert::put_AlertScript, L"CLOSE > 0"), S_OK);
  EXPECT_EQ(sink->take(), Lines{kTooMany});
  EXPECT_EQ(textOf(beyond, &IAlert::get_AlertScript), L"CLOSE > 0");
  append(beyond, 1, 1);
  EXPECT_EQ(sink->take(), Lines{kTooMany});
  append(beyond, 2, 1);
  EXPECT_EQ(sink->take(), Lines{kTooMany});
  others.clear();  // what was judged at the construction stays
  append(beyond, 3, 1);
  EXPECT_EQ(sink->take(), Lines{kTooMany});
  EXPECT_EQ(beyond->InitialiseTransientStore(250), S_OK);
  EXPECT_EQ(sink->take(), Lines{kTooMany});
  EXPECT_EQ(boolOf(beyond, &IAlert::ProcessScripData, L"CLOSE > 0"), 1);
  EXPECT_EQ(sink->take(), Lines{kTooMany});
}

TEST_F(AlertLimit, AlertsOfAnotherProcessCount) {
  std::vector<ComPtr<IAlert>> others;
  for (int i = 0; i < 400; ++i) others.push_back(library.make<IAlert>());
  {
    const Holder holder(599);
    EXPECT_TRUE(evaluates());  // the thousandth
    others.push_back(library.make<IAlert>());
    EXPECT_FALSE(evaluates());
    others.pop_back();
    EXPECT_TRUE(evaluates());
  }
  // The other process has let go of its alerts: there is room for as many again.
  for (int i = 0; i < 599; ++i) others.push_back(library.make<IAlert>());
  EXPECT_TRUE(evaluates());
  others.push_back(library.make<IAlert>());
  EXPECT_FALSE(evaluates());
}

TEST_F(AlertLimit, TheOtherProcessIsRefusedToo) {
  // It holds one alert more than there is room for; when it ends, that one is taken from the count as well.
  std::vector<ComPtr<IAlert>> others;
  for (int i = 0; i < 700; ++i) others.push_back(library.make<IAlert>());
  {
    const Holder holder(301);
    EXPECT_FALSE(evaluates());
  }
  for (int i = 0; i < 299; ++i) others.push_back(library.make<IAlert>());
  EXPECT_TRUE(evaluates());
}

TEST_F(AlertLimit, OtherComponentsDoNotCount) {
  std::vector<ComPtr<IUnknown>> others;
  for (int i = 0; i < 400; ++i) {
    others.push_back(library.make<IBacktest>());
    others.push_back(library.make<IScriptOutput>());
    others.push_back(library.make<IValidate>());
  }
  EXPECT_TRUE(evaluates());
}

}  // namespace
}  // namespace brindlewort::hosts
