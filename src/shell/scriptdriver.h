#pragma once
// The script language of `zifora-cli run`: one JSON object per line, one command each,
// carried out on a session over the headless services. Every event of the run is printed
// as one JSON line by the services' log.

#include "shell/headless.h"
#include "shell/session.h"

#include <nlohmann/json.hpp>

#include <istream>
#include <string>

namespace zifora::shell {

class ScriptDriver {
  public:
    /// Drives `session`, whose services are `services`.
    ScriptDriver(Session& session, HeadlessServices& services);

    /// The exit code of a run whose last save of the database failed.
    static constexpr int kExitLastSaveFailed = 5;

    /// Runs every line of `script` until it ends or the program ends; then writes the
    /// settings. Returns 0, 1 when an error event was printed, or `kExitLastSaveFailed`
    /// (before 1) when the last save of the database failed.
    int run(std::istream& script);

  private:
    using Json = nlohmann::ordered_json;

    void execute(const Json& command, int number);
    std::string dispatch(const std::string& verb, const Json& arg, const Json& command);
    std::string dumpSettings(const Json& arg);
    std::string dumpFields(const Json& arg);
    std::string select(const Json& arg);
    std::string setProperty(const Json& arg);
    std::string setField(const Json& arg);
    std::string drag(const Json& arg);
    std::string setSettings(const Json& arg);
    std::string queueAnswers(const Json& arg);
    std::string queueChoices(const Json& arg);
    std::string doCommand(const Json& arg, const Json& command);
    std::string openFile(const Json& arg);

    Session& m_session;
    HeadlessServices& m_services;
    bool m_lastSaveFailed = false;
};

} // namespace zifora::shell
