#include "users/target.h"

#include "base/product.h"

namespace britlock {

Target target_of_reading(REGISTRY_MOD& reg, const std::string& user) {
    if (reg.is_nt_family()) return {HKEY_USERS, user + '\\', reg.family()};
    return {HKEY_CURRENT_USER, "", reg.family()};
}

Target target_of_writing(REGISTRY_MOD& reg, const std::string& user) {
    const bool logged_on = user == REGISTRY_MOD::clean_reg_string(reg.get_user_name());
    if (logged_on) return {HKEY_CURRENT_USER, "", reg.family()};
    return target_of_reading(reg, user);
}

void make_regpaths(REGISTRY_MOD& reg, Root root, const std::string& rootuser) {
    // Upper and lower case differ as in the paths of the catalogue; the registry takes them for the same.
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
    reg.reg_create_key(HKEY_LOCAL_MACHINE, product::maker_key);
    reg.reg_create_key(HKEY_LOCAL_MACHINE, product::key);
    for (const char* key : user_keys)
        reg.reg_create_key(root, rootuser + key);
}

}  // namespace britlock
