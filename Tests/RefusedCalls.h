#pragma once

#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/file.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>

namespace gavrel {

/// System calls that some file systems do not have.
struct RefusedCall {
  unsigned number;
  int argument;   ///< its flags
  unsigned bits;  ///< of which one makes it a call to refuse
  unsigned error;
};
inline constexpr RefusedCall locks{SYS_flock, 1, LOCK_EX, ENOLCK};
inline constexpr RefusedCall unnamedFiles{SYS_openat, 2, O_TMPFILE & ~O_DIRECTORY, EOPNOTSUPP};
inline constexpr RefusedCall namesForUnnamedFiles{SYS_linkat, 4, AT_SYMLINK_FOLLOW, EPERM};

/// Has the system refuse this process, and what it starts, such calls from now on.
inline void refuse(const RefusedCall& call) {
  const auto argument = static_cast<unsigned>(offsetof(seccomp_data, args) +
                                              sizeof(std::uint64_t) * static_cast<unsigned>(call.argument));
  std::array<sock_filter, 6> filter{sock_filter BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
                                    sock_filter BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, call.number, 0, 3),
                                    sock_filter BPF_STMT(BPF_LD | BPF_W | BPF_ABS, argument),
                                    sock_filter BPF_JUMP(BPF_JMP | BPF_JSET | BPF_K, call.bits, 0, 1),
                                    sock_filter BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | call.error),
                                    sock_filter BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW)};
  const sock_fprog program{filter.size(), filter.data()};
  if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 || ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0)
    ::_exit(6);
}

/// For a child process: file permissions do not bind the superuser, and no fault may let it replace a device.
inline void becomeOrdinaryUser() {
  constexpr uid_t nobody = 65534;
  if (::geteuid() == 0 && ::setuid(nobody) != 0) ::_exit(4);
}

}  // namespace gavrel
