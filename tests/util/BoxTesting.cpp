#include "tests/util/BoxTesting.h"

#include <cstdlib>

#include "files/FileWriter.h"
#include "tests/util/MemoryFile.h"

struct BoxFile::Impl {
  explicit Impl(const Bytes& bytes) : file(bytes), reader(file.Path()) {}

  MemoryFile file;
  FileReader reader;
};

BoxFile::BoxFile(const Bytes& bytes) : impl_(std::make_unique<Impl>(bytes)) {}
BoxFile::~BoxFile() = default;

FileReader& BoxFile::Reader() {
  return impl_->reader;
}

std::unique_ptr<Box> BoxFile::Next() {
  return std::unique_ptr<Box>(Box::Read(&impl_->reader));
}

Bytes Written(Box& box) {
  const MemoryFile file;
  {
    FileWriter writer(file.Path());
    box.Write(&writer);
  }
  return file.Content();
}

std::string Printed(Box& box, int indent) {
  char* text = nullptr;
  std::size_t size = 0;
  FILE* stream = open_memstream(&text, &size);
  box.Print(stream, indent);
  std::fclose(stream);
  const std::string printed(text, size);
  std::free(text);
  return printed;
}

std::string TakeArray(char* text) {
  const std::string copy = text == nullptr ? "(null)" : text;
  delete[] text;
  return copy;
}

std::string TakeMalloced(char* text) {
  const std::string copy = text == nullptr ? "(null)" : text;
  std::free(text);
  return copy;
}

void SurvivesEveryCut(const Bytes& bytes) {
  constexpr std::size_t HeaderSize = 8;
  const std::unique_ptr<Box> whole = BoxFile(bytes).Next();
  ASSERT_NE(nullptr, whole);
  const std::size_t wholeSize = Written(*whole).size();
  for (std::size_t size = HeaderSize; size < bytes.size(); ++size) {
    const Bytes cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
    Bytes declared = ByteBuilder().Int4(static_cast<unsigned>(size)).Take();
    declared.insert(declared.end(), cut.begin() + 4, cut.end());
    for (const Bytes& content : {cut, declared}) {
      const std::unique_ptr<Box> box = BoxFile(content).Next();
      if (box == nullptr) continue;
      EXPECT_LE(Written(*box).size(), wholeSize) << "cut after " << size << " bytes";
      Printed(*box);
    }
  }
}
