// Texts between a host, which has wide ones, and the library, which has those of the active code page.

#include <vector>

#include "bars.hpp"
#include "sink.hpp"

namespace brindlewort::hosts {
namespace {

/// A text after its way through the active code page, up to its first zero.
std::wstring throughCodePage(const std::wstring& text) {
  std::vector<char> narrow(text.size() * 4 + 1);
  EXPECT_NE(WideCharToMultiByte(CP_ACP, 0, text.c_str(), -1, narrow.data(), static_cast<int>(narrow.size()),
                                nullptr, nullptr),
            0);
  std::vector<wchar_t> wide(narrow.size());
  EXPECT_NE(MultiByteToWideChar(CP_ACP, 0, narrow.data(), -1, wide.data(), static_cast<int>(wide.size())), 0);
  return wide.data();
}

class Texts : public HostTest {
 protected:
  std::wstring given(const std::wstring& text) {
    EXPECT_EQ(call(alert, &IAlert::put_Symbol, text), S_OK);
    return textOf(alert, &IAlert::get_Symbol);
  }
  void TearDown() override {
    alert.Reset();
    HostTest::TearDown();
  }
  ComPtr<IAlert> alert = library.make<IAlert>();
};

TEST_F(Texts, AnEmptyTextIsEmptyAndNotNull) {
  for (auto get :
       {&IAlert::get_Symbol, &IAlert::get_AlertName, &IAlert::get_AlertScript, &IAlert::get_ScriptHelp}) {
    Text text;
    EXPECT_EQ((alert.Get()->*get)(text.place()), S_OK);
    EXPECT_FALSE(text.isNull());
    EXPECT_EQ(SysStringLen(text), 0u);
  }
}

TEST_F(Texts, ANullTextIsAnEmptyOne) {
  given(L"before");
  EXPECT_EQ(alert->put_Symbol(nullptr), S_OK);
  EXPECT_EQ(textOf(alert, &IAlert::get_Symbol), L"");
  EXPECT_EQ(alert->put_AlertName(nullptr), S_OK);
  EXPECT_EQ(alert->put_AlertScript(nullptr), S_OK);
  EXPECT_EQ(alert->GetVariableValuesLog(nullptr), S_OK);
  EXPECT_EQ(refusedBoolOf(alert, &IAlert::ProcessScripData, nullptr), 0);
  EXPECT_EQ(boolOf(alert, &IAlert::Evaluate, nullptr), 0);
}

TEST_F(Texts, ATextEndsAtItsFirstZero) {
  EXPECT_EQ(given(std::wstring(L"AB\0CD", 5)), L"AB");
  EXPECT_EQ(given(std::wstring(L"\0CD", 3)), L"");
  EXPECT_EQ(given(std::wstring(L"AB\0", 3)), L"AB");
}

TEST_F(Texts, AScriptEndsAtItsFirstZero) {
  const ComPtr<IValidate> validate = library.make<IValidate>();
  EXPECT_EQ(textOf(validate, &IValidate::Validate, std::wstring(L"CLOSE > OPEN\0 AND FOO", 21), -1), L"");
}

TEST_F(Texts, CharactersOfTheCodePageComeBack) {
  // Latin letters that every code page of western Europe has.
  for (const wchar_t* text : {L"\u00e9\u00e8\u00fc\u00df", L"\u00c5ngstr\u00f6m"}) {
    EXPECT_EQ(given(text), throughCodePage(text));
    if (GetACP() == 1252 || GetACP() == CP_UTF8) {
      EXPECT_EQ(given(text), text);
    }
  }
  EXPECT_EQ(given(L"\u20ac 5"), throughCodePage(L"\u20ac 5"));
}

TEST_F(Texts, CharactersThatTheCodePageLacksBecomeItsStandIn) {
  for (const wchar_t* text :
       {L"\u6f22\u5b57", L"A\u0416B", L"\u0141", L"\xd83d\xde00", L"\xd800", L"x\xdc00y"}) {
    EXPECT_EQ(given(text), throughCodePage(text));
  }
  if (GetACP() == 1252) {
    EXPECT_EQ(given(L"\u6f22\u5b57"), L"??");
  }
}

TEST_F(Texts, EveryCharacterHasAResult) {
  std::wstring all;
  for (unsigned c = 1; c < 0x10000; ++c) all += static_cast<wchar_t>(c);
  EXPECT_EQ(given(all), throughCodePage(all));
}

TEST_F(Texts, LongTextsComeBackWhole) {
  const std::wstring text(1'000'000, L'x');
  EXPECT_EQ(given(text) == text, true);
}

TEST_F(Texts, TextsOfEventsAreThoseOfTheHost) {
  const ComPtr<Sink> sink = connect(alert);
  given(L"\u00e9");
  call(alert, &IAlert::put_AlertName, L"\u00fc");
  call(alert, &IAlert::put_AlertScript, L"CLOSE > 0");
  appendAll(alert, {1, 1, 1, 1, 1});
  EXPECT_EQ(sink->take(), Lines{L"1: '" + throughCodePage(L"\u00fc") + L"' '" + throughCodePage(L"\u00e9") +
                                L"' R8 2451549 R8 1"});
}

TEST_F(Texts, EachTextIsTheCallersOwn) {
  given(L"SYM");
  Text first, second;
  EXPECT_EQ(alert->get_Symbol(first.place()), S_OK);
  EXPECT_EQ(alert->get_Symbol(second.place()), S_OK);
  EXPECT_NE(static_cast<BSTR>(first), static_cast<BSTR>(second));
  static_cast<BSTR>(first)[0] = L'X';
  EXPECT_EQ(second.str(), L"SYM");
  EXPECT_EQ(textOf(alert, &IAlert::get_Symbol), L"SYM");
}

}  // namespace
}  // namespace brindlewort::hosts
