#include "standalone/output/progress_line.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

TEST(ProgressLine, WritesOverItsLineAndClearsIt) {
  std::ostringstream stream;
  {
    standalone::ProgressLine progress(&stream);
    progress.Show("Iteration History", "iteration 3");
    progress.Show("Iteration History", "iteration 4");  // too soon after the one before
  }
  EXPECT_EQ(stream.str(), "\rIteration History: iteration 3\x1b[K\r\x1b[K");
}

TEST(ProgressLine, WithoutAStreamShowsNothing) {
  standalone::ProgressLine progress(nullptr);
  progress.Show("Iteration History", "iteration 3");
  progress.Clear();
}

}  // namespace
