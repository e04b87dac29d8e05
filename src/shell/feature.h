#pragma once
// A feature of the program: a part that registers its commands in the catalog and observes
// the events it cares about when it is made, and lives as long as the session.

#include <string_view>

namespace zifora::shell {

class Feature {
  public:
    virtual ~Feature() = default;
    /// A short name for messages ("Jahre und Abrechnungen").
    [[nodiscard]] virtual std::string_view name() const = 0;
};

} // namespace zifora::shell
