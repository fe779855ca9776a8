#pragma once

#include <chrono>
#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace brindlewort::tool {

struct CloseFile {
  void operator()(std::FILE* file) const {
    if (file != stdin) std::fclose(file);
  }
};
/// A file to read from; standard input is never closed.
using InputFile = std::unique_ptr<std::FILE, CloseFile>;

/// Opens a file, or standard input for "-". `advice` ends the message when that fails.
InputFile openInput(const std::string& path, std::string_view advice);
/// The next piece of a file into `buffer`: how many bytes, 0 at the end. `name` is for the message of a
/// failure.
std::size_t readPiece(std::FILE* file, std::string& buffer, const std::string& name);
/// The whole rest of a file.
std::string readAll(std::FILE* file, const std::string& name);
/// Size of a file in bytes; 0 when it has none, as a pipe.
std::size_t sizeOfFile(const std::string& path);

bool isTerminal(std::FILE* file);

/// Writes a text to standard output. A reader that has closed its end of a pipe is no failure: it has seen
/// enough.
void writeOutput(std::string_view text);
/// Closes standard output at the end of the tool: what is told only then, as by a disk of another machine, is
/// a failure too.
void closeOutput();

/// Writes a text to standard error; its last line need not have an end.
void tell(std::string_view text);

/// One line on standard error that tells how a long piece of work goes on. Silent when standard error is no
/// terminal, and for the first moments, so that short work shows nothing.
class ProgressLine {
 public:
  ProgressLine();
  ~ProgressLine() { clear(); }
  ProgressLine(const ProgressLine&) = delete;
  ProgressLine& operator=(const ProgressLine&) = delete;

  /// True when it is time for a new text; keeps callers from making texts that nobody sees.
  bool due() const;
  void show(const std::string& text);
  void clear();

 private:
  using Clock = std::chrono::steady_clock;

  bool enabled_;
  bool shown_ = false;
  Clock::time_point next_;
};

}  // namespace brindlewort::tool
