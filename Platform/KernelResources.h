#pragma once

namespace gavrel {

/// The threads and the memory of OpenBLAS's dense kernels and of the loops that CHOLMOD runs by OpenMP.
///
/// OpenBLAS starts its threads when the program is loaded. Each of them, and the one that calls it, maps a buffer of
/// 128 MiB; where the address space has no room for it, the thread tries again for ever, and the program cannot end.

/// Starts the running program anew with one thread if the limits of its address space may not hold the buffers of all.
/// Returns if they do, and if it cannot be started anew. To be called, with what `main` gets, before libraries start
/// their threads: by a program's ".preinit_array".
void fitThreadsToMemory(int count, char** arguments, char** environment);

/// Has OpenBLAS map the buffer of the calling thread, which it keeps; false where there is no room for it.
[[nodiscard]] bool reserveKernelBuffer();

/// Sets how many threads the kernels use for a factorization of so many operations.
void setKernelThreads(double operations);

}  // namespace gavrel
