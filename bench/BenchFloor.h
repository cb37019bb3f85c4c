#pragma once

// What no operation can beat: going through the same bytes and doing nothing else. Each function works
// on `threads` threads, in contiguous chunks as our own loops do. Memory is aligned to 8 bytes and a
// multiple of 8 long.

void benchRead(const void* memory, unsigned long bytes, int threads);
void benchWrite(void* memory, unsigned long bytes, int threads);
void benchCopy(void* target, const void* source, unsigned long bytes, int threads);
/// Reads and writes each word in place: what a change under a condition cannot avoid.
void benchUpdate(void* memory, unsigned long bytes, int threads);
