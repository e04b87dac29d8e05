#pragma once
// Whole-file reads and crash-safe whole-file writes.

#include "core/error.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace zifora::core {

/// Files above this size are refused by `readWholeFile`.
inline constexpr uint64_t kMaxWholeFileSize = uint64_t{2} << 30; // 2 GiB

/// Replaces the file at `path` with `bytes` so that, whatever happens, the file is either
/// the old one or the new one, whole: the bytes go to a temporary file in the same folder,
/// which is synced and then renamed over the target, and the folder is synced last.
/// The new file keeps the permission bits of the file it replaces. If `path` is a symbolic
/// link, the file it points to is replaced and the link stays. On failure the temporary file
/// is removed, the old file is untouched, and the error names the path and the cause; only
/// when the folder could not be synced after the rename is the new file in place, and the
/// error says so with `Error::written`.
/// With `replace` false an existing file is never replaced: the write fails with EEXIST.
[[nodiscard]] Result<void> writeFileAtomically(const std::filesystem::path& path,
                                               std::string_view bytes, bool replace = true);

/// Removes the temporary files that writes to `path` left behind when their process died
/// (".NAME.tmp-PID-…" beside the file): those whose process is not running on this machine,
/// and any of that naming not changed for an hour. Other files are never touched. Returns
/// how many were removed.
size_t removeStaleTemporaryFiles(const std::filesystem::path& path);

/// The whole content of the file at `path`. A missing, unreadable or non-regular file, or
/// one larger than `kMaxWholeFileSize`, gives an error naming the path and the cause. A FIFO,
/// a socket or a device is refused without waiting for a writer or reading from it..
[[nodiscard]] Result<std::string> readWholeFile(const std::filesystem::path& path);

} // namespace zifora::core
