// SeqDictionarySettings: the record a SequenceDictionary is built from. It
// gives the initial bucket count of each level table and the number of
// levels. It is a plain value, passed and stored by copy; it owns nothing.
//
// `reserved` is carried along with the record but never read and never saved.
// The saved forms write `nLevels` before `higherLevelSize`.
#ifndef SEQLATTICE_DICTIONARY_DICTIONARYSETTINGS_H_
#define SEQLATTICE_DICTIONARY_DICTIONARYSETTINGS_H_

#include <fstream>
#include <ostream>

namespace SEQUENCE_NAMESPACE_800 {

class SeqDictionarySettings {
 public:
  // The defaults below; `reserved` is zeroed.
  SeqDictionarySettings();

  // Persistence: binary record and XML element "DictionarySettings".
  long writeObject(std::fstream& out) const;
  long readObject(std::fstream& in);
  long writeObjectXML(std::ostream& out) const;
  long readObjectXML(std::ifstream& in);

  int level0Size;       // initial buckets of level 0 (default 2)
  int level1Size;       // level 1 (default 11519)
  int level2Size;       // level 2 (default 23039)
  int level3Size;       // level 3 (default 23039)
  int level4Size;       // level 4 (default 23039)
  int level5Size;       // level 5 (default 23039)
  int level6Size;       // level 6 (default 11519)
  int level7Size;       // level 7 (default 11519)
  int higherLevelSize;  // every level from 8 upward (default 89)
  int nLevels;  // number of tables: patterns of 0 .. nLevels-1 items (10)
  int reserved;
};

}  // namespace SEQUENCE_NAMESPACE_800

#endif  // SEQLATTICE_DICTIONARY_DICTIONARYSETTINGS_H_
