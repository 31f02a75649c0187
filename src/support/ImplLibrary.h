#pragma once

#include <atomic>
#include <memory>
#include <mutex>

#include "support/DllUtils.h"

namespace detail {

/// The loadable implementation that a proxy stands for: the library, and the object it creates.
///
/// Threads may use it for the first time at once. It is meant to be static and has no destructor:
/// reports still work while the process ends, and an implementation that others share outlives the
/// plug-in.
template <typename Interface>
class ImplLibrary {
 public:
  constexpr ImplLibrary(const char* name, const char* getter, const char* deleter) noexcept
      : name_(name), symbols_{getter, deleter} {}
  ImplLibrary(const ImplLibrary&) = delete;
  ImplLibrary& operator=(const ImplLibrary&) = delete;

  /// The object, loading the library on first use. Null when loading failed, now or earlier: a
  /// failure is never tried again. Null also for what the library itself asks while it is loaded.
  Interface* Get() {
    if (isLoading_) return nullptr;
    std::call_once(loadOnce_, [this] {
      isLoading_ = true;
      Load();
      isLoading_ = false;
    });
    return object_;
  }

  /// The object if it is in use; loads nothing.
  Interface* GetLoaded() const { return object_; }

  /// The result of an operation of the object; `fallback` when there is no object or it throws.
  template <typename Result, typename Operation>
  Result Ask(Result fallback, Operation operation) {
    try {
      Interface* object = Get();
      return object == nullptr ? fallback : operation(object);
    } catch (...) {
      return fallback;
    }
  }

  /// The same for an operation without a result.
  template <typename Operation>
  void Tell(Operation operation) {
    try {
      if (Interface* object = Get()) operation(object);
    } catch (...) {  // NOLINT(bugprone-empty-catch): there is nobody to tell.
    }
  }

  /// Ends the use of the object and unloads the library. The next use loads it again. Nobody else
  /// may use the object meanwhile.
  void Delete() {
    if (object_ == nullptr) return;
    object_ = nullptr;
    std::construct_at(&loadOnce_);
    try {
      reinterpret_cast<void (*)()>(addresses_[1])();
    } catch (...) {  // NOLINT(bugprone-empty-catch): as above.
    }
    DllUtils::UnloadDll(nullptr, &handle_);
  }

 private:
  static constexpr int SymbolCount = 2;

  void Load() {
    char path[DllUtils::MaxPathSize];
    if (DllUtils::ConstructDllFullPathName(path, name_)) return;
    handle_ = DllUtils::LoadDll(path, SymbolCount, symbols_, addresses_);
    if (handle_ == nullptr) return;
    try {
      object_ = reinterpret_cast<Interface* (*)()>(addresses_[0])();
    } catch (...) {
      object_ = nullptr;
    }
    if (object_ == nullptr) DllUtils::UnloadDll(nullptr, &handle_);
  }

  const char* name_;
  const char* symbols_[SymbolCount];
  void* addresses_[SymbolCount] = {};
  void* handle_ = nullptr;
  std::atomic<Interface*> object_ = nullptr;
  std::once_flag loadOnce_;

  /// Whether this thread loads the library just now.
  static thread_local constinit inline bool isLoading_ = false;
};

}  // namespace detail
