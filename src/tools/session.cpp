#include "tools/session.h"

#include <algorithm>
#include <ostream>

namespace qorcfg {

void Session::say(std::string_view message)
{
    std::string line(message);
    std::replace_if(
        line.begin(), line.end(),
        [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; }, '?');
    err << "qorctl: " << line << std::endl;
}

int Session::fail(std::string_view message)
{
    say(message);
    return exit_failed;
}

int Session::misuse(std::string_view message)
{
    say(message);
    return exit_misused;
}

std::string shown_name(std::string_view name)
{
    constexpr std::size_t enough = 80;
    return std::string(name.substr(0, enough)) + (name.size() > enough ? "..." : "");
}

} // namespace qorcfg
