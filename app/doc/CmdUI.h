#pragma once
// The state of one menu item or toolbar button while the interface asks
// whether it is available: the model fills it in, the front end shows it.

#include <string>

class CCmdUI {
  public:
    explicit CCmdUI(unsigned id) : m_nID(id) {}

    void Enable(bool enable = true) { m_bEnabled = enable; }
    void SetText(const std::string& text) {
        m_strText = text;
        m_bTextSet = true;
    }

    unsigned m_nID;
    bool m_bEnabled = false;
    bool m_bTextSet = false;
    std::string m_strText;
};
