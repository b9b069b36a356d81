// Umbrella header of the seqlattice library: includes every public header.
// Hosts may include it alone and use the short namespace alias below.
#ifndef SEQLATTICE_SEQLATTICE_H_
#define SEQLATTICE_SEQLATTICE_H_

// sequence model
#include "seqlattice/sequence/sequence.h"
#include "seqlattice/sequence/timeditemset.h"

// pattern keys
#include "seqlattice/pattern/ntsequence.h"
#include "seqlattice/pattern/packedsequence.h"

// dictionary
#include "seqlattice/dictionary/dictionarysettings.h"
#include "seqlattice/dictionary/sequencedictionary.h"
#include "seqlattice/dictionary/sequencesemilattice.h"

// model export
#include "seqlattice/export/collectitems.h"
#include "seqlattice/export/seqxmltags.h"

// reading transaction logs
#include "seqlattice/input/columnreader.h"
#include "seqlattice/input/csvreader.h"
#include "seqlattice/input/csvrecords.h"
#include "seqlattice/input/inputerror.h"
#include "seqlattice/input/itemlabels.h"
#include "seqlattice/input/patternfile.h"
#include "seqlattice/input/skippedrows.h"
#include "seqlattice/input/spmfreader.h"
#include "seqlattice/input/timeparse.h"

// mining
#include "seqlattice/mining/dictionaryfiller.h"
#include "seqlattice/mining/memorybudget.h"
#include "seqlattice/mining/miner.h"
#include "seqlattice/mining/miningerror.h"
#include "seqlattice/mining/patternbudget.h"
#include "seqlattice/mining/patterncounter.h"
#include "seqlattice/mining/patternorder.h"
#include "seqlattice/mining/patternrecords.h"
#include "seqlattice/mining/sequencedatabase.h"

// recommendations
#include "seqlattice/recommend/followermemo.h"
#include "seqlattice/recommend/latticeindex.h"
#include "seqlattice/recommend/nextitem.h"
#include "seqlattice/recommend/popularityweight.h"
#include "seqlattice/recommend/recommender.h"
#include "seqlattice/recommend/sequenceindex.h"

// rules and predictions
#include "seqlattice/rules/seqassociationrule.h"
#include "seqlattice/rules/seqcarmacmp.h"
#include "seqlattice/rules/seqconsequentdescript.h"

// store
#include "seqlattice/store/hashpairseq.h"
#include "seqlattice/store/sequencedescriptor.h"
#include "seqlattice/store/statsbucket.h"

// support
#include "seqlattice/support/kvpower.h"
#include "seqlattice/support/kvstatus.h"
#include "seqlattice/support/seqexceptions.h"
#include "seqlattice/support/xmldocument.h"
#include "seqlattice/support/xmlobj.h"

namespace seqlattice = SEQUENCE_NAMESPACE_800;

#endif  // SEQLATTICE_SEQLATTICE_H_
