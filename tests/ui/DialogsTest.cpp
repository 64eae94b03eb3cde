// The dialogs and links of the shell: the program-error dialog, the Qt
// progress window with Cancel, the Preferences sheet (defaults, presets, OK
// writes every value and configures the display card), the display-card
// messages byte for byte, the settings file's keys, and the file dialog's
// filters.

#include "UiTestSupport.h"

#include "app/doc/ExceptionDlg.h"
#include "app/doc/ProgressDlg.h"
#include "app/ui/AboutDlg.h"
#include "app/ui/DisplayCard.h"
#include "app/ui/ExceptionDlg.h"
#include "app/ui/OptionsSheet.h"
#include "app/ui/QtProgressWindow.h"
#include "app/ui/SelectWildcardDlg.h"
#include "app/ui/TavixFileDlg.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSettings>
#include <QSlider>
#include <QSpinBox>
#include <QTcpServer>
#include <QTcpSocket>

#include <cstring>

using namespace uitest;

namespace {

std::vector<uint32_t> words(const std::vector<uint8_t>& bytes, size_t count) {
    std::vector<uint32_t> out;
    for (size_t i = 0; i < count && 4 * i + 3 < bytes.size(); ++i)
        out.push_back(static_cast<uint32_t>(bytes[4 * i]) << 24 | bytes[4 * i + 1] << 16 |
                      bytes[4 * i + 2] << 8 | bytes[4 * i + 3]);
    return out;
}

// A card on 127.0.0.1 that takes one connection and keeps what it was sent.
class FakeCard {
  public:
    FakeCard() { EXPECT_TRUE(m_Server.listen(QHostAddress::LocalHost)); }
    int Port() const { return m_Server.serverPort(); }
    std::vector<uint8_t> Received() {
        std::vector<uint8_t> bytes;
        if (!m_Server.waitForNewConnection(5000)) return bytes;
        QTcpSocket* socket = m_Server.nextPendingConnection();
        while (socket->state() == QAbstractSocket::ConnectedState || socket->bytesAvailable()) {
            if (!socket->bytesAvailable() && !socket->waitForReadyRead(5000)) break;
            const QByteArray data = socket->readAll();
            bytes.insert(bytes.end(), data.begin(), data.end());
        }
        return bytes;
    }

