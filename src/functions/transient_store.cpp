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
  constexpr std::string_view kSigns = "()=,";
  std::size_t end = 0;
  for (const char c : text) {
    if (contains(kSigns, {&c, 1})) {
      while (end > 0 && text[end - 1] == ' ') --end;
    } else if (c == ' ' && end > 0 && contains(kSigns, {&text[end - 1], 1})) {
      continue;
    }
    text[end++] = c;
  }
  text.resize(end);
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
  StoreEntry* entry = memo_->recall(name, parts);
  if (!entry) {
    const std::int32_t at = getTransientField(name, parameterText(parts), true, 0);
    if (at >= 0) {
      entry = &variables_[static_cast<std::size_t>(at)];
      memo_->remember(name, parts, entry);
    } else {
      entry = &spare_.emplace_back();
      entry->name = name;
      entry->values.assign(rows_, NULL_VALUE);
      return {entry->values.edit(), &entry->slot, entry->name};
    }
  }
  if (undo_) undo_->keepRows(*entry, firstRecomputed(entry->slot));
  return {entry->values.edit(), &entry->slot, entry->name};
}

void TransientStore::forget() {
  own_.clear();
  spare_.clear();
  memo_ = &own_;
}

void FieldMemo::restart() {
  for (Known& known : known_) {
    std::ranges::fill(known.entry->values.edit(), NULL_VALUE);
    known.entry->slot = -1;
  }
}

StoreEntry* FieldMemo::recall(std::string_view name, std::initializer_list<KeyPart> parts) {
  // An operation asks for the same fields in the same order each time, so the next one is the likely one.
  for (std::size_t tried = 0; tried < known_.size(); ++tried) {
    if (next_ >= known_.size()) next_ = 0;
    const Known& known = known_[next_++];
    if (known.name == name && known.parts.size() == parts.size() &&
        std::equal(known.parts.begin(), known.parts.end(), parts.begin(), same)) {
      return known.entry;
    }
  }
  return nullptr;
}

void FieldMemo::remember(std::string_view name, std::initializer_list<KeyPart> parts, StoreEntry* entry) {
  Known& known = known_.emplace_back(Known{std::string(name), parts, {}, entry});
  for (KeyPart& part : known.parts) {
    if (part.kind == KeyPart::kText) part.text = known.texts.emplace_back(part.text);
  }
  next_ = known_.size();
}

}  // namespace brindlewort
