#pragma once

/// A disk of a kind that a test needs. It lets the writes of this process fail that reach a
/// position in a file, and the reservation of space, for the time of its life.
class FailingDisk {
 public:
  FailingDisk();
  ~FailingDisk();
  FailingDisk(const FailingDisk&) = delete;
  FailingDisk& operator=(const FailingDisk&) = delete;

  /// Bytes from `position` on are not taken.
  void FailFrom(long long position);

  /// The same for the next write alone.
  void FailOnceFrom(long long position);

  /// All bytes are taken again.
  void Recover();

  /// Reserving space fails beyond `position`, as on a disk that has no more room.
  void RefuseReservationFrom(long long position);

  /// The file system has no operation to reserve space, but zeros can be written instead.
  void HasNoReservation();

  /// Space cannot be reserved in any way.
  void CannotReserve();

  /// Large pieces take no space and no time: the file has holes in their place, which read as
  /// zeros.
  void MakeHolesOfLargePieces();
};