  private:
    QTcpServer m_Server;
};

TEST(ExceptionDialog, ShowsTheThreeHeadingsAndTexts) {
    EnsureApplication();
    const CExceptionDlgTexts texts = CommandExceptionTexts("Flip");
    CExceptionDlg dialog(texts);
    EXPECT_EQ(dialog.windowTitle(), "Zy Program Error");
    QStringList headings;
    for (QLabel* label : dialog.findChildren<QLabel*>())
        headings << label->text();
    EXPECT_TRUE(headings.contains("What:"));
    EXPECT_TRUE(headings.contains("Scope:"));
    EXPECT_TRUE(headings.contains("Action:"));
    EXPECT_EQ(dialog.WhatText().toStdString(),
              "The command you are performing, \"Flip\", is causing an unidentified program "
              "error.  No data has been lost but the command has not been performed");
    EXPECT_EQ(dialog.ScopeText().toStdString(), "The problem is the result of a programming "
                                                "error and may cause additional problems.");
    EXPECT_TRUE(dialog.ActionText().startsWith("Save your work and try the operation again.  "
                                               "Send an e-mail to "));
}

TEST(ProgressWindow, ShowsTheDriverCountsAndReportsCancelOnce) {
    ScriptedUi script;
    TavixAbout about{};
    strcpy(about.description, "Targa");
    strcpy(about.author, "Nadir Tools");
    strcpy(about.version, "1.2");
    CProgressDlg dlg("Reading x.tga", &about);
    ASSERT_TRUE(dlg.Create(script.Ui()));
    EXPECT_FALSE(script.Ui().IsMainWindowEnabled());
    CQtProgressWindow* window = nullptr;
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (auto* progress = qobject_cast<CQtProgressWindow*>(widget)) window = progress;
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(window->windowTitle(), "Reading x.tga");
    EXPECT_EQ(window->ModuleText(), "Targa");
    dlg.SetStatus("Opening");
    dlg.SetRange(0, 10);
    dlg.SetPos(3);
    EXPECT_EQ(window->StatusText(), "Opening");
    EXPECT_EQ(window->CountText(), "3/10");
    dlg.StepIt();
    EXPECT_EQ(window->CountText(), "4/10");

    EXPECT_FALSE(dlg.CheckCancelButton());
    window->CancelButton()->click();
    EXPECT_TRUE(dlg.CheckCancelButton());
    EXPECT_FALSE(dlg.CheckCancelButton());
    dlg.DestroyWindow();
    EXPECT_TRUE(script.Ui().IsMainWindowEnabled());
}

TEST(Preferences, AFirstStartShowsTheDefaults) {
    TempProfile profile;
    COptionsSheet sheet;
    QStringList tabs;
    for (int i = 0; i < sheet.Tabs()->count(); ++i)
        tabs << sheet.Tabs()->tabText(i);
    EXPECT_EQ(tabs, QStringList({"Worksheet", "Import", "Artist Download", "General"}));
    const uint32_t colours[4] = {0xFFFFFFFF, 0xFFB0B0B0, 0xFF989898, 0xFF909090};
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(sheet.m_Worksheet->m_Color[i]->Colour(), colours[i]);
    EXPECT_EQ(sheet.m_Worksheet->m_CheckerSize->value(), 4);
    EXPECT_EQ(sheet.m_Worksheet->m_CellSize->text(), "16");
    EXPECT_TRUE(sheet.m_Worksheet->m_AnimateZoom->isChecked());
    EXPECT_FALSE(sheet.m_Worksheet->m_LightIsSpotlight->isChecked());
    EXPECT_EQ(sheet.m_Worksheet->m_ScreenWidth->value(), 640);
    EXPECT_EQ(sheet.m_Worksheet->m_ScreenHeight->value(), 480);
    EXPECT_TRUE(sheet.m_Import->m_NameHandling[0]->isChecked());
    EXPECT_FALSE(sheet.m_Import->m_PathToComment->isChecked());
    EXPECT_EQ(sheet.m_Ads->m_Width->value(), 512);
    EXPECT_EQ(sheet.m_Ads->m_Height->value(), 240);
    EXPECT_EQ(sheet.m_Ads->m_Bpp->value(), 16);
    EXPECT_EQ(sheet.m_Ads->m_Port->value(), 7777);
    EXPECT_EQ(sheet.m_Ads->m_BackColor->Colour(), 0xFF000000u);
    EXPECT_EQ(sheet.m_Ads->m_IP->text(), "localhost");
    EXPECT_EQ(sheet.m_General->m_GridSize->value(), 10);
    EXPECT_EQ(sheet.m_General->m_FrameRate->value(), 15);
    EXPECT_EQ(sheet.m_General->m_CenterPointColor->Colour(), 0xFFE0E000u);
}

TEST(Preferences, PresetsFillTheScreenSize) {
    TempProfile profile;
    COptionsSheet sheet;
    QComboBox* presets = sheet.m_Worksheet->m_Presets;
    const QStringList expected = {"choose a pre-set", "512x240",  "512x256",
                                  "640x480",          "1024x512", "1024x768"};
    ASSERT_EQ(presets->count(), expected.size());
    for (int i = 0; i < presets->count(); ++i)
        EXPECT_EQ(presets->itemText(i), expected[i]);
    presets->setCurrentIndex(4);
    emit presets->activated(4);
    EXPECT_EQ(sheet.m_Worksheet->m_ScreenWidth->value(), 1024);
    EXPECT_EQ(sheet.m_Worksheet->m_ScreenHeight->value(), 512);
    EXPECT_EQ(sheet.m_Worksheet->m_ScreenX->value(), 0);
}

TEST(Preferences, OkWritesEveryValueAndConfiguresTheCard) {
    TempProfile profile;
    FakeCard card;
    profile.Profile().WriteInt("ADS", "Port", card.Port());
    profile.Profile().WriteString("ADS", "IP", "127.0.0.1");
    COptionsSheet sheet;
    sheet.m_Worksheet->m_CheckerSize->setValue(6);
    sheet.Apply(nullptr);

    const std::pair<const char*, const char*> keys[] = {
        {"CImageView", "m_CheckerColor1"},
        {"CImageView", "m_CheckerColor4"},
        {"CImageView", "m_CheckerSize"},
        {"CImageView", "m_bAnimateZoom"},
        {"CImageView", "m_bLightIsSpotlight"},
        {"CImageView", "m_ScreenX"},
        {"CImageView", "m_ScreenHeight"},
        {"CImportCmd", "m_NameHandling"},
        {"CImportCmd", "m_NameFormat"},
        {"CImportCmd", "m_PathToComment"},
        {"ADS", "Width"},
        {"ADS", "Height"},
        {"ADS", "Bpp"},
        {"ADS", "BackColor"},
        {"ADS", "IP"},
        {"ADS", "Port"},
        {"CImageView", "m_GridColor"},
        {"CImageView", "m_GridStyle"},
        {"CImageView", "m_GridSize"},
        {"CImageView", "m_CenterPointColor"},
        {"CImageView", "m_HotPointColor"},
        {"CImageListView", "m_FrameRate"},
    };
    for (auto [section, entry] : keys)
        EXPECT_TRUE(profile.Has(section, entry)) << entry;
    EXPECT_EQ(profile.Profile().GetInt("CImageView", "m_CheckerSize", 0), 6);
    EXPECT_EQ(static_cast<uint32_t>(profile.Profile().GetInt("CImageView", "m_CheckerColor2", 0)),
              0xFFB0B0B0u);

    const std::vector<uint8_t> message = card.Received();
    EXPECT_EQ(words(message, 6), (std::vector<uint32_t>{1, 24, 512, 240, 16, 0xFF000000}));
    EXPECT_EQ(message.size(), 24u);
}

TEST(DisplayCard, ConfigureMessageWithNoSettingsByteForByte) {
    TempProfile profile;
    FakeCard card;
    CAdsSettings settings;
    settings.Load(profile.Profile());
    EXPECT_EQ(settings.m_IP, "localhost");
    EXPECT_EQ(settings.m_Port, 7777);
    const std::vector<uint8_t> expected = {0, 0, 0, 1,   0, 0, 0, 24, 0,    0, 2, 0,
                                           0, 0, 0, 240, 0, 0, 0, 16, 0xFF, 0, 0, 0};
    EXPECT_EQ(BuildConfigureMessage(settings), expected);
    ASSERT_TRUE(SendToDisplayCard("127.0.0.1", card.Port(), BuildConfigureMessage(settings)));
    EXPECT_EQ(card.Received(), expected);
}

TEST(DisplayCard, ImageMessageCarriesHeaderPaletteAndRows) {
    EnsureApplication();
    auto image = MakeImage(3, 2, 8);
    image->SetPaletteEntry(1, {0x30, 0x20, 0x10, 0x80}); // blue, green, red, alpha
    image->GetRow(1)[2] = 7;
    const std::vector<uint8_t> message = BuildImageMessage(*image);
    const int pitch = image->GetPitch();
    ASSERT_EQ(message.size(), static_cast<size_t>(1048 + pitch * 2));
    EXPECT_EQ(words(message, 6), (std::vector<uint32_t>{2, static_cast<uint32_t>(1048 + pitch * 2),
                                                        3, 2, 8, static_cast<uint32_t>(pitch)}));
    EXPECT_EQ(words(message, 8)[7], 0x80102030u);
    EXPECT_EQ(message[1048 + pitch + 2], 7);
}

TEST(DisplayCard, AnUnreachableCardIsSilent) {
    EnsureApplication();
    QTcpServer closed;
    ASSERT_TRUE(closed.listen(QHostAddress::LocalHost));
    const int port = closed.serverPort();
    closed.close();
    EXPECT_FALSE(SendToDisplayCard("127.0.0.1", port, {1, 2, 3}, 500));
    EXPECT_FALSE(SendToDisplayCard("", 7777, {1}, 500));
}

TEST(Settings, KeysAreSectionAndValueAndColoursComeBackWhole) {
    TempProfile profile;
    CQtProfile& p = profile.Profile();
    p.WriteInt("CImageView", "m_CheckerSize", 5);
    p.WriteInt("CImageView", "m_CheckerColor1", static_cast<int>(StoredColour(1, 2, 3)));
    p.WriteString("ADS", "IP", "card.local");
    p.Flush();
    QFile file(profile.Folder() + "/Zy.ini");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll());
    EXPECT_TRUE(text.contains("[CImageView]"));
    EXPECT_TRUE(text.contains("m_CheckerSize=5"));
    EXPECT_TRUE(text.contains("[ADS]"));
    EXPECT_EQ(StoredColour(1, 2, 3), 0xFF010203u);
    EXPECT_EQ(static_cast<uint32_t>(p.GetInt("CImageView", "m_CheckerColor1", 0)), 0xFF010203u);
    // A colour written by hand as an unsigned number reads back the same.
    p.Settings().setValue("CImageView/m_GridColor", "4278190335");
    EXPECT_EQ(static_cast<uint32_t>(p.GetInt("CImageView", "m_GridColor", 0)), 0xFF0000FFu);
    EXPECT_EQ(p.GetInt("CImageView", "missing", -7), -7);
    EXPECT_EQ(p.GetString("ADS", "IP", ""), "card.local");
}

