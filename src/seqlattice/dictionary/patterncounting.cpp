// Storing, counting, looking up and removing single patterns.
#include <memory>
#include <new>

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/store/hashpairseq.h"
#include "seqlattice/store/sequencedescriptor.h"
#include "seqlattice/support/seqexceptions.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

// Runs a single-pattern operation, reporting exhausted memory the way these
// operations do.
template <class Operation>
auto failingAsDictionary(Operation operation) -> decltype(operation()) {
  try {
    return operation();
  } catch (const std::bad_alloc&) {
    throw SeqExceptions::DictionaryFailure();
  }
}

// Hands key and counter to the table; they stay ours if it throws.
void storeOwned(HashtableSQPair& table, std::unique_ptr<NTSequence>& key,
                std::unique_ptr<CarmaSequenceDescriptor>& counter) {
  table.putOverwrite(key.get(), counter.get());
  key.release();
  counter.release();
}

}  // namespace

void SequenceDictionary::defineLevel0() {
  HashtableSQPair* table = getLevel(0);
  if (table == nullptr) throw SeqExceptions::DictionaryFailure();
  failingAsDictionary([table] {
    std::unique_ptr<NTSequence> empty(new NTSequence());
    std::unique_ptr<CarmaSequenceDescriptor> zero(
        new CarmaSequenceDescriptor(0, 0, 0));
    storeOwned(*table, empty, zero);
  });
}

void SequenceDictionary::addSequence(int** p, int n, SequenceCounter* sc) {
  failingAsDictionary([&] {
    std::unique_ptr<NTSequence> key(new NTSequence(p, n));
    HashtableSQPair* table = getLevel(key->size());
    if (table == nullptr) throw SeqExceptions::DictionaryFailure();
    std::unique_ptr<CarmaSequenceDescriptor> counter;
    if (sc != nullptr) {
      counter.reset(new CarmaSequenceDescriptor(
          sc->getOrdinalOfEntry(), sc->getMaxMissed(), sc->getCount()));
    }
    storeOwned(*table, key, counter);
  });
}

void SequenceDictionary::refillProbe(int** p, int n) {
  if (probe != nullptr) probe->reuseAs(p, n);
}

void SequenceDictionary::refillProbe(Sequence const* s) {
  if (probe != nullptr) probe->reuseAs(s);
}

ISQCPair* SequenceDictionary::lookupProbe() const {
  if (probe == nullptr) return nullptr;
  HashtableSQPair* table = getLevel(probe->size());
  return table != nullptr ? table->get(probe) : nullptr;
}

void SequenceDictionary::removeProbe() {
  if (probe == nullptr) return;
  if (HashtableSQPair* table = getLevel(probe->size())) table->remove(probe);
}

ISQCPair* SequenceDictionary::lookup(int** p, int n) {
  return failingAsDictionary([&] {
    refillProbe(p, n);
    return lookupProbe();
  });
}

ISQCPair* SequenceDictionary::lookup(Sequence const* s) {
  return failingAsDictionary([&] {
    refillProbe(s);
    return lookupProbe();
  });
}

SequenceCounter* SequenceDictionary::incrementCount(int** p, int n) {
  ISQCPair* entry = lookup(p, n);
  if (entry == nullptr || entry->value == nullptr) return nullptr;
  entry->value->setCount(entry->value->getCount() + 1);
  return entry->value;
}

SequenceCounter* SequenceDictionary::getDescriptor(NTSequence const* s) const {
  if (s == nullptr) return nullptr;
  HashtableSQPair* table = getLevel(s->size());
  ISQCPair* entry = table != nullptr ? table->get(s) : nullptr;
  return entry != nullptr ? entry->value : nullptr;
}

SequenceCounter* SequenceDictionary::getDescriptor(int** p, int n) {
  ISQCPair* entry = lookup(p, n);
  return entry != nullptr ? entry->value : nullptr;
}

SequenceCounter* SequenceDictionary::getDescriptor(Sequence const* s) {
  if (s == nullptr) return nullptr;
  ISQCPair* entry = lookup(s);
  return entry != nullptr ? entry->value : nullptr;
}

NTSequence* SequenceDictionary::getSequence(int** p, int n) {
  ISQCPair* entry = lookup(p, n);
  return entry != nullptr ? entry->key : nullptr;
}

bool SequenceDictionary::hasSequence(int** p, int n) {
  return lookup(p, n) != nullptr;
}

void SequenceDictionary::remove(NTSequence* s) {
  if (s == nullptr) return;
  if (HashtableSQPair* table = getLevel(s->size())) table->remove(s);
}

void SequenceDictionary::remove(int** p, int n) {
  failingAsDictionary([&] {
    refillProbe(p, n);
    removeProbe();
  });
}

void SequenceDictionary::remove(Sequence const* s) {
  if (s == nullptr) return;
  failingAsDictionary([&] {
    refillProbe(s);
    removeProbe();
  });
}

}  // namespace SEQUENCE_NAMESPACE_800
