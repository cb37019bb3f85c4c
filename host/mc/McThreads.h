#pragma once

/// Threads that the host's own parallel loops use. The settings store their value here; until then it is
/// the smaller of 8 and the number of cores.
int mcNumThreads();

/// n below 1 counts as 1. Main thread only.
void mcSetNumThreads(int n);
