#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "transcript.hpp"

namespace brindlewort::fuzz {

/// The calls that make up a handle's present state, each with what it gave, so that a fresh handle can be
/// told the same.
template <class Handle>
class Journal {
 public:
  using Call = std::function<void(Handle*, Transcript&)>;
  enum class Results { kCount, kDoNotCount };

  void note(Call call, std::string result, Results results = Results::kCount) {
    steps_.push_back({std::move(call), std::move(result), results});
    told_ = false;
  }
  void clear() {
    steps_.clear();
    told_ = true;
  }
  /// Whether all of it has been compared already.
  bool told() const { return told_; }
  bool empty() const { return steps_.empty(); }

  /// Tells a fresh handle, whose events go to `transcript`, all of it and compares.
  void replay(Handle* fresh, Transcript& transcript, const char* what) {
    for (const Step& step : steps_) {
      transcript.clear();
      step.call(fresh, transcript);
      if (step.results == Results::kCount) requireSame(step.result, transcript.str(), what);
    }
    told_ = true;
  }

 private:
  struct Step {
    Call call;
    std::string result;
    Results results;
  };
  std::vector<Step> steps_;
  bool told_ = true;
};

}  // namespace brindlewort::fuzz
