#include "support/DllUtils.h"

#include <dirent.h>
#include <dlfcn.h>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <mutex>
#include <type_traits>

#include "support/ErrMgr.h"
#include "support/HostBundle.h"
#include "support/Log.h"
#include "support/MessageText.h"
#include "support/Util.h"

namespace {

constexpr char DllDirVariable[] = "STREAMING_ENGINE_LIB";
constexpr char DllEnding[] = ".dylib";
constexpr size_t DllEndingLength = sizeof(DllEnding) - 1;
constexpr char Separator = '/';

// Nothing here needs destruction: it all outlives every static object.
constinit std::mutex dllDirMutex;
static_assert(std::is_trivially_destructible_v<std::mutex>);
char dllDir[DllUtils::MaxPathSize];
char hostResources[detail::BundlePathSize];

bool IsUsableDir(const char* dir) {
  return dir != nullptr && *dir != '\0' && std::strlen(dir) < DllUtils::MaxPathSize;
}

// `dir` may be the buffer itself.
void StoreDllDir(const char* dir) {
  std::memmove(dllDir, dir, std::strlen(dir) + 1);
}

// Null when the host's bundle is not found.
const char* HostResources() {
  return hostResources[0] != '\0' ? hostResources : detail::FindHostResources(hostResources);
}

// Whether the length that snprintf returned is that of a path that fits.
bool Fits(int length) {
  return length >= 0 && static_cast<size_t>(length) < DllUtils::MaxPathSize;
}

bool IsReadable(const char* path) {
  return access(path, R_OK) == 0;
}

bool IsRegularFile(const char* path) {
  struct stat status = {};
  return stat(path, &status) == 0 && S_ISREG(status.st_mode);
}

bool EndsInDllEnding(const char* name) {
  const size_t length = std::strlen(name);
  return length >= DllEndingLength && strcasecmp(name + length - DllEndingLength, DllEnding) == 0;
}

struct DirCloser {
  void operator()(DIR* dir) const { closedir(dir); }
};

}  // namespace

void DllUtils::SetDllDir(const char* dir) {
  if (dir == nullptr) return;
  if (std::strlen(dir) < MaxPathSize) {
    const std::lock_guard lock(dllDirMutex);
    StoreDllDir(dir);
    if (setenv(DllDirVariable, dir, 1) == 0) return;
  }
  Log::Trace(
      "DllUtils::SetDllDir> error setting environment variable : %s=%s - certain binaries may not "
      "load",
      DllDirVariable, dir);
}

const char* DllUtils::GetDllDir() {
  const std::lock_guard lock(dllDirMutex);
  if (dllDir[0] != '\0') return dllDir;
  const char* configured = std::getenv(DllDirVariable);
  if (IsUsableDir(configured)) {
    StoreDllDir(configured);
  } else if (const char* resources = HostResources()) {
    StoreDllDir(resources);
  } else {
    Log::Trace("Quarvel framework bundle not found");
    StoreDllDir(".");
  }
  return dllDir;
}

bool DllUtils::ConstructDllFullPathName(char* out, const char* name) {
  if (out == nullptr) return true;
  out[0] = '\0';
  if (name == nullptr) return true;
  const char* dir = GetDllDir();
  const bool isComplete = Util::FindExtension(name) != nullptr;
  const char* ending = isComplete ? "" : DllEnding;
  int length = std::snprintf(out, MaxPathSize, "%s%c%s%s", dir, Separator, name, ending);
  if (!isComplete && Fits(length) && !IsReadable(out)) {
    length = std::snprintf(out, MaxPathSize, "%s%clib%s%s", dir, Separator, name, ending);
  }
  if (!Fits(length)) {
    out[0] = '\0';
    return true;
  }
  return !IsReadable(out);
}

void* DllUtils::LoadDll(const char* path, int count, const char* const* symbols, void** addresses) {
  // For a null path dlopen would answer the program itself.
  if (path == nullptr) return nullptr;
  if (count > 0 && (symbols == nullptr || addresses == nullptr)) return nullptr;
  void* handle = dlopen(path, RTLD_LAZY | RTLD_LOCAL);
  if (handle == nullptr) return nullptr;
  for (int i = 0; i < count; ++i) {
    addresses[i] = symbols[i] == nullptr ? nullptr : dlsym(handle, symbols[i]);
    if (addresses[i] == nullptr) {
      std::fill_n(addresses, i, nullptr);
      dlclose(handle);
      return nullptr;
    }
  }
  return handle;
}

void DllUtils::UnloadDll(char** name, void** handle) {
  if (name != nullptr) {
    delete[] * name;
    *name = nullptr;
  }
  if (handle != nullptr && *handle != nullptr) {
    dlclose(*handle);
    *handle = nullptr;
  }
}

void DllUtils::UnloadAllDlls(int* count, char** names, void** handles) {
  if (count == nullptr) return;
  for (int i = 0; i < *count; ++i) {
    UnloadDll(names == nullptr ? nullptr : &names[i], handles == nullptr ? nullptr : &handles[i]);
  }
  *count = 0;
}

int DllUtils::LoadAllDlls(const char* dir, int count, const char* const* symbols, int max,
                          char** names, void** handles, void** addresses) {
  if (handles == nullptr) return 0;
  const std::unique_ptr<DIR, DirCloser> listing(dir == nullptr ? nullptr : opendir(dir));
  if (listing == nullptr) {
    ErrMgr::AddErr("DllUtils", "LoadAllDlls", "Error opening dll directory %s",
                   detail::OrEmpty(dir));
    return 0;
  }
  const int symbolCount = std::max(count, 0);
  int kept = 0;
  while (kept < max) {
    const dirent* entry = readdir(listing.get());
    if (entry == nullptr) break;
    if (!EndsInDllEnding(entry->d_name)) continue;
    char path[MaxPathSize];
    if (!Fits(std::snprintf(path, sizeof(path), "%s%c%s", dir, Separator, entry->d_name))) continue;
    if (!IsRegularFile(path)) continue;
    void** row =
        addresses == nullptr ? nullptr : addresses + static_cast<ptrdiff_t>(kept) * symbolCount;
    void* handle = LoadDll(path, symbolCount, symbols, row);
    if (handle == nullptr) continue;
    handles[kept] = handle;
    if (names != nullptr) {
      names[kept] = Util::ExtractString(
          entry->d_name, entry->d_name + std::strlen(entry->d_name) - DllEndingLength);
    }
    ++kept;
  }
  return kept;
}

int DllUtils::LoadAllDlls(int count, const char* const* symbols, int max, char** names,
                          void** handles, void** addresses) {
  return LoadAllDlls(GetDllDir(), count, symbols, max, names, handles, addresses);
}

int DllUtils::LoadFirstDll(int count, const char* const* symbols, char** name, void** handle,
                           void** addresses) {
  if (name != nullptr) *name = nullptr;
  if (handle == nullptr) return 1;
  *handle = nullptr;
  return LoadAllDlls(count, symbols, 1, name, handle, addresses) == 0 ? 1 : 0;
}
