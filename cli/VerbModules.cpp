// zytool modules: the image library's module table with every parameter.

#include "cli/Verbs.h"

#include "cli/Tool.h"
#include "codec/FrameIO.h"
#include "imaging/module/module.h"

#include <cstdio>
#include <string>

namespace zytool {
namespace {

std::string valueText(const ModuleParam& param, const ModuleValue& value) {
    char text[64];
    if ((param.type & 0xFF) == kParamReal)
        snprintf(text, sizeof text, "%g", value.asReal());
    else if (param.type & kParamMaskHint)
        snprintf(text, sizeof text, "0x%08X", value.asUint());
    else
        snprintf(text, sizeof text, "%d", value.asInt());
    return text;
}

const char* typeText(uint32_t type) {
    if (type & kParamTextHint) return "text";
    if (type & kParamHandleHint) return "handle";
    if ((type & 0xFF) == kParamReal) return "real";
    if (type & kParamColourHint) return "colour";
    if (type & kParamMaskHint) return "mask";
    if (type & kParamListHint) return "choice";
    return "integer";
}

void printParam(int index, const ModuleParam& param) {
    if (param.type & kParamTextHint) {
        printf("      %2d %-24.32s text\n", index, param.name);
        return;
    }
    if (param.type & kParamHandleHint) {
        printf("      %2d %-24.32s handle  (for programs; 0 here)\n", index, param.name);
        return;
    }
    printf("      %2d %-24.32s %-7s %s..%s default %s", index, param.name, typeText(param.type),
           valueText(param, param.minimum).c_str(), valueText(param, param.maximum).c_str(),
           valueText(param, param.defaultValue).c_str());
    if (param.choices[0]) printf("  (%.256s)", param.choices);
    printf("\n");
}

} // namespace

int runModules(const Args&) {
    for (int32_t index = 0; index < module_count(); ++index) {
        module_select(index);
        GPtr<ModuleDescriptor> descriptor(module_describe());
        if (!descriptor)
            throw ToolError("module " + std::to_string(index) + " cannot describe itself");
        printf("%2d %-12.16s %-36.32s %.8s\n", index, descriptor->name, descriptor->description,
               descriptor->version);
        for (uint32_t p = 0; p < descriptor->paramCount && p < kModuleMaxParams; ++p)
            printParam(static_cast<int>(p), descriptor->params[p]);
    }
    return 0;
}

} // namespace zytool
