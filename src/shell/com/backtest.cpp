#include "services/backtest/backtest.hpp"

#include "brindlewort_com.h"
#include "functions/script_engine.hpp"
#include "shell/com/components.hpp"
#include "shell/com/events.hpp"
#include "shell/com/record_members.hpp"
#include "shell/com/script_help.hpp"

namespace brindlewort::com {

namespace {

constexpr DISPID kScriptErrorEvent = 1;

class BacktestComponent final : public PlainBarMembers<IBacktest, CBacktest, MissingOut::kSkipped> {
 public:
  explicit BacktestComponent(IUnknown* outer) : PlainBarMembers(outer, __uuidof(_IBacktestEvents)) {
    logic_.ScriptError = [this](const std::string& description) {
      fire(door(), sinks_, kScriptErrorEvent, description);
    };
  }

  /// Of all components this one alone counts milliseconds.
  STDMETHODIMP ToJulianDate(int nYear, int nMonth, int nDay, int nHour, int nMinute, int nSecond,
                            int nMillisecond, double* JDate) override {
    return call([&] {
      return give(ToJulianDateWithMilliseconds(nYear, nMonth, nDay, nHour, nMinute, nSecond, nMillisecond),
                  JDate);
    });
  }
  STDMETHODIMP Backtest(BSTR BuyScript, BSTR SellScript, BSTR ExitLongScript, BSTR ExitShortScript,
                        double SlipPct, BSTR MaxOpenDays, BSTR* Report) override {
    return run(&CBacktest::Backtest, BuyScript, SellScript, ExitLongScript, ExitShortScript, SlipPct,
               MaxOpenDays, Report);
  }
  STDMETHODIMP Backtest_New(BSTR BuyScript, BSTR SellScript, BSTR ExitLongScript, BSTR ExitShortScript,
                            double SlipPct, BSTR MaxOpenDays, BSTR* Report) override {
    return run(&CBacktest::Backtest_New, BuyScript, SellScript, ExitLongScript, ExitShortScript, SlipPct,
               MaxOpenDays, Report);
  }
  STDMETHODIMP get_ScriptHelp(BSTR* Text) override {
    return call([&] {
      const CScriptEngine* const engine = logic_.lastEngine();
      return giveText(engine ? scriptHelp(engine->currentFunction) : std::string(), Text);
    });
  }

 private:
  HRESULT run(decltype(&CBacktest::Backtest) way, BSTR buy, BSTR sell, BSTR exitLong, BSTR exitShort,
              double slipPct, BSTR maxOpenDays, BSTR* report) {
    return call([&] {
      if (!report) return E_POINTER;
      return giveText((logic_.*way)(narrow(buy), narrow(sell), narrow(exitLong), narrow(exitShort), slipPct,
                                    narrow(maxOpenDays)),
                      report);
    });
  }
};

}  // namespace

HRESULT makeBacktest(IUnknown* outer, REFIID iid, void** object) {
  return makeComponent<BacktestComponent>(outer, iid, object);
}

}  // namespace brindlewort::com
