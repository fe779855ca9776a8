// Every member of IValidate, early-bound.

#include "help.hpp"
#include "host.hpp"

namespace brindlewort::hosts {
namespace {

class ValidateMembers : public HostTest {
 protected:
  std::wstring answerTo(const wchar_t* script, int buildVersion = -1) {
    return textOf(validate, &IValidate::Validate, script, buildVersion);
  }
  std::wstring constant(const wchar_t* name) { return textOf(validate, &IValidate::get_Constant, name); }
  void TearDown() override {
    validate.Reset();
    HostTest::TearDown();
  }

  ComPtr<IValidate> validate = library.make<IValidate>();
};

TEST_F(ValidateMembers, AGoodScriptGivesAnEmptyTextOrTheCountOfSeries) {
  EXPECT_EQ(answerTo(L"CLOSE > OPEN"), L"");
  EXPECT_EQ(answerTo(L"CLOSE > OPEN", 0), L"NO Error:6");  // the prices and the expression
  EXPECT_EQ(answerTo(L"CLOSE > OPEN", 2'147'483'647), L"NO Error:6");
  EXPECT_EQ(answerTo(L"CLOSE > OPEN"), L"");
}

TEST_F(ValidateMembers, AFaultIsATextAndNoFailureOfTheCall) {
  EXPECT_EQ(answerTo(L"ABCD"), L"Error: Script too short.");
  EXPECT_EQ(answerTo(L"CLOSE>OPEN"), L"Error: No space before '>'");
  EXPECT_EQ(answerTo(L"CLOSE > FOO", 3), L"Error: 'FOO' is not a valid script");
  EXPECT_EQ(answerTo(L"SMA(CLOSE, 0) > 1"), L"Error: 'periods' argument of 'SMA' is invalid.");
}

TEST_F(ValidateMembers, ConstantsAreThoseOfTheScriptLastRun) {
  EXPECT_EQ(constant(L"SYMBOL"), L"");
  EXPECT_EQ(
      answerTo(L"SET SYMBOL = Q\r\nSET EXCHANGE = 7\r\nSET SECTOR = Z\r\nSET INDUSTRY = 9\r\nCLOSE > 1"),
      L"");
  EXPECT_EQ(constant(L"SYMBOL"), L"Q");
  EXPECT_EQ(constant(L"exchange"), L"7");
  EXPECT_EQ(constant(L"Sector"), L"Z");
  EXPECT_EQ(constant(L"INDUSTRY"), L"9");
  EXPECT_EQ(constant(L"CLOSE"), L"");
  answerTo(L"CLOSE>1");  // refused by a check, so not run
  EXPECT_EQ(constant(L"SYMBOL"), L"Q");
  answerTo(L"CLOSE > 1");
  EXPECT_EQ(constant(L"SYMBOL"), L"");
}

TEST_F(ValidateMembers, TheHelpIsThatOfTheLastRun) {
  EXPECT_EQ(textOf(validate, &IValidate::get_ScriptHelp), L"");
  answerTo(L"SMA(CLOSE, 0) > 1");
  EXPECT_EQ(textOf(validate, &IValidate::get_ScriptHelp), manualEntry(130));
  EXPECT_EQ(textOf(validate, &IValidate::get_ScriptHelp), manualEntry(130));
  answerTo(L"CLOSE>1");
  EXPECT_EQ(textOf(validate, &IValidate::get_ScriptHelp), manualEntry(130));
  answerTo(L"CLOSE > 1");
  EXPECT_EQ(textOf(validate, &IValidate::get_ScriptHelp), L"");
}

TEST_F(ValidateMembers, NullsAreEmptyTextsAndMissingPlacesRefused) {
  Text text;
  EXPECT_EQ(validate->Validate(nullptr, -1, text.place()), S_OK);
  EXPECT_EQ(text.str(), L"Error: Script too short.");
  Text none;
  EXPECT_EQ(validate->get_Constant(nullptr, none.place()), S_OK);
  EXPECT_EQ(none.str(), L"");
  EXPECT_EQ(validate->Validate(nullptr, -1, nullptr), E_POINTER);
  EXPECT_EQ(validate->get_Constant(nullptr, nullptr), E_POINTER);
  EXPECT_EQ(validate->get_ScriptHelp(nullptr), E_POINTER);
}

TEST_F(ValidateMembers, EveryEntryOfTheManualIsInTheStringTable) {
  int entries = 0;
  for (const HelpText& entry : helpTexts()) {
    // Without a buffer the table's own text is given.
    const wchar_t* text = nullptr;
    const int length =
        LoadStringW(library.module(), static_cast<UINT>(entry.id), reinterpret_cast<LPWSTR>(&text), 0);
    EXPECT_EQ(std::wstring(text, text + length), manualEntry(entry.id)) << entry.id;
    ++entries;
  }
  EXPECT_EQ(entries, 88);  // the title, and 107 to 193
  wchar_t title[40];
  EXPECT_GT(LoadStringW(library.module(), 100, title, 40), 0);
  EXPECT_EQ(std::wstring(title), L"Brindlewort");
}

}  // namespace
}  // namespace brindlewort::hosts
