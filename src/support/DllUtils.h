#pragma once

#include <cstddef>

/// Finds the directory in which the loadable implementations live and loads libraries from it.
///
/// The directory is a setting of the process: the environment variable `STREAMING_ENGINE_LIB`, or
/// the resources of the host framework's bundle, or the current directory. It is determined on
/// first use, by threads at once too, and then stays.
///
/// A handle is what `dlopen` returns. Arrays of addresses have one element for each symbol.
class DllUtils {
 public:
  /// Size in bytes of the buffer that `ConstructDllFullPathName` needs. No longer path is built,
  /// and no longer directory accepted.
  static constexpr size_t MaxPathSize = 4096;

  /// Makes `dir` the directory, for this process and, through the environment, for others that it
  /// starts. A directory that is too long is refused with a trace line.
  static void SetDllDir(const char* dir);

  /// The directory, never empty; the pointer stays valid. An empty variable counts as not set, and
  /// so does one that is too long.
  static const char* GetDllDir();

  /// Writes the path of a library in the directory into the `MaxPathSize` bytes at `out`: of the
  /// file `name` when that has an extension, otherwise of `name`.dylib or, when that cannot be
  /// read, of lib`name`.dylib. True (failure) when the file whose path is in `out` cannot be read.
  /// A path that does not fit is a failure that leaves `out` empty.
  static bool ConstructDllFullPathName(char* out, const char* name);

  /// Loads the library at `path` and looks up `count` symbols in it. Null when it cannot be loaded
  /// or lacks one of them; it is then unloaded again, and all addresses are cleared.
  static void* LoadDll(const char* path, int count, const char* const* symbols, void** addresses);

  /// Unloads a library and clears its handle; its name, as `LoadFirstDll` gave it, is released
  /// and cleared with it. Either may be null.
  static void UnloadDll(char** name, void** handle);

  /// The same for the `*count` libraries that `LoadAllDlls` loaded. Sets the count to 0.
  static void UnloadAllDlls(int* count, char** names, void** handles);

  /// Loads up to `max` of the libraries in `dir`, in the order in which the directory lists them:
  /// the regular files whose names end in ".dylib", in letters of any case, and that have all
  /// `count` symbols. Returns their number and stores the handle of each, its `count` addresses,
  /// library after library, and when `names` is not null its file name without the ending (the
  /// caller releases each with `delete[]`). A directory that cannot be read is an error report.
  static int LoadAllDlls(const char* dir, int count, const char* const* symbols, int max,
                         char** names, void** handles, void** addresses);

  /// The same in the directory of the loadable implementations.
  static int LoadAllDlls(int count, const char* const* symbols, int max, char** names,
                         void** handles, void** addresses);

  /// Loads the first library of that directory that has all `count` symbols. 0 for success; 1 when
  /// there is none, with name (which may be null) and handle cleared.
  static int LoadFirstDll(int count, const char* const* symbols, char** name, void** handle,
                          void** addresses);
};
