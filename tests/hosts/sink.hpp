#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host.hpp"

/// Receivers of events.
namespace brindlewort::hosts {

/// An argument as it came: "'text'" or "R8 7.5"; the number of the type for others.
inline std::wstring argumentText(const VARIANT& argument) {
  if (argument.vt == VT_BSTR) {
    return argument.bstrVal ? L"'" + std::wstring(argument.bstrVal, SysStringLen(argument.bstrVal)) + L"'"
                            : L"null text";
  }
  if (argument.vt != VT_R8) return L"type " + std::to_wstring(argument.vt);
  std::wstring number = std::to_wstring(argument.dblVal);
  number.erase(number.find_last_not_of(L'0') + 1);
  if (number.back() == L'.') number.pop_back();
  return L"R8 " + number;
}

/// A call that a sink got.
struct EventCall {
  DISPID id;
  std::vector<std::wstring> arguments;  ///< in the order of the array
  WORD flags;
  UINT namedArguments;
  bool reservedIsNull;
  bool hasResult, hasException, hasFaultyArgument;
};

/// "1: 'name' 'SYM' R8 7.5 R8 21", in the order of the array.
inline std::wstring lineOf(const EventCall& event) {
  std::wstring line = std::to_wstring(event.id) + L":";
  for (const std::wstring& argument : event.arguments) line += L" " + argument;
  return line;
}

/// Writes down the events it gets. Lives as long as it is referred to, for the first time by its maker.
class Sink final : public IDispatch {
 public:
  /// `iid`: the event interface that it says to have beside IUnknown and IDispatch.
  static ComPtr<Sink> make(REFIID iid) {
    ComPtr<Sink> sink;
    *sink.GetAddressOf() = new Sink(iid);  // its first reference
    return sink;
  }

  std::vector<EventCall> events;
  std::function<HRESULT()> react = [] { return S_OK; };  ///< called last; its result is the sink's

  /// The lines of the events since the last question.
  std::vector<std::wstring> take() {
    std::vector<std::wstring> lines;
    for (const EventCall& event : events) lines.push_back(lineOf(event));
    events.clear();
    return lines;
  }
  LONG references() const { return references_; }

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    const bool known = iid == IID_IUnknown || iid == IID_IDispatch || iid == iid_;
    *object = known ? this : nullptr;
    if (known) AddRef();
    return known ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&references_)); }
  STDMETHODIMP_(ULONG) Release() override {
    const LONG left = InterlockedDecrement(&references_);
    if (left == 0) delete this;
    return static_cast<ULONG>(left);
  }
  STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
  STDMETHODIMP Invoke(DISPID id, REFIID reserved, LCID, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                      EXCEPINFO* exception, UINT* faultyArgument) override {
    EventCall event{id,
                    {},
                    flags,
                    arguments->cNamedArgs,
                    reserved == IID_NULL,
                    result != nullptr,
                    exception != nullptr,
                    faultyArgument != nullptr};
    for (UINT i = 0; i < arguments->cArgs; ++i) event.arguments.push_back(argumentText(arguments->rgvarg[i]));
    events.push_back(std::move(event));
    const auto reaction = react;  // which may replace itself
    return reaction();
  }

 private:
  explicit Sink(REFIID iid) : iid_(iid) {}
  ~Sink() = default;

  const IID iid_;
  LONG references_ = 1;
};

/// The event interface of a component's interface.
template <class Interface>
inline const IID kEventsOf = IID_NULL;
template <>
inline const IID kEventsOf<IAlert> = __uuidof(_IAlertEvents);
template <>
inline const IID kEventsOf<IBacktest> = __uuidof(_IBacktestEvents);
template <>
inline const IID kEventsOf<IScriptOutput> = __uuidof(_IScriptOutputEvents);

template <class Interface>
ComPtr<IConnectionPoint> pointOf(const ComPtr<Interface>& object) {
  ComPtr<IConnectionPoint> point;
  EXPECT_EQ(query<IConnectionPointContainer>(object)->FindConnectionPoint(kEventsOf<Interface>, &point),
            S_OK);
  return point;
}

/// A new sink that is connected for the component's life.
template <class Interface>
ComPtr<Sink> connect(const ComPtr<Interface>& object, DWORD* cookie = nullptr) {
  const ComPtr<Sink> sink = Sink::make(kEventsOf<Interface>);
  DWORD given = 0;
  EXPECT_EQ(pointOf(object)->Advise(sink.Get(), &given), S_OK);
  EXPECT_NE(given, 0u);
  if (cookie) *cookie = given;
  return sink;
}

using Lines = std::vector<std::wstring>;

}  // namespace brindlewort::hosts
