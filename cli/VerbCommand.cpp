// zytool command ID|NAME IN OUT and zytool commands: the editor's command
// families run on a file without a window, through the same command
// classes, the same document and the same undo-less submit path as the
// editor's menus. Dialogs take their fields from the settings given with
// --set (for this run only), questions take --answer, messages go to
// standard error.

#include "cli/Verbs.h"

#include "app/doc/CmdUI.h"
#include "app/doc/Command.h"
#include "app/doc/ColourSelection.h"
#include "app/doc/CommandTable.h"
#include "app/doc/ConsoleUi.h"
#include "app/doc/Profile.h"
#include "app/doc/RangeExpression.h"
#include "app/doc/TavixDoc.h"
#include "cli/Tool.h"

#include <cstdio>
#include <cstdlib>

namespace zytool {
namespace {

// The console interface of one command run: it also counts program-error
// dialogs, which end the run with a failure.
class CCommandConsole : public CConsoleUi {
  public:
    void ShowExceptionDialog(const CExceptionDlgTexts& texts) override {
        ++m_Crashes;
        CConsoleUi::ShowExceptionDialog(texts);
    }
    int m_Crashes = 0;
};

// Restores the previous interface and profile when the verb ends.
struct ModelScope {
    ModelScope(CUserInterface* ui, CProfile* profile)
        : previousUi(ZySetUi(ui)), previousProfile(ZySetProfile(profile)) {}
    ~ModelScope() {
        ZySetUi(previousUi);
        ZySetProfile(previousProfile);
    }
    CUserInterface* previousUi;
    CProfile* previousProfile;
};

unsigned commandId(const std::string& text) {
    char* end = nullptr;
    unsigned long id = strtoul(text.c_str(), &end, 10);
    if (!text.empty() && end && *end == 0) return static_cast<unsigned>(id);
    if (const CCommandEntry* entry = FindCommandEntry(text)) return entry->m_nID;
    throw ToolError("no command is named '" + text + "' (see 'zytool commands')");
}

std::string commandLabel(unsigned id) {
    const CCommandEntry* entry = FindCommandEntry(id);
    return std::to_string(id) + (entry ? std::string(" (") + entry->m_Name + ")" : "");
}

// --set SECTION/KEY=VALUE into the run's settings.
void fillProfile(const Args& args, CMemoryProfile& profile) {
    for (const std::string& setting : args.all("set")) {
        size_t slash = setting.find('/');
        size_t equals = setting.find('=');
        if (slash == std::string::npos || equals == std::string::npos || slash == 0 ||
            equals < slash + 2)
            throw ToolError("--set takes SECTION/KEY=VALUE, not '" + setting + "'");
        profile.WriteString(setting.substr(0, slash), setting.substr(slash + 1, equals - slash - 1),
                            setting.substr(equals + 1));
    }
}

std::optional<bool> answerOption(const Args& args) {
    if (!args.has("answer")) return std::nullopt;
    const std::string answer = args.option("answer");
    if (answer == "yes") return true;
    if (answer == "no") return false;
    throw ToolError("--answer takes yes or no");
}

// The selection of --select, with the focus on its first image; without
// it every image is selected and the first one focused.
void selectImages(const Args& args, CTavixDoc& doc) {
    doc.SetFocus(0, false);
    if (!args.has("select")) {
        doc.GetSelectionModel().SelectAll();
        return;
    }
    std::vector<std::string> names;
    for (int i = 0; i < doc.GetImageCount(); ++i)
        names.push_back(doc.GetImageAt(i)->GetName());
    std::optional<std::vector<int32_t>> indices =
        RangeExpression::SelectIndices(args.option("select"), names);
    if (!indices) throw ToolError("Invalid range.");
    if (indices->empty()) throw ToolError("the selection holds no images");
    for (int32_t index : *indices)
        doc.GetSelectionModel().Select(index);
    doc.SetFocus(indices->front(), false);
}

// The palette well's colour selection of --colors, for the palette
// commands; none without it.
void selectColours(const Args& args) {
    CColourSelection& colours = ZyColourSelection();
    colours.Clear();
    if (!args.has("colors")) return;
    std::array<uint8_t, 256> flags{};
    std::string error;
    if (!ParseColourList(args.option("colors"), flags, error))
        throw ToolError("--colors: " + error);
    colours.SetFlags(flags);
}

void writeDocument(const CTavixDoc& doc, const std::string& path, int driver) {
    if (doc.GetImageCount() == 0)
        throw ToolError("the document holds no images after the command; nothing written");
    std::vector<TavixFrame> frames;
    for (int i = 0; i < doc.GetImageCount(); ++i)
        frames.push_back(doc.GetImageAt(i)->ToFrame());
    std::vector<const TavixFrame*> list;
    for (const TavixFrame& frame : frames)
        list.push_back(&frame);
    std::string error;
    if (!TavixWriteFileSafely(path, driver, list, error))
        throw ToolError("cannot write '" + path + "': " + error);
}

} // namespace

int runCommand(const Args& args) {
    if (args.positional.size() != 3)
        throw ToolError(
            "usage: zytool command ID|NAME IN OUT [--select EXPR] [--set SECTION/KEY=VALUE ...] "
            "[--colors LIST] [--answer yes|no] [--format NAME]");
    const unsigned id = commandId(args.positional[0]);
    CCommandInfo* info = CCommandInfoHandler::Find(id);
    if (!info) throw ToolError("command " + commandLabel(id) + " has no family in this build");
    if (info->NeedsWindow())
        throw ToolError("command " + commandLabel(id) + " needs the editor's window");
    bindCodecLibrary();
    const std::string& output = args.positional[2];
    const int driver = outputDriver(output, args.option("format"));

    CCommandConsole console;
    console.SetShowStatus(true);
    console.SetStrictQuestions(true);
    console.SetAnswer(answerOption(args));
    CMemoryProfile profile;
    fillProfile(args, profile);
    ModelScope scope(&console, &profile);

    CTavixDoc doc;
    if (!doc.OnOpenDocument(args.positional[1]))
        throw ToolError("cannot read '" + args.positional[1] + "'");
    selectImages(args, doc);
    selectColours(args);

    CCmdUI state(id);
    doc.GetCommandHandler().OnUpdateCommandRange(&state);
    if (!state.m_bEnabled)
        throw ToolError("command " + commandLabel(id) +
                        " is not available for this document and selection");
    CCommandHandler& handler = doc.GetCommandHandler();
    const int before = handler.GetSubmitCount();
    handler.OnCommandRange(id);
    if (console.m_Crashes) throw ToolError("command " + commandLabel(id) + " failed");
    if (console.GetUnansweredCount())
        throw ToolError("command " + commandLabel(id) +
                        " asks a question: answer it with --answer yes|no");
    if (console.GetRejectedFieldCount())
        throw ToolError("command " + commandLabel(id) +
                        " was not performed: a setting does not fit its field");
    if (handler.GetSubmitCount() == before)
        throw ToolError("command " + commandLabel(id) +
                        " was not performed (cancelled or nothing to do)");
    writeDocument(doc, output, driver);
    return 0;
}

int runCommands(const Args& args) {
    if (args.has("keys")) {
        const unsigned id = commandId(args.option("keys"));
        CCommandInfo* info = CCommandInfoHandler::Find(id);
        if (!info) throw ToolError("command " + commandLabel(id) + " has no family in this build");
        for (const std::string& key : info->GetSettingKeys())
            printf("%s\n", key.c_str());
        return 0;
    }
    for (const CCommandEntry& entry : CommandTable()) {
        const CCommandInfo* info = CCommandInfoHandler::Find(entry.m_nID);
        const char* state = !info                 ? "  (not in this build)"
                            : info->NeedsWindow() ? "  (needs the window)"
                                                  : "";
        printf("%5u  %-20s %s%s\n", entry.m_nID, entry.m_Name, entry.m_Prompt, state);
    }
    return 0;
}

} // namespace zytool
