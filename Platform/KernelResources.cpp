#include "Platform/KernelResources.h"

#include <cblas.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <string_view>
#include <vector>

namespace gavrel {

namespace {

constexpr std::size_t mebibyte = std::size_t{1} << 20;
constexpr std::size_t bufferSize = 144 * mebibyte;  // with what the kernel adds to a mapping
constexpr rlim_t threadSize = 160 * mebibyte;       // a buffer, a stack and what malloc keeps for a thread
constexpr rlim_t programSize = 1024 * mebibyte;     // leaves the threads time to map their buffers

/// Below this many operations the threads cost more than they save.
constexpr double threadedOperations = 2e9;

// Settings of OpenBLAS and of OpenMP.
std::array<char, 23> oneKernelThread{"OPENBLAS_NUM_THREADS=1"};
std::array<char, 19> oneLoopThread{"OMP_THREAD_LIMIT=1"};

rlim_t readLimit(__rlimit_resource resource) {
  rlimit limit{};
  return ::getrlimit(resource, &limit) == 0 ? limit.rlim_cur : RLIM_INFINITY;
}

}  // namespace

void fitThreadsToMemory(int, char** arguments, char** environment) {
  const auto threads = static_cast<rlim_t>(std::max(::sysconf(_SC_NPROCESSORS_ONLN), 1L));
  const rlim_t limit = std::min(readLimit(RLIMIT_AS), readLimit(RLIMIT_DATA));
  if (limit >= programSize + threads * threadSize) return;

  std::vector<char*> settings;
  int asWanted = 0;
  for (char** setting = environment; *setting != nullptr; ++setting) {
    const std::string_view text = *setting;
    const auto sets = [text](const char* wanted) {
      const std::string_view name(wanted);
      return text.starts_with(name.substr(0, name.find('=') + 1));
    };
    if (text == oneKernelThread.data() || text == oneLoopThread.data()) ++asWanted;
    if (!sets(oneKernelThread.data()) && !sets(oneLoopThread.data())) settings.push_back(*setting);
  }
  if (asWanted == 2) return;
  settings.insert(settings.end(), {oneKernelThread.data(), oneLoopThread.data(), nullptr});
  ::execve("/proc/self/exe", arguments, settings.data());
}

bool reserveKernelBuffer() {
  static std::atomic<bool> reserved = false;
  if (reserved) return true;
  void* const room = ::mmap(nullptr, bufferSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (room == MAP_FAILED) return false;
  ::munmap(room, bufferSize);
  const double one = 1;
  double square = 0;
  cblas_dsyrk(CblasColMajor, CblasLower, CblasNoTrans, 1, 1, 1, &one, 1, 0, &square, 1);
  reserved = true;
  return true;
}

void setKernelThreads(double operations) {
  static const int most = openblas_get_num_threads();  // more would be started now
  openblas_set_num_threads(operations < threadedOperations ? 1 : most);
}

}  // namespace gavrel
