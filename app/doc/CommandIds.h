#pragma once
// Every command ID of the editor, the one place each number is defined.
//
// The families' IDs (35000 to 35499) come first, one constant each, in the
// model's naming; the ZyIds names below refer to them for the menu tables.
// A family that takes a number gives it its constant here and its ZyIds
// entry names that constant instead of repeating the number. The IDs below
// 35000 are the front end's own: the application, the frame and the two
// views handle them.

// Every ID from here to kLastDocCommandId reaches the document's command
// handler.
constexpr unsigned kFirstDocCommandId = 35000;
constexpr unsigned kLastDocCommandId = 35499;

constexpr unsigned ID_EDIT_UNDO = 35001; // "Undo the last command\nUndo", Ctrl+Z
// Redo only (Ctrl+Y, Ctrl+Shift+Z): the Undo item redoes as well, but a key
// meant to redo must never undo.
constexpr unsigned ID_EDIT_REDO = 35000;

constexpr unsigned ID_IMAGE_FLIP_HORIZONTAL = 35024; // "Flip Horizontal"
constexpr unsigned ID_IMAGE_FLIP_VERTICAL = 35025;   // "Flip Vertical"

// ---- The structural list commands, the blend and the clipboard -------------
constexpr unsigned ID_FILE_REVERT = 35004;           // "Revert"
constexpr unsigned ID_LIST_DUPLICATE = 35082;        // "Duplicate"
constexpr unsigned ID_LIST_DELETE = 35083;           // "Delete"
constexpr unsigned ID_LIST_ADD_NEW_IMAGE = 35084;    // "Add New Image": at the end
constexpr unsigned ID_LIST_INSERT_NEW_IMAGE = 35085; // "Insert New Image": after the focused one
// The ordering items. "Front" is the start of the shape list: the worksheet
// draws the first image on top.
constexpr unsigned ID_ORDER_BRING_FORWARD = 35250;  // "Bring Forward": one step toward the start
constexpr unsigned ID_ORDER_SEND_BACK = 35251;      // "Send Back": one step toward the end
constexpr unsigned ID_ORDER_BRING_TO_FRONT = 35252; // "Bring To Front": gathered at the start
constexpr unsigned ID_ORDER_SEND_TO_BOTTOM = 35253; // "Send To Bottom": gathered at the end
constexpr unsigned ID_ORDER_MOVE_UP_FIVE = 35254;   // "Move Up Five"
constexpr unsigned ID_ORDER_MOVE_DOWN_FIVE = 35255; // "Move Down Five"
constexpr unsigned ID_IMAGE_BLEND = 35263;          // "Blend Images"
constexpr unsigned ID_ALIGN_LEFT = 35280;
constexpr unsigned ID_ALIGN_RIGHT = 35281;
constexpr unsigned ID_ALIGN_TOP = 35282;
constexpr unsigned ID_ALIGN_BOTTOM = 35283;
constexpr unsigned ID_SPACE_ACROSS = 35284;
constexpr unsigned ID_SPACE_DOWN = 35285;
constexpr unsigned ID_CENTER_VERTICAL = 35289;
constexpr unsigned ID_CENTER_HORIZONTAL = 35290;
constexpr unsigned ID_LIST_SORT = 35350; // "Sort Images"
// The clipboard items are the document's too: Cut and Paste are commands.
constexpr unsigned ID_EDIT_CUT = 35400;
constexpr unsigned ID_EDIT_COPY = 35401;
constexpr unsigned ID_EDIT_PASTE = 35402;
constexpr unsigned ID_EDIT_PASTE_SPECIAL = 35403;

// Import and export, layout and mip maps.
constexpr unsigned ID_FILE_IMPORT = 35002;         // "Import..."
constexpr unsigned ID_FILE_EXPORT = 35003;         // "Export..."
constexpr unsigned ID_IMAGE_LAYOUT_WIZARD = 35127; // "Layout Wizard"
constexpr unsigned ID_LAYOUT_PROPERTIES = 35270;   // "Custom Properties"
constexpr unsigned ID_CREATE_MIP_MAPS = 35330;     // "Create Mip Maps"

