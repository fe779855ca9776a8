// compare_transcripts ONE OTHER: whether two systems said the same, line by line.

#include <fstream>
#include <iostream>
#include <string>

#include "transcript_comparison.hpp"

namespace {

constexpr int kShownDifferences = 20;

std::ifstream opened(const char* path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) std::cerr << path << " cannot be read\n";
  return file;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: compare_transcripts ONE OTHER\n";
    return 2;
  }
  std::ifstream one = opened(argv[1]);
  std::ifstream other = opened(argv[2]);
  if (!one || !other) return 2;
  std::string call, line, otherLine;
  int number = 0;
  int differences = 0;
  while (true) {
    const bool isThere = static_cast<bool>(std::getline(one, line));
    const bool isOtherThere = static_cast<bool>(std::getline(other, otherLine));
    if (!isThere && !isOtherThere) break;
    ++number;
    if (isThere && !line.starts_with(' ')) call = line;
    if (isThere && isOtherThere && brindlewort::session::isSame(line, otherLine)) continue;
    if (++differences > kShownDifferences) continue;
    std::cout << "line " << number << ", of: " << call << "\n< " << (isThere ? line : "(no more)") << "\n> "
              << (isOtherThere ? otherLine : "(no more)") << '\n';
  }
  if (number == 0) {
    std::cout << "nothing to compare\n";
    return 1;
  }
  std::cout << number << " lines, " << differences << " differences\n";
  return differences == 0 ? 0 : 1;
}
