#include "UiTestSupport.h"

#include "app/doc/UserInterface.h"
#include "codec/TavixBinding.h"

#include <QApplication>
#include <QDir>
#include <QSettings>

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

// The system's font library keeps a few blocks for the life of the
// process; they are not ours to free.
extern "C" __attribute__((visibility("default"), used)) const char* __lsan_default_suppressions() {
    return "leak:libfontconfig.so\n";
}

namespace uitest {

void EnsureApplication() {
    static QApplication* app = [] {
        static QTemporaryDir config;
        // Nothing may reach the user's own settings.
        setenv("XDG_CONFIG_HOME", config.path().toLocal8Bit().constData(), 1);
        setenv("TAVIX_DRIVERNAME", ZY_TAVIX_LIBRARY, 1);
        if (!getenv("QT_QPA_PLATFORM")) setenv("QT_QPA_PLATFORM", "offscreen", 1);
        static int argc = 1;
        static char name[] = "zy_ui_test";
        static char* argv[] = {name, nullptr};
        return new QApplication(argc, argv);
    }();
    (void)app;
}

TempProfile::TempProfile() {
    EnsureApplication();
    m_Profile = std::make_unique<CQtProfile>(QDir(m_Dir.path()).filePath("Zy.ini"));
    m_Previous = ZySetProfile(m_Profile.get());
}

TempProfile::~TempProfile() {
    ZySetProfile(m_Previous);
}

bool TempProfile::Has(const std::string& section, const std::string& entry) const {
    return m_Profile->Settings().contains(QString::fromStdString(section + "/" + entry));
}

ScriptedUi::ScriptedUi() {
    EnsureApplication();
    Attach(m_Ui);
    m_Previous = ZySetUi(&m_Ui);
}

void ScriptedUi::Attach(CQtUserInterface& ui) {
    ui.SetMessageHook([this](const std::string& text, MsgButtons, MsgIcon,
                             const std::string& caption) -> std::optional<MsgAnswer> {
        m_Messages.push_back(text);
        m_Captions.push_back(caption);
        return m_Answer;
    });
    ui.SetDialogHook([this](CDialogData& data) -> std::optional<bool> {
        m_Dialogs.push_back(data.GetDialogName());
        if (auto* file = dynamic_cast<CFileDialogData*>(&data)) {
            file->m_Path = m_FilePath;
            file->m_FileType = m_FileType;
        }
        return m_DialogOk;
    });
    ui.SetExceptionHook([this](const CExceptionDlgTexts& texts) { m_Exceptions.push_back(texts); });
}

ScriptedUi::~ScriptedUi() {
    ZySetUi(m_Previous);
}

std::unique_ptr<CTavixImage> MakeImage(int width, int height, int bpp, const std::string& name,
                                       uint32_t argb) {
    auto image = std::make_unique<CTavixImage>();
    image->Create(width, height, bpp);
    if (!name.empty()) image->SetName(name);
    if (bpp > 8) Fill(*image, argb);
    return image;
}

void Fill(CTavixImage& image, uint32_t value) {
    for (int y = 0; y < image.GetHeight(); ++y) {
        uint8_t* row = image.GetRow(y);
        for (int x = 0; x < image.GetWidth(); ++x) {
            if (image.GetPixelBytes() == 4)
                memcpy(row + 4 * x, &value, 4);
            else
                row[x] = static_cast<uint8_t>(value);
        }
    }
}

std::unique_ptr<CTavixDoc> MakeDocument(int count) {
    auto doc = std::make_unique<CTavixDoc>();
    for (int i = 0; i < count; ++i)
        doc->InsertImage(doc->GetImageCount(),
                         MakeImage(8, 8, 32, "img" + std::to_string(i)).release());
    doc->SetModifiedFlag(false);
    return doc;
}

std::string WriteFile(const QString& folder, const std::string& name, const std::string& driver,
                      const std::vector<const CTavixImage*>& images) {
    EnsureApplication();
    if (!TavixIsBound()) TavixBind();
    std::vector<TavixFrame> frames;
    for (const CTavixImage* image : images)
        frames.push_back(image->ToFrame());
    std::vector<const TavixFrame*> pointers;
    for (const TavixFrame& frame : frames)
        pointers.push_back(&frame);
    const std::string path = QDir(folder).filePath(QString::fromStdString(name)).toStdString();
    std::string error;
    if (!TavixWriteFile(path, TavixFind(driver.c_str()), pointers, error))
        ADD_FAILURE() << "cannot write " << path << ": " << error;
    return path;
}

} // namespace uitest
