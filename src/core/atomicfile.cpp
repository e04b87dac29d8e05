#include "core/atomicfile.h"

#include <cstdio>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <limits>
#include <optional>
#include <system_error>
#include <utility>

#include <csignal>
#include <ctime>
#include <regex>

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
/// A failure comes after the rename: the new file is in place, and the error says so.
Result<void> syncFolder(const fs::path& folder, const fs::path& target) {
    FileDescriptor dir(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!dir.valid()) return {}; // a folder we may write but not list: nothing to sync with
    if (::fsync(dir.get()) != 0 && errno != EINVAL && errno != ENOTSUP) {
        Error error{describe(target, "written, but the folder could not be synced", errno)};
        error.written = true;
        return std::unexpected(std::move(error));
    }
    return {};
}

/// Moves the temporary file to `target`; without `replace`, only where nothing is there yet.
bool moveIntoPlace(const fs::path& temporary, const fs::path& target, bool replace) {
    if (replace) return ::rename(temporary.c_str(), target.c_str()) == 0;
    if (::renameat2(AT_FDCWD, temporary.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS) return false;
    // A file system without that kind of rename: a hard link is made only where no name is.
    if (::link(temporary.c_str(), target.c_str()) == 0) {
        ::unlink(temporary.c_str());
        return true;
    }
    if (errno == EEXIST) return false;
    // Nor hard links: look, then rename (another writer may come between, as ever there).
    struct stat there {};
    if (::lstat(target.c_str(), &there) == 0) {
        errno = EEXIST;
        return false;
    }
    return ::rename(temporary.c_str(), target.c_str()) == 0;
}

/// The process id in the name of one of our temporary files for `target`, if it is one.
std::optional<long> temporaryFileProcess(const std::string& name, const std::string& target) {
    static const std::regex pattern(R"(\.tmp-([0-9]{1,10})-[0-9]+-[0-9]+)");
    const std::string prefix = "." + target;
    if (!name.starts_with(prefix)) return std::nullopt;
    std::smatch match;
    const std::string rest = name.substr(prefix.size());
    if (!std::regex_match(rest, match, pattern)) return std::nullopt;
    return std::stol(match[1].str());
}

bool processRuns(long pid) {
    if (pid <= 0 || pid > std::numeric_limits<pid_t>::max()) return false;
    return ::kill(static_cast<pid_t>(pid), 0) == 0 || errno == EPERM;
}

} // namespace

Result<void> writeFileAtomically(const fs::path& path, std::string_view bytes, bool replace) {
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
    if (!moveIntoPlace(temporaryPath, target, replace))
        return fail(describe(path, "cannot replace the file", errno));
    temporary.release();
    return syncFolder(folder, path);
}

size_t removeStaleTemporaryFiles(const fs::path& path) {
    const fs::path target = resolveTarget(path);
    fs::path folder = target.parent_path();
    if (folder.empty()) folder = ".";
    const std::string name = target.filename().string();
    size_t removed = 0;
    std::error_code ec;
    for (fs::directory_iterator it(folder, ec), end; !ec && it != end; it.increment(ec)) {
        const std::string entry = it->path().filename().string();
        auto pid = temporaryFileProcess(entry, name);
        struct stat info {};
        if (!pid || ::lstat(it->path().c_str(), &info) != 0 || !S_ISREG(info.st_mode)) continue;
        const bool abandoned = std::time(nullptr) - info.st_mtime > 3600;
        if ((abandoned || !processRuns(*pid)) && ::unlink(it->path().c_str()) == 0) ++removed;
    }
    return removed;
}

Result<std::string> readWholeFile(const fs::path& path) {
    // Without waiting: the open of a FIFO would block until a writer comes.
    FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
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
