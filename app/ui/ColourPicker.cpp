#include "app/ui/ColourPicker.h"

QString CPickedPixel::Text() const {
    if (!m_Valid) return {};
    QString text = QString("Pixel %1,%2 of %3: ").arg(m_X).arg(m_Y).arg(m_Name);
    if (m_Index >= 0) text += QString("index %1, ").arg(m_Index);
    return text + "ARGB " + QString::number(m_Argb, 16).rightJustified(8, '0').toUpper();
}

void CColourPicker::SetArmed(bool armed) {
    if (armed == m_Armed) return;
    m_Armed = armed;
    emit ArmedChanged(armed);
}

CColourPicker& ZyColourPicker() {
    static CColourPicker picker;
    return picker;
}
