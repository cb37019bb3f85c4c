#pragma once

/// Bytes of memory that the process holds now, and the most that it has held since the last call of
/// benchForgetPeak, which first gives freed memory back so that its reuse shows. In MiB, from the
/// kernel's own books.
double benchResidentMiB();
double benchPeakMiB();
void benchForgetPeak();
