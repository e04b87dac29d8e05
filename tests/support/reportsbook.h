#pragma once
// The shared book of the report tests (tests/data/reports_book.json) in a program on the
// headless services, with a PDF renderer that writes a stand-in file, so that the steps after
// a PDF can be seen, and golden files compared byte for byte.

#include "core/atomicfile.h"
#include "core/jsondump.h"
#include "core/keyedarchive.h"
#include "core/places.h"
#include "program/program.h"
#include "shell/headless.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

namespace zifora::testing {

// 2026-03-02T09:00:00Z
inline constexpr core::Date kToday{794134800.0};

/// Writes a small stand-in file for every request and keeps the requests; or fails.
class StandInPdf final : public shell::PdfRenderer {
  public:
    core::Result<void> render(const shell::PdfRequest& request) override {
        requests.push_back(request);
        if (failing) return core::fail(request.pdfPath + ": kein Platz auf dem Gerät");
        return core::writeFileAtomically(request.pdfPath, "%PDF-1.4 " + request.footer + "1\n");
    }
    core::Result<void> writeRtf(const std::string& htmlPath, const std::string& rtfPath) override {
        rtfs.push_back({htmlPath, rtfPath});
        if (failing) return core::fail(rtfPath + ": kein Platz auf dem Gerät");
        auto html = core::readWholeFile(htmlPath);
        if (!html) return std::unexpected(html.error());
        return core::writeFileAtomically(rtfPath, "{\\rtf1 " + std::to_string(html->size()) + "}");
    }

    bool failing = false;
    std::vector<shell::PdfRequest> requests;
    std::vector<std::pair<std::string, std::string>> rtfs;
};

inline std::filesystem::path makeHome() {
    std::string pattern =
        (std::filesystem::temp_directory_path() / "zifora-report-XXXXXX").string();
    return mkdtemp(pattern.data());
}

struct HomeFolder {
    std::filesystem::path home = makeHome();
    ~HomeFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(home, ignored);
    }
};

struct ReportsBook : HomeFolder {
    std::ostringstream out;
    shell::HeadlessServices headless{out, kToday};
    StandInPdf pdf;
    core::Places places = core::Places::forHome(home.string());
    core::Settings settings{places.settingsFile};
    program::Program program{shell::Services{headless.ui, headless.scheduler, headless.clock,
                                             headless.clipboard, headless.workspace, pdf},
                             places, settings, program::Resources{}};
    shell::Session& app = program.session();

    ReportsBook() {
        std::filesystem::create_directories(places.dataFolder);
        auto json =
            core::readWholeFile(std::string(ZIFORA_SOURCE_DIR) + "/tests/data/reports_book.json");
        EXPECT_TRUE(json);
        auto root = core::loadJson(*json);
        EXPECT_TRUE(root);
        const std::string database = core::joinPath(places.dataFolder, "Zifora.zfdb4");
        EXPECT_TRUE(core::writeKeyedArchiveFile(database, *root));
        EXPECT_TRUE(app.book().load(database));
        app.setClients(app.book().clients());
        // What the start and the preferences would have written.
        settings.setString("prefsCompany", "Grafikbüro Kranich & Co.");
        settings.setString("prefsTaxID", "21/815/08150");
        settings.setFloat("prefs1Rate", 19);
        settings.setFloat("prefs2Rate", 7);
        settings.setFloat("prefs3Rate", 10.7f);
        settings.setBool("prefsExportPrintWithList", true);
        settings.setBool("firstStepsDone", true);
    }

    void select(int64_t year, int64_t period) {
        app.selection().clients.setSelectionIndex(0);
        app.selectionChanged();
        app.selection().years.setSelectionIndex(year);
        app.selectionChanged();
        app.selection().lists.setSelectionIndex(period);
        app.selectionChanged();
    }
    std::string dataFile(const std::string& name) const {
        return core::joinPath(places.dataFolder, name);
    }
    /// The events since the last call, with the home written as $HOME.
    std::string events() {
        std::string text = out.str();
        out.str({});
        const std::string h = home.string();
        for (size_t at; (at = text.find(h)) != std::string::npos;)
            text.replace(at, h.size(), "$HOME");
        return text;
    }
};

/// Compares `actual` with the golden file FOLDER/NAME (FOLDER below the source tree) byte for
/// byte; with ZIFORA_UPDATE_GOLDEN=1 in the environment the file is written instead.
inline void expectGoldenFile(const std::string& folder, const std::string& name,
                             const std::string& actual) {
    const std::string path = std::string(ZIFORA_SOURCE_DIR) + "/" + folder + "/" + name;
    if (const char* update = std::getenv("ZIFORA_UPDATE_GOLDEN"); update && *update == '1') {
        ASSERT_TRUE(core::writeFileAtomically(path, actual));
        return;
    }
    auto golden = core::readWholeFile(path);
    ASSERT_TRUE(golden) << golden.error().message;
    EXPECT_EQ(*golden, actual) << "differs from " << path;
}

} // namespace zifora::testing
