// script_host LANGUAGE FILE...: runs the files, one after the other, in one engine of the language (VBScript
// or JScript), with the object `host`. The exit code is 0 when no script has failed.

#include "script_host.hpp"

#include <cstdio>
#include <fstream>
#include <iterator>

namespace brindlewort::testing {

namespace {

std::string utf8(const wchar_t* text) {
  if (!text) return std::string();
  const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
  std::string result(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text, -1, result.data(), size, nullptr, nullptr);
  result.resize(result.size() - 1);  // without the closing zero
  return result;
}

std::wstring wide(const std::string& text) {
  const int size = MultiByteToWideChar(CP_UTF8, 0, text.c_str(), -1, nullptr, 0);
  std::wstring result(static_cast<std::size_t>(size), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, text.c_str(), -1, result.data(), size);
  result.resize(result.size() - 1);
  return result;
}

/// An argument of a call, converted; the first argument stands last.
class Argument {
 public:
  Argument(const DISPPARAMS& arguments, UINT place, VARTYPE type) {
    VariantInit(&value_);
    if (place >= arguments.cArgs) return;
    status_ = VariantChangeType(&value_, &arguments.rgvarg[arguments.cArgs - 1 - place], 0, type);
  }
  ~Argument() { VariantClear(&value_); }
  Argument(const Argument&) = delete;
  Argument& operator=(const Argument&) = delete;

  bool given() const { return SUCCEEDED(status_); }
  const wchar_t* text() const { return value_.bstrVal ? value_.bstrVal : L""; }
  LONG number() const { return value_.lVal; }
  IDispatch* object() const { return value_.pdispVal; }

 private:
  VARIANT value_;
  HRESULT status_ = DISP_E_BADPARAMCOUNT;
};

/// The connection point of an object's events: our components have one.
HRESULT pointOf(IDispatch* object, IConnectionPoint** point) {
  ComPtr<IConnectionPointContainer> container;
  ComPtr<IEnumConnectionPoints> points;
  HRESULT result = object->QueryInterface(IID_PPV_ARGS(&container));
  if (SUCCEEDED(result)) result = container->EnumConnectionPoints(&points);
  ULONG got = 0;
  return FAILED(result) ? result : points->Next(1, point, &got);
}

/// The names of the events of an interface, from the type library that describes the object.
HRESULT eventsOf(IDispatch* object, REFIID events, std::map<DISPID, std::wstring>* names) {
  ComPtr<ITypeInfo> own;
  ComPtr<ITypeInfo> source;
  ComPtr<ITypeLib> library;
  UINT place = 0;
  TYPEATTR* attributes = nullptr;
  HRESULT result = object->GetTypeInfo(0, LOCALE_USER_DEFAULT, &own);
  if (SUCCEEDED(result)) result = own->GetContainingTypeLib(&library, &place);
  if (SUCCEEDED(result)) result = library->GetTypeInfoOfGuid(events, &source);
  if (SUCCEEDED(result)) result = source->GetTypeAttr(&attributes);
  if (FAILED(result)) return result;
  const UINT count = attributes->cFuncs;
  source->ReleaseTypeAttr(attributes);
  for (UINT i = 0; i < count; ++i) {
    FUNCDESC* event = nullptr;
    BSTR name = nullptr;
    if (FAILED(source->GetFuncDesc(i, &event))) continue;
    if (SUCCEEDED(source->GetDocumentation(event->memid, &name, nullptr, nullptr, nullptr))) {
      (*names)[event->memid] = name;
      SysFreeString(name);
    }
    source->ReleaseFuncDesc(event);
  }
  return S_OK;
}

}  // namespace

STDMETHODIMP Sink::Invoke(DISPID event, REFIID, LCID, WORD, DISPPARAMS* arguments, VARIANT*, EXCEPINFO*,
                          UINT*) {
  const auto function = functions_.find(event);
  return function == functions_.end() ? DISP_E_MEMBERNOTFOUND : host_.call(function->second, arguments);
}

struct ScriptApi::Member {
  const wchar_t* name;
  HRESULT (ScriptApi::*call)(const DISPPARAMS&, VARIANT&);
};

const ScriptApi::Member ScriptApi::kMembers[] = {
    {L"print", &ScriptApi::print},
    {L"create", &ScriptApi::create},
    {L"connect", &ScriptApi::connect},
    {L"disconnect", &ScriptApi::disconnect},
    {L"sinkFailures", &ScriptApi::sinkFailures},
};

STDMETHODIMP ScriptApi::GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) {
  for (std::size_t i = 0; count == 1 && i < std::size(kMembers); ++i) {
    if (_wcsicmp(names[0], kMembers[i].name) != 0) continue;
    ids[0] = static_cast<DISPID>(i) + 1;
    return S_OK;
  }
  return DISP_E_UNKNOWNNAME;
}

