// "Run Module" on the offscreen platform: the controls each module's
// descriptor asks for, the mask's hex line and channel boxes following each
// other, the values kept per module in the settings, the preview, and the
// command run from the dialog's OK with its Undo. With ZY_SCREENSHOT_DIR
// set, a few modules' pages are saved there as PNGs for a look by eye.

#include "UiTestSupport.h"

#include "app/cmds/RunModuleCmd.h"
#include "app/doc/CmdUI.h"
#include "app/doc/CommandIds.h"
#include "app/ui/PreviewPane.h"
#include "app/ui/RunModuleDlg.h"
#include "imaging/module/module.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>

#include <cstdlib>
#include <cstring>

using namespace uitest;

namespace {

void shoot(QWidget& widget, const std::string& name) {
    const char* folder = getenv("ZY_SCREENSHOT_DIR");
    if (!folder) return;
    widget.adjustSize();
    widget.grab().save(QString("%1/run-module-%2.png").arg(folder, QString::fromStdString(name)));
}

std::vector<uint8_t> pixels(const CTavixImage& image) {
    std::vector<uint8_t> bytes;
    const TavixInfo* info = image.GetInfo();
    const int rowBytes = info->width * (info->bufferbpp <= 8 ? 1 : 4);
    for (int y = 0; y < info->height; ++y) {
        const auto* row = static_cast<const uint8_t*>(image.GetPixelAddress(0, y));
        bytes.insert(bytes.end(), row, row + rowBytes);
    }
    return bytes;
}

// A 7 x 5 image whose pixels all differ, so that flips and turns show.
std::unique_ptr<CTavixImage> ramp(const std::string& name) {
    auto image = MakeImage(7, 5, 32, name);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 7; ++x) {
            const uint32_t argb =
                0xFF000000u | uint32_t(x * 30) << 16 | uint32_t(y * 50) << 8 | uint32_t(x + y);
            memcpy(image->GetPixelAddress(x, y), &argb, 4);
        }
    return image;
}

struct Dialog {
    explicit Dialog(const std::string& module, const CTavixImage* preview = nullptr) {
        data.m_Module = module;
        if (preview) {
            data.m_PreviewSource = preview;
            data.m_Preview = [](const CDialogData& d, const CTavixImage& source) {
                const auto& values = static_cast<const CRunModuleDlgData&>(d);
                const CModuleDesc* desc = FindModuleDesc(values.m_Module);
                std::string error;
                const std::vector<std::string> texts = values.Texts();
                const std::vector<ModuleValue> moduleValues =
                    ModuleValuesFromTexts(*desc, texts, error);
                return source.RunModule(desc->m_Index, moduleValues.data(),
                                        int(moduleValues.size()));
            };
        }
        dialog = std::make_unique<CRunModuleDlg>(data, nullptr);
    }
    template <typename W> W* find(const QString& name) const { return dialog->findChild<W*>(name); }
    CRunModuleDlgData data;
    std::unique_ptr<CRunModuleDlg> dialog;
};

