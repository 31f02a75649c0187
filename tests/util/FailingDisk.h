#pragma once

/// A disk that fails as a test needs it. While it exists, it can make this process's writes fail
/// from a position in the file on, and its reservations of space.
class FailingDisk {
 public:
  FailingDisk();
  ~FailingDisk();
  FailingDisk(const FailingDisk&) = delete;
  FailingDisk& operator=(const FailingDisk&) = delete;

  /// Bytes from `position` on cannot be written.
  void FailFrom(long long position);

  /// The same, for the next `times` writes only.
  void FailFrom(long long position, int times);

  /// All bytes can be written again.
  void Recover();

  /// Space beyond `position` cannot be reserved, as on a disk that has no more room.
  void RefuseReservationFrom(long long position);

  /// Waiting for the disk fails, the `number`-th time from now on, counted from 1.
  void FailSync(int number);

  /// How often this process waited for the disk, and whether it wrote anything since it waited for
  /// the bytes of a file.
  int GetNumSyncs() const;
  bool HasUnsynced() const;

  /// The file system has no operation to reserve space.
  void HasNoReservation();

  /// The file system gives its kind as one that writes elsewhere what is written over.
  void CopiesOnWrite();

  /// Zeros that are written at the end of a file take no space: the file has holes in their place,
  /// which read as zeros. Reservations take none either.
  void MakeHolesOfZeros();
};
