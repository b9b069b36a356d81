#include "seqlattice/dictionary/dictionarysettings.h"

namespace SEQUENCE_NAMESPACE_800 {

SeqDictionarySettings::SeqDictionarySettings()
    : level0Size(2),
      level1Size(11519),
      level2Size(23039),
      level3Size(23039),
      level4Size(23039),
      level5Size(23039),
      level6Size(11519),
      level7Size(11519),
      higherLevelSize(89),
      nLevels(10),
      reserved(0) {}

}  // namespace SEQUENCE_NAMESPACE_800
