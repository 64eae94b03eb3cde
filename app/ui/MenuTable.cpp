#include "app/ui/MenuTable.h"

#include "app/doc/CommandIds.h"

using namespace ZyIds;

namespace {

CMenuItem item(const char* text, unsigned id, const char* prompt = nullptr,
               const char* shortcut = nullptr) {
    CMenuItem m;
    m.text = text;
    m.id = id;
    m.prompt = prompt;
    m.shortcut = shortcut;
    return m;
}

CMenuItem toggle(const char* text, unsigned id, const char* prompt = nullptr,
                 const char* shortcut = nullptr) {
    CMenuItem m = item(text, id, prompt, shortcut);
    m.checkable = true;
    return m;
}

CMenuItem separator() {
    CMenuItem m;
    m.kind = CMenuItem::Separator;
    return m;
}

CMenuItem section(const char* text) {
    CMenuItem m;
    m.kind = CMenuItem::Section;
    m.text = text;
    return m;
}

CMenuItem submenu(const char* text, std::vector<CMenuItem> children) {
    CMenuItem m;
    m.kind = CMenuItem::Submenu;
    m.text = text;
    m.children = std::move(children);
    return m;
}

CMenuItem recentFiles() {
    CMenuItem m;
    m.kind = CMenuItem::RecentFiles;
    return m;
}

std::vector<CMenuItem> buildFile() {
    return {
        item("&New\tCtrl+N", FileNew, "Create a new document\nNew", "Ctrl+N"),
        item("&Open...\tCtrl+O", FileOpen, "Open an existing document\nOpen", "Ctrl+O"),
        item("&Save\tCtrl+S", FileSave, "Save the active document\nSave", "Ctrl+S"),
        item("Save &As...", FileSaveAs, "Save the active document with a new name\nSave As"),
        item("&Revert", Revert, "Throw away the changes made since the last save\nRevert"),
        separator(),
        item("&Import...", Import, "Import image files into the document\nImport"),
        item("&Export...", Export, "Export the selected images to files\nExport"),
        separator(),
        submenu("Pre&ferences",
                {item("&General...", FilePreferences, "Change the program's options\nPreferences"),
                 section("Layer"),
                 item("Show Focused Image", ShowFocusedImage,
                      "Draw the focused image even when it is not selected"),
                 item("Focused Image Topmost", FocusedImageTopmost,
                      "Draw the focused image over all others"),
                 section("Color Picker"),
                 toggle("PSX Colors (555)", PsxColors, "Offer only 15-bit colours in the picker")}),
        separator(),
        recentFiles(),
        separator(),
        item("E&xit", AppExit, "Quit the application; prompts to save documents\nExit"),
    };
}

std::vector<CMenuItem> buildEdit() {
    return {
        item("&Undo\tCtrl+Z", Undo, "Undo the last command\nUndo", "Ctrl+Z"),
        separator(),
        item("Cu&t\tCtrl+X", EditCut, "Cut the selection to the clipboard\nCut", "Ctrl+X"),
        item("&Copy\tCtrl+C", EditCopy, "Copy the selection to the clipboard\nCopy", "Ctrl+C"),
        item("&Paste\tCtrl+V", EditPaste, "Insert the clipboard's contents\nPaste", "Ctrl+V"),
        item("Paste &Special...", EditPasteSpecial, "Paste with a chosen method\nPaste Special"),
        separator(),
        item("Select &All\tCtrl+A", EditSelectAll,
             "Select all the images in the document\nSelect All", "Ctrl+A"),
        item("Select &None\tCtrl+D", EditSelectNone,
             "Remove any selection from all the images in the document\nSelect None", "Ctrl+D"),
        item("&Invert Selection", EditInvertSelection,
             "Make the unselected items selected and vice versa"),
        item("S&elect...", EditSelectRange, "Select document images using a range expression"),
    };
}

std::vector<CMenuItem> buildView() {
    return {
        item("Zoom &In\t+", ViewZoomIn, "Zoom in\nZoom In", "+"),
        item("Zoom &Out\t-", ViewZoomOut, "Zoom out\nZoom Out", "-"),
        item("&Normal Size", ViewZoomNormal,
             "Set magnification level of view to normal (100%)\nNormal Size"),
        item("Zoom to &Fit", ViewZoomToFit,
             "Zoom so that the selected images fill the worksheet window\nZoom to Fit"),
        item("Go to &Selected", ViewGoToSelected,
             "Scroll the worksheet to the selected images\nGo to Selected"),
        separator(),
        toggle("Selection E&dges\tCtrl+H", ViewSelectionEdges,
               "Toggle selection edges on and off\nEdges", "Ctrl+H"),
        toggle("&Points\tCtrl+Shift+H", ViewPoints, "Toggle centre and hot points\nPoints",
               "Ctrl+Shift+H"),
        submenu("&Grid",
                {toggle("Show &Grid\tCtrl+'", ViewGrid, "Toggle the grid\nGrid", "Ctrl+'"),
                 item("&Increase Grid Size", GridLarger, "Increase Grid Size"),
                 item("&Decrease Grid Size", GridSmaller, "Decrease Grid Size"), separator(),
                 item("Increase &Checker Size", CheckerLarger, "Increase Checker Size"),
                 item("Decrease C&hecker Size", CheckerSmaller, "Decrease Checker Size")}),
        submenu(
            "&Channels",
            {toggle("View &Alpha\tAlt+1", ViewAlpha, "Toggle view state for alpha channel",
                    "Alt+1"),
             toggle("Vie&w RGB\tAlt+2", ViewRGB, "Toggle view state for RGB channels", "Alt+2"),
             toggle("View &R\tAlt+3", ViewRed, "Toggle view state for red channel", "Alt+3"),
             toggle("View &G\tAlt+4", ViewGreen, "Toggle view state for green channel", "Alt+4"),
             toggle("View &B\tAlt+5", ViewBlue, "Toggle view state for blue channel", "Alt+5"),
             separator(), item("Write A&lpha", WriteAlpha, "Toggle write state for alpha channel"),
             item("Wr&ite RGB", WriteRGB, "Toggle write state for RGB channels")}),
        separator(),
        item("Color &Editor", ViewColorEditor, "Show the colour editor\nColor Editor"),
        toggle("Shape List T&humbnails", ViewThumbnails,
               "Show small pictures of the images in the shape list\nThumbnails"),
        item("P&roperties\tAlt+Enter", ViewProperties, "Show the properties editor", "Alt+Enter"),
        submenu("&Toolbars", {}),
    };
}

std::vector<CMenuItem> buildList() {
    return {
        item("Add &New Image...", AddNewImage, "Add a new image to the document"),
        item("&Insert New Image...", InsertNewImage, "Insert a new image after the focused one"),
        item("&Duplicate", Duplicate, "Duplicate the selected images"),
        item("De&lete", Delete, "Delete the selected images"),
        separator(),
        item("&Show", ListShow, "Make the selected shapes visible on the worksheet"),
        item("&Hide", ListHide, "Make the selected shapes invisible on the worksheet"),
        separator(),
        submenu("&Arrange",
                {item("Bring &Forward", BringForward,
                      "Move the selected images one place toward the start of the list"),
                 item("Send &Back", SendBack,
                      "Move the selected images one place toward the end of the list"),
                 item("Bring &To Front", BringToFront,
                      "Move the selected images to the start of the list"),
                 item("Send To Botto&m", SendToBottom,
                      "Move the selected images to the end of the list"),
                 item("Move &Up Five", MoveUpFive), item("Move &Down Five", MoveDownFive),
                 separator(), item("Align &Left", AlignLeft), item("Align &Right", AlignRight),
                 item("Align T&op", AlignTop), item("Align Bottom", AlignBottom), separator(),
                 item("Center &Vertical", CenterVertical),
                 item("Center &Horizontal", CenterHorizontal), separator(),
                 item("Space &Across", SpaceAcross), item("Space Do&wn", SpaceDown)}),
        item("S&ort", Sort, "Sort the images by name"),
        item("&Merge Selected", MergeSelected, "Merge the selected images into one"),
    };
}

std::vector<CMenuItem> buildImage() {
    return {
        item("Color &Depth Wizard...", ColorDepthWizard, "Starts the color remap wizard"),
        submenu("Set &Palette", {item("Set Palette to &Selected...", SetPaletteSelected),
                                 item("Set Palette to &All...", SetPaletteAll),
                                 item("A&ttach Palette...", AttachPalette)}),
        submenu("&Remap to Palette", {item("&Remap Palette", RemapPalette),
                                      item("Remap Palette (&Better)", RemapPaletteBetter)}),
        // The palette well's commands.
        submenu("Pa&lette",
                {item("&Swap Colors...", SwapColors,
                      "Swap two colors and the pixels using them; the picture stays"),
                 item("&Exchange Colors...", ExchangeColors,
                      "Exchange two palette entries; the pixels keep their indices"),
                 item("&Move Colors...", MoveColors,
                      "Move the pixels of the selected colors to one index"),
                 separator(),
                 item("S&ort Palette...", SortPalette,
                      "Sort the palettes of the selected images by a sort string"),
                 item("Sort by &HSV", SortPaletteHsv), item("Sort by &RGB", SortPaletteRgb),
                 item("Sort by Use, &Least First", SortPaletteLeastUsed),
                 item("Sort by Use, Most &First", SortPaletteMostUsed)}),
        submenu(
            "&Format",
            {item("RGB &32", Rgb32, "Convert the selected images to 32 bpp (8888)"),
             item("RGB &24", Rgb24, "Convert the selected images to 24 bpp (888)"),
             item("RGB 16 &565", Rgb565, "Convert the selected images to 16 bpp (565)"),
             item("RGB &16 555", Rgb555, "Convert the selected images to 15 bpp (555)"),
             item("RGB 15 555 &Opaque", Rgb555Opaque,
                  "Convert the selected images to 15 bpp (555) without alpha"),
             item("&Change Color Depth", ChangeColorDepth, "Change color depth of current image"),
             item("&Indexed 8", Indexed8, "Convert the selected images to 8 bpp (256 colors)"),
             item("Indexed &4", Indexed4, "Convert the selected images to 4 bpp (16 colors)"),
             item("&Grayscale...", Grayscale)}),
        submenu("&Adjust", {item("&Contrast/Brightness...", ContrastBrightness),
                            item("Color &Balance...", ColorBalance),
                            item("&Hue/Saturation...", HueSaturation), item("&Invert", Invert)}),
        submenu(
            "F&ilter",
            {item("&Blur", Blur, "Blur selected images"), item("Blur &More", BlurMore),
             item("Blur &Amount...", BlurAmount), separator(), item("&Sharpen", Sharpen),
             item("Sharpen M&ore", SharpenMore), item("Sharpen Amoun&t...", SharpenAmount),
             separator(), item("&De-Interlace...", DeInterlace), item("C&reep...", Creep),
             item("Clean &Edges...", CleanEdges), item("O&utline", Outline), separator(),
             item("B&lend Images...", BlendImages, "Blend the selected images into a new image"),
             separator(),
             item("Ru&n Module...", RunModule,
                  "Run any image module on the selected images with chosen values")}),
        submenu("Atte&nuation",
                {item("&Pre-Attenuate", PreAttenuate), item("&Un-Attenuate", UnAttenuate)}),
        separator(),
        item("Image &Size...", ImageSize),
        item("&Canvas Size...", CanvasSize),
        item("&Enlarge Canvas...", EnlargeCanvas),
        item("S&hrink To Fit", ShrinkToFit),
        submenu("&Transform",
                {item("Flip &Horizontal", FlipHorizontal, "Flip the selected images left to right"),
                 item("Flip &Vertical", FlipVertical, "Flip the selected images top to bottom"),
                 separator(), item("Rotate 90\u00b0 &CW", Rotate90CW),
                 item("Rotate &180\u00b0", Rotate180), item("Rotate 90\u00b0 CC&W", Rotate90CCW),
                 item("&Arbitrary Rotate...", ArbitraryRotate), separator(),
                 item("Column &Swap", ColumnSwap)}),
    };
}

std::vector<CMenuItem> buildTools() {
    return {
        submenu("&VRAM Tools",
                {item("&Layout Wizard...", LayoutWizard), item("&Rotate", RotateToggle),
                 item("&Transpose", Transpose), item("Custom &Properties", CustomProperties),
                 separator(), toggle("PSX &VRAM View", VramView, "PSX VRAM View"),
                 toggle("&Overlap Warning", OverlapWarning, "Toggle Overlap Warning")}),
        submenu("&Shape File Tools", {item("Insert &Named Palette", NamedPalette),
                                      item("Shape &Properties...", ShapeProperties)}),
        submenu("&Other Tools", {item("&Command Line...", KoTool),
                                 item("Send to &Artist Download Card", SendToDisplayCard,
                                      "Send the focused image to the artist download card")}),
        submenu("&Animate", {item("Preview &Image", AnimatePreviewImage),
                             item("Preview &Worksheet", AnimatePreviewWorksheet), separator(),
                             toggle("Play &Backward", PlayBackward, "Play backward\nPlay Backward"),
                             toggle("Play &Forward\tCtrl+Shift+P", PlayForward,
                                    "Play forward\nPlay Forward", "Ctrl+Shift+P")}),
        item("Create &Mip Maps...", CreateMipMaps),
    };
}

std::vector<CMenuItem> buildWindow() {
    return {
        item("&Tile", WindowTile, "Arrange windows as non-overlapping tiles\nTile"),
        item("&Cascade", WindowCascade, "Arrange windows so they overlap\nCascade"),
        item("&Next", WindowNext, "Activate the next window\nNext Window"),
    };
}

std::vector<CMenuItem> buildHelp() {
    return {
        item("&Documentation\tF1", HelpDocumentation, "Open the manual\nDocumentation", "F1"),
        item("&About Zy...", HelpAbout, "Display program information and version\nAbout"),
    };
}

} // namespace

