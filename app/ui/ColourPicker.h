#pragma once
// Taking colours from the worksheet. While the colour editor's Pick button
// is down the picker is armed: a left click on an image of the worksheet
// reports the pixel under it here instead of selecting or moving images,
// and the colour editor takes its colour into the colour it edits.

#include <QObject>
#include <QString>

#include <cstdint>

// One pixel of a document image.
struct CPickedPixel {
    bool m_Valid = false;
    int m_Image = -1;     // document position
    int m_X = 0, m_Y = 0; // in the image
    int m_Index = -1;     // the stored palette index; -1 for true-colour images
    uint32_t m_Argb = 0;
    QString m_Name; // as the shape list names the image

    // "Pixel 3,4 of hero: index 17, ARGB FF102030" (no index part for
    // true-colour images); empty for no pixel.
    QString Text() const;
};

class CColourPicker : public QObject {
    Q_OBJECT
  public:
    bool IsArmed() const { return m_Armed; }
    void SetArmed(bool armed);
    // The worksheet reports a clicked pixel.
    void Pick(const CPickedPixel& pixel) { emit Picked(pixel); }

  signals:
    void ArmedChanged(bool armed);
    void Picked(const CPickedPixel& pixel);

  private:
    bool m_Armed = false;
};

// The program's picker.
CColourPicker& ZyColourPicker();
