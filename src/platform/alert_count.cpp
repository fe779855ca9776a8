#include "platform/alert_count.hpp"

#include <algorithm>

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
#else
#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <mutex>
#include <thread>
#include <vector>
#endif

namespace brindlewort::platform {

#ifdef _WIN32

namespace {

/// One number in a page of the library's image that all processes share; 0 when the first one loads it.
#ifdef _MSC_VER
#pragma section("Alerts", read, write, shared)
__declspec(allocate("Alerts")) volatile LONG alertInstanceCount = 0;
#else
volatile LONG alertInstanceCount __attribute__((section("Alerts"), shared)) = 0;
#endif

}  // namespace

class AlertCount::Counter {
 public:
  /// A count with a name stays within the process; the one without is the machine's.
  explicit Counter(const std::string& name) : number_(name.empty() ? &alertInstanceCount : &own_) {}

  bool enter(std::int32_t limit) { return InterlockedIncrement(number_) > limit; }
  void leave() { InterlockedDecrement(number_); }
  std::int32_t live(std::int32_t enough) { return std::min<std::int32_t>(*number_, enough); }

 private:
  volatile LONG own_ = 0;
  volatile LONG* number_;
};

AlertCount& AlertCount::ofThisMachine() {
  static AlertCount& count = *new AlertCount(std::string());
  return count;
}

#else

// A process holds as many locked bytes of a shared memory object as it has components, and the count is the
// number of locked bytes. Nothing is written into the object: there is no number that a process could spoil
// for the others, or leave behind when it is killed, for the system drops the locks of a process with the
// process. The locks belong to the open file, not to the process, so that they do not depend on what else a
// host does with its files.

namespace {

/// Byte 0 is the gate: who holds it counts and enters alone.
constexpr off_t kGate = 0;
/// Behind it every process has a home of so many bytes. It fills its home from the start, which keeps all its
/// locks in one range. The first choice goes by the process id; where another has it (ids repeat between
/// containers that share their memory), by further ones.
constexpr off_t kHomeSize = off_t{1} << 31;
constexpr std::uint32_t kHomes = std::uint32_t{1} << 22;
constexpr std::uint32_t kNextHome = 2654435761u;  // odd, so that it comes through all homes
constexpr int kHomesTried = 64;
/// To the end of all bytes that a file can have.
constexpr off_t kToTheEnd = 0;
constexpr std::chrono::seconds kLongestWait{1};

struct flock byteRange(short type, off_t from, off_t length) {
  struct flock range {};
  range.l_type = type;
  range.l_whence = SEEK_SET;
  range.l_start = from;
  range.l_len = length;
  return range;
}

#ifdef F_OFD_SETLK
enum class Locked { kYes, kTaken, kRefused };

Locked setLock(int file, short type, off_t from, off_t length) {
  struct flock range = byteRange(type, from, length);
  if (fcntl(file, F_OFD_SETLK, &range) == 0) return Locked::kYes;
  return errno == EAGAIN || errno == EACCES ? Locked::kTaken : Locked::kRefused;
}

/// A range that another holds between two places; false when there is none.
bool findLocked(int file, off_t from, off_t length, struct flock& found) {
  found = byteRange(F_WRLCK, from, length);
  return fcntl(file, F_OFD_GETLK, &found) == 0 && found.l_type != F_UNLCK;
}
#else
enum class Locked { kYes, kTaken, kRefused };
Locked setLock(int, short, off_t, off_t) {
  return Locked::kRefused;
}
bool findLocked(int, off_t, off_t, struct flock&) {
  return false;
}
#endif

/// Holds the gate for a scope. Who holds it needs microseconds; of a process that is stopped just there the
/// others do not wait for ever, and go on without.
class Gate {
 public:
  explicit Gate(int file) : file_(file) {
    const auto end = std::chrono::steady_clock::now() + kLongestWait;
    while (setLock(file_, F_WRLCK, kGate, 1) == Locked::kTaken && std::chrono::steady_clock::now() < end) {
      std::this_thread::sleep_for(std::chrono::microseconds(50));
    }
  }
  ~Gate() { setLock(file_, F_UNLCK, kGate, 1); }
  Gate(const Gate&) = delete;
  Gate& operator=(const Gate&) = delete;

 private:
  int file_;
};

/// Guards all counters of the process, and holds them still while the process forks.
std::mutex guard;

}  // namespace

class AlertCount::Counter {
 public:
  explicit Counter(std::string name) : name_(std::move(name)) {
    static const bool watchesForks = watchForks();
    static_cast<void>(watchesForks);
    const std::lock_guard lock(guard);
    next_ = first_;
    first_ = this;
  }
  ~Counter() {
    const std::lock_guard lock(guard);
    Counter** link = &first_;
    while (*link != this) link = &(*link)->next_;
    *link = next_;
    closeFile();
  }

  bool enter(std::int32_t limit) {
    std::vector<Gap> gaps = roomForGaps(limit);
    const std::lock_guard lock(guard);
    const std::int32_t own = seats_++;
    if (!openFile()) return own >= limit;
    const Gate gate(file_);
    // Taken first and counted then: should two be here at once, neither misses the other.
    takeSeats();
    return countOthers(gaps, limit) >= limit - own;
  }

  void leave() {
    const std::lock_guard lock(guard);
    --seats_;
    if (!holdsFile()) return;
    if (seats_ == 0) {
      closeFile();
    } else {
      setLock(file_, F_UNLCK, home_ + seats_, kHomeSize - seats_);
    }
  }

