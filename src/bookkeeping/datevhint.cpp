#include "bookkeeping/datevhint.h"

#include "shell/session.h"

namespace zifora::bookkeeping {

// The kernel's types are this library's everyday words.
using namespace shell;

// The double blank in "EINEM  GEGENKONTO" and the grammar of the warning are its own.
const std::string_view kDatevHintText =
    "\nZIFORA UND DATEV SIND WIE BADEWANNEN UND KATZEN: EIGENTLICH NICHT FÜREINANDER "
    "GEDACHT!\n\nDATEV GEHT IMMER, IMMER, IMMER VON EINER DOPPELTEN BUCHFÜHRUNG AUS UND DU "
    "BENUTZT ZIFORA GERADE DESWEGEN, WEIL DU DIES NICHT TUN MUSST!\n\nDATEV VERLANGT "
    "ZWINGENDEN NACH EINEM  GEGENKONTO UND DEM PASSENDEM BUCHUNGSSCHLÜSSEL. BEIM EXPORT "
    "VERSUCHT ZIFORA DIES AUS DEN VORHANDENEN DATEN ZU ERSTELLEN, BZW. ZU 'FAKEN' UND DIES "
    "BEDEUTET, DASS DU UND/ODER DER STEUERBERATER GEGEBENENFALLS BEI EINZELNEN POSTEN NOCH "
    "EINMAL HAND ANLEGEN MÜSSEN.\n\nSPRICH DIES AM BESTEN VORHER MIT IHM AB!\n\nDU KANNST "
    "JEDERZEIT IM 'POSTENFENSTER' JEDEM POSTEN INDIVIDUELL EIN EIGENES GEGENKONTO UND DEN "
    "PASSENDEN BUCHUNGSSCHLÜSSEL ZUWEISEN.\n\nZIFORA EXPORTIERT VALIDE (!) UND VOR ALLEM "
    "'RICHTIGE' DATEV DATEIEN UND KEINE ALTEN UND ÜBERHOLTEN POSTAUSTAUSCHDATEN. MANCHE "
    "STEUERBERATER MÜSSEN DARAUF HINGEWIESEN WERDEN. JEDES AKTUELLE VON STEUERBERATERN "
    "VERWENDETE PROGRAMM IST IN DER LAGE, DIESE AUCH ZU IMPORTIEREN!\n\nNATÜRLICH KANN "
    "ZIFORA DEN INHALT DEINER EXPORTIERTEN DATEIEN NICHT AUF RICHTIGKEIT UND SINNIGKEIT "
    "ÜBERPRÜFEN! DAFÜR BIST AUSSCHLIESSLICH DU ZUSTÄNDIG!\n\nFEEDBACK UND "
    "VERBESSERUNGSVORSCHLÄGE SIND NATÜRLICH, WIE IMMER, JEDERZEIT WILLKOMMEN!\n";

void showDatevHintIfDue(shell::Session& session, std::string_view dontShowAgainKey) {
    core::Settings& settings = session.settings();
    if (settings.getInteger("prefsSelectedExportTab") != 99 || settings.getBool(dontShowAgainKey))
        return;
    AlertRequest hint{"ACHTUNG! ACHTUNG! ACHTUNG!",
                      std::string(kDatevHintText),
                      {"OK, Ich habe verstanden", "OK, bitte nicht erneut anzeigen"},
                      AlertStyle::Warning,
                      {}};
    if (session.services().ui.alert(hint) == 0) settings.setBool(dontShowAgainKey, true);
}

} // namespace zifora::bookkeeping
