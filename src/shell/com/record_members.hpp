#pragma once

#include <string>

#include "series/bar.hpp"
#include "series/julian_date.hpp"
#include "shell/com/component.hpp"
#include "shell/com/connection_point.hpp"
#include "shell/com/text.hpp"

namespace brindlewort::com {

/// A true result of a record operation.
inline constexpr VARIANT_BOOL kTrue = VARIANT_TRUE;
/// A true result of a preparation or an evaluation. Hosts that compare with VARIANT_TRUE see neither.
inline constexpr VARIANT_BOOL kPlainTrue = 1;

/// A call that the component refused, as hosts know it: a success code that is not S_OK.
inline constexpr HRESULT kRefused = S_FALSE;

inline HRESULT giveBool(bool value, VARIANT_BOOL* out, VARIANT_BOOL whenTrue = kTrue) {
  if (!out) return E_POINTER;
  *out = value ? whenTrue : VARIANT_FALSE;
  return S_OK;
}

template <class Value>
HRESULT give(Value value, Value* out) {
  if (!out) return E_POINTER;
  *out = value;
  return S_OK;
}

template <class Value>
void giveIfAsked(Value value, Value* out) {
  if (out) *out = value;
}

/// Whether a component's record queries skip out-parameters that are null, or refuse the call.
enum class MissingOut { kSkipped, kRefused };

/// The members on single bars and dates that the interfaces with bars have in common. `Logic` is the
/// component behind them, `Interface` the dual interface.
template <class Interface, class Logic, MissingOut missingOut>
class RecordMembers : public Component<Interface> {
 public:
  STDMETHODIMP GetRecordByJDate(double JDate, double* OpenPrice, double* HighPrice, double* LowPrice,
                                double* ClosePrice, LONG* Volume, VARIANT_BOOL* Result) override {
    return this->call([&] {
      if (isMissing(OpenPrice, HighPrice, LowPrice, ClosePrice, Volume, Result)) return E_POINTER;
      return giveBar(logic_.GetRecordByJDate(JDate), nullptr, OpenPrice, HighPrice, LowPrice, ClosePrice,
                     Volume, Result);
    });
  }
  STDMETHODIMP GetRecordByIndex(LONG Index, double* JDate, double* OpenPrice, double* HighPrice,
                                double* LowPrice, double* ClosePrice, LONG* Volume,
                                VARIANT_BOOL* Result) override {
    return this->call([&] {
      if (isMissing(JDate, OpenPrice, HighPrice, LowPrice, ClosePrice, Volume, Result)) return E_POINTER;
      return giveBar(logic_.GetRecordByIndex(Index), JDate, OpenPrice, HighPrice, LowPrice, ClosePrice,
                     Volume, Result);
    });
  }
  STDMETHODIMP ClearRecords() override {
    return this->call([&] {
      logic_.ClearRecords();
      return S_OK;
    });
  }
  STDMETHODIMP get_RecordCount(LONG* Count) override {
    return this->call([&] { return give<LONG>(logic_.RecordCount(), Count); });
  }
  /// The millisecond is ignored.
  STDMETHODIMP ToJulianDate(int nYear, int nMonth, int nDay, int nHour, int nMinute, int nSecond,
                            int /*nMillisecond*/, double* JDate) override {
    return this->call(
        [&] { return give(brindlewort::ToJulianDate(nYear, nMonth, nDay, nHour, nMinute, nSecond), JDate); });
  }
  STDMETHODIMP FromJulianDate(double JDate, BSTR* Text) override {
    return this->call([&] { return giveText(brindlewort::FromJulianDate(JDate), Text); });
  }

 protected:
  RecordMembers(IUnknown* outer, REFIID events)
      : Component<Interface>(outer), sinks_(this->outer(), events) {}

  ConnectionPoints sinks_;
  Logic logic_;

 private:
  template <class... Outs>
  static bool isMissing(Outs... outs) {
    return missingOut == MissingOut::kRefused && (... || !outs);
  }

  IUnknown* furtherInterface(REFIID iid) override {
    return iid == __uuidof(IConnectionPointContainer) ? &sinks_ : nullptr;
  }

  void disconnect() override { sinks_.disconnectAll(); }

  static HRESULT giveBar(const Bar* bar, double* jdate, double* open, double* high, double* low,
                         double* close, LONG* volume, VARIANT_BOOL* result) {
    if (bar) {
      giveIfAsked(bar->JDate, jdate);
      giveIfAsked(bar->OpenPrice, open);
      giveIfAsked(bar->HighPrice, high);
      giveIfAsked(bar->LowPrice, low);
      giveIfAsked(bar->ClosePrice, close);
      giveIfAsked<LONG>(volumeToInt32(bar->Volume), volume);
    }
    return giveBool(bar != nullptr, result);
  }
};

/// The members that add and replace a bar, of the interfaces whose bars have no date of a last trade.
template <class Interface, class Logic, MissingOut missingOut>
class PlainBarMembers : public RecordMembers<Interface, Logic, missingOut> {
 public:
  STDMETHODIMP AppendRecord(double JDate, double OpenPrice, double HighPrice, double LowPrice,
                            double ClosePrice, LONG Volume) override {
    return this->call([&] {
      this->logic_.AppendRecord(JDate, OpenPrice, HighPrice, LowPrice, ClosePrice, Volume);
      return S_OK;
    });
  }
  STDMETHODIMP EditRecord(double JDate, double OpenPrice, double HighPrice, double LowPrice,
                          double ClosePrice, LONG Volume, VARIANT_BOOL* Result) override {
    return this->call([&] {
      return Result ? giveBool(
                          this->logic_.EditRecord(JDate, OpenPrice, HighPrice, LowPrice, ClosePrice, Volume),
                          Result)
                    : E_POINTER;
    });
  }

 protected:
  using RecordMembers<Interface, Logic, missingOut>::RecordMembers;
};

}  // namespace brindlewort::com
