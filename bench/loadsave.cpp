// Save and load of whole books: encode + atomic write, read + decode, and the peak memory
// of a load measured in a process of its own.
//
//   zifora_bench_loadsave [--sizes=10000,100000,1000000] [--dir=DIR] [--keep]
//   zifora_bench_loadsave --load-peak=FILE      (the child mode the memory figure uses)
//
// Every figure is printed once for people and once as a "RESULT key=value ..." line for
// bench/run.

#include "bench/generate.h"
#include "core/atomicfile.h"
#include "core/keyedarchive.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

namespace {

using namespace zifora;
using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/// A field of /proc/self/status in kB ("VmHWM", "VmRSS"), or 0.
long statusKilobytes(const std::string& field) {
    std::ifstream in("/proc/self/status");
    std::string line;
    while (std::getline(in, line))
        if (line.starts_with(field + ":")) return std::stol(line.substr(field.size() + 1));
    return 0;
}

struct Options {
    std::vector<size_t> sizes{10'000, 100'000, 1'000'000};
    std::filesystem::path dir;
    bool keep = false;
    std::string loadPeakFile;
};

std::optional<Options> parseOptions(int argc, char** argv) {
    Options o;
    for (int i = 1; i < argc; ++i) {
        std::string_view a = argv[i];
        if (a.starts_with("--sizes=")) {
            o.sizes.clear();
            std::string list(a.substr(8));
            for (size_t pos = 0; pos <= list.size();) {
                size_t comma = list.find(',', pos);
                if (comma == std::string::npos) comma = list.size();
                o.sizes.push_back(std::stoul(list.substr(pos, comma - pos)));
                pos = comma + 1;
            }
        } else if (a.starts_with("--dir=")) {
            o.dir = std::string(a.substr(6));
        } else if (a == "--keep") {
            o.keep = true;
        } else if (a.starts_with("--load-peak=")) {
            o.loadPeakFile = std::string(a.substr(12));
        } else {
            std::fprintf(stderr,
                         "usage: %s [--sizes=N,N,...] [--dir=DIR] [--keep] | --load-peak=FILE\n",
                         argv[0]);
            return std::nullopt;
        }
    }
    return o;
}

// ---------------------------------------------------------------------------------------
// Save and load, timed

struct SaveTiming {
    double encode = 0, write = 0;
    size_t bytes = 0;
    [[nodiscard]] double total() const { return encode + write; }
};

struct LoadTiming {
    double read = 0, decode = 0, release = 0;
    size_t postings = 0;
    [[nodiscard]] double total() const { return read + decode; }
};

SaveTiming saveOnce(const core::Value& book, const std::filesystem::path& path) {
    SaveTiming t;
    auto start = Clock::now();
    std::string bytes = core::encodeKeyedArchive(book);
    t.encode = secondsSince(start);
    start = Clock::now();
    auto written = core::writeFileAtomically(path, bytes);
    t.write = secondsSince(start);
    if (!written) {
        std::fprintf(stderr, "save failed: %s\n", written.error().message.c_str());
        std::exit(1);
    }
    t.bytes = bytes.size();
    return t;
}

LoadTiming loadOnce(const std::filesystem::path& path) {
    LoadTiming t;
    auto start = Clock::now();
    auto bytes = core::readWholeFile(path);
    t.read = secondsSince(start);
    if (!bytes) {
        std::fprintf(stderr, "read failed: %s\n", bytes.error().message.c_str());
        std::exit(1);
    }
    start = Clock::now();
    auto root = core::decodeKeyedArchive(*bytes, path.filename().string());
    t.decode = secondsSince(start);
    if (!root) {
        std::fprintf(stderr, "load failed: %s\n", root.error().message.c_str());
        std::exit(1);
    }
    t.postings = bench::countPostings(*root);
    start = Clock::now();
    root = core::Value{};
    t.release = secondsSince(start);
    return t;
}

/// Whether the file reads back into a book that writes the very same bytes again.
bool roundTripsExactly(const std::filesystem::path& path) {
    auto bytes = core::readWholeFile(path);
    if (!bytes) return false;
    auto root = core::decodeKeyedArchive(*bytes, path.filename().string());
    return root && core::encodeKeyedArchive(*root) == *bytes;
}

// ---------------------------------------------------------------------------------------
// Peak memory of a load, in a fresh process

/// The child: loads the file, then reports its resident set before and at the peak.
int runLoadPeak(const std::string& file) {
    const long baseline = statusKilobytes("VmRSS");
    auto bytes = core::readWholeFile(file);
    if (!bytes) return 2;
    auto root = core::decodeKeyedArchive(*bytes, file);
    if (!root) return 3;
    std::printf("LOADPEAK baseline_kb=%ld peak_kb=%ld postings=%zu\n", baseline,
                statusKilobytes("VmHWM"), bench::countPostings(*root));
    return 0;
}

struct PeakMemory {
    long baselineKb = 0;
    long peakKb = 0; // the child's maximum resident set, as wait4 reports it
};

PeakMemory measureLoadPeak(const std::filesystem::path& file) {
    int pipeEnds[2];
    if (pipe(pipeEnds) != 0) return {};
    const std::string flag = "--load-peak=" + file.string();
    pid_t pid = fork();
    if (pid == 0) {
        dup2(pipeEnds[1], STDOUT_FILENO);
        close(pipeEnds[0]);
        close(pipeEnds[1]);
        char* args[] = {const_cast<char*>("zifora_bench_loadsave"), const_cast<char*>(flag.c_str()),
                        nullptr};
        execv("/proc/self/exe", args);
        _exit(127);
    }
    close(pipeEnds[1]);
    std::string report;
    char buffer[256];
    for (ssize_t n; (n = read(pipeEnds[0], buffer, sizeof buffer)) > 0;)
        report.append(buffer, n);
    close(pipeEnds[0]);
    int status = 0;
    rusage usage{};
    wait4(pid, &status, 0, &usage);
    PeakMemory m;
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        std::fprintf(stderr, "load-peak child failed (status %d)\n", status);
        return m;
    }
    m.peakKb = usage.ru_maxrss;
    if (auto at = report.find("baseline_kb="); at != std::string::npos)
        m.baselineKb = std::stol(report.substr(at + 12));
    return m;
}

