#include "standalone/files/atomic_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>
#include <sstream>

namespace {

namespace fs = std::filesystem;
using standalone::WriteFileAtomically;

class AtomicFile : public testing::Test {
 protected:
  AtomicFile() {
    std::string name = (fs::temp_directory_path() / "tavo_atomic_XXXXXX").string();
    fFolder = ::mkdtemp(name.data());
  }
  ~AtomicFile() override { fs::remove_all(fFolder); }

  static std::string Read(const fs::path& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
  }
  std::size_t FileCount() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(fFolder), fs::directory_iterator()));
  }

  fs::path fFolder;
};

void WriteNew(std::ostream& out) {
  out << "new";
}

TEST_F(AtomicFile, IsWrittenWholeAndLeavesNoTemporaryFile) {
  EXPECT_EQ(WriteFileAtomically(fFolder / "a.txt", WriteNew), "");
  EXPECT_EQ(Read(fFolder / "a.txt"), "new");
  EXPECT_EQ(FileCount(), 1u);
}

TEST_F(AtomicFile, AFailureInTheMiddleKeepsTheOldFile) {
  std::ofstream(fFolder / "a.txt") << "old";
  const std::string error = WriteFileAtomically(fFolder / "a.txt", [](std::ostream& out) {
    out << "half";
    out.setstate(std::ios::badbit);
  });
  EXPECT_NE(error, "");
  EXPECT_EQ(Read(fFolder / "a.txt"), "old");
  EXPECT_EQ(FileCount(), 1u);
}

TEST_F(AtomicFile, AnExceptionInTheMiddleKeepsTheOldFile) {
  std::ofstream(fFolder / "a.txt") << "old";
  EXPECT_THROW(WriteFileAtomically(fFolder / "a.txt", [](std::ostream&) { throw 1; }), int);
  EXPECT_EQ(Read(fFolder / "a.txt"), "old");
  EXPECT_EQ(FileCount(), 1u);
}

TEST_F(AtomicFile, AFolderThatIsNotThereIsToldByName) {
  const std::string error = WriteFileAtomically(fFolder / "none" / "a.txt", WriteNew);
  EXPECT_NE(error.find("none/a.txt cannot be written"), std::string::npos) << error;
  EXPECT_NE(WriteFileAtomically(fFolder, WriteNew).find("folder"), std::string::npos);
}

TEST_F(AtomicFile, AReplacedFileKeepsItsPermissionsAndALinkItsTarget) {
  std::ofstream(fFolder / "real.txt") << "old";
  fs::permissions(fFolder / "real.txt", fs::perms(0640));
  fs::create_symlink("real.txt", fFolder / "link.txt");
  EXPECT_EQ(WriteFileAtomically(fFolder / "link.txt", WriteNew), "");
  EXPECT_TRUE(fs::is_symlink(fFolder / "link.txt"));
  EXPECT_EQ(Read(fFolder / "real.txt"), "new");
  EXPECT_EQ(fs::status(fFolder / "real.txt").permissions(), fs::perms(0640));
}

TEST_F(AtomicFile, ADeviceIsWrittenDirectly) {
  EXPECT_EQ(WriteFileAtomically("/dev/null", WriteNew), "");
}

TEST_F(AtomicFile, AFullDeviceIsAFailure) {
  if (!fs::exists("/dev/full")) GTEST_SKIP();
  EXPECT_NE(WriteFileAtomically("/dev/full", WriteNew), "");
}

}  // namespace
