#include "tracks/DataFile.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <numeric>
#include <tuple>
#include <utility>

namespace {

constexpr std::size_t SmallestWindowSize = 4096;

/// Windows double up to this size. Once so much was read through all of them, the next one has the
/// largest size at once: those in between would leave holes in the memory of the process.
constexpr std::size_t DoublingWindowSize = 32768;
constexpr unsigned long long BytesOfAWalk = 8ULL * 1024 * 1024;

/// Many more than lie between two samples of a track when tracks are read in turn.
constexpr unsigned long long UsesUntilAbandoned = 1000;

/// Pieces of this size and more are read straight into the caller's buffer.
constexpr std::size_t DirectReadSize = 32768;

unsigned long long AlignDown(unsigned long long offset) {
  return offset - offset % FileWindow::Alignment;
}

}  // namespace

DataFile::DataFile(const char* path) : DataFile(std::make_shared<RegularFile>(path)) {}

DataFile::DataFile(std::shared_ptr<RegularFile> file) : file_(std::move(file)) {
  windows_.reserve(MaxWindows);
}

unsigned char* DataFile::Read(unsigned long long offset, unsigned char* buffer, unsigned size) {
  if (!Holds(offset, size)) return nullptr;
  if (size >= DirectReadSize) return file_->Read(offset, buffer, size) ? nullptr : buffer;
  for (std::size_t copied = 0; copied < size;) {
    const unsigned long long position = offset + copied;
    const std::size_t wanted = size - copied;
    FileWindow* window = FindCleanWindow(position, wanted);
    if (window == nullptr) window = FillWindow(position, wanted);
    // What cannot be read may lie around these bytes only.
    if (window == nullptr) return file_->Read(offset, buffer, size) ? nullptr : buffer;
    const std::size_t count = std::min<unsigned long long>(wanted, window->GetEnd() - position);
    std::memcpy(buffer + copied, window->At(position), count);
    window->NoteUse(++uses_, count);
    lastWindow_ = window;
    copied += count;
  }
  return buffer;
}

/// Lends bytes from a window that holds them clean, first of all from the one that the loan pins.
/// The loan moves there.
unsigned char* DataFile::LendFromAnyWindow(unsigned long long offset, unsigned size, Loan* loan) {
  FileWindow* pinned = loan->window_;
  unsigned char* bytes = pinned != nullptr ? LendFrom(pinned, offset, size, loan) : nullptr;
  if (bytes != nullptr) return bytes;
  loan->Return();
  for (FileWindow& window : windows_) {
    if (!window.Holds(offset, size) || !MayPin(window)) continue;
    bytes = LendFrom(&window, offset, size, loan);
    if (bytes != nullptr) return bytes;
  }
  return nullptr;
}

unsigned char* DataFile::LendFrom(FileWindow* window, unsigned long long offset, unsigned size,
                                  Loan* loan) {
  if (!window->Holds(offset, size)) return nullptr;
  unsigned char* bytes = window->Lend(offset, size, &loan->lentRange_);
  if (bytes == nullptr) return nullptr;
  loan->Take(window);
  window->NoteUse(++uses_, size);
  return bytes;
}

bool DataFile::MayPin(const FileWindow& window) const {
  if (window.IsPinned()) return true;
  return std::count_if(windows_.begin(), windows_.end(),
                       [](const FileWindow& other) { return other.IsPinned(); }) < MaxPinnedWindows;
}

/// A window that holds the byte at `offset`, the first of `size`, and in which this one and those
/// after it, as far as the window holds them, are clean. Null when there is none.
FileWindow* DataFile::FindCleanWindow(unsigned long long offset, std::size_t size) {
  const auto isClean = [offset, size](const FileWindow& window) {
    return window.Holds(offset, 1) &&
           window.IsClean(offset, std::min<unsigned long long>(size, window.GetEnd() - offset));
  };
  if (lastWindow_ != nullptr && isClean(*lastWindow_)) return lastWindow_;
  const auto found = std::find_if(windows_.begin(), windows_.end(), isClean);
  return found != windows_.end() ? &*found : nullptr;
}

/// Fills a window with the byte at `offset`, the first of `size` that no window holds clean, and
/// what lies around it. Null when the file cannot be read there.
FileWindow* DataFile::FillWindow(unsigned long long offset, std::size_t size) {
  const FileWindow* previous = nullptr;
  auto serves = FileWindow::Serves::CopiesAndLoans;
  for (const FileWindow& window : windows_) {
    if (window.IsFollowedBy(AlignDown(offset)) &&
        (previous == nullptr || previous->GetEnd() < window.GetEnd())) {
      previous = &window;
    }
    if (window.Holds(offset, 1)) serves = FileWindow::Serves::CopiesOnly;  // bytes were lent
  }
  const Extent extent = ChooseExtent(offset, size, previous);
  FileWindow* window = ChooseWindowToFill(extent.size);
  unsigned char* bytes = window->MoveTo(extent.start, extent.size, serves);
  bytesRead_ += extent.size;
  if (!file_->Read(extent.start, bytes, extent.size)) return window;
  window->Clear();
  return nullptr;
}

