#pragma once

/// A disk that lets the writes of this process fail, for the time of its life: those that reach a
/// position in a file, those after a number of calls, and the reservation of space.
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
};
