#include "services/validate/validate.hpp"

#include <new>

#include "engine/long_names.hpp"
#include "functions/script_engine.hpp"
#include "series/text.hpp"
#include "services/validate/name_tables.hpp"
#include "services/validate/syntax_checks.hpp"

namespace brindlewort {

namespace {

constexpr std::size_t kShortestScript = 5;
constexpr std::int32_t kNoCount = -1;

/// Without what stands from "#" to the end of the line; the line break stays.
std::string withoutComments(std::string_view script) {
  std::string out;
  out.reserve(script.size());
  for (;;) {
    const std::size_t hash = script.find('#');
    out.append(script.substr(0, hash));
    if (hash == std::string_view::npos) return out;
    const std::size_t end = script.find("\r\n", hash);
    if (end == std::string_view::npos) return out;
    script.remove_prefix(end);
  }
}

/// What a run leaves behind and no later one may find; the texts of its SET statements stay.
void reset(CScriptEngine& engine) {
  engine.dryRun = false;
  engine.wholeHistory = false;
  engine.paddedData = false;
  engine.windowLength = 0;
  engine.outputNames.clear();
  engine.bars.clear();
}

}  // namespace

CValidate::CValidate() : engine_(std::make_unique<CScriptEngine>()) {}
CValidate::~CValidate() = default;
CValidate::CValidate(CValidate&&) noexcept = default;
CValidate& CValidate::operator=(CValidate&&) noexcept = default;

std::string CValidate::Validate(std::string_view ValidateScript, std::int32_t BuildVersion) {
  std::string answer;
  try {
    answer = check(ValidateScript, BuildVersion);
  } catch (const std::bad_alloc&) {
    answer = "Error: Out of memory.";
  }
  engine_->variables.clear();
  return answer;
}

std::string CValidate::check(std::string_view script, std::int32_t buildVersion) {
  const std::string text = withoutComments(upperCase(script));
  if (text.size() < kShortestScript) return "Error: Script too short.";
  const std::string shortText = withShortNames(text, &LongName::inValidation);
  const validation::Fault fault = validation::CheckSyntax(shortText);
  if (!fault.empty()) return "Error: " + fault;

  const std::string answer = dryRun(shortText);
  if (!answer.empty() || buildVersion == kNoCount) return answer;
  return "NO Error:" + std::to_string(engine_->variables.size());
}

std::string CValidate::dryRun(std::string_view script) {
  reset(*engine_);
  const std::string text = engine_->RunScript(script, false, true);
  engine_->bars.clear();
  return text == "ALERT" ? std::string() : text;
}

std::string CValidate::Constant(std::string_view Name) const {
  const std::string name = upperCase(Name);
  if (name == "SYMBOL") return engine_->symbol;
  if (name == "EXCHANGE") return engine_->exchange;
  if (name == "SECTOR") return engine_->sector;
  if (name == "INDUSTRY") return engine_->industry;
  return {};
}

}  // namespace brindlewort
