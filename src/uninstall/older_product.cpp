#include "uninstall/older_product.h"

namespace britlock {

bool checkbritol(REGISTRY_MOD& reg) {
    return !reg.reg_read_string(HKEY_LOCAL_MACHINE, R"(SOFTWARE\Microsoft\Windows\CurrentVersion\Run)",
                                "Brightlock Classic")
                .empty();
}

}  // namespace britlock
