// The library's two exception types.
//
// DictionaryFailure is thrown by value by single-pattern dictionary operations
// when memory runs out. IOException is thrown by pointer by the readers and
// writers of the saved formats, after they have printed their message: the
// catcher owns the object and deletes it.
#ifndef SEQLATTICE_SUPPORT_SEQEXCEPTIONS_H_
#define SEQLATTICE_SUPPORT_SEQEXCEPTIONS_H_

#include <exception>

namespace SEQUENCE_NAMESPACE_800 {
namespace SeqExceptions {

class IOException : public std::exception {
 public:
  const char* what() const noexcept override {
    return "seqlattice: reading or writing a saved object failed";
  }
};

class DictionaryFailure : public std::exception {
 public:
  const char* what() const noexcept override {
    return "seqlattice: the sequence dictionary could not complete an "
           "operation";
  }
};

}  // namespace SeqExceptions
}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_SUPPORT_SEQEXCEPTIONS_H_
