#include "platform_qt/qtservices.h"

#include "platform_qt/pdfrenderer.h"

#include <QApplication>
#include <QClipboard>
#include <QDateTime>
#include <QDesktopServices>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QScreen>
#include <QTemporaryDir>
#include <QTimer>
#include <QUrl>

namespace zifora::platform_qt {

namespace {

QString qs(const std::string& s) {
    return QString::fromStdString(s);
}

QMessageBox::Icon iconOf(shell::AlertStyle style) {
    switch (style) {
    case shell::AlertStyle::Informational:
        return QMessageBox::Information;
    case shell::AlertStyle::Warning:
        return QMessageBox::Warning;
    case shell::AlertStyle::Critical:
        return QMessageBox::Critical;
    }
    return QMessageBox::Warning;
}

} // namespace

int QtUi::alert(const shell::AlertRequest& request) {
    QMessageBox box(m_parent);
    box.setIcon(iconOf(request.style));
    box.setWindowTitle(qs(request.title));
    box.setText(QStringLiteral("<b>%1</b>").arg(qs(request.title).toHtmlEscaped()));
    box.setInformativeText(qs(request.text));
    box.setTextFormat(Qt::RichText);
    std::vector<QPushButton*> buttons;
    std::vector<std::string> labels =
        request.buttons.empty() ? std::vector<std::string>{"OK"} : request.buttons;
    for (size_t i = 0; i < labels.size(); ++i) {
        auto role = i == 0 ? QMessageBox::AcceptRole
                           : (i == 1 ? QMessageBox::RejectRole : QMessageBox::DestructiveRole);
        buttons.push_back(box.addButton(qs(labels[i]), role));
    }
    box.setDefaultButton(buttons.front());
    // Escape answers the second button where there is one, as a cancel.
    box.setEscapeButton(buttons.size() > 1 ? buttons[1] : buttons.front());
    box.exec();
    auto* clicked = box.clickedButton();
    if (clicked == buttons.front()) return 1;
    if (buttons.size() > 1 && clicked == buttons[1]) return 0;
    if (buttons.size() > 2 && clicked == buttons[2]) return 2;
    return buttons.size() > 1 ? 0 : 1;
}

void QtUi::beep() {
    QApplication::beep();
}

std::optional<std::string> QtUi::chooseFile(const shell::DialogRequest& request) {
    QString filter;
    if (!request.extensions.empty()) {
        QStringList patterns;
        for (const auto& e : request.extensions)
            patterns << QStringLiteral("*.") + qs(e);
        filter = patterns.join(' ');
        filter = QStringLiteral("(%1)").arg(filter);
    }
    QString folder = qs(request.folder);
    QString result;
    switch (request.kind) {
    case shell::DialogKind::Open:
        result = QFileDialog::getOpenFileName(m_parent, qs(request.title), folder, filter);
        break;
    case shell::DialogKind::Save: {
        QString suggested =
            folder.isEmpty() ? qs(request.suggestedName) : folder + '/' + qs(request.suggestedName);
        result = QFileDialog::getSaveFileName(m_parent, qs(request.title), suggested, filter);
        break;
    }
    case shell::DialogKind::Folder:
        result = QFileDialog::getExistingDirectory(m_parent, qs(request.title), folder);
        break;
    }
    if (result.isEmpty()) return std::nullopt;
    return result.toStdString();
}

void QtUi::showWindow(const std::string& name) {
    auto it = m_windows.find(name);
    if (it != m_windows.end()) it->second(true);
}

void QtUi::hideWindow(const std::string& name) {
    if (name == "preview" && m_preview) m_preview->close();
    auto it = m_windows.find(name);
    if (it != m_windows.end()) it->second(false);
}

shell::TimerId QtScheduler::start(double seconds, bool repeating, std::function<void()> task) {
    shell::TimerId id = m_next++;
    auto* timer = new QTimer(this);
    timer->setSingleShot(!repeating);
    timer->setInterval(static_cast<int>(seconds * 1000));
    QObject::connect(timer, &QTimer::timeout, this, [this, id, repeating, task = std::move(task)] {
        if (!repeating) {
            auto it = m_timers.find(id);
            if (it != m_timers.end()) {
                it->second->deleteLater();
                m_timers.erase(it);
            }
        }
        task();
    });
    m_timers[id] = timer;
    timer->start();
    return id;
}

shell::TimerId QtScheduler::after(double seconds, std::function<void()> task) {
    return start(seconds, false, std::move(task));
}

shell::TimerId QtScheduler::every(double seconds, std::function<void()> task) {
    return start(seconds, true, std::move(task));
}

void QtScheduler::cancel(shell::TimerId id) {
    auto it = m_timers.find(id);
    if (it == m_timers.end()) return;
    it->second->stop();
    it->second->deleteLater();
    m_timers.erase(it);
}

core::Date SystemClock::now() const {
    return core::Date::fromUnix(static_cast<double>(QDateTime::currentMSecsSinceEpoch()) / 1000.0);
}

void QtClipboard::putText(const std::string& text) {
    QGuiApplication::clipboard()->setText(qs(text));
}

bool QtWorkspace::openFile(const std::string& path) {
    QString target = qs(path);
    QUrl url = target.contains("://") ? QUrl(target) : QUrl::fromLocalFile(target);
    return QDesktopServices::openUrl(url);
}

bool QtWorkspace::revealFile(const std::string& path) {
    // Desktops differ in how they select a file; opening its folder works everywhere.
    return QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(qs(path)).absolutePath()));
}