TEST(FileDialog, FiltersComeFromTheCodecRuleAndSavesGetAnExtension) {
    TavixAbout drivers[2] = {};
    strcpy(drivers[0].extensions[0], ".tga");
    strcpy(drivers[0].description, "Targa");
    strcpy(drivers[1].extensions[0], ".fsh");
    strcpy(drivers[1].description, "FSH - PC Shape File");
    CTavixFileTypesList rows;
    rows.BuildFrom(drivers);
    const TavixFileFilter open = TavixBuildFileFilter(rows, true, "", -1);
    const QStringList filters = CTavixFileDlg::NameFilters(open);
    ASSERT_EQ(filters.size(), static_cast<int>(open.entries.size()));
    EXPECT_EQ(filters.front(), "fsh - FSH - PC Shape File (*.fsh)");
    EXPECT_TRUE(filters.back().startsWith("All Files"));
    EXPECT_EQ(CTavixFileDlg::WithExtension("/tmp/out", rows, 1), "/tmp/out.fsh");
    EXPECT_EQ(CTavixFileDlg::WithExtension("/tmp/out.tga", rows, 1), "/tmp/out.tga");
    EXPECT_EQ(CTavixFileDlg::AllSupported(open), "All supported files (*.fsh *.tga)");
}

TEST(FileDialog, ATypedExtensionChoosesTheDriverOverTheFilter) {
    TavixAbout drivers[3] = {};
    strcpy(drivers[0].extensions[0], ".fsh");
    strcpy(drivers[1].extensions[0], ".ssh");
    strcpy(drivers[2].extensions[0], ".png");
    strcpy(drivers[2].extensions[1], ".bmp"); // stands in for a second driver's name
    CTavixFileTypesList rows;
    rows.BuildFrom(drivers);
    struct Case {
        const char* typed;
        int filterDriver;
        int expected;
    } cases[] = {
        {"/a/sprites.ssh", 0, 1},     // the fsh filter, an ssh name
        {"/a/one.PNG", 0, 2},         // any case
        {"/a/sprites", 1, 1},         // no extension: the filter decides
        {"/a/sprites.xyz", 1, 1},     // no driver owns it: the filter decides
        {"/a/dir.png/sprites", 0, 0}, // a dot in a folder is no extension
    };
    for (const Case& c : cases)
        EXPECT_EQ(CTavixFileDlg::SaveDriver(c.typed, rows, c.filterDriver), c.expected) << c.typed;
}

TEST(SmallDialogs, SelectExpressionLimitAndAboutText) {
    EnsureApplication();
    CSelectWildcardDlg dialog("1..3", 2);
    EXPECT_EQ(dialog.ExpressionEdit()->maxLength(), 200);
    EXPECT_EQ(dialog.Mode(), 2);
    EXPECT_EQ(dialog.ModeBox()->count(), 3);

    TavixAbout about{};
    strcpy(about.description, "Tavix");
    strcpy(about.version, "9.9");
    const QString text = CAboutDlg::LibraryText(&about, "/lib/libtavix.so", 8);
    EXPECT_TRUE(text.contains("/lib/libtavix.so"));
    EXPECT_TRUE(text.contains("Version: 9.9"));
    EXPECT_TRUE(CAboutDlg::LibraryText(nullptr, "x", 0).contains("no about record"));
}

} // namespace
