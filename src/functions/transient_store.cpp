#include "functions/transient_store.hpp"

#include <algorithm>

#include "series/numbers.hpp"
#include "series/text.hpp"

namespace brindlewort {

namespace {

bool same(const KeyPart& a, const KeyPart& b) {
  return a.kind == b.kind && a.text == b.text &&
         (a.number == b.number || (a.number != a.number && b.number != b.number));
}

}  // namespace

void NormalizeKey(std::string& text) {
  static constexpr std::string_view kRules[][2] = {{"( ", "("}, {" (", "("}, {" )", ")"}, {") ", ")"},
                                                   {"= ", "="}, {" =", "="}, {", ", ","}, {" ,", ","}};
  for (const auto& [from, to] : kRules) {
    if (contains(text, from)) text = replaceAll(text, from, to);
  }
  std::string bare = withoutChar(withoutChar(text, '('), ')');
  if (IsNumberText(bare)) text = std::move(bare);
}

std::string parameterText(std::initializer_list<KeyPart> parts) {
  std::string text;
  for (const KeyPart& part : parts) {
    if (!text.empty()) text += ',';
    switch (part.kind) {
      case KeyPart::kText:
        text += part.text;
        break;
      case KeyPart::kNumber:
        appendFixed(text, part.number, 20);
        break;
      case KeyPart::kMaType:
        text += maTypeName(toInt64(part.number));
        break;
    }
  }
  return text;
}

std::int32_t TransientStore::getTransientField(std::string_view name, std::string_view parameters,
                                               bool appendParameters, std::size_t size) {
  std::string key(name);
  if (appendParameters) {
    key.append("(").append(parameters).append(")");
    NormalizeKey(key);
  }
  if (const std::ptrdiff_t at = variables_.find(key); at != VariableStore::kNotFound) {
    return static_cast<std::int32_t>(at);
  }
  if (variables_.full()) return -1;
  return static_cast<std::int32_t>(variables_.append(
      {std::move(key), NULL_VALUE, Series(size ? size : rows_, NULL_VALUE), -1, kComputedVariable}));
}

WorkField TransientStore::field(std::string_view name, std::initializer_list<KeyPart> parts) {
  std::int32_t entry;
  if (const Known* known = recall(name, parts)) {
    entry = known->entry;
  } else {
    entry = getTransientField(name, parameterText(parts), true, 0);
    if (entry >= 0) remember(name, parts, entry);
  }
  if (entry < 0)
    spare_.push_back({std::string(name), NULL_VALUE, Series(rows_, NULL_VALUE), -1, kComputedVariable});
  ScriptVariable& variable = entry >= 0 ? variables_[static_cast<std::size_t>(entry)] : spare_.back();
  return {variable.values.edit(), &variable.slot, variable.name};
}

void TransientStore::forget() {
  known_.clear();
  spare_.clear();
}

const TransientStore::Known* TransientStore::recall(std::string_view name,
                                                    std::initializer_list<KeyPart> parts) const {
  for (const Known& known : known_) {
    if (known.name == name &&
        std::equal(known.parts.begin(), known.parts.end(), parts.begin(), parts.end(), same)) {
      return &known;
    }
  }
  return nullptr;
}

void TransientStore::remember(std::string_view name, std::initializer_list<KeyPart> parts,
                              std::int32_t entry) {
  Known& known = known_.emplace_back(Known{std::string(name), parts, {}, entry});
  known.texts.reserve(known.parts.size());
  for (KeyPart& part : known.parts) {
    if (part.kind != KeyPart::kText) continue;
    known.texts.emplace_back(part.text);
    part.text = known.texts.back();
  }
}

}  // namespace brindlewort
