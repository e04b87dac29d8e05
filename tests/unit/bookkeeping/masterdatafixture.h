#pragma once
// The headless program with one client in a scratch home, for the tests of the master-data lists
// and the charts of accounts. Every alert, dialog, beep and written file lands in `events`.

#include "core/record.h"
#include "core/settings.h"
#include "program/headlessprogram.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>

#include <unistd.h>

namespace zifora::bookkeeping::testing {
using namespace shell;

class MasterDataTest : public ::testing::Test {
  protected:
    MasterDataTest()
        : m_home(scratchFolder()),
          m_headless(m_out, core::Places::forHome(m_home), core::Date{1000},
                     program::Resources{std::filesystem::path(m_home) / "charts", std::nullopt}),
          m_app(m_headless.session()), m_settings(m_app.settings()), m_ui(m_headless.services.ui),
          m_scheduler(m_headless.services.scheduler), m_clock(m_headless.services.clock) {
        core::RecordList clients{core::Record::make(core::RecordClass::Client, m_clock.now())};
        m_app.setClients(clients);
        m_app.selectionChanged();
    }
    ~MasterDataTest() override { std::filesystem::remove_all(m_home); }

    static std::string scratchFolder() {
        auto* info = ::testing::UnitTest::GetInstance()->current_test_info();
        auto folder = std::filesystem::temp_directory_path() /
                      ("zifora-masterdata-" + std::to_string(::getpid()) + "-" +
                       info->test_suite_name() + "-" + info->name());
        std::filesystem::remove_all(folder);
        std::filesystem::create_directories(folder);
        return folder.string();
    }

    core::Record& client() { return *m_app.selection().currentClient(); }

    /// Appends a record with the given number and title to the client's accounts.
    core::Record& addAccount(const std::string& number, const std::string& title) {
        auto account = core::Record::make(core::RecordClass::Account, m_clock.now());
        account->set("number", core::Value::string(number));
        account->set("title", core::Value::string(title));
        client().accounts().push_back(account);
        m_app.selection().accounts.rearrange();
        return *account;
    }

    /// The texts of a key over a list, in its order: "a|b|c".
    static std::string column(const core::RecordList& list, const std::string& key) {
        std::string out;
        for (const auto& r : list)
            out += (out.empty() ? "" : "|") + r->getText(key);
        return out;
    }

    /// The events printed since the last call.
    std::string takeEvents() {
        std::string text = m_out.str();
        m_out.str("");
        return text;
    }

    std::string m_home;
    std::ostringstream m_out;
    program::HeadlessProgram m_headless;
    Session& m_app;
    core::Settings& m_settings;
    ScriptedUi& m_ui;
    VirtualScheduler& m_scheduler;
    VirtualClock& m_clock;
};

} // namespace zifora::bookkeeping::testing
