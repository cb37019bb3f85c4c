#pragma once

/// Smallest and largest finite value of an array; not-a-number and infinities do not count.
///
/// type     host element code
/// threads  number of threads that share the work; the result does not depend on it
/// returns false, and leaves the output alone, without a finite value or for an unknown code
bool hxValueRange(const void* data, unsigned long count, int type, int threads, double& min, double& max);
