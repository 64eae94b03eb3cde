// The command framework: dispatch, the update rule, one-level undo and its
// menu texts, saved parameters, and the program-error guard with the
// crash-report channel.

#include "DocTestSupport.h"
#include "ScriptedUi.h"

#include "app/cmds/FlipCmd.h"
#include "app/doc/CmdUI.h"
#include "app/doc/Command.h"
#include "app/doc/CommandIds.h"
#include "app/doc/CrashReport.h"
#include "app/doc/ExceptionDlg.h"
#include "app/doc/TavixDoc.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

using namespace zytest;

namespace {

// ---- Families for the tests, registered like the real ones ---------------------

constexpr unsigned kPlainId = 35490;
constexpr unsigned kThrowId = 35491;
constexpr unsigned kParamId = 35493;
constexpr unsigned kUndoThrowId = 35494;
constexpr unsigned kInitThrowId = 35495;
constexpr unsigned kUnusedId = 35499;

int g_liveCommands = 0;

class CTestCmd : public CCommand {
  public:
    CTestCmd() { ++g_liveCommands; }
    ~CTestCmd() override { --g_liveCommands; }
};

class CPlainTestCmd : public CTestCmd {
  public:
    CPlainTestCmd() {
        m_Name = "Plain Test";
        m_bMarksModified = false;
    }
};

class CThrowTestCmd : public CTestCmd {
  public:
    CThrowTestCmd() { m_Name = "Throwing Test"; }
    void Do() override { throw std::runtime_error("broken"); }
};

class CUndoThrowTestCmd : public CTestCmd {
  public:
    CUndoThrowTestCmd() {
        m_Name = "Undo Throwing Test";
        m_bCanUndo = true;
    }
    void Undo() override { throw 42; }
};

class CInitThrowTestCmd : public CTestCmd {
  public:
    CInitThrowTestCmd() { m_Name = "Init Throwing Test"; }
    bool Init(CTavixDoc*) override { throw std::out_of_range("before submit"); }
};

struct CParamTestDlg : CDialogData {
    int m_Amount = 0;
    const char* GetDialogName() const override { return "CParamTestDlg"; }
};

class CParamTestCmd : public CTestCmd {
  public:
    CParamTestCmd() {
        m_Name = "Parameters";
        m_Amount = GetProfileInt("CParamTestCmd", "m_Amount", 7);
    }
    bool Init(CTavixDoc* doc) override {
        m_pDoc = doc;
        CParamTestDlg dialog;
        dialog.m_Amount = m_Amount;
        if (!ZyUi().EditDialog(dialog)) return false;
        m_Amount = dialog.m_Amount;
        WriteProfileInt("CParamTestCmd", "m_Amount", m_Amount);
        Submit();
        return true;
    }
    int m_Amount;
};

class CParamTestInfo : public CCommandInfo {
  public:
    CParamTestInfo() : CCommandInfo(kParamId, [] { return new CParamTestCmd; }) {
        m_bNeedsImages = false;
    }
};

CCommandInfo g_plainInfo(kPlainId, [] { return new CPlainTestCmd; });
CCommandInfo g_throwInfo(kThrowId, [] { return new CThrowTestCmd; });
CParamTestInfo g_paramInfo;
CCommandInfo g_undoThrowInfo(kUndoThrowId, [] { return new CUndoThrowTestCmd; });
CCommandInfo g_initThrowInfo(kInitThrowId, [] { return new CInitThrowTestCmd; });

CCmdUI updated(CTavixDoc& doc, unsigned id) {
    CCmdUI ui(id);
    EXPECT_TRUE(doc.OnUpdateCmdUI(&ui));
    return ui;
}

std::string undoText(CTavixDoc& doc) {
    CCmdUI ui = updated(doc, ID_EDIT_UNDO);
    return (ui.m_bEnabled ? "enabled " : "disabled ") + ui.m_strText;
}

class CommandTest : public ::testing::Test {
  protected:
    CommandTest() {
        auto* image = new CTavixImage;
        image->Create(3, 2, 32);
        doc.InsertImage(0, image);
    }
    ScopedModel model;
    CTavixDoc doc;
};

} // namespace

