#include "platform/uci/words.h"

#include <functional>

namespace qorcfg::uci {

namespace {

bool is_blank(char c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

} // namespace

bool TextSource::next_line(std::string &buffer)
{
    if (rest_.empty()) {
        return false;
    }
    const auto newline = rest_.find('\n');
    const auto length = newline == std::string_view::npos ? rest_.size() : newline + 1;
    buffer.append(rest_.substr(0, length));
    rest_.remove_prefix(length);
    return true;
}

bool StreamSource::next_line(std::string &buffer)
{
    bool any = false;
    for (int c = std::getc(stream_); c != EOF; c = std::getc(stream_)) {
        any = true;
        buffer.push_back(static_cast<char>(c));
        if (c == '\n') {
            break;
        }
    }
    return any;
}

bool Words::read_line(LineSource &source)
{
    if (!source.next_line(buffer_)) {
        return false;
    }
    line_ += buffer_.back() == '\n' ? 1 : 0;
    return true;
}

bool Words::next_line(LineSource &source)
{
    buffer_.clear();
    position_ = 0;
    command_over_ = false;
    return read_line(source);
}

std::string_view Words::keyword()
{
    command_over_ = false;
    while (!at_end() && is_blank(buffer_[position_])) {
        ++position_;
    }
    const std::string_view rest = std::string_view(buffer_).substr(position_);
    return rest.starts_with('#') ? std::string_view() : rest.substr(0, rest.find_first_of(" \t"));
}

void Words::skip(std::string_view keyword)
{
    position_ += keyword.size();
    position_ += at_end() ? 0 : 1;
}

void Words::skip_blanks(LineSource &source)
{
    for (;;) {
        while (!at_end() && is_blank(buffer_[position_])) {
            ++position_;
        }
        if (buffer_.compare(position_, 2, "\\\n") != 0) {
            return;
        }
        position_ += 2;
        read_line(source);
    }
}

void Words::escaped(LineSource &source, std::string &word)
{
    ++position_;
    if (at_end()) {
        return;
    }
    const char c = buffer_[position_++];
    if (c != '\n') {
        word.push_back(c);
    } else if (at_end()) {
        read_line(source);
    }
}

bool Words::quoted(LineSource &source, char quote, std::string &word)
{
    ++position_;
    for (;;) {
        if (at_end() && !read_line(source)) {
            open_quote_ = quote;
            return false;
        }
        const char c = buffer_[position_];
        if (c == quote) {
            ++position_;
            return true;
        }
        if (c == '\\' && quote == '"') {
            escaped(source, word);
        } else {
            word.push_back(c);
            ++position_;
        }
    }
}

bool Words::word(LineSource &source, std::string &word)
{
    word.clear();
    if (command_over_) {
        return true;
    }
    skip_blanks(source);
    const std::size_t start = position_;
    while (!at_end()) {
        const char c = buffer_[position_];
        if (is_blank(c)) {
            ++position_;
            return true;
        }
        if (c == '#') {
            drop_line();
            return true;
        }
        if (c == ';') {
            const bool bare = position_ - start == word.size();
            if (position_ == start) {
                ++position_;
                command_over_ = true;
            } else if (bare) {
                // Other programs of the device drop what is glued to a bare word; so must we, or
                // one file would mean two things.
                drop_line();
            }
            return true;
        }
        if (c == '\'' || c == '"') {
            if (!quoted(source, c, word)) {
                return false;
            }
        } else if (c == '\\') {
            escaped(source, word);
        } else {
            word.push_back(c);
            ++position_;
        }
    }
    return true;
}

bool Words::go_to(const char *rest)
{
    const char *const begin = buffer_.data();
    if (std::less<>{}(rest, begin) || std::less<>{}(begin + buffer_.size(), rest)) {
        return false;
    }
    position_ = static_cast<std::size_t>(rest - begin);
    return true;
}

} // namespace qorcfg::uci
