#pragma once

#include "platform/file.h"

#include <atomic>
#include <cstddef>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <vector>

namespace qorcfg {

/// A file that has another content at each reading: the given texts, one after another, without any
/// timing. A pipe lies at its path, and before a reader gets its text to the end, another pipe has
/// taken the place for the next one.
class ScriptedJobs {
public:
    ScriptedJobs(std::string path, std::vector<std::string> texts)
        : path_(std::move(path)), texts_(std::move(texts))
    {
        place_pipe();
        thread_ = std::thread([this] { feed(); });
    }

    ~ScriptedJobs()
    {
        over_ = true;
        // The feeding thread may still wait for a reader.
        const Fd reader = open_file(path_, O_RDONLY | O_NONBLOCK);
        thread_.join();
    }

    ScriptedJobs(const ScriptedJobs &) = delete;
    ScriptedJobs &operator=(const ScriptedJobs &) = delete;

    /// How many texts have found a reader.
    std::size_t read() const { return read_; }

private:
    void place_pipe() const
    {
        const std::string next = path_ + ".next";
        ::mkfifo(next.c_str(), 0600);
        ::rename(next.c_str(), path_.c_str());
    }

    void feed()
    {
        for (const std::string &text : texts_) {
            const Fd pipe = open_file(path_, O_WRONLY);
            if (over_) {
                return;
            }
            place_pipe();
            ++read_;
            write_all(pipe.get(), text);
        }
    }

    std::string path_;
    std::vector<std::string> texts_;
    std::atomic<std::size_t> read_{0};
    std::atomic<bool> over_{false};
    std::thread thread_;
};

} // namespace qorcfg
