#include "app/ui/ColRedToolbar.h"

#include "app/cmds/ColRedCmd.h"
#include "app/doc/Profile.h"
#include "app/doc/UserInterface.h"

#include <QComboBox>
#include <QToolBar>

#include <array>

namespace {

constexpr const char* kSection = "CColRedCmd";

struct LayoutEntry {
    const char* label;
    std::array<int, 4> bits; // alpha, red, green, blue
};
constexpr LayoutEntry kLayouts[] = {
    {"8888", {8, 8, 8, 8}}, {"1555", {1, 5, 5, 5}}, {"2555", {2, 5, 5, 5}},
    {"8555", {8, 5, 5, 5}}, {"4444", {4, 4, 4, 4}}, {"1888", {1, 8, 8, 8}},
};
constexpr const char* kBitKeys[4] = {"m_ABits", "m_RBits", "m_GBits", "m_BBits"};

// A list whose items carry the saved value of one setting.
QComboBox* valueList(QToolBar* bar, const char* name, const char* tip,
                     std::initializer_list<std::pair<const char*, int>> items) {
    auto* box = new QComboBox(bar);
    box->setObjectName(name);
    box->setToolTip(tip);
    box->setFocusPolicy(Qt::NoFocus);
    for (const auto& [label, value] : items)
        box->addItem(label, value);
    QObject::connect(box, &QComboBox::activated, box, [box, name](int index) {
        if (index >= 0) ZyProfile().WriteInt(kSection, name, box->itemData(index).toInt());
    });
    bar->addWidget(box);
    return box;
}

void showValue(QComboBox* box, int value) {
    const int index = box->findData(value);
    if (box->currentIndex() != index) box->setCurrentIndex(index);
}

} // namespace

void AddColRedToolbarLists(QToolBar* bar, QAction* apply) {
    bar->addSeparator();
    valueList(bar, "m_ColRedType", "What Change Color Depth does",
              {{"Change Color Depth", 1}, {"Color Reduction", 0}});
    auto* layout = new QComboBox(bar);
    layout->setObjectName("layout");
    layout->setToolTip("Channel layout of a color depth change");
    layout->setFocusPolicy(Qt::NoFocus);
    for (const LayoutEntry& entry : kLayouts)
        layout->addItem(entry.label);
    QObject::connect(layout, &QComboBox::activated, layout, [](int index) {
        if (index < 0 || index >= static_cast<int>(std::size(kLayouts))) return;
        for (int c = 0; c < 4; ++c)
            ZyProfile().WriteInt(kSection, kBitKeys[c], kLayouts[index].bits[c]);
    });
    bar->addWidget(layout);
    valueList(bar, "m_Bpp", "Depth of a color reduction",
              {{"8-bit indexed", 8}, {"4-bit indexed", 4}});
    valueList(bar, "m_Operation", "Palette of a color reduction",
              {{kColRedOperationNames[0], 0},
               {kColRedOperationNames[1], 1},
               {kColRedOperationNames[2], 2}});
    valueList(bar, "m_Dither", "Dithering",
              {{kColRedDitherNames[0], 0},
               {kColRedDitherNames[1], 1},
               {kColRedDitherNames[2], 2},
               {kColRedDitherNames[3], 3}});
    if (apply) bar->addAction(apply);
    RefreshColRedToolbarLists(bar);
}

void RefreshColRedToolbarLists(QToolBar* bar) {
    CProfile& profile = ZyProfile();
    const std::pair<const char*, int> values[] = {
        {"m_ColRedType", 1}, {"m_Bpp", 8}, {"m_Operation", 0}, {"m_Dither", 0}};
    for (const auto& [name, fallback] : values)
        if (auto* box = bar->findChild<QComboBox*>(name))
            showValue(box, profile.GetInt(kSection, name, fallback));
    if (auto* layout = bar->findChild<QComboBox*>("layout")) {
        std::array<int, 4> bits;
        for (int c = 0; c < 4; ++c)
            bits[c] = profile.GetInt(kSection, kBitKeys[c], 8);
        int index = -1;
        for (int i = 0; i < static_cast<int>(std::size(kLayouts)); ++i)
            if (kLayouts[i].bits == bits) index = i;
        if (layout->currentIndex() != index) layout->setCurrentIndex(index);
    }
}
