// zytool: Zy's batch tool. It works through the same codec binding and
// image library as the editor, without a window.

#include "cli/Tool.h"
#include "cli/Verbs.h"

#include <cstdio>
#include <cstring>
#include <exception>

namespace {

struct Verb {
    const char* name;
    const char* usage;
    int (*run)(const zytool::Args&);
};

const Verb kVerbs[] = {
    {"formats", "formats                         list the codec library's drivers",
     zytool::runFormats},
    {"info", "info FILE                       list the frames of a file", zytool::runInfo},
    {"convert",
     "convert IN... OUT [--format NAME] [--select EXPR]\n"
     "                                  write every frame of the inputs to OUT",
     zytool::runConvert},
    {"export",
     "export IN DIR [--format NAME] [--select EXPR] [--name-format 0-3]\n"
     "                                  write each frame to its own file in DIR",
     zytool::runExport},
    {"import",
     "import DIR... OUT [--names keep|file|number] [--path-comment] [--format NAME]\n"
     "                                  import image files and folders into one file",
     zytool::runImport},
    {"select", "select EXPR FILE                print the indices of the frames EXPR selects",
     zytool::runSelect},
    {"run",
     "run MODULE [values...] IN OUT [--second FILE] [--select EXPR] [--format NAME]\n"
     "                [--threads N]     apply an image module to the frames of IN; N threads\n"
     "                                  share the rows of a resize (default 1)",
     zytool::runRun},
    {"mipmap",
     "mipmap IN OUT [--levels N] [--method M] [--select EXPR] [--format NAME]\n"
     "                                  give every frame a chain of mip-map levels",
     zytool::runMipmap},
    {"quantize",
     "quantize IN OUT [--colors K] [--method NAME] [--dither D] [--shared] [--select EXPR]\n"
     "                                  reduce frames to 8-bit indexed images",
     zytool::runQuantize},
    {"depth",
     "depth IN OUT --bits ARGB [--dither D] [--select EXPR]\n"
     "                                  reduce the bits of each channel (0565, 1555, 4444)",
     zytool::runDepth},
    {"modules", "modules                         list the image modules and their parameters",
     zytool::runModules},
    {"command",
     "command ID|NAME IN OUT [--select EXPR] [--set SECTION/KEY=VALUE ...] [--answer yes|no]\n"
     "                [--colors LIST]   run one editor command on the images of IN; LIST\n"
     "                                  (\"3,10-12\") is the palette well's colour selection",
     zytool::runCommand},
    {"commands",
     "commands [--keys ID|NAME]       list the editor's commands, or the settings one reads",
     zytool::runCommands},
};

void printUsage(FILE* to) {
    fprintf(to, "usage: zytool VERB ...\n");
    for (const Verb& verb : kVerbs)
        fprintf(to, "  zytool %s\n", verb.usage);
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2 || strcmp(argv[1], "--help") == 0 || strcmp(argv[1], "-h") == 0) {
        printUsage(argc < 2 ? stderr : stdout);
        return argc < 2 ? 2 : 0;
    }
    for (const Verb& verb : kVerbs) {
        if (strcmp(verb.name, argv[1]) != 0) continue;
        try {
            return verb.run(zytool::parseArgs(argc, argv, 2));
        } catch (const zytool::ToolError& error) {
            fprintf(stderr, "zytool: %s\n", error.what());
        } catch (const std::exception& error) {
            fprintf(stderr, "zytool: unexpected failure: %s\n", error.what());
        }
        return 1;
    }
    fprintf(stderr, "zytool: unknown verb '%s'\n", argv[1]);
    printUsage(stderr);
    return 2;
}
