#include "services/validate/validate.hpp"

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

}  // namespace

CValidate::CValidate() : engine_(std::make_unique<CScriptEngine>()) {}
CValidate::~CValidate() = default;
CValidate::CValidate(CValidate&&) noexcept = default;
CValidate& CValidate::operator=(CValidate&&) noexcept = default;

std::string CValidate::Validate(std::string_view ValidateScript, std::int32_t BuildVersion, const Use& use) {
  std::unique_ptr<CScriptEngine> run;
  std::string answer = check(ValidateScript, BuildVersion, run);
  if (use) use(answer);
  if (!run) return answer;
  run->variables.clear();
  engine_ = std::move(run);
  return answer;
}

std::string CValidate::check(std::string_view script, std::int32_t buildVersion,
                             std::unique_ptr<CScriptEngine>& run) const {
  const std::string text = withoutComments(upperCase(script));
  if (text.size() < kShortestScript) return "Error: Script too short.";
  const std::string shortText = withShortNames(text, &LongName::inValidation);
  const validation::Fault fault = validation::CheckSyntax(shortText);
  if (!fault.empty()) return "Error: " + fault;

  run = freshEngine();
  const std::string answer = run->RunScript(shortText, false, true);
  run->bars.clear();
  if (!answer.empty() && answer != "ALERT") return answer;
  return buildVersion == kNoCount ? "" : "NO Error:" + std::to_string(run->variables.size());
}

/// With the texts of the last run, which a script stays without when it is refused unread.
std::unique_ptr<CScriptEngine> CValidate::freshEngine() const {
  auto engine = std::make_unique<CScriptEngine>();
  engine->exchange = engine_->exchange;
  engine->sector = engine_->sector;
  engine->industry = engine_->industry;
  engine->symbol = engine_->symbol;
  engine->currentFunction = engine_->currentFunction;
  return engine;
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
