// The interface's shape: twelve pure virtual operations in a fixed slot
// order, no data, no virtual destructor, and a dictionary whose overrides
// keep those slots.
#include "seqlattice/dictionary/sequencesemilattice.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <type_traits>

#include "seqlattice/dictionary/sequencedictionary.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

static_assert(std::is_abstract<SequenceSemiLattice>::value,
              "the interface is abstract");
static_assert(!std::has_virtual_destructor<SequenceSemiLattice>::value,
              "the interface has no virtual destructor");
static_assert(sizeof(SequenceSemiLattice) == sizeof(void*),
              "the interface holds nothing but its table pointer");
static_assert(std::is_base_of<SequenceSemiLattice, SequenceDictionary>::value,
              "the dictionary implements the interface");

#if defined(__GNUC__) && (defined(__x86_64__) || defined(__i386__))
// The vtable slot a pointer to a virtual member function names: under the
// Itanium C++ ABI on x86 it holds 1 + the byte offset of the slot.
template <class MemberFunction>
long slotOf(MemberFunction f) {
  struct Representation {
    std::ptrdiff_t pointer;
    std::ptrdiff_t adjustment;
  } representation;
  static_assert(sizeof(MemberFunction) == sizeof(Representation),
                "two-word member function pointers");
  std::memcpy(&representation, &f, sizeof representation);
  if (representation.pointer % 2 != 1) return -1;  // not virtual
  return static_cast<long>((representation.pointer - 1) /
                           static_cast<std::ptrdiff_t>(sizeof(void*)));
}

template <class Lattice>
void expectSlotOrder() {
  EXPECT_EQ(slotOf(&Lattice::FindSequences), 0);
  EXPECT_EQ(slotOf(&Lattice::NumberOfSequences), 1);
  EXPECT_EQ(slotOf(&Lattice::LargestSequence), 2);
  EXPECT_EQ(slotOf(&Lattice::CountSequencesOfSize), 3);
  EXPECT_EQ(slotOf(&Lattice::CountSequencesBiggerThan), 4);
  EXPECT_EQ(slotOf(&Lattice::ExportLatticeXML), 5);
  EXPECT_EQ(slotOf(&Lattice::ExportRulesXML), 6);
  EXPECT_EQ(slotOf(&Lattice::FindSequencesBeginning), 7);
  EXPECT_EQ(slotOf(&Lattice::FindSequencesEnding), 8);
  EXPECT_EQ(slotOf(&Lattice::GetCurrentItems), 9);
  EXPECT_EQ(slotOf(&Lattice::GetFutureItems), 10);
  EXPECT_EQ(slotOf(&Lattice::GetRules), 11);
}

TEST(SequenceSemiLatticeTest, TwelveOperationsInSlotOrder) {
  expectSlotOrder<SequenceSemiLattice>();
}

TEST(SequenceSemiLatticeTest, TheDictionaryKeepsTheInterfacesSlots) {
  expectSlotOrder<SequenceDictionary>();
}
#endif

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
