#include "support/modelfile.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <memory>
#include <new>
#include <sstream>

#include "seqlattice/support/seqexceptions.h"
#include "support/atomicfile.h"
#include "support/clierror.h"
#include "support/filebytes.h"
#include "support/memorybuffer.h"
#include "support/modelcheck.h"

namespace seqlattice_cli {

namespace {

using SEQUENCE_NAMESPACE_800::SequenceDictionary;
using SEQUENCE_NAMESPACE_800::SeqExceptions::IOException;

const std::string kEndMark = "SQLMODL1";
const std::string kXmlTrailerStart = "<!-- seqlattice model trailer: ";
const std::string kXmlTrailerEnd = " -->\n";
const char kBase64[] =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

std::string base64Encode(const std::string& bytes) {
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    std::uint32_t n = static_cast<unsigned char>(bytes[i]) << 16;
    if (i + 1 < bytes.size())
      n |= static_cast<unsigned char>(bytes[i + 1]) << 8;
    if (i + 2 < bytes.size()) n |= static_cast<unsigned char>(bytes[i + 2]);
    text += kBase64[(n >> 18) & 63];
    text += kBase64[(n >> 12) & 63];
    text += i + 1 < bytes.size() ? kBase64[(n >> 6) & 63] : '=';
    text += i + 2 < bytes.size() ? kBase64[n & 63] : '=';
  }
  return text;
}

// False when text is not base64.
bool base64Decode(const std::string& text, std::string* bytes) {
  if (text.size() % 4 != 0) return false;
  for (std::size_t i = 0; i < text.size(); i += 4) {
    int padding = 0;
    if (i + 4 == text.size() && text[i + 3] == '=') {
      padding = text[i + 2] == '=' ? 2 : 1;
    }
    std::uint32_t n = 0;
    for (int k = 0; k < 4; ++k) {
      n <<= 6;
      if (k >= 4 - padding) continue;
      char c = text[i + static_cast<std::size_t>(k)];
      const char* at = c == '\0' ? nullptr : std::strchr(kBase64, c);
      if (at == nullptr) return false;
      n |= static_cast<std::uint32_t>(at - kBase64);
    }
    *bytes += static_cast<char>((n >> 16) & 0xFF);
    if (padding < 2) *bytes += static_cast<char>((n >> 8) & 0xFF);
    if (padding < 1) *bytes += static_cast<char>(n & 0xFF);
  }
  return true;
}

std::string readAll(std::istream& in) {
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

// CRC-32 of the first `length` bytes of in, read a megabyte at a time; false
// when the stream holds fewer.
bool crc32OfPrefix(std::istream& in, std::streamoff length,
                   std::uint32_t* crc) {
  in.seekg(0);
  Crc32 sum;
  std::string buffer(std::size_t{1} << 20, '\0');
  while (length > 0 && in) {
    const std::streamsize step =
        static_cast<std::streamsize>(std::min<std::streamoff>(
            length, static_cast<std::streamoff>(buffer.size())));
    in.read(&buffer[0], step);
    sum.add(buffer.data(), static_cast<std::size_t>(in.gcount()));
    length -= in.gcount();
  }
  *crc = sum.value();
  return length == 0;
}

[[noreturn]] void damaged(const std::string& path, const std::string& why) {
  failInput(path + ": damaged dictionary record (" + why + ")");
}

[[noreturn]] void notAModel(const std::string& path, const std::string& why) {
  failInput(path + ": not a seqlattice model file (" + why + ")");
}

// Runs a reader of the library, turning its failures into CliError.
template <typename Read>
void readDictionary(const std::string& path, Read read) {
  try {
    if (!read()) damaged(path, "unreadable");
  } catch (IOException* e) {
    delete e;
    damaged(path, "unreadable");
  } catch (const std::bad_alloc&) {
    damaged(path, "too large to load");
  } catch (const SEQUENCE_NAMESPACE_800::SeqExceptions::DictionaryFailure&) {
    damaged(path, "too large to load");
  } catch (const CliError&) {
    throw;
  } catch (const std::exception&) {
    damaged(path, "unreadable");
  }
}

// The 8-byte little-endian number at p.
std::uint64_t littleEndian64(const char* p) {
  std::uint64_t n = 0;
  for (int i = 7; i >= 0; --i) n = (n << 8) | static_cast<unsigned char>(p[i]);
  return n;
}

// The file is read whole once its trailer is found where the end says: the
// trailer, the checksum and the dictionary record are then taken from
// memory, and the library's reader gets a stream over those bytes
// (MemoryBuffer) instead of a file buffer, which it would call for every
// field of every pattern.
void loadBinary(const std::string& path, std::fstream& file,
                std::streamoff size, Model* model) {
  const std::size_t bytes = static_cast<std::size_t>(size);
  char tail[16];
  file.seekg(size - 16);
  file.read(tail, 16);
  const std::uint64_t trailerSize = littleEndian64(tail);
  if (std::string(tail + 8, 8) != kEndMark) notAModel(path, "no end mark");
  if (trailerSize > bytes - 16) notAModel(path, "bad trailer length");
  const std::size_t recordSize = bytes - 16 - trailerSize;
  // The length is only trusted once the trailer's own mark is where it
  // points: a forged length must not make the loader allocate the file.
  char mark[kTrailerMarkSize];
  file.seekg(static_cast<std::streamoff>(recordSize));
  if (trailerSize < kTrailerMarkSize || !file.read(mark, kTrailerMarkSize) ||
      std::string(mark, kTrailerMarkSize) != kTrailerMark) {
    notAModel(path, "bad trailer length");
  }
  const FileBytes data(path, file, bytes);
  const std::uint32_t checksum = decodeTrailer(
      std::string_view(data.data() + recordSize, trailerSize), path, model);
  Crc32 crc;
  crc.add(data.data(), recordSize);
  if (crc.value() != checksum) damaged(path, "checksum mismatch");

  // The stream holds the whole file, as a file stream would: a damaged
  // record reads on into the trailer and fails as it would there.
  MemoryBuffer whole(data.data(), bytes);
  std::fstream in;
  // The reader takes an fstream; its stream buffer is swapped for the one
  // over memory (the base class's setter, which fstream's getter hides).
  static_cast<std::ios&>(in).rdbuf(&whole);
  readDictionary(path, [&] {
    model->dictionary->readObject(in);
    return in.good() && in.tellg() == static_cast<std::streamoff>(recordSize);
  });
}

void loadXml(const std::string& path, std::streamoff size, Model* model) {
  std::ifstream in(path, std::ios::binary);
  std::string text = readAll(in);
  std::string::size_type start = text.rfind(kXmlTrailerStart);
  if (start == std::string::npos ||
      text.compare(text.size() - kXmlTrailerEnd.size(), kXmlTrailerEnd.size(),
                   kXmlTrailerEnd) != 0) {
    notAModel(path, "no model trailer");
  }
  std::string::size_type from = start + kXmlTrailerStart.size();
  std::string trailer;
  if (!base64Decode(text.substr(from, static_cast<std::size_t>(size) -
                                          kXmlTrailerEnd.size() - from),
                    &trailer)) {
    notAModel(path, "damaged model trailer");
  }
  std::uint32_t checksum = decodeTrailer(trailer, path, model);
  // The dictionary element ends before the line break that opens the
  // trailer's line.
  if (start == 0 || crc32(text.substr(0, start - 1)) != checksum) {
    damaged(path, "checksum mismatch");
  }
  in.clear();
  in.seekg(0);
  readDictionary(path, [&] {
    return model->dictionary->readObjectXML(in) != 0 &&
           in.tellg() <= static_cast<std::streamoff>(start);
  });
}

}  // namespace

Model loadModel(const std::string& path) {
  // A directory "opens" and reads as empty; a FIFO would block until a
  // writer comes, a device could read forever.
  struct stat info;
  if (stat(path.c_str(), &info) != 0) {
    failInput(path + ": cannot open: " + std::strerror(errno));
  }
  if (S_ISDIR(info.st_mode)) failInput(path + ": is a directory");
  if (!S_ISREG(info.st_mode)) failInput(path + ": is not a regular file");
  std::fstream in(path, std::ios::in | std::ios::binary);
  if (!in) failInput(path + ": cannot open: " + std::strerror(errno));
  in.seekg(0, std::ios::end);
  std::streamoff size = in.tellg();
  in.seekg(0);
  if (size < 16) notAModel(path, "too short");
  Model model;
  model.dictionary = std::make_unique<SequenceDictionary>();
  char first = static_cast<char>(in.peek());
  model.xml = first == '<';
  if (model.xml) {
    loadXml(path, size, &model);
  } else {
    loadBinary(path, in, size, &model);
  }
  if (!model.dictionary->isLatticeBuilt()) {
    failInput(path + ": the model's lattice is not built");
  }
  std::string problem = inconsistentPattern(*model.dictionary);
  if (!problem.empty()) damaged(path, problem);
  return model;
}

void saveModel(const Model& model, const std::string& path, bool xml) {
  AtomicFile file(path);
  std::fstream& out = file.stream();
  try {
    if (xml) {
      model.dictionary->writeObjectXML(out);
    } else {
      model.dictionary->writeObject(out);
    }
  } catch (IOException* e) {
    delete e;
    failInput(path + ": cannot write the model");
  }
  // The checksum covers the dictionary part as it went to the file. A full
  // disk shows here: a failed stream has no position to take a size from.
  out.flush();
  if (!out.good()) file.failWrite();
  std::streamoff recordSize = out.tellp();
  std::uint32_t checksum = 0;
  if (recordSize < 0 || !crc32OfPrefix(out, recordSize, &checksum)) {
    file.failWrite();
  }
  out.clear();
  out.seekp(recordSize);
  std::string trailer = encodeTrailer(model, checksum);
  if (xml) {
    out << "\n" << kXmlTrailerStart << base64Encode(trailer) << kXmlTrailerEnd;
  } else {
    std::string tail;
    for (int i = 0; i < 8; ++i) {
      tail += static_cast<char>((trailer.size() >> (8 * i)) & 0xFF);
    }
    out << trailer << tail << kEndMark;
  }
  file.commit();
}

}  // namespace seqlattice_cli
