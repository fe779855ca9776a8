#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace brindlewort::tool {

/// What a run of a program gave.
struct Outcome {
  int code = -1;
  std::string out;
  std::string err;
};

/// Runs the built tool as a person does, with files in a folder of its own.
class Tool : public testing::Test {
 protected:
  Tool() { std::filesystem::create_directories(directory_); }
  ~Tool() override { std::filesystem::remove_all(directory_); }

  std::string write(const std::string& name, const std::string& text) const {
    const std::string path = directory_ / name;
    std::ofstream(path, std::ios::binary) << text;
    return path;
  }

  Outcome run(const std::vector<std::string>& arguments, const std::string& input = "") const {
    return runProgram(BRINDLEWORT_TOOL, arguments, input);
  }

  Outcome runProgram(const std::string& program, const std::vector<std::string>& arguments,
                     const std::string& input) const {
    std::string command = quoted(program);
    for (const std::string& argument : arguments) command += ' ' + quoted(argument);
    return runShell(command, input);
  }

  Outcome runShell(const std::string& command, const std::string& input) const {
    const std::string inPath = write("in", input);
    const std::string outPath = directory_ / "out", errPath = directory_ / "err";
    const int status = std::system(
        ("{ " + command + "; } <" + quoted(inPath) + " >" + quoted(outPath) + " 2>" + quoted(errPath))
            .c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, readFile(outPath), readFile(errPath)};
  }

  static std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  static std::string quoted(const std::string& text) {
    std::string result = "'";
    for (const char c : text) result += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return result + '\'';
  }

 private:
  std::filesystem::path directory_ = std::filesystem::temp_directory_path() /
                                     ("brindlewort_tool_" + std::to_string(getpid()) + '_' +
                                      testing::UnitTest::GetInstance()->current_test_info()->name());
};

/// Twelve days from 2024-01-01 on whose close is 10, 20, ... 120.
inline std::string twelveBars() {
  std::string text = "Date,Open,High,Low,Close,Volume\n";
  for (int day = 1; day <= 12; ++day) {
    const std::string price = std::to_string(10 * day);
    text += (day < 10 ? "2024-01-0" : "2024-01-") + std::to_string(day) + ',' + price + ',' + price + ',' +
            price + ',' + price + ",100\n";
  }
  return text;
}

}  // namespace brindlewort::tool
