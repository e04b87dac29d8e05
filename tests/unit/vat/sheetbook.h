#pragma once
// The shared report book (tests/data/reports_book.json) in a program on the headless services
// with a PDF renderer that keeps its requests and writes a stand-in file, or fails.

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

namespace zifora::vat::testing {

// 2026-03-02T09:00:00Z
inline constexpr core::Date kToday{794134800.0};

class KeptPdf final : public shell::PdfRenderer {
  public:
    core::Result<void> render(const shell::PdfRequest& request) override {
        requests.push_back(request);
        if (failing) return core::fail(request.pdfPath + ": kein Platz auf dem Gerät");
        return core::writeFileAtomically(request.pdfPath, "%PDF-1.4\n");
    }
    core::Result<void> writeRtf(const std::string&, const std::string& rtfPath) override {
        return core::fail(rtfPath + ": nicht hier");
    }
    bool failing = false;
    std::vector<shell::PdfRequest> requests;
};

struct SheetHome {
    SheetHome() {
        std::string pattern =
            (std::filesystem::temp_directory_path() / "zifora-sheet-XXXXXX").string();
        home = mkdtemp(pattern.data());
    }
    ~SheetHome() {
        std::error_code ignored;
        std::filesystem::remove_all(home, ignored);
    }
    std::filesystem::path home;
};

struct SheetBook : SheetHome {
    std::ostringstream out;
    shell::HeadlessServices headless{out, kToday};
    KeptPdf pdf;
    core::Places places = core::Places::forHome(home.string());
    core::Settings settings{places.settingsFile};
    program::Program program{shell::Services{headless.ui, headless.scheduler, headless.clock,
                                             headless.clipboard, headless.workspace, pdf},
                             places, settings, program::Resources{}};
    shell::Session& app = program.session();

    SheetBook() {
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
        settings.setString("prefsCompany", "Grafikbüro Kranich & Co.");
        settings.setString("prefsTaxID", "21/815/08150");
        settings.setString("prefsELSTERID", "9198");
        settings.setFloat("prefs1Rate", 19);
        settings.setFloat("prefs2Rate", 7);
        settings.setFloat("prefs3Rate", 10.7f);
        settings.setBool("prefsExportPrintWithList", true);
        settings.setBool("firstStepsDone", true);
        select(0, 2); // 2025, März
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
    std::string events() {
        std::string text = out.str();
        out.str({});
        const std::string h = home.string();
        for (size_t at; (at = text.find(h)) != std::string::npos;)
            text.replace(at, h.size(), "$HOME");
        return text;
    }
};

/// Compares `actual` with tests/unit/vat/golden/NAME byte for byte; with
/// ZIFORA_UPDATE_GOLDEN=1 in the environment the file is written instead.
inline void expectGolden(const std::string& name, const std::string& actual) {
    const std::string path = std::string(ZIFORA_SOURCE_DIR) + "/tests/unit/vat/golden/" + name;
    if (const char* update = std::getenv("ZIFORA_UPDATE_GOLDEN"); update && *update == '1') {
        ASSERT_TRUE(core::writeFileAtomically(path, actual));
        return;
    }
    auto golden = core::readWholeFile(path);
    ASSERT_TRUE(golden) << golden.error().message;
    EXPECT_EQ(*golden, actual) << "differs from " << path;
}

} // namespace zifora::vat::testing
