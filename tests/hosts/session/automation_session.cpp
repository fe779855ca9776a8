// Plays a session on the automation server, early bound, without registration: Brindlewort.dll stands beside
// this program.

#include <ocidl.h>
#include <oleauto.h>
#include <windows.h>
#include <wrl/client.h>

#include <cstdio>
#include <string>
#include <utility>

#include "brindlewort_com.h"
#include "session.hpp"

namespace brindlewort::session {

using Microsoft::WRL::ComPtr;

namespace {

std::string utf8(const wchar_t* text) {
  if (!text) return std::string();
  const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
  std::string result(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text, -1, result.data(), size, nullptr, nullptr);
  result.resize(result.size() - 1);  // without the closing zero
  return result;
}

BSTR bstr(const std::string& text) {
  const int size = MultiByteToWideChar(CP_UTF8, 0, text.c_str(), -1, nullptr, 0);
  const BSTR result = SysAllocStringLen(nullptr, static_cast<UINT>(size - 1));
  MultiByteToWideChar(CP_UTF8, 0, text.c_str(), -1, result, size);
  return result;
}

}  // namespace

template <>
struct Parameter<LONG> : IntegerParameter<LONG> {
  using IntegerParameter::IntegerParameter;
};
template <>
struct Parameter<int> : IntegerParameter<int> {
  using IntegerParameter::IntegerParameter;
};
template <>
struct Parameter<unsigned char> : IntegerParameter<unsigned char> {
  using IntegerParameter::IntegerParameter;
};
template <>
struct Parameter<LONG*> : IntegerResult<LONG> {
  using IntegerResult::IntegerResult;
};
template <>
struct Parameter<VARIANT_BOOL*> : IntegerResult<VARIANT_BOOL> {
  using IntegerResult::IntegerResult;
};

template <>
struct Parameter<BSTR> {
  explicit Parameter(Arguments& words) : value(bstr(words.text())) {}
  Parameter(Parameter&& other) noexcept : value(std::exchange(other.value, nullptr)) {}
  ~Parameter() { SysFreeString(value); }
  BSTR pass() { return value; }
  void tell(Transcript&) {}
  BSTR value;
};

template <>
struct Parameter<BSTR*> {
  explicit Parameter(Arguments&) {}
  BSTR* pass() { return &value; }
  void tell(Transcript& transcript) {
    transcript.text(value ? utf8(value).c_str() : nullptr);
    SysFreeString(value);
  }
  BSTR value = nullptr;
};

/// The one integer of its kind is the handle of a list.
template <>
struct Parameter<int*> {
  explicit Parameter(Arguments&) {}
  int* pass() { return &value; }
  void tell(Transcript& transcript) {
    transcript.list(value == -1 ? nullptr : reinterpret_cast<const void*>(static_cast<std::intptr_t>(value)));
  }
  int value = kUnwritten;
};

namespace {

/// Writes the events that it gets into the transcript.
class Sink final : public IDispatch {
 public:
  Sink(REFIID events, Transcript& transcript) : events_(events), transcript_(transcript) {}

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    const bool known = iid == __uuidof(IUnknown) || iid == __uuidof(IDispatch) || iid == events_;
    *object = known ? this : nullptr;
    if (known) AddRef();
    return known ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }
  STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  STDMETHODIMP Invoke(DISPID event, REFIID, LCID, WORD, DISPPARAMS* arguments, VARIANT*, EXCEPINFO*,
                      UINT*) override {
    const bool isAlert = events_ == __uuidof(_IAlertEvents) && event == 1;
    std::string line = isAlert ? "  event Alert" : "  event ScriptError";
    for (UINT i = arguments->cArgs; i-- > 0;) {
      const VARIANTARG& argument = arguments->rgvarg[i];
      line += ' ' + (argument.vt == VT_R8 ? formatted(argument.dblVal) : quoted(utf8(argument.bstrVal)));
    }
    transcript_.line(line);
    return S_OK;
  }

 private:
  ~Sink() = default;

