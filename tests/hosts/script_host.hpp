#pragma once

// A host of the system's script languages: it runs scripts that make components and take their events, which
// the script runner of the system does not connect everywhere.

#include <activscp.h>
#include <ocidl.h>
#include <windows.h>
#include <wrl/client.h>

#include <map>
#include <string>
#include <vector>

namespace brindlewort::testing {

using Microsoft::WRL::ComPtr;

/// Counts references; deletes the object with the last one.
template <class... Interfaces>
class Counted : public Interfaces... {
 public:
  STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
  STDMETHODIMP_(ULONG) Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

 protected:
  virtual ~Counted() = default;

 private:
  ULONG references_ = 1;
};

/// An object that answers late-bound calls only.
class LateBound : public Counted<IDispatch> {
 public:
  STDMETHODIMP QueryInterface(REFIID iid, void** object) override {
    const bool known = iid == __uuidof(IUnknown) || iid == __uuidof(IDispatch) || isFurther(iid);
    *object = known ? static_cast<IDispatch*>(this) : nullptr;
    if (known) AddRef();
    return known ? S_OK : E_NOINTERFACE;
  }
  STDMETHODIMP GetTypeInfoCount(UINT* count) override {
    *count = 0;
    return S_OK;
  }
  STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return DISP_E_UNKNOWNNAME; }

 protected:
  virtual bool isFurther(REFIID) const { return false; }
};

class Host;

/// A sink that calls the functions of the script: the event `Alert` at the prefix `my_` calls `my_Alert`,
/// with the very arguments of the event. An event without a function is let pass.
class Sink final : public LateBound {
 public:
  Sink(Host& host, REFIID events, std::map<DISPID, std::wstring> functions)
      : host_(host), events_(events), functions_(std::move(functions)) {}

  STDMETHODIMP Invoke(DISPID event, REFIID, LCID locale, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                      EXCEPINFO* exception, UINT* faulty) override;

 private:
  bool isFurther(REFIID iid) const override { return iid == events_; }

  Host& host_;
  const IID events_;
  const std::map<DISPID, std::wstring> functions_;  ///< the script's function for each event
};

/// What a script sees as `host`:
///
///   print(text)               a line of output
///   create(class [, prefix])  a component; its events go to the functions with the prefix
///   connect(object, prefix)   one more sink; gives the cookie of the connection
///   disconnect(object, cookie)
///   sinkFailures()            how many calls of sinks ended with an error so far
class ScriptApi final : public LateBound {
 public:
  explicit ScriptApi(Host& host) : host_(host) {}

  STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override;
  STDMETHODIMP Invoke(DISPID member, REFIID, LCID, WORD flags, DISPPARAMS* arguments, VARIANT* result,
                      EXCEPINFO* exception, UINT* faulty) override;

 private:
  struct Member;
  static const Member kMembers[];  ///< their ids count from 1

  HRESULT print(const DISPPARAMS& arguments, VARIANT& result);
  HRESULT create(const DISPPARAMS& arguments, VARIANT& result);
  HRESULT connect(const DISPPARAMS& arguments, VARIANT& result);
  HRESULT disconnect(const DISPPARAMS& arguments, VARIANT& result);
  HRESULT sinkFailures(const DISPPARAMS& arguments, VARIANT& result);

  Host& host_;
};

/// The site of the engine. It lives on the stack of `main`, longer than the engine.
class Host final : public IActiveScriptSite {
 public:
  Host() = default;
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;
  ~Host();

  /// `language` is the engine's ProgID.
  HRESULT start(const wchar_t* language);
  HRESULT run(const std::wstring& text);
  bool failed() const { return failed_; }

  HRESULT create(const wchar_t* progId, IDispatch** object);
  HRESULT connect(IDispatch* object, const std::wstring& prefix, DWORD* cookie);
  HRESULT disconnect(IDispatch* object, DWORD cookie);
  /// A function of the script; nothing when the script has none of this name.
  HRESULT call(const std::wstring& function, DISPPARAMS* arguments);
  int sinkFailures() const { return sinkFailures_; }

  STDMETHODIMP QueryInterface(REFIID iid, void** object) override;
  STDMETHODIMP_(ULONG) AddRef() override { return 2; }
  STDMETHODIMP_(ULONG) Release() override { return 1; }
  STDMETHODIMP GetLCID(LCID* locale) override;
  STDMETHODIMP GetItemInfo(LPCOLESTR name, DWORD mask, IUnknown** item, ITypeInfo** type) override;
  STDMETHODIMP GetDocVersionString(BSTR*) override { return E_NOTIMPL; }
  STDMETHODIMP OnScriptTerminate(const VARIANT*, const EXCEPINFO*) override { return S_OK; }
  STDMETHODIMP OnStateChange(SCRIPTSTATE) override { return S_OK; }
  STDMETHODIMP OnScriptError(IActiveScriptError* error) override;
  STDMETHODIMP OnEnterScript() override { return S_OK; }
  STDMETHODIMP OnLeaveScript() override { return S_OK; }

 private:
  ComPtr<IActiveScript> engine_;
  ComPtr<IActiveScriptParse> parser_;
  ComPtr<ScriptApi> api_;
  int inSinks_ = 0;
  int sinkFailures_ = 0;
  bool failed_ = false;
};

}  // namespace brindlewort::testing
