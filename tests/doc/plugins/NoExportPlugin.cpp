// A layout plug-in that forgot FreeLayoutImage.
#include "plugins/LayoutPlugin.h"

ZY_LAYOUT_EXPORT int EditLayoutImage(const LayoutImage*, LayoutImage*) {
    return 1;
}
