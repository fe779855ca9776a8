// Registration scripts: what they say, and which texts are none.

#include "shell/com/registration_script.hpp"

#include <gtest/gtest.h>

namespace brindlewort::com {
namespace {

constexpr const wchar_t* kModule = L"C:\\Program Files\\B\\Brindlewort.dll";

std::vector<RegistryKey> read(std::wstring_view script) {
  const auto keys = readRegistrationScript(script, kModule);
  EXPECT_TRUE(keys.has_value());
  return keys.value_or(std::vector<RegistryKey>());
}

bool isScript(std::wstring_view text) {
  return readRegistrationScript(text, kModule).has_value();
}

using Values = std::vector<std::pair<std::wstring, std::wstring>>;

TEST(RegistrationScript, AClassWithAllThatItHas) {
  const auto keys = read(
      LR"(
HKCR
{
  NoRemove CLSID
  {
    ForceRemove {83392496-8720-4F6B-B906-984B587FDF74} = s 'Alert Class'
    {
      InprocServer32 = s '%MODULE%'
      {
        val ThreadingModel = s 'Apartment'
        val 'Two words' = s ''
      }
      'Programmable'
    }
  }
  Plain
})");
  ASSERT_EQ(keys.size(), 2u);
  const RegistryKey& root = keys[0];
  EXPECT_EQ(root.name, L"CLSID");
  EXPECT_EQ(root.policy, KeyPolicy::kNoRemove);
  EXPECT_EQ(root.defaultValue, std::nullopt);
  ASSERT_EQ(root.keys.size(), 1u);
  const RegistryKey& made = root.keys[0];
  EXPECT_EQ(made.name, L"{83392496-8720-4F6B-B906-984B587FDF74}");
  EXPECT_EQ(made.policy, KeyPolicy::kForceRemove);
  EXPECT_EQ(made.defaultValue, L"Alert Class");
  ASSERT_EQ(made.keys.size(), 2u);
  EXPECT_EQ(made.keys[0].name, L"InprocServer32");
  EXPECT_EQ(made.keys[0].policy, KeyPolicy::kPlain);
  EXPECT_EQ(made.keys[0].defaultValue, kModule);
  EXPECT_EQ(made.keys[0].values, (Values{{L"ThreadingModel", L"Apartment"}, {L"Two words", L""}}));
  EXPECT_TRUE(made.keys[0].keys.empty());
  EXPECT_EQ(made.keys[1].name, L"Programmable");
  EXPECT_EQ(keys[1].name, L"Plain");
  EXPECT_TRUE(keys[1].keys.empty());
}

TEST(RegistrationScript, MayBeEmpty) {
  EXPECT_TRUE(read(L"HKCR { }").empty());
  EXPECT_TRUE(read(L"\r\n\tHKCR\r\n{\r\n}\r\n").empty());
}

TEST(RegistrationScript, KeysNestAndFollow) {
  const auto keys = read(L"HKCR { a { b { c } d } e }");
  ASSERT_EQ(keys.size(), 2u);
  ASSERT_EQ(keys[0].keys.size(), 2u);
  EXPECT_EQ(keys[0].keys[0].name, L"b");
  ASSERT_EQ(keys[0].keys[0].keys.size(), 1u);
  EXPECT_EQ(keys[0].keys[0].keys[0].name, L"c");
  EXPECT_EQ(keys[0].keys[1].name, L"d");
  EXPECT_EQ(keys[1].name, L"e");
}

TEST(RegistrationScript, TheModuleStandsWhereItIsNamed) {
  const auto keys =
      read(L"HKCR { a = s '%MODULE%,%MODULE%' { val b = s 'x%MODULE%y' val c = s '%module%' } }");
  ASSERT_EQ(keys.size(), 1u);
  const std::wstring module = kModule;
  EXPECT_EQ(keys[0].defaultValue, module + L"," + module);
  EXPECT_EQ(keys[0].values, (Values{{L"b", L"x" + module + L"y"}, {L"c", L"%module%"}}));
  // A path that holds the mark itself is not looked at again.
  const auto odd = readRegistrationScript(L"HKCR { a = s '%MODULE%' }", L"C:\\%MODULE%\\x.dll");
  ASSERT_TRUE(odd.has_value());
  EXPECT_EQ(odd->at(0).defaultValue, L"C:\\%MODULE%\\x.dll");
}

TEST(RegistrationScript, QuotesHoldBlanksAndSigns) {
  const auto keys = read(L"HKCR { 'my key' = s ' { = } ' 'next'{ } }");
  ASSERT_EQ(keys.size(), 2u);
  EXPECT_EQ(keys[0].name, L"my key");
  EXPECT_EQ(keys[0].defaultValue, L" { = } ");
  EXPECT_EQ(keys[1].name, L"next");
}

TEST(RegistrationScript, AFaultyTextIsNone) {
  for (const wchar_t* text : {
           L"",
           L"HKCR",
           L"HKCR {",
           L"HKLM { }",
           L"{ }",
           L"HKCR { } }",
           L"HKCR { } more",
           L"HKCR { a {",
           L"HKCR { a { }",
           L"HKCR { a = }",
           L"HKCR { a = s }",
           L"HKCR { a = d '1' }",
           L"HKCR { a = 's' 'open }",
           L"HKCR { 'open }",
           L"HKCR { '' }",
           L"HKCR { val a }",
           L"HKCR { val a = d '1' }",
           L"HKCR { val = s 'x' }",
           L"HKCR { NoRemove }",
           L"HKCR } {",
       }) {
    EXPECT_FALSE(isScript(text)) << testing::PrintToString(std::wstring(text));
  }
}

TEST(RegistrationScript, EveryBeginningOfAScriptHasAnAnswer) {
  const std::wstring whole = L"HKCR { NoRemove a = s '%MODULE%' { val b = s 'c' ForceRemove 'd e' { } } }";
  ASSERT_TRUE(isScript(whole));
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_FALSE(isScript(whole.substr(0, length))) << length;
  }
}

TEST(RegistrationScript, DeepNestingHasAnAnswer) {
  std::wstring script = L"HKCR {";
  for (int i = 0; i < 200; ++i) script += L" a {";
  EXPECT_FALSE(isScript(script));
  for (int i = 0; i < 201; ++i) script += L" }";
  EXPECT_TRUE(isScript(script));
}

}  // namespace
}  // namespace brindlewort::com
