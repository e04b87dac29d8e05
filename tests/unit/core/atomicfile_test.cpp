#include "core/atomicfile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <fstream>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zifora::core {
namespace {

namespace fs = std::filesystem;

class AtomicFile : public ::testing::Test {
  protected:
    void SetUp() override {
        m_folder = fs::temp_directory_path() /
                   ("zifora-atomic-" + std::to_string(::getpid()) + "-" +
                    ::testing::UnitTest::GetInstance()->current_test_info()->name());
        fs::remove_all(m_folder);
        fs::create_directories(m_folder);
    }
    void TearDown() override {
        fs::permissions(m_folder, fs::perms::owner_all, fs::perm_options::add);
        fs::remove_all(m_folder);
    }

    static std::string contentOf(const fs::path& path) {
        auto bytes = readWholeFile(path);
        EXPECT_TRUE(bytes.has_value()) << bytes.error().message;
        return bytes.value_or("<unreadable>");
    }
    /// The names in the folder, so that a left-over temporary file shows.
    std::vector<std::string> names() const {
        std::vector<std::string> out;
        for (const auto& entry : fs::directory_iterator(m_folder))
            out.push_back(entry.path().filename().string());
        std::sort(out.begin(), out.end());
        return out;
    }
    fs::path file() const { return m_folder / "Zifora.plist"; }

    fs::path m_folder;
};

TEST_F(AtomicFile, WritesReplacesAndKeepsThePermissions) {
    ASSERT_TRUE(writeFileAtomically(file(), "erste Fassung"));
    EXPECT_EQ(contentOf(file()), "erste Fassung");
    fs::permissions(file(), fs::perms::owner_read | fs::perms::owner_write);
    std::string big(3 << 20, 'x');
    ASSERT_TRUE(writeFileAtomically(file(), big));
    EXPECT_EQ(contentOf(file()), big);
    EXPECT_EQ(fs::status(file()).permissions() & fs::perms::all,
              fs::perms::owner_read | fs::perms::owner_write);
    ASSERT_TRUE(writeFileAtomically(file(), ""));
    EXPECT_EQ(contentOf(file()), "");
    EXPECT_EQ(names(), std::vector<std::string>{"Zifora.plist"});
}

TEST_F(AtomicFile, WritesThroughASymbolicLink) {
    fs::create_directory(m_folder / "real");
    fs::create_symlink("real/target", file());
    ASSERT_TRUE(writeFileAtomically(file(), "über den Link"));
    EXPECT_TRUE(fs::is_symlink(file()));
    EXPECT_EQ(contentOf(m_folder / "real" / "target"), "über den Link");
}

TEST_F(AtomicFile, ATargetThatIsAFolderStaysWhole) {
    fs::create_directory(file());
    std::ofstream(file() / "inside") << "bleibt";
    auto result = writeFileAtomically(file(), "neu");
    ASSERT_FALSE(result);
    EXPECT_NE(result.error().message.find(file().string()), std::string::npos);
    EXPECT_NE(result.error().message.find("Is a directory"), std::string::npos);
    EXPECT_EQ(contentOf(file() / "inside"), "bleibt");
    EXPECT_EQ(names(), std::vector<std::string>{"Zifora.plist"});
}

TEST_F(AtomicFile, AReadOnlyFolderLeavesTheOldFileWhole) {
    ASSERT_TRUE(writeFileAtomically(file(), "alt"));
    fs::permissions(m_folder, fs::perms::owner_read | fs::perms::owner_exec);
    if (::access(m_folder.c_str(), W_OK) == 0)
        GTEST_SKIP() << "this user may write to read-only folders";
    auto result = writeFileAtomically(file(), "neu");
    ASSERT_FALSE(result);
    EXPECT_NE(result.error().message.find(file().string()), std::string::npos);
    EXPECT_NE(result.error().message.find("Permission denied"), std::string::npos);
    EXPECT_EQ(contentOf(file()), "alt");
    EXPECT_EQ(names(), std::vector<std::string>{"Zifora.plist"});
}

TEST_F(AtomicFile, AWriteThatFailsHalfwayLeavesTheOldFileWhole) {
    // A file-size limit makes the write fail part of the way, for any user.
    ASSERT_TRUE(writeFileAtomically(file(), "alt"));
    rlimit saved{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &saved), 0);
    rlimit small = saved;
    small.rlim_cur = 4096;
    auto previousHandler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    auto result = writeFileAtomically(file(), std::string(100000, 'n'));
    ::setrlimit(RLIMIT_FSIZE, &saved);
    std::signal(SIGXFSZ, previousHandler);
    ASSERT_FALSE(result);
    EXPECT_NE(result.error().message.find("File too large"), std::string::npos)
        << result.error().message;
    EXPECT_EQ(contentOf(file()), "alt");
    EXPECT_EQ(names(), std::vector<std::string>{"Zifora.plist"});
}

TEST_F(AtomicFile, AMissingFolderIsAnError) {
    auto result = writeFileAtomically(m_folder / "fehlt" / "x.plist", "neu");
    ASSERT_FALSE(result);
    EXPECT_NE(result.error().message.find("No such file or directory"), std::string::npos);
}

TEST_F(AtomicFile, ReadingRefusesWhatIsNotAReadableFileOfSensibleSize) {
    auto missing = readWholeFile(file());
    ASSERT_FALSE(missing);
    EXPECT_EQ(missing.error().message,
              file().string() + ": cannot open: No such file or directory");
    EXPECT_FALSE(readWholeFile(m_folder));

    // A sparse file just above the limit is refused without being read.
    { std::ofstream create(file()); }
    fs::resize_file(file(), kMaxWholeFileSize + 1);
    auto huge = readWholeFile(file());
    ASSERT_FALSE(huge);
    EXPECT_NE(huge.error().message.find("larger than 2 GiB"), std::string::npos);
}

TEST_F(AtomicFile, AFifoIsRefusedWithoutWaitingForAWriter) {
    ASSERT_EQ(::mkfifo(file().c_str(), 0600), 0);
    auto read = readWholeFile(file()); // blocked for ever before, as no writer comes
    ASSERT_FALSE(read);
    EXPECT_NE(read.error().message.find("not a regular file"), std::string::npos);
}

TEST_F(AtomicFile, WithoutReplacingAnExistingFileIsKept) {
    ASSERT_TRUE(writeFileAtomically(file(), "neu", /*replace=*/false));
    EXPECT_EQ(contentOf(file()), "neu");
    auto again = writeFileAtomically(file(), "anderes", /*replace=*/false);
    ASSERT_FALSE(again);
    EXPECT_FALSE(again.error().written);
    EXPECT_EQ(contentOf(file()), "neu");
    EXPECT_EQ(names(), std::vector<std::string>{"Zifora.plist"});
}

} // namespace
} // namespace zifora::core
