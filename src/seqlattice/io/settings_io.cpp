// Binary record and XML element of SeqDictionarySettings. Both store
// nLevels before higherLevelSize, the reverse of the record's own order, and
// leave `reserved` out.
#include <array>
#include <fstream>

#include "seqlattice/dictionary/dictionarysettings.h"
#include "seqlattice/io/internal/record_io.h"

namespace SEQUENCE_NAMESPACE_800 {
namespace {

constexpr char kTag[] = "DS";
constexpr const char* kElement = "DictionarySettings";
constexpr int kDepth = 2;
constexpr int kFields = 10;

// The fields in the order the saved forms hold them.
template <typename Settings>
auto fieldsInRecordOrder(Settings& s) {
  return std::array{&s.level0Size,     &s.level1Size, &s.level2Size,
                    &s.level3Size,     &s.level4Size, &s.level5Size,
                    &s.level6Size,     &s.level7Size, &s.nLevels,
                    &s.higherLevelSize};
}

std::array<int, kFields> valuesInRecordOrder(const SeqDictionarySettings& s) {
  std::array<int, kFields> values;
  const auto fields = fieldsInRecordOrder(s);
  for (int i = 0; i < kFields; ++i) values[i] = *fields[i];
  return values;
}

// Rejects settings from which no dictionary could be built (see
// RecordIO::settingsBuildable).
void checkBuildable(const SeqDictionarySettings& s, std::istream& in,
                    const RecordIO::Failure& failure) {
  if (!RecordIO::settingsBuildable(s, RecordIO::bytesLeft(in))) {
    RecordIO::raise(failure);
  }
}

}  // namespace

long SeqDictionarySettings::writeObject(std::fstream& out) const {
  RecordIO::BinaryWriter writer(out);
  writer.tag(kTag, false);
  const std::array<int, kFields> values = valuesInRecordOrder(*this);
  writer.bytes(values.data(), sizeof(int) * kFields);
  writer.finish();
  return 42;
}

long SeqDictionarySettings::readObject(std::fstream& in) {
  RecordIO::expectTag(in, kTag, false, RecordIO::kSettingsFailure);
  RecordIO::readFields(in, fieldsInRecordOrder(*this));
  checkBuildable(*this, in, RecordIO::kSettingsFailure);
  return 42;
}

long SeqDictionarySettings::writeObjectXML(std::ostream& out) const {
  const KvXML_850::XMLObj obj(kElement, kDepth);
  obj.StartObj(out);
  for (int value : valuesInRecordOrder(*this)) obj.WriteSubElement(out, value);
  obj.EndObj(out);
  return 12;
}

long SeqDictionarySettings::readObjectXML(std::ifstream& in) {
  const RecordIO::Failure& failure = RecordIO::kSettingsXMLFailure;
  const KvXML_850::XMLObj obj(kElement, kDepth);
  if (!obj.ParseStartObj(in)) RecordIO::raise(failure);
  for (int* field : fieldsInRecordOrder(*this)) {
    RecordIO::parseValue(obj, in, field, failure);
  }
  if (!obj.ParseEndObj(in)) RecordIO::raise(failure);
  checkBuildable(*this, in, failure);
  return 12;
}

}  // namespace SEQUENCE_NAMESPACE_800
