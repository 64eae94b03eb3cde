#pragma once
// Menu and toolbar command IDs that the model handles.

// Every ID from here to kLastDocCommandId reaches the document's command
// handler.
constexpr unsigned kFirstDocCommandId = 35000;
constexpr unsigned kLastDocCommandId = 35499;

constexpr unsigned ID_EDIT_UNDO = 35001; // "Undo the last command\nUndo", Ctrl+Z

constexpr unsigned ID_IMAGE_FLIP_HORIZONTAL = 35024; // "Flip Horizontal"
constexpr unsigned ID_IMAGE_FLIP_VERTICAL = 35025;   // "Flip Vertical"
