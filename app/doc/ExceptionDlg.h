#pragma once
// The program-error dialog's texts and the report every guard makes when
// it catches an unexpected exception. The dialog itself belongs to the
// front end (CExceptionDlg, titled "Zy Program Error", headings "What:",
// "Scope:" and "Action:"); the model asks for it through the user
// interface with the three texts below, kept word for word.

#include "app/doc/UserInterface.h"

#include <string>

// Where users are asked to send reports.
extern const char kZySupportAddress[];

// "Zy, crash, <label>, <detail>".
std::string CrashLine(const std::string& label, const std::string& detail);

// The texts for a failed command, open and save.
CExceptionDlgTexts CommandExceptionTexts(const std::string& commandName);
CExceptionDlgTexts OpenExceptionTexts(const std::string& path);
CExceptionDlgTexts SaveExceptionTexts(const std::string& path);

// Writes the crash line to the log, hands it to the crash-report channel
// and shows the program-error dialog.
void ReportProgramError(const std::string& crashLine, const CExceptionDlgTexts& texts);
