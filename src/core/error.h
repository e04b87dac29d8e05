#pragma once
// The error value every fallible operation of the core returns.

#include <expected>
#include <string>
#include <utility>

namespace zifora::core {

/// What went wrong, in words a user can act on, with its context
/// ("Zifora.zfdb4: object 812 refers to object 90000, but there are 5301").
struct Error {
    std::string message;
    /// A write whose new content is in place although a later step failed (the folder could
    /// not be synced): the old content is gone, the new one may not survive a crash.
    bool written = false;
};

template <typename T> using Result = std::expected<T, Error>;

[[nodiscard]] inline std::unexpected<Error> fail(std::string message) {
    return std::unexpected<Error>(Error{std::move(message)});
}

} // namespace zifora::core
