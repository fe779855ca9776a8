// Writes a play for every name of the function table, so that runs begin with all of the language at hand:
//   write_seeds FOLDER

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "functions/function_table.hpp"
#include "random.hpp"
#include "script_writer.hpp"

namespace {

using namespace brindlewort;
using namespace brindlewort::fuzz;

using Plays = std::vector<std::string>;

/// Both ways of an output over bars of a market: enough of them for short periods, and two bars more after
/// the first run.
std::string outputPlay(const std::string& script, const std::string& shape) {
  return "S0" + script + "\nOb36," + shape + "\nOr0,0,A\nOi0\nOp0\nOA36," + shape + "\nOR0,0,A\nOA1," +
         shape + "\nOR0,0,A\n";
}

/// Both ways of an alert, a backtest and a validation, over candles.
std::string otherPlay(const std::string& script) {
  return "S0" + script + "\nAs0\nAb36,9\nAi0\nAp0\nAA36,9\nBb36,9\nBr0,2,3,2,1,\nVv0,1\n";
}

/// Every name, over candles, waves and bars without volume.
void addCalls(Plays& plays) {
  Random random(1);
  ScriptWriter writer(random, ScriptWriter::Oddities::kNone);
  for (const FunctionRow& row : functionTable()) {
    for (const FunctionName& name : row.names) {
      for (const char* shape : {"9", "3", "109"}) {
        plays.push_back(outputPlay("SET A = " + writer.call(row, name.name, 0) + "\rA > 1", shape));
      }
      plays.push_back(otherPlay(writer.call(row, name.name, 0) + " > 1"));
      if (row.noArguments) plays.push_back("S0" + std::string(name.name) + "(1) > 1\nVv0,1\n");
    }
  }
}

/// Every pattern of candles, as rows and as a last value.
void addPatterns(Plays& plays) {
  for (const std::string& pattern : ScriptWriter::constants()) {
    plays.push_back(outputPlay("CSP() = " + pattern, "9"));
    plays.push_back(otherPlay("CSP() = " + pattern));
  }
}

/// What chance is slow to find.
void addOddities(Plays& plays) {
  plays.push_back(outputPlay("SET A = CLOSE + 1E999\rSET B = OPEN * 1E-999\rA > B", "9"));
  for (const char* script : {"CLOSE > 1 XOR OPEN > 1", "CLOSE > 1 AND", "CLOSE > 1 AND -5 < OPEN",
                             "NOT (CLOSE > 1)", "CLOSE OR -OPEN > 1", "CLOSE > 1 EQV NOT -1"}) {
    plays.push_back(outputPlay(script, "9") + "Or0,-1\nOR0,-1\nVv0,1\n");
  }
  plays.push_back(outputPlay("SET A = PFX(, 1, 1)\rA > 1", "9"));
  plays.push_back(outputPlay("SET A = MROUND(CLOSE * 1E300, 0.07)\rA > 1", "9"));
  // A series of the host that a script sets, and that goes again.
  plays.push_back(
      "S0SET HOST = HOST + CLOSE\rHOST > 1\nOi0\nOs100,HOST\nOp0\nOA36,9\nOf1.5,22,HOST\nOR0,0,A\n"
      "OA1,9\nOR0,0,A\nOs-987654321,HOST\nOR0,0,A\n");
  // Entries on every bar that find no exit, with dates that fall, that stand and that rise.
  for (const char* shape : {"34", "24", "4", "39"}) {
    for (const char* limits : {"a=90;b=0;c=900;d=0;", "a=90;b=1;c=900;d=0;"}) {
      plays.push_back(std::string("S0CLOSE > 0\nBb79,") + shape + "\nBr0,2,3,2,0," + limits +
                      "\nBr2,0,2,3,0," + limits + "\nBr0,0,3,3,0," + limits + "\n");
    }
  }
}

bool write(const std::string& folder, const Plays& plays) {
  for (std::size_t i = 0; i < plays.size(); ++i) {
    std::ofstream file(folder + "/seed-" + std::to_string(i + 1), std::ios::binary);
    file << plays[i];
    if (!file.flush()) return false;
  }
  return true;
}

}  // namespace

int main(int count, char** words) {
  if (count != 2) {
    std::fputs("usage: write_seeds FOLDER\n", stderr);
    return 2;
  }
  Plays plays;
  addCalls(plays);
  addPatterns(plays);
  addOddities(plays);
  if (write(words[1], plays)) return 0;
  std::fprintf(stderr, "write_seeds: cannot write into %s\n", words[1]);
  return 1;
}
