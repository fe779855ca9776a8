#include "safe_file.hpp"

#ifdef _WIN32
#include <process.h>
#else
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "tool_error.hpp"

namespace brindlewort::tool {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kUnchanged = "What it held is unharmed";
constexpr std::string_view kNothingMade = "No file was made";

[[noreturn]] void failToWrite(const std::string& path, const std::string& reason, std::string_view state) {
  throw ToolError(kExitFile,
                  path + ": cannot write: " + reason + ". " + std::string(state) + "; give another path.");
}

std::string reasonOf(int error) {
  return std::strerror(error);
}

/// Writes all of a text and closes the file; 0, or why that failed. The text has reached the disk then.
int writeAndClose(std::FILE* file, std::string_view text) {
  const bool written =
      std::fwrite(text.data(), 1, text.size(), file) == text.size() && std::fflush(file) == 0;
  int error = written ? 0 : errno;
#ifndef _WIN32
  if (error == 0 && fsync(fileno(file)) != 0 && errno != EINVAL && errno != EROFS) error = errno;
#endif
  if (std::fclose(file) != 0 && error == 0) error = errno;
  return error;
}

/// The file that a path leads to through links, be it there or not.
fs::path endOfLinks(fs::path path) {
  constexpr int kMostLinks = 40;  // beyond that they go round
  std::error_code error;
  for (int links = 0; links < kMostLinks && fs::is_symlink(fs::symlink_status(path, error)); ++links) {
    path = path.parent_path() / fs::read_symlink(path, error);
  }
  return path;
}

#ifdef _WIN32
int processId() {
  return _getpid();
}

std::FILE* makeNew(const fs::path& path) {
  return std::fopen(path.string().c_str(), "wbx");
}

bool mayReplace(const fs::path&) {
  return true;  // else the renaming is refused
}
#else
int processId() {
  return getpid();
}

std::FILE* makeNew(const fs::path& path) {
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  return file < 0 ? nullptr : fdopen(file, "wb");
}

/// A file that may not be written could be renamed over all the same; nobody expects that.
bool mayReplace(const fs::path& target) {
  return access(target.c_str(), W_OK) == 0;
}
#endif

/// A new file beside `target`, with the access that new files get. Its name goes to `name`.
std::FILE* makeBeside(const fs::path& target, fs::path& name) {
  for (int number = 0;; ++number) {
    name = target;
    name += '.' + std::to_string(processId()) + '-' + std::to_string(number) + ".part";
    std::FILE* const file = makeNew(name);
    if (file || errno != EEXIST) return file;
  }
}

/// The new file gets the access that the one before had.
void replacePlainFile(const std::string& path, const fs::path& target, std::string_view text) {
  std::error_code none;
  const bool isThere = fs::exists(target, none);
  const std::string_view state = isThere ? kUnchanged : kNothingMade;
  if (isThere && !mayReplace(target)) failToWrite(path, reasonOf(errno), state);
  fs::path part;
  std::FILE* const file = makeBeside(target, part);
  if (!file) failToWrite(path, reasonOf(errno), state);
  const int error = writeAndClose(file, text);
  std::error_code renamed;
  if (error == 0) {
    if (isThere) fs::permissions(part, fs::status(target, none).permissions(), none);
    fs::rename(part, target, renamed);
  }
  if (error == 0 && !renamed) return;
  fs::remove(part, none);
  failToWrite(path, error != 0 ? reasonOf(error) : renamed.message(), state);
}

void writeStraight(const std::string& path, std::string_view text) {
  std::FILE* const file = std::fopen(path.c_str(), "wb");
  const int error = file ? writeAndClose(file, text) : errno;
  if (error != 0) failToWrite(path, reasonOf(error), "It is no plain file");
}

}  // namespace

void replaceFile(const std::string& path, std::string_view text) {
  const fs::path target = endOfLinks(path);
  std::error_code none;
  const fs::file_status status = fs::status(target, none);
  if (fs::is_directory(status)) failToWrite(path, "it is a folder", kNothingMade);
  if (fs::exists(status) && !fs::is_regular_file(status)) return writeStraight(path, text);
  replacePlainFile(path, target, text);
}

bool isSameFile(const std::string& path, const std::string& other) {
  std::error_code error;
  return fs::equivalent(path, other, error) && !error;
}

bool isSameFile(const std::string& path, std::FILE* stream) {
#ifdef _WIN32
  (void)path;
  (void)stream;
  return false;  // a file that is open cannot be replaced there
#else
  struct stat a, b;
  return stat(path.c_str(), &a) == 0 && fstat(fileno(stream), &b) == 0 && S_ISREG(a.st_mode) &&
         a.st_dev == b.st_dev && a.st_ino == b.st_ino;
#endif
}

}  // namespace brindlewort::tool