TEST(RunModuleDialog, BuildsTheControlsTheDescriptorAsksFor) {
    EnsureApplication();
    enum Kind { Spin, RealSpin, Check, List, Mask, Colour, Line, None };
    const struct Case {
        const char* module;
        int slot;
        Kind kind;
        double min, max, value; // spin boxes: range and value; lists: count and index
    } cases[] = {
        {"Creep", 0, Colour, 0, 0, 0},
        {"Creep", 1, Spin, 1, 255, 1},
        {"Flip", 0, List, 4, 0, 1},
        {"Crop", 3, List, 4, 0, 0},
        {"ColBal", 2, Check, 0, 0, 1}, // 0..1 integer: a check box
        {"Gamma", 0, RealSpin, 0.01, 10, 1},
        {"HSL", 2, Mask, 0, 0, 0xFFFFFFFF},
        {"Blend", 0, List, 11, 0, 0}, // an integer whose names cover its range
        {"Blend", 5, List, 3, 0, 0},
        {"Blend", 4, Mask, 0, 0, 0xFFFFFFFF},
        {"Rot", 0, List, 4, 0, 1},
        {"Pixel", 0, None, 0, 0, 0}, // a program's handle: not shown
        {"Pixel", 1, Line, 0, 0, 0},
        {"Size", 0, Spin, 0, 2147483647, 0}, // no upper limit; its default 0 below its minimum
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.module) + " slot " + std::to_string(c.slot));
        Dialog d(c.module);
        const QString name = QString("value%1").arg(c.slot);
        switch (c.kind) {
        case Spin: {
            auto* box = d.find<QSpinBox>(name);
            ASSERT_TRUE(box);
            EXPECT_EQ(box->minimum(), c.min);
            EXPECT_EQ(box->maximum(), c.max);
            EXPECT_EQ(box->value(), c.value);
            break;
        }
        case RealSpin: {
            auto* box = d.find<QDoubleSpinBox>(name);
            ASSERT_TRUE(box);
            EXPECT_DOUBLE_EQ(box->minimum(), c.min);
            EXPECT_DOUBLE_EQ(box->maximum(), c.max);
            EXPECT_DOUBLE_EQ(box->value(), c.value);
            break;
        }
        case Check:
            ASSERT_TRUE(d.find<QCheckBox>(name));
            EXPECT_EQ(d.find<QCheckBox>(name)->isChecked(), c.value != 0);
            break;
        case List:
            ASSERT_TRUE(d.find<QComboBox>(name));
            EXPECT_EQ(d.find<QComboBox>(name)->count(), c.min);
            EXPECT_EQ(d.find<QComboBox>(name)->currentIndex(), c.value);
            break;
        case Mask:
            ASSERT_TRUE(d.find<QLineEdit>(name));
            EXPECT_EQ(d.find<QLineEdit>(name)->text().toUInt(nullptr, 16), c.value);
            for (const char* channel : {"A", "R", "G", "B"})
                EXPECT_TRUE(d.find<QCheckBox>(name + "." + channel)) << channel;
            break;
        case Colour:
            ASSERT_TRUE(d.find<QLineEdit>(name));
            EXPECT_TRUE(d.find<QPushButton>(name + ".colour"));
            break;
        case Line:
            EXPECT_TRUE(d.find<QLineEdit>(name));
            break;
        case None:
            EXPECT_FALSE(d.find<QWidget>(name));
            break;
        }
    }
}

TEST(RunModuleDialog, ListsEveryModuleAndExplainsTheOnesItCannotRun) {
    EnsureApplication();
    EXPECT_EQ(static_cast<int>(AllModuleDescs().size()), module_count());
    const struct {
        const char* module;
        bool runs;
        const char* note; // part of the note under the values, "" for none
    } cases[] = {
        {"Flip", true, ""},
        {"FTxMp", false, "needs a second image"},
        {"Blend", true, "runs on each image alone"},
        {"Photoshop", true, "no preview"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.module);
        Dialog d(c.module);
        auto* ok = d.dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Ok);
        EXPECT_EQ(ok->isEnabled(), c.runs);
        const QString note = d.find<QLabel>("ModuleNote")->text();
        if (*c.note)
            EXPECT_TRUE(note.contains(c.note)) << note.toStdString();
        else
            EXPECT_TRUE(note.isEmpty()) << note.toStdString();
    }
}

TEST(RunModuleDialog, MaskBoxesAndHexFollowEachOther) {
    EnsureApplication();
    Dialog d("HSL");
    auto* hex = d.find<QLineEdit>("value2");
    auto box = [&](const char* channel) { return d.find<QCheckBox>(QString("value2.") + channel); };
    ASSERT_TRUE(hex && box("R"));
    box("R")->setChecked(false);
    EXPECT_EQ(hex->text(), "0xFF00FFFF");
    box("A")->setChecked(false);
    EXPECT_EQ(hex->text(), "0x0000FFFF");
    EXPECT_EQ(d.dialog->CurrentTexts()[2], "0x0000FFFF");

    const struct {
        const char* typed;
        bool a, r, g, b;
        bool valid;
    } cases[] = {
        {"0xFF000000", true, false, false, false, true},
        {"00ff0080", false, true, false, true, true}, // any non-zero byte counts
        {"0x00000000", false, false, false, false, true},
        {"zz", false, false, false, false, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.typed);
        hex->setText(c.typed);
        Q_EMIT hex->textEdited(c.typed);
        EXPECT_EQ(box("A")->isChecked(), c.a);
        EXPECT_EQ(box("R")->isChecked(), c.r);
        EXPECT_EQ(box("G")->isChecked(), c.g);
        EXPECT_EQ(box("B")->isChecked(), c.b);
        EXPECT_EQ(box("A")->isEnabled(), c.valid);
    }
    // The bad text reaches the data, which refuses it by name and range.
    EXPECT_EQ(d.data.Validate(),
              "Mask: 'zz' is not a hexadecimal value from 0x00000000 to 0xFFFFFFFF.");
}

