#include "DocTestSupport.h"

#include "app/doc/Hints.h"
#include "codec/TavixBinding.h"
#include "CodecTestSupport.h"

#include <gtest/gtest.h>

#include <cstring>

namespace zytest {

int tvxDriver() {
    bindBuiltLibrary();
    return TavixFind("tvx");
}

void writeTvx(const std::string& path, const std::vector<const TavixFrame*>& frames) {
    std::string error;
    ASSERT_TRUE(TavixWriteFile(path, tvxDriver(), frames, error)) << error;
}

void writeMixedTvx(const std::string& path, int count) {
    std::vector<TavixFrame> frames;
    for (int i = 0; i < count; ++i)
        frames.push_back(
            makeFrame(5 + i, 3 + i, i % 2 ? 32 : 8, ("img" + std::to_string(i)).c_str()));
    std::vector<const TavixFrame*> pointers;
    for (const TavixFrame& frame : frames)
        pointers.push_back(&frame);
    writeTvx(path, pointers);
}

std::string imageBytes(const CTavixImage& image) {
    std::string bytes(reinterpret_cast<const char*>(image.GetInfo()), image.GetInfoSize());
    const size_t length = static_cast<size_t>(image.GetWidth()) * image.GetPixelBytes();
    for (int y = 0; y < image.GetHeight(); ++y)
        bytes.append(reinterpret_cast<const char*>(image.GetRow(y)), length);
    const CDIBColour* table = image.GetColorTable();
    bytes.append(reinterpret_cast<const char*>(table), sizeof(CDIBColour) * kDIBColourTableSize);
    return bytes;
}

DocSnapshot snapshot(const CTavixDoc& doc) {
    DocSnapshot s;
    for (int i = 0; i < doc.GetImageCount(); ++i) {
        s.objects.push_back(doc.GetImageAt(i));
        s.contents.push_back(imageBytes(*doc.GetImageAt(i)));
    }
    return s;
}

std::string bits(const CRange& range) {
    std::string text;
    for (int i = 0; i < range.GetSize(); ++i)
        text += range.IsSelected(i) ? '1' : '0';
    return text;
}

void RecordingView::OnUpdate(CView*, long, CObject* hint) {
    if (!hint)
        hints.push_back("all");
    else if (auto* insert = dynamic_cast<CInsertHint*>(hint))
        hints.push_back("insert " + std::to_string(insert->m_First) + " " +
                        std::to_string(insert->m_Count));
    else if (auto* modified = dynamic_cast<CModifiedHint*>(hint))
        hints.push_back("modified " + bits(modified->m_Range));
    else if (auto* removed = dynamic_cast<CDeleteHint*>(hint))
        hints.push_back("delete " + bits(removed->m_Mask));
    else if (auto* focus = dynamic_cast<CFocusChangedHint*>(hint))
        hints.push_back("focus " + std::to_string(focus->m_Index));
    else if (dynamic_cast<CStateHint*>(hint))
        hints.push_back("state");
    else if (dynamic_cast<COptionsChangedHint*>(hint))
        hints.push_back("options");
    else
        hints.push_back("other");
}

} // namespace zytest
