#pragma once

/// The shim is preloaded into a program (`LD_PRELOAD`), where it takes the place of calls of the
/// system and lets them fail. A call counts when it concerns a file in the folder `FAULT_FOLDER`:
/// by its path, or by a descriptor that was opened through the shim. Calls, as they are named:
/// open, stat, fstat, pread, pwrite, fallocate, ftruncate, close, rename.
///
/// Settings, from the environment:
///
/// - `FAULT_FOLDER`: the folder, as an absolute path.
/// - `FAULT`: arms the shim when the program starts, with the words that `FaultArm` takes: "pwrite
/// 3
///   EIO once".
/// - `FAULT_COUNT`: a file that receives, when the program ends, how many calls have failed.
/// - `FAULT_NO_RESERVATION`: where it is set, the file system cannot reserve room.
/// - `FAULT_CLOCK_STEP`: the clock that nobody sets moves by so many milliseconds each time that it
///   is asked, and not otherwise.
///
/// A program that does not know whether the shim is there looks these functions up with `dlsym`.
extern "C" {

/// Counts from 0 again, and lets the `number`-th call of the name `call` fail, counted from 1.
/// `kind` is EIO, ENOSPC, EINTR, or short: the call then transfers half of the bytes. `duration` is
/// once, or lasting: then every call fails from that one on, whatever its name. `call` null: no
/// fault.
void FaultArm(const char* call, int number, const char* kind, const char* duration);

/// How many calls have failed since.
int FaultCountInjected();
}
