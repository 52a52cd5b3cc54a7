// Words of 64 bits: equal sets are equal vectors, and members are counted a word at a time.
#include "component/numerics/bit_set.h"

#include <algorithm>
#include <bit>

namespace MCCommonMath {

int MCBitSet::InSet() const {
  int count = 0;
  for (const std::uint64_t word : fWords) {
    count += std::popcount(word);
  }
  return count;
}

int MCBitSet::InRange(int first, int last) const {
  int count = 0;
  for (int i = std::max(first, 0); i <= std::min(last, fSize - 1); ++i) {
    count += IsIn(i) ? 1 : 0;
  }
  return count;
}

std::vector<int> MCBitSet::Members() const {
  std::vector<int> members;
  members.reserve(static_cast<std::size_t>(InSet()));
  for (int i = 0; i < fSize; ++i) {
    if (IsIn(i)) {
      members.push_back(i);
    }
  }
  return members;
}

bool MCBitSet::Set(int index, bool value) {
  if (index < 0 || index >= fSize) {
    return false;
  }
  if (value) {
    fWords[Word(index)] |= Mask(index);
  } else {
    fWords[Word(index)] &= ~Mask(index);
  }
  return true;
}

bool MCBitSet::SetRange(int first, int last, bool value) {
  if (first < 0 || last >= fSize) {
    return false;
  }
  for (int i = first; i <= last; ++i) {
    Set(i, value);
  }
  return true;
}

void MCBitSet::Resize(int size, bool value) {
  fSize = std::max(size, 0);
  // Bits beyond the size must stay clear, or two equal sets would compare unequal and InSet would count them:
  // the words start at 0 and bits are set one by one.
  fWords.assign(Word(fSize) + 1, 0);
  if (value) {
    SetRange(0, fSize - 1, true);
  }
}

void MCBitSet::Clear() {
  std::fill(fWords.begin(), fWords.end(), 0);
}

}  // namespace MCCommonMath
