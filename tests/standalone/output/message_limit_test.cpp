#include "standalone/output/message_limit.h"

#include <gtest/gtest.h>

namespace {

using standalone::Message;
using standalone::MessageLimit;

TEST(MessageLimit, SaysTheSameThingOnce) {
  MessageLimit limit;
  const Message message{true, "key", "text", "a:1:1", {}};
  EXPECT_TRUE(limit.Admits(message, {}));
  EXPECT_FALSE(limit.Admits(message, {message}));
  EXPECT_TRUE(limit.Admits({true, "key", "text", "a:2:1", {}}, {message}));
  EXPECT_TRUE(limit.Admits({true, "key", "other text", "a:1:1", {}}, {message}));
  EXPECT_FALSE(limit.TakeLeftOut());
}

TEST(MessageLimit, LeavesOutWhatIsOneTooManyOfAKey) {
  MessageLimit limit;
  std::vector<Message> shown;
  for (int i = 0; i < MessageLimit::kMostOfOneKey + 7; ++i) {
    const Message message{true, "key", "case " + std::to_string(i), {}, {}};
    if (limit.Admits(message, shown)) shown.push_back(message);
  }
  EXPECT_EQ(shown.size(), static_cast<std::size_t>(MessageLimit::kMostOfOneKey));
  EXPECT_TRUE(limit.Admits({true, "another key", "case", {}, {}}, shown));
  EXPECT_TRUE(limit.TakeLeftOut());
}

TEST(MessageLimit, StartsAfreshForTheNextCommand) {
  MessageLimit limit;
  for (int i = 0; i < MessageLimit::kMostOfOneKey + 1; ++i) {
    limit.Admits({true, "key", "case " + std::to_string(i), {}, {}}, {});
  }
  EXPECT_TRUE(limit.TakeLeftOut());
  EXPECT_FALSE(limit.TakeLeftOut());
  EXPECT_TRUE(limit.Admits({true, "key", "case", {}, {}}, {}));
}

}  // namespace
