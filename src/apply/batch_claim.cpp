#include "apply/batch_claim.h"

#include "platform/file.h"
#include "platform/file_calls.h"

#include <cerrno>
#include <sys/file.h>
#include <unistd.h>

namespace qorcfg {

bool change_state(BatchFile &file, BatchState state)
{
    const std::string target = file.path(state);
    if (file_calls::rename(file.path().c_str(), target.c_str()) != 0) {
        return false;
    }
    file.state = state;
    sync_folder_of(target);
    return true;
}

bool claim(BatchFile &file)
{
    // Writers hold this lock for the length of a transaction.
    const Fd writers = lock_path(file.folder, LOCK_EX);
    return writers && change_state(file, BatchState::claimed);
}

bool remove_batch(const BatchFile &file)
{
    return file_calls::unlink(file.path().c_str()) == 0;
}

bool keep_failed_copy(const BatchFile &file)
{
    const std::string kept = file.failed_path();
    return (file_calls::unlink(kept.c_str()) == 0 || errno == ENOENT) &&
           file_calls::link(file.path().c_str(), kept.c_str()) == 0;
}

bool put_aside(const BatchFile &file)
{
    return file_calls::rename(file.path().c_str(), file.failed_path().c_str()) == 0;
}

} // namespace qorcfg
