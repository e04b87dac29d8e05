#include "core/atomicfile.h"

#include <cstdio>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zifora::core {

namespace fs = std::filesystem;

namespace {

std::string describe(const fs::path& path, std::string_view what, int err) {
    std::string message = path.string();
    message += ": ";
    message += what;
    message += ": ";
    message += std::generic_category().message(err);
    return message;
}

/// Closes a descriptor once, keeping the error of an explicit close.
class FileDescriptor {
  public:
    explicit FileDescriptor(int fd) : m_fd(fd) {}
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor() {
        if (m_fd >= 0) ::close(m_fd);
    }
    [[nodiscard]] int get() const { return m_fd; }
    [[nodiscard]] bool valid() const { return m_fd >= 0; }
    /// Closes now; false (with errno set) if the close reported an error.
    bool close() {
        int fd = std::exchange(m_fd, -1);
        return fd < 0 || ::close(fd) == 0;
    }

  private:
    int m_fd;
};

/// A temporary file that removes itself unless it was renamed into place.
class TemporaryFile {
  public:
    TemporaryFile() = default;
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        if (!m_path.empty()) ::unlink(m_path.c_str());
    }
    void track(fs::path path) { m_path = std::move(path); }
    void release() { m_path.clear(); }

  private:
    fs::path m_path;
};

/// The file a write to `path` must replace: symbolic links are followed, so that a link
/// keeps pointing at the new content.
fs::path resolveTarget(const fs::path& path) {
    fs::path target = path;
    std::error_code ec;
    for (int hops = 0; hops < 40 && fs::is_symlink(fs::symlink_status(target, ec)); ++hops) {
        fs::path link = fs::read_symlink(target, ec);
        if (ec) break;
        target = link.is_absolute() ? link : target.parent_path() / link;
    }
    return target;
}

/// A name in the same folder that no other writer uses at the same moment.
fs::path temporaryName(const fs::path& target, unsigned attempt) {
    static std::atomic<unsigned> counter{0};
    auto ticks = std::chrono::steady_clock::now().time_since_epoch().count();
    char suffix[96];
    std::snprintf(suffix, sizeof suffix, ".tmp-%ld-%u-%llu", static_cast<long>(::getpid()),
                  counter.fetch_add(1),
                  (static_cast<unsigned long long>(ticks) + attempt) % 1000000ULL);
    std::string name = ".";
    name += target.filename().string();
    name += suffix;
    return target.parent_path() / name;
}

Result<void> writeAll(int fd, std::string_view bytes, const fs::path& target) {
    while (!bytes.empty()) {
        size_t chunk = std::min<size_t>(bytes.size(), size_t{1} << 30);
        ssize_t written = ::write(fd, bytes.data(), chunk);
        if (written < 0) {
            if (errno == EINTR) continue;
            return fail(describe(target, "cannot write the new content", errno));
        }
        bytes.remove_prefix(static_cast<size_t>(written));
    }
    return {};
}

/// Makes the rename durable. Folders that cannot be synced on this file system are accepted.
Result<void> syncFolder(const fs::path& folder, const fs::path& target) {
    FileDescriptor dir(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!dir.valid()) return {}; // a folder we may write but not list: nothing to sync with
    if (::fsync(dir.get()) != 0 && errno != EINVAL && errno != ENOTSUP)
        return fail(describe(target, "written, but the folder could not be synced", errno));
    return {};
}

} // namespace

Result<void> writeFileAtomically(const fs::path& path, std::string_view bytes) {
    if (path.empty() || !path.has_filename()) return fail(describe(path, "cannot write", EINVAL));
    const fs::path target = resolveTarget(path);
    fs::path folder = target.parent_path();
    if (folder.empty()) folder = ".";

    struct stat old {};
    bool hasOld = ::stat(target.c_str(), &old) == 0;
    if (hasOld && S_ISDIR(old.st_mode)) return fail(describe(path, "cannot write", EISDIR));

    TemporaryFile temporary;
    fs::path temporaryPath;
    int fd = -1;
    for (unsigned attempt = 0; attempt < 100 && fd < 0; ++attempt) {
        temporaryPath = temporaryName(target, attempt);
        fd = ::open(temporaryPath.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd < 0 && errno != EEXIST) break;
    }
    if (fd < 0)
        return fail(describe(path, "cannot create a temporary file in " + folder.string(), errno));
    temporary.track(temporaryPath);
    FileDescriptor file(fd);

    if (hasOld && S_ISREG(old.st_mode)) ::fchmod(file.get(), old.st_mode & 07777);
    if (auto written = writeAll(file.get(), bytes, path); !written) return written;
    if (::fsync(file.get()) != 0) return fail(describe(path, "cannot sync the new content", errno));
    if (!file.close()) return fail(describe(path, "cannot close the new content", errno));
    if (::rename(temporaryPath.c_str(), target.c_str()) != 0)
        return fail(describe(path, "cannot replace the file", errno));
    temporary.release();
    return syncFolder(folder, path);
}

Result<std::string> readWholeFile(const fs::path& path) {
    FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file.valid()) return fail(describe(path, "cannot open", errno));
    struct stat info {};
    if (::fstat(file.get(), &info) != 0) return fail(describe(path, "cannot read", errno));
    if (S_ISDIR(info.st_mode)) return fail(describe(path, "cannot read", EISDIR));
    if (!S_ISREG(info.st_mode)) return fail(path.string() + ": cannot read: not a regular file");
    if (static_cast<uint64_t>(info.st_size) > kMaxWholeFileSize)
        return fail(path.string() + ": cannot read: the file is larger than 2 GiB");

    std::string content;
    content.resize(static_cast<size_t>(info.st_size));
    size_t filled = 0;
    for (;;) {
        if (filled == content.size()) {
            // The file may have grown since it was measured.
            if (content.size() > kMaxWholeFileSize)
                return fail(path.string() + ": cannot read: the file is larger than 2 GiB");
            content.resize(std::min<uint64_t>(content.size() + 65536, kMaxWholeFileSize + 1));
        }
        ssize_t got = ::read(file.get(), content.data() + filled, content.size() - filled);
        if (got < 0) {
            if (errno == EINTR) continue;
            return fail(describe(path, "cannot read", errno));
        }
        if (got == 0) break;
        filled += static_cast<size_t>(got);
    }
    content.resize(filled);
    return content;
}

} // namespace zifora::core
