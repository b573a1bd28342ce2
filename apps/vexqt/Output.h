// Where the command writes: standard output, standard error, a file, or a text in a test.
#pragma once

#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace vexqt::cli {

/// Nobody reads any more: the run ends, and nothing is wrong.
class OutputClosed : public std::exception {};

/// What was written cannot have arrived, because a disk is full for instance.
class OutputError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A buffer in front of something that takes bytes. What was written last arrives with flush().
class Output {
public:
    static constexpr std::size_t kCapacity = std::size_t{256} * 1024;

    Output() : buffer_(std::make_unique_for_overwrite<char[]>(kCapacity)) {}
    virtual ~Output() = default;
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    /// \throws OutputClosed, OutputError
    void write(std::string_view bytes);
    void flush();
    /// Drops what did not arrive yet.
    void discard() { used_ = 0; }

    /// Space for that many bytes, at most kCapacity, to be filled in place before advance().
    char* room(std::size_t count) {
        if (kCapacity - used_ < count) flush();
        return buffer_.get() + used_;
    }
    /// Counts the bytes that were put there, up to their end.
    void advance(const char* end) { used_ = static_cast<std::size_t>(end - buffer_.get()); }

    virtual bool isTerminal() const { return false; }

protected:
    virtual void send(std::string_view bytes) = 0;

private:
    std::unique_ptr<char[]> buffer_;
    std::size_t used_ = 0;
};

/// An open file of this process, which stays open.
class DescriptorOutput final : public Output {
public:
    /// The name is for messages: "standard output".
    DescriptorOutput(int descriptor, std::string name)
        : descriptor_(descriptor), name_(std::move(name)) {}

    bool isTerminal() const override;

private:
    void send(std::string_view bytes) override;

    int descriptor_;
    std::string name_;
};

/// Keeps everything.
class TextOutput final : public Output {
public:
    const std::string& text() {
        flush();
        return text_;
    }

private:
    void send(std::string_view bytes) override { text_ += bytes; }

    std::string text_;
};

}  // namespace vexqt::cli