TEST(RunModuleDialog, ValuesOutsideTheirRangeAreRefusedByName) {
    EnsureApplication();
    const struct {
        const char* module;
        const char* setting;
        const char* refusal; // "" when accepted
    } cases[] = {
        {"Creep", "0xFF00FF00,300", "Amount: 300 is outside the range 1 to 255."},
        {"Creep", "0xFF00FF00,255", ""},
        {"Gamma", "0.001", "AlphaGamma: 0.001 is outside the range 0.01 to 10."},
        {"Gamma", "1,x", "RedGamma: 'x' is not a number (0.01 to 10)."},
        {"Flip", "Sideways",
         "Direction: 'Sideways' is not one of None, Horizontal, Vertical, Both."},
        {"Flip", "2", ""},
        {"Rot", "90", ""}, // a choice named like a number is taken by its name
        {"Flip", "1,2", "Flip takes 1 values, not 2."},
        {"Pixel", "5", "Expression Handle: is for programs only; give 0 here, not '5'."},
        {"FTxMp", "", "needs a second image"},
        {"NoSuch", "", "No module is named 'NoSuch'"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.module) + " " + c.setting);
        CRunModuleDlgData data;
        data.m_Module = c.module;
        data.m_Settings[c.module] = c.setting;
        const std::string refusal = data.Validate();
        if (*c.refusal)
            EXPECT_NE(refusal.find(c.refusal), std::string::npos) << refusal;
        else
            EXPECT_EQ(refusal, "");
    }
}

TEST(RunModuleDialog, ValuesRoundTripThroughTheSettingsPerModule) {
    EnsureApplication();
    TempProfile profile;
    const struct {
        const char* module;
        std::vector<std::string> texts;
    } cases[] = {
        {"Creep", {"0x80FF0000", "7"}},
        {"Gamma", {"2.5", "1", "0.5", "10"}},
        {"Crop", {"10", "20", "0xFF00FF00", "Mirror", "Wrap", "1"}},
        {"HSL", {"-5", "20", "0x00FFFF00"}},
        // Expressions keep their commas and backslashes.
        {"Pixel", {"0", "a", "r,g", "g\\b", "", "", "", ""}},
    };
    for (const auto& c : cases) {
        CRunModuleDlgData data;
        data.Load();
        data.m_Module = c.module;
        data.SetTexts(c.module, c.texts);
        data.Save();
    }
    CRunModuleDlgData back;
    back.Load();
    EXPECT_EQ(back.m_Module, "Pixel") << "the module chosen last comes back";
    for (const auto& c : cases) {
        SCOPED_TRACE(c.module);
        back.m_Module = c.module;
        EXPECT_EQ(back.Texts(), c.texts);
        // The dialog shows them: its controls read back the same texts.
        Dialog d(c.module);
        d.data.m_Settings = back.m_Settings;
        d.dialog = std::make_unique<CRunModuleDlg>(d.data, nullptr);
        EXPECT_EQ(d.dialog->CurrentTexts(), c.texts);
    }
    // A stored value that no longer fits gives way to the default.
    profile.Profile().WriteString("CRunModuleDlg", "Creep", "0x00000001,999");
    CRunModuleDlgData stale;
    stale.Load();
    stale.m_Module = "Creep";
    EXPECT_EQ(stale.Texts(), (std::vector<std::string>{"0x00000001", "1"}));
}

TEST(RunModuleDialog, SwitchingModulesKeepsEachModulesEdits) {
    EnsureApplication();
    Dialog d("Gamma");
    d.find<QDoubleSpinBox>("value1")->setValue(2.5);
    d.dialog->ChooseModule("Flip");
    EXPECT_EQ(d.find<QComboBox>("value0")->currentIndex(), 1);
    EXPECT_FALSE(d.find<QDoubleSpinBox>("value1"));
    d.dialog->ChooseModule("Gamma");
    ASSERT_TRUE(d.find<QDoubleSpinBox>("value1"));
    EXPECT_DOUBLE_EQ(d.find<QDoubleSpinBox>("value1")->value(), 2.5);
}

TEST(RunModuleDialog, PreviewFollowsTheValuesAndLeavesTheSourceAlone) {
    EnsureApplication();
    auto image = ramp("r");
    const std::vector<uint8_t> before = pixels(*image);
    Dialog d("Flip", image.get());
    auto* pane = d.dialog->findChild<CPreviewPane*>();
    ASSERT_TRUE(pane && pane->GetAfter());
    const struct { int direction; } cases[] = {{2}, {3}, {0}};
    for (const auto& c : cases) {
        d.find<QComboBox>("value0")->setCurrentIndex(c.direction);
        const ModuleValue value = ModuleValue::ofInt(c.direction);
        auto expected = image->RunModule(module_find("flip"), &value, 1);
        ASSERT_TRUE(pane->GetAfter());
        EXPECT_EQ(pixels(*pane->GetAfter()), pixels(*expected)) << c.direction;
    }
    EXPECT_EQ(pixels(*image), before);
    for (const char* module : {"Flip", "Creep", "HSL", "Pixel"}) {
        d.dialog->ChooseModule(module);
        shoot(*d.dialog, module);
    }
}

