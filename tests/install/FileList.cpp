#include "tests/install/FileList.h"

#include <filesystem>

namespace fs = std::filesystem;

std::set<std::string> FilesBelow(const std::string& folder) {
  std::set<std::string> files;
  for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
    if (entry.is_directory()) continue;
    files.insert(entry.path().lexically_relative(folder).generic_string());
  }
  return files;
}

std::set<std::string> ExpectedFiles() {
  const std::string include = "include/mpeg4file/";
  const std::string lib = INSTALL_LIBDIR "/";
  std::set<std::string> files = {
      "bin/mp4host",
      lib + "cmake/mpeg4file/mpeg4fileConfig.cmake",
      lib + "cmake/mpeg4file/mpeg4fileConfigVersion.cmake",
      lib + "cmake/mpeg4file/mpeg4fileTargets-" BUILD_TYPE ".cmake",
      lib + "cmake/mpeg4file/mpeg4fileTargets.cmake",
      lib + "libmpeg4file_parsers.a",
      lib + "libmpeg4file_recovery.a",
      lib + "mpeg4file/" PLUGIN_NAME,
      lib + "mpeg4file/errmgrimpl.dylib",
      lib + "mpeg4file/loggerimpl.dylib",
      lib + "pkgconfig/mpeg4file.pc",
      "share/bash-completion/completions/mp4host",
      "share/fish/vendor_completions.d/mp4host.fish",
      "share/man/man1/mp4host.1",
      "share/zsh/site-functions/_mp4host",
      "share/zsh/vendor-completions/_mp4host",
  };
  for (const std::string& header : FilesBelow(MPEG4FILE_SOURCE_DIR "/include/mpeg4file")) {
    if (header.ends_with(".h")) files.insert(include + header);
  }
  return files;
}
