// NodePool hands out the chain nodes of one HashtableSQPair. A model holds
// one node per stored pattern, and loading or filling one allocated each on
// its own: the allocator's bookkeeping and the extra bytes of every small
// block were a good part of the cost. The pool carves nodes from blocks that
// double in size as the table grows, and keeps the nodes given back for the
// next insertions.
//
// Ownership: the pool owns its blocks and frees them all in release() and
// its destructor; nodes handed out stay valid until then. It knows nothing of
// the keys and counters in the nodes.
//
// Not part of the public interface; not safe for concurrent use.
#ifndef SEQLATTICE_STORE_INTERNAL_NODEPOOL_H_
#define SEQLATTICE_STORE_INTERNAL_NODEPOOL_H_

#include <cstddef>

#include "seqlattice/store/hashpairseq.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace store_internal {

class NodePool {
 public:
  NodePool() = default;
  ~NodePool() { release(); }
  NodePool(const NodePool&) = delete;
  NodePool& operator=(const NodePool&) = delete;

  // A node whose fields are to be set; throws std::bad_alloc when no block can
  // be had.
  SQCPairNode* take() {
    if (free_ != nullptr) {
      SQCPairNode* node = free_;
      free_ = node->next;
      return node;
    }
    if (left_ == 0) grow();
    --left_;
    return next_++;
  }
  // Takes back a node taken from this pool.
  void give(SQCPairNode* node) {
    node->next = free_;
    free_ = node;
  }
  // Frees every block: all nodes handed out become invalid.
  void release();

 private:
  // A block starts with the link to the block made before it.
  struct Block {
    Block* previous;
  };

  void grow();

  Block* blocks_ = nullptr;
  SQCPairNode* next_ = nullptr;  // first node not yet handed out
  std::size_t left_ = 0;         // nodes left from next_ in the newest block
  std::size_t blockNodes_ = 0;   // nodes of the newest block
  SQCPairNode* free_ = nullptr;  // nodes given back, linked by next
};

}  // namespace store_internal
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_STORE_INTERNAL_NODEPOOL_H_
