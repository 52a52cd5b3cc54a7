// The module as a library that a host loads: it finds its host through the symbols of the loading program.

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <memory>
#include <string>

#include "source_folder.h"
#include "standalone/files/data_reader.h"
#include "standalone/output/document.h"
#include "standalone/session/embedded_session.h"
#include "standalone/session/run_commands.h"

namespace {

using Library = std::unique_ptr<void, int (*)(void*)>;

Library Load() {
  return {::dlopen(TAVO_MODULE_LIBRARY, RTLD_NOW | RTLD_LOCAL), &::dlclose};
}

TEST(LoadableModule, RunsACommandOfTheHostThatLoadsIt) {
  const Library library = Load();
  ASSERT_NE(library, nullptr) << ::dlerror();
  auto entry = reinterpret_cast<void (*)()>(::dlsym(library.get(), "TAVOMAIN"));
  ASSERT_NE(entry, nullptr) << ::dlerror();

  const std::string folder = std::string(TAVO_SOURCE_DIR) + "/examples/nhanes";
  standalone::ReadResult data = standalone::ReadDataFile({folder + "/nhanes.csv", "", 1});
  ASSERT_TRUE(data.ok) << data.error;
  standalone::SessionOptions options;
  options.baseFolder = folder;
  standalone::Session session(options);
  session.SetTable(&data.table);
  const standalone::SourceText source(
      "test", "TAVOREG HI_CHOL BY race /PLAN FILE='plan.xml' /STATISTICS PARAMETER SE.");
  standalone::RunCommands(session, source, {{"TAVOREG", entry}});
  ASSERT_EQ(session.Output().commands.size(), 1U);
  EXPECT_NE(session.Output().commands[0].FindTable("ParameterEstimates"), nullptr);
}

TEST(LoadableModule, ExportsItsEntryAndNothingElse) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> symbols(
      ::popen("nm -D --defined-only '" TAVO_MODULE_LIBRARY "' | awk '{print $3}'", "r"), &::pclose);
  ASSERT_NE(symbols, nullptr);
  std::string names;
  std::array<char, 4096> buffer{};
  while (std::fgets(buffer.data(), static_cast<int>(buffer.size()), symbols.get()) != nullptr)
    names += buffer.data();
  EXPECT_EQ(names, "TAVOMAIN\n");
}

}  // namespace
