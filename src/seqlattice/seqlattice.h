// Umbrella header of the seqlattice library: includes every public header.
// Hosts may include it alone and use the short namespace alias below.
#ifndef SEQLATTICE_SEQLATTICE_H_
#define SEQLATTICE_SEQLATTICE_H_

// mining
#include "seqlattice/mining/memorybudget.h"
#include "seqlattice/mining/miner.h"
#include "seqlattice/mining/miningerror.h"
#include "seqlattice/mining/sequencedatabase.h"
#include "seqlattice/mining/spmfreader.h"

// support
#include "seqlattice/support/kvpower.h"
#include "seqlattice/support/kvstatus.h"
#include "seqlattice/support/seqexceptions.h"
#include "seqlattice/support/xmldocument.h"
#include "seqlattice/support/xmlobj.h"

namespace seqlattice = SEQUENCE_NAMESPACE_800;

#endif  // SEQLATTICE_SEQLATTICE_H_
