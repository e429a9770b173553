#pragma once

#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>

namespace qorcfg::uci {

/// Where lines come from. `next_line` appends one line, with its newline where there is one; false
/// at the end.
class LineSource {
public:
    LineSource() = default;
    LineSource(const LineSource &) = delete;
    LineSource &operator=(const LineSource &) = delete;
    virtual ~LineSource() = default;
    virtual bool next_line(std::string &buffer) = 0;
};

/// Lines of a text that the caller keeps.
class TextSource : public LineSource {
public:
    explicit TextSource(std::string_view text) : rest_(text) {}
    bool next_line(std::string &buffer) override;

private:
    std::string_view rest_;
};

/// Lines of a stream, read no further than they are asked for.
class StreamSource : public LineSource {
public:
    explicit StreamSource(FILE *stream) : stream_(stream) {}
    bool next_line(std::string &buffer) override;

private:
    FILE *stream_;
};

/// Cuts lines into words, with the quoting that configuration files, change files and batches
/// share:
/// '...' is literal, "..." and bare text know "\c", a backslash at the end of a line joins the
/// next,
/// "#" begins a comment also inside a bare word, and ";" ends the command.
class Words {
public:
    /// Reads the next line in place of the present one. False at the end of the text.
    bool next_line(LineSource &source);
    /// The bare word at the position, up to a blank, TAB or the end of the line; empty at the end
    /// or before a comment. Does not move; `skip` goes past it and the blank after it.
    std::string_view keyword();
    void skip(std::string_view keyword);
    /// The next word of the command, empty at its end. False when the text ends inside quotes.
    bool word(LineSource &source, std::string &word);

    bool at_end() const { return position_ >= buffer_.size(); }
    /// Goes past everything that is left of the line.
    void drop_line() { position_ = buffer_.size(); }
    /// Lines read so far, and the offset in the line (in all lines of one quoted text).
    int line() const { return line_; }
    std::size_t byte() const { return position_; }
    /// The quote that the text ended in.
    char open_quote() const { return open_quote_; }

    /// The rest of the line as a C string; a position in it can be given back to `go_to`.
    char *rest() { return buffer_.data() + position_; }
    bool go_to(const char *rest);

private:
    bool read_line(LineSource &source);
    void skip_blanks(LineSource &source);
    bool quoted(LineSource &source, char quote, std::string &word);
    void escaped(LineSource &source, std::string &word);

    std::string buffer_;
    std::size_t position_ = 0;
    int line_ = 0;
    bool command_over_ = false;
    char open_quote_ = 0;
};

} // namespace qorcfg::uci
