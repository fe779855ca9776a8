// The series that a script computes: as text over the whole history, and by address on the incremental way.
// The library is loaded by its path, without registration.
//
//   MinGW-w64:
//     g++ -std=c++17 -I..\..\include output.cpp ..\..\include\brindlewort_com_i.c
//         -static -lole32 -loleaut32 -luuid
//   MSVC:
//     cl /std:c++17 /EHsc /I..\..\include output.cpp ..\..\include\brindlewort_com_i.c
//         ole32.lib oleaut32.lib uuid.lib
//
// Run it with the path of the library: output ..\..\Brindlewort.dll

#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "brindlewort_com.h"

// What the number that GetScriptOutput_PTR gives is the address of.
struct Series {
  const double* values;
  std::size_t count;
};
struct SeriesList {
  std::size_t count;
  const Series* items;
};

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

static IScriptOutput* make(const char* library) {
  using ClassObject = HRESULT(WINAPI*)(REFCLSID, REFIID, void**);
  const HMODULE module = LoadLibraryA(library);
  const FARPROC entry = module ? GetProcAddress(module, "DllGetClassObject") : nullptr;
  if (!entry) return nullptr;
  const auto classObject = reinterpret_cast<ClassObject>(reinterpret_cast<void*>(entry));
  IClassFactory* factory = nullptr;
  IScriptOutput* output = nullptr;
  if (FAILED(classObject(CLSID_ScriptOutput, IID_IClassFactory, reinterpret_cast<void**>(&factory))))
    return nullptr;
  factory->CreateInstance(nullptr, IID_IScriptOutput, reinterpret_cast<void**>(&output));
  factory->Release();
  return output;
}

static double jdateOf(IScriptOutput* output, int day) {
  double jdate = 0.0;
  output->ToJulianDate(2024, 1, day, 0, 0, 0, 0, &jdate);
  return jdate;
}

static void showWholeHistory(IScriptOutput* output) {
  for (int day = 1; day <= 12; ++day) {
    const double price = 100.0 + day;
    output->AppendRecord(jdateOf(output, day), price, price + 1.0, price - 1.0, price, 1000);
  }
  BSTR text = nullptr;
  output->GetScriptOutput(Text(L"SET AVERAGE = SMA(CLOSE, 3)\r\nCLOSE > AVERAGE"), 0, Text(L"AVERAGE"),
                          &text);
  if (text) std::printf("%ls", text);  // a null text: too few bars, or an error, which the event tells
  SysFreeString(text);
}

static void showIncrementalWay(IScriptOutput* output) {
  const Text script(L"SET AVERAGE = SMA(CLOSE, 3)\r\nCLOSE > AVERAGE");
  VARIANT_BOOL prepared = VARIANT_FALSE;
  output->InitialiseTransientStore(250);
  output->ProcessScripData(script, &prepared);
  for (int day = 1; day <= 12; ++day) {
    const double price = 100.0 + day;
    output->AppendRecord_New(jdateOf(output, day), price, price + 1.0, price - 1.0, price, 1000);
  }
  int address = -1;
  output->GetScriptOutput_PTR(script, 0, Text(L"AVERAGE"), &address);
  if (address == -1) return;
  const auto* const list = reinterpret_cast<const SeriesList*>(static_cast<std::intptr_t>(address));
  const Series& average = list->items[0];
  std::printf("%zu rows, the last %.4f\n", average.count, average.values[average.count - 1]);
}

int main(int argc, char** argv) {
  if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 1;
  IScriptOutput* const output = make(argc > 1 ? argv[1] : "Brindlewort.dll");
  if (!output) {
    std::printf("The library cannot be loaded: error %lu\n", GetLastError());
    return 1;
  }
  showWholeHistory(output);
  showIncrementalWay(output);
  output->Release();
  CoUninitialize();
  return 0;
}
