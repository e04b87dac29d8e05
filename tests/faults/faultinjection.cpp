// Faults the kernel gives rarely, on demand: loaded with LD_PRELOAD into zifora-cli by the
// fault checks. Without its variables it changes nothing.
//   ZIFORA_FAULT_FOLDER_FSYNC=1    fsync of a folder fails with EIO
//   ZIFORA_FAULT_READ_EIO=SUFFIX   read of a file whose path ends in SUFFIX fails with EIO

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

bool pathEndsWith(int fd, const char* suffix) {
    char link[64], path[4096];
    std::snprintf(link, sizeof link, "/proc/self/fd/%d", fd);
    ssize_t n = ::readlink(link, path, sizeof path - 1);
    if (n < 0) return false;
    path[n] = '\0';
    size_t length = std::strlen(suffix);
    return static_cast<size_t>(n) >= length && std::strcmp(path + n - length, suffix) == 0;
}

template <typename F> F next(const char* name) {
    return reinterpret_cast<F>(::dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" int fsync(int fd) {
    static auto real = next<int (*)(int)>("fsync");
    struct stat info {};
    if (std::getenv("ZIFORA_FAULT_FOLDER_FSYNC") && ::fstat(fd, &info) == 0 &&
        S_ISDIR(info.st_mode)) {
        errno = EIO;
        return -1;
    }
    return real(fd);
}

extern "C" ssize_t read(int fd, void* buffer, size_t count) {
    static auto real = next<ssize_t (*)(int, void*, size_t)>("read");
    const char* suffix = std::getenv("ZIFORA_FAULT_READ_EIO");
    if (suffix && *suffix && pathEndsWith(fd, suffix)) {
        errno = EIO;
        return -1;
    }
    return real(fd, buffer, count);
}
