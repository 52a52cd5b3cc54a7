// How many messages of one kind a command may put out: a fault in every case must not fill the output.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "output/document.h"

namespace standalone {

class MessageLimit {
 public:
  static constexpr int kMostOfOneKey = 20;

  /// False for a message that `earlier` holds already (same text, same place), and for one more than
  /// kMostOfOneKey with the same key; the latter are counted.
  bool Admits(const Message& message, const std::vector<Message>& earlier);
  /// The messages that were one too many since the last call.
  long TakeLeftOut();

 private:
  std::map<std::string, int> fCounts;  // by key
  long fNLeftOut = 0;
};

}  // namespace standalone