TEST(CommandRegistry, DescriptorsAreListedInConstructionOrder) {
    const auto& list = CCommandInfoHandler::GetList();
    auto at = [&](const CCommandInfo* info) {
        return std::find(list.begin(), list.end(), info) - list.begin();
    };
    EXPECT_LT(at(&g_plainInfo), at(&g_throwInfo));
    EXPECT_LT(at(&g_throwInfo), at(&g_paramInfo));
    EXPECT_LT(at(&g_paramInfo), at(&g_initThrowInfo));
    EXPECT_LT(at(&g_initThrowInfo), static_cast<std::ptrdiff_t>(list.size()));
    ASSERT_NE(CCommandInfoHandler::Find(ID_IMAGE_FLIP_VERTICAL), nullptr);
    EXPECT_EQ(CCommandInfoHandler::Find(ID_IMAGE_FLIP_VERTICAL),
              CCommandInfoHandler::Find(ID_IMAGE_FLIP_HORIZONTAL));
    EXPECT_EQ(CCommandInfoHandler::Find(kUnusedId), nullptr);
}

TEST_F(CommandTest, UndoMenuTextInEveryState) {
    EXPECT_EQ(undoText(doc), "disabled Can't Undo\tCtrl+Z");
    doc.OnCmdMsg(kPlainId);
    EXPECT_EQ(undoText(doc), "disabled Can't Undo Plain Test\tCtrl+Z");
    doc.OnCmdMsg(ID_IMAGE_FLIP_HORIZONTAL);
    EXPECT_EQ(undoText(doc), "enabled Undo Flip\tCtrl+Z");
    doc.OnCmdMsg(ID_EDIT_UNDO);
    EXPECT_EQ(undoText(doc), "enabled Redo Flip\tCtrl+Z");
    doc.OnCmdMsg(ID_EDIT_UNDO);
    EXPECT_EQ(undoText(doc), "enabled Undo Flip\tCtrl+Z");
    // A new command replaces the old one, also after an undo.
    doc.OnCmdMsg(ID_EDIT_UNDO);
    doc.OnCmdMsg(kPlainId);
    EXPECT_EQ(undoText(doc), "disabled Can't Undo Plain Test\tCtrl+Z");
    EXPECT_EQ(g_liveCommands, 1);
    doc.DeleteContents();
    EXPECT_EQ(undoText(doc), "disabled Can't Undo\tCtrl+Z");
    EXPECT_EQ(g_liveCommands, 0);
}

TEST_F(CommandTest, UpdateRuleAndDispatch) {
    struct {
        unsigned id;
        bool withImages, empty;
    } cases[] = {{ID_IMAGE_FLIP_HORIZONTAL, true, false},
                 {ID_IMAGE_FLIP_VERTICAL, true, false},
                 {kParamId, true, true},
                 {kUnusedId, false, false}};
    CTavixDoc empty;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.id);
        EXPECT_EQ(updated(doc, c.id).m_bEnabled, c.withImages);
        EXPECT_EQ(updated(empty, c.id).m_bEnabled, c.empty);
    }
    // An ID no family takes does nothing; one outside the range is not ours.
    EXPECT_TRUE(doc.OnCmdMsg(kUnusedId));
    EXPECT_EQ(doc.GetCommandHandler().GetCurrent(), nullptr);
    EXPECT_FALSE(doc.OnCmdMsg(34999));
    CCmdUI outside(35500);
    EXPECT_FALSE(doc.OnUpdateCmdUI(&outside));
    // The tool handler sees commands first.
    std::vector<unsigned> seen;
    doc.SetToolHandler([&](unsigned id) {
        seen.push_back(id);
        return id == kPlainId;
    });
    doc.OnCmdMsg(kPlainId);
    EXPECT_EQ(doc.GetCommandHandler().GetCurrent(), nullptr);
    EXPECT_EQ(seen, std::vector<unsigned>{kPlainId});
}

TEST_F(CommandTest, SubmitMarksTheDocumentModifiedWhenTheCommandSaysSo) {
    doc.SetModifiedFlag(false);
    doc.OnCmdMsg(kPlainId);
    EXPECT_FALSE(doc.IsModified());
    doc.OnCmdMsg(ID_IMAGE_FLIP_VERTICAL);
    EXPECT_TRUE(doc.IsModified());
    EXPECT_EQ(static_cast<CFlipCmd*>(doc.GetCommandHandler().GetCurrent())->GetDirection(),
              CFlipCmd::Vertical);
}

