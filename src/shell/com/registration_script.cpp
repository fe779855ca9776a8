#include "shell/com/registration_script.hpp"

namespace brindlewort::com {

namespace {

constexpr std::wstring_view kBlanks = L" \t\r\n";
constexpr std::wstring_view kRoot = L"HKCR";
constexpr std::wstring_view kModule = L"%MODULE%";

/// A failed reading goes on to the end of the text with nothing more taken from it.
class Reader {
 public:
  Reader(std::wstring_view script, std::wstring_view module) : rest_(script), module_(module) {}

  std::optional<std::vector<RegistryKey>> read() {
    RegistryKey root;
    expect(kRoot);
    expect(L"{");
    readContents(root);
    if (!next().empty()) failed_ = true;
    if (failed_) return std::nullopt;
    return std::move(root.keys);
  }

 private:
  /// The next word, without its quotes; empty at the end.
  std::wstring_view next() {
    const std::size_t start = rest_.find_first_not_of(kBlanks);
    if (failed_ || start == std::wstring_view::npos) return {};
    rest_.remove_prefix(start);
    const bool quoted = rest_.front() == L'\'';
    if (quoted) rest_.remove_prefix(1);
    const std::size_t end = quoted ? rest_.find(L'\'') : rest_.find_first_of(kBlanks);
    if (quoted && end == std::wstring_view::npos) {
      failed_ = true;
      return {};
    }
    const std::wstring_view word = rest_.substr(0, end);
    rest_.remove_prefix(word.size() + (quoted ? 1 : 0));
    return word;
  }

  /// Takes the next word when it is this one.
  bool take(std::wstring_view word) {
    const std::wstring_view before = rest_;
    if (next() == word) return true;
    rest_ = before;
    return false;
  }

  void expect(std::wstring_view word) {
    if (!take(word)) failed_ = true;
  }

  std::wstring readName() {
    const std::wstring_view name = next();
    if (name.empty()) failed_ = true;
    return std::wstring(name);
  }

  std::wstring readValue() {
    expect(L"s");
    std::wstring value(next());
    for (std::size_t at = 0; (at = value.find(kModule, at)) != std::wstring::npos; at += module_.size()) {
      value.replace(at, kModule.size(), module_);
    }
    return value;
  }

  RegistryKey readKey() {
    RegistryKey key;
    if (take(L"NoRemove")) key.policy = KeyPolicy::kNoRemove;
    if (take(L"ForceRemove")) key.policy = KeyPolicy::kForceRemove;
    key.name = readName();
    if (take(L"=")) key.defaultValue = readValue();
    if (take(L"{")) readContents(key);
    return key;
  }

  /// All up to the closing brace.
  void readContents(RegistryKey& key) {
    while (!failed_ && !take(L"}")) {
      if (take(L"val")) {
        std::wstring name = readName();
        expect(L"=");
        key.values.emplace_back(std::move(name), readValue());
      } else {
        key.keys.push_back(readKey());
      }
    }
  }

  std::wstring_view rest_;
  std::wstring_view module_;
  bool failed_ = false;
};

}  // namespace

std::optional<std::vector<RegistryKey>> readRegistrationScript(std::wstring_view script,
                                                               std::wstring_view module) {
  return Reader(script, module).read();
}

}  // namespace brindlewort::com
