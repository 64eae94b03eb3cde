#pragma once
// The names and prompt texts of the document's command IDs, for the tools
// that reach the command families without a menu (zytool command, zytool
// commands). The name is the ID's short English name; the prompt is the
// status-bar text of its menu item.

#include <span>
#include <string>

struct CCommandEntry {
    unsigned m_nID;
    const char* m_Name;   // "Duplicate", "AlignLeft", "FlipHorizontal"
    const char* m_Prompt; // "Duplicate the selected images"
};

// Every command ID of the families, ascending.
std::span<const CCommandEntry> CommandTable();
// By ID, or by name (ASCII case ignored); null when there is none.
const CCommandEntry* FindCommandEntry(unsigned id);
const CCommandEntry* FindCommandEntry(const std::string& name);
