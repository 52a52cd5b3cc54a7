// Text files that a command writes.
#include <ostream>

#include "host/files.h"
#include "standalone/files/atomic_file.h"

namespace host {

bool WriteTextFile(std::string_view name, const std::function<bool(std::ostream&)>& write,
                   std::string& error) {
  error.clear();
  if (name.empty() || name.find('\0') != std::string_view::npos) {
    error = "the name is not that of a file";
    return false;
  }
  bool gaveUp = false;
  const auto writeAll = [&](std::ostream& out) {
    gaveUp = !write(out);
    if (gaveUp) out.setstate(std::ios::failbit);
  };
  error = standalone::WriteFileAtomically(BEPesGetInputPath(name), writeAll);
  const bool isWritten = error.empty();
  if (gaveUp) error.clear();
  return isWritten;
}

}  // namespace host
