#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>

namespace qorcfg {

struct FreeMemory {
    void operator()(void *memory) const noexcept
    {
        std::free(memory); // NOLINT(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory)
    }
};

/// Memory from malloc that is freed with its owner.
using Memory = std::unique_ptr<void, FreeMemory>;

/// Allocates `size` bytes. Where there is no memory the log says "Failed to allocate %d bytes" and
/// the result is null: the caller goes on without, the daemon does not end.
Memory xmalloc(std::size_t size);

} // namespace qorcfg
