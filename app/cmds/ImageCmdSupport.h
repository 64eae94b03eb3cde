#pragma once
// Small pieces the geometry and adjustment families share: a descriptor
// that takes a list of IDs, the format query for the rotation and
// transpose bits, and the fill colours.

#include "app/doc/Command.h"
#include "app/doc/TavixImage.h"
#include "app/doc/UserInterface.h"
#include "imaging/module/module.h"

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

class CTavixDoc;
class CTavixImage;

// A family descriptor for several IDs whose command is made and started by
// one function (which gets the ID to pick its variant).
class CIdListInfo : public CCommandInfo {
  public:
    using Starter = std::function<void(CTavixDoc* doc, unsigned nID)>;
    CIdListInfo(std::initializer_list<unsigned> ids, Starter starter,
                std::vector<std::string> settingKeys = {});
    bool IsCommand(unsigned nID) const override;
    void Create(CTavixDoc* doc, unsigned nID) override;
    std::vector<std::string> GetSettingKeys() const override { return m_Keys; }

  protected:
    std::vector<unsigned> m_Ids;
    Starter m_Starter;
    std::vector<std::string> m_Keys;
};

// Does the document's file format keep the rotated and transposed bits of
// the attribute word? A document without a format keeps nothing.
bool FormatKeepsAttributeBits(const CTavixDoc* doc);

// The fill colours of the rotation and canvas commands: the application's
// current colour number 4, as a palette index and as an ARGB value, asked
// when the dialog is confirmed.
struct CFillColours {
    uint32_t m_Index = 0;
    uint32_t m_Argb = 0;
    static CFillColours Current();
    uint32_t ForImage(const CTavixImage& image) const;
};

// "Section/key" for every field of `data`, after `extra`.
template <typename Data> std::vector<std::string> KeysOf(std::vector<std::string> extra = {}) {
    Data data;
    for (const std::string& key : CCommandInfo::DialogKeys(data))
        extra.push_back(key);
    return extra;
}

// Offers the dialog a live preview on the document's focused image (none
// when nothing is focused).
void OfferPreview(CDialogData& data, const CTavixDoc* doc, CDialogData::PreviewFn preview);

// The preview of a module that takes `values` made from the dialog data.
template <typename Data, typename ValuesFn>
CDialogData::PreviewFn ModulePreview(const char* module, ValuesFn values) {
    return [module, values](const CDialogData& data, const CTavixImage& image) {
        const std::vector<ModuleValue> moduleValues = values(static_cast<const Data&>(data), image);
        return image.RunModule(module_find(module), moduleValues.data(),
                               static_cast<int>(moduleValues.size()));
    };
}
