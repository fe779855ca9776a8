#include "series/series.hpp"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

namespace brindlewort {

namespace {

/// Smaller buffers are left to the allocator, which is quick with them.
constexpr std::size_t kPooledCapacity = 4096;
/// What is freed beyond so many rows goes back to the system.
constexpr std::size_t kMostPooledRows = std::size_t{1} << 26;
/// A buffer with more room than this many times what is wanted stays in the pool.
constexpr std::size_t kMostSlack = 2;

thread_local SeriesPool* presentPool = nullptr;

constexpr std::align_val_t kAlignment{32};

}  // namespace

SeriesPool::Scope::Scope(SeriesPool& pool) : outer_(presentPool) {
  presentPool = &pool;
}
SeriesPool::Scope::~Scope() {
  presentPool = outer_;
}

void SeriesPool::trim() {
  for (const Kept& kept : kept_) ::operator delete(kept.memory, kAlignment);
  kept_.clear();
  rows_ = 0;
}

Series::Buffer* Series::allocate(std::size_t capacity) {
  static_assert(alignof(Buffer) == static_cast<std::size_t>(kAlignment));
  if (capacity > (std::numeric_limits<std::size_t>::max() - sizeof(Buffer)) / sizeof(double)) {
    throw std::bad_alloc();
  }
  if (presentPool && capacity >= kPooledCapacity) {
    std::vector<SeriesPool::Kept>& kept = presentPool->kept_;
    for (std::size_t i = kept.size(); i-- > 0;) {
      if (kept[i].capacity < capacity || kept[i].capacity / kMostSlack > capacity) continue;
      const SeriesPool::Kept found = std::exchange(kept[i], kept.back());
      kept.pop_back();
      presentPool->rows_ -= found.capacity;
      return new (found.memory) Buffer{0, found.capacity, 1};
    }
  }
  return new (::operator new(sizeof(Buffer) + capacity * sizeof(double), kAlignment)) Buffer{0, capacity, 1};
}

void Series::free(Buffer* buffer) {
  if (presentPool && buffer->capacity >= kPooledCapacity &&
      presentPool->rows_ + buffer->capacity <= kMostPooledRows) {
    try {
      presentPool->kept_.push_back({buffer, buffer->capacity});
      presentPool->rows_ += buffer->capacity;
      return;
    } catch (const std::bad_alloc&) {
      // no room to note it
    }
  }
  ::operator delete(buffer, kAlignment);
}

void Series::release() {
  if (buffer_ && --buffer_->owners == 0) free(buffer_);
  buffer_ = nullptr;
}

Series::Series(View rows) {
  if (rows.empty()) return;
  buffer_ = allocate(rows.size());
  std::copy(rows.begin(), rows.end(), buffer_->rows());
  buffer_->size = rows.size();
}

Series::Series(const Series& other) noexcept : buffer_(other.buffer_) {
  if (buffer_) ++buffer_->owners;
}

Series& Series::operator=(const Series& other) noexcept {
  if (buffer_ == other.buffer_) return *this;
  release();
  buffer_ = other.buffer_;
  if (buffer_) ++buffer_->owners;
  return *this;
}

Series& Series::operator=(Series&& other) noexcept {
  if (this == &other) return *this;
  release();
  buffer_ = other.buffer_;
  other.buffer_ = nullptr;
  return *this;
}

Series Series::uninitialized(std::size_t rows) {
  Series series;
  if (rows > 0) {
    series.buffer_ = allocate(rows);
    series.buffer_->size = rows;
  }
  return series;
}

void Series::makeRoom(std::size_t capacity) {
  if (buffer_ && buffer_->owners == 1 && buffer_->capacity >= capacity) return;
  Buffer* fresh = allocate(std::max(capacity, size()));
  if (buffer_) {
    std::memcpy(fresh->rows(), buffer_->rows(), buffer_->size * sizeof(double));
    fresh->size = buffer_->size;
  }
  release();
  buffer_ = fresh;
}

std::size_t Series::roomToGrow(std::size_t rows) const {
  const bool outgrown = buffer_ && rows > buffer_->capacity;
  return outgrown ? std::max(rows, buffer_->capacity + buffer_->capacity / 2) : rows;
}

void Series::assign(std::size_t rows, double fill) {
  if (!buffer_ || buffer_->owners > 1 || buffer_->capacity < rows) {
    Buffer* fresh = rows > 0 ? allocate(rows) : nullptr;
    release();
    buffer_ = fresh;
    if (!buffer_) return;
  }
  std::fill_n(buffer_->rows(), rows, fill);
  buffer_->size = rows;
}

void Series::resize(std::size_t rows, double fill) {
  const std::size_t before = size();
  if (rows == before) return;
  makeRoom(roomToGrow(rows));
  if (rows > before) std::fill_n(buffer_->rows() + before, rows - before, fill);
  buffer_->size = rows;
}

void Series::growForOne() {
  makeRoom(std::max<std::size_t>(16, roomToGrow(size() + 1)));
}

void Series::reserve(std::size_t rows) {
  if (rows > 0) makeRoom(std::max(rows, size()));
}

void Series::clear() {
  if (buffer_ && buffer_->owners == 1) {
    buffer_->size = 0;
  } else {
    release();
  }
}

}  // namespace brindlewort
