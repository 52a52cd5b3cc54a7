// How many messages of one kind a command may put out: a fault in every case must not fill the output.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "standalone/output/document.h"

namespace standalone {

/// Counts the messages of the running command by their keys; one object serves all commands of a run.
class MessageLimit {
 public:
  static constexpr int kMostOfOneKey = 20;

  /// False for a message that `earlier` holds already (same text, same place), and for one more than
  /// kMostOfOneKey with the same key.
  bool Admits(const Message& message, const std::vector<Message>& earlier);
  /// Whether a message was one too many; the next command starts afresh.
  bool TakeLeftOut();

 private:
  std::map<std::string, int> fCounts;  // by key
  bool fbLeftOut = false;
};

}  // namespace standalone
