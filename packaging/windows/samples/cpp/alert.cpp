// An alert that tells by events: a sink gets them. The library is registered.
//
//   MinGW-w64:
//     g++ -std=c++17 -I..\..\include alert.cpp ..\..\include\brindlewort_com_i.c
//         -static -lole32 -loleaut32 -luuid
//   MSVC:
//     cl /std:c++17 /EHsc /I..\..\include alert.cpp ..\..\include\brindlewort_com_i.c
//         ole32.lib oleaut32.lib uuid.lib
#include <ocidl.h>

#include <cstdio>

#include "brindlewort_com.h"

// A sink lives at least as long as it is connected; this one lives on the stack, longer than the component.
class AlertSink : public IDispatch {
 public:
  HRESULT WINAPI QueryInterface(REFIID iid, void** object) override {
    const bool known = iid == IID_IUnknown || iid == IID_IDispatch || iid == DIID__IAlertEvents;
    *object = known ? this : nullptr;
    return known ? S_OK : E_NOINTERFACE;
  }
  ULONG WINAPI AddRef() override { return 2; }
  ULONG WINAPI Release() override { return 1; }
  HRESULT WINAPI GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  HRESULT WINAPI GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  HRESULT WINAPI GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }

  // Arguments stand in reverse order. Alert brings four: name, symbol, date of the last trade, its price.
  HRESULT WINAPI Invoke(DISPID event, REFIID, LCID, WORD, DISPPARAMS* arguments, VARIANT*, EXCEPINFO*,
                        UINT*) override {
    const VARIANTARG* const given = arguments->rgvarg;
    if (event == 1 && arguments->cArgs == 4) {
      std::printf("Alert: %ls, %ls, last traded at %.2f\n", given[1].bstrVal, given[0].bstrVal,
                  given[3].dblVal);
    } else if (event == 2 && arguments->cArgs == 3) {
      std::printf("ScriptError: %ls, %ls: %ls\n", given[2].bstrVal, given[1].bstrVal, given[0].bstrVal);
    }
    return S_OK;
  }
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

static IConnectionPoint* eventsOf(IAlert* alert) {
  IConnectionPointContainer* container = nullptr;
  IConnectionPoint* point = nullptr;
  alert->QueryInterface(IID_IConnectionPointContainer, reinterpret_cast<void**>(&container));
  container->FindConnectionPoint(DIID__IAlertEvents, &point);
  container->Release();
  return point;
}

static void watch(IAlert* alert) {
  AlertSink sink;
  DWORD cookie = 0;
  IConnectionPoint* const events = eventsOf(alert);
  events->Advise(&sink, &cookie);

  alert->put_Symbol(Text(L"XYZ"));
  alert->put_AlertName(Text(L"High close"));
  alert->put_AlertScript(Text(L"CLOSE > 111"));
  for (int day = 1; day <= 12; ++day) {
    const double price = 100.0 + day;
    double jdate = 0.0;
    alert->ToJulianDate(2024, 1, day, 0, 0, 0, 0, &jdate);
    alert->AppendRecord(jdate, price, price + 1.0, price - 1.0, price, 1000, jdate);
  }
  alert->put_AlertScript(Text(L"CLOSE > NOSUCH"));

  events->Unadvise(cookie);
  events->Release();
}

int main() {
  if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 1;
  IAlert* alert = nullptr;
  const HRESULT result = CoCreateInstance(CLSID_Alert, nullptr, CLSCTX_INPROC_SERVER, IID_IAlert,
                                          reinterpret_cast<void**>(&alert));
  if (FAILED(result)) {
    std::printf("The class cannot be made: 0x%08lx. Is the library registered?\n",
                static_cast<unsigned long>(result));
    return 1;
  }
  watch(alert);
  alert->Release();
  CoUninitialize();
  return 0;
}
