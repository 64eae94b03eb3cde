#pragma once
// The outside image editor the Photoshop module hands pictures to: which
// command it is, and running it on a file until it is closed.

#include <string>

namespace external {

// The editor command from the settings (section "Photoshop", value
// "m_EditorCommand"); an empty text means the default. The editor stores it
// here at start-up and whenever the setting changes.
void editor_set_command(const char* command);

// The command to run: the one set, else the environment variable
// ZY_EXTERNAL_EDITOR (for tools without settings), else "gimp" when GIMP is
// on the PATH. Empty when there is none.
std::string editor_command();

// Runs `command` with `path` as its last argument (through /bin/sh, so the
// command may carry options) and waits for it to end. True when it ended
// normally with status 0; otherwise prints one line naming what happened.
bool editor_run(const std::string& command, const std::string& path);

} // namespace external
