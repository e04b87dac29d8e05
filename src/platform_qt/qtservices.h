#pragma once
// The platform services of the desktop program, on Qt.

#include "core/settings.h"
#include "platform_qt/previewwindow.h"
#include "shell/services.h"

#include <QObject>
#include <QPointer>
#include <QWidget>

#include <functional>
#include <map>
#include <string>

class QTimer;

namespace zifora::platform_qt {

/// Alerts as message boxes (the first button is the default one), dialogs as the desktop's
/// file dialogs, windows by name through handlers the program registers.
class QtUi final : public shell::Ui {
  public:
    QtUi() = default;
    ~QtUi() override;
    QtUi(const QtUi&) = delete;
    QtUi& operator=(const QtUi&) = delete;
    /// The window that alerts and dialogs belong to (may change while running).
    void setParentWindow(QWidget* window) { m_parent = window; }
    using WindowHandler = std::function<void(bool show)>;
    void addWindow(const std::string& name, WindowHandler handler) {
        m_windows[name] = std::move(handler);
    }

    int alert(const shell::AlertRequest& request) override;
    void beep() override;
    std::optional<std::string> chooseFile(const shell::DialogRequest& request) override;
    void showWindow(const std::string& name) override;
    void hideWindow(const std::string& name) override;
    /// The settings that choose between the program's preview window and the desktop's
    /// PDF viewer ("loadInPreview.app"); without them the preview window shows the PDF.
    void setSettings(const core::Settings* settings) { m_settings = settings; }
    /// The PDF in the preview window titled `title`, or in the desktop's PDF viewer when
    /// "loadInPreview.app" is set. A file that can't be shown gets the "Fehler!" alert.
    void preview(const std::string& pdfPath, const std::string& title) override;
    /// The print dialog over the PDF (see printPdf); false when cancelled or unreadable.
    /// A path ending in .html is a report's HTML, laid out with the request's margins.
    bool print(const shell::PrintRequest& request) override;
    /// The preview window, once a PDF has been shown (for tests and screenshots).
    [[nodiscard]] PdfPreviewWindow* previewWindow() const { return m_preview; }

  private:
    QPointer<QWidget> m_parent;
    std::map<std::string, WindowHandler> m_windows;
    const core::Settings* m_settings = nullptr;
    QPointer<PdfPreviewWindow> m_preview;
};

/// Delayed calls and repeating timers on the Qt event loop.
class QtScheduler final : public QObject, public shell::Scheduler {
  public:
    shell::TimerId after(double seconds, std::function<void()> task) override;
    shell::TimerId every(double seconds, std::function<void()> task) override;
    void cancel(shell::TimerId id) override;

  private:
    shell::TimerId start(double seconds, bool repeating, std::function<void()> task);
    shell::TimerId m_next = 1;
    std::map<shell::TimerId, QTimer*> m_timers;
};

class SystemClock final : public shell::Clock {
  public:
    [[nodiscard]] core::Date now() const override;
};

class QtClipboard final : public shell::Clipboard {
  public:
    void putText(const std::string& text) override;
};

/// Opening, revealing, starting programs and mail through the desktop's own tools.
class QtWorkspace final : public shell::Workspace {
  public:
    bool openFile(const std::string& path) override;
    bool revealFile(const std::string& path) override;
    bool launch(const std::string& program, const std::vector<std::string>& arguments) override;
    bool composeMail(const std::string& to, const std::string& subject,
                     const std::vector<std::string>& attachments) override;
    void terminate() override;
};

} // namespace zifora::platform_qt