bool QtWorkspace::launch(const std::string& program, const std::vector<std::string>& arguments) {
    QStringList args;
    for (const auto& a : arguments)
        args << qs(a);
    return QProcess::startDetached(qs(program), args);
}

bool QtWorkspace::composeMail(const std::string& to, const std::string& subject,
                              const std::vector<std::string>& attachments) {
    QStringList args{QStringLiteral("--subject"), qs(subject)};
    for (const auto& a : attachments)
        args << QStringLiteral("--attach") << qs(a);
    args << qs(to);
    return QProcess::startDetached(QStringLiteral("xdg-email"), args);
}

// Queued, so that an end asked for before the event loop runs (a declined agreement at the
// start) still ends the program as soon as the loop begins; quit() alone would be ignored.
void QtWorkspace::terminate() {
    QMetaObject::invokeMethod(QCoreApplication::instance(), &QCoreApplication::quit,
                              Qt::QueuedConnection);
}

QtUi::~QtUi() {
    delete m_preview.data();
}

void QtUi::preview(const std::string& pdfPath, const std::string& title) {
    const QString path = qs(pdfPath);
    if (m_settings && m_settings->getBool("loadInPreview.app")) {
        if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
            alert({"Fehler!",
                   pdfPath + ": kein Programm zum Anzeigen von PDF-Dateien gefunden.",
                   {"OK"},
                   shell::AlertStyle::Critical,
                   {}});
        return;
    }
    if (!m_preview) {
        // A window of its own, beside the main window rather than on top of it.
        m_preview = new PdfPreviewWindow(nullptr);
        m_preview->setAttribute(Qt::WA_DeleteOnClose, false);
        QObject::connect(m_preview, &PdfPreviewWindow::printRequested, m_preview,
                         [this](const QString& file) {
                             shell::PrintRequest request;
                             request.pdfPath = file.toStdString();
                             request.title = m_preview->windowTitle().toStdString();
                             // The reports' margins: top 40, left and right 20, bottom 60.
                             request.marginTop = 40;
                             request.marginLeft = 20;
                             request.marginRight = 20;
                             request.marginBottom = 60;
                             print(request);
                         });
    }
    if (!m_preview->open(path, qs(title))) {
        alert({"Fehler!",
               pdfPath + ": die Datei lässt sich nicht als PDF lesen.",
               {"OK"},
               shell::AlertStyle::Critical,
               {}});
        return;
    }
    // Centred on the screen of the main window.
    QScreen* screen = m_parent ? m_parent->screen() : QGuiApplication::primaryScreen();
    if (screen) {
        QRect frame = m_preview->frameGeometry();
        frame.moveCenter(screen->availableGeometry().center());
        m_preview->move(frame.topLeft());
    }
    m_preview->show();
    m_preview->raise();
    m_preview->activateWindow();
}

bool QtUi::print(const shell::PrintRequest& request) {
    QWidget* parent = m_preview && m_preview->isVisible() ? m_preview.data() : m_parent.data();
    QString error;
    // A report's HTML (its PDF may not be made yet) is laid out with the request's margins
    // into a temporary PDF first.
    const QString suffix = QFileInfo(qs(request.pdfPath)).suffix().toLower();
    if (suffix == QLatin1String("html") || suffix == QLatin1String("htm")) {
        QTemporaryDir folder;
        shell::PdfRequest layout;
        layout.htmlPath = request.pdfPath;
        layout.pdfPath = folder.filePath(QStringLiteral("print.pdf")).toStdString();
        layout.marginTop = request.marginTop;
        layout.marginLeft = request.marginLeft;
        layout.marginRight = request.marginRight;
        layout.marginBottom = request.marginBottom;
        layout.title = request.title;
        auto made = folder.isValid() ? QtPdfRenderer().render(layout)
                                     : core::Result<void>(core::fail("kein temporärer Ordner"));
        if (!made) {
            alert({"Fehler!", made.error().message, {"OK"}, shell::AlertStyle::Critical, {}});
            return false;
        }
        shell::PrintRequest pdf = request;
        pdf.pdfPath = layout.pdfPath;
        if (printPdf(parent, pdf, &error)) return true;
        if (!error.isEmpty())
            alert({"Fehler!", error.toStdString(), {"OK"}, shell::AlertStyle::Critical, {}});
        return false;
    }
    if (printPdf(parent, request, &error)) return true;
    if (!error.isEmpty())
        alert({"Fehler!", error.toStdString(), {"OK"}, shell::AlertStyle::Critical, {}});
    return false;
}

} // namespace zifora::platform_qt
