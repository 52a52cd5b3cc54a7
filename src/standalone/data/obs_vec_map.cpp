// The category look-up of the passes over the cases.
//
// Entries lie in chunks that never move, so pointers stay valid. The index over them is an open-addressing
// table with linear probing, at most half full, and a quarter while it is small: a collision costs a
// mispredicted branch, several times the look-up itself. A slot carries a tag beside the entry's address: for
// a key of one cell the tag is the key itself, so a look-up compares in the slot and never follows a pointer;
// for longer keys it is the hash. Numbers are brought to one form first (-0 becomes 0), after which equal
// numbers have equal bits.
#include <algorithm>
#include <bit>
#include <cstring>

#include "host/data.h"

namespace host {

namespace {

constexpr std::size_t kFirstSlots = 32;
constexpr std::size_t kSparseSlots = 8192;  // smaller tables, in cache anyway, are kept sparser
constexpr std::uint64_t kOddFactor = 0x9E3779B97F4A7C15u;
constexpr std::size_t kFirstChunkEntries = 16;
constexpr std::size_t kMostChunkEntries = 4096;
constexpr double kDirectBound = 4096;  // whole numbers below it get a place in the direct table

std::uint64_t NumberBits(const OBS& cell) {
  return std::bit_cast<std::uint64_t>(cell.number + 0.0);
}

std::uint64_t TextBits(const OBS& cell) {
  std::uint64_t bits;
  std::memcpy(&bits, cell.text, sizeof bits);
  return bits;
}

/// Mixes all bits into the upper ones, which choose the slot (finaliser of MurmurHash3, A. Appleby).
std::uint64_t Mix(std::uint64_t x) {
  x = (x ^ (x >> 33)) * 0xFF51AFD7ED558CCDu;
  return (x ^ (x >> 33)) * 0xC4CEB9FE1A85EC53u;
}

bool IsDirect(double number) {
  return number >= 0 && number < kDirectBound && static_cast<double>(static_cast<int>(number)) == number;
}

/// -1, 0, 1. A NaN, which no reader lets in, comes last.
int CompareNumbers(double a, double b) {
  if (a < b) return -1;
  if (b < a) return 1;
  return static_cast<int>(a != a) - static_cast<int>(b != b);
}

}  // namespace

struct ObsVecMap::Impl {
  struct Slot {
    std::uint64_t tag = 0;
    OBS* value = nullptr;  // null marks a free slot
  };

  Impl(KeySpec spec, int valueCellCount);

  std::uint64_t CellBits(const OBS* key, std::size_t cell) const {
    return fIsNumberCell[cell] ? NumberBits(key[cell]) : TextBits(key[cell]);
  }
  std::uint64_t Tag(const OBS* key) const;
  bool KeyEquals(const OBS* key, const OBS* value) const;
  std::size_t HomeSlot(std::uint64_t tag) const { return static_cast<std::size_t>(Mix(tag) >> fShift); }
  OBS* Find(const OBS* key) const;
  OBS* Insert(const OBS* key);
  void Place(Slot slot);
  void GrowSlots();
  OBS* NewEntry();
  void NoteDirect(double number, OBS* value);
  bool Precedes(const OBS* a, const OBS* b) const;

  KeySpec fKeySpec;
  std::vector<unsigned char> fIsNumberCell;  // per key cell
  std::size_t fNKeyCells = 0;
  std::size_t fNEntryCells = 0;

  std::vector<Slot> fSlots;  // a power of 2
  int fShift = 0;            // 64 less the logarithm of the number of slots
  std::size_t fNEntries = 0;

  std::vector<std::unique_ptr<OBS[]>> fChunks;
  std::size_t fNChunkEntries = 0;  // room in the last chunk
  std::size_t fNChunkUsed = 0;
  std::vector<OBS*> fEntries;  // the value cells, in order of insertion

