#include "app/doc/ExceptionDlg.h"

const char kZySupportAddress[] = "zy-support@nadirtools.example";

namespace {

const char kCaption[] = "Zy Program Error";
const char kScope[] =
    "The problem is the result of a programming error and may cause additional problems.";

CExceptionDlgTexts texts(std::string what, std::string action) {
    return {kCaption, std::move(what), kScope, std::move(action)};
}

} // namespace

std::string CrashLine(const std::string& label, const std::string& detail) {
    return "Zy, crash, " + label + ", " + detail;
}

CExceptionDlgTexts CommandExceptionTexts(const std::string& commandName) {
    return texts("The command you are performing, \"" + commandName +
                     "\", is causing an unidentified program error.  No data has been lost but "
                     "the command has not been performed",
                 std::string("Save your work and try the operation again.  Send an e-mail to ") +
                     kZySupportAddress +
                     " attaching the file and the steps needed to reproduce the problem");
}

CExceptionDlgTexts OpenExceptionTexts(const std::string& path) {
    return texts("The file you are opening, \"" + path +
                     "\", is causing an unidentified program error.  No data has been lost but "
                     "the file has not been opened",
                 "Ensure that the file is valid by opening it in a different application and "
                 "resaving it.  Also send an email with the file attached to the Zy maintainer.  "
                 "Include any additional information you feel is important.");
}

CExceptionDlgTexts SaveExceptionTexts(const std::string& path) {
    return texts("The file you are saving, \"" + path +
                     "\", is causing an unidentified program error.  No data has been lost but "
                     "your file has not been saved",
                 "In the meantime, save the file in a different file format such as Tavix "
                 "Images. Contact the Zy maintainer indicating which file format you were trying "
                 "to save.");
}

void ReportProgramError(const std::string& crashLine, const CExceptionDlgTexts& texts) {
    CUserInterface& ui = ZyUi();
    ui.Log(crashLine);
    ui.ReportCrash(crashLine);
    ui.ShowExceptionDialog(texts);
}
