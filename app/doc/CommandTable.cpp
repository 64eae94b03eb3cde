#include "app/doc/CommandTable.h"

#include <strings.h>

namespace {

constexpr CCommandEntry kEntries[] = {
    {3683, "ChangeColorDepth", "Change color depth of current image"},
    // The palette well's items.
    {25240, "SortPalette", "Sort the palettes of the selected images by a sort string"},
    {33991, "MoveColors", "Move the pixels of the selected colors to one index"},
    {33992, "ExchangeColors", "Exchange two palette entries; the pixels keep their indices"},
    {33993, "SwapColors", "Swap two colors and the pixels using them; the picture stays"},
    {35002, "Import", "Import image files into the document"},
    {35003, "Export", "Export the selected images to files"},
    {35004, "Revert", "Throw away the changes made since the last save"},
    {35005, "ColorDepthWizard", "Starts the color remap wizard"},
    {35006, "SetPaletteSelected", "Give the selected images the palette of the focused one"},
    {35007, "SetPaletteAll", "Give all images the palette of the focused one"},
    {35008, "Invert", "Invert the colours of the selected images"},
    {35009, "Grayscale", "Turn the selected images to grey"},
    {35010, "CanvasSize", "Change the canvas size of the selected images"},
    {35011, "ShrinkToFit", "Cut the selected images down to their used area"},
    {35012, "EnlargeCanvas", "Enlarge the canvas of the selected images"},
    {35021, "ContrastBrightness", "Change contrast and brightness of the selected images"},
    {35022, "ColorBalance", "Change the colour balance of the selected images"},
    {35023, "HueSaturation", "Change hue and saturation of the selected images"},
    {35024, "FlipHorizontal", "Flip the selected images left to right"},
    {35025, "FlipVertical", "Flip the selected images top to bottom"},
    {35026, "Rotate90CW", "Rotate the selected images 90 degrees clockwise"},
    {35027, "Rotate180", "Rotate the selected images 180 degrees"},
    {35028, "Rotate90CCW", "Rotate the selected images 90 degrees counter-clockwise"},
    {35029, "ImageSize", "Resize the selected images"},
    {35043, "CleanEdges", "Clean the edges of the selected images"},
    {35044, "Creep", "Let colour creep into the transparent area"},
    {35046, "DeInterlace", "De-interlace the selected images"},
    {35047, "Blur", "Blur selected images"},
    {35048, "BlurMore", "Blur selected images by a lot"},
    {35049, "BlurAmount", "Blur selected images by an exact amount"},
    {35060, "Sharpen", "Sharpen selected images"},
    {35061, "SharpenAmount", "Sharpen selected images by an exact amount"},
    {35062, "SharpenMore", "Sharpen selected images by a lot"},
    {35063, "RemapPalette", "Remap the selected images to the palette"},
    {35064, "RemapPaletteBetter", "Remap the selected images to the palette, better"},
    {35065, "Indexed4", "Convert the selected images to 4 bpp (16 colors)"},
    {35066, "Indexed8", "Convert the selected images to 8 bpp (256 colors)"},
    {35067, "Rgb555", "Convert the selected images to 15 bpp (555)"},
    {35068, "Rgb565", "Convert the selected images to 16 bpp (565)"},
    {35069, "Rgb32", "Convert the selected images to 32 bpp (8888)"},
    {35080, "Rgb24", "Convert the selected images to 24 bpp (888)"},
    {35081, "Rgb555Opaque", "Convert the selected images to 15 bpp (555), opaque"},
    {35082, "Duplicate", "Duplicate the selected images"},
    {35083, "Delete", "Delete the selected images"},
    {35084, "AddNewImage", "Add a new image to the document"},
    {35085, "InsertNewImage", "Insert a new image after the focused one"},
    {35127, "LayoutWizard", "Lay the images out on texture pages"},
    {35128, "ArbitraryRotate", "Rotate the selected images by any angle"},
    // Palette sorts by fixed strings.
    {35241, "SortPaletteHSV", "Sort the palettes by hue, saturation and value"},
    {35242, "SortPaletteRGB", "Sort the palettes by red, green and blue"},
    {35243, "SortPaletteLeastUsed", "Sort the palettes by use, least used first"},
    {35244, "SortPaletteMostUsed", "Sort the palettes by use, most used first"},
    {35250, "BringForward", "Move the selected images one place toward the start of the list"},
    {35251, "SendBack", "Move the selected images one place toward the end of the list"},
    {35252, "BringToFront", "Move the selected images to the start of the list"},
    {35253, "SendToBottom", "Move the selected images to the end of the list"},
    {35254, "MoveUpFive", "Move the selected images five places toward the start of the list"},
    {35255, "MoveDownFive", "Move the selected images five places toward the end of the list"},
    {35261, "ColumnSwap", "Swap the columns of the selected images"},
    {35263, "BlendImages", "Blend the selected images into a new image"},
    {35264, "Outline", "Outline the selected images"},
    {35270, "CustomProperties", "Edit the layout properties"},
    {35280, "AlignLeft", "Align the left edges of the selected images with the focused one"},
    {35281, "AlignRight", "Align the right edges of the selected images with the focused one"},
    {35282, "AlignTop", "Align the top edges of the selected images with the focused one"},
    {35283, "AlignBottom", "Align the bottom edges of the selected images with the focused one"},
    {35284, "SpaceAcross", "Space the selected images evenly across"},
    {35285, "SpaceDown", "Space the selected images evenly down"},
    {35289, "CenterVertical", "Centre the selected images vertically on the screen"},
    {35290, "CenterHorizontal", "Centre the selected images horizontally on the screen"},
    {35295, "Transpose", "Transpose the selected images"},
    {35296, "RotateToggle", "Rotate the selected images"},
    {35300, "AttachPalette", "Attach a palette to the selected images"},
    {35301, "NamedPalette", "Insert a named palette"},
    {35310, "PreAttenuate", "Multiply the colours by alpha"},
    {35312, "UnAttenuate", "Divide the colours by alpha"},
    {35318, "RunModule", "Run any image module with chosen values"},
    {35330, "CreateMipMaps", "Create mip maps of the selected images"},
    {35340, "ShapeProperties", "Edit the shape's properties"},
    {35350, "Sort", "Sort the images by name"},
    {35400, "Cut", "Cut the selection to the clipboard"},
    {35401, "Copy", "Copy the selection to the clipboard"},
    {35402, "Paste", "Insert the clipboard's contents"},
    {35403, "PasteSpecial", "Insert the clipboard's contents in a chosen format"},
};

} // namespace

std::span<const CCommandEntry> CommandTable() {
    return kEntries;
}

const CCommandEntry* FindCommandEntry(unsigned id) {
    for (const CCommandEntry& entry : kEntries)
        if (entry.m_nID == id) return &entry;
    return nullptr;
}

const CCommandEntry* FindCommandEntry(const std::string& name) {
    for (const CCommandEntry& entry : kEntries)
        if (strcasecmp(entry.m_Name, name.c_str()) == 0) return &entry;
    return nullptr;
}
