#pragma once
// The one place where the program is put together: a session over the platform's services
// with every feature. The desktop program, the command-line program, the demonstration book,
// the benchmarks and the tests all start the program through it.

#include "core/places.h"
#include "core/settings.h"
#include "shell/feature.h"
#include "shell/session.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <vector>

namespace zifora::program {

/// The folders of the files the program brings along; none where they are not installed.
struct Resources {
    std::optional<std::filesystem::path> charts; // the built-in charts of accounts
    std::optional<std::filesystem::path> help;   // the built-in help pages
    /// The folders beside the running program.
    [[nodiscard]] static Resources find();
};

class Program {
  public:
    Program(shell::Services services, core::Places places, core::Settings& settings,
            Resources resources = Resources::find());
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    [[nodiscard]] shell::Session& session() { return m_session; }
    [[nodiscard]] const std::vector<std::unique_ptr<shell::Feature>>& features() const {
        return m_features;
    }

    /// The feature of type `F`, or null when the program has none.
    template <typename F> [[nodiscard]] F* feature() const {
        for (const auto& f : m_features)
            if (auto* found = dynamic_cast<F*>(f.get())) return found;
        return nullptr;
    }

    /// The start sequence: creation of the application object, then the steps up to the
    /// event loop.
    void start();
    /// The stop sequence of a program that is asked to end.
    void stop();

  private:
    template <typename F, typename... Args> F& add(Args&&... args);

    shell::Session m_session;
    std::vector<std::unique_ptr<shell::Feature>> m_features;
};

} // namespace zifora::program
