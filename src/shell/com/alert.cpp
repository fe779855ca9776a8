#include "services/alert/alert.hpp"

#include "brindlewort_com.h"
#include "shell/com/components.hpp"
#include "shell/com/events.hpp"
#include "shell/com/record_members.hpp"
#include "shell/com/script_help.hpp"

namespace brindlewort::com {

namespace {

constexpr DISPID kAlertEvent = 1;
constexpr DISPID kScriptErrorEvent = 2;

class AlertComponent final : public RecordMembers<IAlert, CAlert, MissingOut::kSkipped> {
 public:
  explicit AlertComponent(IUnknown* outer) : RecordMembers(outer, __uuidof(_IAlertEvents)) {
    // The type information declares the first two arguments only. A sink that reads them by position, first
    // to last, gets price, date, symbol and name: the order that hosts in use rely on.
    logic_.Alert = [this](const std::string& symbol, const std::string& alertName, double lastTradeDate,
                          double lastTradePrice) {
      fire(door(), sinks_, kAlertEvent, alertName, symbol, lastTradeDate, lastTradePrice);
    };
    logic_.ScriptError = [this](const std::string& symbol, const std::string& alertName,
                                const std::string& description) {
      fire(door(), sinks_, kScriptErrorEvent, description, alertName, symbol);
    };
  }

  STDMETHODIMP AppendRecord(double JDate, double OpenPrice, double HighPrice, double LowPrice,
                            double ClosePrice, LONG Volume, double dJDateOfLTT) override {
    return call([&] {
      logic_.AppendRecord(JDate, OpenPrice, HighPrice, LowPrice, ClosePrice, Volume, dJDateOfLTT);
      return S_OK;
    });
  }
  STDMETHODIMP EditRecord(double JDate, double OpenPrice, double HighPrice, double LowPrice,
                          double ClosePrice, LONG Volume, double dJDateOfLTT, VARIANT_BOOL* Result) override {
    return call([&] {
      if (!Result) return E_POINTER;
      return giveBool(
          logic_.EditRecord(JDate, OpenPrice, HighPrice, LowPrice, ClosePrice, Volume, dJDateOfLTT), Result);
    });
  }
  STDMETHODIMP get_Symbol(BSTR* Text) override { return getText(&CAlert::Symbol, Text); }
  STDMETHODIMP put_Symbol(BSTR Text) override { return setText(&CAlert::setSymbol, Text); }
  STDMETHODIMP get_AlertScript(BSTR* Text) override { return getText(&CAlert::AlertScript, Text); }
  STDMETHODIMP put_AlertScript(BSTR Text) override { return setText(&CAlert::setAlertScript, Text); }
  STDMETHODIMP get_AlertName(BSTR* Text) override { return getText(&CAlert::AlertName, Text); }
  STDMETHODIMP put_AlertName(BSTR Text) override { return setText(&CAlert::setAlertName, Text); }
  STDMETHODIMP get_ScriptHelp(BSTR* Text) override {
    return call([&] { return giveText(scriptHelp(logic_.lastFunction()), Text); });
  }
  STDMETHODIMP GetJDate(LONG Index, double* JDate) override {
    return call([&] { return give(logic_.GetJDate(Index), JDate); });
  }
  STDMETHODIMP Evaluate(BSTR EvaluateScript, VARIANT_BOOL* Result) override {
    return call([&] {
      return Result ? giveBool(logic_.Evaluate(narrow(EvaluateScript)), Result, kPlainTrue) : E_POINTER;
    });
  }
  STDMETHODIMP EditJDate(double OldJDate, double NewJDate, VARIANT_BOOL* Result) override {
    return call([&] { return Result ? giveBool(logic_.EditJDate(OldJDate, NewJDate), Result) : E_POINTER; });
  }

  // ---- The incremental way

  STDMETHODIMP ProcessScripData(BSTR script, VARIANT_BOOL* Result) override {
    return call([&] {
      if (!Result) return E_POINTER;
      const bool prepared = logic_.ProcessScripData(narrow(script));
      giveBool(prepared, Result, kPlainTrue);
      return prepared ? S_OK : kRefused;
    });
  }
  STDMETHODIMP AppendRecord_Opt(double JDate, double OpenPrice, double HighPrice, double LowPrice,
                                double ClosePrice, LONG Volume, double dJDateOfLTT) override {
    return call([&] {
      const bool taken =
          logic_.AppendRecord_Opt(JDate, OpenPrice, HighPrice, LowPrice, ClosePrice, Volume, dJDateOfLTT);
      return taken ? S_OK : kRefused;
    });
  }
  STDMETHODIMP EditRecord_Opt(double JDate, double OpenPrice, double HighPrice, double LowPrice,
                              double ClosePrice, LONG Volume, double dJDateOfLTT,
                              VARIANT_BOOL* Result) override {
    return call([&] {
      if (!Result) return E_POINTER;
      const std::optional<bool> edited =
          logic_.EditRecord_Opt(JDate, OpenPrice, HighPrice, LowPrice, ClosePrice, Volume, dJDateOfLTT);
      giveBool(edited.value_or(false), Result);
      return edited ? S_OK : kRefused;
    });
  }
  STDMETHODIMP InitialiseTransientStore(LONG variablesSize) override {
    return call([&] {
      logic_.InitialiseTransientStore(variablesSize);
      return S_OK;
    });
  }
  STDMETHODIMP GetVariableValuesLog(BSTR path) override {
    return call([&] {
      logic_.GetVariableValuesLog(narrow(path));
      return S_OK;
    });
  }

 private:
  HRESULT getText(const std::string& (CAlert::*property)() const, BSTR* text) {
    return call([&] { return giveText((logic_.*property)(), text); });
  }
  HRESULT setText(void (CAlert::*property)(std::string_view), BSTR text) {
    return call([&] {
      (logic_.*property)(narrow(text));
      return S_OK;
    });
  }
};

}  // namespace

HRESULT makeAlert(IUnknown* outer, REFIID iid, void** object) {
  return makeComponent<AlertComponent>(outer, iid, object);
}

}  // namespace brindlewort::com
