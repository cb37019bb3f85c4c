#pragma once

/// Memory of volumes. It comes from `malloc` and is given back with `free`, wherever a buffer changes owner.

/// No process can map more bytes. Asked for more, the allocators of some checking tools end the program
/// instead of reporting a failure, so requests are compared with this first.
inline constexpr unsigned long kMcAddressSpace = 1ul << 47;

/// Product of a count and an element size; the largest number if it does not fit.
unsigned long mcByteCount(unsigned long count, unsigned long elementSize);

/// Bytes of a volume of dims[0] x dims[1] x dims[2] elements, saturating as above.
unsigned long mcVolumeBytes(const unsigned long* dims, unsigned long elementSize);

/// Uninitialised memory; never null, also for 0 bytes.
/// throws  McMemoryException with the size asked for
void* mcAllocate(unsigned long bytes);

/// The same, with all bytes 0. Pages of a large block cost nothing until they are touched.
void* mcAllocateZeroed(unsigned long bytes);

/// The same for the voxels of a volume, which are also walked across its rows, one page per step: in large
/// pages, as far as the system has them, so that such a walk waits for less.
void* mcAllocateVolume(unsigned long bytes);

/// Asks the system for large pages in a block that has not been touched yet; one that has been is rebuilt
/// when the system finds the time. Its contents stay. Nothing happens to small blocks.
void mcPreferLargePages(void* memory, unsigned long bytes);
