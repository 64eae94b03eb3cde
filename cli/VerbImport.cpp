// zytool import DIR... OUT [--names keep|file|number] [--path-comment]:
// the editor's import (app/cmds/ImportCmd) run on a new document, which is
// then written to OUT. Folders are walked in file-system order; every frame
// of a multi-frame file comes in.

#include "cli/Verbs.h"

#include "app/cmds/ImportCmd.h"
#include "app/doc/Exceptions.h"
#include "app/doc/TavixDoc.h"
#include "cli/Tool.h"

namespace zytool {

int runImport(const Args& args) {
    if (args.positional.size() < 2)
        throw ToolError("usage: zytool import DIR... OUT [--names keep|file|number] "
                        "[--path-comment] [--format NAME]");
    bindCodecLibrary();
    const std::string output = args.positional.back();
    const int driver = outputDriver(output, args.option("format"));
    std::vector<std::string> inputs(args.positional.begin(), args.positional.end() - 1);

    auto* import = new CImportCmd;
    const std::string names = args.option("names", "own");
    import->m_NameFormat = 0;
    if (names == "keep")
        import->m_NameHandling = CImportCmd::kOwnName;
    else if (names == "file")
        import->m_NameHandling = CImportCmd::kFileName;
    else if (names == "number")
        import->m_NameFormat = 1;
    else if (names == "own")
        import->m_NameHandling = CImportCmd::kOwnOrFileName;
    else
        throw ToolError("--names takes keep, file or number");
    import->m_PathToComment = args.has("path-comment");
    import->m_AskForFrames = false;

    CTavixDoc doc;
    doc.SetPathName(output); // comments name folders relative to OUT's
    CCommandInfo::Start(&doc, import, [&](CCommand* cmd) {
        return static_cast<CImportCmd*>(cmd)->Init(&doc, inputs);
    });
    if (doc.GetImageCount() == 0) throw ToolError("no image was imported");
    if (doc.GetImageCount() > 1 && !(driverAbout(driver).caps & kCapMultiImage))
        throw ToolError("the " + driverName(driver) + " format holds one image per file");
    CTavixImageList images = doc.GetImages();
    try {
        images.WriteFile(output, driver, false);
    } catch (const CFileException&) {
        throw ToolError("cannot write '" + output + "'");
    }
    printf("%d images imported into %s\n", doc.GetImageCount(), output.c_str());
    return 0;
}

} // namespace zytool