// ---------------------------------------------------------------------------------------

void benchmarkSize(size_t postings, const std::filesystem::path& dir) {
    const int runs = postings >= 1'000'000 ? 1 : 3;
    auto start = Clock::now();
    const core::Value book = bench::makeBook({.postings = postings});
    const double generate = secondsSince(start);
    const auto path = dir / ("book-" + std::to_string(postings) + ".zfdb4");

    SaveTiming save{1e9, 0, 0};
    for (int i = 0; i < runs; ++i) {
        SaveTiming t = saveOnce(book, path);
        if (t.total() < save.total()) save = t;
    }
    LoadTiming load{1e9, 0, 0, 0};
    for (int i = 0; i < runs; ++i) {
        LoadTiming t = loadOnce(path);
        if (t.postings != postings) {
            std::fprintf(stderr, "loaded %zu postings, expected %zu\n", t.postings, postings);
            std::exit(1);
        }
        if (t.total() < load.total()) load = t;
    }
    const PeakMemory memory = measureLoadPeak(path);
    if (!roundTripsExactly(path)) {
        std::fprintf(stderr, "%zu postings: the loaded book does not save to the same bytes\n",
                     postings);
        std::exit(1);
    }

    std::printf("%9zu postings  file %7.1f MB  save %7.3f s (encode %.3f, write %.3f)  "
                "load %7.3f s (read %.3f, decode %.3f)  peak %7.1f MB  [best of %d; "
                "generate %.2f s, free %.3f s]\n",
                postings, save.bytes / 1e6, save.total(), save.encode, save.write, load.total(),
                load.read, load.decode, memory.peakKb / 1024.0, runs, generate, load.release);
    std::printf("RESULT postings=%zu runs=%d bytes=%zu save_s=%.4f encode_s=%.4f write_s=%.4f "
                "load_s=%.4f read_s=%.4f decode_s=%.4f free_s=%.4f peak_kb=%ld baseline_kb=%ld "
                "file=%s\n",
                postings, runs, save.bytes, save.total(), save.encode, save.write, load.total(),
                load.read, load.decode, load.release, memory.peakKb, memory.baselineKb,
                path.c_str());
    std::fflush(stdout);
}

} // namespace

int main(int argc, char** argv) {
    auto options = parseOptions(argc, argv);
    if (!options) return 2;
    if (!options->loadPeakFile.empty()) return runLoadPeak(options->loadPeakFile);

    const bool ownDir = options->dir.empty();
    if (ownDir) {
        char pattern[] = "/tmp/zifora-bench-XXXXXX";
        if (!mkdtemp(pattern)) return 1;
        options->dir = pattern;
    }
    std::filesystem::create_directories(options->dir);
    for (size_t n : options->sizes)
        benchmarkSize(n, options->dir);
    if (!options->keep) {
        for (size_t n : options->sizes)
            std::filesystem::remove(options->dir / ("book-" + std::to_string(n) + ".zfdb4"));
        if (ownDir) std::filesystem::remove(options->dir);
    }
    return 0;
}
