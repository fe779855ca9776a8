#pragma once

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "brindlewort/brindlewort.h"
#include "memory/failing_allocations.hpp"

/// Sequences of calls of the C face, and what a host hears by them.
namespace brindlewort::testing {

/// All that a host has heard, as a text: equal texts are equal to the last bit.
class Transcript {
 public:
  Transcript& operator<<(const std::string& text) {
    said_ += text;
    said_ += '\n';
    return *this;
  }
  Transcript& operator<<(double value) {
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    char digits[20];
    std::snprintf(digits, sizeof digits, "%016llx ", static_cast<unsigned long long>(bits));
    said_ += digits;
    return *this;
  }
  Transcript& operator<<(std::int32_t value) { return *this << std::to_string(value); }
  Transcript& operator<<(const bw_series& rows) {
    for (std::size_t i = 0; i < rows.count; ++i) *this << rows.values[i];
    said_ += '\n';
    return *this;
  }
  /// A text that the library gave, which is freed.
  Transcript& take(char* text) {
    *this << std::string(text ? text : "(nothing)");
    bw_free(text);
    return *this;
  }

  const std::string& said() const { return said_; }

 private:
  std::string said_;
};

/// A call of the library: its allocations are watched.
template <class Call>
std::int32_t watched(Call call) {
  const AllocationScope scope(true);
  return call();
}

/// One call, and what it gives the host to hear. The answer is the call's status.
template <class Handle>
struct Step {
  std::string name;
  std::function<std::int32_t(Handle*, Transcript&)> play;
  bool asksForLastRun = false;  ///< and hears nothing when memory ran out in that
};

template <class Handle>
struct Session {
  std::string name;
  Handle* (*create)();
  void (*destroy)(Handle*);
  /// Has the events told to the transcript.
  void (*listen)(Handle*, Transcript*);
  std::vector<Step<Handle>> steps;
};

/// A handle on its way through a session.
template <class Handle>
class Player {
 public:
  explicit Player(const Session<Handle>& session)
      : session_(session),
        handle_(session.create(), session.destroy),
        transcript_(std::make_unique<Transcript>()) {
    session.listen(handle_.get(), transcript_.get());
  }

  std::int32_t play(std::size_t step) {
    const std::int32_t status = session_.steps[step].play(handle_.get(), *transcript_);
    *transcript_ << session_.steps[step].name << status;
    return status;
  }
  /// The steps up to, but not with, `end`.
  void play(std::size_t from, std::size_t end) {
    for (std::size_t i = from; i < end; ++i) play(i);
  }
  /// The same without those that ask for the last run.
  void playRuns(std::size_t from, std::size_t end) {
    for (std::size_t i = from; i < end; ++i) {
      if (!session_.steps[i].asksForLastRun) play(i);
    }
  }
  const std::string& said() const { return transcript_->said(); }
  Transcript heard() const { return *transcript_; }
  /// Forgets what was heard since then.
  void unhear(Transcript before) { *transcript_ = std::move(before); }

 private:
  const Session<Handle>& session_;
  std::unique_ptr<Handle, void (*)(Handle*)> handle_;
  std::unique_ptr<Transcript> transcript_;
};

}  // namespace brindlewort::testing
