#include "chart_target.hpp"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>

#include "console.hpp"
#include "inputs.hpp"
#include "safe_file.hpp"
#include "series/text.hpp"
#include "tool_error.hpp"

namespace brindlewort::tool {
namespace {

[[noreturn]] void refuse(const std::string& reason) {
  throw ToolError(kExitUsage, "--chart " + reason);
}

void checkKind(const std::string& path) {
  if (path.empty()) refuse("needs the path of an SVG file, or - for standard output.");
  const std::filesystem::path file(path);
  const std::string extension = file.extension().string();
  if (upperCase(extension) == ".SVG") return;
  const std::string svg = std::filesystem::path(file).replace_extension(".svg").string();
  std::string advice = path + ": the picture is SVG, so its path has to end in .svg. Give " + svg + '.';
  if (upperCase(extension) == ".PNG") advice += " A PNG of it makes: rsvg-convert -o " + path + ' ' + svg;
  refuse(advice);
}

}  // namespace

void ChartTarget::addTo(CLI::App& command) {
  command
      .add_option("--chart", path_,
                  "Draw prices, entries, exits and running profit into this SVG file; - for standard output")
      ->type_name("FILE");
}

void ChartTarget::check(const BarsInput& bars, const std::vector<std::string>& scripts) const {
  if (!wanted() || isStandardOutput()) return;
  checkKind(*path_);
  const std::string where = *path_ + ": ";
  if (bars.isFile(*path_)) refuse(where + "this is the file of the bars. Give another path.");
  for (const std::string& script : scripts) {
    if (isSameFile(*path_, script)) refuse(where + "this is the file of a script. Give another path.");
  }
  if (isSameFile(*path_, stdout)) refuse(where + "the report goes there. Give another path.");
}

void ChartTarget::write(const std::string& svg) const {
  if (isStandardOutput()) {
    writeOutput(svg);
  } else {
    replaceFile(*path_, svg);
  }
}

}  // namespace brindlewort::tool
