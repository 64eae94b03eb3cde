#pragma once
// The main menu as data: every top-level menu, submenu and item with its
// command ID, key and prompt. The main frame builds its menu bar and its
// actions from this table; the toolbars reuse the same actions.

#include <vector>

struct CMenuItem {
    enum Kind { Item, Separator, Submenu, Section, RecentFiles };
    Kind kind = Item;
    const char* text = nullptr; // "&Open...\tCtrl+O": after the tab, the key shown
    unsigned id = 0;
    const char* shortcut = nullptr; // the key bound, when it differs from none
    const char* prompt = nullptr;   // "status text\ntool tip"
    bool checkable = false;
    std::vector<CMenuItem> children;
};

// The top-level menus in order: File, Edit, View, List, Image, Tools,
// Window, Help.
const std::vector<CMenuItem>& MainMenuTable();

// Keys bound without a menu item of their own (navigation, highlight keys,
// the redo keys).
struct CKeyBinding {
    const char* key;
    unsigned id;
};
const std::vector<CKeyBinding>& ExtraKeyTable();

// The buttons of each toolbar (0 = separator), by toolbar name.
struct CToolbarDef {
    const char* name;  // object name, kept in the bar layout
    const char* title; // shown in the Toolbars menu
    std::vector<unsigned> ids;
};
const std::vector<CToolbarDef>& ToolbarTable();

// Items not on any menu that still need an action (toolbar-only buttons):
// their text and whether they are toggles.
struct CExtraAction {
    unsigned id;
    const char* text;
    const char* prompt;
    bool checkable;
};
const std::vector<CExtraAction>& ExtraActionTable();
