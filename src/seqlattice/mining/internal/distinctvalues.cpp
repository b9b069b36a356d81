#include "seqlattice/mining/internal/distinctvalues.h"

#include <algorithm>
#include <cstddef>

namespace SEQUENCE_NAMESPACE_800 {
namespace mining {
namespace internal {

namespace {

// A range of a few hundred thousand values, or of up to `perElement` values
// per element of the array, is mapped directly: a bit (up to 32 per element,
// so 4 bytes each), or a rank (up to one per element), per value of the
// range. Either table is then no bigger than the array.
constexpr std::size_t kSmallRange = std::size_t{1} << 18;
constexpr std::size_t kBitsPerElement = 32;
constexpr std::size_t kRanksPerElement = 1;

// Whether a table over [low, high] fits for an array of n elements.
bool tableFits(int low, int high, std::size_t n, std::size_t perElement) {
  std::size_t span = static_cast<std::size_t>(static_cast<long long>(high) -
                                              static_cast<long long>(low)) +
                     1;
  return span <= std::max(kSmallRange, perElement * n);
}

std::size_t offset(int value, int low) {
  return static_cast<std::size_t>(static_cast<long long>(value) -
                                  static_cast<long long>(low));
}

}  // namespace

std::vector<int> distinctValues(const std::vector<int>& v) {
  if (v.empty()) return {};
  auto [lowAt, highAt] = std::minmax_element(v.begin(), v.end());
  const int low = *lowAt, high = *highAt;
  std::vector<int> values;
  if (!tableFits(low, high, v.size(), kBitsPerElement)) {
    values = v;
    std::sort(values.begin(), values.end());
    values.erase(std::unique(values.begin(), values.end()), values.end());
    return values;
  }
  std::vector<std::uint64_t> seen(offset(high, low) / 64 + 1, 0);
  for (int x : v) {
    std::size_t at = offset(x, low);
    seen[at / 64] |= std::uint64_t{1} << (at % 64);
  }
  for (std::size_t word = 0; word < seen.size(); ++word) {
    for (std::uint64_t bits = seen[word]; bits != 0; bits &= bits - 1) {
      std::size_t at =
          word * 64 + static_cast<std::size_t>(__builtin_ctzll(bits));
      values.push_back(static_cast<int>(static_cast<long long>(low) +
                                        static_cast<long long>(at)));
    }
  }
  return values;
}

std::vector<std::uint32_t> valueRanks(const std::vector<int>& v,
                                      const std::vector<int>& values) {
  std::vector<std::uint32_t> ranks(v.size());
  if (values.empty()) return ranks;
  const int low = values.front(), high = values.back();
  if (!tableFits(low, high, v.size(), kRanksPerElement)) {
    for (std::size_t k = 0; k < v.size(); ++k) {
      ranks[k] = static_cast<std::uint32_t>(
          std::lower_bound(values.begin(), values.end(), v[k]) -
          values.begin());
    }
    return ranks;
  }
  std::vector<std::uint32_t> rankOf(offset(high, low) + 1, 0);
  for (std::size_t r = 0; r < values.size(); ++r) {
    rankOf[offset(values[r], low)] = static_cast<std::uint32_t>(r);
  }
  for (std::size_t k = 0; k < v.size(); ++k)
    ranks[k] = rankOf[offset(v[k], low)];
  return ranks;
}

}  // namespace internal
}  // namespace mining
}  // namespace SEQUENCE_NAMESPACE_800
