#pragma once

#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace brindlewort::tool {

class BarsInput;

/// Where the picture of a command goes: an SVG file, standard output, or nowhere.
class ChartTarget {
 public:
  void addTo(CLI::App& command);

  bool wanted() const { return path_.has_value(); }
  bool isStandardOutput() const { return path_ == "-"; }
  /// Throws a ToolError for a path that no SVG picture belongs to: one of another kind, or a file that the
  /// command reads, or writes its report to. `scripts` are the paths of script files.
  void check(const BarsInput& bars, const std::vector<std::string>& scripts) const;
  void write(const std::string& svg) const;

 private:
  std::optional<std::string> path_;
};

}  // namespace brindlewort::tool
