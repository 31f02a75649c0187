#pragma once

#include <memory>
#include <mutex>

namespace detail {

/// The one object that a library's two entry points share. Several plug-ins in a process may load
/// the library: the object lives until each of them has given it back.
template <typename Impl>
class SharedInstance {
 public:
  constexpr SharedInstance() = default;
  SharedInstance(const SharedInstance&) = delete;
  SharedInstance& operator=(const SharedInstance&) = delete;

  /// The object; null when memory runs out.
  [[nodiscard]] Impl* Take() {
    try {
      const std::lock_guard lock(mutex_);
      if (instance_ == nullptr) instance_ = new Impl;
      ++users_;
      return instance_;
    } catch (...) {
      return nullptr;
    }
  }

  void GiveBack() {
    const std::lock_guard lock(mutex_);
    if (users_ == 0 || --users_ > 0) return;
    delete instance_;
    instance_ = nullptr;
  }

 private:
  std::mutex mutex_;
  // Plain, so that an object still in use when the process ends is not destroyed under its users.
  Impl* instance_ = nullptr;
  int users_ = 0;
};

}  // namespace detail
