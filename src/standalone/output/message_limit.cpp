#include "standalone/output/message_limit.h"

#include <algorithm>
#include <utility>

namespace standalone {

bool MessageLimit::Admits(const Message& message, const std::vector<Message>& earlier) {
  const auto isSame = [&](const Message& m) {
    return m.key == message.key && m.text == message.text && m.location == message.location;
  };
  // A search through all of them is cheap, since the limit keeps them few.
  if (std::any_of(earlier.begin(), earlier.end(), isSame)) return false;
  int& count = fCounts[message.key];
  if (count == kMostOfOneKey) {
    fbLeftOut = true;
    return false;
  }
  ++count;
  return true;
}

bool MessageLimit::TakeLeftOut() {
  fCounts.clear();
  return std::exchange(fbLeftOut, false);
}

}  // namespace standalone
