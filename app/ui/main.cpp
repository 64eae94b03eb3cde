// The editor's executable: everything lives in the zy_ui library.
#include "app/ui/Zy.h"

int main(int argc, char** argv) {
    return ZyMain(argc, argv);
}
