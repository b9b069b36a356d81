// Removes the tool's temporary output files when it is stopped by SIGINT,
// SIGTERM or SIGHUP, so that an interrupted save leaves the previous file as
// it was and no hidden ".NAME.tmp-XXXXXX" beside it. The handler unlinks the
// registered paths (async-signal-safe: unlink on fixed buffers only), then
// restores the default action and raises the signal again, so the tool still
// ends as killed by it. A signal the tool was started with ignored (nohup)
// stays ignored. kill -9 cannot be caught; its temporary file remains.
//
// Registration is meant for the main thread; at most kTempSlots paths at a
// time.
#ifndef SEQLATTICE_CLI_SUPPORT_TEMPCLEANUP_H_
#define SEQLATTICE_CLI_SUPPORT_TEMPCLEANUP_H_

#include <string>

namespace seqlattice_cli {

constexpr int kTempSlots = 4;

// Installs the handlers (once) and registers path; returns its slot, or -1
// when every slot is taken or the path is too long (the file is then only
// removed by the normal paths).
int registerTempFile(const std::string& path);

// Forgets the slot's path (after the file was renamed or removed).
void unregisterTempFile(int slot);

}  // namespace seqlattice_cli

#endif  // SEQLATTICE_CLI_SUPPORT_TEMPCLEANUP_H_
