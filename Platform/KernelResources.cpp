#include "Platform/KernelResources.h"

#include <cblas.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <mutex>
#include <string_view>
#include <vector>

/// OpenBLAS's own store of buffers: what is given back stays mapped for whoever asks next.
extern "C" void* blas_memory_alloc(int where);
extern "C" void blas_memory_free(void* buffer);

namespace gavrel {

namespace {

constexpr std::size_t mebibyte = std::size_t{1} << 20;
constexpr std::size_t bufferSize = 144 * mebibyte;  // with what the kernel adds to a mapping
constexpr rlim_t threadSize = 160 * mebibyte;       // a buffer, a stack and what malloc keeps for a thread
constexpr rlim_t programSize = 1024 * mebibyte;     // leaves the threads time to map their buffers

// Setting of OpenBLAS.
std::array<char, 23> oneKernelThread{"OPENBLAS_NUM_THREADS=1"};

rlim_t readLimit(__rlimit_resource resource) {
  rlimit limit{};
  return ::getrlimit(resource, &limit) == 0 ? limit.rlim_cur : RLIM_INFINITY;
}

}  // namespace

void fitThreadsToMemory(int, char** arguments, char** environment) {
  const auto threads = static_cast<rlim_t>(std::max(::sysconf(_SC_NPROCESSORS_ONLN), 1L));
  const rlim_t limit = std::min(readLimit(RLIMIT_AS), readLimit(RLIMIT_DATA));
  if (limit >= programSize + threads * threadSize) return;

  const std::string_view wanted = oneKernelThread.data();
  const std::string_view name = wanted.substr(0, wanted.find('=') + 1);
  std::vector<char*> settings;
  for (char** setting = environment; *setting != nullptr; ++setting) {
    if (*setting == wanted) return;
    if (!std::string_view(*setting).starts_with(name)) settings.push_back(*setting);
  }
  settings.insert(settings.end(), {oneKernelThread.data(), nullptr});
  ::execve("/proc/self/exe", arguments, settings.data());
}

int reserveKernelBuffers(int threads) {
  static std::mutex mutex;
  static int mappedBuffers = 0;
  const std::lock_guard lock(mutex);
  openblas_set_num_threads(1);
  std::vector<void*> taken;
  while (std::ssize(taken) < threads) {
    if (std::ssize(taken) >= mappedBuffers) {
      void* const room = ::mmap(nullptr, bufferSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
      if (room == MAP_FAILED) break;
      ::munmap(room, bufferSize);
    }
    taken.push_back(blas_memory_alloc(0));
  }
  mappedBuffers = std::max(mappedBuffers, static_cast<int>(taken.size()));
  for (void* const buffer : taken) blas_memory_free(buffer);
  return static_cast<int>(taken.size());
}

}  // namespace gavrel
