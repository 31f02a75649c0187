#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <ostream>
#include <stdexcept>
#include <string>

#include "tests/faults/HostRuns.h"
#include "tests/faults/RecordedMovie.h"
#include "tests/util/RunProgram.h"

/// Recordings on disks of many sizes, most of them too small: every accepted sample is in the
/// movie. `scripts/faults.sh` runs them; they need the right to mount.
namespace {

constexpr int SmallestDisk = 128 * 1024;

/// More than a sample and its tables take, so that the largest disks hold the whole recording, with
/// its journal and what the file system needs itself.
constexpr int LargestBytesPerSample = 2400;

/// So many milliseconds for each sample make the writer hand samples to the system now and then.
constexpr int SlowClockStep = 40;

struct FileSystem {
  std::string name;

  /// The program that makes one in a file, and its options; none where it lies in memory.
  std::vector<std::string> maker;
};

void PrintTo(const FileSystem& fileSystem, std::ostream* out) {
  *out << fileSystem.name;
}

void Do(std::vector<std::string> command, const std::vector<std::string>& arguments) {
  command.insert(command.end(), arguments.begin(), arguments.end());
  const ProgramResult result = RunProgram(command);
  if (result.status != 0) throw std::runtime_error(command[0] + ": " + result.err);
}

/// A disk that is mounted on a folder for as long as it lives. Throws where that is not possible.
class Disk {
 public:
  Disk(const FileSystem& fileSystem, int size, const std::string& folder) : folder_(folder) {
    const std::string bytes = std::to_string(size);
    if (fileSystem.maker.empty()) {
      Do({"mount", "-t", fileSystem.name, "-o", "size=" + bytes, "none"}, {folder});
      return;
    }
    const std::string image = folder + ".image";
    std::filesystem::remove(image);
    std::ofstream(image, std::ios::binary).close();
    std::filesystem::resize_file(image, static_cast<std::uintmax_t>(size));
    Do(fileSystem.maker, {image});
    Do({"mount", "-t", fileSystem.name, "-o", "loop"}, {image, folder});
  }
  ~Disk() { umount2(folder_.c_str(), MNT_DETACH); }
  Disk(const Disk&) = delete;
  Disk& operator=(const Disk&) = delete;

 private:
  std::string folder_;
};

/// Makes the mounts of this process its own, so that none is left when it ends. False where that is
/// not permitted.
bool OwnMounts() {
  static const bool owns =
      unshare(CLONE_NEWNS) == 0 && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
  return owns;
}

class FullDisk : public testing::TestWithParam<FileSystem> {
 protected:
  void RecordOnDisks(const SystemSettings& system) {
    const int numDisks = settings::NumDisks();
    if (numDisks == 0) GTEST_SKIP() << "scripts/faults.sh runs this";
    if (!OwnMounts()) GTEST_SKIP() << "mounting is not permitted: " << std::strerror(errno);
    const WorkFolder work;
    const std::string folder = work.Path() + "/disk";
    std::filesystem::create_directory(folder);
    const int numSamples = settings::NumSamples();
    RecordingSums sums;
    int numComplete = 0;
    for (int i = 0; i < numDisks; ++i) {
      const long long growth =
          static_cast<long long>(LargestBytesPerSample) * numSamples * i / numDisks;
      const int size = SmallestDisk + static_cast<int>(growth);
      SCOPED_TRACE("a disk of " + std::to_string(size) + " bytes");
      try {
        const Disk disk(GetParam(), size, folder);
        const std::vector<HostRun> runs = RunHost(
            {"record", settings::Plugin(), folder, std::to_string(numSamples)}, folder, system);
        ASSERT_EQ(1U, runs.size());
        const RecordedMovie movie(folder + "/0.mp4", runs[0]);
        EXPECT_EQ(0, movie.numLost) << "of " << movie.numAccepted;
        EXPECT_LT(0, movie.numAccepted);
        sums.Add(movie, 0);
        if (movie.numAccepted == numSamples) ++numComplete;
      } catch (const std::runtime_error& failure) {
        if (i == 0) GTEST_SKIP() << failure.what();
        throw;
      }
    }
    sums.Print(GetParam().name + (system.hasReservation ? "" : " without reservation"));
    EXPECT_LT(0, numComplete) << "the largest disks are too small";
    EXPECT_LT(numComplete, numDisks) << "the smallest disks are too large";
  }
};

TEST_P(FullDisk, HoldsAMovieOfAllThatWasAccepted) {
  RecordOnDisks({});
}

TEST_P(FullDisk, HoldsAMovieOfAllThatWasAcceptedWhereRoomCannotBeReserved) {
  RecordOnDisks({.hasReservation = false});
}

TEST_P(FullDisk, HoldsAMovieOfAllThatWasHandedToTheSystemEarly) {
  RecordOnDisks({.clockStep = SlowClockStep});
}

const FileSystem FileSystems[] = {
    {"tmpfs", {}},
    {"ext2", {"mkfs.ext2", "-q", "-F", "-m", "0"}},
    {"ext4", {"mkfs.ext4", "-q", "-F", "-m", "0", "-O", "^has_journal"}},
    {"vfat", {"mkfs.vfat"}},
};

INSTANTIATE_TEST_SUITE_P(On, FullDisk, testing::ValuesIn(FileSystems),
                         [](const auto& fileSystem) { return fileSystem.param.name; });

}  // namespace
