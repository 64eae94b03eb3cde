#include "app/cmds/RunModuleCmd.h"

#include "app/cmds/ImageCmdSupport.h"
#include "app/doc/CommandIds.h"
#include "app/doc/Profile.h"
#include "app/doc/TavixDoc.h"
#include "app/doc/TavixImage.h"
#include "codec/FrameIO.h"
#include "imaging/galloc.h"

#include <algorithm>
#include <cerrno>
#include <cinttypes>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <strings.h>

namespace {

constexpr const char* kSection = "CRunModuleDlg";
constexpr const char* kModuleKey = "m_Module";
constexpr const char* kFirstModule = "Flip";
constexpr double kFullWord = 4294967295.0;

std::vector<std::string> splitChoices(const char* choices) {
    std::vector<std::string> names;
    if (!*choices) return names;
    std::string name;
    for (const char* at = choices;; ++at) {
        if (*at == ',' || *at == 0) {
            names.push_back(name);
            name.clear();
            if (*at == 0) break;
        } else {
            name += *at;
        }
    }
    return names;
}

std::string trimmed(const std::string& text) {
    const size_t first = text.find_first_not_of(" \t");
    if (first == std::string::npos) return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::string numberText(double value) {
    char text[40];
    snprintf(text, sizeof text, "%.10g", value);
    return text;
}

std::string rangeText(const CModuleValueDesc& desc) {
    if (desc.m_Kind == CModuleControl::Mask || desc.m_Kind == CModuleControl::Colour)
        return "0x00000000 to 0xFFFFFFFF";
    return numberText(desc.m_Min) + " to " + numberText(desc.m_Max);
}

CModuleValueDesc valueDesc(const ModuleParam& param, int slot) {
    CModuleValueDesc desc;
    desc.m_Name = param.name[0] ? std::string(param.name, strnlen(param.name, sizeof param.name))
                                : "Value " + std::to_string(slot + 1);
    const uint32_t type = param.type;
    if (type & kParamHandleHint) {
        desc.m_Kind = CModuleControl::Handle;
    } else if (type & kParamTextHint) {
        desc.m_Kind = CModuleControl::Text;
    } else if (type & kParamMaskHint) {
        desc.m_Kind = (type & kParamColourHint) ? CModuleControl::Colour : CModuleControl::Mask;
        desc.m_Min = 0;
        desc.m_Max = kFullWord;
        desc.m_Default = param.defaultValue.asUint();
    } else if ((type & (kParamInteger | kParamReal)) == kParamReal) {
        desc.m_Kind = CModuleControl::Real;
        desc.m_Min = param.minimum.asReal();
        desc.m_Max = param.maximum.asReal();
        desc.m_Default = param.defaultValue.asReal();
    } else {
        desc.m_Min = param.minimum.asInt();
        desc.m_Max = param.maximum.asInt();
        // A maximum below the minimum means the module sets no upper limit.
        if (desc.m_Max < desc.m_Min) desc.m_Max = INT_MAX;
        desc.m_Default = param.defaultValue.asInt();
        // A module's own default is always a value it takes (Size's 0 for
        // "the source's size" lies below its declared minimum of 1).
        desc.m_Min = std::min(desc.m_Min, desc.m_Default);
        desc.m_Max = std::max(desc.m_Max, desc.m_Default);
        char choices[sizeof param.choices + 1] = {};
        memcpy(choices, param.choices, sizeof param.choices);
        std::vector<std::string> names = splitChoices(choices);
        // Integers whose names cover their whole range are choices too
        // (Blend's methods), whether or not the module asks for a list.
        const bool named = !names.empty() && desc.m_Min == 0 &&
                           desc.m_Max + 1 == static_cast<double>(names.size());
        if (((type & kParamListHint) && desc.m_Max - desc.m_Min < 256) || named) {
            desc.m_Kind = CModuleControl::Choice;
            for (int value = 0; value <= static_cast<int>(desc.m_Max); ++value)
                if (static_cast<size_t>(value) >= names.size())
                    names.push_back(std::to_string(value));
            desc.m_Choices = std::move(names);
        } else if (desc.m_Min == 0 && desc.m_Max == 1) {
            desc.m_Kind = CModuleControl::Check;
        }
    }
    return desc;
}

void quiet(const char*, va_list) {}

// Does a module that can take a second image give a result without it?
// The descriptor cannot say (it always declares one image as the least),
// so a 1 x 1 picture is tried once, without the module's complaint.
bool runsAlone(int index) {
    CTavixImage probe;
    if (!probe.Create(1, 1, 32)) return true;
    const GPrintHook previous = gsetprinthook(quiet);
    const int current = module_current();
    const bool ran = probe.RunModule(index, nullptr, 0) != nullptr;
    module_select(current);
    gsetprinthook(previous);
    return ran;
}

} // namespace

// ---- Module descriptions ---------------------------------------------------

std::string CModuleDesc::UnusableReason() const {
    if (m_MinImages >= 2 || !m_RunsAlone)
        return m_Name + " needs a second image for every image, which Run Module does not give "
                        "(zytool run --second does).";
    return {};
}

std::string CModuleDesc::Remark() const {
    if (m_Images >= 2 && m_MinImages < 2)
        return m_Name + " takes an optional second image; here it runs on each image alone.";
    return {};
}

bool CModuleDesc::CanPreview() const {
    // It opens an outside image editor and waits for the artist.
    return strcasecmp(m_Name.c_str(), "Photoshop") != 0;
}

std::vector<std::string> CModuleDesc::DefaultTexts() const {
    std::vector<std::string> texts;
    for (const CModuleValueDesc& value : m_Values)
        texts.push_back(value.m_Kind == CModuleControl::Text
                            ? std::string()
                            : ModuleValueText(value, value.m_Default));
    return texts;
}

CModuleDesc DescribeModule(int index) {
    const int previous = module_current();
    module_select(index);
    GPtr<ModuleDescriptor> descriptor(module_describe());
    module_select(previous);
    CModuleDesc desc;
    desc.m_Index = index;
    if (!descriptor) return desc;
    desc.m_Name.assign(descriptor->name, strnlen(descriptor->name, sizeof descriptor->name));
    desc.m_Description.assign(descriptor->description,
                              strnlen(descriptor->description, sizeof descriptor->description));
    desc.m_MinImages = static_cast<int>(descriptor->minImages);
    desc.m_Images = static_cast<int>(descriptor->images);
    if (desc.m_Images >= 2) desc.m_RunsAlone = runsAlone(index);
    const int count = std::min<int>(static_cast<int>(descriptor->paramCount), kModuleMaxParams);
    for (int i = 0; i < count; ++i)
        desc.m_Values.push_back(valueDesc(descriptor->params[i], i));
    return desc;
}

const std::vector<CModuleDesc>& AllModuleDescs() {
    static const std::vector<CModuleDesc> descs = [] {
        std::vector<CModuleDesc> list;
        for (int i = 0; i < module_count(); ++i)
            list.push_back(DescribeModule(i));
        return list;
    }();
    return descs;
}

const CModuleDesc* FindModuleDesc(const std::string& name) {
    for (const CModuleDesc& desc : AllModuleDescs())
        if (!name.empty() && strcasecmp(desc.m_Name.c_str(), name.c_str()) == 0) return &desc;
    return nullptr;
}

// ---- Value texts -----------------------------------------------------------

std::string ModuleValueText(const CModuleValueDesc& desc, double value) {
    switch (desc.m_Kind) {
    case CModuleControl::Real:
        return numberText(value);
    case CModuleControl::Mask:
    case CModuleControl::Colour: {
        char text[16];
        snprintf(text, sizeof text, "0x%08" PRIX32,
                 static_cast<uint32_t>(static_cast<int64_t>(value)));
        return text;
    }
    case CModuleControl::Choice: {
        const double index = std::floor(value);
        if (index >= 0 && index < static_cast<double>(desc.m_Choices.size()))
            return desc.m_Choices[static_cast<size_t>(index)];
        return numberText(index);
    }
    case CModuleControl::Handle:
        return "0";
    case CModuleControl::Text:
        return {};
    case CModuleControl::Integer:
    case CModuleControl::Check:
        break;
    }
    return numberText(std::floor(value));
}

std::string ParseModuleValue(const CModuleValueDesc& desc, const std::string& raw, double& value) {
    const std::string text = trimmed(raw);
    const std::string quoted = "'" + text + "'";
    switch (desc.m_Kind) {
    case CModuleControl::Text:
        value = 0;
        return {};
    case CModuleControl::Handle:
        value = 0;
        if (text.empty() || text == "0") return {};
        return desc.m_Name + ": is for programs only; give 0 here, not " + quoted + ".";
    case CModuleControl::Mask:
    case CModuleControl::Colour: {
        std::string digits = text;
        if (digits.rfind("0x", 0) == 0 || digits.rfind("0X", 0) == 0)
            digits = digits.substr(2);
        else if (!digits.empty() && digits[0] == '#')
            digits = digits.substr(1);
        const bool hex = !digits.empty() && digits.size() <= 8 &&
                         digits.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
        if (!hex)
            return desc.m_Name + ": " + quoted + " is not a hexadecimal value from " +
                   rangeText(desc) + ".";
        value = static_cast<double>(strtoul(digits.c_str(), nullptr, 16));
        return {};
    }
    case CModuleControl::Real: {
        char* end = nullptr;
        errno = 0;
        const double number = strtod(text.c_str(), &end);
        if (text.empty() || errno || *end || !std::isfinite(number))
            return desc.m_Name + ": " + quoted + " is not a number (" + rangeText(desc) + ").";
        if (number < desc.m_Min || number > desc.m_Max)
            return desc.m_Name + ": " + text + " is outside the range " + rangeText(desc) + ".";
        value = number;
        return {};
    }
    case CModuleControl::Choice:
        // The names first: the list's own texts must read back as they were
        // written, even where a name looks like a number (Rot's "90").
        for (size_t i = 0; i < desc.m_Choices.size(); ++i)
            if (strcasecmp(desc.m_Choices[i].c_str(), text.c_str()) == 0) {
                value = static_cast<double>(i);
                return {};
            }
        {
            char* end = nullptr;
            (void)strtoll(text.c_str(), &end, 0);
            if (text.empty() || *end) {
                std::string names;
                for (const std::string& name : desc.m_Choices)
                    names += (names.empty() ? "" : ", ") + name;
                return desc.m_Name + ": " + quoted + " is not one of " + names + ".";
            }
        }
        [[fallthrough]];
    case CModuleControl::Integer:
    case CModuleControl::Check: {
        char* end = nullptr;
        errno = 0;
        const long long number = strtoll(text.c_str(), &end, 0);
        if (text.empty() || errno || *end)
            return desc.m_Name + ": " + quoted + " is not a whole number (" + rangeText(desc) +
                   ").";
        if (static_cast<double>(number) < desc.m_Min || static_cast<double>(number) > desc.m_Max)
            return desc.m_Name + ": " + text + " is outside the range " + rangeText(desc) + ".";
        value = static_cast<double>(number);
        return {};
    }
    }
    return {};
}

std::string JoinModuleTexts(const std::vector<std::string>& texts) {
    std::string joined;
    for (size_t i = 0; i < texts.size(); ++i) {
        if (i) joined += ',';
        for (char c : texts[i]) {
            if (c == ',' || c == '\\') joined += '\\';
            joined += c;
        }
    }
    return joined;
}

std::vector<std::string> SplitModuleTexts(const std::string& joined) {
    std::vector<std::string> texts;
    if (joined.empty()) return texts;
    std::string text;
    for (size_t i = 0; i < joined.size(); ++i) {
        const char c = joined[i];
        if (c == '\\' && i + 1 < joined.size()) {
            text += joined[++i];
        } else if (c == ',') {
            texts.push_back(text);
            text.clear();
        } else {
            text += c;
        }
    }
    texts.push_back(text);
    return texts;
}

namespace {

// The texts of a setting, each checked; the first refusal in `error`.
std::vector<std::string> strictTexts(const CModuleDesc& desc, const std::string& setting,
                                     std::string& error) {
    std::vector<std::string> texts = SplitModuleTexts(setting);
    if (texts.size() > desc.m_Values.size() && !desc.m_Values.empty()) {
        error = desc.m_Name + " takes " + std::to_string(desc.m_Values.size()) + " values, not " +
                std::to_string(texts.size()) + ".";
        return {};
    }
    if (desc.m_Values.empty() && !(texts.empty() || (texts.size() == 1 && texts[0].empty()))) {
        error = desc.m_Name + " takes no values.";
        return {};
    }
    const std::vector<std::string> defaults = desc.DefaultTexts();
    const size_t stored = texts.size();
    texts.resize(defaults.size());
    for (size_t i = 0; i < defaults.size(); ++i) {
        double value = 0;
        if (i >= stored) texts[i] = defaults[i];
        error = ParseModuleValue(desc.m_Values[i], texts[i], value);
        if (!error.empty()) return {};
    }
    return texts;
}

} // namespace

std::vector<std::string> ModuleTextsFromSetting(const CModuleDesc& desc,
                                                const std::string& setting) {
    const std::vector<std::string> stored = SplitModuleTexts(setting);
    std::vector<std::string> texts = desc.DefaultTexts();
    for (size_t i = 0; i < texts.size() && i < stored.size(); ++i) {
        double value = 0;
        if (ParseModuleValue(desc.m_Values[i], stored[i], value).empty()) texts[i] = stored[i];
    }
    return texts;
}

std::vector<ModuleValue> ModuleValuesFromTexts(const CModuleDesc& desc,
                                               const std::vector<std::string>& texts,
                                               std::string& error) {
    std::vector<ModuleValue> values;
    error.clear();
    for (size_t i = 0; i < desc.m_Values.size(); ++i) {
        const CModuleValueDesc& value = desc.m_Values[i];
        const std::string text = i < texts.size() ? texts[i] : std::string();
        if (value.m_Kind == CModuleControl::Text) {
            values.push_back(ModuleValue::ofPointer(
                i < texts.size() && !texts[i].empty() ? texts[i].c_str() : nullptr));
            continue;
        }
        double number = 0;
        error = ParseModuleValue(value, text, number);
        if (!error.empty()) return {};
        if (value.m_Kind == CModuleControl::Handle)
            values.push_back(ModuleValue::ofPointer(nullptr));
        else if (value.m_Kind == CModuleControl::Real)
            values.push_back(ModuleValue::ofReal(number));
        else
            values.push_back(
                ModuleValue::ofUint(static_cast<uint32_t>(static_cast<int64_t>(number))));
    }
    return values;
}

// ---- The dialog's values ---------------------------------------------------

std::vector<CDialogField> CRunModuleDlgData::GetFields() {
    std::vector<CDialogField> fields;
    fields.push_back({kModuleKey, CDialogField::Text, &m_Module, 0, 0, "", "Module"});
    // The module table's names live as long as the program.
    for (const CModuleDesc& desc : AllModuleDescs())
        fields.push_back(
            {desc.m_Name.c_str(), CDialogField::Text, &m_Settings[desc.m_Name], 0, 0, "", ""});
    return fields;
}

std::string CRunModuleDlgData::Validate() const {
    const CModuleDesc* desc = FindModuleDesc(m_Module);
    if (!desc) return "No module is named '" + m_Module + "' (see 'zytool modules').";
    const std::string reason = desc->UnusableReason();
    if (!reason.empty()) return reason;
    auto it = m_Settings.find(desc->m_Name);
    std::string error;
    strictTexts(*desc, it == m_Settings.end() ? std::string() : it->second, error);
    return error;
}

std::vector<std::string> CRunModuleDlgData::Texts() const {
    const CModuleDesc* desc = FindModuleDesc(m_Module);
    if (!desc) return {};
    auto it = m_Settings.find(desc->m_Name);
    return ModuleTextsFromSetting(*desc, it == m_Settings.end() ? std::string() : it->second);
}

void CRunModuleDlgData::SetTexts(const std::string& module, const std::vector<std::string>& texts) {
    const CModuleDesc* desc = FindModuleDesc(module);
    m_Settings[desc ? desc->m_Name : module] = JoinModuleTexts(texts);
}

void CRunModuleDlgData::Load() {
    CProfile& profile = ZyProfile();
    m_Module = profile.GetString(kSection, kModuleKey, kFirstModule);
    if (!FindModuleDesc(m_Module)) m_Module = kFirstModule;
    for (const CModuleDesc& desc : AllModuleDescs()) {
        const std::string stored = profile.GetString(kSection, desc.m_Name, "");
        if (!stored.empty()) m_Settings[desc.m_Name] = stored;
    }
}

void CRunModuleDlgData::Save() const {
    const CModuleDesc* desc = FindModuleDesc(m_Module);
    if (!desc) return;
    CProfile& profile = ZyProfile();
    profile.WriteString(kSection, kModuleKey, desc->m_Name);
    profile.WriteString(kSection, desc->m_Name, JoinModuleTexts(Texts()));
}

// ---- The command -----------------------------------------------------------

CRunModuleCmd::CRunModuleCmd() {
    m_Name = "Run Module";
}

bool CRunModuleCmd::Init(CTavixDoc* doc) {
    CRunModuleDlgData data;
    data.Load();
    OfferPreview(data, doc, [](const CDialogData& dialog, const CTavixImage& image) {
        const auto& values = static_cast<const CRunModuleDlgData&>(dialog);
        const CModuleDesc* desc = FindModuleDesc(values.m_Module);
        if (!desc || !desc->UnusableReason().empty() || !desc->CanPreview() ||
            !values.Validate().empty())
            return std::unique_ptr<CTavixImage>();
        const std::vector<std::string> texts = values.Texts();
        std::string error;
        const std::vector<ModuleValue> slots = ModuleValuesFromTexts(*desc, texts, error);
        if (!error.empty()) return std::unique_ptr<CTavixImage>();
        return image.RunModule(desc->m_Index, slots.data(), static_cast<int>(slots.size()));
    });
    if (!ZyUi().EditDialog(data)) return false;
    const std::string refusal = data.Validate();
    if (!refusal.empty()) {
        ZyUi().MessageBox(refusal, MsgButtons::OK, MsgIcon::Warning);
        return false;
    }
    const CModuleDesc* desc = FindModuleDesc(data.m_Module);
    auto it = data.m_Settings.find(desc->m_Name);
    std::string error;
    const std::vector<std::string> texts =
        strictTexts(*desc, it == data.m_Settings.end() ? std::string() : it->second, error);
    data.m_Settings[desc->m_Name] = JoinModuleTexts(texts);
    data.Save();
    return Init(doc, desc->m_Name, texts);
}

bool CRunModuleCmd::Init(CTavixDoc* doc, const std::string& module,
                         const std::vector<std::string>& texts) {
    const CModuleDesc* desc = FindModuleDesc(module);
    if (!desc || !desc->UnusableReason().empty()) return false;
    m_Texts = texts;
    const std::vector<std::string> defaults = desc->DefaultTexts();
    for (size_t i = m_Texts.size(); i < defaults.size(); ++i)
        m_Texts.push_back(defaults[i]);
    std::string error;
    m_Values = ModuleValuesFromTexts(*desc, m_Texts, error);
    if (!error.empty()) {
        ZyUi().MessageBox(error, MsgButtons::OK, MsgIcon::Warning);
        return false;
    }
    m_Module = desc->m_Index;
    m_Name = desc->m_Description.empty() ? desc->m_Name : desc->m_Description;
    return CUndoableCmd::Init(doc);
}

std::unique_ptr<CTavixImage> CRunModuleCmd::FilterImage(CTavixImage* image) {
    return RunFilter(image, m_Values.data(), static_cast<int>(m_Values.size()));
}

namespace {

// The keys name every module, so they are gathered when asked: the module
// table is not to be described during static construction.
class CRunModuleInfo : public CIdListInfo {
  public:
    CRunModuleInfo()
        : CIdListInfo({ZyIds::RunModule}, [](CTavixDoc* doc, unsigned) {
              CCommandInfo::Start(doc, new CRunModuleCmd,
                                  [doc](CCommand* cmd) { return cmd->Init(doc); });
          }) {}
    std::vector<std::string> GetSettingKeys() const override { return KeysOf<CRunModuleDlgData>(); }
};

CRunModuleInfo g_runModuleInfo;

} // namespace
