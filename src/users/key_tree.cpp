#include "ui/main.h"

namespace britlock {

/// Writers never create a key: a value can only be written into one of these.
void main::make_regpaths(Root root, const std::string& rootuser) {
    // The capitals differ as they do in the paths of the catalogue; the registry takes them for the same.
    constexpr const char* user_keys[] = {
        "",
        R"(SOFTWARE\Microsoft\Windows\CurrentVersion\Policies\Explorer)",
        R"(SOFTWARE\Microsoft\Windows\CurrentVersion\Policies\System)",
        R"(SOFTWARE\Microsoft\Windows\CurrentVersion\Policies\Network)",
        R"(SOFTWARE\Policies\Microsoft\Internet Explorer\Restrictions)",
        R"(Software\Microsoft\Windows\CurrentVersion\Policies\Explorer\Advanced)",
        R"(Control Panel\Sound)",
        R"(Software\Microsoft\Windows\CurrentVersion\Policies\Explorer\Hide)",
        R"(Control Panel\don't load)",
        R"(Software\Microsoft\Windows\CurrentVersion\Policies\Explorer\DisallowCpl)",
        R"(Software\Microsoft\Windows\CurrentVersion\Policies\Explorer\RestrictRun)",
    };
    program_.reg.reg_create_key(HKEY_LOCAL_MACHINE, R"(Software\Morvane)");
    program_.reg.reg_create_key(HKEY_LOCAL_MACHINE, product_key);
    for (const char* key : user_keys)
        program_.reg.reg_create_key(root, rootuser + key);
}

}  // namespace britlock
