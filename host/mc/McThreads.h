#pragma once

/// Threads that the host's own parallel loops use. The settings store their value here; until then it is
/// the smaller of 8 and the number of cores.
int mcNumThreads();

/// The same for a loop over so many bytes: 1 where waking a team costs more than it saves.
int mcNumThreadsFor(unsigned long bytes);

/// n below 1 counts as 1. Main thread only.
void mcSetNumThreads(int n);
