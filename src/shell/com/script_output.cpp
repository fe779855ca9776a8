#include "services/output/script_output.hpp"

#include <memory>

#include "brindlewort_com.h"
#include "platform/low_memory.hpp"
#include "services/output/pointer_block.hpp"
#include "shell/com/components.hpp"
#include "shell/com/events.hpp"
#include "shell/com/record_members.hpp"
#include "shell/com/script_help.hpp"

namespace brindlewort::com {

namespace {

constexpr DISPID kScriptErrorEvent = 1;

/// What `GetScriptOutput_PTR` gives a host: the address of a list of series, which is kept where the 32-bit
/// integer of the interface can hold it. The host hands the number on to whoever reads the list.
class ListHandle {
 public:
  static constexpr int kNone = -1;

  /// The handle of a list, or kNone without one, and where no such memory is left. The one before shows the
  /// same list from now on.
  int show(std::intptr_t list) {
    if (list == kNone) return kNone;
    if (!page_) page_ = std::make_unique<platform::LowPage>();
    if (!page_->address()) return kNone;
    *static_cast<PointerBlock::List*>(page_->address()) = *reinterpret_cast<const PointerBlock::List*>(list);
    return static_cast<int>(reinterpret_cast<std::intptr_t>(page_->address()));
  }

 private:
  std::unique_ptr<platform::LowPage> page_;  ///< null before the first list
};

class ScriptOutputComponent final
    : public PlainBarMembers<IScriptOutput, CScriptOutput, MissingOut::kRefused> {
 public:
  explicit ScriptOutputComponent(IUnknown* outer) : PlainBarMembers(outer, __uuidof(_IScriptOutputEvents)) {
    logic_.ScriptError = [this](const std::string& description) {
      fire(door(), sinks_, kScriptErrorEvent, description);
    };
  }

  STDMETHODIMP GetScriptOutput(BSTR DefaultScript, int MapCount, BSTR OutputSets, BSTR* Output) override {
    return call([&] {
      if (!Output) return E_POINTER;
      return giveText(logic_.GetScriptOutput(narrow(DefaultScript), MapCount, narrow(OutputSets)), Output);
    });
  }
  STDMETHODIMP get_ScriptHelp(BSTR* Text) override {
    return call([&] { return giveText(scriptHelp(logic_.lastFunction()), Text); });
  }
  STDMETHODIMP GetJDate(LONG Index, double* JDate) override {
    return call([&] { return give(logic_.GetJDate(Index), JDate); });
  }
  STDMETHODIMP GetRecordNumberByJDate(double JDate, LONG* Number) override {
    return call([&] {
      if (!Number) return E_POINTER;
      if (const auto found = logic_.GetRecordNumberByJDate(JDate)) *Number = *found;
      return S_OK;
    });
  }
  STDMETHODIMP GetCustomIndFromCondition(BSTR DefaultScript, BSTR* Output) override {
    return call([&] {
      if (!Output) return E_POINTER;
      return giveText(logic_.GetCustomIndFromCondition(narrow(DefaultScript)), Output);
    });
  }
  STDMETHODIMP EditJDate(double OldJDate, double NewJDate, VARIANT_BOOL* Result) override {
    return call([&] { return Result ? giveBool(logic_.EditJDate(OldJDate, NewJDate), Result) : E_POINTER; });
  }

  // ---- The incremental way

  STDMETHODIMP GetScriptOutput_New(BSTR DefaultScript, int MapCount, BSTR OutputSets, BSTR* Output) override {
    return call([&] {
      if (!Output) return E_POINTER;
      return giveRunText(logic_.GetScriptOutput_New(narrow(DefaultScript), MapCount, narrow(OutputSets)),
                         Output);
    });
  }
  STDMETHODIMP AppendRecord_New(double JDate, double OpenPrice, double HighPrice, double LowPrice,
                                double ClosePrice, LONG Volume) override {
    return call([&] {
      logic_.AppendRecord_New(JDate, OpenPrice, HighPrice, LowPrice, ClosePrice, Volume);
      return S_OK;
    });
  }
  STDMETHODIMP EditRecord_New(double JDate, double OpenPrice, double HighPrice, double LowPrice,
                              double ClosePrice, LONG Volume, VARIANT_BOOL* Result) override {
    return call([&] {
      if (!Result) return E_POINTER;
      const std::optional<bool> edited =
          logic_.EditRecord_New(JDate, OpenPrice, HighPrice, LowPrice, ClosePrice, Volume);
      giveBool(edited.value_or(false), Result);
      return edited ? S_OK : kRefused;
    });
  }
  STDMETHODIMP EditJDate_New(double OldJDate, double NewJDate, VARIANT_BOOL* Result) override {
    return call(
        [&] { return Result ? giveBool(logic_.EditJDate_New(OldJDate, NewJDate), Result) : E_POINTER; });
  }
  STDMETHODIMP ProcessScripData(BSTR script, VARIANT_BOOL* Result) override {
    return call([&] {
      return Result ? giveBool(logic_.ProcessScripData(narrow(script)), Result, kPlainTrue) : E_POINTER;
    });
  }
  STDMETHODIMP InitialiseTransientStore(LONG variablesSize) override {
    return call([&] {
      logic_.InitialiseTransientStore(variablesSize);
      return S_OK;
    });
  }
  STDMETHODIMP SetDataRetrieveMode(LONG mode) override {
    return call([&] {
      logic_.SetDataRetrieveMode(mode);
      return S_OK;
    });
  }
  STDMETHODIMP AddOrRemoveBasicVectorSeries(BSTR name, LONG size) override {
    return call([&] {
      logic_.AddOrRemoveBasicVectorSeries(narrow(name), size);
      return S_OK;
    });
  }
  STDMETHODIMP UpdateBasicVectorData(BSTR name, double value, unsigned char AddorUpdate) override {
    return call([&] {
      logic_.UpdateBasicVectorData(narrow(name), value, AddorUpdate);
      return S_OK;
    });
  }
  STDMETHODIMP GetScriptOutput_PTR(BSTR DefaultScript, int MapCount, BSTR OutputSets,
                                   int* data_ptr) override {
    return call([&] {
      if (!data_ptr) return E_POINTER;
      *data_ptr =
          handle_.show(logic_.GetScriptOutput_PTR(narrow(DefaultScript), MapCount, narrow(OutputSets)));
      return *data_ptr == ListHandle::kNone ? kRefused : S_OK;
    });
  }
  STDMETHODIMP GetCustomIndFromCondition_NEW(BSTR DefaultScript, BSTR* Output) override {
    return call([&] {
      if (!Output) return E_POINTER;
      return giveRunText(logic_.GetCustomIndFromCondition_NEW(narrow(DefaultScript)), Output);
    });
  }
  STDMETHODIMP GetVariableValuesLog(BSTR path) override {
    return call([&] {
      logic_.GetVariableValuesLog(narrow(path));
      return S_OK;
    });
  }

 private:
  /// The text of a run of the incremental way. The run has never been when no memory is left for the text.
  HRESULT giveRunText(const std::optional<std::string>& text, BSTR* out) {
    const HRESULT result = giveText(text, out);
    if (result == E_OUTOFMEMORY) logic_.takeBackRun();
    return result;
  }

  ListHandle handle_;
};

}  // namespace

HRESULT makeScriptOutput(IUnknown* outer, REFIID iid, void** object) {
  return makeComponent<ScriptOutputComponent>(outer, iid, object);
}

}  // namespace brindlewort::com
