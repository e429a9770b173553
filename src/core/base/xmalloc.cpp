#include "core/base/xmalloc.h"

#include "core/base/log.h"

namespace qorcfg {

Memory xmalloc(std::size_t size)
{
    Memory memory(std::malloc(size)); // NOLINT(cppcoreguidelines-no-malloc)
    if (!memory) {
        QORCFG_LOG("Failed to allocate %d bytes", static_cast<int>(size));
    }
    return memory;
}

} // namespace qorcfg
