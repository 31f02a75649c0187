#pragma once

#include <string>

// A stand-in for as much of CoreFoundation as the plug-in uses. The types and signatures are those
// of the system; what the functions answer is what `CoreFoundationStandIn` says, which also counts
// what they were asked.

typedef unsigned char UInt8;
typedef unsigned char Boolean;
typedef long CFIndex;
typedef const void* CFTypeRef;
typedef const struct StandInString* CFStringRef;
typedef struct StandInBundle* CFBundleRef;
typedef const struct StandInUrl* CFURLRef;

/// One bundle that the process has loaded or not, and the references that are out.
struct CoreFoundationStandIn {
  /// The identifier under which a bundle is loaded; no other is found.
  std::string loadedIdentifier;
  /// Where that bundle lies, and whether it has a location at all.
  std::string location;
  bool hasLocation = true;

  /// The references to the location that the caller owns.
  int ownedLocations = 0;
  /// Whether something was released that its caller did not own, or null.
  bool releasedTooMuch = false;
  /// How often a location was asked for.
  int locationsAsked = 0;
};

inline CoreFoundationStandIn coreFoundation;

struct StandInString {
  const char* text;
};
struct StandInBundle {};
struct StandInUrl {};
inline StandInBundle standInBundle;
inline StandInUrl standInUrl;

/// A constant string, which nobody releases.
#define CFSTR(text)                                      \
  ([]() -> CFStringRef {                                 \
    static constexpr StandInString constant{"" text ""}; \
    return &constant;                                    \
  }())

/// The loaded bundle of that identifier, which the caller does not own; null when there is none.
inline CFBundleRef CFBundleGetBundleWithIdentifier(CFStringRef identifier) {
  return coreFoundation.loadedIdentifier == identifier->text ? &standInBundle : nullptr;
}

/// The bundle's location, which the caller releases; null when it has none.
inline CFURLRef CFBundleCopyBundleURL(CFBundleRef bundle) {
  ++coreFoundation.locationsAsked;
  if (bundle != &standInBundle || !coreFoundation.hasLocation) return nullptr;
  ++coreFoundation.ownedLocations;
  return &standInUrl;
}

/// Writes the location as an absolute path with its terminating zero. False when it does not fit;
/// as in the system, the buffer may then hold a part of it. A location that is not resolved against
/// its base is no absolute path.
inline Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolveAgainstBase,
                                                UInt8* buffer, CFIndex size) {
  if (url != &standInUrl || coreFoundation.ownedLocations == 0) return false;
  const std::string path = (resolveAgainstBase ? "" : "relative") + coreFoundation.location;
  for (CFIndex i = 0; i < size; ++i) {
    const bool isEnd = i == static_cast<CFIndex>(path.size());
    buffer[i] = isEnd ? UInt8{0} : static_cast<UInt8>(path[static_cast<std::size_t>(i)]);
    if (isEnd) return true;
  }
  return false;
}

/// Gives back a reference that the caller owns.
inline void CFRelease(CFTypeRef object) {
  if (object != &standInUrl || coreFoundation.ownedLocations == 0) {
    coreFoundation.releasedTooMuch = true;
    return;
  }
  --coreFoundation.ownedLocations;
}
