// The files that a run reads, so that none of them is replaced.
#pragma once

#include <string>
#include <vector>

namespace standalone {

/// True when both paths lead to one regular file that is there. The file tells, not its name: links of either
/// kind lead to the file that they stand for.
bool IsSameFile(const std::string& a, const std::string& b);

class RunInputs {
 public:
  /// `use` is what a message calls the file, such as "the data file". An empty path is left out.
  void Add(std::string path, std::string use);
  /// The use of an input that writing this path would replace, the path's own file or the schema beside a
  /// data file in text; empty when there is none.
  std::string ReplacedBy(const std::string& path) const;

 private:
  struct Input {
    std::string path;
    std::string use;
  };
  /// Empty when the file is no input.
  std::string UseOf(const std::string& path) const;

  std::vector<Input> fInputs;
};

}  // namespace standalone
