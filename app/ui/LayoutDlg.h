#pragma once
// The dialogs of the layout and mip-map commands: "Layout Wizard"
// (CLayoutDlg), "Create Mip Maps" (CMipMapDlg) and the method question for
// palette images (CMipMapMeth). Each edits the command's plain data.

#include "app/cmds/LayoutCmd.h"
#include "app/cmds/MipMapCmd.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QSpinBox;
class QWidget;

class CLayoutDlg : public QDialog {
    Q_OBJECT
  public:
    CLayoutDlg(const CLayoutDlgData& data, QWidget* parent);
    void Store(CLayoutDlgData& data) const;

  private:
    // "Check Texture Page Edges" only means something while pages are respected.
    void UpdateEdgeCheck();

    QSpinBox* m_X;
    QSpinBox* m_Y;
    QSpinBox* m_Width;
    QSpinBox* m_Height;
    QComboBox* m_Platform;
    QCheckBox* m_CheckUVs;
    QCheckBox* m_CheckEdges;
    QCheckBox* m_Rotate;
    QCheckBox* m_AllShapes;
};

bool RunLayoutDlg(CLayoutDlgData& data, QWidget* parent);
bool RunMipMapDlg(CMipMapDlgData& data, QWidget* parent);
bool RunMipMapMethDlg(CMipMapMethData& data, QWidget* parent);

// Adds the three to the user interface's dialog table.
void RegisterLayoutDialogs();