TEST_F(CommandTest, ParametersAreReadAndSavedInTheProfile) {
    int shown = -1;
    model.ui.dialogs["CParamTestDlg"] = [&](CDialogData& data) {
        auto& dialog = static_cast<CParamTestDlg&>(data);
        shown = dialog.m_Amount;
        dialog.m_Amount = 9;
        return true;
    };
    doc.OnCmdMsg(kParamId);
    EXPECT_EQ(shown, 7);
    EXPECT_EQ(model.profile.GetInt("CParamTestCmd", "m_Amount", 0), 9);
    CCommand* kept = doc.GetCommandHandler().GetCurrent();
    ASSERT_NE(kept, nullptr);

    // The next one starts from the saved value; Cancel writes nothing and
    // keeps the current command.
    model.ui.dialogs["CParamTestDlg"] = [&](CDialogData& data) {
        shown = static_cast<CParamTestDlg&>(data).m_Amount;
        static_cast<CParamTestDlg&>(data).m_Amount = 1;
        return false;
    };
    doc.OnCmdMsg(kParamId);
    EXPECT_EQ(shown, 9);
    EXPECT_EQ(model.profile.GetInt("CParamTestCmd", "m_Amount", 0), 9);
    EXPECT_EQ(doc.GetCommandHandler().GetCurrent(), kept);
    EXPECT_EQ(g_liveCommands, 1);
}

TEST_F(CommandTest, AThrowingCommandLeavesTheCrashLineAndTheErrorTexts) {
    doc.OnCmdMsg(ID_IMAGE_FLIP_HORIZONTAL);
    const DocSnapshot before = snapshot(doc);
    doc.OnCmdMsg(kThrowId);
    EXPECT_EQ(model.ui.crashLines, std::vector<std::string>{"Zy, crash, OnCommand, Throwing Test"});
    EXPECT_EQ(model.ui.logLines, model.ui.crashLines);
    ASSERT_EQ(model.ui.exceptionDialogs.size(), 1u);
    const CExceptionDlgTexts& texts = model.ui.exceptionDialogs[0];
    EXPECT_EQ(texts.m_Caption, "Zy Program Error");
    EXPECT_EQ(texts.m_What, "The command you are performing, \"Throwing Test\", is causing an "
                            "unidentified program error.  No data has been lost but the command "
                            "has not been performed");
    EXPECT_EQ(texts.m_Scope, "The problem is the result of a programming error and may cause "
                             "additional problems.");
    EXPECT_EQ(texts.m_Action,
              std::string("Save your work and try the operation again.  Send "
                          "an e-mail to ") +
                  kZySupportAddress +
                  " attaching the file and the steps needed to reproduce the problem");
    // The flip's undo data went with the submission; the failed command is gone.
    EXPECT_EQ(doc.GetCommandHandler().GetCurrent(), nullptr);
    EXPECT_EQ(undoText(doc), "disabled Can't Undo\tCtrl+Z");
    EXPECT_EQ(snapshot(doc).objects, before.objects);
    EXPECT_EQ(g_liveCommands, 0);

    // A command failing before it is submitted is named as well and freed.
    doc.OnCmdMsg(kInitThrowId);
    EXPECT_EQ(model.ui.crashLines.back(), "Zy, crash, OnCommand, Init Throwing Test");
    EXPECT_EQ(g_liveCommands, 0);
}

TEST_F(CommandTest, AThrowingUndoIsGuardedAndStillFlips) {
    doc.OnCmdMsg(kUndoThrowId);
    doc.OnCmdMsg(ID_EDIT_UNDO);
    EXPECT_EQ(model.ui.crashLines,
              std::vector<std::string>{"Zy, crash, OnUndo, Undo Throwing Test"});
    EXPECT_EQ(model.ui.exceptionDialogs.size(), 1u);
    EXPECT_EQ(undoText(doc), "enabled Redo Undo Throwing Test\tCtrl+Z");
    doc.OnCmdMsg(ID_EDIT_UNDO); // Redo runs Do, which works
    EXPECT_EQ(model.ui.crashLines.size(), 1u);
    EXPECT_EQ(undoText(doc), "enabled Undo Undo Throwing Test\tCtrl+Z");
}

