// Text files that commands write.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <ostream>

#include "host/files.h"
#include "standalone/session/embedded_session.h"
#include "test_folder.h"

namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

class TextFile : public ::testing::Test {
 protected:
  TextFile() : fSession(Options(fFolder)), fScope(fSession) {}

  static standalone::SessionOptions Options(const TestFolder& folder) {
    standalone::SessionOptions options;
    options.baseFolder = folder.Path();
    return options;
  }
  std::string Text(const std::string& name) const {
    std::ifstream stream(fFolder.Path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }
  std::ptrdiff_t FileCount() const {
    return std::distance(std::filesystem::directory_iterator(fFolder.Path()), {});
  }
  bool Write(const std::string& name, bool finish = true) {
    const auto write = [finish](std::ostream& out) {
      out << "new";
      return finish;
    };
    return host::WriteTextFile(name, write, fError);
  }

  TestFolder fFolder;
  standalone::Session fSession;
  standalone::SessionScope fScope;
  std::string fError;
};

TEST_F(TextFile, IsWrittenFromTheFolderOfTheCommandInPlaceOfTheOneBefore) {
  fFolder.Write("m.xml", "old");
  EXPECT_TRUE(Write("m.xml"));
  EXPECT_THAT(fError, IsEmpty());
  EXPECT_EQ(Text("m.xml"), "new");
  EXPECT_EQ(FileCount(), 1);
}

TEST_F(TextFile, WhoseWriterGivesUpLeavesEverythingAsItWasWithoutAnError) {
  fFolder.Write("m.xml", "old");
  EXPECT_FALSE(Write("m.xml", false));
  EXPECT_FALSE(Write("n.xml", false));
  EXPECT_THAT(fError, IsEmpty());
  EXPECT_EQ(Text("m.xml"), "old");
  EXPECT_EQ(FileCount(), 1);
}

TEST_F(TextFile, ThatCannotBeWrittenSaysWhy) {
  for (const std::string& name : {std::string("none/m.xml"), std::string("."), std::string("/dev/full"),
                                  std::string(), std::string("a\0b", 3)}) {
    EXPECT_FALSE(Write(name)) << name;
    EXPECT_FALSE(fError.empty()) << name;
  }
  Write("none/m.xml");
  EXPECT_THAT(fError, HasSubstr("none/m.xml"));
}

}  // namespace
