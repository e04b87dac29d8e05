#pragma once
// One running program per account: a second start hands its file (or just the wish to
// see the window) to the first one and ends.

#include <QLocalServer>
#include <QObject>
#include <QString>

#include <functional>

namespace zifora::gui {

class SingleInstance final : public QObject {
    Q_OBJECT
  public:
    /// The name of the local socket, unique per user.
    static QString serverName();
    /// Sends `message` to a running instance; true if one took it.
    static bool sendToRunning(const QString& message);

    /// Listens for later starts; `onMessage` gets their file path ("" for none).
    bool listen(std::function<void(const QString&)> onMessage);

  private:
    QLocalServer m_server;
    std::function<void(const QString&)> m_onMessage;
};

} // namespace zifora::gui
