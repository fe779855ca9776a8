#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace brindlewort::tool {

/// The input and the output of a command that answers what it reads as it comes. While one of these lives, an
/// interrupt (Ctrl-C, SIGINT) does not kill the tool: it ends reading and writing, even where they wait. One
/// at a time. A tool that was started with interrupts ignored goes on ignoring them.
class LiveStreams {
 public:
  /// Reads from `input`, which messages call `name`, and writes to standard output; past the buffers of both.
  LiveStreams(std::FILE* input, std::string name);
  ~LiveStreams();
  LiveStreams(const LiveStreams&) = delete;
  LiveStreams& operator=(const LiveStreams&) = delete;

  /// What has come, waiting until there is something; valid until the next call. Empty at the end of the
  /// input and after an interrupt.
  std::string_view read();
  /// Hands a text to the reader at the other end. False when there is no point in going on: after an
  /// interrupt, and when that reader has gone.
  bool write(std::string_view text);
  bool interrupted() const;

 private:
  int input_;
  int output_;
  std::string name_;
  std::string buffer_;
};

}  // namespace brindlewort::tool
