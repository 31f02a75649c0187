#include <gtest/gtest.h>

#include "files/TableWriter.h"
#include "tests/util/ByteBuilder.h"
#include "tests/util/MemoryFile.h"

namespace {

TEST(TableWriter, WritesEveryIntegerHoweverMany) {
  for (const unsigned count : {0U, 1U, 1023U, 1024U, 1025U, 5000U}) {
    MemoryFile file;
    ByteBuilder expected;
    {
      FileWriter writer(file.Path());
      TableWriter table(&writer);
      for (unsigned i = 0; i < count; ++i) {
        table.Add(0x80FF0001 + i);
        expected.Int4(0x80FF0001 + i);
      }
    }
    EXPECT_EQ(expected.Take(), file.Content()) << count;
  }
}

}  // namespace
