#include "platform/alert_count.hpp"

#include <gtest/gtest.h>

#ifndef _WIN32
#include <fcntl.h>
#include <sched.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <atomic>
#include <memory>
#include <new>
#include <string>
#include <thread>
#include <vector>

namespace brindlewort::platform {
namespace {

constexpr std::int32_t kMany = 1000;

TEST(AlertSeat, CountsFromItsMakingToItsEnd) {
  AlertCount count("/a/name/that/no/shared/memory/has");
  EXPECT_EQ(count.live(kMany), 0);
  {
    const AlertSeat first(count, kMany), second(count, kMany);
    EXPECT_EQ(count.live(kMany), 2);
  }
  EXPECT_EQ(count.live(kMany), 0);
}

TEST(AlertSeat, MovesWithItsOwner) {
  AlertCount count("/a/name/that/no/shared/memory/has");
  AlertSeat first(count, 1);
  AlertSeat moved(std::move(first));
  EXPECT_FALSE(moved.beyondLimit());
  EXPECT_EQ(count.live(kMany), 1);
  {
    AlertSeat second(count, 1);
    EXPECT_TRUE(second.beyondLimit());
    moved = std::move(second);
    EXPECT_TRUE(moved.beyondLimit());
  }
  EXPECT_EQ(count.live(kMany), 1);
}

#ifndef _WIN32

/// A count that no other test and no other run of it shares.
class AlertCountTest : public ::testing::Test {
 protected:
  AlertCountTest() {
    shm_unlink(name.c_str());
    signal(SIGPIPE, SIG_IGN);
  }
  ~AlertCountTest() override { shm_unlink(name.c_str()); }

