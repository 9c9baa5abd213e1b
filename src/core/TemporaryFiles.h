#pragma once

#include <QString>

#include "core/os/FileSystem.h"

namespace yunqi {

// The temporary files of the outputs, in a process-wide table that an end of
// the process by a signal or a time limit empties: none is left behind.

// A fresh file "base" made unique in folder (its name in made), registered
// for the removal at the end in the same step, so that no end event slips in
// between; slot is -1 when the table is full (the destructors remove it then).
// Returns os::kNoHandle with error set on failure.
os::Handle CreateRegisteredTemporary(const QString& folder, const QString& base, QString* made,
                                     os::Error* error, int* slot);
// The file is gone or renamed: the table forgets it.
void UnregisterTemporary(int slot);

// Once per process, from main: the temporary files still registered are
// removed when SIGINT, SIGTERM, SIGHUP, SIGPIPE or SIGABRT ends the process (a signal
// ignored at start stays ignored), and SIGXFSZ is ignored, so that a file-size
// limit fails the write, which is told, instead of ending the process silently.
// A temporary file is registered before any of these signals can act on it,
// on whichever thread it comes.
void InstallOutputCleanup();
// Removes every registered temporary file now, for an end of the process that
// skips the destructors.
void RemoveTemporaryOutputs();
// The same for an end decided on a thread of its own (a time limit) while other
// threads may be making or writing outputs: as the end handler does, a file
// being made is registered first and no new one is made from then on, so the
// process must end right after.
void RemoveTemporaryOutputsFromAnyThread();

}  // namespace yunqi
