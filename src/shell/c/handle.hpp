#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <optional>
#include <string>
#include <string_view>

#include "platform/fp_environment.hpp"
#include "series/bar.hpp"

/// What all functions of the C face share: statuses, texts, and the rule that nothing throws out.
namespace brindlewort::c_face {

inline constexpr std::int32_t kSuccess = 0;
inline constexpr std::int32_t kFailure = 1;
inline constexpr std::int32_t kNullArgument = -1;

/// A true result of the record operations.
inline constexpr std::int32_t kTrue = -1;
/// A true result of a preparation or an evaluation.
inline constexpr std::int32_t kPlainTrue = 1;

inline std::string_view textOf(const char* text) {
  return text ? std::string_view(text) : std::string_view();
}

/// A copy that the host frees.
inline char* copyText(std::string_view text) {
  char* copy = static_cast<char*>(std::malloc(text.size() + 1));
  if (!copy) throw std::bad_alloc();
  std::memcpy(copy, text.data(), text.size());
  copy[text.size()] = '\0';
  return copy;
}

/// What every handle has beside its component.
struct HandleState {
  platform::FpDoor door;
};

/// Runs a call on a handle. A null handle is -1, and whatever is thrown inside is a failure: a component
/// throws when memory has run out and nothing has changed.
template <class Handle, class Call>
std::int32_t onHandle(Handle* handle, Call call) noexcept {
  if (!handle) return kNullArgument;
  const platform::FpDoor::Inside inside(handle->door);
  try {
    const auto work = [&] { return call(*handle); };
    return inside.run(work);
  } catch (...) {
    return kFailure;
  }
}

/// Calls a function of the host's, as an event does. What it throws ends here: the call has done its work and says so.
template <class Function, class... Arguments>
void callHost(HandleState& handle, Function fn, Arguments... arguments) noexcept {
  const platform::FpDoor::Outside outside(handle.door);
  try {
    fn(arguments...);
  } catch (...) {
    // A host that wants to know catches it itself.
  }
}

template <class... Pointers>
bool anyNull(Pointers... pointers) {
  return (... || (pointers == nullptr));
}

/// A call with a text result: null when the call returns nothing, or fails. `answer` makes the text of the
/// handle.
template <class Handle, class Answer>
std::int32_t giveText(Handle* h, char** out, Answer answer) noexcept {
  return onHandle(h, [&](Handle& handle) {
    if (!out) return kNullArgument;
    *out = nullptr;
    const std::optional<std::string> text = answer(handle);
    if (text) *out = copyText(*text);
    return kSuccess;
  });
}

inline std::int32_t giveBool(bool value, std::int32_t* out, std::int32_t whenTrue = kTrue) {
  *out = value ? whenTrue : 0;
  return kSuccess;
}

template <class Value>
void put(Value* out, Value value) {
  if (out) *out = value;
}

/// Gives a bar by out-pointers, null ones being skipped. `result` says whether there is one.
inline std::int32_t giveBar(const Bar* bar, double* jdate, double* open, double* high, double* low,
                            double* close, std::int32_t* volume, std::int32_t* result) {
  if (bar) {
    put(jdate, bar->JDate);
    put(open, bar->OpenPrice);
    put(high, bar->HighPrice);
    put(low, bar->LowPrice);
    put(close, bar->ClosePrice);
    put(volume, volumeToInt32(bar->Volume));
  }
  return giveBool(bar != nullptr, result);
}

}  // namespace brindlewort::c_face