// ---- Names for the menus, toolbars and keys ---------------------------------

namespace ZyIds {

enum : unsigned {
    // Application and frame.
    FileNew = 34000,
    FileOpen,
    FileSave,
    FileSaveAs,
    FilePreferences,
    FileMru1,
    FileMru2,
    FileMru3,
    FileMru4,
    AppExit,
    PsxColors,
    WindowTile,
    WindowCascade,
    WindowNext,
    HelpDocumentation,
    HelpAbout,
    SendToDisplayCard,

    // The colour editor window (the frame's own item).
    ViewColorEditor,
    // Tools that have no implementation yet: always disabled.
    ViewProperties,
    AnimatePreviewImage,
    AnimatePreviewWorksheet,

    // Shape list view.
    EditSelectAll,
    EditSelectNone,
    EditInvertSelection,
    EditSelectRange,
    NextImage,
    PreviousImage,
    FirstImage,
    LastImage,
    PlayBackward,
    PlayForward,
    ListShow,
    ListHide,

    // Worksheet view.
    ViewZoomIn,
    ViewZoomOut,
    ViewZoomNormal,
    ViewSelectionEdges,
    ViewPoints,
    ViewGrid,
    GridLarger,
    GridSmaller,
    CheckerLarger,
    CheckerSmaller,
    ViewAlpha,
    ViewRGB,
    ViewRed,
    ViewGreen,
    ViewBlue,
    WriteAlpha,
    WriteRGB,
    WriteRed,
    WriteGreen,
    WriteBlue,
    VramView,
    OverlapWarning,
    ShowFocusedImage,
    FocusedImageTopmost,
    RefreshViews,
    ClearHighlight,
    Highlight0, // Highlight0 + n highlights palette entry n, n = 0..19
    HighlightLast = Highlight0 + 19,

    // Shape list thumbnails on or off (the frame switches every list).
    ViewThumbnails,

    LastUiId,
};

// The families' IDs.
enum : unsigned {
    Undo = ID_EDIT_UNDO,
    Redo = ID_EDIT_REDO,
    Import = 35002,
    Export = 35003,
    Revert = 35004,
    ColorDepthWizard = 35005,
    SetPaletteSelected = 35006,
    SetPaletteAll = 35007,
    Invert = 35008,
    Grayscale = 35009,
    CanvasSize = 35010,
    ShrinkToFit = 35011,
    EnlargeCanvas = 35012,
    ContrastBrightness = 35021,
    ColorBalance = 35022,
    HueSaturation = 35023,
    FlipHorizontal = ID_IMAGE_FLIP_HORIZONTAL,
    FlipVertical = ID_IMAGE_FLIP_VERTICAL,
    Rotate90CW = 35026,
    Rotate180 = 35027,
    Rotate90CCW = 35028,
    ImageSize = 35029,
    CleanEdges = 35043,
    Creep = 35044,
    DeInterlace = 35046,
    Blur = 35047,
    BlurMore = 35048,
    BlurAmount = 35049,
    Sharpen = 35060,
    SharpenAmount = 35061,
    SharpenMore = 35062,
    RemapPalette = 35063,
    RemapPaletteBetter = 35064,
    Indexed4 = 35065,
    Indexed8 = 35066,
    Rgb555 = 35067,
    Rgb565 = 35068,
    Rgb32 = 35069,
    Rgb24 = 35080,
    Rgb555Opaque = 35081,
    Duplicate = 35082,
    Delete = 35083,
    AddNewImage = 35084,
    InsertNewImage = 35085,
    LayoutWizard = 35127,
    ArbitraryRotate = 35128,
    BringForward = 35250,
    SendBack = 35251,
    BringToFront = 35252,
    SendToBottom = 35253,
    MoveUpFive = 35254,
    MoveDownFive = 35255,
    ColumnSwap = 35261,
    BlendImages = 35263,
    Outline = 35264,
    CustomProperties = 35270,
    AlignLeft = 35280,
    AlignRight = 35281,
    AlignTop = 35282,
    AlignBottom = 35283,
    SpaceAcross = 35284,
    SpaceDown = 35285,
    CenterVertical = 35289,
    CenterHorizontal = 35290,
    Transpose = 35295,
    RotateToggle = 35296,
    AttachPalette = 35300,
    NamedPalette = 35301,
    PreAttenuate = 35310,
    UnAttenuate = 35312,
    CreateMipMaps = 35330,
    ShapeProperties = 35340,
    Sort = 35350,
    // The clipboard items: Cut and Paste are commands of the document.
    EditCut = 35400,
    EditCopy = 35401,
    EditPaste = 35402,
    EditPasteSpecial = 35403,
    // Items whose family has no number of its own yet; inside the range, so
    // the registry rule shows them disabled until a family takes them.
    MergeSelected = 35360,
    KoTool = 35361,
    // "Change color depth of current image": applies the colour reduction
    // toolbar's choices. It lies outside the handler's range, so it is
    // routed to the registry directly.
    ChangeColorDepth = 3683,
    // "Run Module...": any imaging module with the values of its descriptor.
    RunModule = 35318,
};

constexpr unsigned kFirstFamilyId = kFirstDocCommandId;
constexpr unsigned kLastFamilyId = kLastDocCommandId;

} // namespace ZyIds

