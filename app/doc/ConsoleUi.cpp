#include "app/doc/ConsoleUi.h"

#include "app/doc/ProgressDlg.h"
#include "app/doc/Profile.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <strings.h>

namespace {

class CConsoleProgress : public CProgressWindow {
  public:
    CConsoleProgress(FILE* out, bool verbose) : m_Out(out), m_Verbose(verbose) {}
    void Refresh(const CProgressDlg& dlg) override {
        if (!m_Verbose || dlg.GetStatus() == m_Shown) return;
        m_Shown = dlg.GetStatus();
        fprintf(m_Out, "%s: %s\n", dlg.GetCaption().c_str(), m_Shown.c_str());
    }
    void Pump(CProgressDlg&) override {}

  private:
    FILE* m_Out;
    bool m_Verbose;
    std::string m_Shown;
};

} // namespace

MsgAnswer CConsoleUi::MessageBox(const std::string& text, MsgButtons buttons, MsgIcon,
                                 const std::string& caption) {
    fprintf(m_Out, "%s: %s\n", caption.c_str(), text.c_str());
    const bool yesNo = buttons == MsgButtons::YesNo || buttons == MsgButtons::YesNoCancel;
    if (buttons == MsgButtons::OK) return MsgAnswer::OK;
    bool yes = true;
    if (m_Answer) {
        yes = *m_Answer;
    } else if (m_Strict) {
        ++m_Unanswered;
        yes = false;
    }
    if (yes) return yesNo ? MsgAnswer::Yes : MsgAnswer::OK;
    return yesNo ? MsgAnswer::No : MsgAnswer::Cancel;
}

bool CConsoleUi::FillField(const char* section, const CDialogField& field) {
    // A sentinel no setting can hold tells a missing key from an empty text.
    static const std::string kMissing("\x01");
    const std::string text = ZyProfile().GetString(section, field.m_Name, kMissing);
    if (text == kMissing) return true;
    if (SetDialogFieldFromText(field, text)) return true;
    fprintf(m_Out, "%s/%s: '%s' does not fit this field\n", section, field.m_Name, text.c_str());
    ++m_Rejected;
    return false;
}

bool CConsoleUi::EditDialog(CDialogData& data) {
    for (const CDialogField& field : data.GetFields())
        if (!FillField(data.GetDialogName(), field)) return false;
    const std::string refusal = data.Validate();
    if (!refusal.empty()) {
        fprintf(m_Out, "%s: %s\n", data.GetDialogName(), refusal.c_str());
        return false;
    }
    return true;
}

std::unique_ptr<CProgressWindow> CConsoleUi::CreateProgressWindow(CProgressDlg&) {
    return std::make_unique<CConsoleProgress>(m_Out, m_Verbose);
}

void CConsoleUi::SetStatusText(const std::string& text) {
    if (m_Verbose || m_ShowStatus) fprintf(m_Out, "%s\n", text.c_str());
}

void CConsoleUi::ShowExceptionDialog(const CExceptionDlgTexts& texts) {
    fprintf(m_Out, "%s\nWhat: %s\nScope: %s\nAction: %s\n", texts.m_Caption.c_str(),
            texts.m_What.c_str(), texts.m_Scope.c_str(), texts.m_Action.c_str());
}

void CConsoleUi::Log(const std::string& line) {
    if (m_Verbose) fprintf(m_Out, "%s\n", line.c_str());
}

namespace {

bool parseInteger(const std::string& text, double& out) {
    const char* begin = text.c_str();
    char* end = nullptr;
    errno = 0;
    long long value = strtoll(begin, &end, 0);
    if (errno || end == begin || *end) return false;
    out = static_cast<double>(value);
    return true;
}

bool parseReal(const std::string& text, double& out) {
    const char* begin = text.c_str();
    char* end = nullptr;
    errno = 0;
    double value = strtod(begin, &end);
    if (errno || end == begin || *end || !std::isfinite(value)) return false;
    out = value;
    return true;
}

// The number of the choice named `text` (ASCII case ignored), or -1.
int choiceNumber(const char* choices, const std::string& text) {
    int number = 0;
    for (const char* at = choices; *at; ++number) {
        const char* comma = strchr(at, ',');
        size_t length = comma ? static_cast<size_t>(comma - at) : strlen(at);
        if (length == text.size() && strncasecmp(at, text.c_str(), length) == 0) return number;
        if (!comma) break;
        at = comma + 1;
    }
    return -1;
}

int choiceCount(const char* choices) {
    if (!*choices) return 0;
    int count = 1;
    for (const char* at = choices; *at; ++at)
        if (*at == ',') ++count;
    return count;
}

} // namespace

bool SetDialogFieldFromText(const CDialogField& field, const std::string& text) {
    double value = 0;
    switch (field.m_Kind) {
    case CDialogField::Text:
        *static_cast<std::string*>(field.m_Value) = text;
        return true;
    case CDialogField::Choice: {
        int named = choiceNumber(field.m_Choices, text);
        if (named >= 0) {
            *static_cast<int*>(field.m_Value) = named;
            return true;
        }
        if (!parseInteger(text, value) || value < 0 || value >= choiceCount(field.m_Choices))
            return false;
        *static_cast<int*>(field.m_Value) = static_cast<int>(value);
        return true;
    }
    case CDialogField::Integer:
        if (!parseInteger(text, value) || value < field.m_Min || value > field.m_Max) return false;
        *static_cast<int*>(field.m_Value) = static_cast<int>(value);
        return true;
    case CDialogField::Real:
        if (!parseReal(text, value) || value < field.m_Min || value > field.m_Max) return false;
        *static_cast<double*>(field.m_Value) = value;
        return true;
    }
    return false;
}

std::string DialogFieldText(const CDialogField& field) {
    switch (field.m_Kind) {
    case CDialogField::Text:
        return *static_cast<const std::string*>(field.m_Value);
    case CDialogField::Real: {
        char text[64];
        snprintf(text, sizeof text, "%g", *static_cast<const double*>(field.m_Value));
        return text;
    }
    case CDialogField::Integer:
    case CDialogField::Choice:
        return std::to_string(*static_cast<const int*>(field.m_Value));
    }
    return {};
}