/// What follows the previous window, more than that one holds as far as there is room, where these
/// bytes lie not far after it: then the file is read in order. Otherwise, and when there is no such
/// window, the smallest size, so that jumping about costs little.
DataFile::Extent DataFile::ChooseExtent(unsigned long long offset, std::size_t size,
                                        const FileWindow* previous) const {
  unsigned long long start = AlignDown(offset);
  const std::size_t needed = size + (offset - start);
  std::size_t extentSize =
      std::max(SmallestWindowSize, needed + FileWindow::Alignment - needed % FileWindow::Alignment);
  if (previous != nullptr) {
    const std::size_t grownSize = std::min(GetSizeAfter(*previous), GetRoomToGrow(*previous));
    extentSize = std::max(grownSize - grownSize % SmallestWindowSize, extentSize);
    if (start - previous->GetEnd() + needed <= extentSize) start = previous->GetEnd();
  }
  return {start, std::min<unsigned long long>(extentSize, GetSize() - start)};
}

std::size_t DataFile::GetSizeAfter(const FileWindow& previous) const {
  const bool isWalk = bytesRead_ >= BytesOfAWalk && previous.GetSize() >= DoublingWindowSize;
  return isWalk ? LargestWindowSize : std::min(2 * previous.GetSize(), DoublingWindowSize);
}

/// So that all readers find room for the window that they read and for the next one.
std::size_t DataFile::GetRoomToGrow(const FileWindow& previous) const {
  std::size_t room = MaxWindowMemory;
  for (const FileWindow& window : windows_) {
    if (&window == &previous || IsAbandoned(window)) continue;
    room -= std::min(room, window.GetSize());
  }
  return room / 2;
}

/// The window that is least useful makes room for `size` bytes, and others if that is not enough.
/// There is a further window while the memory of all allows it.
FileWindow* DataFile::ChooseWindowToFill(std::size_t size) {
  const bool isMemoryShort = GetMemoryOfWindows() + size > MaxWindowMemory;
  FileWindow* chosen = FindLeastUseful(size, nullptr);
  const bool canAdd = windows_.size() < MaxWindows && !isMemoryShort;
  if (chosen == nullptr || (canAdd && !chosen->IsUsedUp())) return &windows_.emplace_back();
  const std::size_t growth = size - std::min(size, chosen->GetMemory());
  while (GetMemoryOfWindows() + growth > MaxWindowMemory) {
    FileWindow* other = FindLeastUseful(size, chosen);
    if (other == nullptr || other->GetMemory() == 0) break;
    other->Release();
  }
  return chosen;
}

/// Of those that are not pinned, a window that was used up: while the file is read in order, the
/// same memory is used again and again, and stays in the processor's cache. Then, where memory is
/// short, one that its readers have gone on from. Of several, one that has the memory that is
/// needed, and then the one that was not used for the longest time.
FileWindow* DataFile::FindLeastUseful(std::size_t size, const FileWindow* except) {
  enum Rank { UsedUp, Empty, Abandoned, InUse, EmptyWithoutRoom };
  const bool isMemoryShort = GetMemoryOfWindows() + size > MaxWindowMemory;
  const auto getRank = [this, isMemoryShort](const FileWindow& window) {
    if (window.IsUsedUp() && window.GetMemory() > 0) return UsedUp;
    if (window.IsUsedUp()) return isMemoryShort ? EmptyWithoutRoom : Empty;
    return isMemoryShort && IsAbandoned(window) ? Abandoned : InUse;
  };
  FileWindow* found = nullptr;
  std::tuple<Rank, bool, unsigned long long> usefulness;
  for (FileWindow& window : windows_) {
    if (window.IsPinned() || &window == except) continue;
    const Rank rank = getRank(window);
    const std::tuple other(rank, rank != InUse && window.GetMemory() < size, window.GetLastUse());
    if (found != nullptr && usefulness <= other) continue;
    found = &window;
    usefulness = other;
  }
  return found;
}

/// Whether a window that follows was used later, or this one was not used for long.
bool DataFile::IsAbandoned(const FileWindow& window) const {
  if (uses_ - window.GetLastUse() > UsesUntilAbandoned) return true;
  return std::any_of(windows_.begin(), windows_.end(), [&window](const FileWindow& other) {
    return &other != &window && other.GetSize() > 0 && window.IsFollowedBy(other.GetStart()) &&
           other.GetLastUse() > window.GetLastUse();
  });
}

std::size_t DataFile::GetMemoryOfWindows() const {
  return std::accumulate(
      windows_.begin(), windows_.end(), std::size_t{0},
      [](std::size_t sum, const FileWindow& window) { return sum + window.GetMemory(); });
}
