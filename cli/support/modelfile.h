// The model file: one file holding a mined dictionary, the labels of its
// items and the parameters it was mined with (docs/model-file.md).
//
// Binary form: the dictionary's binary record exactly as
// SequenceDictionary::writeObject writes it (so readObject reads the file as
// it stands), then the trailer, then the trailer's length (8 bytes) and the
// end mark "SQLMODL1". The trailer holds a CRC-32 of the dictionary part, so
// a damaged file is refused rather than loaded with wrong counts. XML form: the
// dictionary's XML object element, then the same trailer base64-encoded in a
// comment. Loading recognises both forms.
//
// A Model owns its dictionary. Not thread-safe (the dictionary is not).
#ifndef SEQLATTICE_CLI_SUPPORT_MODELFILE_H_
#define SEQLATTICE_CLI_SUPPORT_MODELFILE_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/input/itemlabels.h"
#include "seqlattice/recommend/sequenceindex.h"

namespace seqlattice_cli {

// What the model was mined from and with; only the tool knows these.
struct MiningParameters {
  bool minSupportIsFraction = false;
  double minSupport = 0;  // the fraction or the count as given
  long minCount = 0;      // the count it meant for this input
  int maxItems = 0;
  long customers = 0;
  long transactions = 0;
  long itemOccurrences = 0;
  int maxItemsPerTransaction = 0;
  std::string inputFormat;  // "csv" or "spmf"
  std::string inputName;    // the input file as it was named
  bool complete = true;     // false: a time limit stopped the search
  double timeLimit = 0;     // seconds; 0: none
  // Mined with time constraints or gap statistics (trailer version 3): the
  // maximum span (0: none) and whether the log's times were dates (seconds)
  // travel with the model; the other limits are the dictionary's.
  bool timeAware = false;
  double maxSpan = 0;
  bool datedTimes = false;

  double avgItemsPerTransaction() const {
    return transactions > 0 ? static_cast<double>(itemOccurrences) /
                                  static_cast<double>(transactions)
                            : 0.0;
  }
};

struct Model {
  std::unique_ptr<SEQUENCE_NAMESPACE_800::SequenceDictionary> dictionary;
  SEQUENCE_NAMESPACE_800::input::ItemLabels items;
  MiningParameters mining;
  // The customers' sequences, for the recommender (trailer version 2); empty
  // in models written without them and in version 1 files.
  SEQUENCE_NAMESPACE_800::recommend::SequenceIndex sequences;
  bool xml = false;  // the form it was loaded from
};

// Throws CliError (exit 1) naming the file when it cannot be read or is not
// a complete model.
Model loadModel(const std::string& path);

// Writes through AtomicFile, so a failure leaves an existing file as it was.
void saveModel(const Model& model, const std::string& path, bool xml);

// The trailer bytes, with the CRC-32 of the dictionary part, and back;
// decodeTrailer throws CliError (exit 1) prefixed with path when the bytes
// are not a valid trailer, and returns the checksum.
std::string encodeTrailer(const Model& model, std::uint32_t checksum);
std::uint32_t decodeTrailer(std::string_view bytes, const std::string& path,
                            Model* model);

// The first bytes of every trailer.
constexpr char kTrailerMark[] = "SQLTRAIL";
constexpr std::size_t kTrailerMarkSize = 8;

// CRC-32 (the ISO-HDLC one of zlib and PNG), over bytes given in pieces.
class Crc32 {
 public:
  void add(const char* data, std::size_t n);
  std::uint32_t value() const { return crc_ ^ 0xFFFFFFFFu; }

 private:
  std::uint32_t crc_ = 0xFFFFFFFFu;
};

// The CRC-32 of bytes.
std::uint32_t crc32(const std::string& bytes);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_MODELFILE_H_
