#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace qorcfg {

/// The command-line tool. `arguments` begin with the program's name; `in` is read by `import -`.
/// Results go to `out`, errors to `err`, one line each. Returns the exit status: 0 done, 1 the
/// operation failed, 2 wrong usage. With --root the path root of the process is another afterwards.
int run_qorctl(const std::vector<std::string> &arguments, std::istream &in, std::ostream &out,
               std::ostream &err);

} // namespace qorcfg
