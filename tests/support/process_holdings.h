#pragma once

#include <sys/types.h>

namespace qorcfg::test {

/// Private dirty memory of a process in KiB. (What is private and clean changes with the other
/// programs that map the same libraries.) Where qemu runs the programs of a 32-bit machine, at the
/// QEMU_GUEST_BASE of its environment, it is that machine's memory alone.
long private_kib(pid_t pid);

/// Open descriptors of a process.
long descriptors_of(pid_t pid);

/// Threads of a process, without the one that qemu has for itself.
long threads_of(pid_t pid);

} // namespace qorcfg::test
