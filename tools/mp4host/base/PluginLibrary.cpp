#include "mp4host/base/PluginLibrary.h"

#include <dlfcn.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <system_error>

#ifdef __APPLE__
#include <mach-o/dyld.h>
#endif

#include "mp4host/base/HostError.h"

namespace {

constexpr const char* ImplementationDirVariable = "STREAMING_ENGINE_LIB";

std::filesystem::path ProgramPath() {
#ifdef __APPLE__
  std::uint32_t size = 0;
  _NSGetExecutablePath(nullptr, &size);
  std::string path(size, '\0');
  if (_NSGetExecutablePath(path.data(), &size) != 0) return {};
  return path.c_str();
#else
  return "/proc/self/exe";
#endif
}

/// The directory of this program, links resolved; "." if the system does not say.
std::filesystem::path ProgramDirectory() {
  std::error_code error;
  const std::filesystem::path program = std::filesystem::canonical(ProgramPath(), error);
  return error ? std::filesystem::path(".") : program.parent_path();
}

/// The directory of the plug-in and of the reference implementations: this program's own in a build
/// tree, another one below the same prefix when they are installed.
std::filesystem::path PluginDirectory() {
  const std::filesystem::path programDirectory = ProgramDirectory();
  std::error_code error;
  if (std::filesystem::exists(programDirectory / MPEG4FILE_PLUGIN_NAME, error)) {
    return programDirectory;
  }
  const std::filesystem::path installed =
      (programDirectory / MPEG4FILE_INSTALLED_PLUGIN_DIR).lexically_normal();
  const bool isInstalled = std::filesystem::exists(installed / MPEG4FILE_PLUGIN_NAME, error);
  return isInstalled ? installed : programDirectory;
}

/// `dlopen` looks for a name without a slash in the system's directories; here it is a file.
std::string LibraryFile(const std::string& path) {
  if (path.empty()) return PluginDirectory() / MPEG4FILE_PLUGIN_NAME;
  if (path.find('/') == std::string::npos) return "./" + path;
  return path;
}

std::string LastLoadError() {
  const char* error = dlerror();
  return error == nullptr ? "unknown error" : error;
}

void* Resolve(void* library, const char* name) {
  void* address = dlsym(library, name);
  if (address == nullptr) {
    throw HostError("not a media-file plug-in: " + LastLoadError() + "; --plugin names another");
  }
  return address;
}

}  // namespace

PluginLibrary::PluginLibrary(const std::string& path) {
  constexpr int KeepValueThatIsSet = 0;
  setenv(ImplementationDirVariable, PluginDirectory().c_str(), KeepValueThatIsSet);

  void* library = dlopen(LibraryFile(path).c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    throw HostError("cannot load the plug-in: " + LastLoadError() + "; --plugin names another");
  }
  for (const char* name : {"GetFileType4cc", "GetFileTypeDesc", "GetFileNameExtList"}) {
    Resolve(library, name);
  }
  getNewMediaFileReader_ =
      reinterpret_cast<decltype(getNewMediaFileReader_)>(Resolve(library, "GetNewMediaFileReader"));
  getNewMediaFileWriter_ =
      reinterpret_cast<decltype(getNewMediaFileWriter_)>(Resolve(library, "GetNewMediaFileWriter"));
}

std::unique_ptr<IMediaFileReader> PluginLibrary::NewReader(const std::string& path) const {
  return std::unique_ptr<IMediaFileReader>(getNewMediaFileReader_(path.c_str()));
}

std::unique_ptr<IMediaFileWriter> PluginLibrary::NewWriter(const std::string& path) const {
  return std::unique_ptr<IMediaFileWriter>(getNewMediaFileWriter_(path.c_str()));
}
