// The main window on a period of 100,000 postings, drawn offscreen: the time from selecting
// the period until the item table has been drawn, then the frames of paging through it and of
// jumping to its end and its middle.
// Budgets: the table shows in under 1 s; no frame of the scroll takes 50 ms or more.
//
//   zifora_bench_gui_open [--postings=N] [--pages=N]
//
// Prints one line "RESULT postings=… open_ms=… first_ms=… worst_frame_ms=… mean_frame_ms=…".

#include "bench/generate.h"
#include "core/record.h"
#include "core/settings.h"
#include "mainwindow.h"
#include "platform_qt/qtservices.h"
#include "program/program.h"
#include "shell/session.h"

#include <QApplication>
#include <QKeyEvent>
#include <QListView>
#include <QScrollBar>
#include <QTableView>
#include <QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

using namespace zifora;
using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

size_t option(int argc, char** argv, const char* name, size_t fallback) {
    const size_t length = std::strlen(name);
    for (int i = 1; i < argc; ++i)
        if (std::strncmp(argv[i], name, length) == 0 && argv[i][length] == '=')
            return static_cast<size_t>(std::strtoull(argv[i] + length + 1, nullptr, 10));
    return fallback;
}

/// The generated book with every posting moved into the first period of the first year.
core::RecordList onePeriodBook(size_t postings) {
    core::Value root = bench::makeBook({.postings = postings});
    core::RecordList clients;
    for (const core::Value& client : root["clients"].asArray())
        clients.push_back(client.recordRef());
    core::Record& year = *clients.front()->theYears().front();
    core::RecordList& first = year.thelists().front()->items();
    for (size_t i = 1; i < year.thelists().size(); ++i) {
        core::RecordList& other = year.thelists()[i]->items();
        first.insert(first.end(), other.begin(), other.end());
        other.clear();
    }
    return clients;
}

/// Lets every queued event run, then draws the view as the screen would show it.
void drawn(QWidget& view) {
    QApplication::processEvents();
    (void)view.grab();
}

} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    std::setlocale(LC_NUMERIC, "C");
    const size_t postings = option(argc, argv, "--postings", 100'000);
    const size_t pages = option(argc, argv, "--pages", 200);

    QTemporaryDir home;
    core::Places places = core::Places::forHome(home.path().toStdString());
    core::Settings settings(places.settingsFile);
    platform_qt::QtUi ui;
    platform_qt::QtScheduler scheduler;
    platform_qt::SystemClock clock;
    platform_qt::QtClipboard clipboard;
    platform_qt::QtWorkspace workspace;
    shell::NoPdfRenderer pdf;
    program::Program program(shell::Services{ui, scheduler, clock, clipboard, workspace, pdf},
                             places, settings);
    shell::Session& app = program.session();
    app.run("init");
    settings.setBool("firstStepsDone", true);
    app.setClients(onePeriodBook(postings));
    // The window opens on the second period, which is empty.
    app.selection().lists.setSelectionIndex(1);
    app.selectionChanged();

    const auto windowStart = Clock::now();
    gui::MainWindow window(app);
    window.show();
    drawn(window);
    const double firstMs = millisecondsSince(windowStart);

    const auto openStart = Clock::now();
    window.periodView()->setCurrentIndex(window.periodModel()->index(0, 0));
    drawn(*window.itemView()->viewport());
    const double openMs = millisecondsSince(openStart);
    const size_t shown = static_cast<size_t>(window.itemModel()->rowCount());

    window.itemView()->setFocus();
    double worst = 0, total = 0;
    for (size_t page = 0; page < pages; ++page) {
        const auto frameStart = Clock::now();
        QKeyEvent press(QEvent::KeyPress, Qt::Key_PageDown, Qt::NoModifier);
        QApplication::sendEvent(window.itemView(), &press);
        drawn(*window.itemView()->viewport());
        const double frame = millisecondsSince(frameStart);
        worst = std::max(worst, frame);
        total += frame;
    }
    const int pagedTo = window.itemView()->currentIndex().row();
    // Then the far jumps: to the last row, and the scroll bar dragged to the middle.
    auto frame = [&](auto&& step) {
        const auto frameStart = Clock::now();
        step();
        drawn(*window.itemView()->viewport());
        worst = std::max(worst, millisecondsSince(frameStart));
    };
    frame([&] {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_End, Qt::ControlModifier);
        QApplication::sendEvent(window.itemView(), &press);
    });
    const int lastRow = window.itemView()->currentIndex().row();
    frame([&] {
        QScrollBar* bar = window.itemView()->verticalScrollBar();
        bar->setValue((bar->minimum() + bar->maximum()) / 2);
    });

    std::printf("window with an empty period: %.1f ms\n", firstMs);
    std::printf("period of %zu postings selected and drawn: %.1f ms (%zu rows shown)\n", postings,
                openMs, shown);
    std::printf("%zu page-downs to row %d, then to row %d and the middle: worst frame %.1f ms, "
                "mean of the page-downs %.2f ms\n",
                pages, pagedTo, lastRow, worst, pages ? total / static_cast<double>(pages) : 0.0);
    std::printf(
        "RESULT postings=%zu open_ms=%.1f first_ms=%.1f worst_frame_ms=%.1f mean_frame_ms=%.2f\n",
        postings, openMs, firstMs, worst, pages ? total / static_cast<double>(pages) : 0.0);
    return shown == postings ? 0 : 1;
}
