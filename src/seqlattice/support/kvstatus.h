// KvStatus is the status object that the library's bulk operations return by
// value and that Sequence throws on an index error. A default-constructed
// status is OK; one built from a code is not. Discrete data are integers the
// reporter attaches to say what went wrong (an index, a length).
//
// A KvStatus is a plain value: copy it freely. It is not safe to share one
// object between threads while either modifies it.
#ifndef SEQLATTICE_SUPPORT_KVSTATUS_H_
#define SEQLATTICE_SUPPORT_KVSTATUS_H_

#include <vector>

namespace KvCommon_850 {

// The codes the library reports. Every site that builds or tests a status uses
// these names, so that a code means one thing everywhere.
//
// kStatusCancelled: the cancel flag stopped a bulk operation early.
// kStatusFailure: a bulk operation met an exception (chiefly running out of
//   memory) or a missing counter inside and stopped.
// kStatusIndexError: Sequence was asked for an item set past its length.
constexpr long kStatusCancelled = 1;
constexpr long kStatusFailure = 60000;
constexpr long kStatusIndexError = 60001;

class KvStatus {
 public:
  // OK: code 0, flag false, no data.
  KvStatus() = default;
  // Not OK, carrying the given code. The flag's meaning is the reporter's.
  KvStatus(long code, bool flag) : ok_(false), code_(code), flag_(flag) {}

  bool IsOK() const { return ok_; }
  long GetCode() const { return ok_ ? 0 : code_; }
  bool GetFlag() const { return flag_; }

  // Appends one datum; the data keep the order in which they were attached.
  void SetDiscreteDatum(long datum) { data_.push_back(datum); }
  const std::vector<long>& GetDiscreteData() const { return data_; }

 private:
  bool ok_ = true;
  long code_ = 0;
  bool flag_ = false;
  std::vector<long> data_;
};

}  // namespace KvCommon_850

#endif  // SEQLATTICE_SUPPORT_KVSTATUS_H_