  ULONG references_ = 1;
  const IID events_;
  Transcript& transcript_;
};

using ClassObject = HRESULT(WINAPI*)(REFCLSID, REFIID, void**);

struct Components {
  ClassObject classObject = nullptr;
  ComPtr<IAlert> alert;
  ComPtr<IBacktest> backtest;
  ComPtr<IScriptOutput> output;
  ComPtr<IValidate> validate;
};

template <class Interface>
void make(const Components& all, REFCLSID clsid, ComPtr<Interface>& component) {
  ComPtr<IClassFactory> factory;
  component.Reset();
  if (SUCCEEDED(all.classObject(clsid, IID_PPV_ARGS(&factory)))) {
    factory->CreateInstance(nullptr, IID_PPV_ARGS(&component));
  }
}

void connect(IUnknown* component, REFIID events, Transcript& transcript) {
  ComPtr<IUnknown> object(component);
  ComPtr<IConnectionPointContainer> container;
  ComPtr<IConnectionPoint> point;
  ComPtr<Sink> sink;
  sink.Attach(new Sink(events, transcript));
  DWORD cookie = 0;
  if (FAILED(object.As(&container)) || FAILED(container->FindConnectionPoint(events, &point)) ||
      FAILED(point->Advise(sink.Get(), &cookie))) {
    transcript.line("  no events");
  }
}

template <class Interface, class... Types>
Call member(const ComPtr<Interface>& component, HRESULT (STDMETHODCALLTYPE Interface::*function)(Types...)) {
  return [&component, function](Arguments& words, Transcript& transcript) {
    callMember<Types...>([&](Types... values) { return (component.Get()->*function)(values...); }, words,
                         transcript);
  };
}

void addAlert(Face& face, Components& all, Transcript& transcript) {
  const auto& alert = all.alert;
  face.constructors["Alert"] = [&all, &transcript] {
    make(all, __uuidof(::Alert), all.alert);
    connect(all.alert.Get(), __uuidof(_IAlertEvents), transcript);
  };
  face.members.insert({
      {"Alert.AppendRecord", member(alert, &IAlert::AppendRecord)},
      {"Alert.EditRecord", member(alert, &IAlert::EditRecord)},
      {"Alert.GetRecordByJDate", member(alert, &IAlert::GetRecordByJDate)},
      {"Alert.GetRecordByIndex", member(alert, &IAlert::GetRecordByIndex)},
      {"Alert.ClearRecords", member(alert, &IAlert::ClearRecords)},
      {"Alert.RecordCount", member(alert, &IAlert::get_RecordCount)},
      {"Alert.Symbol", member(alert, &IAlert::get_Symbol)},
      {"Alert.Symbol=", member(alert, &IAlert::put_Symbol)},
      {"Alert.AlertScript", member(alert, &IAlert::get_AlertScript)},
      {"Alert.AlertScript=", member(alert, &IAlert::put_AlertScript)},
      {"Alert.ToJulianDate", member(alert, &IAlert::ToJulianDate)},
      {"Alert.FromJulianDate", member(alert, &IAlert::FromJulianDate)},
      {"Alert.AlertName", member(alert, &IAlert::get_AlertName)},
      {"Alert.AlertName=", member(alert, &IAlert::put_AlertName)},
      {"Alert.ScriptHelp", member(alert, &IAlert::get_ScriptHelp)},
      {"Alert.GetJDate", member(alert, &IAlert::GetJDate)},
      {"Alert.Evaluate", member(alert, &IAlert::Evaluate)},
      {"Alert.EditJDate", member(alert, &IAlert::EditJDate)},
      {"Alert.ProcessScripData", member(alert, &IAlert::ProcessScripData)},
      {"Alert.AppendRecord_Opt", member(alert, &IAlert::AppendRecord_Opt)},
      {"Alert.EditRecord_Opt", member(alert, &IAlert::EditRecord_Opt)},
      {"Alert.InitialiseTransientStore", member(alert, &IAlert::InitialiseTransientStore)},
      {"Alert.GetVariableValuesLog", member(alert, &IAlert::GetVariableValuesLog)},
  });
}

void addBacktest(Face& face, Components& all, Transcript& transcript) {
  const auto& backtest = all.backtest;
  face.constructors["Backtest"] = [&all, &transcript] {
    make(all, __uuidof(::Backtest), all.backtest);
    connect(all.backtest.Get(), __uuidof(_IBacktestEvents), transcript);
  };
  face.members.insert({
      {"Backtest.AppendRecord", member(backtest, &IBacktest::AppendRecord)},
      {"Backtest.EditRecord", member(backtest, &IBacktest::EditRecord)},
      {"Backtest.GetRecordByJDate", member(backtest, &IBacktest::GetRecordByJDate)},
      {"Backtest.GetRecordByIndex", member(backtest, &IBacktest::GetRecordByIndex)},
      {"Backtest.ClearRecords", member(backtest, &IBacktest::ClearRecords)},
      {"Backtest.RecordCount", member(backtest, &IBacktest::get_RecordCount)},
      {"Backtest.ToJulianDate", member(backtest, &IBacktest::ToJulianDate)},
      {"Backtest.FromJulianDate", member(backtest, &IBacktest::FromJulianDate)},
      {"Backtest.Backtest", member(backtest, &IBacktest::Backtest)},
      {"Backtest.ScriptHelp", member(backtest, &IBacktest::get_ScriptHelp)},
      {"Backtest.Backtest_New", member(backtest, &IBacktest::Backtest_New)},
  });
}

void addScriptOutput(Face& face, Components& all, Transcript& transcript) {
  const auto& output = all.output;
  face.constructors["ScriptOutput"] = [&all, &transcript] {
    make(all, __uuidof(::ScriptOutput), all.output);
    connect(all.output.Get(), __uuidof(_IScriptOutputEvents), transcript);
  };
  face.members.insert({
      {"ScriptOutput.AppendRecord", member(output, &IScriptOutput::AppendRecord)},
      {"ScriptOutput.EditRecord", member(output, &IScriptOutput::EditRecord)},
      {"ScriptOutput.GetRecordByJDate", member(output, &IScriptOutput::GetRecordByJDate)},
      {"ScriptOutput.GetRecordByIndex", member(output, &IScriptOutput::GetRecordByIndex)},
      {"ScriptOutput.ClearRecords", member(output, &IScriptOutput::ClearRecords)},
      {"ScriptOutput.RecordCount", member(output, &IScriptOutput::get_RecordCount)},
      {"ScriptOutput.ToJulianDate", member(output, &IScriptOutput::ToJulianDate)},
      {"ScriptOutput.FromJulianDate", member(output, &IScriptOutput::FromJulianDate)},
      {"ScriptOutput.GetScriptOutput", member(output, &IScriptOutput::GetScriptOutput)},
      {"ScriptOutput.ScriptHelp", member(output, &IScriptOutput::get_ScriptHelp)},
      {"ScriptOutput.GetJDate", member(output, &IScriptOutput::GetJDate)},
      {"ScriptOutput.GetRecordNumberByJDate", member(output, &IScriptOutput::GetRecordNumberByJDate)},
      {"ScriptOutput.GetCustomIndFromCondition", member(output, &IScriptOutput::GetCustomIndFromCondition)},
      {"ScriptOutput.EditJDate", member(output, &IScriptOutput::EditJDate)},
      {"ScriptOutput.GetScriptOutput_New", member(output, &IScriptOutput::GetScriptOutput_New)},
      {"ScriptOutput.AppendRecord_New", member(output, &IScriptOutput::AppendRecord_New)},
      {"ScriptOutput.EditRecord_New", member(output, &IScriptOutput::EditRecord_New)},
      {"ScriptOutput.EditJDate_New", member(output, &IScriptOutput::EditJDate_New)},
      {"ScriptOutput.ProcessScripData", member(output, &IScriptOutput::ProcessScripData)},
      {"ScriptOutput.InitialiseTransientStore", member(output, &IScriptOutput::InitialiseTransientStore)},
      {"ScriptOutput.SetDataRetrieveMode", member(output, &IScriptOutput::SetDataRetrieveMode)},
      {"ScriptOutput.AddOrRemoveBasicVectorSeries",
       member(output, &IScriptOutput::AddOrRemoveBasicVectorSeries)},
      {"ScriptOutput.UpdateBasicVectorData", member(output, &IScriptOutput::UpdateBasicVectorData)},
      {"ScriptOutput.GetScriptOutput_PTR", member(output, &IScriptOutput::GetScriptOutput_PTR)},
      {"ScriptOutput.GetCustomIndFromCondition_NEW",
       member(output, &IScriptOutput::GetCustomIndFromCondition_NEW)},
      {"ScriptOutput.GetVariableValuesLog", member(output, &IScriptOutput::GetVariableValuesLog)},
  });
}

void addValidate(Face& face, Components& all) {
  const auto& validate = all.validate;
  face.constructors["Validate"] = [&all] { make(all, __uuidof(::Validate), all.validate); };
  face.members.insert({
      {"Validate.Validate", member(validate, &IValidate::Validate)},
      {"Validate.Constant", member(validate, &IValidate::get_Constant)},
      {"Validate.ScriptHelp", member(validate, &IValidate::get_ScriptHelp)},
  });
}

int playAll(int argc, char** argv) {
  Components all;
  const HMODULE server = LoadLibraryW(L"Brindlewort.dll");
  const auto entry = server ? GetProcAddress(server, "DllGetClassObject") : nullptr;
  if (!entry) {
    std::fprintf(stderr, "Brindlewort.dll cannot be loaded: error %lu\n", GetLastError());
    return 2;
  }
  all.classObject = reinterpret_cast<ClassObject>(reinterpret_cast<void*>(entry));
  return playFiles(argc, argv, [&](Transcript& transcript) {
    Face face;
    addAlert(face, all, transcript);
    addBacktest(face, all, transcript);
    addScriptOutput(face, all, transcript);
    addValidate(face, all);
    return face;
  });
}

}  // namespace

}  // namespace brindlewort::session

int main(int argc, char** argv) {
  if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 2;
  const int result = brindlewort::session::playAll(argc, argv);
  CoUninitialize();
  return result;
}
