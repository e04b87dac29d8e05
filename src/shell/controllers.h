#pragma once
// The controllers of the program's windows; each registers its commands with the App.

#include <memory>

namespace zifora::shell {

class App;

/// Owns every controller. Made by the App right after its own commands are registered.
class Controllers {
  public:
    explicit Controllers(App& app);
    ~Controllers();
    Controllers(const Controllers&) = delete;
    Controllers& operator=(const Controllers&) = delete;

  private:
    struct Parts;
    std::unique_ptr<Parts> m_parts;
};

} // namespace zifora::shell
