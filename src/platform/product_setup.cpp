#include "platform/product_setup.h"

#include <string>

#include "base/product.h"

namespace britlock {

void prepare_installation(machine::Registry& registry) {
    using machine::Root;
    // What fails here shows later in the program's own words: its values cannot be stored.
    (void)registry.create_key(Root::local_machine, product::key);
    (void)registry.create_key(Root::local_machine, product::uninstall_key);
    machine::RawValue known;
    if (registry.query(Root::local_machine, product::uninstall_key, "DisplayName", known).action !=
        machine::success) {
        (void)registry.set(Root::local_machine, product::uninstall_key, "DisplayName",
                           {machine::reg_sz, std::string(product::title) + '\0'});
    }
}

}  // namespace britlock
