#include "seqlattice/store/internal/nodepool.h"

#include <new>

namespace SEQUENCE_NAMESPACE_800 {
namespace store_internal {

namespace {

// The first block holds a small table's nodes; later ones double up to the
// largest, so that a big table wastes at most one block's tail.
constexpr std::size_t kFirstBlockNodes = 32;
constexpr std::size_t kLargestBlockNodes = std::size_t{1} << 16;

// Where a block's nodes start: after the link, at the nodes' alignment.
constexpr std::size_t kHeaderBytes =
    (sizeof(void*) + alignof(SQCPairNode) - 1) / alignof(SQCPairNode) *
    alignof(SQCPairNode);

}  // namespace

void NodePool::grow() {
  const std::size_t nodes = blockNodes_ == 0 ? kFirstBlockNodes
                                             : (blockNodes_ < kLargestBlockNodes
                                                    ? 2 * blockNodes_
                                                    : kLargestBlockNodes);
  char* bytes = static_cast<char*>(
      ::operator new(kHeaderBytes + nodes * sizeof(SQCPairNode)));
  Block* block = reinterpret_cast<Block*>(bytes);
  block->previous = blocks_;
  blocks_ = block;
  next_ = reinterpret_cast<SQCPairNode*>(bytes + kHeaderBytes);
  left_ = nodes;
  blockNodes_ = nodes;
}

void NodePool::release() {
  while (blocks_ != nullptr) {
    Block* previous = blocks_->previous;
    ::operator delete(blocks_);
    blocks_ = previous;
  }
  next_ = nullptr;
  left_ = 0;
  blockNodes_ = 0;
  free_ = nullptr;
}

}  // namespace store_internal
}  // namespace SEQUENCE_NAMESPACE_800
