#include "core/base/globals.h"

namespace qorcfg {

int is_base = 0;
int qorcfg_change_is_trigger = 0;
std::atomic<int> pth_count{0};

} // namespace qorcfg