const std::vector<CMenuItem>& MainMenuTable() {
    static const std::vector<CMenuItem> table = {
        submenu("&File", buildFile()),     submenu("&Edit", buildEdit()),
        submenu("&View", buildView()),     submenu("&List", buildList()),
        submenu("&Image", buildImage()),   submenu("&Tools", buildTools()),
        submenu("&Window", buildWindow()), submenu("&Help", buildHelp()),
    };
    return table;
}

const std::vector<CKeyBinding>& ExtraKeyTable() {
    static const std::vector<CKeyBinding> table = [] {
        std::vector<CKeyBinding> keys = {
            {"]", NextImage},
            {"[", PreviousImage},
            {"=", ViewZoomIn},
            {"Ctrl++", ViewZoomIn},
            {"Ctrl+-", ViewZoomOut},
            {"F5", RefreshViews},
            {"Esc", ClearHighlight},
            // The Undo item toggles; these keys only ever redo.
            {"Ctrl+Y", Redo},
            {"Ctrl+Shift+Z", Redo},
            // The main Enter key as well as the keypad's, as the menu says.
            {"Alt+Return", ViewProperties},
        };
        static const char* digits[] = {"1", "2", "3", "4", "5", "6", "7", "8", "9", "0"};
        static const char* shifted[] = {"!", "@", "#", "$", "%", "^", "&", "*", "(", ")"};
        for (unsigned n = 0; n < 10; ++n) {
            keys.push_back({digits[n], Highlight0 + n});
            keys.push_back({shifted[n], Highlight0 + 10 + n});
        }
        return keys;
    }();
    return table;
}

