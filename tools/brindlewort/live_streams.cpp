#include "live_streams.hpp"

#ifdef _WIN32
#include <io.h>
#else
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>
#endif

#include <cerrno>
#include <csignal>
#include <cstring>
#include <utility>

#include "tool_error.hpp"

namespace brindlewort::tool {
namespace {

constexpr std::size_t kPieceSize = std::size_t{1} << 16;

volatile std::sig_atomic_t interruptSeen = 0;

[[noreturn]] void failToRead(const std::string& name) {
  throw ToolError(kExitFile, name + ": cannot read: " + std::strerror(errno));
}

[[noreturn]] void failToWrite() {
  throw ToolError(kExitFile, std::string("cannot write to standard output: ") + std::strerror(errno));
}

}  // namespace

bool LiveStreams::interrupted() const {
  return interruptSeen != 0;
}

#ifndef _WIN32

namespace {

/// The handler writes to this pipe, so that a wait for a stream ends with an interrupt whenever it comes.
int wakeUpPipe[2] = {-1, -1};
struct sigaction actionBefore;

void onInterrupt(int) {
  const int errorBefore = errno;
  interruptSeen = 1;
  [[maybe_unused]] const ssize_t written = ::write(wakeUpPipe[1], "", 1);
  errno = errorBefore;
}

/// Waits until a stream can be read or written, as `events` says. False after an interrupt.
bool waitFor(int stream, short events) {
  pollfd waits[] = {{wakeUpPipe[0], POLLIN, 0}, {stream, events, 0}};
  while (interruptSeen == 0) {
    if (poll(waits, 2, -1) < 0) {
      if (errno == EINTR) continue;
      return interruptSeen == 0;  // no stream to wait for: reading or writing tells why
    }
    if (waits[1].revents != 0) return interruptSeen == 0;
  }
  return false;
}

}  // namespace

LiveStreams::LiveStreams(std::FILE* input, std::string name)
    : input_(fileno(input)), output_(STDOUT_FILENO), name_(std::move(name)), buffer_(kPieceSize, '\0') {
  // Else the pipe would take the place of a stream that is closed.
  if (fcntl(input_, F_GETFD) < 0) failToRead(name_);
  if (fcntl(output_, F_GETFD) < 0) failToWrite();
  if (pipe(wakeUpPipe) != 0) throw ToolError(kExitFile, std::string("cannot wait: ") + std::strerror(errno));
  for (const int end : wakeUpPipe) {
    fcntl(end, F_SETFD, FD_CLOEXEC);
    fcntl(end, F_SETFL, O_NONBLOCK);
  }
  interruptSeen = 0;
  sigaction(SIGINT, nullptr, &actionBefore);
  if (actionBefore.sa_handler == SIG_IGN) return;
  struct sigaction action = {};
  action.sa_handler = onInterrupt;
  sigemptyset(&action.sa_mask);
  sigaction(SIGINT, &action, nullptr);
}

LiveStreams::~LiveStreams() {
  sigaction(SIGINT, &actionBefore, nullptr);
  for (int& end : wakeUpPipe) close(std::exchange(end, -1));
}

std::string_view LiveStreams::read() {
  while (waitFor(input_, POLLIN)) {
    const ssize_t size = ::read(input_, buffer_.data(), buffer_.size());
    if (size >= 0) return std::string_view(buffer_).substr(0, static_cast<std::size_t>(size));
    if (errno != EINTR && errno != EAGAIN) failToRead(name_);
  }
  return {};
}

bool LiveStreams::write(std::string_view text) {
  while (!text.empty()) {
    if (!waitFor(output_, POLLOUT)) return false;
    const ssize_t size = ::write(output_, text.data(), text.size());
    if (size >= 0) {
      text.remove_prefix(static_cast<std::size_t>(size));
    } else if (errno == EPIPE) {
      return false;
    } else if (errno != EINTR && errno != EAGAIN) {
      failToWrite();
    }
  }
  return !interrupted();
}

#else

namespace {

void onInterrupt(int) {
  interruptSeen = 1;
}

}  // namespace

LiveStreams::LiveStreams(std::FILE* input, std::string name)
    : input_(_fileno(input)), output_(_fileno(stdout)), name_(std::move(name)), buffer_(kPieceSize, '\0') {
  interruptSeen = 0;
  std::signal(SIGINT, onInterrupt);
}

LiveStreams::~LiveStreams() {
  std::signal(SIGINT, SIG_DFL);
}

std::string_view LiveStreams::read() {
  const int size = _read(input_, buffer_.data(), static_cast<unsigned>(buffer_.size()));
  if (interrupted()) return {};  // a wait at the console ends with it
  if (size < 0) failToRead(name_);
  return std::string_view(buffer_).substr(0, static_cast<std::size_t>(size));
}

bool LiveStreams::write(std::string_view text) {
  while (!text.empty()) {
    const int size = _write(output_, text.data(), static_cast<unsigned>(text.size()));
    if (size < 0 && (errno == EPIPE || errno == EINVAL)) return false;  // nobody reads any more
    if (size < 0) failToWrite();
    text.remove_prefix(static_cast<std::size_t>(size));
  }
  return !interrupted();
}

#endif

}  // namespace brindlewort::tool
