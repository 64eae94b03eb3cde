#pragma once
// Toolbar and list icons drawn at run time: the program ships no image
// resources, so each button gets a small glyph painted for its command.

#include <QIcon>

// The icon of command `id`; a lettered tile when there is no better one.
QIcon CommandIcon(unsigned id);
// The shape list's row icons: 0 for a hidden image, 1 for a visible one.
QIcon VisibilityIcon(bool visible);