  std::int32_t live(std::int32_t enough) {
    std::vector<Gap> gaps = roomForGaps(enough);
    const std::lock_guard lock(guard);
    if (!openFile()) return std::min(seats_, enough);
    const std::int32_t others = countOthers(gaps, enough);
    if (seats_ == 0) closeFile();
    return others >= enough - seats_ ? enough : others + seats_;
  }

 private:
  /// Bytes of which it is not known yet whether another process holds some.
  struct Gap {
    off_t from, length;
  };

  /// Each range found leaves at most one gap more, and adds at least one to the count.
  static std::vector<Gap> roomForGaps(std::int32_t enough) {
    std::vector<Gap> gaps;
    gaps.reserve(static_cast<std::size_t>(std::clamp(enough, 0, 4096)) + 2);
    return gaps;
  }

  /// The bytes that other processes hold, until `enough` are found.
  std::int32_t countOthers(std::vector<Gap>& gaps, std::int32_t enough) const {
    off_t count = 0;
    gaps.push_back({kGate + 1, kToTheEnd});
    while (!gaps.empty() && count < enough) {
      const Gap gap = gaps.back();
      gaps.pop_back();
      struct flock found;
      if (!findLocked(file_, gap.from, gap.length, found)) continue;
      if (found.l_len == kToTheEnd) return enough;
      // A range may reach beyond the gap.
      const off_t from = std::max<off_t>(found.l_start, gap.from);
      const off_t end = found.l_start + found.l_len;
      const off_t gapEnd = gap.from + gap.length;
      const bool endless = gap.length == kToTheEnd;
      count += (endless ? end : std::min(end, gapEnd)) - from;
      if (from > gap.from) gaps.push_back({gap.from, from - gap.from});
      if (endless) {
        gaps.push_back({end, kToTheEnd});
      } else if (end < gapEnd) {
        gaps.push_back({end, gapEnd - end});
      }
    }
    return static_cast<std::int32_t>(std::min<off_t>(count, enough));
  }

  /// Locks a byte for each component of this process. Without success they count within the process alone.
  void takeSeats() {
    for (int i = 0; i < kHomesTried; ++i) {
      if (setLock(file_, F_WRLCK, home_, seats_) != Locked::kTaken) return;
      setLock(file_, F_UNLCK, home_, kHomeSize);
      moveTo(homeNumber_ + kNextHome);
    }
  }

  void moveTo(std::uint32_t homeNumber) {
    homeNumber_ = homeNumber % kHomes;
    home_ = kGate + 1 + static_cast<off_t>(homeNumber_) * kHomeSize;
  }

  /// Whether the object is open and still the one by which others count. A host may have closed all files, or
  /// the system may have taken the object's name away when its user logged out.
  bool openFile() {
    if (holdsFile()) {
      if (opened_.st_nlink > 0) return true;
      closeFile();
    }
    file_ = shm_open(name_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (file_ < 0) return false;
    const bool isOurs =
        fstat(file_, &opened_) == 0 && S_ISREG(opened_.st_mode) && opened_.st_uid == geteuid() &&
        ((opened_.st_mode & 07777) == (S_IRUSR | S_IWUSR) || fchmod(file_, S_IRUSR | S_IWUSR) == 0);
    if (!isOurs) {
      close(file_);
      file_ = -1;
      return false;
    }
    moveTo(static_cast<std::uint32_t>(getpid()));
    return true;
  }

  /// False also when the descriptor has come to mean another file, which is not ours to touch.
  bool holdsFile() {
    if (file_ < 0) return false;
    struct stat now;
    if (fstat(file_, &now) == 0 && now.st_dev == opened_.st_dev && now.st_ino == opened_.st_ino) {
      opened_ = now;
      return true;
    }
    file_ = -1;
    return false;
  }

  /// Drops all locks with it.
  void closeFile() {
    if (holdsFile()) close(file_);
    file_ = -1;
  }

  /// A child shares its parent's open files and with them the locks, which must not outlive the parent.
  static bool watchForks() {
    return pthread_atfork([] { guard.lock(); }, [] { guard.unlock(); },
                          [] {
                            for (Counter* c = first_; c; c = c->next_) c->closeFile();
                            guard.unlock();
                          }) == 0;
  }

  static Counter* first_;  ///< all counters of the process
  Counter* next_ = nullptr;

  const std::string name_;
  std::int32_t seats_ = 0;  ///< the components of this process
  int file_ = -1;           ///< open while there are any
  struct stat opened_ {};
  std::uint32_t homeNumber_ = 0;
  off_t home_ = 0;
};

AlertCount::Counter* AlertCount::Counter::first_ = nullptr;

AlertCount& AlertCount::ofThisMachine() {
  static AlertCount& count = *new AlertCount("/brindlewort-alerts-" + std::to_string(geteuid()));
  return count;
}

#endif

AlertCount::AlertCount(std::string name) : counter_(std::make_unique<Counter>(std::move(name))) {}
AlertCount::~AlertCount() = default;

bool AlertCount::enter(std::int32_t limit) {
  return counter_->enter(limit);
}

void AlertCount::leave() {
  counter_->leave();
}

std::int32_t AlertCount::live(std::int32_t enough) {
  return counter_->live(enough);
}

}  // namespace brindlewort::platform