  const std::string name = std::string("/brindlewort-test-") + std::to_string(getpid()) + "-" +
                           ::testing::UnitTest::GetInstance()->current_test_info()->name();
};

/// Ends a process that this test has started. Numbers below 1 would mean whole groups of processes.
void endProcess(pid_t pid) {
  if (pid > 0) kill(pid, SIGKILL);
}

/// Seconds after which a process that a broken test has left behind ends by itself.
constexpr unsigned kLongestLife = 60;

/// A child process. It does its work, says so, and waits to be told to end, or to be killed.
class Child {
 public:
  template <class Work>
  explicit Child(Work work) {
    int said[2], told[2];
    if (pipe(said) != 0 || pipe(told) != 0) return;
    pid_ = fork();
    if (pid_ == 0) {
      alarm(kLongestLife);
      close(said[0]);
      close(told[1]);
      const auto waitForTheEnd = [&] {
        char byte = 0;
        if (write(said[1], "x", 1) != 1 || read(told[0], &byte, 1) < 0) _exit(99);
      };
      work(waitForTheEnd);
      _exit(0);
    }
    close(said[1]);
    close(told[0]);
    said_ = said[0];
    told_ = told[1];
  }
  ~Child() {
    killNow();
    if (said_ >= 0) close(said_);
    if (told_ >= 0) close(told_);
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  /// True when the child has done its work.
  bool isReady() {
    char byte = 0;
    return read(said_, &byte, 1) == 1;
  }
  void killNow() {
    endProcess(pid_);
    join();
  }
  /// Lets it go on. A byte, since later children hold this pipe open too; one that has ended does not take
  /// it.
  void tell() { static_cast<void>(!write(told_, "x", 1)); }
  /// Its exit status; -1 when it was killed.
  int end() {
    tell();
    return join();
  }

 private:
  int join() {
    if (pid_ <= 0) return status_;
    int status = 0;
    waitpid(std::exchange(pid_, -1), &status, 0);
    return status_ = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  pid_t pid_ = -1;
  int said_ = -1, told_ = -1;
  int status_ = -1;
};

void enterTimes(AlertCount& count, int times) {
  for (int i = 0; i < times; ++i) count.enter(kMany);
}

TEST_F(AlertCountTest, TheLimitIsJudgedBeforeEntering) {
  AlertCount count(name);
  EXPECT_FALSE(count.enter(2));
  EXPECT_FALSE(count.enter(2));
  EXPECT_TRUE(count.enter(2));  // and counts all the same
  EXPECT_TRUE(count.enter(3));
  EXPECT_EQ(count.live(kMany), 4);
  count.leave();
  count.leave();
  EXPECT_TRUE(count.enter(2));
  EXPECT_FALSE(count.enter(4));
  EXPECT_EQ(count.live(kMany), 4);
  EXPECT_EQ(count.live(3), 3);
}

TEST_F(AlertCountTest, TwoCountsOfOneNameAreOneCount) {
  // Two of a process stand in each other's way no less than two processes whose ids are the same.
  AlertCount one(name), other(name);
  enterTimes(one, 3);
  enterTimes(other, 4);
  enterTimes(one, 2);
  EXPECT_EQ(one.live(kMany), 9);
  EXPECT_EQ(other.live(kMany), 9);
  for (int i = 0; i < 5; ++i) {
    one.leave();
    EXPECT_EQ(other.live(kMany), 8 - i);
  }
  EXPECT_EQ(other.live(kMany), 4);
  EXPECT_FALSE(one.enter(5));
  EXPECT_TRUE(other.enter(5));
  AlertCount stranger(name + "-2");
  EXPECT_EQ(stranger.live(kMany), 0);
  shm_unlink((name + "-2").c_str());
}

TEST_F(AlertCountTest, TwoProcessesShareTheCount) {
  AlertCount count(name);
  enterTimes(count, 2);
  Child child([&](auto waitForTheEnd) {
    AlertCount own(name);
    enterTimes(own, 3);
    if (own.live(kMany) != 5) _exit(1);
    waitForTheEnd();
    own.leave();
    if (own.live(kMany) != 2 + 2 + 1) _exit(2);
  });
  ASSERT_TRUE(child.isReady());
  EXPECT_EQ(count.live(kMany), 5);
  EXPECT_TRUE(count.enter(5));
  EXPECT_EQ(child.end(), 0);
  EXPECT_EQ(count.live(kMany), 3);  // what a process does not leave goes with it
}

TEST_F(AlertCountTest, AKilledProcessCountsNoMore) {
  AlertCount count(name);
  enterTimes(count, 1);
  Child child([&](auto waitForTheEnd) {
    AlertCount own(name);
    enterTimes(own, 999);
    waitForTheEnd();
  });
  ASSERT_TRUE(child.isReady());
  EXPECT_TRUE(count.enter(1000));
  child.killNow();
  EXPECT_FALSE(count.enter(3));
  EXPECT_EQ(count.live(kMany), 3);
}

/// A number that a process and its children have in common.
class SharedNumber {
 public:
  SharedNumber()
      : number_(new (mmap(nullptr, sizeof *number_, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1,
                          0)) std::atomic<int>(0)) {}
  ~SharedNumber() { munmap(number_, sizeof *number_); }
  SharedNumber(const SharedNumber&) = delete;
  SharedNumber& operator=(const SharedNumber&) = delete;

  void add() { ++*number_; }
  void waitFor(int least) {
    while (*number_ < least) sched_yield();
  }

 private:
  std::atomic<int>* number_;
};

TEST_F(AlertCountTest, AProcessKilledAtAnyMomentBlocksNobody) {
  AlertCount count(name);
  for (int round = 0; round < 20; ++round) {
    SharedNumber entered;
    Child child([&](auto) {
      AlertCount own(name);
      for (;;) {
        own.enter(kMany);
        entered.add();
        own.leave();
      }
    });
    entered.waitFor(1 + 7 * round);
    child.killNow();
    EXPECT_FALSE(count.enter(1)) << round;
    count.leave();
    EXPECT_EQ(count.live(kMany), 0);
  }
}

/// Locks a byte of the shared memory object as a process does that enters. The file stays open.
int lockByte(const std::string& name, off_t at) {
  const int file = shm_open(name.c_str(), O_RDWR, 0);
  struct flock range {};
  range.l_type = F_WRLCK;
  range.l_whence = SEEK_SET;
  range.l_start = at;
  range.l_len = 1;
  if (fcntl(file, F_OFD_SETLK, &range) != 0) _exit(1);
  return file;
}

TEST_F(AlertCountTest, WhoEntersWaitsForTheOneAtTheGate) {
  // The child is in the middle of entering until this process has come to the gate.
  AlertCount count(name);
  enterTimes(count, 1);
  Child child([&](auto waitForTheEnd) {
    const int gate = lockByte(name, 0);
    waitForTheEnd();
    lockByte(name, off_t{1} << 40);
    close(gate);
    pause();
  });
  ASSERT_TRUE(child.isReady());
  std::atomic<bool> comes = false;
  bool isBeyond = false;
  std::thread enters([&] {
    comes = true;
    isBeyond = count.enter(2);
  });
  // From its word to the gate the thread has a few steps to go, for which this one stands aside some times. Not many:
  // nobody waits at the gate for ever, and on a busy machine a time may be long.
  constexpr int kYields = 50;
  while (!comes) sched_yield();
  for (int i = 0; i < kYields; ++i) sched_yield();
  child.tell();
  enters.join();
  EXPECT_TRUE(isBeyond);
}

TEST_F(AlertCountTest, AProcessStoppedAtTheGateHoldsNobodyUpForEver) {
  AlertCount count(name);
  enterTimes(count, 1);
  Child child([&](auto waitForTheEnd) {
    AlertCount own(name);
    enterTimes(own, 2);
    lockByte(name, 0);
    waitForTheEnd();
  });
  ASSERT_TRUE(child.isReady());
  EXPECT_FALSE(count.enter(4));
  EXPECT_TRUE(count.enter(4));
  EXPECT_EQ(count.live(kMany), 5);
}

TEST_F(AlertCountTest, ProcessesThatEnterAtOnceKeepTheLimitExactly) {
  AlertCount count(name);
  constexpr int kChildren = 4, kEach = 100, kLimit = 250;
  int refused = 0;
  {
    std::vector<std::unique_ptr<Child>> children;
    for (int c = 0; c < kChildren; ++c) {
      children.push_back(std::make_unique<Child>([&](auto waitForTheEnd) {
        AlertCount own(name);
        int mine = 0;
        for (int i = 0; i < kEach; ++i) mine += own.enter(kLimit) ? 1 : 0;
        waitForTheEnd();
        _exit(mine);
      }));
    }
    for (auto& child : children) ASSERT_TRUE(child->isReady());
    EXPECT_EQ(count.live(kMany), kChildren * kEach);
    for (auto& child : children) refused += child->end();
  }
  EXPECT_EQ(refused, kChildren * kEach - kLimit);
  EXPECT_EQ(count.live(kMany), 0);
}

TEST_F(AlertCountTest, OfTwoThatEnterAtOnceForTheLastPlaceOneGetsIt) {
  // All wait for the moment at which the last of them arrives; again and again.
  constexpr int kChildren = 3, kRounds = 100;
  struct Shared {
    std::atomic<int> arrived, entered, left, refused;
  };
  void* memory = mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(memory, MAP_FAILED);
  Shared& shared = *new (memory) Shared{};
  const auto meet = [&](std::atomic<int>& here, int round) {
    ++here;
    while (here < (round + 1) * kChildren) sched_yield();
  };
  {
    std::vector<std::unique_ptr<Child>> children;
    for (int c = 0; c < kChildren; ++c) {
      children.push_back(std::make_unique<Child>([&](auto) {
        AlertCount own(name);
        for (int round = 0; round < kRounds; ++round) {
          meet(shared.arrived, round);
          if (own.enter(1)) ++shared.refused;
          meet(shared.entered, round);
          own.leave();
          meet(shared.left, round);
        }
      }));
    }
    for (auto& child : children) child->isReady();  // until it has ended
  }
  EXPECT_EQ(shared.left, kRounds * kChildren);
  EXPECT_EQ(shared.refused, kRounds * (kChildren - 1));
  munmap(memory, sizeof(Shared));
}

TEST_F(AlertCountTest, ManyThreadsShareTheCount) {
  AlertCount count(name);
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([&] {
      enterTimes(count, 100);
      for (int i = 0; i < 50; ++i) count.leave();
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(count.live(kMany), 200);
}

TEST_F(AlertCountTest, AForkedChildLeavesItsParentsCountAlone) {
  AlertCount count(name);
  enterTimes(count, 3);
  Child child([&](auto waitForTheEnd) {
    count.leave();  // a copy that the child drops
    waitForTheEnd();
    enterTimes(count, 1);  // two copies and one of its own
    if (count.live(kMany) != 3 + 3) _exit(1);
  });
  ASSERT_TRUE(child.isReady());
  EXPECT_EQ(count.live(kMany), 3);
  EXPECT_EQ(child.end(), 0);
  EXPECT_EQ(count.live(kMany), 3);
}

/// A child of a child, which outlives it. What runs in it closes `running` when it has come to its work.
void expectNothingOutlivesAKilledParent(const std::string& name, void (*inTheGrandchild)(int running)) {
  AlertCount count(name);
  int pids[2], running[2];
  ASSERT_EQ(pipe(pids), 0);
  ASSERT_EQ(pipe2(running, O_CLOEXEC), 0);
  Child child([&](auto waitForTheEnd) {
    AlertCount own(name);
    enterTimes(own, 5);
    const pid_t grandchild = fork();
    if (grandchild == 0) {
      alarm(kLongestLife);
      inTheGrandchild(running[1]);
      _exit(1);
    }
    close(running[1]);
    if (write(pids[1], &grandchild, sizeof grandchild) < 0) _exit(2);
    waitForTheEnd();
  });
  ASSERT_TRUE(child.isReady());
  pid_t grandchild = 0;
  ASSERT_EQ(read(pids[0], &grandchild, sizeof grandchild), static_cast<ssize_t>(sizeof grandchild));
  close(pids[0]);
  close(pids[1]);
  EXPECT_EQ(count.live(kMany), 5);
  close(running[1]);
  char byte = 0;
  EXPECT_EQ(read(running[0], &byte, 1), 0);
  close(running[0]);
  child.killNow();
  ASSERT_GT(grandchild, 0);
  EXPECT_EQ(kill(grandchild, 0), 0);
  EXPECT_EQ(count.live(kMany), 0);
  endProcess(grandchild);
}

TEST_F(AlertCountTest, AForkedChildKeepsNothingOfAKilledParent) {
  expectNothingOutlivesAKilledParent(name, [](int running) {
    close(running);
    pause();
  });
}

TEST_F(AlertCountTest, AStartedProgramKeepsNothingOfAKilledParent) {
  // The start of the program closes the pipe.
  expectNothingOutlivesAKilledParent(name, [](int) { execlp("cat", "cat", "/dev/zero", nullptr); });
}

// ---- The shared memory object

TEST_F(AlertCountTest, TheObjectIsItsUsersAlone) {
  const mode_t before = umask(0277);  // that would leave the user himself no way to write
  AlertCount count(name);
  count.enter(kMany);
  umask(before);
  const int file = shm_open(name.c_str(), O_RDWR, 0);
  struct stat status {};
  ASSERT_EQ(fstat(file, &status), 0);
  EXPECT_EQ(status.st_mode & 07777, static_cast<mode_t>(0600));
  EXPECT_EQ(status.st_uid, geteuid());
  EXPECT_EQ(status.st_size, 0);
  close(file);
}

TEST_F(AlertCountTest, AnObjectOpenToOthersIsClosedToThem) {
  close(shm_open(name.c_str(), O_RDWR | O_CREAT, 0644));
  AlertCount count(name);
  count.enter(kMany);
  const int file = shm_open(name.c_str(), O_RDWR, 0);
  struct stat status {};
  ASSERT_EQ(fstat(file, &status), 0);
  EXPECT_EQ(status.st_mode & 07777, static_cast<mode_t>(0600));
  close(file);
}

TEST_F(AlertCountTest, WhatSomebodyWritesIntoTheObjectChangesNothing) {
  AlertCount count(name), other(name);
  enterTimes(count, 2);
  const int file = shm_open(name.c_str(), O_RDWR, 0);
  const std::string garbage(70'000, '\xff');
  ASSERT_EQ(write(file, garbage.data(), garbage.size()), static_cast<ssize_t>(garbage.size()));
  EXPECT_EQ(other.live(kMany), 2);
  EXPECT_FALSE(other.enter(3));
  ASSERT_EQ(ftruncate(file, 3), 0);
  EXPECT_TRUE(other.enter(3));
  EXPECT_EQ(count.live(kMany), 4);
  close(file);
}

TEST_F(AlertCountTest, ARemovedObjectIsMadeAnew) {
  AlertCount count(name), other(name);
  enterTimes(count, 2);
  shm_unlink(name.c_str());
  enterTimes(count, 1);
  EXPECT_EQ(other.live(kMany), 3);  // those of before too
  shm_unlink(name.c_str());
  count.leave();
  EXPECT_EQ(count.live(kMany), 2);
}

TEST_F(AlertCountTest, AHostThatClosesAllFilesLosesNothingOfItsOwn) {
  Child child([&](auto waitForTheEnd) {
    AlertCount count(name), other(name);
    enterTimes(count, 2);
    // Closes whatever the count has open and opens a file of its own under the same number.
    const int last = dup(0);
    for (int fd = 3; fd < last; ++fd) {
      struct stat status {
      }, shared{};
      const int file = shm_open(name.c_str(), O_RDWR, 0);
      if (fstat(fd, &status) == 0 && fstat(file, &shared) == 0 && status.st_ino == shared.st_ino &&
          status.st_dev == shared.st_dev) {
        dup2(0, fd);
      }
      close(file);
    }
    if (other.live(kMany) != 0) _exit(1);
    count.leave();
    enterTimes(count, 2);
    if (other.live(kMany) != 3) _exit(2);
    for (int i = 0; i < 3; ++i) count.leave();
    // The numbers still mean the host's files.
    for (int fd = 3; fd < last; ++fd) {
      if (fcntl(fd, F_GETFD) < 0) _exit(3);
    }
    waitForTheEnd();
  });
  const bool ready = child.isReady();
  EXPECT_EQ(child.end(), 0);
  EXPECT_TRUE(ready);
}

TEST_F(AlertCountTest, NothingIsOpenWhileNothingCounts) {
  AlertCount count(name);
  const int before = dup(0);
  close(before);
  count.enter(kMany);
  count.leave();
  EXPECT_EQ(count.live(kMany), 0);
  const int after = dup(0);
  close(after);
  EXPECT_EQ(after, before);
}

TEST_F(AlertCountTest, WithoutSharedMemoryItCountsWithinTheProcess) {
  const std::string noName = "/brindlewort/no/such/name";  // shared memory takes no such name
  ASSERT_LT(shm_open(noName.c_str(), O_RDWR | O_CREAT, 0600), 0);
  AlertCount count(noName);
  EXPECT_FALSE(count.enter(2));
  EXPECT_FALSE(count.enter(2));
  EXPECT_TRUE(count.enter(2));
  count.leave();
  EXPECT_EQ(count.live(kMany), 2);
  EXPECT_EQ(count.live(1), 1);
}

TEST_F(AlertCountTest, AnObjectThatIsNoPlainFileIsLeftAlone) {
  // A folder stands in the object's place.
  const std::string path = "/dev/shm" + name;
  if (mkdir(path.c_str(), 0700) != 0) GTEST_SKIP() << "shared memory has no folder here";
  AlertCount count(name);
  EXPECT_FALSE(count.enter(1));
  EXPECT_TRUE(count.enter(1));
  rmdir(path.c_str());
}

TEST(AlertCount, TheMachinesCountIsTheUsers) {
  AlertCount& count = AlertCount::ofThisMachine();
  EXPECT_EQ(&count, &AlertCount::ofThisMachine());
  const AlertSeat seat(count, kMany);
  const int file = shm_open(("/brindlewort-alerts-" + std::to_string(geteuid())).c_str(), O_RDWR, 0);
  if (file < 0) GTEST_SKIP() << "no shared memory here";
  struct stat status {};
  ASSERT_EQ(fstat(file, &status), 0);
  EXPECT_EQ(status.st_mode & 07777, static_cast<mode_t>(0600));
  close(file);
}

#endif

}  // namespace
}  // namespace brindlewort::platform
