#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace brindlewort {

/// Read access to the rows of a series, oldest first.
using View = std::span<const double>;
/// Write access to the rows of a series.
using Out = std::span<double>;

/// Keeps the buffers of large series that are no longer needed for those that are made next: fresh memory
/// costs a page fault every few hundred rows. Buffers come and go through it while a Scope of it is alive on
/// the thread; the pool must outlive the scope, not the series. It keeps half a gigabyte at most.
class SeriesPool {
 public:
  SeriesPool() = default;
  ~SeriesPool() { trim(); }
  SeriesPool(const SeriesPool&) = delete;
  SeriesPool& operator=(const SeriesPool&) = delete;

  /// Gives the memory of all kept buffers back.
  void trim();
  /// How many buffers are kept.
  std::size_t size() const { return kept_.size(); }

  class Scope {
   public:
    explicit Scope(SeriesPool& pool);
    ~Scope();
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

   private:
    SeriesPool* outer_;
  };

 private:
  friend class Series;
  struct Kept {
    void* memory;
    std::size_t capacity;
  };
  std::vector<Kept> kept_;
  std::size_t rows_ = 0;  ///< that the kept buffers have room for
};

/// A growable vector of double that behaves as a value and costs a pointer to copy: copies share one
/// buffer until one of them is written (copy on write). Not safe for sharing between threads: all
/// series of an engine belong to the thread that runs it.
class Series {
 public:
  Series() = default;
  Series(std::size_t rows, double fill) { assign(rows, fill); }
  explicit Series(View rows);
  Series(const Series& other) noexcept;
  Series(Series&& other) noexcept : buffer_(other.buffer_) { other.buffer_ = nullptr; }
  Series& operator=(const Series& other) noexcept;
  Series& operator=(Series&& other) noexcept;
  ~Series() {
    if (buffer_) release();
  }

  /// A series of `rows` rows whose contents are unspecified; every row must be written before it is read.
  static Series uninitialized(std::size_t rows);

  std::size_t size() const { return buffer_ ? buffer_->size : 0; }
  bool empty() const { return size() == 0; }
  const double* data() const { return buffer_ ? buffer_->rows() : nullptr; }
  double operator[](std::size_t row) const { return buffer_->rows()[row]; }
  double back() const { return buffer_->rows()[buffer_->size - 1]; }
  View view() const { return {data(), size()}; }

  /// True when no other Series shares the buffer, so edit() will not copy.
  bool unique() const { return !buffer_ || buffer_->owners == 1; }

  /// The rows for writing. Copies first when the buffer is shared. The span is valid until the series
  /// is resized, assigned or destroyed.
  Out edit() {
    if (!buffer_) return {};
    if (buffer_->owners > 1) makeRoom(buffer_->size);
    return {buffer_->rows(), buffer_->size};
  }
  void set(std::size_t row, double value) { edit()[row] = value; }

  void assign(std::size_t rows, double fill);
  /// Keeps the rows up to `rows` and gives new ones the value `fill`. Amortised constant time per new row, so
  /// a series may grow by one row at a time.
  void resize(std::size_t rows, double fill);
  /// Amortised constant time.
  void push_back(double value) {
    reserveRow();
    buffer_->rows()[buffer_->size++] = value;
  }
  void reserve(std::size_t rows);
  /// The rows are this series' own and the next push_back() needs no memory.
  void reserveRow() {
    if (!buffer_ || buffer_->owners > 1 || buffer_->capacity == buffer_->size) growForOne();
  }
  /// Takes the rows from this one on away. The buffer must not be shared.
  void truncate(std::size_t rows) noexcept {
    if (buffer_ && rows < buffer_->size) buffer_->size = rows;
  }
  /// The next row moves the rows to another place in memory.
  bool full() const { return !buffer_ || buffer_->capacity == buffer_->size; }
  void clear();

 private:
  struct alignas(32) Buffer {  // so the rows behind it start on a 32-byte boundary too
    std::size_t size;
    std::size_t capacity;
    std::size_t owners;
    double* rows() { return reinterpret_cast<double*>(this + 1); }
    const double* rows() const { return reinterpret_cast<const double*>(this + 1); }
  };

  static Buffer* allocate(std::size_t capacity);
  static void free(Buffer* buffer);
  void release();
  void makeRoom(std::size_t capacity);  // unique, with at least this capacity, rows kept
  void growForOne();
  std::size_t roomToGrow(std::size_t rows) const;  // capacity to ask for when `rows` rows are to fit

  Buffer* buffer_ = nullptr;
};

}  // namespace brindlewort
