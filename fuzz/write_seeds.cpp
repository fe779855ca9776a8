// Writes a play for every name of the function table, so that runs begin with all of the language at hand:
//   write_seeds FOLDER

#include <cstdio>
#include <fstream>
#include <string>

#include "functions/function_table.hpp"
#include "random.hpp"
#include "script_writer.hpp"

namespace {

using namespace brindlewort;
using namespace brindlewort::fuzz;

/// Both ways over bars of three markets: enough of them for short periods, and two bars more after the first
/// run.
std::string play(const std::string& call, Random& random) {
  static constexpr const char* kShapes[] = {"9", "3", "1"};
  const std::string shape = random.of(kShapes);
  return "S0SET A = " + call + "\rA > 1\nOb36," + shape + "\nOr0,0,A\nOi0\nOp0\nOA36," + shape +
         "\nOR0,0,A\nOA1," + shape + "\nOR0,0,A\n";
}

}  // namespace

int main(int count, char** words) {
  if (count != 2) {
    std::fputs("usage: write_seeds FOLDER\n", stderr);
    return 2;
  }
  constexpr int kPlaysOfAName = 3;
  Random random(1);
  ScriptWriter writer(random, ScriptWriter::Oddities::kNone);
  int number = 0;
  for (const FunctionRow& row : functionTable()) {
    for (const FunctionName& name : row.names) {
      for (int i = 0; i < kPlaysOfAName; ++i) {
        std::ofstream file(std::string(words[1]) + "/seed-" + std::to_string(++number), std::ios::binary);
        file << play(writer.call(row, name.name, 0), random);
        if (!file.flush()) {
          std::fprintf(stderr, "write_seeds: cannot write into %s\n", words[1]);
          return 1;
        }
      }
    }
  }
  return 0;
}
