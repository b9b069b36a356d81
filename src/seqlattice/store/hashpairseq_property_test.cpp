// Random puts, overwrites and removals checked against two models: a std::map
// for the contents and a plain chain-by-chain re-statement of the table's
// rules (head insertion, growth that reverses chains, removal that moves the
// head pair) for the exact iteration order.
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <random>
#include <set>
#include <vector>

#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/store/hashpairseq.h"
#include "seqlattice/store/sequencedescriptor.h"
#include "seqlattice/store/store_test_util.h"

namespace SEQUENCE_NAMESPACE_800 {

namespace {

struct Entry {
  test::Sets sets;
  int hash;
  int id;
};

// The table's rules restated over vectors; chain front = head.
class ChainModel {
 public:
  explicit ChainModel(int capacity) : chains(capacity) {}

  void insert(const Entry& entry) {
    if (count + 1 > threshold()) grow();
    std::vector<Entry>& chain = chains[bucketOf(entry.hash)];
    chain.insert(chain.begin(), entry);
    ++count;
  }
  void overwrite(const test::Sets& sets, int id) { find(sets)->id = id; }
  void remove(const test::Sets& sets) {
    std::vector<Entry>& chain = chains[bucketOf(hashOf(sets))];
    Entry* found = find(sets);
    *found = chain.front();
    chain.erase(chain.begin());
    --count;
  }
  std::vector<int> idsInOrder() const {
    std::vector<int> ids;
    for (const std::vector<Entry>& chain : chains) {
      for (const Entry& entry : chain) ids.push_back(entry.id);
    }
    return ids;
  }
  int capacity() const { return static_cast<int>(chains.size()); }

 private:
  static int hashOf(const test::Sets& sets) {
    std::unique_ptr<NTSequence> key(test::makePattern(sets));
    return key->getHashCode();
  }
  int threshold() const {
    return static_cast<int>(static_cast<double>(capacity() * 0.75f) + 0.5);
  }
  int bucketOf(int hash) const {
    return ((hash % capacity()) + capacity()) % capacity();
  }
  Entry* find(const test::Sets& sets) {
    for (Entry& entry : chains[bucketOf(hashOf(sets))]) {
      if (entry.sets == sets) return &entry;
    }
    return nullptr;
  }
  void grow() {
    std::vector<std::vector<Entry>> old = std::move(chains);
    chains.assign(2 * old.size() + 1, std::vector<Entry>());
    for (const std::vector<Entry>& chain : old) {
      for (const Entry& entry : chain) {
        std::vector<Entry>& target = chains[bucketOf(entry.hash)];
        target.insert(target.begin(), entry);
      }
    }
  }

  std::vector<std::vector<Entry>> chains;
  int count = 0;
};

// Up to four items from a small range (negatives included), cut into sets at
// random, so that equal patterns recur often.
test::Sets randomSets(std::mt19937& random) {
  std::uniform_int_distribution<int> length(1, 4);
  std::uniform_int_distribution<int> item(-3, 9);
  std::bernoulli_distribution newSet(0.5);
  test::Sets sets(1);
  const int n = length(random);
  for (int i = 0; i < n; ++i) {
    if (i > 0 && newSet(random)) sets.emplace_back();
    sets.back().push_back(item(random));
  }
  return sets;
}

std::vector<int> idsInOrder(const HashtableSQPair& table) {
  std::vector<int> ids;
  for (const ISQCPair& pair : table) ids.push_back(pair.value->getCount());
  return ids;
}

TEST(HashtableSQPairPropertyTest, RandomOperationsMatchTheModels) {
  std::mt19937 random(20261122);
  std::uniform_int_distribution<int> operation(0, 99);
  HashtableSQPair table(3);
  ChainModel chains(3);
  std::map<test::Sets, int> contents;
  int nextId = 0;
  int refused = 0;
  int overwritten = 0;
  int removed = 0;

  for (int step = 0; step < 6000; ++step) {
    const test::Sets sets = randomSets(random);
    const int op = operation(random);
    const bool present = contents.count(sets) > 0;
    if (op < 45) {
      NTSequence* key = test::makePattern(sets);
      SequenceCounter* value = new SequenceCounter(0, nextId, nullptr);
      const int hash = key->getHashCode();
      ASSERT_EQ(table.put(key, value), !present);
      if (present) {
        delete key;
        delete value;
        ++refused;
      } else {
        contents[sets] = nextId;
        chains.insert(Entry{sets, hash, nextId});
      }
    } else if (op < 70) {
      NTSequence* key = test::makePattern(sets);
      const int hash = key->getHashCode();
      table.putOverwrite(key, new SequenceCounter(0, nextId, nullptr));
      if (present) {
        chains.overwrite(sets, nextId);
        ++overwritten;
      } else {
        chains.insert(Entry{sets, hash, nextId});
      }
      contents[sets] = nextId;
    } else {
      std::unique_ptr<NTSequence> probe(test::makePattern(sets));
      table.remove(probe.get());
      if (present) {
        chains.remove(sets);
        contents.erase(sets);
        ++removed;
      }
      ASSERT_FALSE(table.containsKey(probe.get()));
    }
    ++nextId;

    ASSERT_EQ(table.getCount(), static_cast<int>(contents.size()));
    ASSERT_EQ(table.getCapacity(), chains.capacity());
    if (step % 50 == 0) {
      ASSERT_EQ(idsInOrder(table), chains.idsInOrder()) << "step " << step;
      for (const auto& stored : contents) {
        std::unique_ptr<NTSequence> probe(test::makePattern(stored.first));
        const ISQCPair* pair = table.get(probe.get());
        ASSERT_NE(pair, nullptr);
        ASSERT_EQ(pair->value->getCount(), stored.second);
        ASSERT_TRUE(*pair->key == *probe);
      }
    }
  }

  // Every stored pair is visited exactly once.
  const std::vector<int> visited = idsInOrder(table);
  EXPECT_EQ(visited.size(), contents.size());
  std::set<int> expectedIds;
  for (const auto& stored : contents) expectedIds.insert(stored.second);
  EXPECT_EQ(std::set<int>(visited.begin(), visited.end()), expectedIds);
  EXPECT_EQ(visited, chains.idsInOrder());

  // The run exercised every path.
  EXPECT_GT(refused, 100);
  EXPECT_GT(overwritten, 100);
  EXPECT_GT(removed, 100);
  EXPECT_GE(table.getNRehashes(), 5);
}

}  // namespace

}  // namespace SEQUENCE_NAMESPACE_800
