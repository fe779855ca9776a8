// What trading on the signals of scripts would have brought, and what is wrong with a script that does not
// run. The library is registered.
//
//   MinGW-w64:
//     g++ -std=c++17 -I..\..\include backtest.cpp ..\..\include\brindlewort_com_i.c
//         -static -lole32 -loleaut32 -luuid
//   MSVC:
//     cl /std:c++17 /EHsc /I..\..\include backtest.cpp ..\..\include\brindlewort_com_i.c
//         ole32.lib oleaut32.lib uuid.lib

#include <cstdio>

#include "brindlewort_com.h"

// A text for one call.
class Text {
 public:
  explicit Text(const wchar_t* text) : text_(SysAllocString(text)) {}
  Text(const Text&) = delete;
  Text& operator=(const Text&) = delete;
  ~Text() { SysFreeString(text_); }
  operator BSTR() const { return text_; }

 private:
  BSTR text_;
};

template <class Interface>
static Interface* make(REFCLSID clsid, REFIID iid) {
  Interface* object = nullptr;
  CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, iid, reinterpret_cast<void**>(&object));
  return object;
}

static void showReport(IBacktest* backtest, const wchar_t* buy) {
  BSTR report = nullptr;
  backtest->Backtest(Text(buy), Text(L""), Text(L"CLOSE = 110"), Text(L""), 0.0,
                     Text(L"Stop=5;Trail=0;Target=0;Bars=0;"), &report);
  std::printf("%ls\n", report ? report : L"no report");
  SysFreeString(report);
}

static void showFault(IValidate* validate, const wchar_t* script) {
  BSTR answer = nullptr;
  validate->Validate(Text(script), -1, &answer);
  if (answer) std::printf("%ls: %ls\n", script, *answer ? answer : L"no fault");
  SysFreeString(answer);
}

int main() {
  if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 1;
  IBacktest* const backtest = make<IBacktest>(CLSID_Backtest, IID_IBacktest);
  IValidate* const validate = make<IValidate>(CLSID_Validate, IID_IValidate);
  if (!backtest || !validate) {
    std::printf("The classes cannot be made. Is the library registered?\n");
    return 1;
  }
  for (int day = 1; day <= 12; ++day) {
    const double price = 100.0 + day;
    double jdate = 0.0;
    backtest->ToJulianDate(2024, 1, day, 0, 0, 0, 0, &jdate);
    backtest->AppendRecord(jdate, price, price + 1.0, price - 1.0, price, 1000);
  }
  showFault(validate, L"CLOSE = 107");
  showReport(backtest, L"CLOSE = 107");
  showFault(validate, L"CLOSE=107");
  backtest->Release();
  validate->Release();
  CoUninitialize();
  return 0;
}