const std::vector<CToolbarDef>& ToolbarTable() {
    static const std::vector<CToolbarDef> table = {
        {"StandardBar",
         "Standard",
         {FileNew, FileOpen, FileSave, 0, EditCut, EditCopy, EditPaste, 0, Undo, 0, HelpAbout}},
        {"WorksheetBar",
         "Worksheet",
         {ViewZoomIn, ViewZoomOut, ViewZoomNormal, 0, ViewGrid, ViewPoints, ViewSelectionEdges, 0,
          OverlapWarning, VramView}},
        {"AnimationBar",
         "Animation",
         {FirstImage, PreviousImage, PlayBackward, PlayForward, NextImage, LastImage}},
        {"ColorReductionBar",
         "Color Reduction",
         {Indexed4, Indexed8, Rgb565, Rgb24, Rgb32, 0, ColorDepthWizard}},
        {"ChannelBar",
         "Channel",
         {ViewAlpha, ViewRGB, ViewRed, ViewGreen, ViewBlue, 0, WriteAlpha, WriteRGB, WriteRed,
          WriteGreen, WriteBlue}},
        {"LayoutBar",
         "Layout",
         {AlignLeft, AlignRight, AlignTop, AlignBottom, 0, RotateToggle, Transpose}},
        {"DrawingBar", "Drawing", {FlipHorizontal, FlipVertical, 0, Rotate90CW, Rotate90CCW}},
    };
    return table;
}

const std::vector<CExtraAction>& ExtraActionTable() {
    static const std::vector<CExtraAction> table = {
        {NextImage, "Next", "Display the next image in the document\nNext", false},
        {PreviousImage, "Previous", "Display the previous image in the document\nPrevious", false},
        {FirstImage, "View First", "View first image in image list\nView First", false},
        {LastImage, "View Last", "View last image in image list\nView Last", false},
        {WriteRed, "Write Red", "Toggle write state for red channel", false},
        {WriteGreen, "Write Green", "Toggle write state for green channel", false},
        {WriteBlue, "Write Blue", "Toggle write state for blue channel", false},
        {RefreshViews, "Refresh", "Update all views of the document", false},
        {ClearHighlight, "Clear Highlight", "Clear the highlighted palette entries", false},
    };
    return table;
}
