#pragma once

namespace gavrel {

/// The threads and the memory of OpenBLAS's dense kernels.
///
/// OpenBLAS starts its threads when the program is loaded. Each of them, and the one that calls it, maps a buffer of
/// 128 MiB; where the address space has no room for it, the thread tries again for ever, and the program cannot end.

/// Starts the running program anew with one thread if the limits of its address space may not hold the buffers of all.
/// Returns if they do, and if it cannot be started anew. To be called, with what `main` gets, before libraries start
/// their threads: by a program's ".preinit_array".
void fitThreadsToMemory(int count, char** arguments, char** environment);

/// Has OpenBLAS compute in the threads that call it, and map the buffers of so many that do so at once, which it keeps.
/// Returns for how many there is room, at most `threads`; 0 if there is none.
[[nodiscard]] int reserveKernelBuffers(int threads);

}  // namespace gavrel
