// A host program built against the installed library only.
#include <iostream>

#include "seqlattice/seqlattice.h"

int main() {
  KvCommon_850::KvStatus status;
  if (!status.IsOK()) return 1;
  std::cout << "ok\n";
  return 0;
}
