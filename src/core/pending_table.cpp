#include "core/pending_table.h"

namespace qorcfg {

void PendingTable::add(PendingChange change)
{
    if (write_index_ >= pending_limit) {
        write_index_ = 0;
    }
    slots_[write_index_++] = change;
    if (count_ < pending_limit) {
        count_ = write_index_;
    }
}

void PendingTable::clear()
{
    write_index_ = 0;
    count_ = 0;
}

} // namespace qorcfg