TEST_F(CommandTest, TheCrashLineNamesTheCommandThatThrewNotTheLastOneStarted) {
    doc.OnCmdMsg(kUndoThrowId);
    // A command started and cancelled in between must not take the blame.
    model.ui.dialogs["CParamTestDlg"] = [](CDialogData&) { return false; };
    doc.OnCmdMsg(kParamId);
    doc.OnCmdMsg(ID_EDIT_UNDO);
    EXPECT_EQ(model.ui.crashLines,
              std::vector<std::string>{"Zy, crash, OnUndo, Undo Throwing Test"});
    ASSERT_EQ(model.ui.exceptionDialogs.size(), 1u);
    EXPECT_NE(model.ui.exceptionDialogs[0].m_What.find("\"Undo Throwing Test\""),
              std::string::npos);
}

// ---- Crash-report channel --------------------------------------------------------

namespace {

// Accepts one connection on 127.0.0.1 and collects what it receives.
class Listener {
  public:
    explicit Listener(int port = 0) {
        m_fd = socket(AF_INET, SOCK_STREAM, 0);
        int on = 1;
        setsockopt(m_fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(static_cast<uint16_t>(port));
        if (bind(m_fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
            listen(m_fd, 1) != 0) {
            close(m_fd);
            m_fd = -1;
            return;
        }
        socklen_t length = sizeof address;
        getsockname(m_fd, reinterpret_cast<sockaddr*>(&address), &length);
        m_port = ntohs(address.sin_port);
        m_thread = std::thread([this] {
            // Bounded, so that a sender that never comes cannot hang the test.
            pollfd waiter{m_fd, POLLIN, 0};
            if (poll(&waiter, 1, 10000) != 1) return;
            int client = accept(m_fd, nullptr, nullptr);
            if (client < 0) return;
            char buffer[512];
            ssize_t n;
            while ((n = read(client, buffer, sizeof buffer)) > 0)
                m_received.append(buffer, static_cast<size_t>(n));
            close(client);
        });
    }
    ~Listener() {
        if (m_fd >= 0) shutdown(m_fd, SHUT_RDWR);
        if (m_thread.joinable()) m_thread.join();
        if (m_fd >= 0) close(m_fd);
    }
    bool ok() const { return m_fd >= 0; }
    int port() const { return m_port; }
    // Waits for the connection to end.
    std::string received() {
        if (m_thread.joinable()) m_thread.join();
        return m_received;
    }

  private:
    int m_fd = -1;
    int m_port = 0;
    std::thread m_thread;
    std::string m_received;
};

// A loopback port that nobody listens on.
int closedPort() {
    Listener probe;
    int port = probe.port();
    return port;
}

} // namespace

TEST(CrashReport, SendsTheFirst255CharactersWithoutTheTerminatingZero) {
    Listener listener;
    ASSERT_TRUE(listener.ok());
    const std::string line = "Zy, crash, OnCommand, " + std::string(400, 'x');
    EXPECT_TRUE(SendCrashReport("127.0.0.1", listener.port(), line));
    EXPECT_EQ(listener.received(), line.substr(0, 255));
}

TEST(CrashReport, NothingIsSentUnlessSwitchedOnAndFailuresReturn) {
    CMemoryProfile profile;
    EXPECT_FALSE(ReportCrashLine(profile, "line"));
    profile.WriteString("CZy", "m_CrashReportHost", "127.0.0.1");
    EXPECT_FALSE(ReportCrashLine(profile, "line")); // still switched off
    EXPECT_FALSE(SendCrashReport("127.0.0.1", closedPort(), "line", 500));
    EXPECT_FALSE(SendCrashReport("", 15000, "line"));
    EXPECT_FALSE(SendCrashReport("127.0.0.1", 0, "line"));
}

TEST_F(CommandTest, TheGuardSendsTheCrashLineWhenReportingIsOn) {
    Listener listener(kCrashReportPort);
    if (!listener.ok()) GTEST_SKIP() << "port 15000 is taken on this machine";
    model.profile.WriteInt("CZy", "m_CrashReport", 1);
    model.profile.WriteString("CZy", "m_CrashReportHost", "127.0.0.1");
    model.ui.forwardCrashReports = true;
    doc.OnCmdMsg(kThrowId);
    EXPECT_EQ(listener.received(), "Zy, crash, OnCommand, Throwing Test");
}
