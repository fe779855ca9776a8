#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace brindlewort {

class CScriptEngine;

/// The component that tells a host's script editor what is wrong with a script, without any bars: checks of
/// the text first, then a run of the engine over made-up bars. One thread at a time.
class CValidate {
 public:
  CValidate();
  ~CValidate();
  CValidate(CValidate&&) noexcept;
  CValidate& operator=(CValidate&&) noexcept;

  /// The first fault of a script as text: "Error: " and the message of a check, or the engine's own error.
  /// Without a fault the text is empty when BuildVersion is -1; otherwise it is "NO Error:" and the number of
  /// series that the run held. Throws std::bad_alloc, and has changed nothing, when memory runs out, also in
  /// `use`, which is given the answer before anything changes.
  using Use = std::function<void(const std::string& answer)>;
  std::string Validate(std::string_view ValidateScript, std::int32_t BuildVersion, const Use& use = {});

  /// What the SET statement of this name said in the script last run: SYMBOL, EXCHANGE, SECTOR or INDUSTRY,
  /// in any case. Empty for any other name. A script that a check refuses is not run.
  std::string Constant(std::string_view Name) const;

  /// The engine of the last run.
  const CScriptEngine& engine() const { return *engine_; }

 private:
  std::string check(std::string_view script, std::int32_t buildVersion,
                    std::unique_ptr<CScriptEngine>& run) const;
  std::unique_ptr<CScriptEngine> freshEngine() const;

  std::unique_ptr<CScriptEngine> engine_;
};

}  // namespace brindlewort