STDMETHODIMP ScriptApi::Invoke(DISPID member, REFIID, LCID, WORD, DISPPARAMS* arguments, VARIANT* result,
                               EXCEPINFO*, UINT*) {
  const auto count = static_cast<DISPID>(std::size(kMembers));
  if (member < 1 || member > count) return DISP_E_MEMBERNOTFOUND;
  VARIANT answer;
  VariantInit(&answer);
  const HRESULT status = (this->*kMembers[member - 1].call)(*arguments, answer);
  if (SUCCEEDED(status) && result) {
    *result = answer;
  } else {
    VariantClear(&answer);
  }
  return status;
}

HRESULT ScriptApi::print(const DISPPARAMS& arguments, VARIANT&) {
  const Argument text(arguments, 0, VT_BSTR);
  if (!text.given()) return DISP_E_TYPEMISMATCH;
  std::printf("%s\n", utf8(text.text()).c_str());
  return S_OK;
}

HRESULT ScriptApi::create(const DISPPARAMS& arguments, VARIANT& result) {
  const Argument progId(arguments, 0, VT_BSTR);
  const Argument prefix(arguments, 1, VT_BSTR);
  if (!progId.given()) return DISP_E_TYPEMISMATCH;
  HRESULT status = host_.create(progId.text(), &result.pdispVal);
  if (FAILED(status)) return status;
  result.vt = VT_DISPATCH;
  DWORD cookie = 0;
  return prefix.given() ? host_.connect(result.pdispVal, prefix.text(), &cookie) : S_OK;
}

HRESULT ScriptApi::connect(const DISPPARAMS& arguments, VARIANT& result) {
  const Argument object(arguments, 0, VT_DISPATCH);
  const Argument prefix(arguments, 1, VT_BSTR);
  if (!object.given() || !object.object() || !prefix.given()) return DISP_E_TYPEMISMATCH;
  DWORD cookie = 0;
  const HRESULT status = host_.connect(object.object(), prefix.text(), &cookie);
  result.vt = VT_I4;
  result.lVal = static_cast<LONG>(cookie);
  return status;
}

HRESULT ScriptApi::disconnect(const DISPPARAMS& arguments, VARIANT&) {
  const Argument object(arguments, 0, VT_DISPATCH);
  const Argument cookie(arguments, 1, VT_I4);
  if (!object.given() || !object.object() || !cookie.given()) return DISP_E_TYPEMISMATCH;
  return host_.disconnect(object.object(), static_cast<DWORD>(cookie.number()));
}

HRESULT ScriptApi::sinkFailures(const DISPPARAMS&, VARIANT& result) {
  result.vt = VT_I4;
  result.lVal = host_.sinkFailures();
  return S_OK;
}

Host::~Host() {
  if (engine_) engine_->Close();
}

HRESULT Host::start(const wchar_t* language) {
  CLSID clsid{};
  api_.Attach(new ScriptApi(*this));
  HRESULT result = CLSIDFromProgID(language, &clsid);
  if (SUCCEEDED(result)) {
    result = CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(&engine_));
  }
  if (SUCCEEDED(result)) result = engine_.As(&parser_);
  if (SUCCEEDED(result)) result = parser_->InitNew();
  if (SUCCEEDED(result)) result = engine_->SetScriptSite(this);
  if (SUCCEEDED(result)) result = engine_->AddNamedItem(L"host", SCRIPTITEM_ISVISIBLE);
  if (SUCCEEDED(result)) result = engine_->SetScriptState(SCRIPTSTATE_STARTED);
  return result;
}

HRESULT Host::run(const std::wstring& text) {
  const HRESULT result = parser_->ParseScriptText(text.c_str(), nullptr, nullptr, nullptr, 0, 0,
                                                  SCRIPTTEXT_ISVISIBLE, nullptr, nullptr);
  if (FAILED(result)) failed_ = true;
  return result;
}

