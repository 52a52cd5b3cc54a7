#include "host/files.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "standalone/session/embedded_session.h"
#include "temporary_folder.h"

namespace {

using host::UserCaseFileSpec;
using standalone::Session;
using standalone::SessionScope;

standalone::SessionOptions StartingIn(const std::string& folder) {
  standalone::SessionOptions options;
  options.baseFolder = folder;
  return options;
}

/// A folder with "data.csv" and the folder "sub", from which relative names start.
class Files : public testing::Test {
 protected:
  Files() {
    fFolder.Write("data.csv", "a\n1\n");
    std::filesystem::create_directory(fFolder.Path("sub"));
  }

  UserCaseFileSpec Spec(const std::string& name, bool forOutput) {
    UserCaseFileSpec spec;
    spec.Init(name, true, forOutput);
    return spec;
  }

  TemporaryFolder fFolder;
  Session fSession{StartingIn(fFolder.Path(""))};
  SessionScope fScope{fSession};
};

TEST_F(Files, ALegalNameIsNotEmptyHoldsNoNulAndIsNoFolder) {
  EXPECT_TRUE(host::CheckFileRef("data.csv"));
  EXPECT_TRUE(host::CheckFileRef("none.csv"));
  EXPECT_TRUE(host::CheckFileRef(fFolder.Path("data.csv")));
  EXPECT_FALSE(host::CheckFileRef(""));
  EXPECT_FALSE(host::CheckFileRef(std::string("data.csv\0x", 10)));
  EXPECT_FALSE(host::CheckFileRef("sub"));
  EXPECT_FALSE(host::CheckFileRef("other/"));
  EXPECT_FALSE(host::CheckFileRef("."));
}

TEST_F(Files, AFileMustExistAndBeReadable) {
  EXPECT_TRUE(host::ValidateFileSpecification("data.csv"));
  EXPECT_TRUE(host::ValidateFileSpecification("sub/../data.csv"));
  EXPECT_FALSE(host::ValidateFileSpecification("none.csv"));
  EXPECT_FALSE(host::ValidateFileSpecification("sub"));
  EXPECT_FALSE(host::ValidateFileSpecification(""));
}

TEST_F(Files, AnInputFileIsValidByItsNameAndExistsWhenItCanBeRead) {
  const UserCaseFileSpec data = Spec("data.csv", false);
  EXPECT_TRUE(data.IsInit() && data.IsValid() && data.Exists());
  EXPECT_FALSE(data.IsInUse());
  EXPECT_EQ(data.DocumentationString(), "data.csv");
  const UserCaseFileSpec none = Spec("none.csv", false);
  EXPECT_TRUE(none.IsValid());
  EXPECT_FALSE(none.Exists());
}

TEST_F(Files, AnOutputFileIsValidWhenItsFolderCanBeWritten) {
  EXPECT_TRUE(Spec("new.csv", true).IsValid());
  EXPECT_FALSE(Spec("new.csv", true).Exists());
  EXPECT_TRUE(Spec("data.csv", true).Exists());
  EXPECT_TRUE(Spec("sub/new.csv", true).IsValid());
  EXPECT_FALSE(Spec("nowhere/new.csv", true).IsValid());
  EXPECT_FALSE(Spec("sub", true).IsValid());
}

TEST_F(Files, AnEmptyNameIsNoFile) {
  UserCaseFileSpec spec;
  EXPECT_FALSE(spec.IsInit());
  EXPECT_FALSE(spec.IsValid());
  EXPECT_FALSE(spec.Init("", true, false));
  EXPECT_FALSE(spec.IsInit());
  EXPECT_FALSE(spec.Exists());
}

}  // namespace