// The whole road: menu ID, the real dialog (driven through its controls),
// OK, the runner over the selection, the Undo item's name, Undo and Redo.
TEST(RunModuleCommand, OkFiltersTheSelectionAndUndoRestoresItExactly) {
    TempProfile profile;
    ScriptedUi scripted;
    const struct {
        const char* module;
        std::function<void(Dialog&)> edit;
        std::vector<ModuleValue> values; // what the module should get
        const char* undoName;
        const char* stored;
    } cases[] = {
        {"Flip",
         [](Dialog& d) { d.find<QComboBox>("value0")->setCurrentIndex(2); },
         {ModuleValue::ofInt(2)},
         "Undo Flip",
         "Vertical"},
        {"Gamma",
         [](Dialog& d) { d.find<QDoubleSpinBox>("value2")->setValue(2); },
         {ModuleValue::ofReal(1), ModuleValue::ofReal(1), ModuleValue::ofReal(2),
          ModuleValue::ofReal(1)},
         "Undo Gamma Correct",
         "1,1,2,1"},
        {"invert",
         [](Dialog& d) { d.find<QCheckBox>("value0.B")->setChecked(false); },
         {ModuleValue::ofUint(0x00FFFF00)},
         "Undo Invert ARGB",
         "0x00FFFF00"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.module);
        auto doc = std::make_unique<CTavixDoc>();
        for (int i = 0; i < 3; ++i)
            doc->InsertImage(i, ramp("img" + std::to_string(i)).release());
        doc->GetSelectionModel().Select(0);
        doc->GetSelectionModel().Select(2);
        doc->SetFocus(2, false);
        std::vector<std::vector<uint8_t>> original;
        for (int i = 0; i < 3; ++i)
            original.push_back(pixels(*doc->GetImageAt(i)));

        scripted.Ui().SetDialogHook([&](CDialogData& data) -> std::optional<bool> {
            Dialog d(c.module);
            d.dialog =
                std::make_unique<CRunModuleDlg>(static_cast<CRunModuleDlgData&>(data), nullptr);
            d.dialog->ChooseModule(c.module);
            EXPECT_TRUE(d.dialog->findChild<CPreviewPane*>()) << "a preview of the focus";
            c.edit(d);
            d.dialog->accept();
            return d.dialog->result() == QDialog::Accepted;
        });
        doc->GetCommandHandler().OnCommandRange(ZyIds::RunModule);
        ASSERT_TRUE(doc->GetCommandHandler().GetCurrent());

        const CModuleDesc* desc = FindModuleDesc(c.module);
        for (int i = 0; i < 3; ++i) {
            if (i == 1) {
                EXPECT_EQ(pixels(*doc->GetImageAt(i)), original[1]) << "not selected";
                continue;
            }
            auto source = ramp("x");
            auto expected = source->RunModule(desc->m_Index, c.values.data(), int(c.values.size()));
            EXPECT_EQ(pixels(*doc->GetImageAt(i)), pixels(*expected)) << i;
        }
        CCmdUI undo(ID_EDIT_UNDO);
        doc->GetCommandHandler().OnUpdateUndo(&undo);
        EXPECT_EQ(undo.m_strText.substr(0, strlen(c.undoName)), c.undoName) << undo.m_strText;
        EXPECT_EQ(profile.Profile().GetString("CRunModuleDlg", desc->m_Name, ""), c.stored);
        EXPECT_EQ(profile.Profile().GetString("CRunModuleDlg", "m_Module", ""), desc->m_Name);

        doc->GetCommandHandler().OnUndo();
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(pixels(*doc->GetImageAt(i)), original[i]) << i;
        doc->GetCommandHandler().OnUndo(); // redo
        doc->GetCommandHandler().OnUndo();
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(pixels(*doc->GetImageAt(i)), original[i]) << i;
    }
    scripted.Ui().SetDialogHook({});
}

TEST(RunModuleCommand, CancelLeavesTheDocumentAndTheSettingsAlone) {
    TempProfile profile;
    ScriptedUi scripted;
    scripted.m_DialogOk = false;
    auto doc = MakeDocument(2);
    doc->GetSelectionModel().SelectAll();
    const int before = doc->GetCommandHandler().GetSubmitCount();
    doc->GetCommandHandler().OnCommandRange(ZyIds::RunModule);
    EXPECT_EQ(doc->GetCommandHandler().GetSubmitCount(), before);
    EXPECT_FALSE(profile.Has("CRunModuleDlg", "m_Module"));
}

} // namespace
