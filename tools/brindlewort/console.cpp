#include "console.hpp"

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "tool_error.hpp"

namespace brindlewort::tool {
namespace {

constexpr std::size_t kPieceSize = std::size_t{1} << 20;
constexpr auto kQuietAtFirst = std::chrono::milliseconds(500);
constexpr auto kBetweenTexts = std::chrono::milliseconds(100);
constexpr char kEraseLine[] = "\r\x1b[K";

std::string reason() {
  return std::strerror(errno);
}

[[noreturn]] void failToWriteOutput() {
  throw ToolError(kExitFile, "cannot write to standard output: " + reason());
}

}  // namespace

InputFile openInput(const std::string& path, std::string_view advice) {
  if (path == "-") return InputFile(stdin);
  std::FILE* const file = std::fopen(path.c_str(), "rb");
  if (!file) throw ToolError(kExitFile, path + ": cannot open: " + reason() + ". " + std::string(advice));
  return InputFile(file);
}

std::size_t readPiece(std::FILE* file, std::string& buffer, const std::string& name) {
  buffer.resize(kPieceSize);
  const std::size_t size = std::fread(buffer.data(), 1, buffer.size(), file);
  if (size == 0 && std::ferror(file)) throw ToolError(kExitFile, name + ": cannot read: " + reason());
  return size;
}

std::string readAll(std::FILE* file, const std::string& name) {
  std::string text, buffer;
  while (const std::size_t size = readPiece(file, buffer, name)) text.append(buffer, 0, size);
  return text;
}

std::size_t sizeOfFile(const std::string& path) {
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  return error ? 0 : static_cast<std::size_t>(size);
}

bool isTerminal(std::FILE* file) {
#ifdef _WIN32
  return _isatty(_fileno(file)) != 0;
#else
  return isatty(fileno(file)) != 0;
#endif
}

void writeOutput(std::string_view text) {
  const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
  if ((!written || std::fflush(stdout) != 0) && errno != EPIPE) failToWriteOutput();
}

void closeOutput() {
  // A standard output that was never there has lost nothing: writeOutput would have told.
  if (std::fclose(stdout) != 0 && errno != EPIPE && errno != EBADF) failToWriteOutput();
}

void tell(std::string_view text) {
  std::fwrite(text.data(), 1, text.size(), stderr);
  if (!text.ends_with('\n')) std::fputc('\n', stderr);
}

ProgressLine::ProgressLine() : enabled_(isTerminal(stderr)), next_(Clock::now() + kQuietAtFirst) {}

bool ProgressLine::due() const {
  return enabled_ && Clock::now() >= next_;
}

void ProgressLine::show(const std::string& text) {
  if (!due()) return;
  std::fprintf(stderr, "%s%s", kEraseLine, text.c_str());
  std::fflush(stderr);
  shown_ = true;
  next_ = Clock::now() + kBetweenTexts;
}

void ProgressLine::clear() {
  if (!shown_) return;
  std::fputs(kEraseLine, stderr);
  std::fflush(stderr);
  shown_ = false;
}

}  // namespace brindlewort::tool
