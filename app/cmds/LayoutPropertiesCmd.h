#pragma once
// "Custom Properties" (35270): hands each selected image to the layout
// plug-in liblayout.so (plugins/LayoutPlugin.h) and puts what it returns in
// the image's place, undoably. Without the plug-in the command does
// nothing; a plug-in that lacks one of its two exports leaves every image
// as it was (an identical copy); one that throws is reported once per image.

#include "app/doc/Command.h"
#include "app/doc/UndoableCmd.h"

#include <string>

class CLayoutPropertiesCmd : public CUndoableCmd {
  public:
    CLayoutPropertiesCmd();
    // Copies the selection; submits only when the plug-in loads.
    bool Init(CTavixDoc* doc) override;
    std::unique_ptr<CTavixImage> FilterImage(CTavixImage* image) override;

    // The plug-in's library name, looked up as the codec library is
    // ("layout": liblayout.so beside the program, then the search path; a
    // name with a '/' is a path). Tests point it elsewhere.
    static void SetLibraryName(const std::string& name);
    static const std::string& GetLibraryName();

  private:
    std::unique_ptr<CTavixImage> RunPlugin(void* library, CTavixImage* image);
};

class CLayoutPropertiesInfo : public CCommandInfo {
  public:
    CLayoutPropertiesInfo();
};
