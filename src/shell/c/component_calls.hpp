#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

#include "series/julian_date.hpp"
#include "series/numbers.hpp"
#include "shell/c/handle.hpp"

/// The calls on records, dates and the script error event that the handles of several components have in
/// common.
namespace brindlewort::c_face {

template <class Handle>
Handle* create() noexcept {
  platform::FpDoor door;
  const platform::FpDoor::Inside inside(door);
  try {
    return new Handle;
  } catch (...) {
    return nullptr;
  }
}

/// The event of the components whose errors carry nothing but a text.
template <class Handle, class Function>
std::int32_t onScriptError(Handle* h, Function fn, void* user) {
  return onHandle(h, [&](Handle& handle) {
    decltype(handle.component.ScriptError) tell;
    if (fn) {
      tell = [&handle, fn, user](const std::string& text) { callHost(handle, fn, user, text.c_str()); };
    }
    handle.component.ScriptError = std::move(tell);
    return kSuccess;
  });
}

/// May run on another thread than the call of this handle that it ends: it touches nothing but a flag.
template <class Handle>
std::int32_t cancelCall(Handle* h) noexcept {
  if (!h) return kNullArgument;
  h->component.Cancel();
  return kSuccess;
}

// ---- Bars without the date of a last trade

template <class Handle>
std::int32_t appendRecord(Handle* h, double jdate, double open, double high, double low, double close,
                          std::int32_t volume) {
  return onHandle(h, [&](Handle& handle) {
    handle.component.AppendRecord(jdate, open, high, low, close, volume);
    return kSuccess;
  });
}

/// How many numbers a row of a block has, and which of them is the volume. A bar with the date of its last
/// trade has one more behind it.
inline constexpr std::size_t kRowWidth = 6;
inline constexpr std::size_t kVolumeColumn = 5;

/// Whether every volume of a block is one that a bar can have; a block with another one is refused as a
/// whole.
inline bool volumesFit(const double* rows, std::size_t count, std::size_t width) {
  for (std::size_t row = 0; row < count; ++row) {
    if (!fitsInt32(rows[row * width + kVolumeColumn])) return false;
  }
  return true;
}

template <class Handle>
std::int32_t appendRecords(Handle* h, const double* rows, std::size_t count) {
  return onHandle(h, [&](Handle& handle) {
    if (count == 0) return kSuccess;
    if (!rows) return kNullArgument;
    if (!volumesFit(rows, count, kRowWidth)) return kFailure;
    handle.component.makeRoom(count);
    for (const double* row = rows; row != rows + kRowWidth * count; row += kRowWidth) {
      handle.component.AppendRecord(row[0], row[1], row[2], row[3], row[4], toInt32(row[5]));
    }
    return kSuccess;
  });
}

template <class Handle>
std::int32_t editRecord(Handle* h, double jdate, double open, double high, double low, double close,
                        std::int32_t volume, std::int32_t* result) {
  return onHandle(h, [&](Handle& handle) {
    if (!result) return kNullArgument;
    return giveBool(handle.component.EditRecord(jdate, open, high, low, close, volume), result);
  });
}

// ---- Queries

/// Gives a bar by out-pointers, null ones being skipped. `result` says whether there is one.
template <class Handle>
std::int32_t getRecordByJDate(Handle* h, double jdate, double* open, double* high, double* low, double* close,
                              std::int32_t* volume, std::int32_t* result) {
  return onHandle(h, [&](Handle& handle) {
    if (!result) return kNullArgument;
    return giveBar(handle.component.GetRecordByJDate(jdate), nullptr, open, high, low, close, volume, result);
  });
}

template <class Handle>
std::int32_t getRecordByIndex(Handle* h, std::int32_t index, double* jdate, double* open, double* high,
                              double* low, double* close, std::int32_t* volume, std::int32_t* result) {
  return onHandle(h, [&](Handle& handle) {
    if (!result) return kNullArgument;
    return giveBar(handle.component.GetRecordByIndex(index), jdate, open, high, low, close, volume, result);
  });
}

template <class Handle>
std::int32_t clearRecords(Handle* h) {
  return onHandle(h, [](Handle& handle) {
    handle.component.ClearRecords();
    return kSuccess;
  });
}

template <class Handle>
std::int32_t getRecordCount(Handle* h, std::int32_t* count) {
  return onHandle(h, [&](Handle& handle) {
    if (!count) return kNullArgument;
    *count = handle.component.RecordCount();
    return kSuccess;
  });
}

template <class Handle>
std::int32_t getJDate(Handle* h, std::int32_t index, double* jdate) {
  return onHandle(h, [&](Handle& handle) {
    if (!jdate) return kNullArgument;
    *jdate = handle.component.GetJDate(index);
    return kSuccess;
  });
}

template <class Handle>
std::int32_t editJDate(Handle* h, double oldDate, double newDate, std::int32_t* result) {
  return onHandle(h, [&](Handle& handle) {
    if (!result) return kNullArgument;
    return giveBool(handle.component.EditJDate(oldDate, newDate), result);
  });
}

// ---- Dates

template <class Handle>
std::int32_t toJulianDate(Handle* h, std::int32_t year, std::int32_t month, std::int32_t day,
                          std::int32_t hour, std::int32_t minute, std::int32_t second, double* jdate) {
  return onHandle(h, [&](Handle&) {
    if (!jdate) return kNullArgument;
    *jdate = ToJulianDate(year, month, day, hour, minute, second);
    return kSuccess;
  });
}

template <class Handle>
std::int32_t fromJulianDate(Handle* h, double jdate, char** text) {
  return giveText(h, text, [&](Handle&) { return FromJulianDate(jdate); });
}

}  // namespace brindlewort::c_face