HRESULT Host::create(const wchar_t* progId, IDispatch** object) {
  CLSID clsid{};
  const HRESULT result = CLSIDFromProgID(progId, &clsid);
  return FAILED(result) ? result
                        : CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(object));
}

HRESULT Host::connect(IDispatch* object, const std::wstring& prefix, DWORD* cookie) {
  ComPtr<IConnectionPoint> point;
  IID events{};
  std::map<DISPID, std::wstring> functions;
  HRESULT result = pointOf(object, &point);
  if (SUCCEEDED(result)) result = point->GetConnectionInterface(&events);
  if (SUCCEEDED(result)) result = eventsOf(object, events, &functions);
  if (FAILED(result)) return result;
  for (auto& [event, name] : functions) name.insert(0, prefix);
  ComPtr<Sink> sink;
  sink.Attach(new Sink(*this, events, std::move(functions)));
  return point->Advise(sink.Get(), cookie);
}

HRESULT Host::disconnect(IDispatch* object, DWORD cookie) {
  ComPtr<IConnectionPoint> point;
  const HRESULT result = pointOf(object, &point);
  return FAILED(result) ? result : point->Unadvise(cookie);
}

HRESULT Host::call(const std::wstring& function, DISPPARAMS* arguments) {
  ComPtr<IDispatch> script;
  DISPID id = DISPID_UNKNOWN;
  auto* name = const_cast<wchar_t*>(function.c_str());
  if (FAILED(engine_->GetScriptDispatch(nullptr, &script))) return E_UNEXPECTED;
  if (FAILED(script->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id))) return S_OK;
  ++inSinks_;
  const HRESULT result = script->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, arguments,
                                        nullptr, nullptr, nullptr);
  --inSinks_;
  if (FAILED(result)) ++sinkFailures_;
  return result;
}

STDMETHODIMP Host::QueryInterface(REFIID iid, void** object) {
  const bool known = iid == __uuidof(IUnknown) || iid == __uuidof(IActiveScriptSite);
  *object = known ? static_cast<IActiveScriptSite*>(this) : nullptr;
  return known ? S_OK : E_NOINTERFACE;
}

STDMETHODIMP Host::GetLCID(LCID* locale) {
  *locale = LOCALE_USER_DEFAULT;
  return S_OK;
}

STDMETHODIMP Host::GetItemInfo(LPCOLESTR name, DWORD mask, IUnknown** item, ITypeInfo** type) {
  if (type) *type = nullptr;
  if (item) *item = nullptr;
  if (std::wstring(name) != L"host") return TYPE_E_ELEMENTNOTFOUND;
  if ((mask & SCRIPTINFO_IUNKNOWN) != 0) api_.CopyTo(reinterpret_cast<ScriptApi**>(item));
  return S_OK;
}

STDMETHODIMP Host::OnScriptError(IActiveScriptError* error) {
  if (inSinks_ > 0) return S_OK;  // counted by the caller of the sink
  failed_ = true;
  EXCEPINFO what{};
  DWORD file = 0;
  ULONG line = 0;
  LONG column = 0;
  error->GetExceptionInfo(&what);
  error->GetSourcePosition(&file, &line, &column);
  std::printf("script error 0x%08lx in line %lu: %s\n", static_cast<unsigned long>(what.scode), line + 1,
              utf8(what.bstrDescription).c_str());
  SysFreeString(what.bstrSource);
  SysFreeString(what.bstrDescription);
  SysFreeString(what.bstrHelpFile);
  return S_OK;
}

namespace {

int runFiles(const char* language, char** files, int count) {
  Host host;
  if (const HRESULT result = host.start(wide(language).c_str()); FAILED(result)) {
    std::printf("no engine for %s: 0x%08lx\n", language, static_cast<unsigned long>(result));
    return 2;
  }
  for (int i = 0; i < count && !host.failed(); ++i) {
    std::ifstream file(files[i], std::ios::binary);
    const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    if (text.empty()) {
      std::printf("%s cannot be read\n", files[i]);
      return 2;
    }
    host.run(wide(text));
  }
  return host.failed() ? 1 : 0;
}

}  // namespace

}  // namespace brindlewort::testing

int main(int argc, char** argv) {
  if (argc < 3) {
    std::printf("usage: script_host LANGUAGE FILE...\n");
    return 2;
  }
  if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 2;
  const int result = brindlewort::testing::runFiles(argv[1], argv + 2, argc - 2);
  CoUninitialize();
  return result;
}
