// Integer keys and the hash table that they open.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <utility>
#include <vector>

namespace tavo {

/// A vector of 32-bit integers with its hash. The hash must be recomputed after the values were changed.
class OrvKey {
 public:
  OrvKey() = default;
  explicit OrvKey(int length) : fValues(static_cast<std::size_t>(length), 0) {}
  explicit OrvKey(std::vector<std::int32_t> values) : fValues(std::move(values)) { ComputeHash(); }

  int Length() const { return static_cast<int>(fValues.size()); }
  std::int32_t operator[](int i) const { return fValues[static_cast<std::size_t>(i)]; }
  std::int32_t& operator[](int i) { return fValues[static_cast<std::size_t>(i)]; }
  const std::vector<std::int32_t>& Values() const { return fValues; }
  std::uint32_t Hash() const { return fHash; }
  /// Exclusive-or of value i times the i-th odd prime (3, 5, … 229, then again from 3), in 32-bit wrap-around
  /// arithmetic; 0 for an empty key.
  void ComputeHash();

  /// Keys are short: a loop beats the call that comparing whole vectors makes.
  bool HasSameValues(const OrvKey& other) const {
    if (fValues.size() != other.fValues.size()) return false;
    for (std::size_t i = 0; i < fValues.size(); ++i) {
      if (fValues[i] != other.fValues[i]) return false;
    }
    return true;
  }
  friend bool operator==(const OrvKey& a, const OrvKey& b) {
    return a.fHash == b.fHash && a.HasSameValues(b);
  }
  /// The shorter key first; at equal length the first unequal value decides.
  friend bool operator<(const OrvKey& a, const OrvKey& b);

 private:
  std::vector<std::int32_t> fValues;
  std::uint32_t fHash = 0;
};

/// Number of leading values in which two keys agree.
int SharedPrefix(const OrvKey& a, const OrvKey& b);

/// A chained hash table from keys to payloads. It owns both; nodes keep their address until the table is
/// destroyed. It starts with 89 buckets and grows to twice that plus 1 when the element count passes three
/// quarters.
template <class Payload>
class OrvKeyTable {
 public:
  struct Node {
    OrvKey key;
    Payload payload{};
    Node* next = nullptr;
  };

  OrvKeyTable() : fBuckets(kInitialBuckets, nullptr) {}
  OrvKeyTable(OrvKeyTable&&) noexcept = default;
  OrvKeyTable& operator=(OrvKeyTable&&) noexcept = default;
  OrvKeyTable(const OrvKeyTable&) = delete;
  OrvKeyTable& operator=(const OrvKeyTable&) = delete;

  int Size() const { return static_cast<int>(fNodes.size()); }
  int BucketCount() const { return static_cast<int>(fBuckets.size()); }
  /// The node of a key whose hash is up to date, or null.
  Node* Find(const OrvKey& key) const {
    for (Node* node = fBuckets[BucketOf(key)]; node != nullptr; node = node->next) {
      if (node->key == key) return node;
    }
    return nullptr;
  }
  /// Adds a key that isn't there yet, with an empty payload; null when it is there.
  Node* Insert(const OrvKey& key) {
    if (Find(key) != nullptr) return nullptr;
    if (Size() + 1 > fThreshold) Grow();
    Node& node = fNodes.emplace_back(Node{key, Payload{}, nullptr});
    Link(node);
    return &node;
  }
  /// All nodes in order of insertion.
  std::deque<Node>& Nodes() { return fNodes; }
  const std::deque<Node>& Nodes() const { return fNodes; }

 private:
  static constexpr std::size_t kInitialBuckets = 89;

  // The hash is unsigned, so one that wrapped around is as good as any.
  std::size_t BucketOf(const OrvKey& key) const { return key.Hash() % fBuckets.size(); }
  void Link(Node& node) {
    Node*& head = fBuckets[BucketOf(node.key)];
    node.next = head;
    head = &node;
  }
  void Grow() {
    fBuckets.assign(2 * fBuckets.size() + 1, nullptr);
    fThreshold = static_cast<int>(static_cast<double>(fBuckets.size()) * 0.75);
    for (Node& node : fNodes)
      Link(node);
  }

  std::vector<Node*> fBuckets;
  std::deque<Node> fNodes;  // growing it moves no node
  int fThreshold = 66;
};

}  // namespace tavo
