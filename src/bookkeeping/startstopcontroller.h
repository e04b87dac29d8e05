#pragma once
// The start and the stop of the program: the one-time defaults, the agreement of the first
// start, the auto-save timer, the load, the steps that follow it, and the last save. Beside
// them what the main window shows after every step: the period's sum and the first-steps
// picture.

#include "shell/feature.h"
#include "shell/services.h"

#include <string>

namespace zifora::shell {
class Session;
}

namespace zifora::bookkeeping {

/// The form fields of the main window's state, kept up to date after every step.
inline constexpr const char* kMainSumField = "mainSumField";         // float
inline constexpr const char* kMainSumIsExpense = "mainSumIsExpense"; // bool
inline constexpr const char* kFirstStepsImage = "firstStepsImage";   // "" or "ja1" … "ja4"

class StartStopController final : public shell::Feature {
  public:
    /// Registers the start (`init`, `awakeFromNib`, `firstStart`), the stop
    /// (`applicationWillTerminate`, `terminate:`, `restart:`) and the desktop's calls
    /// (`applicationDidBecomeActive:`, `applicationShouldHandleReopen`).
    explicit StartStopController(shell::Session& session);
    [[nodiscard]] std::string_view name() const override { return "Start und Ende"; }

    /// Creation of the application object: one-time defaults and the run-time guards.
    void init();
    /// The start sequence after creation, up to the event loop.
    void awakeFromNib();
    void firstStart();
    void applicationWillTerminate();
    void applicationDidBecomeActive();
    /// Brings the main window to the front.
    void applicationShouldHandleReopen();
    void restart();
    /// Ends the program after the stop sequence.
    void terminate();

    /// The period's sum and the first-steps picture, into their form fields.
    void applicationDidUpdate();

  private:
    void registerCommands();
    void guiControllerFirstDefaults();
    void showWelcome();
    void stopTimers();

    shell::Session& m_session;
    shell::TimerId m_autoSaveTimer = 0;
    bool m_terminated = false;
};

} // namespace zifora::bookkeeping