// ---- The palette commands ----------------------------------------------------
// The palette well's own items lie outside the handler's range and reach the
// registry directly.
constexpr unsigned ID_PALETTE_MOVE_COLORS = 33991; // "Move Colors"
// Entries trade places, pixels keep their indices: the picture changes.
constexpr unsigned ID_PALETTE_EXCHANGE_COLORS = 33992; // "Exchange Colors"
// Entries and the pixels using them trade places: the picture stays.
constexpr unsigned ID_PALETTE_SWAP_COLORS = 33993;     // "Swap Colors"
constexpr unsigned ID_PALETTE_SORT = 25240;            // "Sort Palette...": asks the sort string
constexpr unsigned ID_PALETTE_SORT_HSV = 35241;        // sort string "HSV"
constexpr unsigned ID_PALETTE_SORT_RGB = 35242;        // sort string "RGB"
constexpr unsigned ID_PALETTE_SORT_LEAST_USED = 35243; // sort string "P": least used first
constexpr unsigned ID_PALETTE_SORT_MOST_USED = 35244;  // sort string "p": most used first
constexpr unsigned ID_IMAGE_SET_PALETTE_SELECTED = 35006;
constexpr unsigned ID_IMAGE_SET_PALETTE_ALL = 35007;
constexpr unsigned ID_IMAGE_ATTACH_PALETTE = 35300;
constexpr unsigned ID_IMAGE_NAMED_PALETTE = 35301;
// Remap to the well's colours: 35063 looks colours up in a table of 15-bit
// keys (fast; colours that differ only in their low bits or in alpha share
// an entry), 35064 searches the palette for every colour (slow, exact).
constexpr unsigned ID_IMAGE_REMAP_PALETTE = 35063;
constexpr unsigned ID_IMAGE_REMAP_PALETTE_BETTER = 35064;

namespace ZyIds {
enum : unsigned {
    MoveColors = ID_PALETTE_MOVE_COLORS,
    ExchangeColors = ID_PALETTE_EXCHANGE_COLORS,
    SwapColors = ID_PALETTE_SWAP_COLORS,
    SortPalette = ID_PALETTE_SORT,
    SortPaletteHsv = ID_PALETTE_SORT_HSV,
    SortPaletteRgb = ID_PALETTE_SORT_RGB,
    SortPaletteLeastUsed = ID_PALETTE_SORT_LEAST_USED,
    SortPaletteMostUsed = ID_PALETTE_SORT_MOST_USED,
    // The worksheet's own items for finding the selection.
    ViewZoomToFit = 34800,
    ViewGoToSelected = 34801,
};
} // namespace ZyIds