  std::vector<OBS*> fDirect;  // by whole number, for a key of one number
};

ObsVecMap::Impl::Impl(KeySpec spec, int valueCellCount) : fKeySpec(std::move(spec)) {
  for (const std::uint16_t width : fKeySpec) {
    fIsNumberCell.insert(fIsNumberCell.end(), static_cast<std::size_t>(CellCount(width)), width == 0);
  }
  fNKeyCells = fIsNumberCell.size();
  fNEntryCells = fNKeyCells + static_cast<std::size_t>(std::max(valueCellCount, 0));
  fSlots.resize(kFirstSlots);
  fShift = 64 - std::countr_zero(kFirstSlots);
}

std::uint64_t ObsVecMap::Impl::Tag(const OBS* key) const {
  if (fNKeyCells == 1) return CellBits(key, 0);
  std::uint64_t hash = fNKeyCells;
  for (std::size_t i = 0; i < fNKeyCells; ++i) {
    hash = (std::rotl(hash, 29) ^ CellBits(key, i)) * kOddFactor;
  }
  return hash;  // HomeSlot mixes it
}

bool ObsVecMap::Impl::KeyEquals(const OBS* key, const OBS* value) const {
  const OBS* stored = value - fNKeyCells;
  for (std::size_t i = 0; i < fNKeyCells; ++i) {
    if (CellBits(key, i) != TextBits(stored[i])) return false;
  }
  return true;
}

OBS* ObsVecMap::Impl::Find(const OBS* key) const {
  const std::uint64_t tag = Tag(key);
  const std::size_t mask = fSlots.size() - 1;
  for (std::size_t i = HomeSlot(tag);; i = (i + 1) & mask) {
    const Slot& slot = fSlots[i];
    if (slot.value == nullptr) return nullptr;
    if (slot.tag == tag && (fNKeyCells == 1 || KeyEquals(key, slot.value))) return slot.value;
  }
}

void ObsVecMap::Impl::Place(Slot slot) {
  const std::size_t mask = fSlots.size() - 1;
  std::size_t i = HomeSlot(slot.tag);
  while (fSlots[i].value != nullptr)
    i = (i + 1) & mask;
  fSlots[i] = slot;
}

void ObsVecMap::Impl::GrowSlots() {
  std::vector<Slot> old(fSlots.size() * 2);
  old.swap(fSlots);
  --fShift;
  for (const Slot& slot : old) {
    if (slot.value != nullptr) Place(slot);
  }
}

OBS* ObsVecMap::Impl::NewEntry() {
  if (fNChunkUsed == fNChunkEntries) {
    fNChunkEntries = std::clamp(fNChunkEntries * 2, kFirstChunkEntries, kMostChunkEntries);
    fChunks.push_back(std::make_unique<OBS[]>(fNChunkEntries * fNEntryCells));
    fNChunkUsed = 0;
  }
  return fChunks.back().get() + fNEntryCells * fNChunkUsed++;
}

OBS* ObsVecMap::Impl::Insert(const OBS* key) {
  if (OBS* present = Find(key)) return present;
  const std::size_t slotsPerEntry = fSlots.size() < kSparseSlots ? 4 : 2;
  if ((fNEntries + 1) * slotsPerEntry > fSlots.size()) GrowSlots();

  OBS* entry = NewEntry();
  for (std::size_t i = 0; i < fNKeyCells; ++i) {
    const std::uint64_t bits = CellBits(key, i);
    std::memcpy(&entry[i], &bits, sizeof bits);
  }
  OBS* value = entry + fNKeyCells;
  Place({Tag(key), value});
  fEntries.push_back(value);
  ++fNEntries;
  if (fKeySpec.size() == 1 && fKeySpec[0] == 0 && IsDirect(entry->number)) NoteDirect(entry->number, value);
  return value;
}

void ObsVecMap::Impl::NoteDirect(double number, OBS* value) {
  const auto index = static_cast<std::size_t>(number);
  if (index >= fDirect.size()) fDirect.resize(std::bit_ceil(index + 1), nullptr);
  fDirect[index] = value;
}

bool ObsVecMap::Impl::Precedes(const OBS* a, const OBS* b) const {
  for (const std::uint16_t width : fKeySpec) {
    const auto cells = static_cast<std::size_t>(CellCount(width));
    const int order = width == 0 ? CompareNumbers(a->number, b->number)
                                 : std::memcmp(a->text, b->text, cells * sizeof(OBS));
    if (order != 0) return order < 0;
    a += cells;
    b += cells;
  }
  return false;
}

ObsVecMap::KeySpec ObsVecMap::MakeKeySpec(const VORN_DataSource& source, const std::vector<int>& variables) {
  KeySpec spec;
  spec.reserve(variables.size());
  for (const int index : variables) {
    spec.push_back(static_cast<std::uint16_t>(source.GetVariable(static_cast<unsigned>(index))->GetType()));
  }
  return spec;
}

ObsVecMap::ObsVecMap(KeySpec keySpec, int valueCells)
    : fpImpl(std::make_unique<Impl>(std::move(keySpec), valueCells)) {}

ObsVecMap::~ObsVecMap() = default;

ObsVecMap::ObsVecMap(ObsVecMap&& other) noexcept
    : fpImpl(std::move(other.fpImpl)),
      fDirectLimit(std::exchange(other.fDirectLimit, 0)),
      fpDirect(std::exchange(other.fpDirect, nullptr)) {}

ObsVecMap& ObsVecMap::operator=(ObsVecMap&& other) noexcept {
  fpImpl = std::move(other.fpImpl);
  fDirectLimit = std::exchange(other.fDirectLimit, 0);
  fpDirect = std::exchange(other.fpDirect, nullptr);
  return *this;
}

OBS* ObsVecMap::Find(const OBS* key) const {
  return fpImpl->Find(key);
}

OBS* ObsVecMap::Insert(const OBS* key) {
  OBS* value = fpImpl->Insert(key);
  fpDirect = fpImpl->fDirect.data();
  fDirectLimit = static_cast<double>(fpImpl->fDirect.size());
  return value;
}

int ObsVecMap::CellSize() const {
  return static_cast<int>(fpImpl->fNEntryCells);
}

std::size_t ObsVecMap::Size() const {
  return fpImpl->fNEntries;
}

const ObsVecMap::KeySpec& ObsVecMap::GetKeySpec() const {
  return fpImpl->fKeySpec;
}

std::vector<const OBS*> ObsVecMap::Sort() const {
  std::vector<const OBS*> keys;
  keys.reserve(fpImpl->fNEntries);
  for (const OBS* value : fpImpl->fEntries)
    keys.push_back(value - fpImpl->fNKeyCells);
  const Impl* map = fpImpl.get();
  std::sort(keys.begin(), keys.end(), [map](const OBS* a, const OBS* b) { return map->Precedes(a, b); });
  return keys;
}

}  // namespace host
