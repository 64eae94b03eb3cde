#include "app/doc/UserInterface.h"

#include "app/doc/ConsoleUi.h"
#include "app/doc/CrashReport.h"
#include "app/doc/CurrentColours.h"
#include "app/doc/Profile.h"
#include "app/doc/TavixImage.h"

namespace {

CUserInterface* g_ui = nullptr;
CProfile* g_profile = nullptr;

CUserInterface& builtInUi() {
    static CConsoleUi ui;
    return ui;
}

CProfile& builtInProfile() {
    static CMemoryProfile profile;
    return profile;
}

} // namespace

void CUserInterface::ReportCrash(const std::string& line) {
    ReportCrashLine(ZyProfile(), line);
}

CCurrentColour CUserInterface::GetCurrentColour(int number) const {
    return CCurrentColours::Get(ZyProfile(), number);
}

void CUserInterface::OfferClipboardImages(const std::vector<const CTavixImage*>&) {}

std::vector<std::unique_ptr<CTavixImage>> CUserInterface::ReadClipboardImages(const std::string&) {
    return {};
}

CUserInterface& ZyUi() {
    return g_ui ? *g_ui : builtInUi();
}

CUserInterface* ZySetUi(CUserInterface* ui) {
    CUserInterface* previous = g_ui ? g_ui : &builtInUi();
    g_ui = ui;
    return previous;
}

CProfile& ZyProfile() {
    return g_profile ? *g_profile : builtInProfile();
}

CProfile* ZySetProfile(CProfile* profile) {
    CProfile* previous = g_profile ? g_profile : &builtInProfile();
    g_profile = profile;
    return previous;
}
